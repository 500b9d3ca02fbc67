// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/preview/FeatureToggles.h"

#include "ui/common/TextStyles.h"
#include "fonts/SampleRenderer.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHash>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int kColumns = 4;

QString tagText(quint32 tag)
{
    const char text[4] = {char(tag >> 24), char(tag >> 16), char(tag >> 8), char(tag)};
    return QString::fromLatin1(text, 4);
}

} // namespace

FeatureToggles::FeatureToggles(const QList<quint32> &tags, const QHash<quint32, QString> &fontNames, QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *caption = new QLabel(tr("OpenType Features"), this);
    TextStyles::applyCaption(caption);
    layout->addWidget(caption);
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(4);
    for (const quint32 tag : tags) {
        const QString text = tagText(tag);
        auto *box = new QCheckBox(text, this);
        // Named by what it does, the tag after: "Small Capitals (smcp)", or the font's
        // own name for one of its stylistic sets.
        const QString description = fontNames.value(tag, describe(text));
        box->setAccessibleName(description.isEmpty() ? text : u"%1 (%2)"_s.arg(description, text));
        box->setToolTip(description);
        box->setAccessibleDescription(description);
        box->setChecked(SampleRenderer::isOnByDefault(tag));
        connect(box, &QCheckBox::toggled, this, &FeatureToggles::changed);
        const int index = static_cast<int>(m_boxes.size());
        grid->addWidget(box, index / kColumns, index % kColumns);
        m_boxes.append({tag, box});
    }
    layout->addLayout(grid);
}

QList<QPair<quint32, bool>> FeatureToggles::changes() const
{
    QList<QPair<quint32, bool>> changes;
    for (const auto &[tag, box] : m_boxes) {
        if (box->isChecked() != SampleRenderer::isOnByDefault(tag))
            changes.append({tag, box->isChecked()});
    }
    return changes;
}

QString FeatureToggles::describe(const QString &tag)
{
    static const QHash<QString, const char *> names{
        {u"aalt"_s, QT_TR_NOOP("Access All Alternates")}, {u"c2sc"_s, QT_TR_NOOP("Small Capitals From Capitals")},
        {u"calt"_s, QT_TR_NOOP("Contextual Alternates")}, {u"case"_s, QT_TR_NOOP("Case-Sensitive Forms")},
        {u"ccmp"_s, QT_TR_NOOP("Glyph Composition")},     {u"clig"_s, QT_TR_NOOP("Contextual Ligatures")},
        {u"dlig"_s, QT_TR_NOOP("Discretionary Ligatures")}, {u"dnom"_s, QT_TR_NOOP("Denominators")},
        {u"frac"_s, QT_TR_NOOP("Fractions")},             {u"hlig"_s, QT_TR_NOOP("Historical Ligatures")},
        {u"kern"_s, QT_TR_NOOP("Kerning")},               {u"liga"_s, QT_TR_NOOP("Standard Ligatures")},
        {u"lnum"_s, QT_TR_NOOP("Lining Figures")},        {u"locl"_s, QT_TR_NOOP("Localized Forms")},
        {u"mark"_s, QT_TR_NOOP("Mark Positioning")},      {u"mkmk"_s, QT_TR_NOOP("Mark to Mark Positioning")},
        {u"numr"_s, QT_TR_NOOP("Numerators")},            {u"onum"_s, QT_TR_NOOP("Oldstyle Figures")},
        {u"ordn"_s, QT_TR_NOOP("Ordinals")},              {u"pnum"_s, QT_TR_NOOP("Proportional Figures")},
        {u"rlig"_s, QT_TR_NOOP("Required Ligatures")},    {u"salt"_s, QT_TR_NOOP("Stylistic Alternates")},
        {u"sinf"_s, QT_TR_NOOP("Scientific Inferiors")},  {u"smcp"_s, QT_TR_NOOP("Small Capitals")},
        {u"subs"_s, QT_TR_NOOP("Subscript")},             {u"sups"_s, QT_TR_NOOP("Superscript")},
        {u"swsh"_s, QT_TR_NOOP("Swash")},                 {u"tnum"_s, QT_TR_NOOP("Tabular Figures")},
        {u"zero"_s, QT_TR_NOOP("Slashed Zero")},          {u"init"_s, QT_TR_NOOP("Initial Forms")},
        {u"medi"_s, QT_TR_NOOP("Medial Forms")},          {u"fina"_s, QT_TR_NOOP("Terminal Forms")},
        {u"isol"_s, QT_TR_NOOP("Isolated Forms")},        {u"curs"_s, QT_TR_NOOP("Cursive Positioning")}};
    if (const auto found = names.constFind(tag); found != names.cend())
        return tr(*found);
    bool numbered = false;
    const int number = tag.mid(2).toInt(&numbered);
    if (numbered && tag.startsWith(u"ss"_s))
        return tr("Stylistic Set %1").arg(number);
    if (numbered && tag.startsWith(u"cv"_s))
        return tr("Character Variant %1").arg(number);
    return {};
}

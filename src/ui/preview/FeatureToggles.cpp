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
    auto *caption = new QLabel(u"OpenType Features"_s, this);
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
    static const QHash<QString, QString> names{
        {u"aalt"_s, u"Access All Alternates"_s}, {u"c2sc"_s, u"Small Capitals From Capitals"_s},
        {u"calt"_s, u"Contextual Alternates"_s}, {u"case"_s, u"Case-Sensitive Forms"_s},
        {u"ccmp"_s, u"Glyph Composition"_s},     {u"clig"_s, u"Contextual Ligatures"_s},
        {u"dlig"_s, u"Discretionary Ligatures"_s}, {u"dnom"_s, u"Denominators"_s},
        {u"frac"_s, u"Fractions"_s},             {u"hlig"_s, u"Historical Ligatures"_s},
        {u"kern"_s, u"Kerning"_s},               {u"liga"_s, u"Standard Ligatures"_s},
        {u"lnum"_s, u"Lining Figures"_s},        {u"locl"_s, u"Localized Forms"_s},
        {u"mark"_s, u"Mark Positioning"_s},      {u"mkmk"_s, u"Mark to Mark Positioning"_s},
        {u"numr"_s, u"Numerators"_s},            {u"onum"_s, u"Oldstyle Figures"_s},
        {u"ordn"_s, u"Ordinals"_s},              {u"pnum"_s, u"Proportional Figures"_s},
        {u"rlig"_s, u"Required Ligatures"_s},    {u"salt"_s, u"Stylistic Alternates"_s},
        {u"sinf"_s, u"Scientific Inferiors"_s},  {u"smcp"_s, u"Small Capitals"_s},
        {u"subs"_s, u"Subscript"_s},             {u"sups"_s, u"Superscript"_s},
        {u"swsh"_s, u"Swash"_s},                 {u"tnum"_s, u"Tabular Figures"_s},
        {u"zero"_s, u"Slashed Zero"_s},          {u"init"_s, u"Initial Forms"_s},
        {u"medi"_s, u"Medial Forms"_s},          {u"fina"_s, u"Terminal Forms"_s},
        {u"isol"_s, u"Isolated Forms"_s},        {u"curs"_s, u"Cursive Positioning"_s}};
    if (const auto found = names.constFind(tag); found != names.cend())
        return *found;
    bool numbered = false;
    const int number = tag.mid(2).toInt(&numbered);
    if (numbered && tag.startsWith(u"ss"_s))
        return u"Stylistic Set %1"_s.arg(number);
    if (numbered && tag.startsWith(u"cv"_s))
        return u"Character Variant %1"_s.arg(number);
    return {};
}

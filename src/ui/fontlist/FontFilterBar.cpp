// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/FontFilterBar.h"

#include "fonts/LanguageSamples.h"
#include "state/AppState.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>

using namespace Qt::StringLiterals;

namespace {

using C = FaceRecord::Classification;

QString classificationName(C value)
{
    switch (value) {
    case C::Serif: return FontFilterBar::tr("Serif");
    case C::SansSerif: return FontFilterBar::tr("Sans Serif");
    case C::SlabSerif: return FontFilterBar::tr("Slab Serif");
    case C::Script: return FontFilterBar::tr("Script");
    case C::Display: return FontFilterBar::tr("Display");
    case C::Monospace: return FontFilterBar::tr("Monospace");
    case C::Symbol: return FontFilterBar::tr("Symbol");
    case C::Unknown: break;
    }
    return FontFilterBar::tr("Unclassified");
}

// A choice of one range: the first, "any", asks nothing.
void addRanges(QMenu *menu, const QList<std::tuple<QString, int, int>> &ranges)
{
    auto *group = new QActionGroup(menu);
    for (const auto &[title, low, high] : ranges) {
        QAction *action = menu->addAction(title);
        action->setCheckable(true);
        action->setData(QPoint(low, high));
        group->addAction(action);
    }
    group->actions().constFirst()->setChecked(true);
}

QPoint chosenRange(const QMenu *menu, QPoint any)
{
    for (const QAction *action : menu->actions()) {
        if (action->isChecked())
            return action->data().toPoint();
    }
    return any;
}

} // namespace

QString FontFilterBar::languageLabel(const QString &code, int count)
{
    const QString native = LanguageSamples::nativeName(code), english = LanguageSamples::englishName(code);
    QString name = native.isEmpty() ? code : (native.compare(english, Qt::CaseInsensitive) == 0 ? native : native + u" — "_s + english);
    return name + u" ("_s + code + u")  "_s + QLocale().toString(count);
}

FontFilterBar::FontFilterBar(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_languageMenu(new QMenu(this))
    , m_classMenu(new QMenu(this))
    , m_weightMenu(new QMenu(this))
    , m_widthMenu(new QMenu(this))
    , m_licenceMenu(new QMenu(this))
    , m_sourceMenu(new QMenu(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 8, 4);
    layout->setSpacing(4);
    layout->addWidget(menuButton(tr("Language"), m_languageMenu));
    layout->addWidget(menuButton(tr("Classification"), m_classMenu));
    layout->addWidget(menuButton(tr("Weight"), m_weightMenu));
    layout->addWidget(menuButton(tr("Width"), m_widthMenu));
    layout->addWidget(menuButton(tr("Licence Status"), m_licenceMenu));
    layout->addWidget(menuButton(tr("Source"), m_sourceMenu));
    layout->addWidget(m_italic = toggle(tr("Italic")));
    layout->addWidget(m_variable = toggle(tr("Variable")));
    layout->addWidget(m_monospaced = toggle(tr("Monospaced")));
    layout->addWidget(m_active = toggle(tr("Active")));
    layout->addStretch(1);
    auto *clearButton = new QToolButton(this);
    clearButton->setText(tr("Clear Filters"));
    clearButton->setAccessibleName(tr("Clear Filters"));
    clearButton->setAutoRaise(true);
    connect(clearButton, &QToolButton::clicked, this, &FontFilterBar::clear);
    layout->addWidget(clearButton);

    for (const C value : {C::Serif, C::SansSerif, C::SlabSerif, C::Script, C::Display, C::Monospace, C::Symbol, C::Unknown}) {
        QAction *action = m_classMenu->addAction(classificationName(value));
        action->setCheckable(true);
        action->setData(int(value));
    }
    addRanges(m_weightMenu, {{tr("Any Weight"), 0, 1000}, {tr("Thin to Light (100–300)"), 1, 349},
                             {tr("Regular to Medium (400–500)"), 350, 549}, {tr("Semibold to Black (600–900)"), 550, 1000}});
    addRanges(m_widthMenu, {{tr("Any Width"), 1, 9}, {tr("Condensed"), 1, 4}, {tr("Normal"), 5, 5}, {tr("Expanded"), 6, 9}});
    for (const LicenseStatus status : License::allCases()) {
        QAction *action = m_licenceMenu->addAction(License::rawValue(status));
        action->setCheckable(true);
        action->setData(int(status));
    }
    // Sources change: the menu is made afresh each time it opens, keeping what is chosen.
    connect(m_sourceMenu, &QMenu::aboutToShow, this, [this] {
        m_sourceMenu->clear();
        for (const FolderSource &source : m_state.sources()) {
            QAction *action = m_sourceMenu->addAction(source.name);
            action->setCheckable(true);
            action->setData(source.path);
            action->setChecked(m_folders.contains(source.path));
        }
    });
    connect(m_sourceMenu, &QMenu::triggered, this, [this](QAction *action) {
        const QString folder = action->data().toString();
        if (action->isChecked() && !m_folders.contains(folder))
            m_folders.append(folder);
        else if (!action->isChecked())
            m_folders.removeAll(folder);
    });
    connect(m_languageMenu, &QMenu::aboutToShow, this, &FontFilterBar::fillLanguages);
    for (QMenu *menu : {m_classMenu, m_weightMenu, m_widthMenu, m_licenceMenu, m_sourceMenu})
        connect(menu, &QMenu::triggered, this, [this] {
            updateTitles();
            Q_EMIT changed();
        });
}

QToolButton *FontFilterBar::menuButton(const QString &title, QMenu *menu)
{
    auto *button = new QToolButton(this);
    button->setText(title);
    button->setAccessibleName(title);
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setAutoRaise(true);
    menu->setTitle(title);
    return button;
}

QToolButton *FontFilterBar::toggle(const QString &title)
{
    auto *button = new QToolButton(this);
    button->setText(title);
    button->setAccessibleName(title);
    button->setCheckable(true);
    button->setAutoRaise(true);
    connect(button, &QToolButton::toggled, this, &FontFilterBar::changed);
    return button;
}

QToolButton *FontFilterBar::button(const QString &accessibleName) const
{
    for (QToolButton *button : findChildren<QToolButton *>()) {
        if (button->accessibleName() == accessibleName)
            return button;
    }
    return nullptr;
}

void FontFilterBar::fillLanguages()
{
    m_languageMenu->clear();
    auto *searchAction = new QWidgetAction(m_languageMenu);
    auto *search = new QLineEdit(m_languageMenu);
    search->setPlaceholderText(tr("Search languages"));
    search->setAccessibleName(tr("Search languages"));
    search->setText(m_languageSearch);
    searchAction->setDefaultWidget(search);
    m_languageMenu->addAction(searchAction);
    // The most covered first; each by its own name, its English name and its code.
    QList<QString> codes = m_languageCounts.keys();
    for (const QString &code : std::as_const(m_languages)) {
        if (!codes.contains(code))
            codes.append(code);
    }
    std::sort(codes.begin(), codes.end(), [&](const QString &a, const QString &b) {
        const int ca = m_languageCounts.value(a), cb = m_languageCounts.value(b);
        return ca != cb ? ca > cb : a < b;
    });
    for (const QString &code : std::as_const(codes)) {
        QAction *action = m_languageMenu->addAction(languageLabel(code, m_languageCounts.value(code)));
        action->setCheckable(true);
        action->setChecked(m_languages.contains(code));
        action->setData(code);
        connect(action, &QAction::toggled, this, [this, code](bool on) {
            if (on && !m_languages.contains(code))
                m_languages.append(code);
            else if (!on)
                m_languages.removeAll(code);
            updateTitles();
            Q_EMIT changed();
        });
    }
    const auto narrow = [this](const QString &text) {
        m_languageSearch = text;
        for (QAction *action : m_languageMenu->actions()) {
            if (!action->data().isNull())
                action->setVisible(text.isEmpty() || action->text().contains(text, Qt::CaseInsensitive));
        }
    };
    connect(search, &QLineEdit::textChanged, this, narrow);
    narrow(m_languageSearch);
    search->setFocus();
}

void FontFilterBar::setCounts(const FontQueryAnswer &answer)
{
    m_languageCounts = answer.languageCounts;
}

QString FontFilterBar::singleLanguage() const
{
    return m_languages.size() == 1 ? m_languages.constFirst() : QString();
}

void FontFilterBar::apply(FontQuery &query) const
{
    query.languages += m_languages;
    for (const QAction *action : m_classMenu->actions()) {
        if (action->isChecked())
            query.classifications.append(C(action->data().toInt()));
    }
    const QPoint weight = chosenRange(m_weightMenu, {0, 1000}), width = chosenRange(m_widthMenu, {1, 9});
    query.minWeight = weight.x();
    query.maxWeight = weight.y();
    query.minWidth = width.x();
    query.maxWidth = width.y();
    for (const QAction *action : m_licenceMenu->actions()) {
        if (action->isChecked())
            query.licenseStatuses.append(LicenseStatus(action->data().toInt()));
    }
    query.folders += m_folders;
    if (m_italic->isChecked())
        query.italic = true;
    if (m_variable->isChecked())
        query.variable = true;
    if (m_monospaced->isChecked())
        query.monospaced = true;
    if (m_active->isChecked())
        query.active = true;
}

void FontFilterBar::clear()
{
    QSignalBlocker blocker(this);
    m_languages.clear();
    m_folders.clear();
    for (QMenu *menu : {m_classMenu, m_licenceMenu, m_sourceMenu}) {
        for (QAction *action : menu->actions())
            action->setChecked(false);
    }
    for (QMenu *menu : {m_weightMenu, m_widthMenu})
        menu->actions().constFirst()->setChecked(true);
    for (QToolButton *button : {m_italic, m_variable, m_monospaced, m_active})
        button->setChecked(false);
    updateTitles();
    blocker.unblock();
    Q_EMIT changed();
}

void FontFilterBar::setQuery(const FontQuery &query)
{
    QSignalBlocker blocker(this);
    m_languages = query.languages;
    m_folders = query.folders;
    for (QAction *action : m_classMenu->actions())
        action->setChecked(query.classifications.contains(C(action->data().toInt())));
    for (QAction *action : m_licenceMenu->actions())
        action->setChecked(query.licenseStatuses.contains(LicenseStatus(action->data().toInt())));
    const auto chooseRange = [](QMenu *menu, QPoint range) {
        for (QAction *action : menu->actions())
            action->setChecked(action->data().toPoint() == range);
        if (std::none_of(menu->actions().cbegin(), menu->actions().cend(), [](QAction *a) { return a->isChecked(); }))
            menu->actions().constFirst()->setChecked(true); // a range no item has: any
    };
    chooseRange(m_weightMenu, {query.minWeight, query.maxWeight});
    chooseRange(m_widthMenu, {query.minWidth, query.maxWidth});
    m_italic->setChecked(query.italic.value_or(false));
    m_variable->setChecked(query.variable.value_or(false));
    m_monospaced->setChecked(query.monospaced.value_or(false));
    m_active->setChecked(query.active.value_or(false));
    updateTitles();
    blocker.unblock();
    Q_EMIT changed();
}

void FontFilterBar::updateTitles()
{
    // A menu with something chosen says how much: "Language (2)".
    const auto title = [bar = this](QMenu *menu, int chosen) {
        for (QToolButton *button : bar->findChildren<QToolButton *>()) {
            if (button->menu() == menu)
                button->setText(chosen ? menu->title() + u" ("_s + QString::number(chosen) + u')' : menu->title());
        }
    };
    const auto checked = [](QMenu *menu) {
        return int(std::count_if(menu->actions().cbegin(), menu->actions().cend(), [](QAction *a) { return a->isChecked(); }));
    };
    title(m_languageMenu, int(m_languages.size()));
    title(m_classMenu, checked(m_classMenu));
    title(m_licenceMenu, checked(m_licenceMenu));
    title(m_sourceMenu, int(m_folders.size()));
    title(m_weightMenu, m_weightMenu->actions().constFirst()->isChecked() ? 0 : 1);
    title(m_widthMenu, m_widthMenu->actions().constFirst()->isChecked() ? 0 : 1);
}

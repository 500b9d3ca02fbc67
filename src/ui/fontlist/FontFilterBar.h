// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/FontCatalog.h"

#include <QWidget>

class AppState;
class QMenu;
class QToolButton;

// The font list's filters beside its field: menus Language (with counts, searchable by
// the language's own and English name), Classification, Weight, Width, Licence status
// and Source; toggles Italic, Variable, Monospaced and Active; "Clear Filters".
class FontFilterBar : public QWidget
{
    Q_OBJECT

public:
    FontFilterBar(AppState &state, QWidget *parent = nullptr);

    // Adds the chosen filters to the question.
    void apply(FontQuery &query) const;
    // Counts of the last answer, shown beside the menus' items.
    void setCounts(const FontQueryAnswer &answer);
    // The one language chosen, when exactly one is: the list draws its sample.
    QString singleLanguage() const;
    void clear();
    // Shows a kept question's filters (a smart collection being edited).
    void setQuery(const FontQuery &query);

    QToolButton *button(const QString &accessibleName) const;
    QMenu *languageMenu() const { return m_languageMenu; }
    // The language menu's items as they read: "magyar — Hungarian (hu)  1,234".
    static QString languageLabel(const QString &code, int count);

Q_SIGNALS:
    void changed();

private:
    QToolButton *menuButton(const QString &title, QMenu *menu);
    QToolButton *toggle(const QString &title);
    void fillLanguages();
    void updateTitles();

    AppState &m_state;
    QMenu *m_languageMenu;
    QMenu *m_classMenu;
    QMenu *m_weightMenu;
    QMenu *m_widthMenu;
    QMenu *m_licenceMenu;
    QMenu *m_sourceMenu;
    QToolButton *m_italic;
    QToolButton *m_variable;
    QToolButton *m_monospaced;
    QToolButton *m_active;
    QStringList m_languages; // chosen
    QStringList m_folders;   // chosen sources
    QHash<QString, int> m_languageCounts;
    QString m_languageSearch;
};

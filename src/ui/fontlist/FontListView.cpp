// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/fontlist/FontListView.h"

#include "fonts/LanguageSamples.h"
#include "state/AppState.h"
#include "ui/fontlist/CompareView.h"
#include "ui/fontlist/FontFilterBar.h"
#include "ui/common/ContextMenus.h"
#include "ui/common/TextStyles.h"
#include "ui/fontlist/FontListDelegate.h"
#include "ui/fontlist/FontListModel.h"
#include "ui/fontlist/FontSampleCache.h"

#include <QHBoxLayout>
#include <QContextMenuEvent>
#include <QFutureWatcher>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMenu>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QProxyStyle>
#include <QScrollBar>
#include <QSlider>
#include <QStyleOption>
#include <QStackedWidget>
#include <QToolButton>
#include <QTimer>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// The row's own rounded background shows the selection: the tree paints none beside it.
class NoDecorationSelection : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *data) const override
    {
        if (hint == SH_ItemView_ShowDecorationSelected)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

} // namespace

FontListTree::FontListTree(AppState &state, QWidget *parent)
    : QTreeView(parent)
    , m_state(state)
{
    auto *style = new NoDecorationSelection;
    style->setParent(this); // the tree's to keep
    setStyle(style);
}

void FontListTree::drawBranches(QPainter *painter, const QRect &rect, const QModelIndex &index) const
{
    QStyleOption option;
    option.initFrom(this);
    option.rect = QRect(rect.right() - indentation() + 1, rect.top(), indentation(), rect.height());
    option.state = QStyle::State_Item;
    if (model()->hasChildren(index))
        option.state |= QStyle::State_Children;
    if (isExpanded(index))
        option.state |= QStyle::State_Open;
    style()->drawPrimitive(QStyle::PE_IndicatorBranch, &option, painter, this);
}

void FontListTree::contextMenuEvent(QContextMenuEvent *event)
{
    QModelIndex index = indexAt(event->pos());
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        index = currentIndex();
        at = viewport()->mapToGlobal(visualRect(index).center());
    }
    const QString path = index.data(FontListModel::PathRole).toString();
    if (path.isEmpty())
        return;
    QMenu *menu = ContextMenus::buildNodeMenu(m_state, FontNode::fontFile(path), this);
    if (m_offersKeepOne && index.parent().isValid()) {
        menu->insertSeparator(menu->actions().value(0));
        QAction *keep = new QAction(tr("Keep Only This File Active"), menu);
        menu->insertAction(menu->actions().value(0), keep);
        const QPersistentModelIndex row(index);
        connect(keep, &QAction::triggered, this, [this, row] { Q_EMIT keepOnlyRequested(row); });
    }
    const qsizetype chosen = selectionModel()->selectedRows().size();
    if (chosen >= 2 && chosen <= CompareView::kMostFaces) {
        menu->addSeparator();
        connect(menu->addAction(tr("&Compare")), &QAction::triggered, this, &FontListTree::compareRequested);
    }
    connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater); // a chosen action has run by then
    menu->popup(at);
    event->accept();
}

bool FontListTree::typing() const
{
    return m_sinceTyped.isValid() && m_typeAhead.isTyping(m_sinceTyped.elapsed());
}

void FontListTree::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const bool typed = plain && !event->text().isEmpty() && event->text().at(0).isPrint()
                       && (event->key() != Qt::Key_Space || typing());
    if (typed) {
        // Families only: a face row's place is its family's.
        const auto *list = static_cast<const FontListModel *>(model());
        const QModelIndex family = current.parent().isValid() ? current.parent() : current;
        if (!m_sinceTyped.isValid())
            m_sinceTyped.start();
        const int row = m_typeAhead.type(event->text(), m_sinceTyped.elapsed(), family.isValid() ? family.row() : -1,
                                         list->rowCount(),
                                         [list](int at) { return list->familyName(at); });
        if (row >= 0) {
            const QModelIndex found = list->index(row, 0);
            setCurrentIndex(found);
            scrollTo(found);
        }
        event->accept();
        return;
    }
    m_typeAhead.reset(); // any other key ends a typed search
    if (current.isValid() && event->modifiers() == Qt::NoModifier) {
        if (event->key() == Qt::Key_Space) {
            Q_EMIT toggleRequested(current);
            return;
        }
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            Q_EMIT openRequested(current);
            return;
        }
    }
    QTreeView::keyPressEvent(event);
}

FontQuery FontListView::queryFor(const QString &filter, LibraryView::Kind kind)
{
    FontQuery query;
    QString words = filter;
    // "…" in quotes: characters the face must map.
    const qsizetype open = words.indexOf(u'"');
    if (open >= 0) {
        const qsizetype close = words.indexOf(u'"', open + 1);
        const qsizetype end = close < 0 ? words.size() : close;
        query.requiredCharacters = words.mid(open + 1, end - open - 1);
        words.remove(open, (close < 0 ? words.size() : close + 1) - open);
    }
    query.text = words.simplified();
    if (kind == LibraryView::ActiveFonts)
        query.active = true;
    query.duplicates = kind == LibraryView::Duplicates;
    query.conflicts = kind == LibraryView::Conflicts;
    return query;
}

FontListView::FontListView(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_filter(new QLineEdit(this))
    , m_count(new QLabel(this))
    , m_bar(new FontFilterBar(state, this))
    , m_size(new QSlider(Qt::Horizontal, this))
    , m_names(new QToolButton(this))
    , m_saveSmart(new QToolButton(this))
    , m_tree(new FontListTree(state, this))
    , m_model(new FontListModel(state, this))
    , m_samples(new FontSampleCache(this))
    , m_delegate(new FontListDelegate(*m_samples, this))
    , m_askSoon(new QTimer(this))
{
    setAccessibleName(tr("Font list"));
    m_filter->setPlaceholderText(tr("Filter fonts…"));
    m_filter->setAccessibleName(tr("Filter fonts"));
    m_filter->setClearButtonEnabled(true);
    TextStyles::applySecondary(m_count);
    m_size->setRange(12, 96);
    m_size->setValue(int(std::lround(state.listSize())));
    m_size->setFixedWidth(120);
    m_size->setAccessibleName(tr("Sample size"));
    m_size->setToolTip(tr("Sample size"));
    m_names->setText(tr("Names"));
    m_names->setAccessibleName(tr("Show each font's name"));
    m_names->setToolTip(tr("Show each font's name"));
    m_names->setCheckable(true);
    m_names->setAutoRaise(true);
    m_compareButton = new QToolButton(this);
    m_compareButton->setText(tr("Compare"));
    m_compareButton->setAccessibleName(tr("Compare"));
    m_compareButton->setToolTip(tr("Compare two to twelve chosen fonts"));
    m_compareButton->setAutoRaise(true);
    m_compareButton->setEnabled(false);
    m_saveSmart->setText(tr("Save as Smart Collection…"));
    m_saveSmart->setAccessibleName(tr("Save as Smart Collection…"));
    m_saveSmart->setAutoRaise(true);
    m_chooseName = [this] {
        return QInputDialog::getText(this, tr("Save as Smart Collection"), tr("Name:"), QLineEdit::Normal,
                                     tr("Smart Collection"));
    };
    connect(m_saveSmart, &QToolButton::clicked, this, [this] {
        if (!m_editing.isNull()) { // the edited collection keeps the new question
            m_state.setSmartQuery(m_editing, currentQuery());
            m_editing = QUuid();
            m_saveSmart->setText(tr("Save as Smart Collection…"));
            m_saveSmart->setAccessibleName(m_saveSmart->text());
            return;
        }
        const QString name = m_chooseName().trimmed();
        if (!name.isEmpty())
            m_state.createSmartCollection(name, currentQuery());
    });
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(8, 6, 8, 6);
    bar->addWidget(m_filter, 1);
    bar->addWidget(m_names);
    bar->addWidget(m_size);
    bar->addWidget(m_count);
    bar->addWidget(m_compareButton);
    bar->addWidget(m_saveSmart);
    m_tree->setModel(m_model);
    m_tree->setItemDelegate(m_delegate);
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setAccessibleName(tr("Fonts"));
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setMouseTracking(true);
    m_tree->setDragEnabled(true);
    m_tree->setDragDropMode(QAbstractItemView::DragOnly);
    m_tree->setDefaultDropAction(Qt::CopyAction);
    // The list, and compare in its place while faces are compared.
    auto *listPage = new QWidget(this);
    auto *layout = new QVBoxLayout(listPage);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_bar);
    layout->addWidget(m_tree, 1);
    m_compare = new CompareView(state, *m_samples, this);
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(listPage);
    m_pages->addWidget(m_compare);
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(m_pages);
    setFocusProxy(m_tree);
    connect(m_compareButton, &QToolButton::clicked, this, &FontListView::compareSelected);
    connect(m_tree, &FontListTree::compareRequested, this, &FontListView::compareSelected);
    connect(m_compare, &CompareView::closeRequested, this, [this] {
        m_pages->setCurrentIndex(0);
        m_tree->setFocus();
    });
    connect(m_tree->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const qsizetype chosen = m_tree->selectionModel()->selectedRows().size();
        m_compareButton->setEnabled(chosen >= 2 && chosen <= CompareView::kMostFaces);
    });

    m_askSoon->setSingleShot(true);
    m_askSoon->setInterval(120);
    connect(m_askSoon, &QTimer::timeout, this, &FontListView::ask);
    connect(m_filter, &QLineEdit::textChanged, m_askSoon, qOverload<>(&QTimer::start));
    connect(m_bar, &FontFilterBar::changed, this, [this] {
        updateSample(); // one language chosen: its sample
        ask();
    });
    connect(m_size, &QSlider::valueChanged, this, [this](int points) {
        m_state.setListSize(points);
        updateSample();
    });
    connect(m_names, &QToolButton::toggled, this, &FontListView::updateSample);
    connect(&state, &AppState::previewTextChanged, this, &FontListView::updateSample);
    updateSample();
    // More fonts indexed, or (for Active Fonts) others activated: the answer is asked again.
    connect(&state, &AppState::catalogueChanged, this, [this](const CatalogueChange &change) {
        m_samples->forget(change.changed); // drawn from the file as it was
        m_changedFiles += change.changed;
        m_askSoon->start();
    });
    connect(&state, &AppState::activatedFontsChanged, this, [this] {
        if (m_kind == LibraryView::ActiveFonts || m_kind == LibraryView::Conflicts)
            m_askSoon->start();
    });
    connect(m_samples, &FontSampleCache::sampleReady, m_tree->viewport(), qOverload<>(&QWidget::update));
    connect(m_delegate, &FontListDelegate::activationClicked, this, &FontListView::toggle);
    connect(m_tree, &FontListTree::toggleRequested, this, &FontListView::toggle);
    connect(m_tree, &FontListTree::openRequested, this, &FontListView::open);
    connect(m_tree, &FontListTree::keepOnlyRequested, this, [this](const QModelIndex &index) {
        const QString path = index.data(FontListModel::PathRole).toString();
        const QString name = index.data(FontListModel::PostScriptRole).toString();
        if (path.isEmpty() || name.isEmpty())
            return;
        QList<FontNode> others;
        for (const QString &other : m_model->pathsWithPostScriptName(name)) {
            if (other != path)
                others.append(FontNode::fontFile(other));
        }
        m_state.keepOnlyActive(FontNode::fontFile(path), others);
    });
    ask();
}

FontQuery FontListView::currentQuery() const
{
    FontQuery query = queryFor(m_filter->text(), m_kind);
    m_bar->apply(query);
    return query;
}

QString FontListView::sampleText() const
{
    if (m_names->isChecked())
        return {};
    const QString language = m_bar->singleLanguage();
    if (!language.isEmpty()) {
        const QString sample = LanguageSamples::sampleFor(language);
        if (!sample.isEmpty())
            return sample;
    }
    return m_state.previewText();
}

void FontListView::updateSample()
{
    const int pixels = int(std::lround(m_size->value() * logicalDpiY() / 72.0));
    m_delegate->setSample(sampleText(), pixels);
    m_tree->doItemsLayout(); // rows take the new size
    m_tree->viewport()->update();
}

void FontListView::editSmartCollection(const QUuid &id, const QString &name, const FontQuery &query)
{
    m_editing = id;
    m_saveSmart->setText(tr("Save Filters to “%1”").arg(name));
    m_saveSmart->setAccessibleName(m_saveSmart->text());
    QString field = query.text;
    if (!query.requiredCharacters.isEmpty())
        field += (field.isEmpty() ? u"\""_s : u" \""_s) + query.requiredCharacters + u'"';
    {
        const QSignalBlocker blocker(m_filter);
        m_filter->setText(field);
    }
    m_bar->setQuery(query); // asks again
}

bool FontListView::isComparing() const
{
    return m_pages->currentWidget() == m_compare;
}

void FontListView::compareSelected()
{
    QList<CompareView::Face> faces;
    for (const QModelIndex &index : m_tree->selectionModel()->selectedRows()) {
        const QModelIndex family = index.parent().isValid() ? index.parent() : index;
        faces.append({index.data(FontListModel::PathRole).toString(), index.data(FontListModel::FaceIndexRole).toInt(),
                      index.parent().isValid() ? family.data().toString() + u' ' + index.data().toString()
                                               : family.data().toString()});
    }
    if (faces.size() < 2 || faces.size() > CompareView::kMostFaces)
        return;
    m_compare->setFaces(faces);
    m_pages->setCurrentWidget(m_compare);
    m_compare->setFocus();
}

void FontListView::setLibraryView(LibraryView::Kind kind)
{
    if (m_kind == kind)
        return;
    m_kind = kind;
    ask();
}

void FontListView::ask()
{
    m_askSoon->stop();
    m_querying = true;
    const FontQuery query = currentQuery();
    // Only the newest question's answer is shown: an older watcher goes with its answer.
    delete m_asking;
    m_asking = new QFutureWatcher<FontQueryAnswer>(this);
    connect(m_asking, &QFutureWatcherBase::finished, this, [this, watcher = m_asking] {
        const FontQueryAnswer answer = watcher->result();
        watcher->deleteLater();
        m_asking = nullptr;
        if (!answer.cancelled)
            answered(answer);
    });
    m_asked = query;
    m_askedKind = m_kind;
    m_asking->setFuture(m_state.askFonts(query));
}

void FontListView::answered(const FontQueryAnswer &answer)
{
    m_querying = false;
    const QLocale locale;
    const qsizetype families = answer.families.size(), faces = answer.faceCount();
    m_count->setText((families == 1 ? tr("1 family") : tr("%1 families").arg(locale.toString(families))) + u", "_s
                     + (faces == 1 ? tr("1 face") : tr("%1 faces").arg(locale.toString(faces))));
    m_bar->setCounts(answer);
    // The same question again (the library changed under it): the user's place stays,
    // the family at the top included.
    const bool samePlace = m_shown && m_shown->first == m_asked && m_shown->second == m_askedKind;
    m_shown = {m_asked, m_askedKind};
    const QPersistentModelIndex top = m_tree->indexAt(QPoint(1, 1));
    const int topOffset = top.isValid() ? m_tree->visualRect(top).top() : 0;
    // Duplicates and conflicts are told apart by their files: every face row shows its
    // file, and every family is open.
    const bool byFile = m_askedKind == LibraryView::Duplicates || m_askedKind == LibraryView::Conflicts;
    m_model->setShowsFiles(byFile);
    m_tree->setOffersKeepOne(byFile);
    m_model->setAnswer(answer, samePlace, std::exchange(m_changedFiles, {}));
    if (byFile)
        m_tree->expandAll();
    if (samePlace && top.isValid()) {
        m_tree->scrollTo(top, QAbstractItemView::PositionAtTop);
        if (m_tree->verticalScrollMode() == QAbstractItemView::ScrollPerPixel) // a row partly scrolled off stays so
            m_tree->verticalScrollBar()->setValue(m_tree->verticalScrollBar()->value() - topOffset);
    }
}

void FontListView::toggle(const QModelIndex &index)
{
    const QStringList paths = m_model->pathsOf(index);
    if (paths.isEmpty())
        return;
    QList<FontNode> fonts;
    for (const QString &path : paths)
        fonts.append(FontNode::fontFile(path));
    const bool activate = !isOn(m_model->activation(index));
    m_state.setActivation(fonts, activate);
}

void FontListView::open(const QModelIndex &index)
{
    const QString path = index.data(FontListModel::PathRole).toString();
    if (!path.isEmpty())
        m_state.navigateToMember(CollectionMember{path, false});
}

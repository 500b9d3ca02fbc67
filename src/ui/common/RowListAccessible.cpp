// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/common/RowListAccessible.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QHash>
#include <QItemSelectionModel>
#include <QPersistentModelIndex>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *kEnabled = "morvaneRowList";

class RowAccessible : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    RowAccessible(QAbstractItemView *view, const QModelIndex &index) : m_view(view), m_index(index) {}

    bool isValid() const override { return m_view && m_index.isValid(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override
    {
        const QAbstractItemView *view = m_view.data();
        return view ? view->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_view.data()); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString &) override {}

    QString text(QAccessible::Text kind) const override
    {
        if (!isValid())
            return {};
        switch (kind) {
        case QAccessible::Name: {
            const QString name = m_index.data(Qt::AccessibleTextRole).toString();
            return name.isEmpty() ? m_index.data(Qt::DisplayRole).toString() : name;
        }
        case QAccessible::Description:
            return m_index.data(Qt::AccessibleDescriptionRole).toString();
        default:
            return {};
        }
    }

    QRect rect() const override
    {
        QAbstractItemView *view = m_view.data();
        if (!view || !m_index.isValid())
            return {};
        const QRect row = view->visualRect(m_index);
        return QRect(view->viewport()->mapToGlobal(row.topLeft()), row.size());
    }

    QAccessible::State state() const override
    {
        QAccessible::State st;
        QAbstractItemView *view = m_view.data();
        if (!view || !m_index.isValid()) {
            st.invalid = true;
            return st;
        }
        const Qt::ItemFlags flags = m_index.flags();
        st.selectable = flags & Qt::ItemIsSelectable;
        st.focusable = true;
        const QItemSelectionModel *selection = view->selectionModel();
        st.selected = selection && selection->isSelected(m_index);
        st.focused = view->hasFocus() && view->currentIndex() == m_index;
        st.invisible = !view->viewport()->rect().intersects(view->visualRect(m_index));
        const QVariant check = m_index.data(Qt::CheckStateRole);
        if ((flags & Qt::ItemIsUserCheckable) && check.isValid()) {
            st.checkable = true;
            const auto value = static_cast<Qt::CheckState>(check.toInt());
            st.checked = value == Qt::Checked;
            st.checkStateMixed = value == Qt::PartiallyChecked;
        }
        if (m_index.data(RowListAccessible::ExpandableRole).toBool()) {
            st.expandable = true;
            st.expanded = st.selected; // a chosen folder is open in the next column
            st.collapsed = !st.expanded;
        }
        return st;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }

    QStringList actionNames() const override
    {
        QStringList names;
        if (state().checkable)
            names.append(toggleAction());
        names.append(pressAction());
        return names;
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

    void doAction(const QString &name) override
    {
        QAbstractItemView *view = m_view.data();
        if (!view || !m_index.isValid())
            return;
        const QModelIndex index = m_index;
        if (name == toggleAction() && state().checkable) {
            QMetaObject::invokeMethod(view->itemDelegateForIndex(index), "activationClicked", Q_ARG(QModelIndex, index));
        } else if (name == pressAction()) {
            // As a click: the list's own way when it has one, else its selection.
            view->scrollTo(index);
            if (!QMetaObject::invokeMethod(view, "chooseRow", Q_ARG(QModelIndex, index)))
                view->setCurrentIndex(index);
        }
    }

    int row() const { return m_index.row(); }

private:
    QPointer<QAbstractItemView> m_view;
    QPersistentModelIndex m_index;
};

class RowListAccessibleView : public QAccessibleWidget
{
public:
    explicit RowListAccessibleView(QAbstractItemView *view) : QAccessibleWidget(view, QAccessible::List) {}
    ~RowListAccessibleView() override
    {
        for (const QMetaObject::Connection &connection : std::as_const(m_connections))
            QObject::disconnect(connection);
        forgetRows();
    }

    QAbstractItemView *view() const { return static_cast<QAbstractItemView *>(widget()); }

    int childCount() const override
    {
        const QAbstractItemModel *model = view()->model();
        return model ? model->rowCount(view()->rootIndex()) : 0;
    }

    QAccessibleInterface *child(int at) const override
    {
        watchModel();
        if (at < 0 || at >= childCount())
            return nullptr;
        const auto known = m_rows.constFind(at);
        if (known != m_rows.cend())
            return QAccessible::accessibleInterface(*known);
        auto *row = new RowAccessible(view(), view()->model()->index(at, 0, view()->rootIndex()));
        m_rows.insert(at, QAccessible::registerAccessibleInterface(row));
        return row;
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *row = dynamic_cast<const RowAccessible *>(child);
        return row && row->isValid() ? row->row() : -1;
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QModelIndex index = view()->indexAt(view()->viewport()->mapFromGlobal(QPoint(x, y)));
        return index.isValid() ? child(index.row()) : nullptr;
    }

    QAccessibleInterface *focusChild() const override
    {
        const QModelIndex current = view()->currentIndex();
        return view()->hasFocus() && current.isValid() ? child(current.row()) : nullptr;
    }

private:
    // Rows are known by their number: whenever rows come, go or move, the old answers go.
    void watchModel() const
    {
        QAbstractItemModel *model = view()->model();
        if (model == m_model)
            return;
        for (const QMetaObject::Connection &connection : std::as_const(m_connections))
            QObject::disconnect(connection);
        m_connections.clear();
        forgetRows();
        m_model = model;
        if (!model)
            return;
        const auto forget = [this] { forgetRows(); };
        m_connections = {QObject::connect(model, &QAbstractItemModel::layoutChanged, view(), forget),
                         QObject::connect(model, &QAbstractItemModel::rowsInserted, view(), forget),
                         QObject::connect(model, &QAbstractItemModel::rowsRemoved, view(), forget),
                         QObject::connect(model, &QAbstractItemModel::rowsMoved, view(), forget),
                         QObject::connect(model, &QAbstractItemModel::modelReset, view(), forget)};
    }

    void forgetRows() const
    {
        for (const QAccessible::Id id : std::as_const(m_rows))
            QAccessible::deleteAccessibleInterface(id);
        m_rows.clear();
    }

    mutable QHash<int, QAccessible::Id> m_rows;
    mutable QPointer<QAbstractItemModel> m_model;
    mutable QList<QMetaObject::Connection> m_connections;
};

QAccessibleInterface *rowListFactory(const QString &, QObject *object)
{
    auto *view = qobject_cast<QAbstractItemView *>(object);
    if (view && view->property(kEnabled).toBool())
        return new RowListAccessibleView(view);
    return nullptr;
}

} // namespace

namespace RowListAccessible {

void enable(QAbstractItemView *view)
{
    static const bool installed = [] {
        QAccessible::installFactory(rowListFactory);
        return true;
    }();
    Q_UNUSED(installed);
    view->setProperty(kEnabled, true);
}

} // namespace RowListAccessible

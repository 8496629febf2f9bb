#include "tools/rowcopy.h"

#include "gui/lineicon.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeySequence>
#include <QStringList>

#include <algorithm>

namespace {

/// Top to bottom, also across the branches of a tree.
QModelIndexList selectedRows(const QAbstractItemView &view)
{
    QModelIndexList rows = view.selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [&](const QModelIndex &a, const QModelIndex &b) {
        return view.visualRect(a).top() < view.visualRect(b).top();
    });
    return rows;
}

void copyRows(const QAbstractItemView &view)
{
    QStringList lines;
    for (const QModelIndex &row : selectedRows(view)) {
        QStringList cells;
        for (int column = 0; column < view.model()->columnCount(row.parent()); ++column)
            cells.append(row.siblingAtColumn(column).data().toString());
        lines.append(cells.join(u'\t'));
    }
    if (!lines.isEmpty())
        QApplication::clipboard()->setText(lines.join(u'\n'));
}

} // namespace

namespace RowCopy {

void enable(QAbstractItemView &view)
{
    auto *action =
        new QAction(LineIcon::icon(QStringLiteral("copy")), QStringLiteral("Copy"), &view);
    action->setShortcut(QKeySequence::Copy);
    action->setShortcutContext(Qt::WidgetShortcut);
    QObject::connect(action, &QAction::triggered, &view, [&view] { copyRows(view); });
    view.addAction(action);
    view.setContextMenuPolicy(Qt::ActionsContextMenu);
}

} // namespace RowCopy

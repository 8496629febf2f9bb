#pragma once

class QAbstractItemView;

/// Copying of rows out of lists and tables.
namespace RowCopy {

/// Gives the view the action "Copy" (the platform's shortcut, and a context menu): the selected
/// rows as text, columns separated by tabs, in the order in which they are shown.
void enable(QAbstractItemView &view);

} // namespace RowCopy

#include "odeditor/renamedelegate.h"

#include "canopen/helper.h"

#include <QLineEdit>
#include <QTreeWidget>

namespace {

TreeRow rowOf(const QModelIndex &index)
{
    const auto *view = qobject_cast<const QTreeWidget *>(index.model()->QObject::parent());
    return view != nullptr ? DictionaryTree::rowOf(view->itemFromIndex(index)) : TreeRow();
}

} // namespace

void RenameDelegate::setNames(const Read &read, const Write &write)
{
    m_read = read;
    m_write = write;
}

QWidget *RenameDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                      const QModelIndex &index) const
{
    if (m_read(rowOf(index)).isNull())
        return nullptr;
    auto *editor = new QLineEdit(parent);
    editor->setAutoFillBackground(true);
    editor->setAccessibleName(tr("Name"));
    return editor;
}

void RenameDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *field = qobject_cast<QLineEdit *>(editor);
    // Only once: a row that is shown anew takes nothing from who types.
    if (field == nullptr || field->property("filled").toBool())
        return;
    field->setProperty("filled", true);
    field->setText(m_read(rowOf(index)));
    field->selectAll();
}

void RenameDelegate::setModelData(QWidget *editor, QAbstractItemModel *,
                                  const QModelIndex &index) const
{
    auto *field = qobject_cast<QLineEdit *>(editor);
    if (field == nullptr || !field->isModified())
        return;
    field->setModified(false); // a box that the change brings up ends the editing a second time
    m_write(rowOf(index), Helper::onOneLine(field->text()));
}

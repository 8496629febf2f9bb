#pragma once

#include "odeditor/dictionarytree.h"

#include <QStyledItemDelegate>

#include <functional>

/// Has the user type another name into a row, without the number that stands before it.
class RenameDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using Read = std::function<QString(const TreeRow &row)>;
    using Write = std::function<void(const TreeRow &row, const QString &name)>;

    using QStyledItemDelegate::QStyledItemDelegate;

    /// `read` gives a null text for a row that the user may not rename.
    void setNames(const Read &read, const Write &write);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;

private:
    Read m_read;
    Write m_write;
};

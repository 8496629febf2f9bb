#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

#include <functional>
#include <optional>

class QComboBox;

/// Editors of table cells: a combo box where there is a choice, else a line edit. What a line edit
/// must not hold can't be entered: it stays open, with the reason beside it, and leaving it keeps
/// the former text.
class WidgetDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    struct Range
    {
        int low = 0;
        int high = 0;
    };

    /// How a cell is edited.
    struct Cell
    {
        /// Fills the box and selects what is chosen; the choice goes to the item's `Qt::UserRole`.
        std::function<void(QComboBox &)> fill = {};
        /// What is wrong with a text; empty if nothing.
        std::function<QString(const QString &)> fault = {};
        /// A decimal number.
        std::optional<Range> numbers = std::nullopt;
    };
    using Describe = std::function<Cell(const QModelIndex &)>;

    explicit WidgetDelegate(Describe describe, QObject *parent = nullptr);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;

    /// Takes over what is being typed, as leaving the cell would.
    void commitOpenEditor();

signals:
    /// What was typed can't be taken.
    void refused(const QString &reason) const;

private:
    void offer(QComboBox *box, const Cell &cell) const;
    void restrict(QLineEdit *edit, const Cell &cell) const;

    Describe m_describe;
    mutable QPointer<QWidget> m_editor;
};

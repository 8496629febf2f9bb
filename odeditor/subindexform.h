#pragma once

#include "dictionary/editrights.h"
#include "gui/basetreeform.h"

class AttributeTable;
class MetaDataForm;
class QLabel;
class QPlainTextEdit;
class QTabWidget;
class QTableWidgetItem;

/// The pane of one subindex. It holds a copy of the record and writes what its user has changed
/// when the selection moves on, in one step of undo.
class SubIndexForm : public BaseTreeForm
{
    Q_OBJECT

public:
    explicit SubIndexForm(QWidget *parent = nullptr);

    /// `open` with the parts of its context one by one.
    void init(quint8 line, quint16 index, quint8 subindex,
              const std::shared_ptr<ObjectDataBase> &store, bool canEdit, bool expert,
              UndoManager *undo);

    void saveData() override;
    void updateData() override;

public slots:
    void on_btnResetChanges_clicked();
    /// A data type was chosen, by its place in the box.
    void dataTypeChanged(int index);
    void limitCheckChanged();
    void displayContextMenuImplementation(const QPoint &pos);
    void displayContextMenuAttributes(const QPoint &pos);
    /// "Size in Bytes" becomes that of the default value.
    void adjustSize();
    /// Converts the value under the cursor.
    void convertHexDec();
    void on_tblAttributes_itemChanged(QTableWidgetItem *item);
    void implementationChanged();

private:
    using Record = ObjectDataBase::SUBINDEX_DATA_T;

    void buildWidgets();
    void connectTable(AttributeTable *table);
    void showAll();
    void showTable(AttributeTable *table);
    [[nodiscard]] bool isRowShown(const AttributeTable *table, int row) const;
    [[nodiscard]] QString refusal(SubIndexField field) const;
    [[nodiscard]] SubIndexField fieldOf(const AttributeTable *table, int row) const;
    [[nodiscard]] int rowOf(const AttributeTable *table, SubIndexField field) const;
    void takeItem(AttributeTable *table, QTableWidgetItem *item);
    void setField(SubIndexField field, const QVariant &value);
    void tell(const QString &text);

    ObjectDataBase::INDEX_DATA_T m_object;
    Record m_shown;  ///< as it was read
    Record m_record; ///< with what the user has changed
    bool m_isLoaded = false;
    bool m_isFilling = false;

    QTabWidget *m_tabs;
    AttributeTable *m_attributes;
    AttributeTable *m_implementation;
    QLabel *m_hint;
    QPlainTextEdit *m_description;
    MetaDataForm *m_metaData = nullptr; ///< if the user has switched it on
};

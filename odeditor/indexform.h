#pragma once

#include "dictionary/editrights.h"
#include "gui/basetreeform.h"

#include <QMap>

class AttributeTable;
class BaseObjectMask;
class MetaDataForm;
class OverviewTable;
class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPoint;
class QPushButton;
class QTabWidget;
class QTableWidgetItem;

/// The pane of one object, with the table of its subindices. It holds copies of their records and
/// writes what its user has changed when the selection moves on, in one step of undo.
class IndexForm : public BaseTreeForm
{
    Q_OBJECT

public:
    explicit IndexForm(QWidget *parent = nullptr);

    /// `open` with the parts of its context one by one.
    void init(quint8 line, quint16 index, const std::shared_ptr<ObjectDataBase> &store,
              bool canEdit, bool expert, UndoManager *undo);

    void saveData() override;
    void updateData() override;

public slots:
    void on_btnAddSubIndex_clicked();
    void on_btnResetChanges_2_clicked();
    /// Gives the subindices the default values of the library's object.
    void on_btnResetDefaults_clicked();
    void on_btnExpertEditing_clicked();
    void on_btnReset_clicked();
    void on_cbFocusOverview_clicked(bool checked);
    void on_tblOverview_currentCellChanged(int row, int column, int formerRow, int formerColumn);
    void on_tblOverview_cellChanged(int row, int column);
    void on_tblOverview_customContextMenuRequested(const QPoint &pos);
    /// "Copy values from 1st row to other rows" in the current column.
    void copyValuesInOverview();
    void on_tblAttributes_2_itemChanged(QTableWidgetItem *item);

private:
    using Record = ObjectDataBase::SUBINDEX_DATA_T;
    using IndexRecord = ObjectDataBase::INDEX_DATA_T;

    QWidget *buildAttributes();
    QWidget *buildOverview();
    void addMask();
    void chooseFirstTab();
    void handleTab();
    void fillOverview();
    void showAll();
    void showRow(int row);
    void showChanges();
    [[nodiscard]] EditRights rights() const;
    [[nodiscard]] QString refusal(ObjectField field) const;
    [[nodiscard]] QString textOf(ObjectField field) const;
    [[nodiscard]] quint16 dataType() const;
    void choose(ObjectField field, const QVariant &value);
    void setText(ObjectField field, const QString &text);
    /// False if the user thinks better of losing subindices.
    [[nodiscard]] bool confirmLoss(quint32 objectType);
    [[nodiscard]] QMap<quint8, Record> changedRecords() const;
    void tell(const QString &text);

    IndexRecord m_shown; ///< as it was read
    IndexRecord m_data;  ///< with what the user has changed
    Record m_shownZero;  ///< subindex 0
    Record m_zero;
    bool m_hasZero = false;
    qsizetype m_subCount = 0;
    bool m_isLoaded = false;
    bool m_isFilling = false;
    bool m_isOverviewFilled = false;

    QTabWidget *m_tabs;
    AttributeTable *m_attributes = nullptr;
    QPushButton *m_addSubIndex = nullptr;
    QPushButton *m_resetChanges = nullptr;
    QPushButton *m_resetDefaults = nullptr;
    QPlainTextEdit *m_description;
    OverviewTable *m_overview = nullptr;
    QPushButton *m_expertEditing = nullptr;
    QPushButton *m_reset = nullptr;
    QLabel *m_changes = nullptr;
    MetaDataForm *m_metaData = nullptr; ///< if the user has switched it on
    BaseObjectMask *m_mask = nullptr;   ///< if the object has one
};

#pragma once

#include "gui/basetreeform.h"

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

/// The pane of a segment: new objects and those of the last imported file. It has nothing to save;
/// what is added, the page that owns it does.
class ManufacturerSegmentForm : public BaseTreeForm
{
    Q_OBJECT

public:
    explicit ManufacturerSegmentForm(QWidget *parent = nullptr);

    void saveData() override {}
    void updateData() override;

signals:
    /// `objectType` is "Variable", "Record" or "Array".
    void addWanted(quint32 index, const QString &objectType);
    void addImportedWanted(quint16 index);
    void importWanted();

private:
    void makeNewObject();
    void makeImported();
    void add();
    void addSelected();

    QLineEdit *m_number;
    QComboBox *m_objectType;
    QLabel *m_hint;
    QGroupBox *m_imported;
    QLabel *m_file;
    QComboBox *m_objects;
    QPushButton *m_addImported;
};

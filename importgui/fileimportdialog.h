#pragma once

#include "import/fileimport.h"
#include "import/objectcargo.h"

#include <QDialog>

#include <memory>

class ImportObjectFilter;
class ImportObjectModel;
class ObjectDataBase;

namespace Ui {
class FileImportDialog;
}

/// Imports objects of a file of the user's choice: reads it, lists the objects, and takes the
/// chosen ones over into a line of the project. Stays open, so that several imports can follow each
/// other.
///
/// The window is alive while a file is read or objects are taken over; closing it then cancels that
/// first. The file and the range of indices are remembered in the user settings.
class FileImportDialog : public QDialog
{
    Q_OBJECT

public:
    /// The stores outlive the dialog. What is read goes into the staging line of `scratch`.
    FileImportDialog(ObjectDataBase &project, quint8 line, ObjectDataBase &scratch,
                     QWidget *parent = nullptr);
    ~FileImportDialog() override;

public slots:
    void reject() override;

signals:
    /// The project is about to change.
    void aboutToChange();
    /// Objects were taken over, with a sentence that says what was done.
    void imported(QString resultText);
    /// What an importer mended or passed over, each as "file:line: text".
    void messagesRead(QStringList messages);

private:
    void decorate();
    void fillSources();
    void connectWidgets();
    void selectFile();
    void readFile();
    void clearList();
    void showReadResult(FileImport::Outcome outcome);
    void import();
    void showImportResult(FileImport::Outcome outcome);
    void showMessages();
    void showError(const QString &title, const QString &text);
    void selectSubIndices();
    void selectTarget();
    void toggleSelectedRows();
    void updateSegment();
    void updateState();
    void fileChanged();
    [[nodiscard]] QString file() const;
    [[nodiscard]] bool readRange(FileImportOptions &options);
    [[nodiscard]] ImportedImplementation implementation() const;
    [[nodiscard]] int currentRow() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

    std::unique_ptr<Ui::FileImportDialog> ui;
    ObjectDataBase &m_project;
    quint8 m_line;
    ObjectCargo m_cargo;
    FileImport *m_import; ///< child of the dialog
    ImportObjectModel *m_model;
    ImportObjectFilter *m_filter;
    QString m_readFile; ///< what the list shows; empty if nothing was read
};

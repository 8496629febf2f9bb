// What comes into a project from files, and what goes out into a file of the user's choice.

#include "app/documentexport.h"
#include "app/generatoroutputform.h"
#include "app/pagetable.h"
#include "app/vxmmainwindow.h"
#include "canopen/linetype.h"
#include "gui/guihelper.h"
#include "import/codbimporter.h"
#include "importgui/fileimportdialog.h"
#include "resources/codb/standardprofiles.h"
#include "store/undomanager.h"
#include "store/usersettings.h"

#include <QApplication>
#include <QDir>
#include <QSignalBlocker>
#include <QStatusBar>

namespace {
constexpr int messageMilliseconds = 5000;
}

/// Whether the current line has objects; a box tells if it hasn't.
bool VxmMainWindow::hasDictionary()
{
    const PageContext context = pageContext();
    const LineType &type = LineType::of(context.lineType);
    if (type.hasCANopen || (type.hasJ1939 && context.hasSdoServer))
        return true;
    showError(tr("Line %1 has no CANopen object dictionary.").arg(m_line));
    return false;
}

void VxmMainWindow::on_action_Import_File_triggered()
{
    if (m_busy || m_library == nullptr || !hasDictionary())
        return;
    storePendingInput();
    // What it still reads would come between the objects of the file.
    m_libraryImporter.reset();
    FileImportDialog dialog(*m_database, m_line, *m_library, this);
    connect(&dialog, &FileImportDialog::aboutToChange, m_undoManager,
            &UndoManager::handleDebounceTimeout);
    connect(&dialog, &FileImportDialog::imported, this, [this](const QString &text) {
        statusBar()->showMessage(text, messageMilliseconds);
        m_outputForm->appendLogging(text);
    });
    connect(&dialog, &FileImportDialog::messagesRead, this, [this](const QStringList &messages) {
        for (const QString &message : messages)
            handleCheckError(message.toHtmlEscaped());
    });
    GuiHelper::execDialog(dialog);
    emit standardObjectsReady();
}

// --- The standard objects on offer --------------------------------------------------------------

void VxmMainWindow::on_actionLoad_CiA_301_triggered()
{
    offerProfile(StandardProfiles::communication, QStringLiteral("CiA 301"));
}

void VxmMainWindow::on_actionLoad_CiA_302_triggered()
{
    offerProfile(StandardProfiles::additional, QStringLiteral("CiA 302"));
}

void VxmMainWindow::offerProfile(const QString &profile, const QString &label)
{
    if (m_busy)
        return;
    loadLibrary(profile);
    connect(
        this, &VxmMainWindow::standardObjectsReady, this,
        [this, label] {
            if (m_libraryImporter != nullptr && m_libraryImporter->errorString().isEmpty())
                statusBar()->showMessage(tr("The objects of %1 are on offer.").arg(label),
                                         messageMilliseconds);
        },
        Qt::SingleShotConnection);
}

// --- Documents ----------------------------------------------------------------------------------

void VxmMainWindow::on_action_EDS_File_triggered()
{
    exportDocument(DocumentExport::Kind::Eds);
}

void VxmMainWindow::on_action_XDD_File_triggered()
{
    exportDocument(DocumentExport::Kind::Xdd);
}

void VxmMainWindow::on_action_HTML_Documenation_triggered()
{
    exportDocument(DocumentExport::Kind::Html);
}

void VxmMainWindow::on_action_CSV_File_triggered()
{
    exportDocument(DocumentExport::Kind::Table);
}

void VxmMainWindow::on_action_Text_Documentation_triggered()
{
    exportDocument(DocumentExport::Kind::Text);
}

/// Writes a document of the current line to a file that the user names.
void VxmMainWindow::exportDocument(DocumentExport::Kind kind)
{
    if (m_busy || !hasDictionary())
        return;
    storePendingInput();
    const QString folder =
        m_projectDirectory.isEmpty()
            ? UserSettings::general(QStringLiteral("projectpath"), QDir::homePath()).toString()
            : m_projectDirectory;
    const QString name =
        DocumentExport::fileName(kind, m_projectBaseName, m_line, projectLines().size() > 1);
    const QString path =
        GuiHelper::saveFileName(this, DocumentExport::title(kind), QDir(folder).filePath(name),
                                DocumentExport::filters(kind));
    if (path.isEmpty())
        return;
    setBusy(true);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QString error;
    {
        const UndoManager::Suspension suspension(*m_undoManager);
        const QSignalBlocker blocker(m_database.get());
        error = DocumentExport::write(kind, {m_database.get(), m_line, m_projectBaseName, path});
    }
    QApplication::restoreOverrideCursor();
    setBusy(false);
    if (!error.isEmpty()) {
        showError(error);
        return;
    }
    const QString done = tr("%1 was written.").arg(QDir::toNativeSeparators(path));
    statusBar()->showMessage(done, messageMilliseconds);
    m_outputForm->appendLogging(done.toHtmlEscaped());
}

// The slots of the window: each forwards to the controller that knows.

#include "app/editcontroller.h"
#include "app/generationcontroller.h"
#include "app/generatoroutputform.h"
#include "app/helpcontroller.h"
#include "app/importcontroller.h"
#include "app/latestart.h"
#include "app/linecontroller.h"
#include "app/projectcontroller.h"
#include "app/undocontroller.h"
#include "app/vxmmainwindow.h"
#include "app/windowgeometry.h"
#include "canopen/indextext.h"
#include "gui/guihelper.h"
#include "odeditor/objectdictionaryform.h"
#include "resources/codb/standardprofiles.h"
#include "ui_vxmmainwindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QMimeData>

namespace {

constexpr int settleMilliseconds = 200;

QString objectText(quint16 index)
{
    return QLatin1String("Object ") + IndexText::hex(index);
}

} // namespace

// --- Projects -----------------------------------------------------------------------------------

void VxmMainWindow::on_actionNew_Project_triggered()
{
    if (closeCheck())
        newProject();
}

void VxmMainWindow::newProject()
{
    m_projects->newProject(ProjectController::ProtocolQuestion::Ask);
}

void VxmMainWindow::newProjectUnasked()
{
    m_projects->newProject(ProjectController::ProtocolQuestion::Skip);
}

void VxmMainWindow::on_actionOpen_Project_triggered()
{
    m_projects->openProject();
}

bool VxmMainWindow::openProject(const QString &path)
{
    return m_projects->openProject(path);
}

void VxmMainWindow::openRecent()
{
    if (const auto *action = qobject_cast<QAction *>(sender()))
        m_projects->replaceBy(action->data().toString());
}

void VxmMainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (!m_busy && !ProjectController::droppedProject(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void VxmMainWindow::dropEvent(QDropEvent *event)
{
    const QString path = ProjectController::droppedProject(*event->mimeData());
    if (path.isEmpty() || m_busy)
        return;
    event->acceptProposedAction();
    m_projects->replaceBy(path);
}

void VxmMainWindow::finishOpenProcedure()
{
    setActionEnabled("action_Import_File", true);
    showStatus(QStringLiteral("%1 is open.").arg(projectBaseName()));
    if (isVisible() && m_currentPage == m_outputForm && ui->toolBox->indexOf(m_dictionaryForm) >= 0)
        ui->toolBox->setCurrentWidget(m_dictionaryForm);
    if (isVisible() && m_currentPage != nullptr)
        m_currentPage->setFocus(Qt::OtherFocusReason);
}

void VxmMainWindow::on_actionSave_Project_triggered()
{
    m_projects->save();
}

void VxmMainWindow::on_actionSave_Project_as_triggered()
{
    m_projects->saveAs();
}

bool VxmMainWindow::closeCheck()
{
    return m_projects->closeCheck();
}

void VxmMainWindow::on_actionClose_Project_triggered()
{
    if (closeCheck())
        newProjectUnasked();
}

QString VxmMainWindow::projectDirectory() const
{
    return m_session->folder();
}

QString VxmMainWindow::projectBaseName() const
{
    return m_session->baseName();
}

void VxmMainWindow::setNetworkToolMode()
{
    m_projects->setNetworkToolMode();
}

void VxmMainWindow::doThingsAfterStartup()
{
    setActionEnabled("action_Import_File", true);
    bringOntoScreen();
    if (m_line != 0)
        selectLine(0);
    if (m_currentPage != nullptr)
        m_currentPage->setFocus(Qt::OtherFocusReason);
}

void VxmMainWindow::doThingsAfter1Second()
{
    LateStart::run(*this);
}

void VxmMainWindow::on_actionQuit_triggered()
{
    close();
}

void VxmMainWindow::closeEvent(QCloseEvent *event)
{
    if (m_busy || !closeCheck()) {
        event->ignore();
        return;
    }
    WindowGeometry::save(*this);
    event->accept();
    QCoreApplication::exit(0);
}

// --- Lines and steps ----------------------------------------------------------------------------

void VxmMainWindow::handleLineChanged(int value)
{
    if (value >= 0)
        m_lines->choose(ui->mpSelectLine->itemData(value).toInt());
}

void VxmMainWindow::on_actionUndo_triggered()
{
    m_undo->undo();
}

void VxmMainWindow::on_actionRedo_triggered()
{
    m_undo->redo();
}

void VxmMainWindow::handleUndoLimitReached()
{
    showStatus(QStringLiteral("Undo limit reached - the oldest undo step has been dropped."));
}

void VxmMainWindow::on_actionCopy_triggered()
{
    m_editing->run(BaseMainForm::Copy);
}

void VxmMainWindow::on_actionCut_triggered()
{
    m_editing->run(BaseMainForm::Cut);
}

void VxmMainWindow::on_actionPaste_triggered()
{
    m_editing->run(BaseMainForm::Paste);
}

void VxmMainWindow::on_actionDelete_triggered()
{
    m_editing->run(BaseMainForm::Delete);
}

void VxmMainWindow::on_actionDuplicate_triggered()
{
    m_editing->run(BaseMainForm::Duplicate);
}

// --- Generation ---------------------------------------------------------------------------------

void VxmMainWindow::setAutoGeneration()
{
    m_generation->setAutomatic();
}

void VxmMainWindow::on_actionGenerate_Output_triggered()
{
    if (m_busy)
        return;
    setBusy(true);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    storePendingInput();
    ui->toolBox->setCurrentWidget(m_outputForm);
    QEventLoop settle;
    QTimer::singleShot(settleMilliseconds, &settle, &QEventLoop::quit);
    settle.exec();
    m_projects->warnOfUnappliedEnergyBus();
    m_generation->run();
}

void VxmMainWindow::generatorProgress(quint8 percent)
{
    m_generation->showProgress(percent);
}

void VxmMainWindow::generatorFinished(GeneratorMainHandler::GeneratorResult result)
{
    m_generation->finish(result);
}

void VxmMainWindow::projectCorrectionDone()
{
    m_generation->takeCorrections();
}

void VxmMainWindow::handleCheckError(QString errorString)
{
    appendOutput(errorString);
}

void VxmMainWindow::handleGotoIndex(quint8 line, quint16 index)
{
    if (showDictionaryPage(line, objectText(index)))
        m_dictionaryForm->gotoIndex(index);
}

void VxmMainWindow::handleGoToSubindex(quint8 line, quint16 index, quint8 subindex)
{
    const QString what = objectText(index) + QLatin1Char('-') + IndexText::subHex(subindex);
    if (showDictionaryPage(line, what))
        m_dictionaryForm->gotoSubIndex(index, subindex);
}

void VxmMainWindow::searchRequestSlot(const QString &searchString)
{
    showStatus(tr("Setting: %1").arg(searchString), 0);
}

// --- Imports and documents ----------------------------------------------------------------------

void VxmMainWindow::on_action_Import_File_triggered()
{
    m_imports->importFile();
}

void VxmMainWindow::importPogress(quint8 percent)
{
    m_imports->handleProgress(percent);
}

void VxmMainWindow::on_actionLoad_CiA_301_triggered()
{
    m_imports->offerProfile(StandardProfiles::communication, QStringLiteral("CiA 301"));
}

void VxmMainWindow::on_actionLoad_CiA_302_triggered()
{
    m_imports->offerProfile(StandardProfiles::additional, QStringLiteral("CiA 302"));
}

void VxmMainWindow::on_action_EDS_File_triggered()
{
    m_imports->exportDocument(DocumentExport::Kind::Eds);
}

void VxmMainWindow::on_action_XDD_File_triggered()
{
    m_imports->exportDocument(DocumentExport::Kind::Xdd);
}

void VxmMainWindow::on_action_HTML_Documenation_triggered()
{
    m_imports->exportDocument(DocumentExport::Kind::Html);
}

void VxmMainWindow::on_action_CSV_File_triggered()
{
    m_imports->exportDocument(DocumentExport::Kind::Table);
}

void VxmMainWindow::on_action_Text_Documentation_triggered()
{
    m_imports->exportDocument(DocumentExport::Kind::Text);
}

// --- Help ---------------------------------------------------------------------------------------

void VxmMainWindow::on_action_Hel_p_triggered()
{
    m_help->explain(m_currentPage);
}

void VxmMainWindow::on_action_Manual_triggered()
{
    m_help->openManual();
}

void VxmMainWindow::on_actionChangelog_triggered()
{
    m_help->openChangelog();
}

void VxmMainWindow::on_action_About_triggered()
{
    m_help->showAbout();
}

void VxmMainWindow::on_actionAbout_Qt_triggered()
{
    if (GuiHelper::isAttended())
        QApplication::aboutQt();
}

void VxmMainWindow::on_actionCheck_for_Updates_triggered()
{
    m_help->checkForUpdates();
}

void VxmMainWindow::newVersion(QString newVersionString, QString productCode, bool newerVersion)
{
    m_help->handleAnswer(newVersionString, productCode, newerVersion);
}

void VxmMainWindow::createFileViewerMenu()
{
    m_help->fillFileViewer(*ui->menuFile_Viewer);
}

#include "app/vxmmainwindow.h"
#include "canopen/indextext.h"

#include "app/generatoroutputform.h"
#include "app/guioutputhandler.h"
#include "app/guipostgenprogresshandler.h"
#include "app/latestart.h"
#include "app/pagetable.h"
#include "generation/plaintextoutputhandler.h"
#include "gui/basemainform.h"
#include "gui/guihelper.h"
#include "store/edition.h"
#include "store/undomanager.h"
#include "store/usersettings.h"
#include "ui_vxmmainwindow.h"

#include <QApplication>
#include <QEventLoop>
#include <QProgressDialog>
#include <QSignalBlocker>
#include <QStatusBar>

namespace {

constexpr int settleMilliseconds = 200;
constexpr int progressWidth = 320;
constexpr int messageMilliseconds = 5000;
const QString criticalErrors =
    QStringLiteral("The project contains critical errors. Check Generator Output window.");
const QString saveFirst =
    QStringLiteral("Save the project first: its files are generated into the folder of the "
                   "project file.");

} // namespace

void VxmMainWindow::doThingsAfter1Second()
{
    LateStart::run(*this);
}

void VxmMainWindow::makeGenerator()
{
    auto *pane = new GUIOutputHandler(m_outputForm, this);
    m_outputHandler = pane;
    if (m_options.hidden && m_options.generate) {
        // Nobody sees the pane of such a run: its messages go to the build log too.
        auto *log = new PlainTextOutputHandler(stdout, this);
        m_outputHandler = new PairedOutputHandler(*pane, *log, this);
    }
    m_postGenProgress = std::make_shared<GUIPostGenProgressHandler>();
    m_generator = new GeneratorMainHandler(*m_outputHandler, m_postGenProgress, this);
    // The generator speaks to its last moment.
    for (OutputHandlerBase *handler : findChildren<OutputHandlerBase *>(Qt::FindDirectChildrenOnly))
        handler->setParent(m_generator);
    m_generator->setQuiet(m_options.hidden);
    m_generator->setFromNetworkTool(m_options.networkTool);
    connect(m_generator, &GeneratorMainHandler::runProgress, this,
            &VxmMainWindow::generatorProgress);
    connect(m_generator, &GeneratorMainHandler::finished, this, &VxmMainWindow::generatorFinished);
    connect(m_generator, &GeneratorMainHandler::doneCorrection, this,
            &VxmMainWindow::projectCorrectionDone);
    connect(m_outputForm, &GeneratorOutputForm::gotoObject, this, &VxmMainWindow::handleGotoIndex);
    connect(m_outputForm, &GeneratorOutputForm::goToSubobj, this,
            &VxmMainWindow::handleGoToSubindex);
    connect(m_outputForm, &GeneratorOutputForm::searchRequest, this,
            &VxmMainWindow::searchRequestSlot);
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

    warnOfUnappliedEnergyBus();
    if (Edition::isEnergyBus())
        emit sigInstrumentFunctions(true);
    if (!m_options.hidden)
        showProgress();
    runGenerator();
}

void VxmMainWindow::runGenerator()
{
    if (UserSettings::general(QStringLiteral("clearlogging"), false).toBool())
        m_outputForm->clearLogging();
    const bool ignoreErrors = UserSettings::general(QStringLiteral("disablecheck"), false).toBool();
    const QString virtualObjects =
        m_database->getGeneralSetting(QStringLiteral("special_virtual_objects"));
    m_generator->setVirtualObjects(virtualObjects.toInt() != 0);
    const bool askForSrdo =
        m_database->getGeneralSetting(QStringLiteral("ask_gen_srdo")).toInt() != 0;
    m_generator->setGenerateSrdo(!askForSrdo ||
                                 askYesNo(QStringLiteral("Do you want to generate gen_srdo.c?")));
    m_generator->setProject(m_database, m_projectDirectory, m_projectBaseName);

    const UndoManager::Suspension suspension(*m_undoManager);
    const QSignalBlocker blocker(m_database.get());
    m_generator->generate(ignoreErrors);
}

void VxmMainWindow::showProgress()
{
    m_progress = new QProgressDialog(QStringLiteral("Generation in progress..."),
                                     QStringLiteral("Stop"), 0, 100, this);
    m_progress->setAttribute(Qt::WA_DeleteOnClose);
    m_progress->setWindowTitle(GuiHelper::boxTitle());
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setMinimumDuration(0);
    m_progress->setAutoReset(false);
    connect(m_progress, &QProgressDialog::canceled, m_generator,
            &GeneratorMainHandler::requestStop);
    m_postGenProgress->setDialog(m_progress);
    m_progress->setMinimumWidth(progressWidth);
    m_progress->adjustSize();
    m_progress->move(frameGeometry().center() - m_progress->rect().center());
    m_progress->show();
}

void VxmMainWindow::generatorProgress(quint8 percent)
{
    if (m_progress == nullptr || m_progress->wasCanceled())
        return;
    // Nobody knows how long the user's command takes.
    if (percent >= m_progress->maximum())
        m_progress->setRange(0, 0);
    m_progress->setValue(percent);
}

void VxmMainWindow::generatorFinished(GeneratorMainHandler::GeneratorResult result)
{
    delete m_progress;
    QApplication::restoreOverrideCursor();
    if (Edition::isEnergyBus())
        emit sigInstrumentFunctions(false);
    setBusy(false);
    if (result == GeneratorMainHandler::Completed) {
        const QString done = QStringLiteral("Generation of %1 completed.").arg(m_projectBaseName);
        m_outputHandler->outputMessage(done);
        statusBar()->showMessage(done, messageMilliseconds);
        return;
    }
    statusBar()->showMessage(tr("Generation of %1 failed.").arg(m_projectBaseName),
                             messageMilliseconds);
    const bool hasNoFolder =
        result == GeneratorMainHandler::FolderNotWritable && m_projectDirectory.isEmpty();
    const QString reason = hasNoFolder ? saveFirst : QString();
    if (hasNoFolder)
        m_outputHandler->outputMessage(saveFirst);
    showError(criticalErrors, reason);
}

void VxmMainWindow::projectCorrectionDone()
{
    // The pages did not hear of the corrections, since a run silences the store.
    setModified(true);
    m_correctedState = m_undoManager->currentState();
    m_savedState.clear();
    const bool isStored = !m_projectDirectory.isEmpty();
    if (!m_autoGeneration && isStored)
        on_actionSave_Project_triggered();
    if (m_options.save && isStored)
        on_actionSave_Project_triggered();
    if (m_autoGeneration)
        return;
    ObjectDataBase::ChangeSet reload;
    reload.kind = ObjectDataBase::ProjectReplaced;
    for (const Page &page : std::as_const(m_pages))
        page.form->updateDataSlot(reload);
}

// --- Links of the output pane -------------------------------------------------------------------

void VxmMainWindow::handleGotoIndex(quint8 line, quint16 index)
{
    showDictionaryPage(line, QLatin1String("Object ") + IndexText::hex(index));
}

void VxmMainWindow::handleGoToSubindex(quint8 line, quint16 index, quint8 subindex)
{
    showDictionaryPage(line, QLatin1String("Object ") + IndexText::hex(index) + QLatin1Char('-') +
                                 IndexText::subHex(subindex));
}

/// Brings the line and its object dictionary to the front.
void VxmMainWindow::showDictionaryPage(quint8 line, const QString &what)
{
    if (m_busy)
        return;
    if (!projectLines().contains(line)) {
        statusBar()->showMessage(tr("The project has no line %1.").arg(line));
        return;
    }
    if (line != m_line) {
        storePendingInput();
        selectLine(line);
    }
    for (const Page &page : std::as_const(m_pages)) {
        if (page.factory->title == QLatin1String("CANopen Object Dictionary") &&
            ui->toolBox->indexOf(page.form) >= 0)
            ui->toolBox->setCurrentWidget(page.form);
    }
    statusBar()->showMessage(tr("%1 of line %2").arg(what).arg(line));
}

void VxmMainWindow::searchRequestSlot(const QString &searchString)
{
    statusBar()->showMessage(tr("Setting: %1").arg(searchString));
}

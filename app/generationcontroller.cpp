#include "app/generationcontroller.h"

#include "app/generatoroutputform.h"
#include "app/guioutputhandler.h"
#include "app/guipostgenprogresshandler.h"
#include "app/startoptions.h"
#include "app/windowcontext.h"
#include "generation/plaintextoutputhandler.h"
#include "gui/guihelper.h"
#include "session/projectsession.h"
#include "store/edition.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"
#include "store/storeguards.h"
#include "store/undomanager.h"
#include "store/usersettings.h"

#include <QApplication>
#include <QProgressDialog>

namespace {

constexpr int progressWidth = 320;
const QString criticalErrors =
    QStringLiteral("The project contains critical errors. Check Generator Output window.");
const QString saveFirst =
    QStringLiteral("Save the project first: its files are generated into the folder of the "
                   "project file.");

} // namespace

GenerationController::GenerationController(WindowContext &context, GeneratorOutputForm &outputForm)
    : m_context(context), m_outputForm(outputForm),
      m_postGenProgress(std::make_shared<GUIPostGenProgressHandler>())
{
    makeOutputHandler();
    m_generator = std::make_unique<GeneratorMainHandler>(*m_outputHandler, m_postGenProgress);
    // The generator speaks to its last moment.
    for (OutputHandlerBase *handler : findChildren<OutputHandlerBase *>(Qt::FindDirectChildrenOnly))
        handler->setParent(m_generator.get());
    m_generator->setQuiet(context.options().hidden);
    m_generator->setFromNetworkTool(context.options().networkTool);
    connect(m_generator.get(), &GeneratorMainHandler::runProgress, this,
            &GenerationController::progressed);
    connect(m_generator.get(), &GeneratorMainHandler::finished, this,
            &GenerationController::finished);
    connect(m_generator.get(), &GeneratorMainHandler::doneCorrection, this,
            &GenerationController::corrected);
}

GenerationController::~GenerationController() = default;

void GenerationController::makeOutputHandler()
{
    auto *pane = new GUIOutputHandler(&m_outputForm, this);
    m_outputHandler = pane;
    if (m_context.options().hidden && m_context.options().generate) {
        // Nobody sees the pane of such a run: its messages go to the build log too.
        auto *log = new PlainTextOutputHandler(stdout, this);
        m_outputHandler = new PairedOutputHandler(*pane, *log, this);
    }
}

void GenerationController::run()
{
    if (Edition::isEnergyBus())
        emit instrumentFunctions(true);
    if (!m_context.options().hidden)
        makeProgressDialog();
    generate();
}

void GenerationController::generate()
{
    if (UserSettings::general(QStringLiteral("clearlogging"), false).toBool())
        m_outputForm.clearLogging();
    const bool ignoreErrors = UserSettings::general(QStringLiteral("disablecheck"), false).toBool();
    ProjectSession &session = m_context.session();
    const ProjectSettings settings(session.store());
    m_generator->setVirtualObjects(settings.decimal("special_virtual_objects") != 0);
    m_generator->setGenerateSrdo(
        settings.decimal("ask_gen_srdo") == 0 ||
        m_context.askYesNo(QStringLiteral("Do you want to generate gen_srdo.c?")));
    m_generator->setProject(session.sharedStore(), session.folder(), session.baseName());

    const UndoManager::Suspension suspension(session.undo());
    const StoreSilence silence(session.store());
    m_generator->generate(ignoreErrors);
}

void GenerationController::makeProgressDialog()
{
    QWidget *window = m_context.widget();
    m_progress = new QProgressDialog(QStringLiteral("Generation in progress..."),
                                     QStringLiteral("Stop"), 0, 100, window);
    m_progress->setAttribute(Qt::WA_DeleteOnClose);
    m_progress->setWindowTitle(GuiHelper::boxTitle());
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setMinimumDuration(0);
    m_progress->setAutoReset(false);
    connect(m_progress, &QProgressDialog::canceled, m_generator.get(),
            &GeneratorMainHandler::requestStop);
    m_postGenProgress->setDialog(m_progress);
    m_progress->setMinimumWidth(progressWidth);
    m_progress->adjustSize();
    m_progress->move(window->frameGeometry().center() - m_progress->rect().center());
    m_progress->show();
}

void GenerationController::showProgress(quint8 percent)
{
    if (m_progress == nullptr || m_progress->wasCanceled())
        return;
    // Nobody knows how long the user's command takes.
    if (percent >= m_progress->maximum())
        m_progress->setRange(0, 0);
    m_progress->setValue(percent);
}

void GenerationController::finish(GeneratorMainHandler::GeneratorResult result)
{
    delete m_progress;
    QApplication::restoreOverrideCursor();
    if (Edition::isEnergyBus())
        emit instrumentFunctions(false);
    m_context.setBusy(false);
    const ProjectSession &session = m_context.session();
    if (result == GeneratorMainHandler::Completed) {
        const QString done = QStringLiteral("Generation of %1 completed.").arg(session.baseName());
        m_outputHandler->outputMessage(done);
        m_context.showStatus(done);
        return;
    }
    m_context.showStatus(tr("Generation of %1 failed.").arg(session.baseName()));
    const bool hasNoFolder =
        result == GeneratorMainHandler::FolderNotWritable && session.folder().isEmpty();
    if (hasNoFolder)
        m_outputHandler->outputMessage(saveFirst);
    m_context.showError(criticalErrors, hasNoFolder ? saveFirst : QString());
}

void GenerationController::takeCorrections()
{
    // The pages did not hear of the corrections, since a run silences the store.
    m_context.setModified(true);
    m_context.session().noteCorrection();
    const bool isStored = !m_context.session().filePath().isEmpty();
    if (!m_automatic && isStored)
        emit saveWanted();
    if (m_context.options().save && isStored)
        emit saveWanted();
    if (!m_automatic)
        emit reloadWanted();
}

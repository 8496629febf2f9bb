#include "generation/postgenprocessor.h"

#include "canopen/helper.h"
#include "generation/edscheckerwrapper.h"
#include "generation/postgenprogresshandler.h"
#include "generators/base/outputhandlerbase.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>

#include <array>

namespace {

constexpr int startMilliseconds = 30000;
constexpr int terminateMilliseconds = 100;
/// Lines from here on belong to no device.
constexpr quint8 firstReservedLine = 254;
const QString cancelText = QStringLiteral("Cancel process");
const QString checkerText = QStringLiteral("EDS Checker running");

/// The files that a compiler or its project reads; documents keep the line ends of their format.
constexpr std::array convertedFiles{
    "gen_define.h",         "gen_indication.h", "gen_indices.h", "gen_extern_decl.h",
    "gen_var_decl.h",       "gen_var_decl.c",   "gen_srdo.c",    "gen_sdg.c",
    "gen_objdict.c",        "gen_vobjdict.c",   "gen_pgn.c",     "gen_mp.c",
    "gen_rawcan.c",         "gen_uds.c",        "gen_user.h",    "gen_define.props",
    "Directory.Build.props"};

/// Keeps a command alive that nobody waits for: a process that is destroyed ends its program.
void release(const std::shared_ptr<QProcess> &process)
{
    static auto *const released = new QList<std::shared_ptr<QProcess>>;
    released->append(process);
}

} // namespace

PostGenProcessor::PostGenProcessor(OutputHandlerBase &output,
                                   const std::shared_ptr<PostGenProgressHandler> &progress,
                                   QObject *parent)
    : QObject(parent), m_output(output), m_progress(progress),
      m_process(std::make_shared<QProcess>())
{
    connect(m_process.get(), &QProcess::finished, this, &PostGenProcessor::postGenProcessFinished);
    connect(m_process.get(), &QProcess::readyReadStandardError, this,
            &PostGenProcessor::postGenProcessReadyReadStandardError);
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this,
            &PostGenProcessor::postGenProcessReadyReadStandardOutput);
    // Queued, so that the dialog is painted between the stages.
    connect(this, &PostGenProcessor::proceedGeneration, this,
            &PostGenProcessor::proceedGenerationSlot, Qt::QueuedConnection);
    connect(m_progress.get(), &PostGenProgressHandler::cancelProcess, this,
            &PostGenProcessor::cancelPostGenProcess);
}

PostGenProcessor::~PostGenProcessor()
{
    m_process->disconnect(this);
    if (m_process->state() != QProcess::NotRunning)
        release(m_process);
}

// --- The command --------------------------------------------------------------------------------

void PostGenProcessor::start()
{
    if (isBusy()) {
        qWarning("The processing of the last generation is still running.");
        return;
    }
    m_settings = PostGenSettings::read(m_store.get());
    m_stage = Stage::EdsCheck;
    m_exitCode = 0;
    m_waitForCommand = false;
    if (m_store)
        m_store->endSilence();
    if (!m_settings.command.isEmpty() && runCommand())
        awaitCommand();
    else
        proceedAt(Stage::EdsCheck);
}

/// True if the run goes on only when the command has ended.
bool PostGenProcessor::runCommand()
{
    QDir::setCurrent(m_outputFolder);
    if (m_process->state() != QProcess::NotRunning) {
        tellFault(QStringLiteral("Post generation process is already running."), QString());
        return false;
    }
    m_errorHeaderDone = false;
    m_outputHeaderDone = false;
    m_errorDecoder.resetState();
    m_outputDecoder.resetState();
    m_waitForCommand = m_settings.waitForCommand;
    m_process->setWorkingDirectory(m_outputFolder);
    m_process->start(m_settings.command, m_settings.argumentList(m_outputFolder, m_projectName),
                     QIODevice::ReadWrite);
    if (!m_process->waitForStarted(startMilliseconds)) {
        m_waitForCommand = false;
        tellFault(QStringLiteral("Could not start post gen process."), m_process->errorString());
        return false;
    }
    return m_waitForCommand;
}

void PostGenProcessor::awaitCommand()
{
    m_progress->setLabelText(QStringLiteral("Post generation process running ... "));
    m_progress->setCancelButtonText(cancelText);
    while (m_waitForCommand && m_process->state() != QProcess::NotRunning)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void PostGenProcessor::postGenProcessFinished(int exitCode, QProcess::ExitStatus)
{
    if (!m_waitForCommand)
        return;
    m_waitForCommand = false;
    m_exitCode = exitCode;
    m_output.outputMessage(
        QStringLiteral("Post generation process finished with code %1").arg(exitCode));
    emit proceedGeneration();
}

void PostGenProcessor::postGenProcessReadyReadStandardError()
{
    passOn(m_errorHeaderDone, "Post generation process error output:\n", m_errorDecoder,
           m_process->readAllStandardError());
}

void PostGenProcessor::postGenProcessReadyReadStandardOutput()
{
    passOn(m_outputHeaderDone, "Post generation process standard output:\n", m_outputDecoder,
           m_process->readAllStandardOutput());
}

void PostGenProcessor::passOn(bool &headerDone, const char *header, QStringDecoder &decoder,
                              const QByteArray &bytes)
{
    const QString text = decoder.decode(bytes);
    if (text.isEmpty())
        return;
    if (!headerDone)
        m_output.outputMessage(QString::fromLatin1(header));
    headerDone = true;
    // Messages are rich text, what a program says is not.
    m_output.outputMessage(text.toHtmlEscaped());
}

void PostGenProcessor::followCommand(int milliseconds)
{
    if (m_process->state() != QProcess::NotRunning)
        m_process->waitForFinished(milliseconds);
}

void PostGenProcessor::cancelPostGenProcess()
{
    if (m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(terminateMilliseconds))
            m_process->kill();
    }
    for (EdsCheckerWrapper *checker : std::as_const(m_checkers))
        checker->cancel();
    m_progress->setCancelButtonText(cancelText);
}

void PostGenProcessor::tellFault(const QString &text, const QString &detail)
{
    const QString title = QStringLiteral("%1  %2").arg(QCoreApplication::applicationName(),
                                                       QCoreApplication::applicationVersion());
    m_progress->showMessage(nullptr, title, text, detail);
}

// --- The stages ---------------------------------------------------------------------------------

void PostGenProcessor::proceedAt(Stage stage)
{
    m_stage = stage;
    emit proceedGeneration();
}

void PostGenProcessor::proceedGenerationSlot()
{
    if (!isBusy())
        return;
    if (!m_quiet)
        updateProgress();
    switch (m_stage) {
    case Stage::EdsCheck:
        m_progress->setCancelButtonText(cancelText);
        // The command is over; there is nothing to stop until a checker runs.
        m_progress->setCancelButtonText(QString());
        if (m_skipEdsCheck)
            proceedAt(Stage::LineEndings);
        else
            startEdsCheck();
        break;
    case Stage::LineEndings:
        m_progress->setLabelText(checkerText);
        convertLineEndings();
        proceedAt(Stage::Finish);
        break;
    case Stage::Finish:
        finish();
        break;
    case Stage::Idle:
        break;
    }
}

void PostGenProcessor::updateProgress()
{
    m_progress->show();
    m_progress->adjustSize();
    m_progress->raise();
}

void PostGenProcessor::startEdsCheck()
{
    m_progress->setLabelText(checkerText);
    if (m_settings.checksEds && m_store) {
        const QString started = QStringLiteral("EDS Checker started");
        QList<quint8> lines = m_store->getLines();
        lines.removeIf([](quint8 line) { return line >= firstReservedLine; });
        if (lines.size() <= 1)
            checkEds(m_projectName + QLatin1String(".eds"), started);
        for (const quint8 line : std::as_const(lines)) {
            if (lines.size() > 1)
                checkEds(QStringLiteral("%1_%2.eds").arg(m_projectName).arg(line),
                         started + QStringLiteral(" for line %1").arg(line));
        }
    }
    if (m_checkers.isEmpty())
        proceedAt(Stage::LineEndings);
    else
        m_progress->setCancelButtonText(cancelText);
}

void PostGenProcessor::checkEds(const QString &fileName, const QString &startedText)
{
    const QString path = m_outputFolder + QLatin1Char('/') + fileName;
    if (!QFile::exists(path))
        return;
    auto *checker = new EdsCheckerWrapper(this);
    connect(checker, &EdsCheckerWrapper::finished, this, &PostGenProcessor::edsCheckFinished);
    checker->setCheckerPath(m_settings.edsCheckerPath);
    if (checker->start(path)) {
        m_checkers.append(checker);
        m_output.outputMessage(startedText);
        return;
    }
    delete checker;
    m_output.outputMessage(QStringLiteral("Start of EDS Checker failed"));
}

void PostGenProcessor::edsCheckFinished()
{
    auto *checker = qobject_cast<EdsCheckerWrapper *>(sender());
    if (checker == nullptr || !m_checkers.removeOne(checker))
        return;
    m_output.outputMessage(QStringLiteral("EDS Checker result:\n\n") +
                           checker->takeOutput().toHtmlEscaped());
    m_output.outputMessage(QStringLiteral("EDS Checker finished.\n"));
    checker->deleteLater();
    if (m_checkers.isEmpty())
        proceedAt(Stage::LineEndings);
}

void PostGenProcessor::convertLineEndings()
{
    if (m_settings.lineEnding.isEmpty())
        return;
    for (const char *name : convertedFiles) {
        const QString path = m_outputFolder + QLatin1Char('/') + QLatin1String(name);
        if (QFile::exists(path) && !Helper::modifyLineEnding(path, m_settings.lineEnding))
            m_output.outputMessage(
                QStringLiteral("Warning: The line endings of %1 can't be changed.").arg(path));
    }
}

void PostGenProcessor::finish()
{
    m_progress->hide();
    m_output.outputMessage(
        m_exitCode == 0
            ? QStringLiteral("Generation completed.")
            : QStringLiteral(
                  "<b>Warning: Generation completed, but post gen process returned %1.</b>")
                  .arg(m_exitCode));
    m_stage = Stage::Idle;
}

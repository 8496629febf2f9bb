#include "generation/generatormainhandler.h"

#include "canopen/j1939numbers.h"
#include "canopen/safefile.h"
#include "check/modelchecker.h"
#include "generation/outputlist.h"
#include "generation/postgenprocessor.h"
#include "generation/postgenprogresshandler.h"
#include "generators/base/abstractgenerator.h"
#include "generators/base/outputfile.h"
#include "generators/base/outputhandlerbase.h"
#include "store/objectdatabase.h"
#include "store/projectconverter.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>

namespace {

/// How long the end of the program is put off for a command that the run did not wait for.
constexpr int followMilliseconds = 10000;
/// The address claim is made by the stack; a project's own message of that number is in its way.

QString errorLogPath(const QString &folder)
{
    return folder + QLatin1String("/__vxmerrorlog.txt");
}

} // namespace

GeneratorMainHandler::GeneratorMainHandler(OutputHandlerBase &output, QObject *parent)
    : GeneratorMainHandler(output, nullptr, parent)
{
}

GeneratorMainHandler::GeneratorMainHandler(OutputHandlerBase &output,
                                           const std::shared_ptr<PostGenProgressHandler> &progress,
                                           QObject *parent)
    : QObject(parent), m_output(output), m_progress(progress)
{
}

GeneratorMainHandler::~GeneratorMainHandler()
{
    // A program that nobody sees ends right behind its run. What a command still says then belongs
    // to the log, and it would find nobody to read it.
    if (m_postGenProcessor && (m_progress == nullptr || m_quiet))
        m_postGenProcessor->followCommand(followMilliseconds);
}

const std::shared_ptr<ObjectDataBase> &GeneratorMainHandler::store()
{
    // Only a run without a window needs a store of its own.
    if (!m_facts.store) {
        m_facts.store = std::make_shared<ObjectDataBase>();
        m_facts.store->createNewDataBase();
        m_facts.store->addNode(0, ObjectDataBase::NODE_DATA_T());
    }
    return m_facts.store;
}

void GeneratorMainHandler::setProject(const std::shared_ptr<ObjectDataBase> &store,
                                      const QString &outputFolder, const QString &projectName)
{
    m_facts.store = store;
    m_openedGeneration.clear();
    m_facts.outputFolder = outputFolder;
    m_facts.projectFolder = outputFolder;
    m_facts.projectName = projectName;
}

bool GeneratorMainHandler::openProject(const QString &filePath)
{
    qDebug().noquote() << "GeneratorMainHandler::openProject" << filePath;
    m_openErrorText.clear();
    const QFileInfo file(filePath);
    if (!file.exists()) {
        m_openErrorText = tr("The file %1 does not exist.").arg(QDir::toNativeSeparators(filePath));
        return false;
    }
    m_projectFilePath = file.absoluteFilePath();
    const bool isTemplate = m_projectFilePath.endsWith(QLatin1String("vxmt"), Qt::CaseInsensitive);
    const bool opened = store()->openDataBase(m_projectFilePath);
    // A template counts as opened in any case; only its error text tells that nothing was read.
    if (!opened || isTemplate)
        m_openErrorText = m_facts.store->lastErrorText();
    if (!opened && m_openErrorText.isEmpty())
        m_openErrorText = tr("The file %1 can't be read.").arg(m_projectFilePath);
    if (!opened && !isTemplate)
        return false;
    applyUpgrades();
    m_facts.projectFolder = file.absolutePath();
    m_facts.outputFolder = m_facts.projectFolder;
    m_facts.projectName = file.completeBaseName();
    m_openedGeneration = m_facts.stackGeneration();
    m_facts.store->setGeneralSetting(QStringLiteral("new_init_structure"), QStringLiteral("1"));
    m_facts.store->setGeneralSetting(QStringLiteral("use_core_headers"), QStringLiteral("V4"));
    return true;
}

void GeneratorMainHandler::classify()
{
    ObjectDataBase &project = *store();
    m_facts.classify();
    for (const quint8 line : std::as_const(m_facts.activeLines)) {
        if (m_facts.lineProtocols(line).testFlag(Protocol::J1939))
            project.deletePGN(line, J1939::addressClaimed, ObjectDataBase::transmit);
    }
}

void GeneratorMainHandler::fillCaches()
{
    for (const quint8 line : std::as_const(m_facts.activeLines))
        m_facts.store->cacheAllSubs(line);
}

int GeneratorMainHandler::checkModel()
{
    classify();
    fillCaches();
    m_corrected = false;
    m_checker = std::make_unique<ModelChecker>();
    message(QStringLiteral("\nCheck of model consistency started"));
    connect(m_checker.get(), &ModelChecker::newError, this,
            &GeneratorMainHandler::handleCheckError);
    int errors = m_checker->checkProject(m_facts.store.get(), m_facts.projectFolder);
    for (const quint8 line : std::as_const(m_facts.activeLines))
        errors += checkLine(line);
    if (m_corrected) {
        // Outputs show what the corrections have written.
        fillCaches();
        emit doneCorrection();
    }
    const QString summary = m_checker->suppressedSummary();
    if (!summary.isEmpty())
        message(summary);
    return errors;
}

int GeneratorMainHandler::checkLine(quint8 line)
{
    if (m_facts.multiLine) {
        const QString rule(40, QLatin1Char('_'));
        m_output.outputHtml(QString());
        m_output.outputHtml(
            QStringLiteral("<strong>%1 Checking line %2 %1</strong>").arg(rule).arg(line));
    }
    return m_checker->checkLine(line, m_facts.store.get(), &m_corrected);
}

GeneratorMainHandler::GeneratorResult GeneratorMainHandler::generate(bool ignoreCheckErrors)
{
    if (m_isRunning) {
        qWarning("A generation is already running.");
        return CheckFailed;
    }
    m_isRunning = true;
    m_faults.clear();
    const GeneratorResult result = run(ignoreCheckErrors);
    m_isRunning = false;
    emit finished(result);
    return result;
}

GeneratorMainHandler::GeneratorResult GeneratorMainHandler::run(bool ignoreCheckErrors)
{
    const int errors = checkModel();
    writeErrorLog();
    if (errors >= 1 && !ignoreCheckErrors) {
        message(QStringLiteral("ABORT - Check of model consistency finished: failed (%1 errors)")
                    .arg(errors));
        return CheckFailed;
    }
    retireErrorLog();
    message(QStringLiteral("\nCheck of model consistency finished.\n"));
    if (!isOutputFolderWritable()) {
        message(QStringLiteral("ABORT - The output folder %1 is not writeable.")
                    .arg(m_facts.outputFolder));
        return FolderNotWritable;
    }
    message(stackGenerationText());
    if (!writeOutputs())
        return SrdoFailed;
    m_facts.store->clearSubCaches();
    message(QStringLiteral("Generation finished."));
    runPostGenProcess();
    return Completed;
}

void GeneratorMainHandler::writeErrorLog() const
{
    // A project that was never saved has no folder; its log is not for the root of the file system.
    if (m_facts.outputFolder.isEmpty())
        return;
    QFile file(errorLogPath(m_facts.outputFolder));
    if (SafeFile::kindFault(file.fileName()).isEmpty() &&
        file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(m_output.loggingText().toUtf8());
}

void GeneratorMainHandler::retireErrorLog() const
{
    if (m_facts.outputFolder.isEmpty())
        return;
    const QString path = errorLogPath(m_facts.outputFolder);
    if (!SafeFile::kindFault(path).isEmpty())
        return;
    QFile::copy(path, path + QLatin1String(".bak"));
    QFile::remove(path);
}

bool GeneratorMainHandler::isOutputFolderWritable() const
{
    const QFileInfo folder(m_facts.outputFolder);
    // The bits count as well: an administrator may pass them, but whoever set them meant it.
    constexpr auto writeBits = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    return folder.isDir() && folder.isWritable() && (folder.permissions() & writeBits);
}

QString GeneratorMainHandler::stackGenerationText() const
{
    const QString written = m_facts.stackGeneration();
    if (m_openedGeneration.isEmpty() || m_openedGeneration == written)
        return tr("Stack generation: %1, as the project is set.").arg(written);
    return tr("Stack generation: %1, which is what the command line program writes; the project is "
              "set to %2.")
        .arg(written, m_openedGeneration);
}

bool GeneratorMainHandler::writeOutputs()
{
    const QList<OutputRow> &rows = outputList();
    for (auto first = rows.begin(); first != rows.end();) {
        emit runProgress(static_cast<quint8>((first - rows.begin()) * 100 / rows.size()));
        const auto last = std::find_if(
            first, rows.end(), [&](const OutputRow &row) { return row.step != first->step; });
        QList<quint8> lines = m_facts.activeLines;
        if (!lines.contains(0))
            lines.prepend(0); // outputs of the whole project
        for (const quint8 line : std::as_const(lines)) {
            for (auto row = first; row != last; ++row) {
                if (!writeRow(*row, line))
                    return false;
            }
        }
        first = last;
    }
    emit runProgress(100);
    return true;
}

bool GeneratorMainHandler::writeRow(const OutputRow &row, quint8 line)
{
    if (!isOutputWanted(row, m_facts, line))
        return true;
    if (row.missing) {
        tellFailure(QLatin1String(row.missing), tr("This version can't make it yet."));
        return true;
    }
    if (row.action) {
        tellAction(row, row.action(m_facts));
        return true;
    }
    const OutputJobs jobs = makeOutput(row, m_facts, line);
    for (const OutputJob &job : jobs.jobs) {
        if (!runJob(row, job))
            return false;
    }
    if (jobs.closing)
        message(QLatin1String(jobs.closing));
    return true;
}

void GeneratorMainHandler::tellAction(const OutputRow &row, bool done)
{
    const char *format = done ? row.started : row.notWritable;
    const QString text = outputMessageText(format, m_facts.outputFolder, QString());
    if (!done)
        m_faults.append({OutputFault::NotWritable, text});
    if (!text.isEmpty())
        message(text);
}

bool GeneratorMainHandler::runJob(const OutputRow &row, const OutputJob &job)
{
    AbstractGenerator &generator = *job.generator;
    if (!generator.hasContent()) {
        QFile::remove(m_facts.outputFolder + QLatin1Char('/') + generator.fileName());
        return true;
    }
    const QString name =
        row.namesBase ? QFileInfo(generator.fileName()).completeBaseName() : generator.fileName();
    if (!generator.isOutputWritable()) {
        const QString text = outputMessageText(row.notWritable, m_facts.outputFolder, name);
        m_faults.append({OutputFault::NotWritable, text});
        message(text);
        return true;
    }
    connect(&generator, &AbstractGenerator::progress, this,
            &GeneratorMainHandler::generatorProgress);
    m_currentGenerator = &generator;
    generator.startGeneration();
    message(outputMessageText(job.started ? job.started : row.started, m_facts.outputFolder, name));
    generator.processEventsToEnd();
    m_currentGenerator = nullptr;

    if (row.failureEndsRun && generator.errorCode() == 1) {
        message(generator.errorString());
        return false;
    }
    const QString remark = generator.remark();
    if (!remark.isEmpty())
        message(remark);
    return true;
}

void GeneratorMainHandler::runPostGenProcess()
{
    if (!m_postGenProcessor) {
        auto progress =
            m_progress ? m_progress : std::make_shared<TextPostGenProgressHandler>(m_output);
        m_postGenProcessor = std::make_shared<PostGenProcessor>(m_output, progress);
    }
    m_postGenProcessor->setStore(store());
    m_postGenProcessor->setOutputFolder(m_facts.outputFolder);
    m_postGenProcessor->setProjectName(m_facts.projectName);
    m_postGenProcessor->setSkipEdsCheck(m_skipEdsCheck);
    m_postGenProcessor->setQuiet(m_quiet);
    m_postGenProcessor->start();
    // Until the end, so that nobody changes the project or starts anew while its files are in work.
    while (m_postGenProcessor->isBusy())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void GeneratorMainHandler::applyUpgrades()
{
    ProjectConverter converter(m_facts.store.get());
    converter.doGenericCorrection();
    converter.doStackPathCorrection();
    const QString edition = QCoreApplication::applicationName();
    if (edition == QLatin1String("EnergyBus Marlwright"))
        converter.doEnergyBusCorrection();
    else if (edition == QLatin1String("CAN Quillforge"))
        converter.doCanCorrection();
}

void GeneratorMainHandler::handleCheckError(QString errorString)
{
    message(errorString);
}

void GeneratorMainHandler::generatorProgress(quint8 progress)
{
    if (progress != 100)
        return;
    const auto *generator = qobject_cast<AbstractGenerator *>(sender());
    QString label = generator ? generator->objectName() : QString();
    if (label.isEmpty())
        label = QStringLiteral("output");
    if (generator && generator->errorCode() != 0) {
        tellFailure(label, generator->errorString());
        return;
    }
    QString version;
    if (generator && label.startsWith(QLatin1String("gen_sdg.c")))
        version = QStringLiteral("(%1)").arg(generator->generatorVersionText());
    message(QStringLiteral("Generation of %1 completed. %2").arg(label, version));
}

void GeneratorMainHandler::tellFailure(const QString &label, const QString &reason)
{
    const QString text = QStringLiteral("Generation of %1 failed. %2").arg(label, reason);
    m_faults.append({OutputFault::Failed, text});
    message(QStringLiteral("<b>ERROR - %1</b>").arg(text));
}

void GeneratorMainHandler::requestStop()
{
    if (m_currentGenerator)
        m_currentGenerator->requestStop();
}

void GeneratorMainHandler::message(const QString &text)
{
    m_output.outputMessage(text);
}

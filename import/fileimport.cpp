#include "import/fileimport.h"

#include "import/basedataimporter.h"
#include "store/storeguards.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

namespace {

constexpr quint8 staging = ObjectDataBase::stagingLine;
constexpr quint8 complete = 100;

} // namespace

FileImport::FileImport(const ImportPlace &place, ImportCargo &cargo, QObject *parent)
    : QObject(parent), m_place(place), m_cargo(cargo)
{
}

FileImport::~FileImport()
{
    cancel();
    if (m_importer)
        m_importer->disconnect(this);
    waitForEnd();
    // Its end would have been told later, on this thread.
    if (m_safety && m_isRunning) {
        if (!m_isTakeDone)
            (void)rollBack();
        m_silence.reset();
    }
}

void FileImport::cancel()
{
    m_cancelled = true;
    if (m_importer)
        m_importer->cancel();
}

void FileImport::waitForEnd()
{
    if (m_importer)
        m_importer->wait();
    if (m_worker)
        m_worker->wait();
}

void FileImport::runBeside(const std::function<void()> &work, const std::function<void()> &done)
{
    waitForEnd();
    m_worker.reset(QThread::create(work));
    connect(m_worker.get(), &QThread::finished, this, done);
    m_worker->start(QThread::InheritPriority);
}

void FileImport::clear()
{
    if (m_isRunning)
        return;
    m_cargo.clear();
    m_result = {};
    m_resultText.clear();
}

// --- Reading ------------------------------------------------------------------------------------

QString FileImport::read(const FileImportOptions &options)
{
    if (m_isRunning)
        return tr("An import is going on.");
    const QFileInfo file(options.path);
    if (!file.isFile() || !file.isReadable())
        return QStringLiteral("File %1 is not readable.").arg(options.path);

    clear();
    BaseDataImporter *importer = m_cargo.prepare(options);
    if (importer == nullptr)
        return QStringLiteral("Format of  %1 is not supported.").arg(options.path);
    m_cancelled = false;
    m_place.scratch.setBlockUpdates(false);
    if (m_place.scratch.lineExists(staging))
        m_place.scratch.deleteNode(staging);
    if (!m_place.scratch.addNode(staging, ObjectDataBase::NODE_DATA_T()))
        return tr("There is no room for the objects of the file: %1")
            .arg(m_place.scratch.lastErrorText());

    m_importer = importer;
    m_importer->setLine(staging);
    m_importer->setDatabase(&m_place.scratch);
    m_importer->setRange(options.low, options.high);
    m_importer->setFile(options.path);
    connect(m_importer, &BaseDataImporter::progress, this, [this](quint8 percent) {
        if (percent >= complete)
            listCargo();
        else
            emit progress(percent * 9 / 10);
    });
    m_isRunning = true;
    m_importer->start();
    return {};
}

/// The importer is done. The list takes a while for a large file, so it is made beside.
void FileImport::listCargo()
{
    m_importer->wait();
    runBeside([this] { m_cargo.list(m_place); }, [this] { finishRead(); });
}

void FileImport::finishRead()
{
    m_worker->wait();
    m_result = m_importer->result();
    const QString error = m_result.error();
    m_importer = nullptr;
    m_isRunning = false;
    Outcome outcome = Outcome::Done;
    if (m_cancelled)
        outcome = Outcome::Cancelled;
    else if (!error.isEmpty())
        outcome = Outcome::Failed;
    if (outcome != Outcome::Done)
        m_cargo.clear();
    emit progress(complete);
    if (outcome == Outcome::Failed)
        emit importError(error);
    emit readFinished(outcome);
}

// --- Taking over --------------------------------------------------------------------------------

QString FileImport::take()
{
    if (m_isRunning)
        return tr("An import is going on.");
    if (!m_place.project.lineExists(m_place.line))
        return tr("The project has no line %1.").arg(m_place.line);
    if (QString reason = m_cargo.conflict(); !reason.isEmpty())
        return reason;
    m_resultText.clear();
    emit aboutToChange();
    m_safety = std::make_unique<QTemporaryDir>();
    if (!m_safety->isValid() ||
        !m_place.project.takeSnapshot(m_safety->filePath(QStringLiteral("project.db")))) {
        m_safety.reset();
        return tr("The project can't be secured before the import, so nothing is imported: %1")
            .arg(m_place.project.lastErrorText());
    }
    m_cancelled = false;
    m_isTakeDone = false;
    m_isRunning = true;
    // The forms would read the project while it is half done.
    m_silence = std::make_unique<StoreSilence>(m_place.project, StoreSilence::As::Block);
    runBeside(
        [this] {
            m_isTakeDone =
                m_cargo.take(m_place, m_cancelled, [this](int percent) { emit progress(percent); });
            m_takeError = m_isTakeDone ? QString() : m_place.project.lastErrorText();
        },
        [this] { finishTake(); });
    return {};
}

bool FileImport::rollBack()
{
    return m_place.project.restoreSnapshot(m_safety->filePath(QStringLiteral("project.db")));
}

void FileImport::finishTake()
{
    m_worker->wait();
    Outcome outcome = Outcome::Done;
    if (!m_isTakeDone)
        outcome = m_cancelled ? Outcome::Cancelled : Outcome::Failed;
    const bool isAsBefore = outcome == Outcome::Done || rollBack();
    m_safety.reset();
    m_isRunning = false;
    if (outcome == Outcome::Done || !isAsBefore) {
        m_silence->endAndTell();
        m_cargo.compare(m_place);
    }
    if (outcome == Outcome::Done)
        m_resultText = m_cargo.resultText();
    m_silence.reset();
    emit progress(complete);
    if (outcome == Outcome::Failed)
        emit importError((isAsBefore ? tr("The project refused a part of the import, and is as it "
                                          "was before. %1")
                                     : tr("The project refused a part of the import. Undo brings "
                                          "back what was before. %1"))
                             .arg(m_takeError)
                             .trimmed());
    emit takeFinished(outcome);
}

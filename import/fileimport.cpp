#include "import/fileimport.h"

#include "canopen/indextext.h"
#include "import/dictionaryimporter.h"
#include "import/vxmpimporter.h"
#include "store/storeguards.h"

#include <QFileInfo>
#include <QHash>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <array>

namespace {

constexpr quint8 staging = ObjectDataBase::stagingLine;
constexpr quint8 complete = 100;

/// In the order of `ImportedImplementation`.
constexpr std::array kindTexts{"managed variables", "application variables",
                               "original implementation types"};

} // namespace

FileImport::FileImport(ObjectDataBase &project, quint8 line, ObjectDataBase &scratch,
                       QObject *parent)
    : QObject(parent), m_project(project), m_scratch(scratch), m_line(line)
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

QString FileImport::implementationText(ImportedImplementation kind)
{
    return QLatin1String(kindTexts[size_t(kind)]);
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
    m_objects.clear();
    m_result = {};
    m_sourceLines.clear();
    m_commands = {};
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
    const FileImportFormat *format = FileImportFormat::of(options.path);
    if (format == nullptr)
        return QStringLiteral("Format of  %1 is not supported.").arg(options.path);

    clear();
    m_low = options.low;
    m_high = options.high;
    m_cancelled = false;
    m_scratch.setBlockUpdates(false);
    if (m_scratch.lineExists(staging))
        m_scratch.deleteNode(staging);
    if (!m_scratch.addNode(staging, ObjectDataBase::NODE_DATA_T()))
        return tr("There is no room for the objects of the file: %1")
            .arg(m_scratch.lastErrorText());

    m_importer = format->make(&options);
    m_importer->setLine(staging);
    m_importer->setDatabase(&m_scratch);
    m_importer->setRange(options.low, options.high);
    m_importer->setFile(options.path);
    connect(m_importer.get(), &BaseDataImporter::progress, this, [this](quint8 percent) {
        if (percent >= complete)
            listObjects();
        else
            emit progress(percent * 9 / 10);
    });
    m_isRunning = true;
    m_importer->start();
    return {};
}

/// The importer is done. The list takes a while for a large file, so it is made beside.
void FileImport::listObjects()
{
    m_importer->wait();
    runBeside(
        [this] {
            m_scratch.cacheAllSubs(staging);
            const QList<quint16> present = m_project.getIndices(m_line);
            m_existing = QSet<quint16>(present.begin(), present.end());
            const QList<quint16> indices = m_scratch.getIndices(staging);
            m_objects.reserve(indices.size());
            for (const quint16 index : indices) {
                ObjectDataBase::INDEX_DATA_T data;
                m_scratch.getIndexData(staging, index, data);
                m_objects.append({index, data.name, m_existing.contains(index)});
            }
        },
        [this] { finishRead(); });
}

void FileImport::finishRead()
{
    m_worker->wait();
    m_result = m_importer->result();
    const QString error = m_result.error();
    m_sourceLines = m_importer->sourceLines();
    m_commands = m_importer->commands();
    m_importer.reset();
    m_isRunning = false;
    Outcome outcome = Outcome::Done;
    if (m_cancelled)
        outcome = Outcome::Cancelled;
    else if (!error.isEmpty())
        outcome = Outcome::Failed;
    if (outcome != Outcome::Done) {
        m_objects.clear();
        m_commands = {};
    }
    emit progress(complete);
    if (outcome == Outcome::Failed)
        emit importError(error);
    emit readFinished(outcome);
}

QString FileImport::summary() const
{
    const auto existing = std::count_if(m_objects.begin(), m_objects.end(),
                                        [](const Object &object) { return object.exists; });
    if (m_objects.isEmpty())
        return QStringLiteral("%1 objects read.").arg(0) + u' ' +
               tr("The file has none from %1 to %2.")
                   .arg(IndexText::hex(static_cast<quint16>(m_low)),
                        IndexText::hex(static_cast<quint16>(m_high)));
    if (existing == 0)
        return QStringLiteral("%1 objects read.").arg(m_objects.size());
    return QStringLiteral("%1 objects read. (%2 red objects already exist in project. Import "
                          "overwrites them.)")
        .arg(m_objects.size())
        .arg(existing);
}

QList<std::pair<quint8, QString>> FileImport::subindices(quint16 index) const
{
    QList<std::pair<quint8, QString>> result;
    const QList<quint8> numbers = m_scratch.getSubIndices(staging, index);
    for (const quint8 number : numbers)
        result.append({number, m_scratch.getSubIndexName(staging, index, number)});
    return result;
}

// --- Taking over --------------------------------------------------------------------------------

/// Why the objects can't go where they are to; empty if they can.
QString FileImport::conflict(const QList<ImportedItem> &items) const
{
    QHash<quint16, quint16> sourceOf;
    for (const ImportedItem &item : items) {
        const auto former = sourceOf.constFind(item.target);
        if (former != sourceOf.constEnd())
            return tr("The objects %1 and %2 would both become %3.")
                .arg(IndexText::hex(*former), IndexText::hex(item.index),
                     IndexText::hex(item.target));
        sourceOf.insert(item.target, item.index);
    }
    return {};
}

QString FileImport::take(const QList<ImportedItem> &items, ImportedImplementation kind,
                         bool deviceData)
{
    if (m_isRunning)
        return tr("An import is going on.");
    if (!m_project.lineExists(m_line))
        return tr("The project has no line %1.").arg(m_line);
    if (QString reason = conflict(items); !reason.isEmpty())
        return reason;
    m_resultText.clear();
    emit aboutToChange();
    m_safety = std::make_unique<QTemporaryDir>();
    if (!m_safety->isValid() ||
        !m_project.takeSnapshot(m_safety->filePath(QStringLiteral("project.db")))) {
        m_safety.reset();
        return tr("The project can't be secured before the import, so nothing is imported: %1")
            .arg(m_project.lastErrorText());
    }
    m_resultText = QStringLiteral("%1 objects imported as %2.")
                       .arg(items.size())
                       .arg(implementationText(kind));
    m_cancelled = false;
    m_isTakeDone = false;
    m_isRunning = true;
    // The forms would read the project while it is half done.
    m_silence = std::make_unique<StoreSilence>(m_project, StoreSilence::As::Block);
    const auto transfer =
        std::make_shared<FileImportTransfer>(m_project, m_line, m_scratch, staging);
    transfer->setItems(items);
    transfer->setImplementation(kind);
    transfer->setDeviceData(deviceData);
    transfer->setCommands(m_commands);
    runBeside(
        [this, transfer] {
            m_isTakeDone =
                transfer->run(m_cancelled, [this](int percent) { emit progress(percent); });
            m_takeError = m_isTakeDone ? QString() : m_project.lastErrorText();
        },
        [this] { finishTake(); });
    return {};
}

bool FileImport::rollBack()
{
    return m_project.restoreSnapshot(m_safety->filePath(QStringLiteral("project.db")));
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
        const QList<quint16> present = m_project.getIndices(m_line);
        m_existing = QSet<quint16>(present.begin(), present.end());
        for (Object &object : m_objects)
            object.exists = m_existing.contains(object.index);
    } else {
        m_resultText.clear();
    }
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

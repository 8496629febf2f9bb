#include "import/basedataimporter.h"

#include "store/objectdatabase.h"
#include "store/storeguards.h"

#include <QMetaObject>
#include <QThread>

#include <optional>

BaseDataImporter::BaseDataImporter() = default;

BaseDataImporter::~BaseDataImporter()
{
    wait();
}

void BaseDataImporter::setRange(quint32 low, quint32 high)
{
    m_low = low;
    m_high = high;
}

bool BaseDataImporter::start()
{
    if (m_running.exchange(true))
        return false;
    // A former run may still be on the last steps of its thread.
    wait();
    if (!m_thread)
        m_thread = new QThread(this);
    m_home = thread();
    m_cancelled = false;
    moveToThread(m_thread);
    m_thread->start(QThread::InheritPriority);
    QMetaObject::invokeMethod(this, &BaseDataImporter::doImport, Qt::QueuedConnection);
    return true;
}

void BaseDataImporter::wait()
{
    if (m_thread)
        m_thread->wait();
}

bool BaseDataImporter::isFinished() const
{
    return m_thread && !m_running && m_thread->isFinished();
}

ImportResult BaseDataImporter::result() const
{
    const std::lock_guard lock(m_resultMutex);
    return m_result;
}

void BaseDataImporter::run(const std::function<void()> &body)
{
    m_running = true;
    {
        const std::lock_guard lock(m_resultMutex);
        m_result = ImportResult(m_file);
    }
    {
        std::optional<StoreBlock> block;
        if (m_store) {
            m_store->setBlockUpdates(false);
            block.emplace(*m_store);
        }
        body();
    }
    finishRun();
}

void BaseDataImporter::finishRun()
{
    const bool onOwnThread = m_thread && QThread::currentThread() == m_thread;
    if (onOwnThread)
        m_thread->quit();
    emit progress(100);
    // Between two runs the importer is its maker's again, who may start or delete it.
    if (onOwnThread)
        moveToThread(m_home);
    m_running = false;
}

void BaseDataImporter::reportError(const QString &text)
{
    {
        const std::lock_guard lock(m_resultMutex);
        m_result.addError(text);
    }
    emit importError(text);
}

void BaseDataImporter::note(ImportResult::Kind kind, int line, const QString &text)
{
    const std::lock_guard lock(m_resultMutex);
    m_result.add(kind, line, text);
}

void BaseDataImporter::adopt(const ImportResult &result)
{
    {
        const std::lock_guard lock(m_resultMutex);
        m_result = result;
    }
    if (const QString error = result.error(); !error.isEmpty())
        emit importError(error);
}

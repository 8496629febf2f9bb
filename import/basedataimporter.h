#pragma once

#include "canopen/importresult.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <mutex>

class ObjectDataBase;
class QThread;

/// Runs an import on a thread of its own. A caller sets line, store, range and file, in this order,
/// then starts. The store is blocked for all other threads while the import works.
///
/// The importer has no parent, since it moves to its thread and, at the end of the run, back to the
/// thread that started it. Setters and `start` belong to that thread, `result`, `errorString`,
/// `messages`, `cancel` and `isFinished` to any. A subclass waits for its thread in its destructor.
///
/// A file that is refused changes nothing in the store.
class BaseDataImporter : public QObject
{
    Q_OBJECT

public:
    BaseDataImporter();
    ~BaseDataImporter() override;

    /// The target line; 255 is the scratch line.
    void setLine(quint8 line) { m_line = line; }
    /// The target; must outlive the run.
    void setDatabase(ObjectDataBase *store) { m_store = store; }
    /// What has a number outside, such as an object's index, is passed over. Both ends are inside.
    void setRange(quint32 low, quint32 high);
    [[nodiscard]] quint32 lowIndex() const { return m_low; }
    [[nodiscard]] quint32 highIndex() const { return m_high; }
    void setFile(const QString &path) { m_file = path; }

    /// False if a run is in progress.
    bool start();
    /// Waits for the thread with no time limit.
    void wait();
    /// Whether the thread has ended.
    [[nodiscard]] bool isFinished() const;
    /// Ends the run at the next object; what has been written stays.
    void cancel() { m_cancelled = true; }

    /// What came of the last run.
    [[nodiscard]] ImportResult result() const;
    [[nodiscard]] QString errorString() const { return result().error(); }
    [[nodiscard]] QStringList messages() const { return result().texts(); }

public slots:
    /// The whole run, on the thread that calls it.
    virtual void doImport() = 0;

signals:
    /// Percent; 100 is sent once, at the end, whatever the outcome.
    void progress(quint8 percent);
    void importError(QString errorString);

protected:
    /// The frame of every `doImport`: flags, the block on the store, the end of the thread.
    void run(const std::function<void()> &body);
    void reportError(const QString &text);
    /// Line 0: about the whole file.
    void note(ImportResult::Kind kind, int line, const QString &text);
    /// Takes the notes and errors of a parser in place of those of this run, and tells the errors.
    void adopt(const ImportResult &result);

    [[nodiscard]] ObjectDataBase *store() const { return m_store; }
    [[nodiscard]] quint8 line() const { return m_line; }
    [[nodiscard]] bool isInRange(quint32 index) const { return index >= m_low && index <= m_high; }
    [[nodiscard]] QString fileName() const { return m_file; }
    [[nodiscard]] bool isCancelled() const { return m_cancelled; }

private:
    void finishRun();

    ObjectDataBase *m_store = nullptr;
    quint8 m_line = 0;
    quint32 m_low = 0;
    quint32 m_high = 0xFFFF;
    QString m_file;
    QThread *m_thread = nullptr;
    QThread *m_home = nullptr; ///< where the importer lives between two runs
    std::atomic<bool> m_running{false};
    std::atomic<bool> m_cancelled{false};
    mutable std::mutex m_resultMutex;
    ImportResult m_result; ///< guarded by m_resultMutex
};

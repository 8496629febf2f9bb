#pragma once

#include "canopen/importresult.h"
#include "import/fileimportformat.h"
#include "import/fileimporttransfer.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class DictionaryImporter;
class ObjectDataBase;
class QThread;
class QTemporaryDir;
class StoreSilence;

/// The work of an import in which a person chooses: reads a file into the staging line of a scratch
/// store, lists its objects, and takes the chosen ones over into a line of the project.
///
/// Lives on the thread of its stores, which outlive it. Both halves work on threads of their own
/// and end with a signal; one at a time. While objects are taken over, the project sends no
/// signals. Afterwards it tells once that everything is new, so that undo has one step. A run that
/// fails or is cancelled leaves the project as it was and tells nothing.
class FileImport : public QObject
{
    Q_OBJECT

public:
    /// One object of the file.
    struct Object
    {
        quint16 index = 0;
        QString name;
        bool exists = false; ///< in the project's line, where an import replaces it
    };

    enum class Outcome : quint8 { Done, Failed, Cancelled };

    FileImport(ObjectDataBase &project, quint8 line, ObjectDataBase &scratch,
               QObject *parent = nullptr);
    /// Cancels what is going on and waits for its end.
    ~FileImport() override;

    /// Begins to read a file; `readFinished` tells of the end. Else the reason why it can't be.
    [[nodiscard]] QString read(const FileImportOptions &options);
    /// Begins to take objects over, with the commands of the file behind them; `takeFinished` tells
    /// of the end. Else the reason why it can't be.
    [[nodiscard]] QString take(const QList<ImportedItem> &items, ImportedImplementation kind,
                               bool deviceData);
    void cancel();
    /// Forgets what was read; not while something is going on.
    void clear();
    [[nodiscard]] bool isRunning() const { return m_isRunning; }

    /// What the file has, ascending; empty until one was read.
    [[nodiscard]] const QList<Object> &objects() const { return m_objects; }
    /// The objects of the project's line, as they were at the end of the last run.
    [[nodiscard]] const QSet<quint16> &existing() const { return m_existing; }
    /// How many objects were read, in words.
    [[nodiscard]] QString summary() const;
    /// The outcome of the last take-over, in words.
    [[nodiscard]] QString resultText() const { return m_resultText; }
    /// What the importer mended or passed over, each as "file:line: text".
    [[nodiscard]] QStringList messages() const { return m_result.texts(); }
    /// Of a project; empty for any other file.
    [[nodiscard]] QList<quint8> sourceLines() const { return m_sourceLines; }
    /// The file copies or deletes objects of the project besides.
    [[nodiscard]] bool hasCommands() const { return !m_commands.isEmpty(); }
    /// Subindices of an object of the file with their names, ascending.
    [[nodiscard]] QList<std::pair<quint8, QString>> subindices(quint16 index) const;
    [[nodiscard]] static QString implementationText(ImportedImplementation kind);

signals:
    /// Percent of what is going on.
    void progress(int percent);
    void importError(QString errorString);
    void readFinished(FileImport::Outcome outcome);
    void takeFinished(FileImport::Outcome outcome);
    /// The project is about to change; what was done before is an undo step of its own.
    void aboutToChange();

private:
    void listObjects();
    void finishRead();
    void finishTake();
    [[nodiscard]] bool rollBack();
    /// Runs `work` on a thread of its own and then `done` on this one.
    void runBeside(const std::function<void()> &work, const std::function<void()> &done);
    void waitForEnd();
    [[nodiscard]] QString conflict(const QList<ImportedItem> &items) const;

    ObjectDataBase &m_project;
    ObjectDataBase &m_scratch;
    quint8 m_line;
    std::unique_ptr<DictionaryImporter> m_importer;
    std::unique_ptr<QThread> m_worker;
    std::unique_ptr<QTemporaryDir> m_safety; ///< the project as it was before a take-over
    std::unique_ptr<StoreSilence> m_silence; ///< while the project takes over
    std::atomic<bool> m_cancelled{false};
    quint32 m_low = 0;  ///< of the range that was asked for
    quint32 m_high = 0; ///< likewise
    bool m_isRunning = false;
    bool m_isTakeDone = false; ///< written by the worker, read after its end
    QString m_takeError;       ///< likewise

    QList<Object> m_objects;
    QSet<quint16> m_existing;
    ImportResult m_result;
    QList<quint8> m_sourceLines;
    DictionaryCommands m_commands;
    QString m_resultText;
};

#pragma once

#include "canopen/importresult.h"
#include "import/fileimportformat.h"
#include "import/importcargo.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

class BaseDataImporter;
class QThread;
class QTemporaryDir;
class StoreSilence;

/// The frame of an import in which a person chooses: reads a file into the staging line of a
/// scratch store, has the cargo list what is there, and takes over what was chosen of it into a
/// line of the project. What that is, the cargo alone knows.
///
/// Lives on the thread of its stores, which outlive it, as the cargo does. Both halves work on
/// threads of their own and end with a signal; one at a time. While the project takes over, it
/// sends no signals. Afterwards it tells once that everything is new, so that undo has one step. A
/// run that fails or is cancelled leaves the project as it was and tells nothing.
class FileImport : public QObject
{
    Q_OBJECT

public:
    enum class Outcome : quint8 { Done, Failed, Cancelled };

    FileImport(const ImportPlace &place, ImportCargo &cargo, QObject *parent = nullptr);
    /// Cancels what is going on and waits for its end.
    ~FileImport() override;

    /// Begins to read a file; `readFinished` tells of the end. Else the reason why it can't be.
    [[nodiscard]] QString read(const FileImportOptions &options);
    /// Begins to take over what was chosen of the cargo; `takeFinished` tells of the end. Else the
    /// reason why it can't be.
    [[nodiscard]] QString take();
    void cancel();
    /// Forgets what was read; not while something is going on.
    void clear();
    [[nodiscard]] bool isRunning() const { return m_isRunning; }

    /// The outcome of the last take-over, in words; empty if nothing was taken over.
    [[nodiscard]] QString resultText() const { return m_resultText; }
    /// What the importer mended or passed over, each as "file:line: text".
    [[nodiscard]] QStringList messages() const { return m_result.texts(); }

signals:
    /// Percent of what is going on.
    void progress(int percent);
    void importError(QString errorString);
    void readFinished(FileImport::Outcome outcome);
    void takeFinished(FileImport::Outcome outcome);
    /// The project is about to change; what was done before is an undo step of its own.
    void aboutToChange();

private:
    void listCargo();
    void finishRead();
    void finishTake();
    [[nodiscard]] bool rollBack();
    /// Runs `work` on a thread of its own and then `done` on this one.
    void runBeside(const std::function<void()> &work, const std::function<void()> &done);
    void waitForEnd();

    ImportPlace m_place;
    ImportCargo &m_cargo;
    BaseDataImporter *m_importer = nullptr; ///< the cargo's, while it reads
    std::unique_ptr<QThread> m_worker;
    std::unique_ptr<QTemporaryDir> m_safety; ///< the project as it was before a take-over
    std::unique_ptr<StoreSilence> m_silence; ///< while the project takes over
    std::atomic<bool> m_cancelled{false};
    bool m_isRunning = false;
    bool m_isTakeDone = false; ///< written by the worker, read after its end
    QString m_takeError;       ///< likewise
    ImportResult m_result;
    QString m_resultText;
};

#pragma once

#include "generation/runfacts.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class AbstractGenerator;
class ModelChecker;
class ObjectDataBase;
class OutputHandlerBase;
class PostGenProcessor;
class PostGenProgressHandler;
struct OutputJob;
struct OutputRow;

/// An output that a run did not bring about. The run goes on without it and still counts as
/// complete, which is not enough for a build server.
struct OutputFault
{
    enum Kind : quint8 { Failed, NotWritable } kind;
    QString text; ///< as the message of the run tells it, without mark-up
};

/// Decides which files one generation produces, in which order, and when it stops. Owns no text of
/// any output. Runs on the thread that created it and pumps its events; not re-entrant.
///
/// The window sets a project before each run; without a window `openProject` opens a file into a
/// store of the handler's own.
class GeneratorMainHandler : public QObject
{
    Q_OBJECT

public:
    enum GeneratorResult : int {
        Completed = 0,
        CheckFailed = 2,
        FolderNotWritable = 3,
        SrdoFailed = 4
    };
    Q_ENUM(GeneratorResult)

    /// For runs without a window: faults behind the last generator are messages of the run. The
    /// output handler outlives this object, which may still pass on what a command says.
    explicit GeneratorMainHandler(OutputHandlerBase &output, QObject *parent = nullptr);
    /// `progress` shows what goes on behind the last generator; null as without a window.
    GeneratorMainHandler(OutputHandlerBase &output,
                         const std::shared_ptr<PostGenProgressHandler> &progress,
                         QObject *parent = nullptr);
    ~GeneratorMainHandler() override;

    /// `projectName` is the project file's name without folder and extension.
    void setProject(const std::shared_ptr<ObjectDataBase> &store, const QString &outputFolder,
                    const QString &projectName);
    /// Another folder for the output than that of the project.
    void setOutputFolder(const QString &folder) { m_facts.outputFolder = folder; }
    void setGenerateSrdo(bool on) { m_facts.generateSrdo = on; }
    void setVirtualObjects(bool on) { m_facts.virtualObjects = on; }
    void setSkipEdsCheck(bool on) { m_skipEdsCheck = on; }
    /// The run is made for the network tool, which counts the generations itself.
    void setFromNetworkTool(bool on) { m_facts.fromNetworkTool = on; }
    /// Hidden mode: nothing is shown.
    void setQuiet(bool on) { m_quiet = on; }

    /// The store in use; an empty project with one line until another is set or opened.
    [[nodiscard]] const std::shared_ptr<ObjectDataBase> &store();
    [[nodiscard]] QString outputFolder() const { return m_facts.outputFolder; }
    [[nodiscard]] QString projectName() const { return m_facts.projectName; }
    [[nodiscard]] QString projectFilePath() const { return m_projectFilePath; }
    /// Why the last `openProject` could not read its file; empty if it could. A text project that
    /// can't be read counts as opened, so that this is the only sign of it.
    [[nodiscard]] QString openErrorText() const { return m_openErrorText; }
    /// The checker of the last run with its findings; null before the first.
    [[nodiscard]] const ModelChecker *modelChecker() const { return m_checker.get(); }

    /// What the last run did not write, in its order.
    [[nodiscard]] const QList<OutputFault> &outputFaults() const { return m_faults; }

    /// Checks the project and writes all outputs. With `ignoreCheckErrors` errors of the check are
    /// told but don't stop the run. The result is also sent by `finished`.
    GeneratorResult generate(bool ignoreCheckErrors);
    /// Only the check, with its messages and corrections; returns the number of errors.
    int checkModel();
    /// The command, the EDS checker and the line ends, as `PostGenProcessor` tells; returns when
    /// all of it is done. `generate` calls it.
    void runPostGenProcess();

public slots:
    /// Opens a project without a window, for the newer stack generation.
    bool openProject(const QString &filePath);
    void handleCheckError(QString errorString);
    void generatorProgress(quint8 progress);
    /// Asks the generator that is at work to stop.
    void requestStop();

signals:
    void finished(GeneratorMainHandler::GeneratorResult result);
    /// How much of the outputs is done; at 100 only what follows the last generator is left.
    void runProgress(quint8 percent);
    /// The check has changed the model.
    void doneCorrection();

private:
    void classify();
    void fillCaches();
    int checkLine(quint8 line);
    void writeErrorLog() const;
    void retireErrorLog() const;
    [[nodiscard]] bool isOutputFolderWritable() const;
    GeneratorResult run(bool ignoreCheckErrors);
    bool writeOutputs();
    bool writeRow(const OutputRow &row, quint8 line);
    void tellAction(const OutputRow &row, bool done);
    void tellFailure(const QString &label, const QString &reason);
    [[nodiscard]] QString stackGenerationText() const;
    bool runJob(const OutputRow &row, const OutputJob &job);
    void applyUpgrades();
    void message(const QString &text);

    OutputHandlerBase &m_output;
    std::shared_ptr<PostGenProgressHandler> m_progress; ///< null for a run without a window
    std::shared_ptr<PostGenProcessor> m_postGenProcessor;
    RunFacts m_facts;
    QList<OutputFault> m_faults;
    QString m_projectFilePath;
    QString m_openErrorText;
    QString m_openedGeneration; ///< that an opened project was set to
    bool m_skipEdsCheck = false;
    bool m_quiet = false;
    bool m_isRunning = false;
    bool m_corrected = false;
    std::unique_ptr<ModelChecker> m_checker;
    QPointer<AbstractGenerator> m_currentGenerator;
};

#pragma once

#include "generation/postgensettings.h"

#include <QList>
#include <QObject>
#include <QProcess>
#include <QStringDecoder>

#include <memory>

class EdsCheckerWrapper;
class ObjectDataBase;
class OutputHandlerBase;
class PostGenProgressHandler;

/// What follows the last generator of a run, in this order: the post-generation command, the EDS
/// checker, the line ends of the written files, and the last message.
///
/// Runs on the thread that created it. `start` pumps the events while it waits for a command; the
/// stages behind it are queued, so the caller goes on pumping until `isBusy` is false.
class PostGenProcessor : public QObject
{
    Q_OBJECT

public:
    /// The output handler outlives this object.
    PostGenProcessor(OutputHandlerBase &output,
                     const std::shared_ptr<PostGenProgressHandler> &progress,
                     QObject *parent = nullptr);
    /// A command that is still running goes on by itself.
    ~PostGenProcessor() override;

    void setStore(const std::shared_ptr<ObjectDataBase> &store) { m_store = store; }
    void setOutputFolder(const QString &folder) { m_outputFolder = folder; }
    void setProjectName(const QString &name) { m_projectName = name; }
    void setSkipEdsCheck(bool on) { m_skipEdsCheck = on; }
    /// The progress dialog is left alone between the stages.
    void setQuiet(bool on) { m_quiet = on; }

    void start();
    /// From `start` until the last message. A command that is not waited for may outlast it.
    [[nodiscard]] bool isBusy() const { return m_stage != Stage::Idle; }
    /// Passes on the output of a command that outlasts its run, until it ends or the time is over;
    /// blocks meanwhile.
    void followCommand(int milliseconds);

public slots:
    void proceedGenerationSlot();
    void startEdsCheck();
    void edsCheckFinished();
    void postGenProcessFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void postGenProcessReadyReadStandardError();
    void postGenProcessReadyReadStandardOutput();
    /// Ends the command and the EDS checks that are running.
    void cancelPostGenProcess();

signals:
    void proceedGeneration();

private:
    enum class Stage { Idle = 0, EdsCheck = 1, LineEndings = 2, Finish = 3 };

    [[nodiscard]] bool runCommand();
    void awaitCommand();
    void proceedAt(Stage stage);
    void updateProgress();
    void checkEds(const QString &fileName, const QString &startedText);
    void convertLineEndings();
    void finish();
    void passOn(bool &headerDone, const char *header, QStringDecoder &decoder,
                const QByteArray &bytes);
    void tellFault(const QString &text, const QString &detail);

    OutputHandlerBase &m_output;
    std::shared_ptr<PostGenProgressHandler> m_progress;
    std::shared_ptr<ObjectDataBase> m_store;
    std::shared_ptr<QProcess> m_process;
    QStringDecoder m_errorDecoder{QStringDecoder::System};
    QStringDecoder m_outputDecoder{QStringDecoder::System};
    PostGenSettings m_settings;
    QString m_outputFolder;
    QString m_projectName;
    QList<EdsCheckerWrapper *> m_checkers; ///< children of this object
    Stage m_stage = Stage::Idle;
    int m_exitCode = 0;
    bool m_waitForCommand = false;
    bool m_errorHeaderDone = false;
    bool m_outputHeaderDone = false;
    bool m_skipEdsCheck = false;
    bool m_quiet = false;
};

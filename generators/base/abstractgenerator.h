#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>

class ObjectDataBase;
class QIODevice;
class QThread;

/// Base of every output writer: one object, one run, one file family, on a thread of its own.
///
/// Order of calls: constructor, setters, `isOutputWritable`, connect `progress`,
/// `startGeneration`, `processEventsToEnd`. Never deleted while it is at work. A generator is used
/// once and reports only through `errorCode` and `errorString`.
class AbstractGenerator : public QObject
{
    Q_OBJECT

public:
    enum Result : int {
        Done = 0,
        FolderMissing = 1,
        FolderNotReadable = 2,
        NoStore = 3,
        UnknownLine = 4,
        Running = 5,
        NotRunning = 6
    };

    ~AbstractGenerator() override;

    // Setters give a Result; each but the suffix refuses with `Running` during a run.
    int setStore(ObjectDataBase *store);
    int setOutputFolder(const QString &folder);
    int setProjectName(const QString &name);
    /// Needs the store set before it.
    int setLine(quint8 line);
    void setFileSuffix(const QString &suffix) { m_fileSuffix = suffix; }
    void setMultiLine(bool multiLine) { m_multiLine = multiLine; }
    void setProtocols(bool hasJ1939, bool multiProtocol);

    /// The output file does not exist yet, or exists and may be written. The folder is not
    /// looked at.
    [[nodiscard]] virtual bool isOutputWritable() = 0;
    /// Starts `doJob` on the generator's thread.
    virtual int startGeneration() = 0;
    virtual int requestStop();
    [[nodiscard]] virtual QString generatorVersionText() const { return {}; }
    /// There is something to write. Without it the generator is not started, and its file must not
    /// survive.
    [[nodiscard]] virtual bool hasContent() const { return true; }
    /// What is to be told after the run; mostly empty.
    [[nodiscard]] virtual QString remark() const { return {}; }
    /// Runs the generation on the calling thread; ends with `progress(100)` in every case.
    Q_INVOKABLE virtual void doJob();

    /// The run was started and has not ended.
    [[nodiscard]] bool isBusy() const;
    /// Waits until the generator's thread has ended; at once if there is none.
    void waitForEnd();
    /// Processes the events of the calling thread until the run has ended and its last progress is
    /// delivered.
    void processEventsToEnd();
    [[nodiscard]] quint8 errorCode() const { return m_errorCode; }
    [[nodiscard]] QString errorString() const { return m_errorString; }
    [[nodiscard]] QString projectName() const { return m_projectName; }
    [[nodiscard]] QString outputFolder() const { return m_outputFolder; }
    /// File name without folder, as messages name it.
    [[nodiscard]] virtual QString fileName() const = 0;

signals:
    /// Percent; 100 is always the last emission of a run.
    void progress(quint8 percent);

protected:
    explicit AbstractGenerator(QObject *parent = nullptr);

    /// What `startGeneration` of every generator does, under its object name.
    int start(const QString &objectName);
    /// The path of `fileName` in the output folder.
    [[nodiscard]] QString outputPath() const;
    [[nodiscard]] static bool isFileWritable(const QString &path);

    /// Called before generation mode starts, for what a generator must still enter in the store or
    /// take over from the former file. After a `fail` here that file stays as it is.
    virtual void prepare() {}
    /// The sections of the file, in order. The device is open; a generator looks at
    /// `stopRequested` between long loops. Set `fail` to report an error.
    virtual void writeContent(QIODevice &device) = 0;
    /// Called after generation mode has ended.
    virtual void cleanUp() {}

    void fail(const QString &text, quint8 code = 1);
    [[nodiscard]] ObjectDataBase *store() const;
    [[nodiscard]] bool stopRequested() const { return m_stopRequested; }

    /// "I24_SET(0x..,..)" and its like for values wider than a C literal, most significant byte
    /// first; empty for any other data type.
    [[nodiscard]] static QString typedValueLiteral(quint16 dataType, quint64 value);

    quint8 m_line = 0;
    bool m_multiLine = false;
    QString m_projectName;
    QString m_outputFolder;
    QString m_toolVersion;
    bool m_hasJ1939 = false;
    bool m_multiProtocol = false;
    bool m_generateML = false; ///< MiscSettings `generateML`, read when the run starts
    QString m_fileSuffix;

private:
    void writeOutput();

    QPointer<ObjectDataBase> m_store;
    QThread *m_workerThread = nullptr;
    std::atomic<bool> m_stopRequested{false};
    std::atomic<bool> m_running{false};
    quint8 m_errorCode = 0;
    QString m_errorString;
};

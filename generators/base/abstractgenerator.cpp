#include "generators/base/abstractgenerator.h"

#include "generators/base/outputfile.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"
#include "store/storeguards.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <array>
#include <optional>

AbstractGenerator::AbstractGenerator(QObject *parent)
    : QObject(parent), m_toolVersion(QCoreApplication::applicationVersion())
{
}

AbstractGenerator::~AbstractGenerator()
{
    waitForEnd();
    delete m_workerThread;
}

int AbstractGenerator::setStore(ObjectDataBase *store)
{
    if (m_running)
        return Running;
    m_store = store;
    return store ? Done : NoStore;
}

int AbstractGenerator::setOutputFolder(const QString &folder)
{
    if (m_running)
        return Running;
    // Kept also when it is unusable: opening the file then fails with a text that names it.
    m_outputFolder = folder;
    const QFileInfo info(folder);
    if (!info.isDir())
        return FolderMissing;
    return info.isReadable() ? Done : FolderNotReadable;
}

int AbstractGenerator::setProjectName(const QString &name)
{
    if (m_running)
        return Running;
    m_projectName = name;
    return Done;
}

int AbstractGenerator::setLine(quint8 line)
{
    if (m_running)
        return Running;
    if (!m_store || !m_store->lineExists(line))
        return UnknownLine;
    m_line = line;
    return Done;
}

void AbstractGenerator::setProtocols(bool hasJ1939, bool multiProtocol)
{
    m_hasJ1939 = hasJ1939;
    m_multiProtocol = multiProtocol;
}

int AbstractGenerator::requestStop()
{
    if (!m_running)
        return NotRunning;
    m_stopRequested = true;
    return Done;
}

bool AbstractGenerator::isBusy() const
{
    return m_running && (!m_workerThread || m_workerThread->isRunning());
}

void AbstractGenerator::waitForEnd()
{
    if (m_workerThread && m_workerThread != QThread::currentThread())
        m_workerThread->wait();
}

void AbstractGenerator::processEventsToEnd()
{
    // The end of a run posts its last progress here, so this waits without turning idle rounds.
    QObject here;
    connect(this, &AbstractGenerator::progress, &here, [] {});
    while (isBusy())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    waitForEnd();
    QCoreApplication::processEvents();
}

int AbstractGenerator::start(const QString &objectName)
{
    setObjectName(objectName);
    if (m_running)
        return Running;
    // Not a child: children move along with their parent, and a thread can't live in itself.
    m_workerThread = new QThread;
    m_workerThread->setObjectName(objectName);
    moveToThread(m_workerThread);
    m_workerThread->start(QThread::InheritPriority);
    // Before the call is queued, or a short run could end before it.
    m_running = true;
    QMetaObject::invokeMethod(this, "doJob", Qt::QueuedConnection);
    return Done;
}

void AbstractGenerator::doJob()
{
    m_running = true;
    if (m_store)
        prepare();
    {
        std::optional<StoreGeneration> generation;
        if (m_store)
            generation.emplace(*m_store);
        m_generateML = m_store && ProjectSettings(*m_store).isTrue(
                                      SettingKey::misc(QStringLiteral("generateML")));
        if (m_errorCode == 0)
            writeOutput();
    }
    if (m_store)
        cleanUp();
    m_running = false;
    if (m_workerThread)
        m_workerThread->quit();
    emit progress(100);
}

void AbstractGenerator::writeOutput()
{
    OutputFile file(outputPath());
    if (!file.open()) {
        fail(file.errorText());
        return;
    }
    if (m_store)
        writeContent(file.device());
    else
        fail(tr("There is no project to generate from."), NoStore);
    if (!file.commit())
        fail(file.errorText());
}

ObjectDataBase *AbstractGenerator::store() const
{
    return m_store.data();
}

QString AbstractGenerator::outputPath() const
{
    return QStringLiteral("%1/%2").arg(m_outputFolder, fileName());
}

bool AbstractGenerator::isFileWritable(const QString &path)
{
    return OutputFile::isWritable(path);
}

void AbstractGenerator::fail(const QString &text, quint8 code)
{
    // The first failure is the cause of the others.
    if (m_errorCode != 0)
        return;
    m_errorCode = code;
    m_errorString = text;
}

QString AbstractGenerator::typedValueLiteral(quint16 dataType, quint64 value)
{
    struct Former
    {
        quint16 dataType;
        const char *name;
        int bytes;
    };
    static constexpr std::array<Former, 6> formers = {{{CAN::INTEGER24, "I24_SET", 3},
                                                       {CAN::UNSIGNED24, "U24_SET", 3},
                                                       {CAN::UNSIGNED40, "U40_SET", 5},
                                                       {CAN::UNSIGNED48, "U48_SET", 6},
                                                       {CAN::TIME_OF_DAY, "U48_SET", 6},
                                                       {CAN::UNSIGNED64, "U64_SET", 8}}};
    const auto former = std::find_if(formers.begin(), formers.end(),
                                     [=](const Former &f) { return f.dataType == dataType; });
    if (former == formers.end())
        return {};
    QString text = QLatin1String(former->name) + QLatin1Char('(');
    for (int byte = former->bytes - 1; byte >= 0; --byte) {
        text += QStringLiteral("0x%1").arg((value >> (8 * byte)) & 0xFF, 2, 16, QLatin1Char('0'));
        text += QLatin1Char(byte > 0 ? ',' : ')');
    }
    return text;
}

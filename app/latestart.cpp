#include "app/latestart.h"

#include "app/vxmmainwindow.h"
#include "canopen/j1939numbers.h"
#include "import/basedataimporter.h"
#include "import/dictionaryimporter.h"
#include "import/fileimportformat.h"
#include "import/importhandler.h"
#include "store/databasemodifier.h"
#include "store/edition.h"
#include "store/projectsettings.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <array>
#include <cstdio>
#include <memory>

namespace {

constexpr quint32 firstImported = 0x1000;
constexpr quint32 lastImported = 0xBFFF;

/// Lets notifications that are on their way reach the forms.
void runEventsFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void resetCursor(VxmMainWindow &window)
{
    window.setCursor(Qt::ArrowCursor);
}

void importIntoLineZero(VxmMainWindow &window)
{
    const std::optional<QString> &path = window.options().importFile;
    if (!path || !QFileInfo::exists(*path))
        return;
    qDebug() << "try to import " << *path;
    const FileImportFormat *format = FileImportFormat::of(*path);
    if (format == nullptr || !format->is(FileImportFormat::Batch))
        return;
    const std::unique_ptr<BaseDataImporter> importer = format->make(nullptr);
    importer->setLine(0);
    importer->setDatabase(&window.database());
    importer->setRange(firstImported, lastImported);
    importer->setFile(*path);
    importer->start();
    importer->wait();
    const QStringList messages = importer->messages();
    for (const QString &message : messages)
        qDebug().noquote() << message;
    // Whoever runs this without a user has no other way to learn of it.
    if (const QString error = importer->errorString(); !error.isEmpty())
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
    runEventsFor(500);
}

void copyForeignPgns(VxmMainWindow &window)
{
    const std::optional<QString> &path = window.options().pgnProject;
    if (!path || !QFileInfo::exists(*path))
        return;
    ObjectDataBase source;
    if (!source.openDataBase(*path, true)) {
        qDebug() << "cannot copy PGNs of" << *path << source.lastErrorText();
        return;
    }
    ObjectDataBase &target = window.database();
    for (const quint8 line : target.getLines()) {
        if (line < LineType::maximumLines && source.lineExists(line) &&
            !ObjectDataBase::copyPGNs(target, source, line, line, J1939::highestPgn))
            std::fprintf(stderr, "The PGNs of line %d of %s could not be copied.\n", line,
                         qUtf8Printable(*path));
    }
    runEventsFor(200);
}

void runImportHandler(VxmMainWindow &window)
{
    const std::optional<QString> &path = window.options().importHandlerFile;
    if (!path)
        return;
    qDebug() << "Import Handler file: " << *path;
    if (!QFileInfo::exists(*path)) {
        qDebug() << "Import Handler file: " << *path << "does not exist";
        return;
    }
    ImportHandler handler(&window.database());
    if (!handler.loadImportFile(*path) || !handler.applyImportFile())
        qDebug() << "Import Handler file error: " << handler.errorString();
}

void modifyDatabase(VxmMainWindow &window)
{
    const QString path = window.options().modifierFile.value_or(QString());
    if (path.isEmpty())
        return;
    DatabaseModifier modifier(&window.database());
    if (!modifier.load(path) || !modifier.applyModifierFile())
        qDebug() << modifier.errorText();
}

void enterNetworkToolMode(VxmMainWindow &window)
{
    if (!window.options().networkTool)
        return;
    runEventsFor(500);
    window.setNetworkToolMode();
    for (const char *action :
         {"actionNew_Project", "actionOpen_Project", "actionClose_Project", "actionEum"}) {
        window.setActionEnabled(action, false);
    }
    if (!window.options().generate)
        window.setActionEnabled("actionGenerate_Output", false);

    const auto lowByte = [&](const char *key) {
        return static_cast<uint>(ProjectSettings(window.database()).lineNumber(key, 0) & 0xFFU);
    };
    QString title = QStringLiteral("tolvex device systems - CANopen Quillforge %1 invoked by "
                                   "CANopen Tessmark for Node %2")
                        .arg(QCoreApplication::applicationVersion())
                        .arg(lowByte("co_node_id"));
    if (const uint network = lowByte("co_network_id"); network != 0)
        title += QStringLiteral(" (network %1)").arg(network);
    window.setToolTitle(title);
}

void saveProject(VxmMainWindow &window)
{
    if (!window.options().save)
        return;
    // A correction of the generation saves once more.
    if (window.options().generate)
        window.database().setBackupRule(ObjectDataBase::BackupRule::FirstSave);
    window.on_actionSave_Project_triggered();
    runEventsFor(300);
}

void generateAndQuit(VxmMainWindow &window)
{
    if (!window.options().generate)
        return;
    window.setAutoGeneration();
    window.on_actionGenerate_Output_triggered();
    runEventsFor(500);
    QCoreApplication::exit(0);
}

void hideHelp(VxmMainWindow &window)
{
    if (Edition::isJ1939())
        window.setActionVisible("action_Hel_p", false);
}

// This order holds whatever the order of the arguments. A step that has nothing to do does
// nothing, and none of them keeps the next from running.
constexpr std::array steps{
    resetCursor,          importIntoLineZero, copyForeignPgns, runImportHandler, modifyDatabase,
    enterNetworkToolMode, saveProject,        generateAndQuit, hideHelp,
};

} // namespace

void LateStart::run(VxmMainWindow &window)
{
    for (const auto step : steps)
        step(window);
}

#include "app/edition.h"
#include "app/generatoroutputform.h"
#include "app/linetype.h"
#include "app/recentprojects.h"
#include "app/selectprotocoldialog.h"
#include "app/support/guihelper.h"
#include "app/support/tolvexbaseapplication.h"
#include "app/support/usersettings.h"
#include "app/vxmmainwindow.h"
#include "projectfixture.h"
#include "store/undomanager.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBox>

using namespace Qt::StringLiterals;

namespace {

const QString canopenEdition = u"CANopen Quillforge"_s;
const QString j1939Edition = u"J1939 Quillforge"_s;
const QString canEdition = u"CAN Quillforge"_s;
const QString energyBusEdition = u"EnergyBus Marlwright"_s;

/// One window with its stores, as the start sequence makes them.
struct Session
{
    explicit Session(const QStringList &arguments = {})
        : window(StartOptions::parse(QStringList{u"program"_s} + arguments))
    {
        store->createNewDataBase();
        library->createNewDataBase();
        window.setDatabase(store);
        window.setLibraryDatabase(library);
        window.selectLine(0);
        window.updateLinesComboBox();
    }

    void trigger(const char *action)
    {
        auto *found = window.findChild<QAction *>(QLatin1String(action));
        QVERIFY2(found != nullptr, action);
        found->trigger();
    }

    QLabel *path() { return window.findChild<QLabel *>(u"lblPath"_s); }
    QComboBox *lines() { return window.findChild<QComboBox *>(u"mpSelectLine"_s); }
    void choose(int data) { lines()->setCurrentIndex(lines()->findData(data)); }
    UndoManager &steps() { return *window.findChild<UndoManager *>(); }
    /// An edit that is an undo step at once.
    void step(const QString &nodeId)
    {
        store->setGeneralSetting(u"co_node_id"_s, nodeId);
        steps().handleDebounceTimeout();
    }
    void edit() { store->setMiscSetting(u"edited"_s, QString::number(++edits)); }

    std::shared_ptr<ObjectDataBase> store = std::make_shared<ObjectDataBase>();
    std::shared_ptr<ObjectDataBase> library = std::make_shared<ObjectDataBase>();
    VxmMainWindow window;
    int edits = 0;
};

QStringList shownTexts()
{
    QStringList texts;
    for (const GuiHelper::Box &box : GuiHelper::takeShownBoxes())
        texts << box.text;
    return texts;
}

/// Presses a button of the protocol dialog.
void queueProtocol(const QString &buttonName)
{
    GuiHelper::queueDialog([buttonName](QDialog &dialog) {
        auto *button = dialog.findChild<QPushButton *>(buttonName);
        if (button == nullptr)
            return int(QDialog::Rejected);
        button->click();
        return int(QDialog::Accepted);
    });
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString file(const QString &name) const { return m_folder->filePath(name); }
    QString project(const QString &name, const ProjectFixture::Options &options = {}) const
    {
        const QString path = file(name);
        return ProjectFixture::save(path, options) ? path : QString();
    }

private slots:
    void init()
    {
        QCoreApplication::setApplicationName(canopenEdition);
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        UserSettings().clear();
        GuiHelper::takeShownBoxes();
    }

    void cleanup() { QCOMPARE(GuiHelper::takeUnusedAnswers(), 0); }

    void actionsCarryTheirNames_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shortcut");
        QTest::newRow("actionNew_Project") << u"&New Project"_s << u"Ctrl+N"_s;
        QTest::newRow("actionOpen_Project") << u"&Open Project"_s << u"Ctrl+O"_s;
        QTest::newRow("actionSave_Project") << u"&Save Project"_s << u"Ctrl+S"_s;
        QTest::newRow("actionSave_Project_as") << u"Save Project &as"_s << QString();
        QTest::newRow("actionClose_Project") << u"&Close Project"_s << QString();
        QTest::newRow("actionGenerate_Output") << u"&Generate Files"_s << u"Ctrl+G"_s;
        QTest::newRow("actionQuit") << u"&Quit"_s << QString();
        QTest::newRow("actionUndo") << u"&Undo"_s << u"Ctrl+Z"_s;
        QTest::newRow("actionRedo") << u"&Redo"_s << u"Ctrl+Shift+Z"_s;
        QTest::newRow("action_About") << u"&About"_s << u"Ctrl+A"_s;
        QTest::newRow("actionAbout_Qt") << u"About &Qt"_s << QString();
    }

    void actionsCarryTheirNames()
    {
        Session session;
        const auto *action =
            session.window.findChild<QAction *>(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(action != nullptr);
        QTEST(action->text(), "text");
        QTEST(action->shortcut().toString(), "shortcut");
        QVERIFY(!action->statusTip().isEmpty());
    }

    void newProjectBelongsToItsEdition_data()
    {
        QTest::addColumn<QString>("edition");
        QTest::addColumn<QString>("answer"); // of the protocol dialog
        QTest::addColumn<int>("type");
        QTest::newRow("CANopen") << canopenEdition << QString() << 1;
        QTest::newRow("J1939") << j1939Edition << QString() << 2;
        QTest::newRow("EnergyBus") << energyBusEdition << QString() << 1;
        QTest::newRow("CAN, raw") << canEdition << u"btnCAN"_s << 4;
        QTest::newRow("CAN, both") << canEdition << u"btnCANopenJ1939"_s << 5;
        QTest::newRow("CAN, J1939 and CAN") << canEdition << u"btnJ1939CAN"_s << 7;
        QTest::newRow("CAN, cancelled") << canEdition << u"-"_s << 1;
    }

    void newProjectBelongsToItsEdition()
    {
        QFETCH(QString, edition);
        QFETCH(QString, answer);
        QFETCH(int, type);
        QCoreApplication::setApplicationName(edition);
        Session session;
        ObjectDataBase::INDEX_DATA_T object;
        session.store->addIndex(0, 0x2000, object); // of the project before
        if (!answer.isEmpty())
            queueProtocol(answer);
        session.window.newProject();

        // There is no template beside a test program.
        QCOMPARE(shownTexts(), QStringList{u"Cannot create new project file."_s});
        QCOMPARE(session.store->getLineType(0), type);
        QCOMPARE(session.store->getGeneralSetting(u"new_init_structure"_s), u"1"_s);
        QCOMPARE(session.store->getMiscSetting(u"CreateToolVersion"_s), u"4.3.3"_s);
        QVERIFY(!session.store->indexExists(0, 0x2000));
        QCOMPARE(session.path()->text(), u"new project"_s);
        QVERIFY(!session.window.isModified());
        QVERIFY(session.window.windowTitle().startsWith(u"newproject"_s));
        QCOMPARE(session.lines()->itemText(0),
                 u"Line 0 - %1"_s.arg(QLatin1String(LineType::of(type).label)));
    }

    void openEditSave()
    {
        const QString path = project(u"device.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        QVERIFY(!session.window.isModified());
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(path));
        QCOMPARE(session.window.projectBaseName(), u"device"_s);
        QCOMPARE(session.window.projectDirectory(), m_folder->path());
        QCOMPARE(UserSettings::general(u"lastproject"_s).toString(), path);
        QCOMPARE(UserSettings::general(u"projectpath"_s).toString(), m_folder->path());
        QCOMPARE(RecentProjects::entries().value(0).path, path);

        session.store->setGeneralSetting(u"co_node_id"_s, u"7"_s);
        QVERIFY(session.window.isModified());
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"32"_s);
        session.trigger("actionSave_Project");
        QVERIFY(!session.window.isModified());
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"7"_s);
        QVERIFY(GuiHelper::takeShownBoxes().isEmpty());
    }

    void aRelativePathIsOpenedFromTheCurrentFolder()
    {
        project(u"device.vxmp"_s);
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_folder->path()));
        Session session;
        const bool opened = session.window.openProject(u"device.vxmp"_s);
        QDir::setCurrent(before);
        QVERIFY(opened);
        QVERIFY(QDir::isAbsolutePath(session.path()->text()));
    }

    void failedOpenKeepsWhatIsThere_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing") << u"none.vxmp"_s << QByteArray();
        QTest::newRow("missing text") << u"none.vxmt"_s << QByteArray();
        QTest::newRow("another suffix") << u"a.db"_s << QByteArray("x");
        QTest::newRow("no suffix") << u"device"_s << QByteArray("x");
        QTest::newRow("no database") << u"a.vxmp"_s << QByteArray(5000, 'x');
        QTest::newRow("no path") << QString() << QByteArray();
    }

    void failedOpenKeepsWhatIsThere()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        if (!content.isEmpty()) {
            QFile broken(file(name));
            QVERIFY(broken.open(QIODevice::WriteOnly));
            broken.write(content);
        }
        const QString good = project(u"good.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(good));
        const QString bad = name.isEmpty() ? name : file(name);
        QVERIFY(!session.window.openProject(bad));

        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes[0].text, u"Cannot open project file %1."_s.arg(bad));
        QCOMPARE(boxes[0].title, canopenEdition + u"  4.3.3"_s);
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(good));
        QVERIFY(session.store->indexExists(0, 0x2000));
        session.edit();
        session.trigger("actionSave_Project");
        ObjectDataBase reopened;
        QVERIFY(reopened.openDataBase(good));
        QVERIFY(reopened.indexExists(0, 0x2000));
    }

    void foreignChangesAreAskedAbout_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("answer"); // 0: no question is expected
        QTest::addColumn<bool>("opened");
        QTest::newRow("yes") << QStringList{} << int(QMessageBox::Yes) << true;
        QTest::newRow("no") << QStringList{} << int(QMessageBox::No) << false;
        QTest::newRow("network tool") << QStringList{u"-tsk"_s} << 0 << true;
    }

    void foreignChangesAreAskedAbout()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, answer);
        QFETCH(bool, opened);
        const QString path = project(u"device.vxmp"_s);
        QVERIFY(ProjectFixture::tamper(path, u"co_node_id"_s, u"99"_s));
        Session session(arguments);
        if (answer != 0)
            GuiHelper::queueAnswer(answer);
        QCOMPARE(session.window.openProject(path), opened);

        QCOMPARE(session.window.projectDirectory().isEmpty(), !opened);
        const QStringList texts = shownTexts();
        QCOMPARE(texts.value(0) == u"This project file has been modified outside of the tool."_s,
                 answer != 0);
        if (opened)
            QVERIFY(!session.store->getMiscSetting(u"TamperLog"_s).isEmpty());
    }

    void version3ProjectsAreNoted_data()
    {
        QTest::addColumn<QString>("edition");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("copyExists");
        QTest::addColumn<int>("boxes");
        QTest::newRow("3.6") << canopenEdition << u"3.6.0"_s << QStringList{} << false << 2;
        QTest::newRow("3.6, no notes")
            << canopenEdition << u"3.6.0"_s << QStringList{u"-now"_s} << false << 1;
        QTest::newRow("3.6, network tool")
            << canopenEdition << u"3.6.0"_s << QStringList{u"-tsk"_s} << false << 0;
        QTest::newRow("3.8, copy there")
            << canopenEdition << u"3.8.0"_s << QStringList{} << true << 1;
        QTest::newRow("3.9") << canEdition << u"3.9.0"_s << QStringList{} << false << 1;
        QTest::newRow("4.0") << canopenEdition << u"4.0.0"_s << QStringList{} << false << 0;
        QTest::newRow("EnergyBus") << energyBusEdition << u"3.6.0"_s << QStringList{} << false << 1;
    }

    void version3ProjectsAreNoted()
    {
        QFETCH(QString, edition);
        QFETCH(QString, version);
        QFETCH(QStringList, arguments);
        QFETCH(bool, copyExists);
        QFETCH(int, boxes);
        QCoreApplication::setApplicationName(edition);
        const QString path = project(u"old.vxmp"_s, {.savedByVersion = version});
        const QString copy = path + u".bak_v3"_s;
        if (copyExists)
            QVERIFY(QFile::copy(path, copy));
        QFile original(path);
        QVERIFY(original.open(QIODevice::ReadOnly));
        const QByteArray before = original.readAll();

        Session session(arguments);
        QVERIFY(session.window.openProject(path));
        const QStringList texts = shownTexts();
        QCOMPARE(texts.size(), boxes);
        const bool copied = edition != energyBusEdition && version.startsWith(u"3."_s) &&
                            !arguments.contains(u"-tsk"_s);
        QCOMPARE(QFile::exists(copy), copied || copyExists);
        if (copied && !copyExists) {
            QVERIFY(texts.last().contains(copy));
            QFile kept(copy);
            QVERIFY(kept.open(QIODevice::ReadOnly));
            QCOMPARE(kept.readAll(), before);
        }
    }

    void closeCheckGuardsChanges_data()
    {
        QTest::addColumn<int>("answer"); // 0: no question is expected
        QTest::addColumn<bool>("edited");
        QTest::addColumn<bool>("proceeds");
        QTest::addColumn<QString>("saved");
        QTest::newRow("nothing changed") << 0 << false << true << u"32"_s;
        QTest::newRow("save") << int(QMessageBox::Save) << true << true << u"7"_s;
        QTest::newRow("discard") << int(QMessageBox::Discard) << true << true << u"32"_s;
        QTest::newRow("cancel") << int(QMessageBox::Cancel) << true << false << u"32"_s;
    }

    void closeCheckGuardsChanges()
    {
        QFETCH(int, answer);
        QFETCH(bool, edited);
        QFETCH(bool, proceeds);
        const QString path = project(u"device.vxmp"_s);
        const QString other = project(u"other.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        if (edited)
            session.store->setGeneralSetting(u"co_node_id"_s, u"7"_s);
        if (answer != 0)
            GuiHelper::queueAnswer(answer);

        // A dropped project stands for all flows that replace the one that is open.
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file(u"notes.txt"_s)), QUrl::fromLocalFile(other)});
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QCoreApplication::sendEvent(&session.window, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&session.window, &drop);

        QCOMPARE(session.window.projectBaseName(), proceeds ? u"other"_s : u"device"_s);
        QTEST(ProjectFixture::generalSetting(path, u"co_node_id"_s), "saved");
        QCOMPARE(session.window.isModified(), edited && !proceeds);
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), answer != 0 ? 1 : 0);
        if (!boxes.isEmpty()) {
            QCOMPARE(boxes[0].text, u"The current project contains 1 unsaved modifications."_s);
            QCOMPARE(boxes[0].informativeText, u"Do you want to save your changes?"_s);
            QCOMPARE(boxes[0].defaultButton, QMessageBox::Save);
        }
    }

    void undoFollowsTheProject()
    {
        UserSettings::setGeneral(u"undomaxdepth"_s, 2);
        const QString path = project(u"device.vxmp"_s);
        Session session;
        const auto *undo = session.window.findChild<QAction *>(u"actionUndo"_s);
        const auto *redo = session.window.findChild<QAction *>(u"actionRedo"_s);
        const auto nodeId = [&] { return session.store->getGeneralSetting(u"co_node_id"_s); };
        QVERIFY(session.window.openProject(path));
        QVERIFY(!undo->isEnabled() && !redo->isEnabled());

        session.step(u"7"_s);
        session.step(u"8"_s);
        session.trigger("actionUndo");
        QCOMPARE(nodeId(), u"7"_s);
        QVERIFY(session.window.isModified() && undo->isEnabled() && redo->isEnabled());
        session.trigger("actionUndo");
        QCOMPARE(nodeId(), u"32"_s);
        QVERIFY(!undo->isEnabled());
        // An edit that was undone needs no saving.
        QVERIFY(!session.window.isModified());
        QVERIFY(session.window.closeCheck());

        session.trigger("actionRedo");
        QVERIFY(session.window.isModified());
        session.trigger("actionSave_Project");
        QVERIFY(!session.window.isModified());
        session.steps().handleDebounceTimeout();
        QVERIFY(redo->isEnabled()); // what a save writes is no step
        session.trigger("actionUndo");
        QCOMPARE(nodeId(), u"32"_s);
        QVERIFY(session.window.isModified()); // the file holds another state now
        session.trigger("actionRedo");
        QVERIFY(!session.window.isModified());
        session.step(u"8"_s);
        QVERIFY(session.window.isModified());
        session.trigger("actionUndo");
        QVERIFY(!session.window.isModified());
        QCOMPARE(nodeId(), u"7"_s);
        session.trigger("actionUndo");
        QVERIFY(session.window.isModified());
        QCOMPARE(nodeId(), u"32"_s);
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"7"_s);

        for (const auto &value : {u"9"_s, u"10"_s, u"11"_s})
            session.step(value);
        QCOMPARE(session.window.statusBar()->currentMessage(),
                 u"Undo limit reached - the oldest undo step has been dropped."_s);
        GuiHelper::queueFileName(file(u"other.vxmp"_s));
        session.trigger("actionSave_Project_as");
        QVERIFY(!undo->isEnabled() && !redo->isEnabled());
    }

    void undoStaysAwayFromARun()
    {
        Session session({u"-hidden"_s});
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        const auto *undo = session.window.findChild<QAction *>(u"actionUndo"_s);
        session.step(u"7"_s);
        bool enabledDuringRun = true;
        QTimer::singleShot(50, this, [&] {
            session.steps().handleDebounceTimeout();
            enabledDuringRun = undo->isEnabled();
        });
        session.store->setGeneralSetting(u"co_node_id"_s, u"8"_s);
        session.trigger("actionGenerate_Output");
        QVERIFY(!enabledDuringRun);
        QVERIFY(undo->isEnabled());
        session.trigger("actionUndo");
        QCOMPARE(session.store->getGeneralSetting(u"co_node_id"_s), u"7"_s);
    }

    void aLostSnapshotIsTold()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        session.step(u"7"_s);
        const QString data = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
        const QString folder = data + u"/undo_%1"_s.arg(QCoreApplication::applicationPid());
        for (const QString &name : QDir(folder).entryList(QDir::Files))
            QVERIFY(QFile::remove(folder + u'/' + name));
        session.trigger("actionUndo");
        const QString message = session.window.statusBar()->currentMessage();
        QVERIFY2(message.startsWith(u"Cannot undo: snapshot '"_s), qPrintable(message));
        QCOMPARE(session.store->getGeneralSetting(u"co_node_id"_s), u"7"_s);
    }

    void aFailedSaveKeepsTheProjectOpen()
    {
        const QString path = project(u"device.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        session.edit();
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        GuiHelper::queueAnswer(QMessageBox::Save);
        GuiHelper::queueAnswer(QMessageBox::Ok);
        QVERIFY(!session.window.closeCheck());
        QVERIFY(session.window.isModified());
        QCOMPARE(shownTexts().last(), u"Cannot save project file."_s);
    }

    void saveAsTakesTheNewPath()
    {
        Session session;
        GuiHelper::queueAnswer(QMessageBox::Ok); // there is no template
        session.window.newProject();
        session.edit();
        GuiHelper::queueFileName(QString()); // cancelled
        session.trigger("actionSave_Project");
        QVERIFY(session.window.isModified());

        GuiHelper::queueFileName(file(u"first"_s));
        session.trigger("actionSave_Project"); // has no path yet
        QVERIFY(QFile::exists(file(u"first.vxmp"_s)));
        QCOMPARE(session.window.projectBaseName(), u"first"_s);
        GuiHelper::queueFileName(file(u"second.vxmt"_s));
        session.trigger("actionSave_Project_as");
        QVERIFY(!session.window.isModified());
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(file(u"second.vxmt"_s)));
        ObjectDataBase reopened;
        QVERIFY(reopened.openDataBase(file(u"second.vxmt"_s)));
        QCOMPARE(reopened.getMiscSetting(u"edited"_s), u"1"_s);
    }

    void linesComeAndGo()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        // Line 0 has an error register, so only what is shared goes along.
        ObjectDataBase::SUBINDEX_DATA_T shared;
        shared.sharedlines = true;
        session.store->addIndex(0, 0x2100, {});
        session.store->addSubIndex(0, 0x2100, 0, shared);
        session.store->addIndex(0, 0x1F80, {});

        GuiHelper::queueAnswer(QMessageBox::No);
        session.choose(255);
        QVERIFY(!session.store->lineExists(1));
        QCOMPARE(session.lines()->currentData().toInt(), 0);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(255);
        QCOMPARE(session.store->getLineType(1), 1);
        QCOMPARE(session.store->getIndices(1), QList<quint16>{0x2100});
        QCOMPARE(session.window.currentLine(), 1);
        QCOMPARE(session.lines()->currentText(), u"Line 1 - CANopen"_s);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        queueProtocol(u"btnCANopenCAN"_s);
        session.choose(252);
        QCOMPARE(session.store->getLineType(1), 6);
        QCOMPARE(session.lines()->currentText(), u"Line 1 - CANopen + CAN"_s);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(253);
        QCOMPARE(session.store->getLineType(2), 6);
        QCOMPARE(session.store->getIndices(2), session.store->getIndices(1));

        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(254);
        QVERIFY(!session.store->lineExists(2));
        QCOMPARE(session.window.currentLine(), 1);
        QCOMPARE(shownTexts(), (QStringList{u"Do you want to add a new line?"_s,
                                            u"Do you want to add a new line?"_s,
                                            u"Do you want to add change the type of line 1?"_s,
                                            u"Do you want to duplicate the last line?"_s,
                                            u"Do you want to delete this line?"_s}));
    }

    void mandatoryObjectsComeFromTheLibrary()
    {
        QCoreApplication::setApplicationName(canEdition);
        Session session;
        session.library->addNode(ObjectDataBase::stagingLine, {});
        ObjectDataBase::INDEX_DATA_T object;
        object.category = CANopen::Mandatory;
        session.library->addIndex(ObjectDataBase::stagingLine, 0x1001, object);
        object.category = CANopen::Optional;
        session.library->addIndex(ObjectDataBase::stagingLine, 0x1002, object);

        GuiHelper::queueAnswer(QMessageBox::Yes);
        queueProtocol(u"btnCANopen"_s);
        session.choose(255);
        QCOMPARE(session.store->getLineType(1), 1);
        QCOMPARE(session.store->getIndices(1), QList<quint16>{0x1001});
    }

    void theNumberOfLinesHasItsEnds()
    {
        Session session;
        session.choose(254); // line 0 stays
        QVERIFY(session.store->lineExists(0));
        for (quint8 line = 1; line < ObjectDataBase::maximumLines; ++line)
            session.store->addNode(line, {});
        session.window.updateLinesComboBox();
        GuiHelper::takeShownBoxes();
        session.choose(255);
        session.choose(253);
        QCOMPARE(session.store->getLines().size(), ObjectDataBase::maximumLines);
        const QString refusal = u"The maximum number of 32 lines has been reached."_s;
        QCOMPARE(shownTexts(), (QStringList{refusal, refusal}));
    }

    void generationFillsThePane()
    {
        const QString path = project(u"device.vxmp"_s);
        Session session({u"-hidden"_s});
        QVERIFY(session.window.openProject(path));
        // Nothing may interfere with a run.
        bool closedDuringRun = true;
        bool savedDuringRun = true;
        QTimer::singleShot(50, this, [&] {
            const auto *save = session.window.findChild<QAction *>(u"actionSave_Project"_s);
            savedDuringRun = save->isEnabled();
            closedDuringRun = session.window.close();
        });
        session.window.show();
        session.trigger("actionGenerate_Output");
        QVERIFY(!closedDuringRun);
        QVERIFY(!savedDuringRun);

        const auto *pane = session.window.findChild<GeneratorOutputForm *>();
        const QString log = pane->getLogging();
        QVERIFY2(log.contains(u"Generation of device completed."_s), qPrintable(log));
        QVERIFY(log.contains(QRegularExpression(u"\\n\\n\\d\\d:\\d\\d:\\d\\d: Check of model"_s)));
        QVERIFY(QFile::exists(file(u"device.eds"_s)));
        QVERIFY(QApplication::overrideCursor() == nullptr);
        QVERIFY(session.window.findChild<QAction *>(u"actionSave_Project"_s)->isEnabled());
    }

    void criticalErrorsAreTold()
    {
        Session session({u"-hidden"_s});
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        session.store->deleteIndex(0, 0x1000);
        session.trigger("actionGenerate_Output");
        QCOMPARE(
            shownTexts(),
            QStringList{u"The project contains critical errors. Check Generator Output window."_s});
        QVERIFY(!QFile::exists(file(u"device.eds"_s)));
    }

    void networkToolModeNamesItsNode()
    {
        const QString path = project(u"device.vxmp"_s);
        ObjectDataBase store;
        QVERIFY(store.openDataBase(path));
        store.setGeneralSetting(u"co_node_id"_s, u"0x120"_s);
        store.setGeneralSetting(u"co_network_id"_s, u"3"_s);
        QVERIFY(store.saveDatabase());
        Session session({path, u"-tsk"_s});
        QVERIFY(session.window.openProject(path));
        session.window.doThingsAfter1Second();
        QCOMPARE(session.window.windowTitle(),
                 u"tolvex device systems - CANopen Quillforge 4.3.3 invoked by CANopen Tessmark "
                 "for Node 32 (network 3)"_s);
        for (const char *name : {"actionNew_Project", "actionOpen_Project", "actionClose_Project",
                                 "actionGenerate_Output"}) {
            QVERIFY(!session.window.findChild<QAction *>(QLatin1String(name))->isEnabled());
        }
    }

    void geometryComesBack()
    {
        {
            Session session;
            session.window.show();
            session.window.resize(900, 600);
            session.window.move(40, 50);
            QVERIFY(session.window.close());
        }
        Session again;
        QCOMPARE(again.window.size(), QSize(900, 600));
        QCOMPARE(again.window.pos(), QPoint(40, 50));
        again.window.move(90000, 90000);
        again.window.bringOntoScreen();
        QCOMPARE(again.window.pos(), QPoint(100, 30));
    }

    void theWindowFitsASmallScreen()
    {
        Session session;
        QVERIFY(session.window.openProject(project(QString(60, u'p') + u".vxmp"_s)));
        session.window.show();
        QVERIFY(session.window.minimumSizeHint().width() <= 1000);
        QVERIFY(session.window.minimumSizeHint().height() <= 700);
    }
};

int main(int argc, char *argv[])
{
    TolvexBaseApplication application(argc, argv, canopenEdition, u"4.3.3"_s);
    application.setOrganizationName(u"tolvex"_s);
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    TestMainWindow test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mainwindow.moc"

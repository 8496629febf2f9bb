#include "app/recentprojects.h"
#include "canopen/linetype.h"
#include "gui/guihelper.h"
#include "store/usersettings.h"
#include "tests/app/windowtest.h"

#include <QMessageBox>

using namespace Qt::StringLiterals;
using namespace WindowParts;

/// New, open, save and close, with what the user is asked.
class TestWindowProject : public WindowTest
{
    Q_OBJECT

private slots:
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

        // There is no template beside a test program, but that of J1939 is inside of it.
        const bool hasTemplate = edition == j1939Edition;
        QCOMPARE(shownTexts(),
                 hasTemplate ? QStringList() : QStringList{u"Cannot create new project file."_s});
        QCOMPARE(session.store->getJ1939Setting(u"bamcycletime"_s),
                 hasTemplate ? u"50"_s : QString());
        QCOMPARE(session.store->getLineType(0), type);
        QCOMPARE(session.store->getGeneralSetting(u"new_init_structure"_s), u"1"_s);
        QCOMPARE(session.store->getMiscSetting(u"CreateToolVersion"_s), u"4.3.3"_s);
        QVERIFY(!session.store->indexExists(0, 0x2000));
        QCOMPARE(session.path()->text(), u"new project"_s);
        QVERIFY(!session.window.isModified());
        QCOMPARE(session.window.windowTitle(), u"newproject[*] - %1  4.3.3"_s.arg(edition));
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
        QCOMPARE(session.window.projectDirectory(), folder());
        QCOMPARE(UserSettings::general(u"lastproject"_s).toString(), path);
        QCOMPARE(UserSettings::general(u"projectpath"_s).toString(), folder());
        QCOMPARE(RecentProjects::entries().value(0).path, path);

        session.store->setGeneralSetting(u"co_node_id"_s, u"7"_s);
        QVERIFY(session.window.isModified() && session.window.isWindowModified());
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"32"_s);
        session.trigger("actionSave_Project");
        QVERIFY(!session.window.isModified() && !session.window.isWindowModified());
        QCOMPARE(session.status(), u"device.vxmp is saved."_s);
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"7"_s);
        QVERIFY(GuiHelper::takeShownBoxes().isEmpty());
    }

    void aRelativePathIsOpenedFromTheCurrentFolder()
    {
        QVERIFY(!project(u"device.vxmp"_s).isEmpty());
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder()));
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
        QTest::newRow("no text project") << u"a.vxmt"_s << QByteArray("no project");
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
        session.store->addNode(1, {});
        session.window.selectLine(1);
        const QString bad = name.isEmpty() ? name : file(name);
        QVERIFY(!session.window.openProject(bad));

        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes[0].text, u"Cannot open project file %1."_s.arg(bad));
        QCOMPARE(boxes[0].title, canopenEdition + u"  4.3.3"_s);
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(good));
        QVERIFY(session.store->indexExists(0, 0x2000));
        QCOMPARE(session.window.currentLine(), 1);
        session.edit();
        session.trigger("actionSave_Project");
        ObjectDataBase reopened;
        QVERIFY(reopened.openDataBase(good));
        QVERIFY(reopened.indexExists(0, 0x2000));
    }

    /// What the disk has of the working copy is of no use any more.
    void aBrokenWorkingCopyIsNotSaved()
    {
        const QString path = project(u"device.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        session.step(u"7"_s);
        const auto breakCopy = [&] {
            QFile working(session.store->workingFiles().constLast());
            QVERIFY(working.open(QIODevice::ReadWrite) && working.seek(8192));
            working.write(QByteArray(int(working.size()) - 8192, 'x'));
        };
        breakCopy();
        session.trigger("actionSave_Project");
        QCOMPARE(shownTexts(), QStringList{u"Cannot save project file."_s});
        QVERIFY(session.window.isModified());
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"32"_s);

        GuiHelper::queueAnswer(GuiHelper::firstExtraButton);
        session.trigger("actionSave_Project");
        QCOMPARE(shownTexts(), QStringList{u"Cannot save project file."_s});
        QVERIFY(!session.window.isModified());
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"7"_s);
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
        QTest::addColumn<QString>("files"); // that the first box names; none for no such box
        QTest::addColumn<int>("boxes");
        const auto row = [](const char *name, const QString &edition, const QString &version,
                            const QStringList &arguments, bool copyExists, const QString &files,
                            int boxes) {
            QTest::newRow(name) << edition << version << arguments << copyExists << files << boxes;
        };
        const QString now = u"-now"_s;
        row("3.6", canopenEdition, u"3.6.0"_s, {}, false, u"co_common.c and co_memcpy.c"_s, 2);
        row("3.6, CAN", canEdition, u"3.6.2"_s, {}, false,
            u"co_common.c, co_memcpy.c and co_mapping.c"_s, 2);
        row("3.7", canopenEdition, u"3.7.0"_s, {}, false, u"co_memcpy.c"_s, 2);
        row("3.8, J1939", j1939Edition, u"3.8.9"_s, {}, false, u"co_memcpy.c and co_mapping.c"_s,
            2);
        row("3.6, no notes", canopenEdition, u"3.6.0"_s, {now}, false, {}, 1);
        row("3.6, network tool", canopenEdition, u"3.6.0"_s, {u"-tsk"_s}, false, {}, 0);
        row("3.8, copy there", canopenEdition, u"3.8.0"_s, {}, true, u"co_memcpy.c"_s, 1);
        row("3.9", canEdition, u"3.9.0"_s, {}, false, {}, 1);
        row("4.0", canopenEdition, u"4.0.0"_s, {}, false, {}, 0);
        row("EnergyBus", energyBusEdition, u"3.6.0"_s, {}, false, {}, 1);
    }

    void version3ProjectsAreNoted()
    {
        QFETCH(QString, edition);
        QFETCH(QString, version);
        QFETCH(QStringList, arguments);
        QFETCH(bool, copyExists);
        QFETCH(QString, files);
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
        const QString note = u"This project has been created by an older version. Please add the "
                             "file %1 to your project or makefile."_s;
        if (!files.isEmpty())
            QCOMPARE(texts.first(), note.arg(files));
        QCOMPARE(session.store->getMiscSetting(u"PreviousToolVersion"_s),
                 files.isEmpty() ? QString() : version);
        const bool copied = edition != energyBusEdition && version.startsWith(u"3."_s) &&
                            !arguments.contains(u"-tsk"_s);
        QCOMPARE(QFile::exists(copy), copied || copyExists);
        if (copied && !copyExists) {
            QCOMPARE(
                texts.last(),
                u"The project had been created using V3.x of the tool. A copy has been saved "
                "as %1.\n\n In order to use the current project %2 with this version of "
                "Quillforge, make sure to use the corresponding stack version."_s.arg(copy, path));
            QFile kept(copy);
            QVERIFY(kept.open(QIODevice::ReadOnly));
            QCOMPARE(kept.readAll(), before);
        }
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
        QCOMPARE(session.status(), u"first.vxmp is saved."_s);

        // A name that leads to another file by its suffix replaces nothing without a question.
        QVERIFY(!project(u"device 2.1.vxmp"_s).isEmpty());
        GuiHelper::queueFileName(file(u"device 2.1"_s));
        GuiHelper::queueAnswer(QMessageBox::No);
        GuiHelper::queueFileName(QString());
        session.trigger("actionSave_Project_as");
        QCOMPARE(shownTexts().last(),
                 u"device 2.1.vxmp already exists.\nDo you want to replace it?"_s);
        QCOMPARE(session.window.projectBaseName(), u"first"_s);

        GuiHelper::queueFileName(file(u"second.vxmt"_s));
        session.trigger("actionSave_Project_as");
        QVERIFY(!session.window.isModified());
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(file(u"second.vxmt"_s)));
        ObjectDataBase reopened;
        QVERIFY(reopened.openDataBase(file(u"second.vxmt"_s)));
        QCOMPARE(reopened.getMiscSetting(u"edited"_s), u"1"_s);
    }
};

int main(int argc, char *argv[])
{
    return WindowTest::run<TestWindowProject>(argc, argv);
}

#include "tst_windowproject.moc"

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

    void failedOpenIsTold()
    {
        const QString good = project(u"good.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(good));
        session.store->addNode(1, {});
        session.window.selectLine(1);
        QVERIFY(!session.window.openProject(file(u"none.vxmp"_s)));
        const QList<GuiHelper::Box> boxes = GuiHelper::takeShownBoxes();
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes[0].text, u"Cannot open project file %1."_s.arg(file(u"none.vxmp"_s)));
        QCOMPARE(boxes[0].title, canopenEdition + u"  4.3.3"_s);
        QVERIFY(!boxes[0].informativeText.isEmpty());
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(good));
        QCOMPARE(session.window.currentLine(), 1);
    }

    void notesOfVersion3AreShown()
    {
        Session session({u"-now"_s}); // spares those on files of the stack
        const QString path = project(u"old.vxmp"_s, {.savedByVersion = u"3.6.0"_s});
        QVERIFY(session.window.openProject(path));
        const QStringList texts = shownTexts();
        QCOMPARE(texts.size(), 1);
        QVERIFY(texts.first().contains(path + u".bak_v3"_s));
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

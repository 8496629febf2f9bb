#include "app/recentprojects.h"
#include "canopen/linetype.h"
#include "tests/app/windowtest.h"

#include <QDir>

using namespace WindowParts;

/// New, open, save and close, with what the user is asked.
class TestWindowProject : public WindowTest
{
    Q_OBJECT

private slots:
    void newProjectBelongsToItsEdition_data()
    {
        // The answer is the button of the protocol dialog.
        addRows<QString, QString, int>({
            {"CANopen", canopenEdition, "", 1},
            {"J1939", j1939Edition, "", 2},
            {"EnergyBus", energyBusEdition, "", 1},
            {"CAN, raw", canEdition, "btnCAN", 4},
            {"CAN, both", canEdition, "btnCANopenJ1939", 5},
            {"CAN, J1939 and CAN", canEdition, "btnJ1939CAN", 7},
            {"CAN, cancelled", canEdition, "-", 1},
        });
    }

    void newProjectBelongsToItsEdition()
    {
        const auto [edition, answer, type] = row<QString, QString, int>();
        QCoreApplication::setApplicationName(edition);
        Session session;
        session.store->addIndex(0, 0x2000, {}); // of the project before
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
        const QString path = project();
        Session session;
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder()));
        const bool opened = session.open(u"device.vxmp"_s);
        QDir::setCurrent(before);
        QVERIFY(opened && !session.window.isModified());
        QCOMPARE(session.path()->text(), QDir::toNativeSeparators(path));
        QCOMPARE(session.window.projectBaseName(), u"device"_s);
        QCOMPARE(session.window.projectDirectory(), folder());
        QCOMPARE(UserSettings::general(u"lastproject"_s).toString(), path);
        QCOMPARE(UserSettings::general(u"projectpath"_s).toString(), folder());
        QCOMPARE(RecentProjects::entries().value(0).path, path);

        session.setNodeId(u"7"_s);
        QVERIFY(session.window.isModified() && session.window.isWindowModified());
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"32"_s);
        session.trigger("actionSave_Project");
        QVERIFY(!session.window.isModified() && !session.window.isWindowModified());
        QCOMPARE(session.status(), u"device.vxmp is saved."_s);
        QCOMPARE(ProjectFixture::generalSetting(path, u"co_node_id"_s), u"7"_s);
        QCOMPARE(shownTexts(), QStringList());
    }

    void failedOpenIsTold()
    {
        const QString good = project(u"good.vxmp"_s);
        Session session;
        QVERIFY(session.open(good));
        session.store->addNode(1, {});
        session.window.selectLine(1);
        QVERIFY(!session.open(file(u"none.vxmp"_s)));
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
        QVERIFY(session.open(path));
        const QStringList texts = shownTexts();
        QVERIFY(texts.size() == 1 && texts[0].contains(path + u".bak_v3"_s));
    }

    /// What the disk has of the working copy is of no use any more.
    void aBrokenWorkingCopyIsNotSaved()
    {
        const QString path = project();
        Session session;
        QVERIFY(session.open(path));
        session.step(u"7"_s);
        QFile working(session.store->workingFiles().constLast());
        QVERIFY(working.open(QIODevice::ReadWrite) && working.seek(8192));
        working.write(QByteArray(int(working.size()) - 8192, 'x'));
        working.close();
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
        addRows<const char *, int, bool>({
            // no question is expected where there is no answer
            {"yes", "", QMessageBox::Yes, true},
            {"no", "", QMessageBox::No, false},
            {"network tool", "-tsk", 0, true},
        });
    }

    void foreignChangesAreAskedAbout()
    {
        const auto [arguments, answer, opened] = row<const char *, int, bool>();
        const QString path = project();
        ProjectFixture::runOn(
            path, u"update GeneralSettings set value = '99' where item = 'co_node_id'"_s);
        Session session(words(arguments));
        if (answer != 0)
            GuiHelper::queueAnswer(answer);
        QCOMPARE(session.open(path), opened);
        QCOMPARE(session.window.projectDirectory().isEmpty(), !opened);
        QCOMPARE(shownTexts().value(0) ==
                     u"This project file has been modified outside of the tool."_s,
                 answer != 0);
        if (opened)
            QVERIFY(!session.store->getMiscSetting(u"TamperLog"_s).isEmpty());
    }

    void aFailedSaveKeepsTheProjectOpen()
    {
        const QString path = project();
        Session session;
        QVERIFY(session.open(path));
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

WINDOW_TEST_MAIN(TestWindowProject)
#include "tst_windowproject.moc"

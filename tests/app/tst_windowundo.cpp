#include "gui/guihelper.h"
#include "store/usersettings.h"
#include "tests/app/windowtest.h"

#include <QAction>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace WindowParts;

/// Undo and redo as the window offers them.
class TestWindowUndo : public WindowTest
{
    Q_OBJECT

private slots:
    void undoFollowsTheProject_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::newRow("database") << u"vxmp"_s;
        QTest::newRow("text") << u"vxmt"_s;
    }

    void undoFollowsTheProject()
    {
        QFETCH(QString, suffix);
        UserSettings::setGeneral(u"undomaxdepth"_s, 2);
        const QString path = project(u"device."_s + suffix);
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
        ObjectDataBase saved;
        QVERIFY(saved.openDataBase(path));
        QCOMPARE(saved.getGeneralSetting(u"co_node_id"_s), u"7"_s);

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

    void aStepShowsTheLineThatItBrings()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        GuiHelper::queueAnswer(QMessageBox::Yes);
        session.choose(255);
        session.steps().handleDebounceTimeout();
        QCOMPARE(session.window.currentLine(), 1);
        session.trigger("actionUndo");
        QTRY_COMPARE(session.window.currentLine(), 0);
        session.trigger("actionRedo");
        QCOMPARE(session.window.currentLine(), 1);
        QCOMPARE(session.lines()->currentData().toInt(), 1);
    }

    void theEndOfUndoIsTold()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        const QString data = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
        const QString folder = data + u"/undo_%1"_s.arg(QCoreApplication::applicationPid());
        QVERIFY(QDir(folder).removeRecursively());
        session.step(u"7"_s);
        QVERIFY2(session.status().startsWith(u"Undo is switched off"_s),
                 qPrintable(session.status()));
        QVERIFY(QDir().mkpath(folder)); // for the test functions behind this one
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
};

int main(int argc, char *argv[])
{
    return WindowTest::run<TestWindowUndo>(argc, argv);
}

#include "tst_windowundo.moc"

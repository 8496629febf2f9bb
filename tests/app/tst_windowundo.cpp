#include "tests/app/windowtest.h"

#include <QDir>
#include <QStandardPaths>
#include <QTimer>

using namespace WindowParts;

namespace {

/// Where this process keeps its snapshots.
QString snapshotFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           u"/undo_%1"_s.arg(QCoreApplication::applicationPid());
}

} // namespace

/// Undo and redo as the window offers them.
class TestWindowUndo : public WindowTest
{
    Q_OBJECT

private slots:
    void undoFollowsTheProject_data()
    {
        addRows<QString>({{"database", "device.vxmp"}, {"text", "device.vxmt"}});
    }

    void undoFollowsTheProject()
    {
        const auto [name] = row<QString>();
        UserSettings::setGeneral(u"undomaxdepth"_s, 2);
        Session session;
        QVERIFY(session.open(project(name)));
        // Value, "*" if it is to be saved, and what is offered.
        const auto state = [&] {
            return session.nodeId() + (session.window.isModified() ? "*" : "") +
                   (session.enabled("actionUndo") ? " undo" : "") +
                   (session.enabled("actionRedo") ? " redo" : "");
        };
        QCOMPARE(state(), u"32"_s);
        session.step(u"7"_s);
        session.step(u"8"_s);
        session.trigger("actionUndo");
        QCOMPARE(state(), u"7* undo redo"_s);
        session.trigger("actionUndo");
        QCOMPARE(state(), u"32 redo"_s); // an edit that was undone needs no saving
        QVERIFY(session.window.closeCheck());

        session.trigger("actionRedo");
        QCOMPARE(state(), u"7* undo redo"_s);
        session.trigger("actionSave_Project");
        session.steps().handleDebounceTimeout();
        QCOMPARE(state(), u"7 undo redo"_s); // what a save writes is no step
        session.trigger("actionUndo");
        QCOMPARE(state(), u"32* redo"_s); // the file holds another state now
        session.trigger("actionRedo");
        QCOMPARE(state(), u"7 undo redo"_s);
        session.step(u"8"_s);
        QCOMPARE(state(), u"8* undo"_s);
        session.trigger("actionUndo");
        QCOMPARE(state(), u"7 undo redo"_s);
        session.trigger("actionUndo");
        QCOMPARE(state(), u"32* redo"_s);
        ObjectDataBase saved;
        QVERIFY(saved.openDataBase(file(name)));
        QCOMPARE(saved.getGeneralSetting(u"co_node_id"_s), u"7"_s);

        for (const auto &value : {u"9"_s, u"10"_s, u"11"_s})
            session.step(value);
        QCOMPARE(session.status(),
                 u"Undo limit reached - the oldest undo step has been dropped."_s);
        GuiHelper::queueFileName(file(u"other.vxmp"_s));
        session.trigger("actionSave_Project_as");
        QCOMPARE(state(), u"11"_s);
    }

    void undoStaysAwayFromARun()
    {
        Session session({u"-hidden"_s});
        QVERIFY(session.open(project()));
        session.step(u"7"_s);
        bool enabledDuringRun = true;
        QTimer::singleShot(50, this, [&] {
            session.steps().handleDebounceTimeout();
            enabledDuringRun = session.enabled("actionUndo");
        });
        session.setNodeId(u"8"_s);
        session.trigger("actionGenerate_Output");
        QVERIFY(!enabledDuringRun && session.enabled("actionUndo"));
        session.trigger("actionUndo");
        QCOMPARE(session.nodeId(), u"7"_s);
    }

    void aStepShowsTheLineThatItBrings()
    {
        Session session;
        QVERIFY(session.open(project()));
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

    void lostSnapshotsAreTold()
    {
        Session session;
        QVERIFY(session.open(project()));
        session.step(u"7"_s);
        QDir folder(snapshotFolder());
        for (const QString &name : folder.entryList(QDir::Files))
            QVERIFY(folder.remove(name));
        session.trigger("actionUndo");
        const QString message = session.status();
        QVERIFY2(message.startsWith(u"Cannot undo: snapshot '"_s), qPrintable(message));
        QCOMPARE(session.nodeId(), u"7"_s);

        QVERIFY(folder.removeRecursively());
        session.step(u"8"_s);
        QVERIFY2(session.status().startsWith(u"Undo is switched off"_s),
                 qPrintable(session.status()));
        QVERIFY(QDir().mkpath(snapshotFolder())); // for the test functions behind this one
    }
};

WINDOW_TEST_MAIN(TestWindowUndo)
#include "tst_windowundo.moc"

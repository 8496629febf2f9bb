#include "tests/app/windowtest.h"

#include <QAction>

using namespace Qt::StringLiterals;
using namespace WindowParts;

/// The window itself.
class TestMainWindow : public WindowTest
{
    Q_OBJECT

private slots:
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
    return WindowTest::run<TestMainWindow>(argc, argv);
}

#include "tst_mainwindow.moc"

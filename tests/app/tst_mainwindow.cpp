#include "app/generatoroutputform.h"
#include "store/usersettings.h"
#include "tests/app/windowtest.h"

#include "app/generatoroutputform.h"
#include "app/startpage.h"
#include "store/usersettings.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QTextBrowser>

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

    void actionsShowKeysAndIconsAlike()
    {
        Session session;
        const auto *save = session.window.findChild<QAction *>(u"actionSave_Project"_s);
        QVERIFY(save->toolTip().endsWith(
            u" (%1)"_s.arg(save->shortcut().toString(QKeySequence::NativeText))));
        for (const QMenu *menu : session.window.findChildren<QMenu *>()) {
            QSet<bool> kinds;
            for (const QAction *entry : menu->actions()) {
                if (!entry->isSeparator())
                    kinds.insert(entry->icon().isNull());
            }
            QVERIFY2(kinds.size() <= 1, qPrintable(menu->title()));
        }
    }

    void selectAllInTheOutput()
    {
        Session session;
        auto *form = session.window.findChild<GeneratorOutputForm *>();
        form->appendLogging(u"a"_s);
        auto *pane = form->findChild<QTextBrowser *>(u"tbLogging"_s);
        session.window.show();
        pane->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&session.window));
        const QString all = form->getLogging();
        QTest::keyClick(pane, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(pane->textCursor().selectedText(), all);
    }

    /// Offered by a new project that nobody has changed, until there is something to show.
    void startPage()
    {
        const QString path = project(u"p.vxmp"_s);
        Session session;
        QVERIFY(session.window.openProject(path));
        session.window.show();
        auto *page = session.window.findChild<StartPage *>(u"startPage"_s);
        QVERIFY(!page->isVisible());
        session.window.newProject();
        QVERIFY(page->isVisible());
        session.edit();
        QVERIFY(!page->isVisible());
        session.window.newProject();
        QVERIFY(page->isVisible());
        auto *form = session.window.findChild<GeneratorOutputForm *>();
        form->appendLogging(u"a"_s);
        QVERIFY(!page->isVisible());
        form->clearLogging();
        QVERIFY(page->isVisible());

        // By the keyboard alone; one that is gone stays, but can't be opened.
        RecentProjects::add(file(u"gone.vxmp"_s), 0);
        session.window.newProject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const auto recent = page->findChildren<QAbstractButton *>(u"startRecent"_s);
        QCOMPARE(recent.size(), 2);
        QVERIFY(!recent.at(1)->isEnabled());
        QCOMPARE(recent.first()->text(), u"p.vxmp"_s);
        QTest::keyClick(recent.first(), Qt::Key_Return);
        QCOMPARE(session.window.projectBaseName(), u"p"_s);
        QVERIFY(!page->isVisible());
    }

    void geometryComesBack()
    {
        {
            Session session;
            session.window.show();
            session.window.resize(740, 600);
            session.window.move(40, 50);
            QVERIFY(session.window.close());
        }
        Session again;
        QCOMPARE(again.window.size(), QSize(740, 600));
        QCOMPARE(again.window.pos(), QPoint(40, 50));
        again.window.move(90000, 90000);
        again.window.bringOntoScreen();
        QCOMPARE(again.window.pos(), QPoint(100, 30));
    }

    void theRestoredWindowFitsTheScreen_data()
    {
        QTest::addColumn<QRect>("saved");
        QTest::newRow("too large") << QRect(0, 0, 5000, 4000);
        QTest::newRow("over the edge") << QRect(700, 700, 600, 500);
        QTest::newRow("on no screen") << QRect(9000, -500, 700, 500);
    }

    void theRestoredWindowFitsTheScreen()
    {
        QFETCH(QRect, saved);
        UserSettings settings;
        settings.setValue(u"Geometry/size"_s, saved.size());
        settings.setValue(u"Geometry/pos"_s, saved.topLeft());
        settings.sync();
        Session session;
        const QRect available = session.window.screen()->availableGeometry();
        const QRect place(session.window.pos(), session.window.size());
        QVERIFY2(available.contains(place), qPrintable(QDebug::toString(place)));
    }

    void editCommandsAreOfferedWhereTheyWork()
    {
        QGuiApplication::clipboard()->setText(u"42"_s);
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        const auto offered = [&] {
            QString commands;
            for (const char *name :
                 {"actionCut", "actionCopy", "actionPaste", "actionDelete", "actionDuplicate"})
                commands += session.action(name)->isEnabled() ? u'x' : u'-';
            return commands;
        };
        QLineEdit field(u"text"_s, session.window.centralWidget());
        session.window.show();
        session.window.activateWindow();
        session.lines()->setFocus();
        QTRY_COMPARE(offered(), u"-----"_s);
        field.show();
        field.setFocus();
        field.end(false);
        QTRY_COMPARE(offered(), u"--x--"_s);
        field.selectAll();
        QCOMPARE(offered(), u"xxxx-"_s);
        field.setReadOnly(true);
        QCOMPARE(offered(), u"-x---"_s);
        session.lines()->setFocus();
        QCOMPARE(offered(), u"-----"_s);

        auto *pane = session.window.findChild<GeneratorOutputForm *>();
        pane->appendLogging(u"message"_s);
        (void)pane->getLogging();
        auto *text = pane->findChild<QTextBrowser *>(u"tbLogging"_s);
        text->selectAll();
        QCOMPARE(offered(), u"-x---"_s);
        session.trigger("actionCopy");
        QVERIFY(QGuiApplication::clipboard()->text().contains(u"message"_s));
        QCOMPARE(shownTexts(), QStringList());
    }

    /// Who goes through the window by the keyboard sees where he is.
    void everyTabStopShowsTheFocus()
    {
        Session session;
        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        session.window.appendOutput(u"message"_s);
        session.window.show();
        session.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&session.window));
        int stops = 1;
        session.lines()->setFocus();
        QTest::keyClick(session.lines(), Qt::Key_Tab); // from now on it goes by the keyboard
        QWidget *first = QApplication::focusWidget();
        QWidget *widget = first;
        do {
            QVERIFY(widget != nullptr);
            const QImage focused = widget->grab().toImage();
            QTest::keyClick(widget, Qt::Key_Tab);
            QWidget *next = QApplication::focusWidget();
            QVERIFY2(next == widget || widget->grab().toImage() != focused,
                     qPrintable(QDebug::toString(widget)));
            widget = next;
        } while (widget != first && ++stops < 50);
        QVERIFY(stops >= 2 && stops < 50);
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

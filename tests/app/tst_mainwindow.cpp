#include "app/recentprojects.h"
#include "app/startpage.h"
#include "tests/app/windowtest.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QTextBrowser>

using namespace WindowParts;

/// The window itself.
class TestMainWindow : public WindowTest
{
    Q_OBJECT

private slots:
    void actionsCarryTheirNames_data()
    {
        addRows<QString, QString>({
            {"actionNew_Project", "&New Project", "Ctrl+N"},
            {"actionOpen_Project", "&Open Project", "Ctrl+O"},
            {"actionSave_Project", "&Save Project", "Ctrl+S"},
            {"actionSave_Project_as", "Save Project &as", ""},
            {"actionClose_Project", "&Close Project", ""},
            {"actionGenerate_Output", "&Generate Files", "Ctrl+G"},
            {"actionCopy", "C&opy", "Ctrl+C"},
            {"actionCut", "C&ut", "Ctrl+X"},
            {"actionPaste", "&Paste", "Ctrl+V"},
            {"actionDelete", "&Delete", ""},
            {"actionDuplicate", "Duplicate", "Ctrl+D"},
            {"actionCheck_for_Updates", "Check for &Updates", ""},
            {"action_Hel_p", "Hel&p", "F1"},
            {"action_Manual", "&Manual", "Ctrl+M"},
            {"actionEnable_Expert_Mode", "Enable Expert_Mode", ""},
            {"actionChangelog", "Changelog", ""},
            {"actionQuit", "&Quit", ""},
            {"actionUndo", "&Undo", "Ctrl+Z"},
            {"actionRedo", "&Redo", "Ctrl+Shift+Z"},
            {"action_About", "&About", "Ctrl+A"},
            {"actionAbout_Qt", "About &Qt", ""},
        });
    }

    void actionsCarryTheirNames()
    {
        const auto [text, shortcut] = row<QString, QString>();
        Session session;
        const QAction *action = session.action(QTest::currentDataTag());
        QVERIFY(action != nullptr);
        QCOMPARE(action->text(), text);
        QCOMPARE(action->shortcut().toString(), shortcut);
        QVERIFY(!action->statusTip().isEmpty());
        QVERIFY(!action->associatedObjects().isEmpty()); // in a menu
    }

    void actionsShowKeysAndIconsAlike()
    {
        Session session;
        const auto *save = session.action("actionSave_Project");
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
        auto *form = session.output();
        form->appendLogging(u"a"_s);
        auto *pane = form->findChild<QTextBrowser *>(u"tbLogging"_s);
        session.activate();
        pane->setFocus();
        const QString all = form->getLogging();
        QTest::keyClick(pane, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(pane->textCursor().selectedText(), all);
    }

    /// Offered by a new project that nobody has changed, until there is something to show.
    void startPage()
    {
        const QString path = project(u"p.vxmp"_s);
        Session session;
        QVERIFY(session.open(path));
        session.window.show();
        auto *page = session.window.findChild<StartPage *>(u"startPage"_s);
        QVERIFY(!page->isVisible());
        session.window.newProject();
        QVERIFY(page->isVisible());
        session.edit();
        QVERIFY(!page->isVisible());
        session.window.newProject();
        QVERIFY(page->isVisible());
        auto *form = session.output();
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

    void theRestoredWindowFitsTheScreen()
    {
        for (const QRect &saved :
             {QRect(0, 0, 5000, 4000), QRect(700, 700, 600, 500), QRect(9000, -500, 700, 500)}) {
            UserSettings settings;
            settings.setValue(u"Geometry/size"_s, saved.size());
            settings.setValue(u"Geometry/pos"_s, saved.topLeft());
            settings.sync();
            const Session session;
            const QRect place(session.window.pos(), session.window.size());
            QVERIFY2(session.window.screen()->availableGeometry().contains(place),
                     qPrintable(QDebug::toString(saved) + QDebug::toString(place)));
        }
    }

    void editCommandsAreOfferedWhereTheyWork()
    {
        QGuiApplication::clipboard()->setText(u"42"_s);
        Session session;
        QVERIFY(session.open(project()));
        const auto offered = [&] {
            QString commands;
            for (const char *name :
                 {"actionCut", "actionCopy", "actionPaste", "actionDelete", "actionDuplicate"})
                commands += session.action(name)->isEnabled() ? u'x' : u'-';
            return commands;
        };
        QLineEdit field(u"text"_s, session.window.centralWidget());
        session.activate();
        session.lines()->setFocus();
        QTRY_COMPARE(offered(), u"-----"_s);
        field.show();
        field.setFocus();
        field.end(false);
        QTRY_COMPARE(offered(), u"--x--"_s);
        field.selectAll();
        QCOMPARE(offered(), u"xxxx-"_s);
        // They go to the text, and leave one that can't be changed to the page.
        session.trigger("actionCut");
        QCOMPARE(field.text(), QString());
        session.trigger("actionPaste");
        QCOMPARE(field.text(), u"text"_s);
        field.home(false);
        session.trigger("actionDelete");
        QCOMPARE(field.text(), u"ext"_s);
        field.selectAll();
        field.setReadOnly(true);
        QCOMPARE(offered(), u"-x---"_s);
        session.trigger("actionPaste");
        session.trigger("actionDuplicate");
        QCOMPARE(field.text(), u"ext"_s);
        session.lines()->setFocus();
        QCOMPARE(offered(), u"-----"_s);

        auto *pane = session.output();
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
        QVERIFY(session.open(project()));
        session.window.appendOutput(u"message"_s);
        session.activate();
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
        QVERIFY(session.open(project(QString(60, u'p') + u".vxmp"_s)));
        session.window.show();
        QVERIFY(session.window.minimumSizeHint().width() <= 1000);
        QVERIFY(session.window.minimumSizeHint().height() <= 700);
    }
};

WINDOW_TEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"

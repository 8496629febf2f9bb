#include "app/exampleprojects.h"
#include "app/pagetable.h"
#include "gui/ansichighlighter.h"
#include "gui/basemainform.h"
#include "gui/fileviewerdialog.h"
#include "gui/guihelper.h"
#include "gui/manualhandler.h"
#include "gui/newupdatechecker.h"
#include "gui/tolvxappstyle.h"
#include "store/usersettings.h"
#include "tests/app/windowtest.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextLayout>

#include <cmath>

using namespace WindowParts;

namespace {

void write(const QString &path, const QByteArray &text)
{
    QSaveFile file(path); // as generators do, a new file in the old one's place
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(text);
    QVERIFY(file.commit());
}

/// A letter for the kind of token at each place of the text, lines joined by "|".
QString tokensOf(const QString &code)
{
    QTextDocument document(code);
    AnsiCHighlighter highlighter(&document);
    highlighter.rehighlight();
    const QString letters = u"ktpsnc"_s;
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QString line(block.length() - 1, u'.');
        for (const QTextLayout::FormatRange &range : block.layout()->formats()) {
            for (int kind = 0; kind < letters.size(); ++kind) {
                if (range.format == highlighter.format(AnsiCHighlighter::Token(kind)))
                    line.replace(range.start, range.length, QString(range.length, letters[kind]));
            }
        }
        lines << line;
    }
    return lines.join(u'|');
}

/// Answers each request with the same bytes, and goes on with them if it is told to.
class AnswerServer : public QTcpServer
{
public:
    explicit AnswerServer(const QByteArray &answer, bool endless = false)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, answer, endless] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, answer, endless] {
                request += socket->readAll();
                if (!request.contains("\r\n\r\n"))
                    return;
                socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + answer);
                if (endless) {
                    connect(socket, &QTcpSocket::bytesWritten, socket,
                            [socket] { socket->write(QByteArray(8192, '#')); });
                } else {
                    socket->disconnectFromHost();
                }
            });
        });
    }

    QString url() const { return u"http://127.0.0.1:%1/newest"_s.arg(serverPort()); }

    QByteArray request;
};

QAction *actionOf(const Session &session, const char *name)
{
    return session.window.findChild<QAction *>(QLatin1String(name));
}

QMenu *menuOf(const Session &session, const char *name)
{
    return session.window.findChild<QMenu *>(QLatin1String(name));
}

} // namespace

class TestHelp : public WindowTest
{
    Q_OBJECT

private slots:
    // --- Colours of C -----------------------------------------------------------------------

    void tokens_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("tokens");
        QTest::newRow("declaration")
            << u"const UNSIGNED8 x = 0x1Fu;"_s << u"kkkkk.ttttttttt.....nnnnn."_s;
        QTest::newRow("words in words")
            << u"intern voids UNSIGNED sizeofx"_s << u"............................."_s;
        QTest::newRow("numbers") << u"1.5e-3f .5 a-1 x1 1-2"_s << u"nnnnnnn.nn...n....n.n"_s;
        QTest::newRow("no comment in a string")
            << u"\"/* \\\" //\" 1 '\"' 2"_s << u"ssssssssss.n.sss.n"_s;
        QTest::newRow("comment over lines") << u"1 /* 2\n\"3\n*/ 4"_s << u"n.cccc|cc|cc.n"_s;
        QTest::newRow("line comment goes on") << u"// a \\\nint\nint"_s << u"cccccc|ccc|ttt"_s;
        QTest::newRow("directive")
            << u"  # define A 1 /* x */\nint"_s << u"..pppppppp...n.ccccccc|ttt"_s;
        QTest::newRow("directive goes on") << u"#if defined(A) && \\\n  defined(B)\ndefined"_s
                                           << u"ppp.ppppppp........|..ppppppp...|......."_s;
        QTest::newRow("header") << u"#include <a.h>\nif (a < b)"_s
                                << u"pppppppp.sssss|kk........"_s;
        QTest::newRow("hash in code") << u"a # b"_s << u"....."_s;
        QTest::newRow("string goes on") << u"\"a\\\nb\" 1"_s << u"sss|ss.n"_s;
        QTest::newRow("string left open") << u"\"a\n1"_s << u"ss|n"_s;
        QTest::newRow("comment in directive")
            << u"#if /*\n*/ defined\ndefined"_s << u"ppp.cc|cc.ppppppp|......."_s;
    }

    void tokens()
    {
        QFETCH(QString, code);
        QTEST(tokensOf(code), "tokens");
    }

    void coloursCanBeReadInEitherScheme()
    {
        QTextDocument document;
        AnsiCHighlighter highlighter(&document);
        const auto luminance = [](const QColor &colour) {
            const auto part = [](double value) {
                return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) +
                   0.0722 * part(colour.blueF());
        };
        for (const auto scheme : {TolvxAppStyle::Scheme::Light, TolvxAppStyle::Scheme::Dark}) {
            const QPalette palette = TolvxAppStyle::palette(scheme);
            highlighter.setPalette(palette);
            const double ground = luminance(palette.color(QPalette::Base));
            for (int kind = 0; kind < 6; ++kind) {
                const QColor text =
                    highlighter.format(AnsiCHighlighter::Token(kind)).foreground().color();
                const double other = luminance(text);
                const double contrast = (qMax(ground, other) + 0.05) / (qMin(ground, other) + 0.05);
                QVERIFY2(contrast >= 4.5, qPrintable(u"%1: %2"_s.arg(kind).arg(contrast)));
            }
        }
    }

    // --- File viewer ------------------------------------------------------------------------

    void viewerFollowsItsFile()
    {
        const QString path = file(u"gen_define.h"_s);
        write(path, "one\ntwo \xe4\none\n");
        FileViewerDialog viewer;
        QVERIFY(viewer.openFile(path));
        QCOMPARE(viewer.text(), u"one\ntwo \u00e4\none\n"_s); // not UTF-8, so Latin-1

        viewer.goToLine(2);
        auto *search = viewer.findChild<QLineEdit *>(u"viewerSearch"_s);
        auto *view = viewer.findChild<QPlainTextEdit *>(u"viewerText"_s);
        search->setText(u"ONE"_s);
        QCOMPARE(viewer.findChild<QLabel *>(u"viewerMatches"_s)->text(), u"2 places"_s);
        QCOMPARE(view->textCursor().blockNumber(), 2); // the one behind the cursor
        QVERIFY(viewer.findNext());
        QCOMPARE(view->textCursor().blockNumber(), 0); // and round again

        viewer.goToLine(3);
        write(path, "one\ntwo\nthree\nfour\n");
        QTRY_VERIFY(viewer.text().contains(u"four"_s));
        QCOMPARE(view->textCursor().blockNumber(), 2);

        QVERIFY(QFile::remove(path));
        auto *notice = viewer.findChild<QLabel *>(u"viewerNotice"_s);
        QTRY_VERIFY(notice->text().contains(u"gen_define.h"_s));
        QVERIFY(viewer.text().contains(u"four"_s)); // still worth reading
        write(path, "five");
        QTRY_COMPARE(viewer.text(), u"five"_s);
        QVERIFY(notice->text().isEmpty());
    }

    // --- Manual -----------------------------------------------------------------------------

    void everyPageIsThereAndEveryLinkLeadsSomewhere()
    {
        const ManualHandler handler(nullptr);
        QHash<QString, QString> pages; // file, Markdown
        QSet<QString> titles;
        for (const HelpViewerDialog::Chapter &chapter : ManualHandler::chapters()) {
            for (const QString &name : chapter.files) {
                const HelpPage page(ManualHandler::folder() + name);
                QVERIFY2(page.exists(), qPrintable(name));
                QVERIFY2(!titles.contains(page.title()), qPrintable(page.title()));
                titles << page.title();
                pages.insert(name, page.markdown());
            }
        }
        static const QRegularExpression link(uR"(\]\(([^)\s]+)\))"_s);
        for (auto page = pages.cbegin(); page != pages.cend(); ++page) {
            for (const auto &match : link.globalMatch(page.value())) {
                const QUrl url(match.captured(1));
                if (url.scheme().startsWith(u"http"_s))
                    continue;
                const QString where = page.key() + u": "_s + match.captured(1);
                const QString name = url.path().isEmpty() ? page.key() : url.fileName();
                QVERIFY2(pages.contains(name), qPrintable(where));
                if (!url.hasFragment())
                    continue;
                QTextDocument document;
                HelpPage(ManualHandler::folder() + name).show(document, QPalette());
                QVERIFY2(HelpPage::positionOf(document, url.fragment()) >= 0, qPrintable(where));
            }
        }
    }

    void everyFormHasItsPage()
    {
        for (const PageFactory &factory : PageFactory::all()) {
            const std::unique_ptr<BaseMainForm> form(factory.make(nullptr));
            QWidget field(form.get());
            const QString page = ManualHandler::pageFor(&field);
            QVERIFY2(!page.isEmpty(), factory.title);
            QVERIFY2(HelpPage(ManualHandler::folder() + page).exists(), qPrintable(page));
        }
    }

    void viewerFindsItsWay()
    {
        const ManualHandler handler(nullptr);
        HelpViewerDialog viewer(ManualHandler::folder(), ManualHandler::chapters());
        QVERIFY(!viewer.showPage(u"no-such-page.md"_s));
        QVERIFY(viewer.showPage(u"lines.md"_s));
        auto *text = viewer.findChild<QTextBrowser *>(u"helpText"_s);
        emit text->anchorClicked(QUrl(u"../docs/cli.md#exit-codes"_s));
        QCOMPARE(viewer.currentFile(), u"cli.md"_s);
        QCOMPARE(text->textCursor().block().text(), u"Exit codes"_s);
        emit text->anchorClicked(QUrl(u"nowhere.md"_s));
        QCOMPARE(viewer.currentFile(), u"cli.md"_s);
        viewer.back();
        QCOMPARE(viewer.currentFile(), u"lines.md"_s);
        viewer.forward();
        QCOMPARE(viewer.currentFile(), u"cli.md"_s);

        auto *search = viewer.findChild<QLineEdit *>(u"helpSearch"_s);
        search->setText(u"undomaxdepth"_s);
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(viewer.currentFile(), u"saving.md"_s);
        QCOMPARE(text->textCursor().selectedText(), u"undomaxdepth"_s);
        QVERIFY(viewer.showPage(u"lines.md"_s)); // what is marked goes with its page
        viewer.back();
        QCOMPARE(viewer.currentFile(), u"saving.md"_s);
    }

    // --- Updates ----------------------------------------------------------------------------

    void versionsCompareByNumber_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("newer"); // than 4.3.9
        QTest::newRow("patch") << u"4.3.10"_s << true;
        QTest::newRow("minor") << u"4.10"_s << true;
        QTest::newRow("same") << u"4.3.9"_s << false;
        QTest::newRow("same, longer") << u"4.3.9.0"_s << false;
        QTest::newRow("older, longer") << u"4.3.8.99"_s << false;
        QTest::newRow("older major") << u"3.99"_s << false;
    }

    void versionsCompareByNumber()
    {
        QFETCH(QString, version);
        QTEST(newUpdateChecker::isNewer(version, u"4.3.9"_s), "newer");
    }

    void updateAnswers_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("version"); // empty: an error
        QTest::newRow("one") << QByteArray("04417 4.4.0") << u"4.4.0"_s;
        QTest::newRow("among others")
            << QByteArray("# x\r\n\r\n04418 9.0\r\n04417\t4.3.3 note\r\n") << u"4.3.3"_s;
        QTest::newRow("other product") << QByteArray("044170 4.4.0\n4417 4.4.0") << QString();
        QTest::newRow("no version") << QByteArray("04417 soon") << QString();
        QTest::newRow("markup") << QByteArray("04417 4.4<b>") << QString();
        QTest::newRow("empty") << QByteArray() << QString();
        QTest::newRow("long") << QByteArray(80000, '#') + "\n04417 4.4.0" << QString();
    }

    void updateAnswers()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, version);
        write(file(u"newest.txt"_s), answer);
        UserSettings::setGeneral(u"updateurl"_s,
                                 QUrl::fromLocalFile(file(u"newest.txt"_s)).toString());
        newUpdateChecker checker;
        QSignalSpy news(&checker, &newUpdateChecker::newVersion);
        QSignalSpy errors(&checker, &newUpdateChecker::failed);
        checker.checkForUpdates(u"04417"_s, u"4.3.3"_s);
        QVERIFY(news.isEmpty() && errors.isEmpty()); // not while the caller waits
        QTRY_COMPARE(news.size() + errors.size(), 1);
        QCOMPARE(errors.size(), version.isEmpty() ? 1 : 0);
        if (!version.isEmpty()) {
            QCOMPARE(news[0][0].toString(), version);
            QCOMPARE(news[0][1].toString(), u"04417"_s);
            QCOMPARE(news[0][2].toBool(), version != u"4.3.3"_s);
        }
    }

    void updateServer()
    {
        newUpdateChecker checker;
        QSignalSpy none(&checker, &newUpdateChecker::notConfigured);
        QSignalSpy news(&checker, &newUpdateChecker::newVersion);
        QSignalSpy errors(&checker, &newUpdateChecker::failed);
        checker.checkForUpdates(u"04417"_s, u"4.3.3"_s);
        QCOMPARE(none.size(), 1);

        AnswerServer server("04417 5.0\n");
        UserSettings::setGeneral(u"updateurl"_s, server.url());
        checker.checkForUpdates(u"04417"_s, u"4.3.3"_s);
        QTRY_COMPARE(news.size(), 1);
        QVERIFY(server.request.startsWith("GET /newest?product=04417&version=4.3.3 "));
        QVERIFY(!server.request.contains("Cookie"));

        const AnswerServer endless("04417 5.0\n", true);
        UserSettings::setGeneral(u"updateurl"_s, endless.url());
        checker.checkForUpdates(u"04417"_s, u"4.3.3"_s);
        QTRY_COMPARE(errors.size(), 1);

        for (const QString &address :
             {u"http://127.0.0.1:1/"_s, u"ftp://a/b"_s, u"nonsense"_s, u"file:///no/such/file"_s}) {
            errors.clear();
            UserSettings::setGeneral(u"updateurl"_s, address);
            checker.checkForUpdates(u"04417"_s, u"4.3.3"_s);
            QTRY_COMPARE(errors.size(), 1);
        }
        QCOMPARE(news.size(), 1);
    }

    void updateIsOffered()
    {
        Session session;
        actionOf(session, "actionCheck_for_Updates")->trigger();
        QVERIFY(session.window.statusBar()->currentMessage().contains(u"No server"_s));

        const auto button = [&] { return session.window.findChild<QPushButton *>(u"btnUpdate"_s); };
        session.window.newVersion(u"9.0"_s, u"04417"_s, true);
        session.window.newVersion(u"9.1"_s, u"04417"_s, true);
        QCOMPARE(session.window.findChildren<QPushButton *>(u"btnUpdate"_s).size(), 1);
        QCOMPARE(button()->text(), u"Update available"_s);
        button()->click();
        QVERIFY(GuiHelper::takeShownBoxes().value(0).text.contains(u"9.1"_s));
        session.window.newVersion(u"9.1"_s, u"04417"_s, false);
        QCOMPARE(button(), nullptr);
    }

    // --- The window -------------------------------------------------------------------------

    void actionsCarryTheirNames_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shortcut");
        QTest::newRow("actionCopy") << u"C&opy"_s << u"Ctrl+C"_s;
        QTest::newRow("actionCut") << u"C&ut"_s << u"Ctrl+X"_s;
        QTest::newRow("actionPaste") << u"&Paste"_s << u"Ctrl+V"_s;
        QTest::newRow("actionDelete") << u"&Delete"_s << QString();
        QTest::newRow("actionDuplicate") << u"Duplicate"_s << u"Ctrl+D"_s;
        QTest::newRow("actionCheck_for_Updates") << u"Check for &Updates"_s << QString();
        QTest::newRow("action_Hel_p") << u"Hel&p"_s << u"F1"_s;
        QTest::newRow("action_Manual") << u"&Manual"_s << u"Ctrl+M"_s;
        QTest::newRow("actionEnable_Expert_Mode") << u"Enable Expert_Mode"_s << QString();
        QTest::newRow("actionChangelog") << u"Changelog"_s << QString();
    }

    void actionsCarryTheirNames()
    {
        Session session;
        const QAction *action = actionOf(session, QTest::currentDataTag());
        QVERIFY(action != nullptr);
        QTEST(action->text(), "text");
        QTEST(action->shortcut().toString(), "shortcut");
        QVERIFY(!action->statusTip().isEmpty());
        QVERIFY(!action->associatedObjects().isEmpty()); // in a menu
    }

    void viewerMenuKnowsTheFolder()
    {
        Session session;
        QMenu *menu = menuOf(session, "menuFile_Viewer");
        session.window.createFileViewerMenu();
        QCOMPARE(menu->actions().size(), 12);
        for (const QAction *action : menu->actions())
            QVERIFY(!action->isEnabled()); // a project without a folder

        QVERIFY(session.window.openProject(project(u"device.vxmp"_s)));
        write(file(u"gen_define.h"_s), "#define A 1\n");
        emit menu->aboutToShow();
        QStringList enabled;
        for (const QAction *action : menu->actions()) {
            if (action->isEnabled())
                enabled << action->text();
            QVERIFY(!action->statusTip().isEmpty());
        }
        QCOMPARE(enabled, QStringList{u"gen_define.h"_s});
        menu->actions()[1]->trigger();
        menu->actions()[1]->trigger();
        const auto viewers = session.window.findChildren<FileViewerDialog *>();
        QCOMPARE(viewers.size(), 1);
        QCOMPARE(viewers[0]->text(), u"#define A 1\n"_s);
    }

    void examplesOfTheStack()
    {
        Session session;
        QMenu *menu = menuOf(session, "menuExample_Projects");
        emit menu->aboutToShow();
        QCOMPARE(menu->actions().constLast()->text(),
                 u"Specify path to protocol stack in settings to list example projects"_s);
        QVERIFY(!menu->actions().constLast()->isEnabled());

        for (const QString &path :
             {u"co_example_sl/a/slave1.vxmp"_s, u"co_example_sl/slave1_v4.vxmp"_s,
              u"co_example_sl/slave2.vxmp"_s, u"co_example_sl/myslave1.vxmp"_s,
              u"other/slave1.vxmp"_s, u"example_eb/slave1.vxmp.bak"_s}) {
            QVERIFY(QDir().mkpath(QFileInfo(file(path)).path()));
            write(file(path), "x");
        }
        UserSettings::setGeneral(u"costackpath"_s, folder());
        QStringList labels;
        for (const auto &example : ExampleProjects::ofStack(folder()))
            labels << example.label;
        QCOMPARE(labels, (QStringList{u"co_example_sl/slave1_v4.vxmp"_s,
                                      u"co_example_sl/a/slave1.vxmp"_s}));
    }

    void exampleIsCopied()
    {
        QVERIFY(QDir(folder()).mkdir(u"shipped"_s));
        QVERIFY(QDir(folder()).mkdir(u"mine"_s));
        const QString example = file(u"shipped/io.vxmp"_s);
        write(example, "project");
        write(file(u"shipped/other.vxmp"_s), "other");
        write(file(u"shipped/io.h"_s), "header");
        QVERIFY(QFile::setPermissions(example, QFile::ReadOwner));
        const QString copy = file(u"mine/my device.vxmp"_s);
        write(copy, "old");
        QCOMPARE(ExampleProjects::copyTo(example, copy), QString());
        QVERIFY(QFileInfo(copy).isWritable());
        QCOMPARE(QDir(file(u"mine"_s)).entryList(QDir::Files),
                 (QStringList{u"io.h"_s, u"my device.vxmp"_s}));
        QFile text(copy);
        QVERIFY(text.open(QIODevice::ReadOnly));
        QCOMPARE(text.readAll(), QByteArray("project"));
        QVERIFY(!ExampleProjects::copyTo(example, example).isEmpty());
        QVERIFY(QFile::exists(example));
        QVERIFY(!ExampleProjects::copyTo(example, file(u"no/such/folder.vxmp"_s)).isEmpty());
    }

    void expertModeIsRemembered()
    {
        {
            Session session;
            QSignalSpy changes(&session.window, &VxmMainWindow::expertModeChanged);
            actionOf(session, "actionEnable_Expert_Mode")->trigger();
            QCOMPARE(changes.size(), 1);
            QVERIFY(changes[0][0].toBool());
        }
        Session next;
        QVERIFY(actionOf(next, "actionEnable_Expert_Mode")->isChecked());
    }

    void editCommandsGoToTheTextFirst()
    {
        Session session;
        QLineEdit field(u"value"_s, &session.window);
        session.window.show();
        session.window.activateWindow();
        field.show();
        field.setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), &field);
        field.selectAll();
        actionOf(session, "actionCut")->trigger();
        QCOMPARE(field.text(), QString());
        actionOf(session, "actionPaste")->trigger();
        QCOMPARE(field.text(), u"value"_s);
        field.home(false);
        actionOf(session, "actionDelete")->trigger();
        QCOMPARE(field.text(), u"alue"_s);
        // A text that can't be changed leaves it to the page, which has no such thing.
        field.setReadOnly(true);
        actionOf(session, "actionPaste")->trigger();
        actionOf(session, "actionDuplicate")->trigger();
        QVERIFY(GuiHelper::takeShownBoxes().isEmpty());
        QCOMPARE(field.text(), u"alue"_s);
    }

    void helpIsForWhatIsInFront()
    {
        Session session;
        session.window.show();
        session.window.activateWindow();
        session.lines()->setFocus(); // no form, so the page in front counts
        QTRY_COMPARE(QApplication::focusWidget(), session.lines());
        actionOf(session, "action_Hel_p")->trigger();
        auto *viewer = session.window.findChild<HelpViewerDialog *>();
        QVERIFY(viewer != nullptr);
        QCOMPARE(viewer->currentFile(), u"generator-output.md"_s);
        actionOf(session, "actionChangelog")->trigger();
        QCOMPARE(viewer->currentFile(), u"changelog.md"_s);

        // No action of the window hears a key in a modal dialog.
        QDialog dialog(&session.window);
        QLineEdit field(&dialog);
        dialog.setModal(true);
        dialog.show();
        QTest::keyClick(&field, Qt::Key_F1);
        QVERIFY(dialog.findChild<HelpViewerDialog *>() != nullptr);
    }

    void aboutNamesTheProgram()
    {
        Session session;
        QString text;
        GuiHelper::queueDialog([&](QDialog &dialog) {
            text = dialog.findChild<QLabel *>(u"aboutDetails"_s)->text();
            return int(QDialog::Rejected);
        });
        actionOf(session, "action_About")->trigger();
        QVERIFY(text.contains(u"CANopen Quillforge, version 4.3.3"_s));
        QVERIFY(text.contains(QString::fromLatin1(qVersion())));
    }
};

int main(int argc, char *argv[])
{
    return WindowTest::run<TestHelp>(argc, argv);
}

#include "tst_help.moc"

#include "app/exampleprojects.h"
#include "app/pagetable.h"
#include "gui/basemainform.h"
#include "gui/fileviewerdialog.h"
#include "gui/manualhandler.h"
#include "gui/newupdatechecker.h"
#include "tests/app/windowtest.h"

#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTextBlock>
#include <QTextBrowser>

using namespace WindowParts;

namespace {

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

/// A question for updates with what came of it.
struct UpdateCheck
{
    void of(const QString &address)
    {
        UserSettings::setGeneral(u"updateurl"_s, address);
        checker.checkForUpdates(u"04417"_s, u"4.3.3"_s);
    }

    newUpdateChecker checker;
    QSignalSpy none{&checker, &newUpdateChecker::notConfigured};
    QSignalSpy news{&checker, &newUpdateChecker::newVersion};
    QSignalSpy errors{&checker, &newUpdateChecker::failed};
};

QMenu *menuOf(const Session &session, const char *name)
{
    return session.window.findChild<QMenu *>(QLatin1String(name));
}

} // namespace

class TestHelp : public WindowTest
{
    Q_OBJECT

private slots:
    void viewerFollowsItsFile()
    {
        const QString name = u"gen_define.h"_s;
        write(name, "one\ntwo \xe4\none\n");
        FileViewerDialog viewer;
        QVERIFY(viewer.openFile(file(name)));
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
        write(name, "one\ntwo\nthree\nfour\n");
        QTRY_VERIFY(viewer.text().contains(u"four"_s));
        QCOMPARE(view->textCursor().blockNumber(), 2);

        QVERIFY(QFile::remove(file(name)));
        auto *notice = viewer.findChild<QLabel *>(u"viewerNotice"_s);
        QTRY_VERIFY(notice->text().contains(u"gen_define.h"_s));
        QVERIFY(viewer.text().contains(u"four"_s)); // still worth reading
        write(name, "five");
        QTRY_COMPARE(viewer.text(), u"five"_s);
        QVERIFY(notice->text().isEmpty());
    }

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

    void versionsCompareByNumber()
    {
        for (const char *newer : {"4.3.10", "4.10"})
            QVERIFY2(newUpdateChecker::isNewer(QLatin1String(newer), u"4.3.9"_s), newer);
        for (const char *older : {"4.3.9", "4.3.9.0", "4.3.8.99", "3.99"})
            QVERIFY2(!newUpdateChecker::isNewer(QLatin1String(older), u"4.3.9"_s), older);
    }

    /// The version that an answer tells, or none: an error.
    void updateAnswers_data()
    {
        addRows<QByteArray, QString>({
            {"one", "04417 4.4.0", "4.4.0"},
            {"among others", "# x\r\n\r\n04418 9.0\r\n04417\t4.3.3 note\r\n", "4.3.3"},
            {"other product", "044170 4.4.0\n4417 4.4.0", ""},
            {"no version", "04417 soon", ""},
            {"markup", "04417 4.4<b>", ""},
            {"empty", "", ""},
            {"long", QByteArray(80000, '#') + "\n04417 4.4.0", ""},
        });
    }

    void updateAnswers()
    {
        const auto [answer, version] = row<QByteArray, QString>();
        write(u"newest.txt"_s, answer);
        UpdateCheck check;
        check.of(QUrl::fromLocalFile(file(u"newest.txt"_s)).toString());
        QVERIFY(check.news.isEmpty() && check.errors.isEmpty()); // not while the caller waits
        QTRY_COMPARE(check.news.size() + check.errors.size(), 1);
        QCOMPARE(check.errors.size(), version.isEmpty() ? 1 : 0);
        if (!version.isEmpty())
            QCOMPARE(check.news[0], (QVariantList{version, u"04417"_s, version != u"4.3.3"_s}));
    }

    void updateServer()
    {
        UpdateCheck check;
        check.of(QString());
        QCOMPARE(check.none.size(), 1);
        AnswerServer server("04417 5.0\n");
        check.of(server.url());
        QTRY_COMPARE(check.news.size(), 1);
        QVERIFY(server.request.startsWith("GET /newest?product=04417&version=4.3.3 "));
        QVERIFY(!server.request.contains("Cookie"));

        const AnswerServer endless("04417 5.0\n", true);
        for (const QString &address : {endless.url(), u"http://127.0.0.1:1/"_s, u"ftp://a/b"_s,
                                       u"nonsense"_s, u"file:///no/such/file"_s}) {
            check.errors.clear();
            check.of(address);
            QTRY_COMPARE(check.errors.size(), 1);
        }
        QCOMPARE(check.news.size(), 1);
    }

    void updateIsOffered()
    {
        Session session;
        session.trigger("actionCheck_for_Updates");
        QVERIFY(session.status().contains(u"No server"_s));

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

    void viewerMenuKnowsTheFolder()
    {
        Session session;
        QMenu *menu = menuOf(session, "menuFile_Viewer");
        session.window.createFileViewerMenu();
        QCOMPARE(menu->actions().size(), 12);
        for (const QAction *action : menu->actions())
            QVERIFY(!action->isEnabled()); // a project without a folder

        QVERIFY(session.open(project()));
        write(u"gen_define.h"_s, "#define A 1\n");
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
            write(path, "x");
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
        write(u"shipped/io.vxmp"_s, "project");
        write(u"shipped/other.vxmp"_s, "other");
        write(u"shipped/io.h"_s, "header");
        QVERIFY(QFile::setPermissions(example, QFile::ReadOwner));
        const QString copy = file(u"mine/my device.vxmp"_s);
        write(u"mine/my device.vxmp"_s, "old");
        QCOMPARE(ExampleProjects::copyTo(example, copy), QString());
        QVERIFY(QFile::permissions(copy).testFlag(QFile::WriteOwner));
        QCOMPARE(QDir(file(u"mine"_s)).entryList(QDir::Files),
                 (QStringList{u"io.h"_s, u"my device.vxmp"_s}));
        QCOMPARE(read(u"mine/my device.vxmp"_s), QByteArray("project"));
        QVERIFY(!ExampleProjects::copyTo(example, example).isEmpty());
        QVERIFY(QFile::exists(example));
        QVERIFY(!ExampleProjects::copyTo(example, file(u"no/such/folder.vxmp"_s)).isEmpty());
    }

    void expertModeIsRemembered()
    {
        {
            Session session;
            QSignalSpy changes(&session.window, &VxmMainWindow::expertModeChanged);
            session.trigger("actionEnable_Expert_Mode");
            QCOMPARE(changes.size(), 1);
            QVERIFY(changes[0][0].toBool());
        }
        Session next;
        QVERIFY(next.action("actionEnable_Expert_Mode")->isChecked());
    }

    void helpIsForWhatIsInFront()
    {
        Session session;
        session.activate();
        session.lines()->setFocus(); // no form, so the page in front counts
        QTRY_COMPARE(QApplication::focusWidget(), session.lines());
        session.action("action_Hel_p")->trigger();
        auto *viewer = session.window.findChild<HelpViewerDialog *>();
        QVERIFY(viewer != nullptr);
        QCOMPARE(viewer->currentFile(), u"generator-output.md"_s);
        session.action("actionChangelog")->trigger();
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
        session.action("action_About")->trigger();
        QVERIFY(text.contains(u"CANopen Quillforge, version 4.3.3"_s));
        QVERIFY(text.contains(QString::fromLatin1(qVersion())));
    }
};

WINDOW_TEST_MAIN(TestHelp)
#include "tst_help.moc"

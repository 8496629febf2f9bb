#include "generation/generatormainhandler.h"
#include "generation/postgenprocessor.h"
#include "generation/postgenprogresshandler.h"
#include "generators/base/outputhandlerbase.h"
#include "store/objectdatabase.h"
#include "tests/support/rows.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QString tool = QStringLiteral(QUILLFORGE_STAND_IN_TOOL);
const QString applicationName = u"Postgen Test 1.0"_s;
const QString completed = u"Generation completed."_s;
const QString outputHeader = u"Post generation process standard output:\n"_s;

class Messages : public OutputHandlerBase
{
public:
    void outputMessage(const QVariant &text) override { all.append(text.toString()); }
    QString loggingText() const override { return all.join(u'\n'); }

    QStringList all;
};

/// Keeps what a dialog would show.
class ShownProgress : public PostGenProgressHandler
{
public:
    void setLabelText(const QString &text) override { labels.append(text); }
    void setCancelButtonText(const QString &text) override { cancelText = text; }
    void show() override { ++shows; }
    void hide() override { ++hides; }
    void showMessage(QObject *, const QString &, const QString &text,
                     const QString &detail) override
    {
        boxes.append(text);
        details.append(detail);
    }

    QStringList labels;
    QStringList boxes;
    QStringList details;
    QString cancelText;
    int shows = 0;
    int hides = 0;
};

} // namespace

class TestPostGen : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        qApp->setProperty("AppNameWithVersion", applicationName);
        QSettings(u"tolvex"_s, applicationName).clear();
        // The former folder may be the current one.
        QDir::setCurrent(QDir::tempPath());
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = std::make_shared<ObjectDataBase>();
        m_store->createNewDataBase();
        m_progress = std::make_shared<ShownProgress>();
        m_output = std::make_unique<Messages>();
    }

    void command_data()
    {

        const QString ended = u"Post generation process finished with code %1"_s;
        testRows<bool, bool, QString, QStringList>(
            {"ofProject", "ofUser", "arguments", "expected"},
            {{"none", false, false, "", {completed}},
             {"silent", true, false, "", {ended.arg(0), completed}},
             {"user", false, true, "x", {outputHeader, u"[x]"_s, ended.arg(0), completed}},
             {"project goes before user",
              true,
              true,
              "y",
              {outputHeader, u"[y]"_s, ended.arg(0), completed}},
             {"place holders",
              true,
              false,
              "%P %D %N %p",
              {outputHeader, u"[FOLDER/a.vxmp][FOLDER][a.vxmp][%p]"_s, ended.arg(0), completed}},
             {"quotes mean nothing, blanks part",
              true,
              false,
              "\"a  b\"",
              {outputHeader, u"[&quot;a][b&quot;]"_s, ended.arg(0), completed}},
             {"working directory",
              true,
              false,
              "--folder",
              {outputHeader, u"in FOLDER\n"_s, ended.arg(0), completed}},
             {"error output and exit code",
              true,
              false,
              "--error bad --exit 3",
              {u"Post generation process error output:\n"_s, u"bad"_s, outputHeader, u"[bad]"_s,
               ended.arg(3),
               u"<b>Warning: Generation completed, but post gen process returned 3.</b>"_s}}});
    }

    void command()
    {
        QFETCH(bool, ofProject);
        QFETCH(bool, ofUser);
        QFETCH(QString, arguments);
        QFETCH(QStringList, expected);
        if (ofProject)
            useCommand(arguments, true);
        if (ofUser) {
            user("General/postGenEnabled", true);
            user("General/postgenerationcommand", tool);
            user("General/postgenerationcommandarguments", ofProject ? u"user"_s : arguments);
            user("General/waitPostGen", true);
        }
        m_store->blockSignals(true);
        run();
        // Which of the two channels is read first is up to the system.
        QStringList found = m_output->all;
        expected.replaceInStrings(u"FOLDER"_s, QDir(m_folder->path()).canonicalPath());
        if (arguments.contains(u"--error"_s)) {
            found.sort();
            expected.sort();
        }
        QCOMPARE(found, expected);
        QCOMPARE(m_progress->labels.contains(u"Post generation process running ... "_s),
                 ofProject || ofUser);
        QVERIFY(m_progress->boxes.isEmpty());
        QVERIFY(!m_store->signalsBlocked());
        QCOMPARE(m_progress->hides, 1);
    }

    void commandThatCannotStart()
    {
        useCommand(u"x"_s, true);
        project("postgencmd", path(u"missing"_s));
        run();
        QCOMPARE(m_progress->boxes, QStringList{u"Could not start post gen process."_s});
        QVERIFY(!m_progress->details.constFirst().isEmpty());
        QCOMPARE(m_output->all, QStringList{completed});
    }

    /// The run does not wait, the output is logged all the same, and a second run does not disturb
    /// it.
    void commandNotWaitedFor()
    {
        useCommand(u"first --sleep 400 last --exit 5"_s, false);
        auto processor = make();
        run(*processor);
        QCOMPARE(m_output->all.constLast(), completed);
        QVERIFY(!m_output->loggingText().contains(u"[last]"_s));

        useCommand(u"second"_s, true);
        run(*processor);
        QCOMPARE(m_progress->boxes, QStringList{u"Post generation process is already running."_s});
        QTRY_VERIFY(m_output->loggingText().contains(u"[last]"_s));
        QTest::qWait(100);
        QCOMPARE(m_output->all.count(outputHeader), 1);
        QCOMPARE(m_output->all.count(completed), 2);
        QVERIFY(!m_output->loggingText().contains(u"finished with code"_s));

        // Destroyed meanwhile, it goes on.
        useCommand(u"--sleep 2000"_s, false);
        run(*processor);
        QElapsedTimer timer;
        timer.start();
        processor.reset();
        QVERIFY(timer.elapsed() < 1500);
    }

    void outputIsText()
    {
        useCommand(u"--error <b>ö&</b>"_s, true);
        run();
        QVERIFY2(m_output->all.contains(u"&lt;b&gt;ö&amp;&lt;/b&gt;"_s),
                 qPrintable(m_output->loggingText()));
    }

    void cancel()
    {
        useCommand(u"--sleep 60000"_s, true);
        auto processor = make();
        QTimer::singleShot(200, m_progress.get(), &PostGenProgressHandler::cancelProcessTriggered);
        QElapsedTimer timer;
        timer.start();
        run(*processor);
        QVERIFY(timer.elapsed() < 30000);
        QVERIFY(
            m_output->all.constFirst().startsWith(u"Post generation process finished with code "));
        QVERIFY2(m_output->all.constLast().startsWith(u"<b>Warning: Generation completed, but "),
                 qPrintable(m_output->loggingText()));
    }

    void edsCheck_data()
    {

        const QString result = u"EDS Checker result:\n\n[-e][FOLDER/%1][-d][TOOLS/v301.codb]"_s;
        const QString finished = u"EDS Checker finished.\n"_s;
        const QStringList one{u"a.eds"_s};
        testRows<int, bool, bool, QString, QStringList, QStringList>(
            {"lines", "enabled", "skip", "checker", "files", "expected"},
            {{"off", 1, false, false, tool, one, {completed}},
             {"skipped", 1, true, true, tool, one, {completed}},
             {"no file", 1, true, false, tool, {}, {completed}},
             {"missing checker",
              1,
              true,
              false,
              tool + u"missing"_s,
              one,
              {u"Start of EDS Checker failed"_s, completed}},
             {"one line",
              1,
              true,
              false,
              tool,
              one,
              {u"EDS Checker started"_s, result.arg(u"a.eds"_s), finished, completed}},
             {"two lines",
              2,
              true,
              false,
              tool,
              {u"a_0.eds"_s, u"a_1.eds"_s},
              {u"EDS Checker started for line 0"_s, u"EDS Checker started for line 1"_s,
               result.arg(u"a_0.eds"_s), finished, result.arg(u"a_1.eds"_s), finished,
               completed}}});
    }

    void edsCheck()
    {
        QFETCH(int, lines);
        QFETCH(bool, enabled);
        QFETCH(bool, skip);
        QFETCH(QString, checker);
        QFETCH(QStringList, files);
        QFETCH(QStringList, expected);
        for (int line = 0; line < lines; ++line)
            addLine(static_cast<quint8>(line));
        for (const QString &file : files)
            write(file, "[FileInfo]\n");
        user("EDSChecker/checkeds", enabled);
        user("EDSChecker/EDSCheckerPath", checker);
        auto processor = make();
        processor->setSkipEdsCheck(skip);
        run(*processor);

        expected.replaceInStrings(u"FOLDER"_s, m_folder->path());
        expected.replaceInStrings(u"TOOLS"_s, QFileInfo(tool).absolutePath());
        QCOMPARE(m_output->all.constLast(), completed);
        // Two checkers end in any order.
        QStringList found = m_output->all;
        found.sort();
        expected.sort();
        QCOMPARE(found, expected);
    }

    void cancelledEdsCheck()
    {
        addLine(0);
        write(u"a.eds"_s, "");
#ifdef Q_OS_WIN
        QSKIP("Needs a script as checker.");
#endif
        write(u"checker"_s, "#!/bin/sh\nexec sleep 60\n");
        QFile::setPermissions(path(u"checker"_s),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        user("EDSChecker/checkeds", true);
        user("EDSChecker/EDSCheckerPath", path(u"checker"_s));
        auto processor = make();
        processor->start();
        QTRY_COMPARE(m_progress->cancelText, u"Cancel process"_s);
        m_progress->cancelProcessTriggered();
        QTRY_VERIFY(!processor->isBusy());
        QCOMPARE(m_output->all.constLast(), completed);
    }

    void lineEndings_data()
    {

        const QByteArray mixed = "a\r\nb\nc\r";
        testRows<QVariant, QByteArray>({"number", "expected"},
                                       {{"never set", QVariant(), mixed},
                                        {"as written", QVariant(0), mixed},
                                        {"CR LF", QVariant(1), "a\r\nb\r\nc\r\n"},
                                        {"LF", QVariant(u"2"_s), "a\nb\nc\n"},
                                        {"CR", QVariant(3), "a\rb\rc\r"},
                                        {"above the last", QVariant(4), mixed},
                                        {"below the first", QVariant(-1), mixed},
                                        {"no number", QVariant(u"LF"_s), mixed}});
    }

    void lineEndings()
    {
        QFETCH(QVariant, number);
        QFETCH(QByteArray, expected);
        const QByteArray mixed = "a\r\nb\nc\r";
        const QStringList converted = {u"gen_define.h"_s,
                                       u"gen_indication.h"_s,
                                       u"gen_indices.h"_s,
                                       u"gen_extern_decl.h"_s,
                                       u"gen_var_decl.h"_s,
                                       u"gen_var_decl.c"_s,
                                       u"gen_srdo.c"_s,
                                       u"gen_sdg.c"_s,
                                       u"gen_objdict.c"_s,
                                       u"gen_vobjdict.c"_s,
                                       u"gen_pgn.c"_s,
                                       u"gen_mp.c"_s,
                                       u"gen_rawcan.c"_s,
                                       u"gen_uds.c"_s,
                                       u"gen_user.h"_s,
                                       u"gen_define.props"_s,
                                       u"Directory.Build.props"_s};
        const QStringList kept = {u"a.eds"_s, u"a.xdd"_s, u"a.csv"_s, u"a.html"_s, u"user.c"_s};
        for (const QString &name : converted + kept)
            write(name, mixed);
        QFile::remove(path(u"gen_pgn.c"_s));
        if (number.isValid())
            user("General/line_ending_index", number);
        run();
        for (const QString &name : converted) {
            const QByteArray found = read(name);
            QVERIFY2(found == (name == u"gen_pgn.c" ? QByteArray("missing") : expected),
                     qPrintable(name));
        }
        for (const QString &name : kept)
            QCOMPARE(read(name), mixed);
        QCOMPARE(m_output->all, QStringList{completed});
    }

    void quietRunLeavesTheDialogAlone()
    {
        auto processor = make();
        processor->setQuiet(true);
        run(*processor);
        QCOMPARE(m_progress->shows, 0);
        processor->setQuiet(false);
        run(*processor);
        QVERIFY(m_progress->shows > 0);
    }

    /// The whole of it behind a real run: files converted, command seen, then the end is told.
    void driver()
    {
        user("General/line_ending_index", 1);
        useCommand(u"%N"_s, true);
        GeneratorMainHandler handler(*m_output, m_progress);
        handler.setProject(m_store, m_folder->path(), u"a"_s);
        int messagesAtEnd = 0;
        connect(&handler, &GeneratorMainHandler::finished, this,
                [&] { messagesAtEnd = static_cast<int>(m_output->all.size()); });
        QCOMPARE(handler.generate(true), GeneratorMainHandler::Completed);
        QCOMPARE(messagesAtEnd, m_output->all.size());
        QCOMPARE(m_output->all.mid(m_output->all.indexOf(u"Generation finished."_s) + 1),
                 (QStringList{outputHeader, u"[a.vxmp]"_s,
                              u"Post generation process finished with code 0"_s, completed}));
        const QByteArray header = read(u"gen_define.h"_s);
        QVERIFY(header.contains("\r\n"));
        QCOMPARE(header.count('\n'), header.count("\r\n"));
    }

    void driverWithoutWindow()
    {
        // A fault is a message, and what a command says behind the run is not lost.
        useCommand(u"--sleep 300 late"_s, false);
        {
            GeneratorMainHandler handler(*m_output);
            handler.setProject(m_store, m_folder->path(), u"a"_s);
            QCOMPARE(handler.generate(true), GeneratorMainHandler::Completed);
            QCOMPARE(m_output->all.constLast(), completed);
            project("postgencmd", path(u"missing"_s));
            handler.runPostGenProcess();
            QVERIFY(m_output->loggingText().contains(
                u"<b>Post generation process is already running."_s));
        }
        QVERIFY(m_output->loggingText().contains(u"[late]"_s));
    }

private:
    void user(const char *key, const QVariant &value)
    {
        QSettings(u"tolvex"_s, applicationName).setValue(QLatin1String(key), value);
    }

    void project(const char *key, const QString &value)
    {
        m_store->setMiscSetting(QLatin1String(key), value);
    }

    void useCommand(const QString &arguments, bool wait)
    {
        project("postGenEnabled", u"true"_s);
        project("postgencmd", tool);
        project("postgencmdargs", arguments);
        project("postGenWait", wait ? u"true"_s : u"false"_s);
    }

    void addLine(quint8 line)
    {
        m_store->addNode(line, {});
        m_store->setGeneralSetting(u"line%1type"_s.arg(line), u"1"_s);
    }

    void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray read(const QString &name)
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    QString path(const QString &name) const
    {
        return m_folder->filePath(name);
    }

    std::unique_ptr<PostGenProcessor> make()
    {
        auto processor = std::make_unique<PostGenProcessor>(*m_output, m_progress);
        processor->setStore(m_store);
        processor->setOutputFolder(m_folder->path());
        processor->setProjectName(u"a"_s);
        return processor;
    }

    void run(PostGenProcessor &processor)
    {
        processor.start();
        QTRY_VERIFY(!processor.isBusy());
    }

    void run()
    {
        run(*make());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::shared_ptr<ObjectDataBase> m_store;
    std::shared_ptr<ShownProgress> m_progress;
    std::unique_ptr<Messages> m_output;
};

QTEST_GUILESS_MAIN(TestPostGen)
#include "tst_postgen.moc"

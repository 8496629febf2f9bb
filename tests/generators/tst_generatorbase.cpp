#include "generators/base/abstractgenerator.h"
#include "generators/base/codewriter.h"
#include "generators/base/commongeneratorhelper.h"
#include "generators/base/generationclock.h"
#include "generators/base/outputfile.h"
#include "store/objectdatabase.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/rows.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

/// A generator whose content is given by the test.
class ScriptedGenerator : public AbstractGenerator
{
public:
    using Script = std::function<void(ScriptedGenerator &, QIODevice &)>;
    explicit ScriptedGenerator(Script script) : m_script(std::move(script)) {}

    QString fileName() const override { return "out.txt"; }
    bool isOutputWritable() override { return isFileWritable(outputPath()); }
    int startGeneration() override { return start("scripted"); }

    using AbstractGenerator::fail;
    using AbstractGenerator::m_generateML;
    using AbstractGenerator::stopRequested;
    using AbstractGenerator::store;
    using AbstractGenerator::typedValueLiteral;

protected:
    void writeContent(QIODevice &device) override { m_script(*this, device); }

private:
    Script m_script;
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

} // namespace

class TestGeneratorBase : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setApplicationName("Tool"); }

    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_store = std::make_unique<ObjectDataBase>();
        QVERIFY(m_store->createNewDataBase());
        m_store->addNode(0, {});
    }

    void settersAndCodes()
    {
        ScriptedGenerator generator([](ScriptedGenerator &, QIODevice &) {});
        QCOMPARE(generator.setLine(0), 4); // no store yet
        QCOMPARE(generator.setStore(nullptr), 3);
        QCOMPARE(generator.setStore(m_store.get()), 0);
        QCOMPARE(generator.setLine(1), 4);
        QCOMPARE(generator.setLine(0), 0);
        QCOMPARE(generator.setOutputFolder(path("missing")), 1);
        QCOMPARE(generator.setOutputFolder(m_folder->path()), 0);
        QCOMPARE(generator.requestStop(), 6);
    }

    void runOnItsThread()
    {
        std::atomic<QThread *> thread = nullptr;
        ScriptedGenerator generator([&](ScriptedGenerator &self, QIODevice &device) {
            thread = QThread::currentThread();
            while (!self.stopRequested())
                QThread::msleep(1);
            device.write("stopped");
        });
        prepare(generator);
        QSignalSpy progress(&generator, &AbstractGenerator::progress);
        QCOMPARE(generator.startGeneration(), 0);
        QCOMPARE(generator.objectName(), "scripted");
        QVERIFY(generator.isBusy());
        QCOMPARE(generator.startGeneration(), 5);
        QCOMPARE(generator.setStore(nullptr), 5);
        QCOMPARE(generator.setLine(0), 5);
        QCOMPARE(generator.setOutputFolder(QString()), 5);
        QCOMPARE(generator.setProjectName("other"), 5);
        QCOMPARE(generator.projectName(), "p");
        QCOMPARE(generator.requestStop(), 0);
        QTRY_VERIFY(!generator.isBusy());
        generator.waitForEnd();
        QTRY_COMPARE(progress.size(), 1);
        QCOMPARE(progress.constFirst().constFirst().value<quint8>(), quint8(100));
        QVERIFY(thread != nullptr && thread != QThread::currentThread());
        QCOMPARE(contentOf(path("out.txt")), QByteArray("stopped"));
    }

    void frameOfARun()
    {
        QVERIFY(m_store->setMiscSetting("generateML", "true"));
        bool sawMode = false;
        bool couldWrite = true;
        bool sawML = false;
        ScriptedGenerator generator([&](ScriptedGenerator &self, QIODevice &device) {
            sawMode = self.store()->isGenerating();
            couldWrite = self.store()->setGeneralSetting("x", "y");
            sawML = self.m_generateML;
            emit self.progress(50);
            self.fail("first");
            self.fail("second", 7);
            device.write("text");
        });
        prepare(generator);
        QSignalSpy progress(&generator, &AbstractGenerator::progress);
        generator.doJob();
        QVERIFY(sawMode && !couldWrite && sawML);
        QVERIFY(!m_store->isGenerating());
        QCOMPARE(progress.size(), 2);
        QCOMPARE(progress.constLast().constFirst().value<quint8>(), quint8(100));
        QCOMPARE(generator.errorCode(), quint8(1));
        QCOMPARE(generator.errorString(), "first");
        QVERIFY(!generator.isBusy());
    }

    void withoutStore()
    {
        ScriptedGenerator generator(
            [](ScriptedGenerator &, QIODevice &device) { device.write("never"); });
        generator.setOutputFolder(m_folder->path());
        generator.doJob();
        QCOMPARE(contentOf(path("out.txt")), QByteArray());
        QVERIFY(generator.errorCode() != 0);
    }

    void outputThatCannotBeWritten()
    {
        ScriptedGenerator generator(
            [](ScriptedGenerator &, QIODevice &) { QFAIL("There is nothing to write to."); });
        generator.setStore(m_store.get());
        generator.setOutputFolder(path("missing"));
        QSignalSpy progress(&generator, &AbstractGenerator::progress);
        generator.doJob();
        QCOMPARE(generator.errorCode(), quint8(1));
        QVERIFY(generator.errorString().contains("out.txt"));
        QCOMPARE(progress.size(), 1);
        QVERIFY(!m_store->isGenerating());
    }

    void fullDiskKeepsTheFormerFile()
    {
        if (!FileSizeLimit::isSupported())
            QSKIP("This system has no limit on file sizes.");
        // In the middle of a long text; and in the last block of a short one, where the system only
        // tells that it took less.
        for (const int lines : {100000, 1000}) {
            QVERIFY(OutputFile::write(path("out.txt"), "user section"));
            ScriptedGenerator generator([lines](ScriptedGenerator &, QIODevice &device) {
                QTextStream out(&device);
                for (int i = 0; i < lines; ++i)
                    out << "a line of text\n";
            });
            prepare(generator);
            {
                const FileSizeLimit limit(8192);
                generator.doJob();
            }
            QCOMPARE(generator.errorCode(), quint8(1));
            QVERIFY(generator.errorString().contains("out.txt"));
            QCOMPARE(contentOf(path("out.txt")), QByteArray("user section"));
            QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"out.txt"});
        }
    }

    void writableFiles()
    {
        QVERIFY(OutputFile::isWritable(path("new")));
        QVERIFY(!OutputFile::isWritable(m_folder->path()));
        QVERIFY(OutputFile::write(path("old"), "x"));
        QVERIFY(OutputFile::isWritable(path("old")));
        // Counts also for an administrator, whom the system would let pass.
        QVERIFY(QFile::setPermissions(path("old"), QFile::ReadOwner | QFile::ReadGroup));
        QVERIFY(!OutputFile::isWritable(path("old")));
    }

    void clock_data()
    {
        QTest::addColumn<QByteArray>("epoch");
        QTest::addColumn<QString>("expected");
        QTest::newRow("set") << QByteArray("1700000000") << "2023-11-14T22:13:20Z";
        QTest::newRow("start") << QByteArray("0") << "1970-01-01T00:00:00Z";
        for (const char *text : {"", "soon", "-1", "99999999999999999999"})
            QTest::newRow(text) << QByteArray(text) << QString();
    }

    void clock()
    {
        QFETCH(QByteArray, epoch);
        QFETCH(QString, expected);
        qputenv("SOURCE_DATE_EPOCH", epoch);
        const QDateTime now = GenerationClock::now();
        qunsetenv("SOURCE_DATE_EPOCH");
        if (expected.isEmpty())
            QVERIFY(qAbs(now.secsTo(QDateTime::currentDateTime())) < 60);
        else
            QCOMPARE(now.toString(Qt::ISODate), expected);
    }

    void typedValues_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<quint64>("value");
        QTest::addColumn<QString>("expected");
        QTest::newRow("I24") << 16 << quint64(-2) << "I24_SET(0xff,0xff,0xfe)";
        QTest::newRow("U24") << 22 << quint64(0x010203) << "U24_SET(0x01,0x02,0x03)";
        QTest::newRow("U40") << 24 << quint64(5) << "U40_SET(0x00,0x00,0x00,0x00,0x05)";
        QTest::newRow("U48") << 25 << quint64(0x123456789ABC)
                             << "U48_SET(0x12,0x34,0x56,0x78,0x9a,0xbc)";
        QTest::newRow("time") << 12 << quint64(1) << "U48_SET(0x00,0x00,0x00,0x00,0x00,0x01)";
        QTest::newRow("U64") << 27 << ~quint64(0)
                             << "U64_SET(0xff,0xff,0xff,0xff,0xff,0xff,0xff,0xff)";
        for (const int type : {0, 7, 13, 21, 26})
            QTest::addRow("none for %d", type) << type << quint64(1) << "";
    }

    void typedValues()
    {
        QFETCH(int, type);
        QFETCH(quint64, value);
        QTEST(ScriptedGenerator::typedValueLiteral(static_cast<quint16>(type), value), "expected");
    }

    void commentTexts_data()
    {
        testRows<QString, QString>({"text", "expected"},
                                   {{"plain", "Größe 5 % of \"x\"", "Größe 5 % of \"x\""},
                                    {"end", "a */ b", "a * / b"},
                                    {"begin", "a /* b", "a / * b"},
                                    {"both", "*/*", "* / * "},
                                    {"at the edges", "/x*", " /x* "},
                                    {"trigraphs", "\?\?\?/", "? ? \?/ "},
                                    {"splice", "path\\", "path\\ ."},
                                    {"splice behind blanks", "path\\ \t", "path\\   ."},
                                    {"lines", "a\nb\r\n", "a b  "},
                                    {"directions", "a\u202Eb\u2028c", "a b c"}});
    }

    void commentTexts()
    {
        QFETCH(QString, text);
        QTEST(CodeWriter::commentText(text), "expected");
    }

    void stringLiterals_data()
    {
        testRows<QString, QString>({"text", "expected"},
                                   {{"empty", "", "\"\""},
                                    {"quotes", "a\"b\\c", "\"a\\\"b\\\\c\""},
                                    {"escape before a digit", "\nA1", "\"\\x0a\"\"A1\""},
                                    {"escape before a letter", "\tg", "\"\\x09g\""},
                                    {"umlaut", "ü", "\"\\xc3\\xbc\""},
                                    {"trigraph", "?\?=", "\"?\\?=\""}});
    }

    void stringLiterals()
    {
        QFETCH(QString, text);
        QTEST(CodeWriter::stringLiteral(text), "expected");
    }

    void codeWriter()
    {
        qputenv("SOURCE_DATE_EPOCH", "0");
        CodeWriter out;
        out.banner(" * things for %1 - generated by %2 %3\n", "a*/%2", "9.1");
        out.beginGuard("H").include("a.h");
        out.beginArray("int a[2] =");
        out.arrayRow("\t1u", "one */").arrayRow("\t2u");
        out.endArray().beginArray("int b[0] =").endArray();
        out << "ä" << quint8(7) << '!' << -1 << quint64(1) << "ß\n";
        out.hex(0xAB, 4).endGuard("H");
        qunsetenv("SOURCE_DATE_EPOCH");
        QCOMPARE(out.text(), QStringLiteral("/*\n * things for a* /%2 - generated by Tool 9.1\n"
                                            " * Thu Jan 1 00:00:00 1970 GMT\n */\n\n"
                                            "#ifndef H\n#define H 1\n\n#include <a.h>\n"
                                            "int a[2] = {\n\t1u, /* one * /  */\n\t2u\n};\n"
                                            "int b[0] = {\n};\n"
                                            "ä7!-11ß\n00ab\n#endif /* H */\n"));

        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        {
            CodeWriter large(&buffer);
            for (int i = 0; i < 50000; ++i)
                large << "zeile äöü\n";
        }
        QCOMPARE(buffer.data(), QStringLiteral("zeile äöü\n").toUtf8().repeated(50000));
    }

    void commonInit_data()
    {
        using Settings = QMap<QString, QString>;
        const QList<int> all = {1, 2, 3, 4, 5, 6, 7};
        testRows<bool, QList<int>, QMap<QString, QString>, QString>(
            {"isV4", "lineTypes", "settings", "tail"},
            {{"V4", true, {1}, Settings(), "\t{ CORE_PROT_TYPE_CANOPEN }\n};\n\n"},
             {"V3", false, {2}, Settings(), "\t{ MP_PROT_TYPE_J1939 }\n};\n\n"},
             {"types of V4", true, all, Settings(),
              "\t{ CORE_PROT_TYPE_CANOPEN, CORE_PROT_TYPE_J1939, CORE_PROT_TYPE_UNKNOWN, "
              "CORE_PROT_TYPE_RAWCAN, CORE_PROT_TYPE_J1939 | CORE_PROT_TYPE_CANOPEN, "
              "CORE_PROT_TYPE_CANOPEN | CORE_PROT_TYPE_RAWCAN, "
              "CORE_PROT_TYPE_J1939 | CORE_PROT_TYPE_RAWCAN }\n};\n\n"},
             {"types of V3", false, all, Settings(),
              "\t{ MP_PROT_TYPE_CANOPEN, MP_PROT_TYPE_J1939, MP_PROT_TYPE_UNKNOWN, "
              "MP_PROT_TYPE_RAWCAN, MP_PROT_TYPE_J1939 | MP_PROT_TYPE_CANOPEN, "
              "MP_PROT_TYPE_RAWCAN, "
              "MP_PROT_TYPE_RAWCAN }\n};\n\n"},
             {"ISO-TP, FD, UDS on one line",
              true,
              {1, 4},
              Settings{{"isotp_supported", "1"},
                       {"canfd_supported", "1"},
                       {"udsserver_supported", "0,1"}},
              "\t{ ISOTP_CLIENT_COUNTS },\n\t{ ISOTP_SERVER_COUNTS },\n"
              "\t{ CORE_PROT_TYPE_CANOPEN, CORE_PROT_TYPE_RAWCAN | CORE_PROT_TYPE_UDS },\n"
              "\t{ CO_TRUE, CO_TRUE,  }\n};\n\n"},
             {"boot loader",
              true,
              {4},
              Settings{{"uds_bl_setting", "1"}},
              "\t{ CORE_PROT_TYPE_UDS }\n};\n\n"},
             {"boot loaders have one line",
              true,
              {4, 4},
              Settings{{"uds_bl_setting", "1"}},
              "\t{ CORE_PROT_TYPE_RAWCAN, CORE_PROT_TYPE_RAWCAN }\n};\n\n"}});
    }

    void commonInit()
    {
        QFETCH(bool, isV4);
        QFETCH(QList<int>, lineTypes);
        using Settings = QMap<QString, QString>;
        QFETCH(Settings, settings);
        QFETCH(QString, tail);
        for (qsizetype line = 0; line < lineTypes.size(); ++line) {
            m_store->addNode(static_cast<quint8>(line), {});
            m_store->setGeneralSetting(QStringLiteral("line%1type").arg(line),
                                       QString::number(lineTypes.at(line)));
        }
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
            m_store->setGeneralSetting(setting.key(), setting.value());
        const QString prefix = QLatin1String(isV4 ? "CORE" : "CO");
        const QString head =
            QStringLiteral("/* core initialization settings */\n"
                           "%1_COMMON_INIT_VAL_T    commonInitVars = {\n\t1u,\n"
                           "\t{ %1_REC_BUFFER_COUNTS },\n\t{ %1_TR_BUFFER_COUNTS },\n"
                           "\t{ %1_COB_COUNTS }, \n")
                .arg(prefix);
        const QString text = isV4 ? CommonGeneratorHelperV4(m_store.get()).commonInit()
                                  : CommonGeneratorHelper(m_store.get()).commonInit();
        QCOMPARE(text, head + tail);
    }

private:
    void prepare(AbstractGenerator &generator)
    {
        QCOMPARE(generator.setOutputFolder(m_folder->path()), int(AbstractGenerator::Done));
        QCOMPARE(generator.setStore(m_store.get()), int(AbstractGenerator::Done));
        QCOMPARE(generator.setProjectName("p"), int(AbstractGenerator::Done));
        QCOMPARE(generator.setLine(0), int(AbstractGenerator::Done));
    }

    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ObjectDataBase> m_store;
};

QTEST_GUILESS_MAIN(TestGeneratorBase)
#include "tst_generatorbase.moc"

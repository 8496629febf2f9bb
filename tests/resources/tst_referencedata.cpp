#include "canopen/cohelper.h"
#include "check/modelchecker.h"
#include "resources/builder/datawriter.h"
#include "resources/builder/sourcereader.h"
#include "resources/templates/projecttemplates.h"
#include "tests/support/storefile.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;
using namespace StoreTest;

namespace {

const auto templatePath = QStringLiteral(REFERENCE_DATA_DIR "/mt.data");
const auto examplePath = QStringLiteral(REFERENCE_DATA_DIR "/examples/io-module.vxmt");
const auto sourceFolder = QStringLiteral(QUILLFORGE_SOURCE_DIR "/resources/");

} // namespace

/// The files that the build makes, and the program that makes them.
class TestReferenceData : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCoreApplication::setApplicationName(u"CANopen Quillforge"_s);
        QCoreApplication::setApplicationVersion(u"9.8.7"_s);
    }

    void templateFile()
    {
        const std::tuple<QString, QString> rows[] = {
            {"select count(*) from GeneralSettings", "167"},
            {"select count(*) from GeneralSettings where item like 'line%'", "0"},
            {"select count(*) from UDSSettings0 where active = 1", "17"},
            {"select count(*) from UDSSettings0 where sessions = '1,2,3,4'", "10"},
            {"select count(*) from UDSSettings0 where sessions = '2,3,4'", "7"},
            {"select '<' || string || '>' from Strings where id = 1", "<>"},
            {"select count(*) from Nodes", "1"},
            {"select value from MiscSettings where item = 'CreateToolName'", "CANopen Quillforge"},
            {"select value from MiscSettings where item = 'CreateToolVersion'", "4.3.3"},
            {"select value from MiscSettings where item = 'DatabaseVersion'", "107"},
            {"select count(*) from SubObjects0 where wizardsource != 454", "0"},
            {"select count(*) from SubObjects0 where changedbyuser != 0", "0"},
            {"select value from DescriptionSettings where item = 'OrderCode'", "0815-BUY-ME"}};
        for (const auto &[statement, value] : rows) {
            QCOMPARE(runOn(templatePath, {statement}).value(0), value);
        }
    }

    void templateOpensInEveryEdition()
    {
        for (const char *edition :
             {"CAN Quillforge", "EnergyBus Marlwright", "CANopen Quillforge"}) {
            QCoreApplication::setApplicationName(QLatin1String(edition));
            QVERIFY2(ObjectDataBase().openDataBase(templatePath), edition);
        }
        TestStore store(templatePath);
        QVERIFY(!store.wasExternallyModified());
        QCOMPARE(store.getIndices(0), QList<quint16>({0x1000, 0x1001, 0x1017, 0x1018, 0x1200}));
        QCOMPARE(store.getGeneralSetting(u"receivebuffersize"_s), u"10"_s);
        QCOMPARE(store.getGeneralSetting(u"co_timer_interval"_s), QString());
        QCOMPARE(store.getSubIndices(0, 0x1018), QList<quint8>({0, 1, 2, 3, 4}));
        QCOMPARE(store.getSubIndexDefaultValue(0, 0x1200, 1), u"$NODEID+0x600"_s);
    }

    /// As the J1939 edition opens it, out of the program itself.
    void j1939TemplateHoldsTheSettings()
    {
        ProjectTemplates::makeAvailable();
        const QString before = QCoreApplication::applicationName();
        QCoreApplication::setApplicationName(u"J1939 Quillforge"_s);
        ObjectDataBase store;
        const bool opened = store.openDataBase(ProjectTemplates::j1939);
        QCoreApplication::setApplicationName(before);
        QVERIFY2(opened, qPrintable(store.lastErrorText()));
        QVERIFY(!store.wasExternallyModified());
        QVERIFY(store.getIndices(0).isEmpty());
        QCOMPARE(store.getLineType(0), 2);
        QCOMPARE(store.getGeneralSetting(u"receivebuffersize"_s), u"10"_s);
        QCOMPARE(store.getJ1939Setting(u"bamcycletime"_s), u"50"_s);
        QVERIFY(store.j1939SettingExists(u"startaddress"_s));
        QCOMPARE(store.getJ1939LineSetting(u"startaddress"_s, 0), QString());
        QVERIFY(store.getUDSServiceActive(0, UDS::SID::DiagnosticSessionControl));
    }

    void exampleOpensUnmodified()
    {
        TestStore store(examplePath);
        QVERIFY(!store.wasExternallyModified());
        QCOMPARE(store.getIndices(0).size(), 100);
        QCOMPARE(store.getIndices(0, 0x6000).size(), 28);
        QCOMPARE(store.getGeneralSetting(u"line0type"_s), u"1"_s);
        QCOMPARE(store.getGeneralSetting(u"use_core_headers"_s), u"V4"_s);
        // Texts that need care on the way through a text file.
        QCOMPARE(store.getSubIndexDefaultValue(0, 0x201A, 0), u"Prüfstand 4, Süd"_s);
        ObjectDataBase::SUBINDEX_DATA_T label;
        QVERIFY(store.getSubIndexData(0, 0x2026, 4, label));
        QCOMPARE(label.varname, u"ioChannelLabel[3]"_s);
        QCOMPARE(label.defaultvalue, u"it's free"_s);
        ObjectDataBase::INDEX_DATA_T status;
        QVERIFY(store.getIndexData(0, 0x1002, status));
        QCOMPARE(status.description.count(u'\n'), 4);
        QCOMPARE(store.getGeneralSetting(u"user_defines"_s).count(u'\n'), 2);
    }

    void exampleHasEveryDataType()
    {
        TestStore store(examplePath);
        QSet<quint16> missing;
        const auto &types = COHelper::stringDataTypeIndexMap();
        for (auto type = types.begin(); type != types.end(); ++type)
            if (type.key() <= CAN::UNSIGNED64)
                missing.insert(type.key());
        QVERIFY(missing.size() >= 25);
        const QList<quint16> indices = store.getIndices(0, 0x2000, 0x5FFF);
        for (const quint16 index : indices)
            missing.remove(store.getSubIndexDataType(0, index, 0));
        QCOMPARE(missing, QSet<quint16>());
    }

    void exampleMappingsResolve()
    {
        TestStore store(examplePath);
        int entries = 0;
        for (const quint16 first : {0x1600, 0x1A00}) {
            const QList<quint16> mappings = store.getIndices(0, first, first + 0x1FF);
            QCOMPARE(mappings.size(), 4);
            for (const quint16 mapping : mappings) {
                QVERIFY(store.indexExists(0, mapping - 0x200));
                int bits = 0;
                const int count = store.getSubIndexDefaultValue(0, mapping, 0).toInt();
                for (int sub = 1; sub <= count; ++sub, ++entries) {
                    const uint entry =
                        store.getSubIndexDefaultValue(0, mapping, quint8(sub)).toUInt(nullptr, 0);
                    ObjectDataBase::SUBINDEX_DATA_T target;
                    QVERIFY(store.getSubIndexData(0, entry >> 16, entry >> 8 & 0xFF, target));
                    QCOMPARE(quint8(entry), COHelper::getDataLengthBits(target.datatype));
                    QVERIFY(target.pdomapping != PDOMapping::Forbidden);
                    QCOMPARE(target.accesstype, first == 0x1600 ? u"rww"_s : u"ro"_s);
                    bits += quint8(entry);
                }
                QVERIFY(bits > 0 && bits <= 64);
            }
        }
        QCOMPARE(entries, 32);
    }

    /// The generated files of the example compile only with a header that names each variable.
    void exampleVariablesAreDeclared()
    {
        TestStore store(examplePath);
        const QString header = QString::fromUtf8(
            contentOf(QStringLiteral(REFERENCE_DATA_DIR "/examples/io_module.h")));
        QSet<QString> names;
        const auto variables = store.findSubIndices(0, u"implementation"_s, CANopen::Variable);
        QVERIFY(variables.size() > 60);
        for (const auto &[index, sub] : variables) {
            ObjectDataBase::SUBINDEX_DATA_T data;
            QVERIFY(store.getSubIndexData(0, index, sub, data));
            QVERIFY2(!names.contains(data.varname), qPrintable(data.varname));
            names.insert(data.varname);
            const QStringList parts =
                data.varname.split(QRegularExpression(u"[\\[\\].]"_s), Qt::SkipEmptyParts);
            for (const QString &part : parts)
                QVERIFY2(part.at(0).isDigit() || header.contains(u' ' + part), qPrintable(part));
        }
    }

    /// The model check has nothing to say but that it knows no stack to compare with.
    void exampleIsConsistent()
    {
        TestStore store(examplePath);
        ModelChecker checker;
        QStringList messages;
        connect(&checker, &ModelChecker::newError, this,
                [&messages](const QString &text) { messages.append(text); });
        bool changed = false;
        int errors = checker.checkProject(&store, QFileInfo(examplePath).absolutePath());
        errors += checker.checkCANopenLine(0, &store, &changed);
        QCOMPARE(errors, 0);
        QVERIFY(!changed);
        messages.removeIf([](const QString &text) { return text.contains("protocol stack"_L1); });
        QCOMPARE(messages, QStringList());
    }

    void sameSourceGivesSameBytes_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("suffix");
        for (const char *suffix : {"data", "vxmp", "vxmt"}) {
            QTest::addRow("template %s", suffix)
                << "templates/mt.qfs" << QString::fromLatin1(suffix);
            QTest::addRow("J1939 template %s", suffix)
                << "templates/mtj1939.qfs" << QString::fromLatin1(suffix);
            QTest::addRow("example %s", suffix)
                << "examples/io-module.qfs" << QString::fromLatin1(suffix);
        }
    }
    void sameSourceGivesSameBytes()
    {
        QFETCH(QString, source);
        QFETCH(QString, suffix);
        QTemporaryDir folder;
        const SourceResult result = SourceReader::readFile(sourceFolder + source);
        QCOMPARE(result.errors, QStringList());
        QStringList paths;
        for (int turn = 0; turn < 2; ++turn) {
            paths.append(folder.filePath(u"%1.%2"_s.arg(turn).arg(suffix)));
            QCOMPARE(DataWriter::writeFile(result.project, paths.last()), QString());
        }
        QVERIFY(!contentOf(paths.at(0)).isEmpty());
        QVERIFY(contentOf(paths.at(0)) == contentOf(paths.at(1)));
        QCOMPARE(QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 2);
    }

    /// Later, elsewhere and for a user without a home, a source still gives the bytes of the build.
    void builderRepeatsTheBuild()
    {
        const std::tuple<QString, QString> rows[] = {
            {"templates/mt.qfs", templatePath},
            {"templates/objects.qfs", QStringLiteral(REFERENCE_DATA_DIR "/objects.data")},
            {"examples/io-module.qfs", examplePath}};
        for (const auto &[source, built] : rows) {
            QTemporaryDir folder;
            const QString output = folder.filePath("new/folder/made." + QFileInfo(built).suffix());
            QProcess builder;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(u"HOME"_s, u"/nonexistent"_s);
            environment.remove(u"XDG_DATA_HOME"_s);
            builder.setProcessEnvironment(environment);
            builder.start(QStringLiteral(DATA_BUILDER), {sourceFolder + source, output});
            QVERIFY(builder.waitForFinished());
            QCOMPARE(builder.readAllStandardError(), QByteArray());
            QCOMPARE(builder.exitCode(), 0);
            QVERIFY(!contentOf(built).isEmpty());
            QVERIFY(contentOf(output) == contentOf(built));
        }
    }

    void builderRefuses()
    {
        const std::tuple<QByteArray, QString, int, QString> rows[] = {
            {QByteArray("general a = 1\nobject 1 NONE\n"), u"out.data"_s, 1,
             u"in.qfs:2: unknown object type 'NONE'"_s},
            {QByteArray("general a = 1\n"), u"out.db"_s, 3, u"suffix must be"_s},
            {QByteArray(), u"out.data"_s, 1, u"can't read"_s}};
        for (const auto &[source, output, code, text] : rows) {
            QTemporaryDir folder;
            if (!source.isEmpty())
                writeFile(folder.filePath(u"in.qfs"_s), source);
            writeFile(folder.filePath(output), "what was there");
            QProcess builder;
            builder.start(QStringLiteral(DATA_BUILDER),
                          {folder.filePath(u"in.qfs"_s), folder.filePath(output)});
            QVERIFY(builder.waitForFinished());
            const QString error = QString::fromUtf8(builder.readAllStandardError());
            QVERIFY2(error.contains(text), qPrintable(error));
            QCOMPARE(builder.exitCode(), code);
            QCOMPARE(contentOf(folder.filePath(output)), QByteArray("what was there"));
        }
    }

    void everythingArrivesInTheFile()
    {
        const SourceResult source =
            SourceReader::readText("misc postgencmd = it's \"x\"\n"
                                   "line 0 \"A\" prefix=p_ master=yes\n"
                                   "uds 0x10 active=no sessions=3 levels=1,2 authentication=\"r\"\n"
                                   "object 0x2000 VAR \"V\" class=c meta:a=b\n| one\n| two\n"
                                   "sub 0 UNSIGNED8 rw default=7 denotation=d meta:k=v nv=yes\n"
                                   "line 1 \"B\"\n"
                                   "description VendorName = second\n",
                                   u"text"_s);
        QCOMPARE(source.errors, QStringList());
        QTemporaryDir folder;
        const QString path = folder.filePath(u"p.vxmp"_s);
        QCOMPARE(DataWriter::writeFile(source.project, path), QString());
        TestStore store(path);
        QCOMPARE(store.getMiscSetting(u"postgencmd"_s), u"it's \"x\""_s);
        QCOMPARE(store.getLines(), QList<quint8>({0, 1}));
        ObjectDataBase::NODE_DATA_T node;
        QVERIFY(store.getNodeData(0, node));
        QCOMPARE(node.name, u"A"_s);
        QCOMPARE(node.prefix, u"p_"_s);
        QVERIFY(node.ismaster);
        const auto session = UDS::SID::DiagnosticSessionControl;
        QCOMPARE((QStringList{store.getUDSServiceSessions(0, session),
                              store.getUDSServiceUserLevels(0, session),
                              store.getUDSAuthentication(0, session)}),
                 (QStringList{"3", "1,2", "r"}));
        QVERIFY(!store.getUDSServiceActive(0, session));
        ObjectDataBase::INDEX_DATA_T object;
        QVERIFY(store.getIndexData(0, 0x2000, object));
        QCOMPARE(
            (QStringList{object.description, object.deviceclass, object.metadata.value(u"a"_s)}),
            (QStringList{"one\ntwo", "c", "b"}));
        ObjectDataBase::SUBINDEX_DATA_T sub;
        QVERIFY(store.getSubIndexData(0, 0x2000, 0, sub));
        QCOMPARE(sub.metadata.value(u"k"_s), u"v"_s);
        QVERIFY(sub.nvstorage);
        QCOMPARE(sub.denotation, u"d"_s);
        store.setDescriptionLine(1);
        QCOMPARE(store.getDescriptionSetting(u"VendorName"_s), u"second"_s);
        store.setDescriptionLine(0);
        QCOMPARE(store.getDescriptionSetting(u"VendorName"_s), QString());
    }
};

QTEST_GUILESS_MAIN(TestReferenceData)
#include "tst_referencedata.moc"

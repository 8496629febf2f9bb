#include "canopen/cohelper.h"
#include "check/modelchecker.h"
#include "resources/builder/datawriter.h"
#include "resources/builder/sourcereader.h"
#include "resources/templates/projecttemplates.h"
#include "store/objectdatabase.h"

#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const auto templatePath = QStringLiteral(REFERENCE_DATA_DIR "/mt.data");
const auto examplePath = QStringLiteral(REFERENCE_DATA_DIR "/examples/io-module.vxmt");
const auto sourceFolder = QStringLiteral(QUILLFORGE_SOURCE_DIR "/resources/");

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// The first value of the first row that a statement gives on a file, without the store.
QVariant valueIn(const QString &path, const QString &statement)
{
    const QString name = QStringLiteral("raw");
    QVariant value;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (database.open()) {
            QSqlQuery query(database);
            if (query.exec(statement) && query.next())
                value = query.value(0);
        }
    }
    QSqlDatabase::removeDatabase(name);
    return value;
}

} // namespace

/// The files that the build makes, and the program that makes them.
class TestReferenceData : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void templateFile_data();
    void templateFile();
    void templateOpensInEveryEdition_data();
    void templateOpensInEveryEdition();
    void j1939TemplateHoldsTheSettings();
    void exampleOpensUnmodified();
    void exampleHasEveryDataType();
    void exampleMappingsResolve();
    void exampleVariablesAreDeclared();
    void exampleIsConsistent();
    void sameSourceGivesSameBytes_data();
    void sameSourceGivesSameBytes();
    void builderRepeatsTheBuild_data();
    void builderRepeatsTheBuild();
    void builderRefuses_data();
    void builderRefuses();
    void everythingArrivesInTheFile();
};

void TestReferenceData::initTestCase()
{
    QCoreApplication::setApplicationName(QStringLiteral("CANopen Quillforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral("9.8.7"));
}

void TestReferenceData::templateFile_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("value");
    const auto row = [](const char *name, const char *statement, const char *value) {
        QTest::newRow(name) << QString::fromUtf8(statement) << QString::fromUtf8(value);
    };
    row("settings", "select count(*) from GeneralSettings", "167");
    row("no line type", "select count(*) from GeneralSettings where item like 'line%'", "0");
    row("UDS services", "select count(*) from UDSSettings0 where active = 1", "17");
    row("UDS default session", "select count(*) from UDSSettings0 where sessions = '1,2,3,4'",
        "10");
    row("UDS other sessions", "select count(*) from UDSSettings0 where sessions = '2,3,4'", "7");
    row("first text", "select '<' || string || '>' from Strings where id = 1", "<>");
    row("lines", "select count(*) from Nodes", "1");
    row("created by", "select value from MiscSettings where item = 'CreateToolName'",
        "CANopen Quillforge");
    row("created with", "select value from MiscSettings where item = 'CreateToolVersion'", "4.3.3");
    row("schema", "select value from MiscSettings where item = 'DatabaseVersion'", "107");
    row("source marker", "select count(*) from SubObjects0 where wizardsource != 454", "0");
    row("not edited", "select count(*) from SubObjects0 where changedbyuser != 0", "0");
    row("description", "select value from DescriptionSettings where item = 'OrderCode'",
        "0815-BUY-ME");
}

void TestReferenceData::templateFile()
{
    QFETCH(QString, statement);
    QFETCH(QString, value);
    QCOMPARE(valueIn(templatePath, statement).toString(), value);
}

void TestReferenceData::templateOpensInEveryEdition_data()
{
    QTest::addColumn<QString>("edition");
    for (const char *name : {"CANopen Quillforge", "CAN Quillforge", "EnergyBus Marlwright"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestReferenceData::templateOpensInEveryEdition()
{
    QFETCH(QString, edition);
    const QString before = QCoreApplication::applicationName();
    QCoreApplication::setApplicationName(edition);
    ObjectDataBase store;
    const bool opened = store.openDataBase(templatePath);
    QCoreApplication::setApplicationName(before);
    QVERIFY2(opened, qPrintable(store.lastErrorText()));
    QVERIFY(!store.wasExternallyModified());
    QCOMPARE(store.getIndices(0), QList<quint16>({0x1000, 0x1001, 0x1017, 0x1018, 0x1200}));
    QCOMPARE(store.getGeneralSetting(QStringLiteral("receivebuffersize")), QStringLiteral("10"));
    QCOMPARE(store.getGeneralSetting(QStringLiteral("co_timer_interval")), QString());
    QCOMPARE(store.getSubIndices(0, 0x1018), QList<quint8>({0, 1, 2, 3, 4}));
    QCOMPARE(store.getSubIndexDefaultValue(0, 0x1200, 1), QStringLiteral("$NODEID+0x600"));
}

/// As the J1939 edition opens it, out of the program itself.
void TestReferenceData::j1939TemplateHoldsTheSettings()
{
    ProjectTemplates::makeAvailable();
    const QString before = QCoreApplication::applicationName();
    QCoreApplication::setApplicationName(QStringLiteral("J1939 Quillforge"));
    ObjectDataBase store;
    const bool opened = store.openDataBase(ProjectTemplates::j1939);
    QCoreApplication::setApplicationName(before);
    QVERIFY2(opened, qPrintable(store.lastErrorText()));
    QVERIFY(!store.wasExternallyModified());
    QVERIFY(store.getIndices(0).isEmpty());
    QCOMPARE(store.getLineType(0), 2);
    QCOMPARE(store.getGeneralSetting(QStringLiteral("receivebuffersize")), QStringLiteral("10"));
    QCOMPARE(store.getJ1939Setting(QStringLiteral("bamcycletime")), QStringLiteral("50"));
    QVERIFY(store.j1939SettingExists(QStringLiteral("startaddress")));
    QCOMPARE(store.getJ1939LineSetting(QStringLiteral("startaddress"), 0), QString());
    QVERIFY(store.getUDSServiceActive(0, UDS::SID::DiagnosticSessionControl));
}

void TestReferenceData::exampleOpensUnmodified()
{
    ObjectDataBase store;
    QVERIFY2(store.openDataBase(examplePath), qPrintable(store.lastErrorText()));
    QVERIFY(!store.wasExternallyModified());
    QCOMPARE(store.getIndices(0).size(), 100);
    QCOMPARE(store.getIndices(0, 0x6000).size(), 28);
    QCOMPARE(store.getGeneralSetting(QStringLiteral("line0type")), QStringLiteral("1"));
    QCOMPARE(store.getGeneralSetting(QStringLiteral("use_core_headers")), QStringLiteral("V4"));
    // Texts that need care on the way through a text file.
    QCOMPARE(store.getSubIndexDefaultValue(0, 0x201A, 0), QStringLiteral("Prüfstand 4, Süd"));
    ObjectDataBase::SUBINDEX_DATA_T label;
    QVERIFY(store.getSubIndexData(0, 0x2026, 4, label));
    QCOMPARE(label.varname, QStringLiteral("ioChannelLabel[3]"));
    QCOMPARE(label.defaultvalue, QStringLiteral("it's free"));
    ObjectDataBase::INDEX_DATA_T status;
    QVERIFY(store.getIndexData(0, 0x1002, status));
    QCOMPARE(status.description.count(u'\n'), 4);
    QCOMPARE(store.getGeneralSetting(QStringLiteral("user_defines")).count(u'\n'), 2);
}

void TestReferenceData::exampleHasEveryDataType()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(examplePath));
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

void TestReferenceData::exampleMappingsResolve()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(examplePath));
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
                QCOMPARE(target.accesstype,
                         first == 0x1600 ? QStringLiteral("rww") : QStringLiteral("ro"));
                bits += quint8(entry);
            }
            QVERIFY(bits > 0 && bits <= 64);
        }
    }
    QCOMPARE(entries, 32);
}

/// The generated files of the example compile only with a header that names each variable.
void TestReferenceData::exampleVariablesAreDeclared()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(examplePath));
    const QString header =
        QString::fromUtf8(content(QStringLiteral(REFERENCE_DATA_DIR "/examples/io_module.h")));
    QSet<QString> names;
    const auto variables =
        store.findSubIndices(0, QStringLiteral("implementation"), CANopen::Variable);
    QVERIFY(variables.size() > 60);
    for (const auto &[index, sub] : variables) {
        ObjectDataBase::SUBINDEX_DATA_T data;
        QVERIFY(store.getSubIndexData(0, index, sub, data));
        QVERIFY2(!names.contains(data.varname), qPrintable(data.varname));
        names.insert(data.varname);
        const QStringList parts =
            data.varname.split(QRegularExpression(QStringLiteral("[\\[\\].]")), Qt::SkipEmptyParts);
        for (const QString &part : parts)
            QVERIFY2(part.at(0).isDigit() || header.contains(u' ' + part), qPrintable(part));
    }
}

/// The model check has nothing to say but that it knows no stack to compare with.
void TestReferenceData::exampleIsConsistent()
{
    ObjectDataBase store;
    QVERIFY(store.openDataBase(examplePath));
    ModelChecker checker;
    QStringList messages;
    connect(&checker, &ModelChecker::newError, this,
            [&messages](const QString &text) { messages.append(text); });
    bool changed = false;
    int errors = checker.checkProject(&store, QFileInfo(examplePath).absolutePath());
    errors += checker.checkCANopenLine(0, &store, &changed);
    QCOMPARE(errors, 0);
    QVERIFY(!changed);
    messages.removeIf(
        [](const QString &text) { return text.contains(QLatin1String("protocol stack")); });
    QCOMPARE(messages, QStringList());
}

void TestReferenceData::sameSourceGivesSameBytes_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("suffix");
    for (const char *suffix : {"data", "vxmp", "vxmt"}) {
        QTest::addRow("template %s", suffix) << "templates/mt.qfs" << QString::fromLatin1(suffix);
        QTest::addRow("J1939 template %s", suffix)
            << "templates/mtj1939.qfs" << QString::fromLatin1(suffix);
        QTest::addRow("example %s", suffix)
            << "examples/io-module.qfs" << QString::fromLatin1(suffix);
    }
}

void TestReferenceData::sameSourceGivesSameBytes()
{
    QFETCH(QString, source);
    QFETCH(QString, suffix);
    QTemporaryDir folder;
    const SourceResult result = SourceReader::readFile(sourceFolder + source);
    QCOMPARE(result.errors, QStringList());
    QStringList paths;
    for (int turn = 0; turn < 2; ++turn) {
        paths.append(folder.filePath(QStringLiteral("%1.%2").arg(turn).arg(suffix)));
        QCOMPARE(DataWriter::writeFile(result.project, paths.last()), QString());
    }
    QVERIFY(!content(paths.at(0)).isEmpty());
    QVERIFY(content(paths.at(0)) == content(paths.at(1)));
    QCOMPARE(QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size(), 2);
}

void TestReferenceData::builderRepeatsTheBuild_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("built");
    QTest::newRow("template") << "templates/mt.qfs" << templatePath;
    QTest::newRow("prototypes") << "templates/objects.qfs"
                                << QStringLiteral(REFERENCE_DATA_DIR "/objects.data");
    QTest::newRow("example") << "examples/io-module.qfs" << examplePath;
}

/// Later, elsewhere and for a user without a home, a source still gives the bytes of the build.
void TestReferenceData::builderRepeatsTheBuild()
{
    QFETCH(QString, source);
    QFETCH(QString, built);
    QTemporaryDir folder;
    const QString output = folder.filePath("new/folder/made." + QFileInfo(built).suffix());
    QProcess builder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/nonexistent"));
    environment.remove(QStringLiteral("XDG_DATA_HOME"));
    builder.setProcessEnvironment(environment);
    builder.start(QStringLiteral(DATA_BUILDER), {sourceFolder + source, output});
    QVERIFY(builder.waitForFinished());
    QCOMPARE(builder.readAllStandardError(), QByteArray());
    QCOMPARE(builder.exitCode(), 0);
    QVERIFY(!content(built).isEmpty());
    QVERIFY(content(output) == content(built));
}

void TestReferenceData::builderRefuses_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("bad source") << QByteArray("general a = 1\nobject 1 NONE\n")
                                << QStringLiteral("out.data") << 1
                                << QStringLiteral("in.qfs:2: unknown object type 'NONE'");
    QTest::newRow("bad suffix") << QByteArray("general a = 1\n") << QStringLiteral("out.db") << 3
                                << QStringLiteral("suffix must be");
    QTest::newRow("no file") << QByteArray() << QStringLiteral("out.data") << 1
                             << QStringLiteral("can't read");
}

void TestReferenceData::builderRefuses()
{
    QFETCH(QByteArray, source);
    QFETCH(QString, output);
    QFETCH(int, code);
    QFETCH(QString, text);
    QTemporaryDir folder;
    if (!source.isEmpty())
        writeFile(folder.filePath(QStringLiteral("in.qfs")), source);
    writeFile(folder.filePath(output), "what was there");
    QProcess builder;
    builder.start(QStringLiteral(DATA_BUILDER),
                  {folder.filePath(QStringLiteral("in.qfs")), folder.filePath(output)});
    QVERIFY(builder.waitForFinished());
    const QString error = QString::fromUtf8(builder.readAllStandardError());
    QVERIFY2(error.contains(text), qPrintable(error));
    QCOMPARE(builder.exitCode(), code);
    QCOMPARE(content(folder.filePath(output)), QByteArray("what was there"));
}

void TestReferenceData::everythingArrivesInTheFile()
{
    const SourceResult source =
        SourceReader::readText("misc postgencmd = it's \"x\"\n"
                               "line 0 \"A\" prefix=p_ master=yes\n"
                               "uds 0x10 active=no sessions=3 levels=1,2 authentication=\"r\"\n"
                               "object 0x2000 VAR \"V\" class=c meta:a=b\n| one\n| two\n"
                               "sub 0 UNSIGNED8 rw default=7 denotation=d meta:k=v nv=yes\n"
                               "line 1 \"B\"\n"
                               "description VendorName = second\n",
                               QStringLiteral("text"));
    QCOMPARE(source.errors, QStringList());
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("p.vxmp"));
    QCOMPARE(DataWriter::writeFile(source.project, path), QString());
    ObjectDataBase store;
    QVERIFY2(store.openDataBase(path), qPrintable(store.lastErrorText()));
    QCOMPARE(store.getMiscSetting(QStringLiteral("postgencmd")), QStringLiteral("it's \"x\""));
    QCOMPARE(store.getLines(), QList<quint8>({0, 1}));
    ObjectDataBase::NODE_DATA_T node;
    QVERIFY(store.getNodeData(0, node));
    QCOMPARE(node.name, QStringLiteral("A"));
    QCOMPARE(node.prefix, QStringLiteral("p_"));
    QVERIFY(node.ismaster);
    const auto session = UDS::SID::DiagnosticSessionControl;
    QCOMPARE(store.getUDSServiceSessions(0, session), QStringLiteral("3"));
    QCOMPARE(store.getUDSServiceUserLevels(0, session), QStringLiteral("1,2"));
    QCOMPARE(store.getUDSAuthentication(0, session), QStringLiteral("r"));
    QVERIFY(!store.getUDSServiceActive(0, session));
    ObjectDataBase::INDEX_DATA_T object;
    QVERIFY(store.getIndexData(0, 0x2000, object));
    QCOMPARE(object.description, QStringLiteral("one\ntwo"));
    QCOMPARE(object.deviceclass, QStringLiteral("c"));
    QCOMPARE(object.metadata.value(QStringLiteral("a")), QStringLiteral("b"));
    ObjectDataBase::SUBINDEX_DATA_T sub;
    QVERIFY(store.getSubIndexData(0, 0x2000, 0, sub));
    QCOMPARE(sub.metadata.value(QStringLiteral("k")), QStringLiteral("v"));
    QVERIFY(sub.nvstorage);
    QCOMPARE(sub.denotation, QStringLiteral("d"));
    store.setDescriptionLine(1);
    QCOMPARE(store.getDescriptionSetting(QStringLiteral("VendorName")), QStringLiteral("second"));
    store.setDescriptionLine(0);
    QCOMPARE(store.getDescriptionSetting(QStringLiteral("VendorName")), QString());
}

QTEST_GUILESS_MAIN(TestReferenceData)
#include "tst_referencedata.moc"

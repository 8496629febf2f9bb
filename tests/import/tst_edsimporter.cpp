#include "importsupport.h"

#include "canopen/cohelper.h"
#include "check/modelchecker.h"
#include "documents/edsgenerator.h"
#include "import/edsimporter.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

using Object = ObjectDataBase::INDEX_DATA_T;
using Entry = ObjectDataBase::SUBINDEX_DATA_T;
using Store = std::unique_ptr<ObjectDataBase>;

namespace {

const QByteArray variableFile = "[DeviceInfo]\nVendorName=Nobody\n[ManufacturerObjects]\n"
                                "SupportedObjects=1\n1=0x2000\n[2000]\nParameterName=Speed\n"
                                "ObjectType=7\nDataType=6\nAccessType=rw\nDefaultValue=5\n";

struct Sample
{
    QString value;
    QString low;
    QString high;
};

/// A value and limits that the data type has.
Sample sampleOf(quint16 dataType)
{
    switch (dataType) {
    case CAN::VISIBLE_STRING:
        return {u"some 'text'; with = signs"_s, {}, {}};
    case CAN::OCTET_STRING:
        return {u"01 02 0A FF"_s, {}, {}};
    case CAN::UNICODE_STRING:
        return {u"Gr\u00f6\u00dfe"_s, {}, {}};
    case CAN::DOMAIN_TYPE:
        return {};
    case CAN::REAL32:
    case CAN::REAL64:
        return {u"-1.25"_s, u"-2.5"_s, u"2.5"_s};
    case CAN::UNSIGNED32:
        return {u"$NODEID+0x180"_s, u"0"_s, u"0x7FF"_s};
    case CAN::INTEGER8:
    case CAN::INTEGER16:
    case CAN::INTEGER24:
    case CAN::INTEGER32:
        return {u"-5"_s, u"-100"_s, u"0x10"_s};
    default:
        return {u"1"_s, u"0"_s, u"1"_s};
    }
}

/// What comes back of an entry that went out: what CiA 306 has no key for is gone, and strings
/// are such that they can be generated.
Entry carried(Entry entry, quint16 index, quint8 subindex)
{
    const QString access = entry.accesstype;
    if (entry.pdomapping != PDOMapping::Forbidden)
        entry.pdomapping = access == u"ro" || access == u"rwr"   ? PDOMapping::TPDO
                           : access == u"wo" || access == u"rww" ? PDOMapping::RPDO
                                                                 : PDOMapping::Allowed;
    const bool shown =
        entry.writedefaulttoeds == 2 || (entry.writedefaulttoeds == 1 && entry.defaultineds);
    if (!shown)
        entry.defaultvalue.clear();
    entry.defaultineds = !entry.defaultvalue.isEmpty();
    entry.writedefaulttoeds = entry.defaultineds ? 1 : 0;
    entry.limitineds = entry.limitineds && !(entry.lowlimit.isEmpty() && entry.uplimit.isEmpty());
    if (!entry.limitineds) {
        entry.lowlimit.clear();
        entry.uplimit.clear();
        COHelper::getDefaultLimits(entry.datatype, entry.lowlimit, entry.uplimit);
    }
    entry.description.remove(u'\n');
    const bool isDomain = entry.datatype == CAN::DOMAIN_TYPE;
    if (isDomain && subindex == 0) {
        entry.defaultineds = true;
        entry.writedefaulttoeds = 1;
    }
    if (isDomain || COHelper::getDataLengthBits(entry.datatype) == 0) {
        const bool constant = !isDomain && (access == u"ro" || access == u"const");
        entry.implementation = constant ? CANopen::ManagedConst : CANopen::Variable;
        entry.varname = constant ? QString() : u"v_%1%2"_s.arg(index).arg(subindex);
        const bool octets = entry.datatype == CAN::OCTET_STRING;
        const bool wide = entry.datatype == CAN::UNICODE_STRING;
        const qsizetype size = octets ? QByteArray::fromHex(entry.defaultvalue.toLatin1()).size()
                                      : entry.defaultvalue.size() * (wide ? 2 : 1);
        entry.size = quint32(std::max<qsizetype>(1, size));
    }
    return entry;
}

/// Objects over every data type, access, mapping, limit and description.
void fillEverything(ObjectDataBase &store, ObjectDataBase &expected)
{
    const QStringList accesses = {u"const"_s, u"ro"_s, u"wo"_s, u"rw"_s, u"rwr"_s, u"rww"_s};
    const QStringList descriptions = {QString(), u"short"_s, u"two\nlines"_s, QString(700, u'x'),
                                      u"\u00e4\u20ac = [x]"_s};
    int number = 0;
    quint16 index = 0x2000;
    const auto types = COHelper::stringDataTypeIndexMap().keys();
    const auto add = [&](quint16 at, quint8 sub, quint16 type, const QString &access) {
        const Sample sample = sampleOf(type);
        Entry entry;
        entry.name = u"Entry %1"_s.arg(number);
        entry.datatype = type;
        entry.accesstype = access;
        entry.defaultvalue = sample.value;
        entry.defaultineds = number % 3 != 0;
        entry.writedefaulttoeds = quint8(number % 3);
        entry.limitineds = number % 2 == 0;
        entry.lowlimit = sample.low;
        entry.uplimit = sample.high;
        entry.pdomapping = PDOMapping::fromUInt(uint(number % 5));
        entry.refuseread = number % 7 == 0;
        entry.refusewrite = number % 11 == 0;
        entry.description = descriptions.at(number % descriptions.size());
        ++number;
        QVERIFY(store.addSubIndex(0, at, sub, entry));
        QVERIFY(expected.addSubIndex(0, at, sub, carried(entry, at, sub)));
    };
    const auto addObject = [&](quint16 at, quint32 code, quint16 type) {
        Object object;
        object.name = u"Object %1"_s.arg(number);
        object.objecttype = code;
        object.datatype = type;
        object.description = descriptions.at(number % descriptions.size());
        QVERIFY(store.addIndex(0, at, object));
        object.description.remove(u'\n');
        QVERIFY(expected.addIndex(0, at, object));
    };
    for (const quint16 type : types) {
        if (type >= 100)
            continue;
        for (const QString &access : accesses) {
            const bool isDomain = type == CAN::DOMAIN_TYPE;
            addObject(index, isDomain ? CANopen::DOMAIN_OBJECT : CANopen::VAR, type);
            add(index++, 0, type, access);
        }
        const bool isArray = type % 2 == 0;
        addObject(index, isArray ? CANopen::ARRAY : CANopen::RECORD, isArray ? type : quint16(0));
        Entry count;
        count.name = u"Count"_s;
        count.datatype = CAN::UNSIGNED8;
        count.defaultvalue = u"254"_s;
        count.defaultineds = true;
        count.writedefaulttoeds = 1;
        count.description = u"of entries"_s;
        QVERIFY(store.addSubIndex(0, index, 0, count));
        QVERIFY(expected.addSubIndex(0, index, 0, carried(count, index, 0)));
        for (const quint8 sub : {1, 9, 10, 254})
            add(index, sub, type, accesses.at(sub % accesses.size()));
        ++index;
    }
}

QString generate(ObjectDataBase &store, const QTemporaryDir &folder, const QString &name)
{
    EDSGenerator generator;
    generator.setOutputFolder(folder.path());
    generator.setStore(&store);
    generator.setProjectName(name);
    generator.setLine(0);
    generator.doJob();
    return folder.filePath(generator.fileName());
}

/// A variable has one section for two descriptions, so both come back with the text of both.
void joinVariableDescriptions(ObjectDataBase &store)
{
    const QList<quint16> indices = store.getIndices(0);
    for (const quint16 index : indices) {
        Object object = ImportSupport::object(store, index);
        if (object.objecttype != CANopen::VAR && object.objecttype != CANopen::DOMAIN_OBJECT)
            continue;
        Entry entry = ImportSupport::entry(store, index);
        entry.name = object.name;
        if (entry.description != object.description)
            entry.description += object.description;
        object.description = entry.description;
        store.addIndex(0, index, object);
        store.addSubIndex(0, index, 0, entry);
    }
}

QByteArray replaced(QByteArray text, const char *before, const char *after)
{
    return text.replace(before, after);
}

/// A project with the settings that the model check asks of every one.
Store checkableStore()
{
    Store store = ImportSupport::newStore();
    const std::pair<const char *, const char *> settings[] = {
        {"co_node_id", "32"},        {"co_timer_interval", "1000"}, {"limit_check", "1"},
        {"receivebuffersize", "20"}, {"transmitbuffersize", "20"},  {"line0type", "1"}};
    for (const auto &[key, value] : settings)
        store->setGeneralSetting(QLatin1String(key), QLatin1String(value));
    return store;
}

QStringList errorsOf(ObjectDataBase &store)
{
    QStringList errors;
    ModelChecker checker;
    QObject::connect(&checker, &ModelChecker::newError, [&](const QString &text) {
        if (text.contains(u"Error"_s))
            errors.append(text);
    });
    bool changed = false;
    checker.checkCANopenLine(0, &store, &changed);
    return errors;
}

} // namespace

class TestEdsImporter : public QObject
{
    Q_OBJECT

private slots:
    void roundTripOfEverything()
    {
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        const Store expected = ImportSupport::newStore();
        fillEverything(*store, *expected);
        if (QTest::currentTestFailed())
            return;
        joinVariableDescriptions(*expected);
        const Store back = ImportSupport::newStore();
        EDSImporter importer;
        ImportSupport::run(importer, *back, generate(*store, folder, u"first"_s));
        QCOMPARE(importer.errorString(), QString());
        QCOMPARE(ImportSupport::content(*back), ImportSupport::content(*expected));

        // And from now on nothing changes any more.
        const Store again = ImportSupport::newStore();
        ImportSupport::run(importer, *again, generate(*back, folder, u"second"_s));
        QCOMPARE(ImportSupport::content(*again), ImportSupport::content(*back));
    }

    void deviceData()
    {
        const QTemporaryDir folder;
        const QByteArray file =
            "[FileInfo]\nFileVersion=1\nfilerevision=2\nCreatedBy=\"A, B\"\nModifiedBy=c , d\n"
            "[DUMMYUSAGE]\nDummy0003=1\nDummy0004=1\nDummy0005=1\n"
            "[DeviceInfo]\nVendorName=Gr\xF6\xDF"
            "e\nNrOfRxPDO=0\nBaudRate_800=1\n"
            "Granularity=8\n[Comments]\nLines=4000000000\nLine1=one\nLine3=three\n" +
            variableFile.mid(variableFile.indexOf("[Manu"));
        const Store store = ImportSupport::newStore();
        store->setDescriptionSetting(u"ProductName"_s, u"before"_s);
        EDSImporter importer;
        ImportSupport::run(importer, *store, ImportSupport::write(folder, u"a.eds"_s, file));
        const auto setting = [&](const char *key) {
            return store->getDescriptionSetting(QString::fromLatin1(key));
        };
        QCOMPARE(setting("FileVersion") + setting("FileRevision"), u"12"_s);
        QCOMPARE(setting("CreatedBy"), u"A, B"_s);
        QCOMPARE(setting("ModifiedBy"), u"c , d"_s);
        QCOMPARE(setting("VendorName"), u"Gr\u00f6\u00dfe"_s);
        QCOMPARE(setting("ProductName"), QString());
        QCOMPARE(setting("NrOfRXPDO") + setting("BaudRate_800") + setting("Granularity"), u"018"_s);
        QCOMPARE(setting("Dummy0003") + setting("Dummy0005"), u"11"_s);
        QCOMPARE(setting("Dummy004"), QString());
        QVERIFY(setting("Dummy0004") != u"1"_s);
        QCOMPARE(setting("Comment"), u"one\n\nthree\n"_s);
    }

    void completesPdos_data()
    {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QByteArray>("objects");
        QTest::addColumn<QList<quint16>>("expected");
        const QList<quint16> none;
        QTest::newRow("no counts")
            << QByteArray() << QByteArray("[1400]\nObjectType=9\n") << QList<quint16>{0x1400};
        QTest::newRow("two of four are there")
            << QByteArray("NrOfRXPDO=4\n")
            << QByteArray("[1400]\nObjectType=9\n[1401]\nObjectType=9\n")
            << QList<quint16>{0x1400, 0x1401, 0x1402, 0x1403, 0x1600, 0x1601, 0x1602, 0x1603};
        QTest::newRow("mapping missing")
            << QByteArray("NrOfTxPDO=0x1\n") << QByteArray("[1800]\nObjectType=9\n")
            << QList<quint16>{0x1800, 0x1A00};
        QTest::newRow("enough elsewhere")
            << QByteArray("NrOfTxPDO=1\n")
            << QByteArray("[1805]\nObjectType=9\n[1A05]\nObjectType=9\n")
            << QList<quint16>{0x1805, 0x1A05};
        QTest::newRow("compact") << QByteArray("NrOfRXPDO=1\nCompactPDO=0x1F\n") << QByteArray()
                                 << QList<quint16>{0x1400, 0x1600};
    }

    void completesPdos()
    {
        QFETCH(QByteArray, device);
        QFETCH(QByteArray, objects);
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        EDSImporter importer;
        ImportSupport::run(
            importer, *store,
            ImportSupport::write(folder, u"a.eds"_s, "[DeviceInfo]\n" + device + objects));
        QTEST(store->getIndices(0), "expected");
    }

    void completedPdosPassTheCheck()
    {
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        EDSImporter importer;
        ImportSupport::run(importer, *store,
                           ImportSupport::write(folder, u"a.eds"_s,
                                                "[DeviceInfo]\nNrOfRXPDO=9999\nNrOfTXPDO=2\n"
                                                "Granularity=8\n"));
        QCOMPARE(store->getIndices(0, 0x1400, 0x17FF).size(), 0x400);
        QCOMPARE(ImportSupport::object(*store, 0x1401).name, u"Receive PDO parameter 2"_s);
        QCOMPARE(ImportSupport::object(*store, 0x1800).name, u"Transmit PDO parameter 1"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x1400, 1).defaultvalue, u"0x80000000"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x1800, 2).defaultvalue, u"0xFF"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x1800, 5).name, u"Event Timer"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x1A01, 3).name, u"Mappping Entry 3"_s);
        const QStringList errors = errorsOf(*store).filter(u"0x1"_s);
        QVERIFY2(errors.filter(QRegularExpression(u"0x1[468a]0"_s)).isEmpty(),
                 qPrintable(errors.join(u'\n')));
    }

    /// PDO mappings as device files of the market write them.
    void mappingsPassTheCheck_data()
    {
        QTest::addColumn<QByteArray>("device");
        QTest::addColumn<QByteArray>("mapping");
        QTest::addColumn<QString>("count"); // access and value of subindex 0, number of subindices
        QTest::addColumn<QString>("cobId");
        QTest::addColumn<QString>("granularity");
        const QByteArray compact =
            "DataType=7\nAccessType=rw\nCompactSubObj=2\n[1600Value]\n1=0x20000010\n";
        const QByteArray full = compact + "2=0x20000010\n";
        const QString cobId = u"$NODEID+0x200"_s;
        QTest::newRow("dynamic") << QByteArray("Granularity=8\n") << full << u"rw 2 3"_s << cobId
                                 << u"8"_s;
        QTest::newRow("static") << QByteArray() << replaced(full, "rw", "const") << u"const 2 3"_s
                                << cobId << u"0"_s;
        QTest::newRow("granularity 0")
            << QByteArray("Granularity=0x0\n") << full << u"rw 2 3"_s << cobId << u"8"_s;
        QTest::newRow("in part") << QByteArray("Granularity=0x08\n") << compact << u"rw 1 3"_s
                                 << cobId << u"8"_s;
        QTest::newRow("in part, static")
            << QByteArray() << replaced(compact, "rw", "ro") << u"ro 1 2"_s << cobId << u"0"_s;
        QTest::newRow("structure as type")
            << QByteArray() << replaced(full, "DataType=7", "DataType=0x21") << u"rw 2 3"_s << cobId
            << u"8"_s;
        QTest::newRow("nothing mapped") << QByteArray() << replaced(compact, "1=", "; ")
                                        << u"rw 0 3"_s << u"$NODEID+0x80000200"_s << u"8"_s;
        QTest::newRow("no subindex 0")
            << QByteArray()
            << QByteArray("[1600sub1]\nParameterName=Entry\nDataType=7\nAccessType=rw\n"
                          "DefaultValue=0x20000010\n")
            << u"rw 1 2"_s << cobId << u"8"_s;
        QTest::newRow("completed")
            << QByteArray("NrOfTXPDO=2\nNrOfRXPDO=1\n") << full << u"rw 2 3"_s << cobId << u"8"_s;
    }

    void mappingsPassTheCheck()
    {
        QFETCH(QByteArray, device);
        QFETCH(QByteArray, mapping);
        const QTemporaryDir folder;
        const Store store = checkableStore();
        EDSImporter importer;
        ImportSupport::run(
            importer, *store,
            ImportSupport::write(
                folder, u"a.eds"_s,
                "[DeviceInfo]\n" + device +
                    "[2000]\nParameterName=Speed\nObjectType=7\nDataType=6\nAccessType=rww\n"
                    "PDOMapping=1\n[1400]\nParameterName=PDO\nObjectType=9\n[1400sub1]\n"
                    "ParameterName=COB-ID\nDataType=7\nAccessType=rw\n"
                    "DefaultValue=$NODEID+0x200\n[1400sub2]\nParameterName=Type\nDataType=5\n"
                    "AccessType=rw\nDefaultValue=255\n[1600]\nParameterName=Mapping\n"
                    "ObjectType=9\n" +
                    mapping));
        const QStringList errors = errorsOf(*store).filter(QRegularExpression(u"PDO|apping"_s));
        QCOMPARE(errors.join(u'\n'), QString());
        const Entry count = ImportSupport::entry(*store, 0x1600);
        QTEST(count.accesstype + u' ' + count.defaultvalue + u' ' +
                  QString::number(store->getSubIndices(0, 0x1600).size()),
              "count");
        QTEST(ImportSupport::entry(*store, 0x1400, 1).defaultvalue, "cobId");
        QTEST(store->getDescriptionSetting(u"Granularity"_s), "granularity");
    }

    void compactObjects_data()
    {
        QTest::addColumn<QByteArray>("code");
        QTest::newRow("array") << QByteArray("8");
        QTest::newRow("record") << QByteArray("9");
    }

    void compactObjects()
    {
        QFETCH(QByteArray, code);
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        EDSImporter importer;
        importer.setDcf(true);
        ImportSupport::run(
            importer, *store,
            ImportSupport::write(folder, u"a.dcf"_s,
                                 "[ManufacturerObjects]\n1=0x2000\n[2000]\nParameterName=Field\n"
                                 "ObjectType=" +
                                     code +
                                     "\nDataType=9\nAccessType=ro\nPDOMapping=1\n"
                                     "DefaultValue=abc\nCompactSubObj=3\n[2000Name]\n1=One\n"
                                     "[2000Value]\n2=hello\n[2000sub3]\nParameterName=Third\n"
                                     "DataType=9\nAccessType=rw\n"));
        QCOMPARE(store->getSubIndices(0, 0x2000), (QList<quint8>{0, 1, 2, 3}));
        const Entry count = ImportSupport::entry(*store, 0x2000, 0);
        QCOMPARE(count.name + count.defaultvalue + count.accesstype,
                 u"Highest subindex supported3ro"_s);
        QVERIFY(count.defaultineds);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 1).name, u"One"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 1).size, 3U);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 2).name, u"Field 2"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 2).defaultvalue, u"hello"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 2).currentvalue, u"hello"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 3).name, u"Third"_s);
        QCOMPARE(ImportSupport::entry(*store, 0x2000, 3).varname, u"v_81923"_s);
    }

    void configuredValues()
    {
        const QTemporaryDir folder;
        const QString file = ImportSupport::write(
            folder, u"a.dcf"_s, variableFile + "ParameterValue=7\nDenotation=mine\n");
        for (const bool isDcf : {false, true}) {
            const Store store = ImportSupport::newStore();
            EDSImporter importer;
            importer.setDcf(isDcf);
            ImportSupport::run(importer, *store, file);
            const Entry entry = ImportSupport::entry(*store, 0x2000);
            QCOMPARE(entry.defaultvalue, isDcf ? u"7"_s : u"5"_s);
            QCOMPARE(entry.currentvalue + entry.denotation, u"7mine"_s);
            QVERIFY(entry.dcfcomponent);
        }
    }

    void rangeAndLine()
    {
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        QVERIFY(store->addNode(3, {}));
        EDSImporter importer;
        const QString file =
            ImportSupport::write(folder, u"a.eds"_s,
                                 variableFile + "[3000]\nParameterName=Out\nObjectType=7\n"
                                                "DataType=5\nAccessType=rw\n;;text\n"
                                                "[DeviceInfo]\n");
        ImportSupport::run(importer, *store, file, 3, 0x2000, 0x2FFF);
        QCOMPARE(store->getIndices(3), QList<quint16>{0x2000});
        QVERIFY(store->getIndices(0).isEmpty());
        store->setDescriptionLine(3);
        QCOMPARE(store->getDescriptionSetting(u"VendorName"_s), u"Nobody"_s);
        store->setDescriptionLine(0);
        QCOMPARE(store->getDescriptionSetting(u"VendorName"_s), QString());
    }

    /// A record that the file knows as a variable would break the model check otherwise.
    void replacesWhatIsThere()
    {
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        Object record;
        record.objecttype = CANopen::RECORD;
        QVERIFY(store->addIndex(0, 0x2000, record));
        for (const quint8 sub : {0, 1, 2})
            QVERIFY(store->addSubIndex(0, 0x2000, sub, Entry()));
        QVERIFY(store->cacheAllSubs(0));
        EDSImporter importer;
        ImportSupport::run(importer, *store,
                           ImportSupport::write(folder, u"a.eds"_s, variableFile));
        QCOMPARE(store->getSubIndices(0, 0x2000), QList<quint8>{0});
        QVERIFY(importer.messages().last().contains(u"went with that: 2."_s));
        QCOMPARE(ImportSupport::entry(*store, 0x2000).defaultvalue, u"5"_s);
    }

    void refusedFileChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("error");
        QTest::newRow("other fieldbus")
            << QByteArray("[File]\nDescText=1;\n[Device]\nVendName=x\n[FileInfo]\nFileVersion=7\n")
            << u"another fieldbus"_s;
        QTest::newRow("XML") << QByteArray("<xml/>") << u"XML file"_s;
        QTest::newRow("too much") << variableFile + QByteArray("[b]\n").repeated(600000)
                                  << u"sections"_s;
    }

    void refusedFileChangesNothing()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, error);
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        const QString before = store->contentHash();
        EDSImporter importer;
        QSignalSpy errors(&importer, &BaseDataImporter::importError);
        QSignalSpy progress(&importer, &BaseDataImporter::progress);
        ImportSupport::run(importer, *store, ImportSupport::write(folder, u"a.eds"_s, file));
        QVERIFY2(importer.errorString().contains(error), qPrintable(importer.errorString()));
        QVERIFY(importer.errorString().startsWith(folder.path()));
        QTRY_COMPARE(errors.size(), 1);
        QCOMPARE(progress.last().first().toInt(), 100);
        QCOMPARE(store->contentHash(), before);
    }

    void cancelledImportChangesNothing()
    {
        const QTemporaryDir folder;
        const Store store = ImportSupport::newStore();
        const QString before = store->contentHash();
        EDSImporter importer;
        QObject::connect(&importer, &DictionaryImporter::newIndex, [&] { importer.cancel(); });
        ImportSupport::run(importer, *store,
                           QStringLiteral(QUILLFORGE_SOURCE_DIR "/tests/import/device.eds"));
        QVERIFY(importer.errorString().contains(u"stopped"_s));
        QCOMPARE(store->contentHash(), before);
    }

    /// A file as devices bring it: with node-ID, signed hexadecimal limits, strings, empty limits.
    void realShapePassesTheCheck()
    {
        const Store store = checkableStore();
        EDSImporter importer;
        ImportSupport::run(importer, *store,
                           QStringLiteral(QUILLFORGE_SOURCE_DIR "/tests/import/device.eds"));
        QCOMPARE(importer.errorString(), QString());
        QCOMPARE(importer.messages().join(u'\n').count(u"negative number"_s), 2);
        QCOMPARE(errorsOf(*store).join(u'\n'), QString());
    }

    void runsAgainAndAgain()
    {
        const QTemporaryDir folder;
        const QString file = ImportSupport::write(folder, u"a.eds"_s, variableFile);
        EDSImporter importer;
        for (int i = 0; i < 3; ++i) {
            const Store store = ImportSupport::newStore();
            ImportSupport::run(importer, *store, file);
            QVERIFY(importer.isFinished());
            QCOMPARE(store->getIndices(0), QList<quint16>{0x2000});
            QCOMPARE(importer.thread(), QThread::currentThread());
        }
        importer.setDatabase(nullptr);
        importer.doImport();
        QVERIFY(importer.start());
    }
};

QTEST_GUILESS_MAIN(TestEdsImporter)
#include "tst_edsimporter.moc"

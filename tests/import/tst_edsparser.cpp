#include "edsreading.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// A file with every kind of section in the shape that CiA 306 shows.
const QByteArray plainFile = R"([FileInfo]
FileName=a.eds
[DeviceInfo]
VendorName=Nobody, Inc.
NrOfRXPDO=1
[Comments]
Lines=2
Line1=first
Line2=second
[MandatoryObjects]
SupportedObjects=1
1=0x1000
[OptionalObjects]
SupportedObjects=2
1=0x1018
2=0x2000
[1000]
ParameterName=Device type
ObjectType=0x7
DataType=0x0007
AccessType=ro
DefaultValue=0x00020192
PDOMapping=0
;;What it is
[1018]
ParameterName=Identity
ObjectType=0x9
SubNumber=2
[1018sub0]
ParameterName=Number of entries
ObjectType=0x7
DataType=0x0005
AccessType=ro
DefaultValue=1
PDOMapping=0
[1018sub1]
ParameterName=Vendor-ID
ObjectType=0x7
DataType=0x0007
AccessType=const
DefaultValue=0x319
PDOMapping=0
[2000]
ParameterName=Speed
ObjectType=0x7
DataType=0x0003
AccessType=rww
DefaultValue=-5
LowLimit=-100
HighLimit=100
ObjFlags=3
PDOMapping=1
)";

QByteArray replaced(QByteArray text, const char *before, const char *after)
{
    return text.replace(before, after);
}

/// A description with one variable of these lines.
QByteArray variable(const QByteArray &lines)
{
    return "[OptionalObjects]\nSupportedObjects=1\n1=0x2000\n[2000]\nParameterName=Name\n"
           "ObjectType=7\nPDOMapping=0\n" +
           lines;
}

QByteArray utf16(const QByteArray &text)
{
    const QString wide = QChar(QChar::ByteOrderMark) + QString::fromUtf8(text);
    return {reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2};
}

} // namespace

class TestEdsParser : public QObject
{
    Q_OBJECT

private slots:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void readsPlainFile()
    {
        const EdsReading reading(plainFile);
        QVERIFY2(reading.loaded, qPrintable(reading.error));
        QCOMPARE(reading.messages, QStringList());
        QCOMPARE(reading.objects.size(), 3);
        QCOMPARE(reading.entries.size(), 4);
        QCOMPARE(reading.object(0x1000).category, quint16(0));
        QCOMPARE(reading.object(0x2000).category, quint16(1));
        QCOMPARE(reading.object(0x1000).description, u"What it is"_s);
        QCOMPARE(reading.object(0x1018).objectCode, quint8(9));
        const CANopenSubindex speed = reading.entry(0x2000);
        QVERIFY(speed.hasDefaultValue && speed.hasLimits && speed.pdoMapping);
        QVERIFY(speed.refuseRead && speed.refuseWrite);
        QCOMPARE(speed.lowLimit + speed.defaultValue + speed.highLimit, u"-100-5100"_s);
        QCOMPARE(reading.parser.deviceValue(u"deviceinfo"_s, u"VENDORNAME"_s), u"Nobody, Inc."_s);
        QCOMPARE(reading.parser.deviceValue(u"DeviceInfo"_s, u"NrOfRxPDO"_s), u"1"_s);
        QCOMPARE(reading.parser.deviceComment(), u"first\nsecond\n"_s);
    }

    /// Shapes that differ in nothing but their looks.
    void readsTheSameFrom_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("CR LF") << replaced(plainFile, "\n", "\r\n");
        QTest::newRow("CR") << replaced(plainFile, "\n", "\r");
        QTest::newRow("UTF-8 mark") << "\xEF\xBB\xBF" + plainFile;
        QTest::newRow("UTF-16") << utf16(plainFile);
        QTest::newRow("blanks") << replaced(plainFile, "=", "  =\t ");
        QTest::newRow("blanks at line ends")
            << replaced(plainFile, "\n", "  \n").replace("it is  ", "it is");
        QTest::newRow("upper case keys") << replaced(plainFile, "DataType", "DATATYPE")
                                                .replace("AccessType", "ACCESSTYPE")
                                                .replace("OptionalObjects", "OPTIONALOBJECTS")
                                                .replace("1018sub", "1018SUB");
        QTest::newRow("two digits") << replaced(plainFile, "1018sub", "1018Sub0");
        QTest::newRow("blanks in headers") << replaced(plainFile, "[1018sub1]", " [ 1018 sub 1 ] ");
        QTest::newRow("octal") << replaced(plainFile, "0x7", "07").replace("0x0005", "05");
        QTest::newRow("decimal") << replaced(plainFile, "0x9", "9").replace("0x0007", "7");
        QTest::newRow("words for access")
            << replaced(plainFile, "=rww", "=RWW").replace("=const", "=CONST");
        QTest::newRow("comments") << replaced(plainFile, "\n[", "\n; not for us\n[");
        QTest::newRow("comments behind numbers")
            << replaced(plainFile, "DataType=0x0007", "DataType=0x0007 ; UNSIGNED32");
    }

    void readsTheSameFrom()
    {
        QFETCH(QByteArray, text);
        const EdsReading reading(text);
        QVERIFY2(reading.loaded, qPrintable(reading.error));
        QCOMPARE(reading.messages, QStringList());
        QCOMPARE(reading.summary(), EdsReading(plainFile).summary());
    }

    void readsLatin1()
    {
        const EdsReading reading(replaced(plainFile, "Speed",
                                          "Gr\xF6\xDF"
                                          "e"));
        QCOMPARE(reading.object(0x2000).name, u"Gr\u00f6\u00dfe"_s);
        const EdsReading utf8(replaced(plainFile, "Speed",
                                       "Gr\xC3\xB6\xC3\x9F"
                                       "e"));
        QCOMPARE(utf8.object(0x2000).name, u"Gr\u00f6\u00dfe"_s);
    }

    /// What is wrong, what becomes of it, and in which line it stands.
    void mends_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("objects");
        QTest::addColumn<int>("entries");
        const auto changed = [](const char *before, const char *after) {
            return replaced(plainFile, before, after);
        };
        QTest::newRow("count of list")
            << changed("SupportedObjects=2", "SupportedObjects=7")
            << u"a.eds:13: [OptionalObjects]: SupportedObjects is 7"_s << 3 << 4;
        QTest::newRow("listed only") << changed("2=0x2000", "2=0x2000\n3=0x3000")
                                     << u"a.eds:17: [OptionalObjects] lists 0x3000"_s << 3 << 4;
        QTest::newRow("not listed")
            << changed("2=0x2000\n", "") << u"0x2000 stands in no list"_s << 3 << 4;
        QTest::newRow("no lists") << changed("1=0x1000\n", "").replace("1=0x1018\n2=0x2000\n", "")
                                  << u"0x1018 stands in no list"_s << 3 << 4;
        QTest::newRow("no sections of lists")
            << changed("[MandatoryObjects]", "[Tools]").replace("[OptionalObjects]", "[Tools]")
            << u"a.eds: The file has no lists of its objects."_s << 3 << 4;
        QTest::newRow("count of subindices") << changed("SubNumber=2", "SubNumber=9")
                                             << u"SubNumber is 9, but the file has 2"_s << 3 << 4;
        QTest::newRow("count that is none") << changed("SubNumber=2", "SubNumber=two")
                                            << u"SubNumber: 'two' is no number"_s << 3 << 4;
        QTest::newRow("no name of a subindex")
            << changed("ParameterName=Vendor-ID", "ParameterName=")
            << u"a.eds:36: 0x1018sub1 has no name."_s << 3 << 4;
        QTest::newRow("device data twice")
            << plainFile + "[deviceinfo]\nVendorName=Other\nOrderCode=7\n"
            << u"a.eds:53: The section [deviceinfo] stands a second time and is joined"_s << 3 << 4;
        QTest::newRow("object twice")
            << plainFile + "[2000]\nParameterName=Other\n"
            << u"a.eds:53: The section [2000] stands a second time"_s << 3 << 4;
        QTest::newRow("subindex twice") << plainFile + "[1018SUB01]\nParameterName=Other\n"
                                        << u"stands a second time"_s << 3 << 4;
        QTest::newRow("key twice") << changed("DataType=0x0003", "DataType=0x0003\nDataType=1")
                                   << u"The key DataType stands twice"_s << 3 << 4;
        QTest::newRow("unknown key") << changed("ObjFlags=3", "ObjFlags=3\nColour=red")
                                     << u"The key Colour is unknown"_s << 3 << 4;
        QTest::newRow("unknown section")
            << plainFile + "[Kitchen]\nSink=1\n"
            << u"a.eds:53: The section [Kitchen] is unknown"_s << 3 << 4;
        QTest::newRow("module") << plainFile + "[M1SubExt6000]\nParameterName=x\n"
                                << u"[M1SubExt6000] of a module"_s << 3 << 4;
        QTest::newRow("no entry") << changed("ObjFlags=3", "ObjFlags")
                                  << u"The line 'ObjFlags' is no entry"_s << 3 << 4;
        QTest::newRow("no object section")
            << plainFile + "[3000sub1]\nParameterName=x\nDataType=5\nAccessType=rw\n"
            << u"0x3000 has no section of its own"_s << 4 << 6;
        QTest::newRow("variable with subindices") << changed("ObjectType=0x9", "ObjectType=7")
                                                  << u"0x1018 is stated as no record"_s << 3 << 4;
        QTest::newRow("no subindex 0") << changed("[1018sub0]", "[1018sub5]")
                                       << u"0x1018 has no sub-index 0; it is made"_s << 3 << 5;
        QTest::newRow("no value of subindex 0")
            << changed("DefaultValue=1\n", "") << u"0x1018sub0 has no default value; it gets"_s << 3
            << 4;
        QTest::newRow("no data type")
            << changed("DataType=0x0003\n", "") << u"0x2000 has no data type"_s << 3 << 4;
        QTest::newRow("structure as type")
            << changed("DataType=0x0003", "DataType=0x20")
            << u"the data type '0x20' is not supported; it becomes 0"_s << 3 << 4;
        QTest::newRow("type number of signals")
            << changed("DataType=0x0003", "DataType=100") << u"'100' is not supported"_s << 3 << 4;
        QTest::newRow("access type") << changed("AccessType=rww", "AccessType=maybe")
                                     << u"the access type 'maybe' is unknown"_s << 3 << 4;
        QTest::newRow("no access type")
            << changed("AccessType=rww\n", "") << u"it is taken as \"ro\""_s << 3 << 4;
        QTest::newRow("object type") << changed("ObjectType=0x9", "ObjectType=0x33")
                                     << u"the object type 51 is unknown"_s << 3 << 4;
        QTest::newRow("no number") << changed("ObjFlags=3", "ObjFlags=many")
                                   << u"ObjFlags: 'many' is no number"_s << 3 << 4;
        QTest::newRow("text before the sections")
            << "nonsense\n" + plainFile << u"a.eds:1: What stands before"_s << 3 << 4;
        QTest::newRow("long line")
            << changed("ObjFlags=3", "ObjFlags=3\n;") + QByteArray(2 * 1024 * 1024, 'x')
            << u"is longer than"_s << 3 << 4;
        QTest::newRow("open header") << changed("[2000]", "[2000") << QString() << 3 << 4;
    }

    void mends()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, message);
        QFETCH(int, objects);
        QFETCH(int, entries);
        const EdsReading reading(text);
        QVERIFY2(reading.loaded, qPrintable(reading.error));
        QVERIFY2(message.isEmpty() || reading.tells(message),
                 qPrintable(reading.messages.join(u'\n')));
        QCOMPARE(reading.objects.size(), objects);
        QCOMPARE(reading.entries.size(), entries);
        QCOMPARE(reading.object(0x1018).objectCode, quint8(9));
        QVERIFY(reading.entry(0x1018, 0).hasDefaultValue);
        QCOMPARE(reading.object(0x2000).name, u"Speed"_s);
        QVERIFY(!reading.entry(0x1018, 1).name.isEmpty());
        QVERIFY(!reading.tells(u"SubNumber is 0"_s));
        QCOMPARE(reading.parser.deviceValue(u"DeviceInfo"_s, u"VendorName"_s), u"Nobody, Inc."_s);
        QCOMPARE(reading.parser.deviceValue(u"DeviceInfo"_s, u"OrderCode"_s).isEmpty(),
                 !message.contains(u"joined"_s));
    }

    void readsValues_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QString>("read");
        QTest::addColumn<bool>("tells");
        const auto row = [](const char *type, const char *written, const char *read,
                            bool tells = false) {
            QTest::addRow("%s %s", type, written)
                << QByteArray(type) << QByteArray(written) << QString::fromLatin1(read) << tells;
        };
        row("7", "$NODEID+0x180", "$NODEID+0x180");
        row("7", "$nodeid + 0x180", "$NODEID+0x180");
        row("7", "0x180+$NODEID", "$NODEID+0x180");
        row("7", "0x80000000 + $NodeID + 0x180", "$NODEID+0x80000180");
        row("7", "384+$NODEID", "$NODEID+0x180");
        row("7", "$NODEID+0x00180", "$NODEID+0x180");
        row("7", "$NODEID+0x00000180", "$NODEID+0x00000180");
        row("5", "$NODEID", "$NODEID+0");
        row("7", "$NODEID*2", "$NODEID*2", true);
        row("7", "$NODEID+$NODEID", "$NODEID+$NODEID", true);
        row("7", "0x180+$NODEID ; comment", "$NODEID+0x180", true);
        row("9", "0x1 + $nodeid", "0x1 + $nodeid");
        row("5", "0x1F", "0x1F");
        row("5", "017", "017");
        row("5", "089", "89", true);
        row("5", "256", "256", true);
        row("5", "-1", "-1", true);
        row("5", "five", "five", true);
        row("2", "0xFF", "-1", true);
        row("3", "0x8000", "-32768", true);
        row("4", "0xFFFFFFFF", "-1", true);
        row("4", "-0x10", "-0x10");
        row("0x10", "0xFFFFFF", "-1", true);
        row("0x15", "0xFFFFFFFFFFFFFFFF", "-1", true);
        row("0x15", "-9223372036854775808", "-9223372036854775808");
        row("2", "300", "300", true);
        row("0x1B", "0xFFFFFFFFFFFFFFFF", "0xFFFFFFFFFFFFFFFF");
        row("0x1B", "0x1FFFFFFFFFFFFFFFF", "0x1FFFFFFFFFFFFFFFF", true);
        row("1", "TRUE", "1", true);
        row("8", "1.5e3", "1.5e3");
        row("8", "0x3F800000", "0x3F800000", true);
        row("8", "1,5", "1,5", true);
        row("9", "text; with = and [signs]", "text; with = and [signs]");
        row("UNSIGNED16", "5", "5");
    }

    void readsValues()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, written);
        QFETCH(QString, read);
        QFETCH(bool, tells);
        const EdsReading reading(variable("DataType=" + type + "\nAccessType=rw\nDefaultValue=" +
                                          written + "\nParameterValue=" + written + '\n'));
        QCOMPARE(reading.entry(0x2000).defaultValue, read);
        QCOMPARE(reading.entry(0x2000).parameterValue, read);
        QCOMPARE(!reading.messages.isEmpty(), tells);
    }

    void readsLimits_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<bool>("given");
        QTest::addColumn<QString>("range");
        QTest::newRow("none") << QByteArray() << false << u"-"_s;
        QTest::newRow("both empty") << QByteArray("LowLimit=\nHighLimit=\n") << false << u"-"_s;
        QTest::newRow("both") << QByteArray("LowLimit=1\nHighLimit=2\n") << true << u"1-2"_s;
        QTest::newRow("low only") << QByteArray("LowLimit=1\nHighLimit=\n") << true << u"1-255"_s;
        QTest::newRow("high only") << QByteArray("HighLimit=9\n") << true << u"0-9"_s;
    }

    void readsLimits()
    {
        QFETCH(QByteArray, lines);
        const CANopenSubindex entry =
            EdsReading(variable("DataType=5\nAccessType=rw\n" + lines)).entry(0x2000);
        QTEST(entry.hasLimits, "given");
        QTEST(entry.lowLimit + u'-' + entry.highLimit, "range");
    }

    void readsConfiguration()
    {
        const EdsReading reading(
            variable("DataType=7\nAccessType=rw\nDefaultValue=1\nParameterValue=$NODEID + 2\n"
                     "Denotation=My name\nUploadFile=up.bin\nDownloadFile=down.bin\n"
                     "[DeviceComissioning]\nNodeID=3\n"));
        const CANopenSubindex entry = reading.entry(0x2000);
        QCOMPARE(entry.parameterValue, u"$NODEID+0x2"_s);
        QCOMPARE(entry.denotation, u"My name"_s);
        QCOMPARE(entry.uploadFile + entry.downloadFile, u"up.bindown.bin"_s);
        QVERIFY(reading.tells(u"the file of a domain is not kept: 'up.bin'"_s));
    }

    void readsCompactObjects()
    {
        const EdsReading reading(
            "[ManufacturerObjects]\nSupportedObjects=1\n1=0x2000\n[2000]\nParameterName=Field\n"
            "ObjectType=8\nDataType=6\nAccessType=rw\nPDOMapping=1\nDefaultValue=4\nLowLimit=1\n"
            "HighLimit=9\nCompactSubObj=3\n[2000Name]\nNrOfEntries=2\n1=One\n0x3=Three\n"
            "[2000Value]\nNrOfEntries=1\n2=7\n[2000Denotation]\n1=D\n");
        QCOMPARE(reading.messages, QStringList());
        QVERIFY(reading.entries.isEmpty());
        const CANopen::CANopenIndex object = reading.object(0x2000);
        QCOMPARE(object.compactSubObj, quint16(3));
        QVERIFY(object.pdoMapping && object.hasLimits);
        QCOMPARE(object.defaultValue, u"4"_s);
        const QMap<QString, QString> names = {{u"1"_s, u"One"_s}, {u"3"_s, u"Three"_s}};
        QCOMPARE(reading.parser.getCompactSubObjNames(0x2000), names);
        QCOMPARE(reading.parser.getCompactSubObjValues(0x2000).value(u"2"_s), u"7"_s);
        QCOMPARE(reading.parser.getCompactSubObjDenotations(0x2000).value(u"1"_s), u"D"_s);
        QVERIFY(reading.parser.getCompactSubObjNames(0x2001).isEmpty());

        const EdsReading many(replaced(
            "[ManufacturerObjects]\n[2000]\nObjectType=8\nCompactSubObj=9\n", "=9", "=4000000000"));
        QCOMPARE(many.object(0x2000).compactSubObj, quint16(254));
        QVERIFY(many.tells(u"an object has at most 254 entries"_s));
    }

    void putsDescriptionsTogether_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QString>("description");
        QTest::newRow("one") << QByteArray(";;a text\n") << u"a text"_s;
        QTest::newRow("pieces") << QByteArray(";;one \n;;two\n") << u"one two"_s;
        QTest::newRow("value and object alike")
            << QByteArray(";;ab\n;;cd\n;;ab\n;;cd\n") << u"abcd"_s;
        QTest::newRow("value and object differ")
            << QByteArray(";;value\n;;object\n") << u"valueobject"_s;
        QTest::newRow("value has none") << QByteArray(";;\n;;cancan\n") << u"cancan"_s;
        QTest::newRow("no description") << QByteArray("; a comment\n;;\n") << QString();
    }

    void putsDescriptionsTogether()
    {
        QFETCH(QByteArray, lines);
        const EdsReading reading(variable("DataType=5\nAccessType=rw\n" + lines));
        QTEST(reading.object(0x2000).description, "description");
        QTEST(reading.entry(0x2000).description, "description");
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty") << QByteArray(" \r\n") << u"a.eds: The file is empty."_s;
        QTest::newRow("XML") << QByteArray("<?xml version=\"1.0\"?><a/>") << u"is an XML file"_s;
        QTest::newRow("binary") << QByteArray("\x7F"
                                              "ELF\0\1",
                                              6)
                                << u"is binary"_s;
        QTest::newRow("database") << QByteArray("SQLite format 3\0abc", 19) << u"is a database"_s;
        QTest::newRow("DeviceNet") << QByteArray("[File]\nDescText=\"x\";\n[Device]\nVendCode=1;\n")
                                   << u"of another fieldbus"_s;
        QTest::newRow("PROFIBUS") << QByteArray("#Profibus_DP\nGSD_Revision=3\n") << u"PROFIBUS"_s;
        QTest::newRow("network") << QByteArray("[Topology]\nNodes=2\n") << u"network's nodes"_s;
        QTest::newRow("import list") << QByteArray("[Actions]\na=delete 0:1\n") << u"actions"_s;
        QTest::newRow("prose") << QByteArray("Dear reader,\nthis is no EDS.\n") << u"is no EDS"_s;
        QTest::newRow("numbers only") << QByteArray("[1000]\nx=1\n") << u"is no EDS"_s;
    }

    void refuses()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        const EdsReading reading(text);
        QVERIFY(!reading.loaded);
        QVERIFY2(reading.error.contains(error), qPrintable(reading.error));
        QVERIFY(reading.error.startsWith(u"a.eds: "_s));
        QVERIFY(reading.objects.isEmpty() && reading.entries.isEmpty());
    }

    void refusesFiles()
    {
        const QTemporaryDir folder;
        EdsParser parser;
        QVERIFY(!parser.LoadEds(folder.filePath(u"none.eds"_s)));
        QVERIFY(parser.result().error().contains(u"can't be opened"_s));
        QVERIFY(!parser.LoadEds(folder.path()));
        QFile large(folder.filePath(u"large.eds"_s));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(200 * 1024 * 1024));
        QVERIFY(!parser.LoadEds(large.fileName()));
        QVERIFY(parser.result().error().contains(u"larger than 64 MB"_s));
        QVERIFY(!parser.LoadEds(u"/dev/zero"_s));
    }

    /// Small files that would become large, and large ones that would take long.
    void staysBounded_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QByteArray compact = "[OptionalObjects]\n";
        for (int index = 0x1000; index < 0x10000; ++index)
            compact += '[' + QByteArray::number(index, 16) + "]\nObjectType=8\nCompactSubObj=254\n";
        QTest::newRow("compact objects") << compact << u"more than 500000 sub-indices"_s;
        QTest::newRow("sections") << QByteArray("[1000]\nObjectType=7\n") +
                                         QByteArray("[a]\n").repeated(1000000)
                                  << u"more than 500000 sections"_s;
        QTest::newRow("one section again and again")
            << QByteArray("[1000]\nObjectType=7\nx\n").repeated(400000) << QString();
        QTest::newRow("unknown keys")
            << plainFile + QByteArray("key=value\n").repeated(3000000) << QString();
        QByteArray keys = "[DeviceInfo]\n";
        for (int i = 0; i < 1000000; ++i)
            keys += "Key" + QByteArray::number(i) + "=1\n";
        QTest::newRow("keys of the device") << keys << QString();
        QTest::newRow("long line")
            << "[1000]\nObjectType=7\nParameterName=" + QByteArray(50 * 1024 * 1024, 'x')
            << QString();
        QTest::newRow("long header")
            << "[1000]\nObjectType=7\n[" + QByteArray(50 * 1024 * 1024, '[') << QString();
        QTest::newRow("long sum") << variable("DataType=7\nAccessType=rw\nDefaultValue=$NODEID" +
                                              QByteArray("+1").repeated(500000))
                                  << QString();
    }

    void staysBounded()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        QElapsedTimer timer;
        timer.start();
        const EdsReading reading(text);
        QCOMPARE(reading.loaded, error.isEmpty());
        QVERIFY2(reading.error.contains(error), qPrintable(reading.error));
        QVERIFY(reading.messages.size() <= 501);
        (void)reading.parser.deviceComment();
        // Far above what it takes, far below what a loop within a loop would.
        QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestEdsParser)
#include "tst_edsparser.moc"

#include "import/codbimporter.h"
#include "importsupport.h"
#include "resources/codb/standardprofiles.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Object = ObjectDataBase::INDEX_DATA_T;
using Entry = ObjectDataBase::SUBINDEX_DATA_T;

/// A subindex line with chosen fields.
struct Fields
{
    QString type = u"UNSIGNED32"_s;
    QString access = u"rw"_s;
    QString accessRule = u"m"_s;
    QString low;
    QString high;
    QString value;
    QString mapping = u"n"_s;
    QString mappingRule = u"m"_s;

    QString line(const QString &number) const
    {
        QStringList fields(23);
        const QStringList key = number.split(u':');
        fields[0] = key.at(0);
        fields[1] = key.value(1);
        fields[2] = u"Name"_s;
        fields[3] = u"optional"_s;
        fields[5] = u"VAR"_s;
        fields[7] = type;
        fields[9] = access;
        fields[10] = accessRule;
        fields[15] = low;
        fields[17] = high;
        fields[19] = value;
        fields[21] = mapping;
        fields[22] = mappingRule;
        return fields.join(u':');
    }
};

/// A store and what an importer says of a text.
struct Import
{
    void run(const QByteArray &text, bool expand = false, quint32 low = 0, quint32 high = 0xFFFF)
    {
        runFile(ImportSupport::write(folder, u"profile.codb"_s, text), expand, low, high);
    }

    void runFile(const QString &path, bool expand = false, quint32 low = 0, quint32 high = 0xFFFF)
    {
        CODBImporter importer;
        importer.setExpandCopies(expand);
        ImportSupport::run(importer, *store, path, 0, low, high);
        error = importer.errorString();
        messages = importer.messages();
    }

    Object object(quint16 index) { return ImportSupport::object(*store, index); }
    Entry entry(quint16 index, quint8 sub) { return ImportSupport::entry(*store, index, sub); }
    QList<quint16> indices() { return store->getIndices(0); }
    QList<quint8> subindices(quint16 index) { return store->getSubIndices(0, index); }

    QTemporaryDir folder;
    std::unique_ptr<ObjectDataBase> store = ImportSupport::newStore();
    QString error;
    QStringList messages;
};

} // namespace

class TestCodbImporter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { StandardProfiles::makeAvailable(); }

    void variableBringsItsSubindex()
    {
        Import import;
        import.run(
            "1000::Device Type:mandatory::VAR:m:UNSIGNED32:m:ro:d[const,ro]::n::n:::::::d[401..."
            "0xFFFFFFFF]:n:m\r\n");
        QCOMPARE(import.error, QString());
        QCOMPARE(import.object(0x1000).objecttype, quint32(CANopen::VAR));
        QCOMPARE(import.object(0x1000).name, u"Device Type"_s);
        QCOMPARE(import.object(0x1000).category, quint16(CANopen::Mandatory));
        QCOMPARE(import.object(0x1000).datatype, quint16(CAN::UNSIGNED32));
        const Entry entry = import.entry(0x1000, 0);
        QCOMPARE(entry.name, u"Device Type"_s);
        QCOMPARE(entry.allowedaccesstypes, u"const,ro"_s);
        QCOMPARE(entry.accesstype, u"ro"_s);
        QCOMPARE(QString(entry.lowlimit + u'-' + entry.uplimit), u"0-4294967295"_s);
        QCOMPARE(entry.defaultvalue, QString());
        QCOMPARE(import.subindices(0x1000), QList<quint8>{0});
    }

    void entryValues_data()
    {
        QTest::addColumn<Fields>("fields");
        QTest::addColumn<QString>("access");
        QTest::addColumn<QString>("allowed");
        QTest::addColumn<quint8>("mapping");
        QTest::addColumn<QString>("value");
        const auto row = [](const char *name, const Fields &fields, const char *access,
                            const char *allowed, PDOMapping::PDOMappingType mapping,
                            const QString &value = QString()) {
            QTest::newRow(name) << fields << QString::fromLatin1(access)
                                << QString::fromLatin1(allowed) << quint8(mapping) << value;
        };
        row("plain", {}, "rw", "", PDOMapping::Forbidden);
        row("no access", {.access = u""_s}, "ro", "", PDOMapping::Forbidden);
        row("one allowed", {.accessRule = u"d[rw]"_s}, "rw", "rw", PDOMapping::Forbidden);
        row("list allowed", {.accessRule = u"d[ro,rw,wo]"_s}, "rw", "ro,rw,wo",
            PDOMapping::Forbidden);
        row("rule without list", {.accessRule = u"d"_s}, "rw", "", PDOMapping::Forbidden);
        row("mapping y", {.mapping = u"y"_s}, "rw", "", PDOMapping::Allowed);
        row("mapping n, rule d", {.mapping = u"n"_s, .mappingRule = u"d"_s}, "rw", "",
            PDOMapping::Forbidden);
        row("mapping left to rule d", {.mapping = u""_s, .mappingRule = u"d"_s}, "rw", "",
            PDOMapping::Allowed);
        row("mapping left to rule m", {.mapping = u""_s, .mappingRule = u"m"_s}, "rw", "",
            PDOMapping::Forbidden);
        row("formula", {.value = u"$NODEID * 10 + 4000"_s}, "rw", "", PDOMapping::Forbidden,
            u"$NODEID * 10 + 4000"_s);
        row("apostrophe", {.value = u"it's"_s}, "rw", "", PDOMapping::Forbidden, u"it's"_s);
    }

    void entryValues()
    {
        QFETCH(Fields, fields);
        Import import;
        import.run(fields.line(u"2000:1F"_s).toUtf8());
        const Entry entry = import.entry(0x2000, 0x1F);
        QTEST(entry.accesstype, "access");
        QTEST(entry.allowedaccesstypes, "allowed");
        QTEST(entry.pdomapping.toUInt(), "mapping");
        QTEST(entry.defaultvalue, "value");
    }

    void limits_data()
    {
        QTest::addColumn<QString>("low");
        QTest::addColumn<QString>("high");
        QTest::addColumn<QString>("result");
        QTest::newRow("none") << u""_s << u"7"_s << u"0-65535"_s;
        QTest::newRow("rule in the field") << u"d"_s << u"7"_s << u"0-65535"_s;
        QTest::newRow("said to be none") << u"n"_s << u"n"_s << u"0-65535"_s;
        QTest::newRow("decimal") << u"3"_s << u"240"_s << u"3-240"_s;
        QTest::newRow("hexadecimal") << u"0x10"_s << u"0x580"_s << u"16-1408"_s;
        QTest::newRow("of the node") << u"1"_s << u"0x580+NODEID"_s << u"1-1408127"_s;
        QTest::newRow("lists") << u"0x02...0x05"_s << u"1...0x20"_s << u"2-32"_s;
        QTest::newRow("greater of both") << u"0x1 5"_s << u"0x10 900"_s << u"1-900"_s;
        QTest::newRow("high missing") << u"4"_s << u""_s << u"4-65535"_s;
        QTest::newRow("more than 64 bits") << u"4"_s << u"0x1FFFFFFFFFFFFFFFF"_s << u"4-65535"_s;
    }

    void limits()
    {
        QFETCH(QString, low);
        QFETCH(QString, high);
        Import import;
        import.run(
            Fields{.type = u"UNSIGNED16"_s, .low = low, .high = high}.line(u"2000:01"_s).toUtf8());
        const Entry entry = import.entry(0x2000, 1);
        QTEST(QString(entry.lowlimit + u'-' + entry.uplimit), "result");
        QVERIFY(!entry.limitineds);
    }

    void flagsOfDefault()
    {
        Import import;
        import.run((Fields{}.line(u"2000:00"_s) + u'\n' + Fields{}.line(u"2000:01"_s) + u'\n' +
                    Fields{.value = u"5"_s}.line(u"2000:02"_s))
                       .toUtf8());
        const std::array<quint8, 3> inEds{1, 0, 1};
        for (quint8 sub = 0; sub < inEds.size(); ++sub) {
            QCOMPARE(import.entry(0x2000, sub).writedefaulttoeds, inEds[sub]);
            QVERIFY(import.entry(0x2000, sub).defaultineds);
        }
    }

    void texts()
    {
        Import import;
        import.run((Fields{.type = u"DOMAIN"_s}.line(u"2010:0A"_s) + u'\n' +
                    Fields{.type = u"VISIBLE_STRING"_s}.line(u"2010:0B"_s) + u'\n' +
                    Fields{.type = u"VISIBLE_STRING"_s, .value = u"Prüfling"_s}.line(u"2010:0C"_s))
                       .toUtf8());
        const Entry domain = import.entry(0x2010, 10);
        QCOMPARE(domain.implementation, quint8(CANopen::Variable));
        QCOMPARE(domain.varname, u"v_820810"_s);
        const Entry blank = import.entry(0x2010, 11);
        QCOMPARE(blank.implementation, quint8(CANopen::ManagedConst));
        QCOMPARE(blank.defaultvalue, u" "_s);
        QCOMPARE(blank.size, 1U);
        QCOMPARE(import.entry(0x2010, 12).defaultvalue, u"Prüfling"_s);
    }

    void elementsShapeTheirObject()
    {
        Import import;
        const auto object = [](const char *index, const char *code) {
            return QString::fromLatin1("%1::Object:optional::%2").arg(index, code);
        };
        QStringList lines;
        for (const char *index : {"1F00", "2000", "2001", "2002"}) {
            const bool isArray = QLatin1String(index) != "2001"_L1;
            lines << object(index, isArray ? "ARRAY" : "RECORD")
                  << Fields{.type = u"UNSIGNED8"_s}.line(QLatin1String(index) + u":00"_s)
                  << Fields{.type = u"INTEGER16"_s}.line(QLatin1String(index) + u":01"_s);
        }
        // Its object is none that a project can have.
        lines << object("2003", "DEFTYPE");
        import.run(lines.join(u"\r\n").toUtf8());
        QCOMPARE(import.object(0x2000).datatype, quint16(CAN::INTEGER16));
        QCOMPARE(import.object(0x2001).datatype, quint16(0));
        QCOMPARE(import.entry(0x1F00, 0).implementation, quint8(CANopen::ManagedVariable));
        QCOMPARE(import.entry(0x2000, 0).implementation, quint8(CANopen::ManagedConst));
        QCOMPARE(import.entry(0x2001, 0).implementation, quint8(CANopen::ManagedConst));
        QCOMPARE(import.entry(0x2001, 1).implementation, quint8(CANopen::ManagedVariable));
        QVERIFY(!import.store->indexExists(0, 0x2003));

        // A later file that changes one element of an object that it doesn't list.
        import.run(Fields{.type = u"UNSIGNED24"_s}.line(u"2002:01"_s).toUtf8());
        QCOMPARE(import.object(0x2002).datatype, quint16(CAN::UNSIGNED24));
        QCOMPARE(import.object(0x2002).name, u"Object"_s);
    }

    void linesThatMeanNothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("blank lines") << QByteArray("\r\n\r\n  \r\n");
        QTest::newRow("comment") << QByteArray("# 2000::Name:mandatory::VAR:m:UNSIGNED8\r\n");
        QTest::newRow("pragma") << QByteArray("#pragma message Example database\r\n");
        QTest::newRow("copy that isn't asked for") << QByteArray("$1202=1201\r\n");
        QTest::newRow("other object") << QByteArray("0040::Type:optional::DEFSTRUCT:m\r\n");
    }

    void linesThatMeanNothing()
    {
        QFETCH(QByteArray, text);
        Import import;
        import.run(text);
        QCOMPARE(import.error, QString());
        QCOMPARE(import.messages, QStringList());
        QCOMPARE(import.indices(), QList<quint16>());
        QCOMPARE(import.subindices(0), QList<quint8>());
    }

    void faultyLinesAreToldAndPassedOver()
    {
        Import import;
        import.run("2000::First:optional::VAR:m:UNSIGNED8\n"
                   "no profile\n"
                   "2000:1FF:Too high\n"
                   "20000::Too long:optional::VAR\n"
                   "$20=3000\n"
                   "$2005=3000\n"
                   "2001::Last",
                   true);
        QCOMPARE(import.error, QString());
        QStringList numbers;
        for (const QString &message : std::as_const(import.messages))
            numbers << message.section(u"profile.codb:"_s, 1).section(u':', 0, 0);
        QCOMPARE(numbers, QStringList({u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"6"_s}));
        QCOMPARE(import.indices(), QList<quint16>{0x2000});

        import.run("2004::Odd:optional::VAR:m:NUMBER\n2005:01:Odd:optional::VAR:m:BOOLEAN:m:rx\n");
        QCOMPARE(import.messages.size(), 2);
        QVERIFY(import.messages.at(0).endsWith(u":1: 'NUMBER' is no data type; it becomes 0"_s));
        QVERIFY(import.messages.at(1).endsWith(u":2: 'rx' is no access type"_s));

        // Latin-1, as older files have it, and any other bytes.
        import.run("2001::Pr\xFC"
                   "fer:optional::VAR:m:UNSIGNED8\n\x00\xFF\xFE:::\n");
        QCOMPARE(import.object(0x2001).name, u"Prüfer"_s);
    }

    void rangeHoldsForObjects()
    {
        Import import;
        QStringList lines;
        for (const char *index : {"0FFF", "1000", "1FFF", "2000"})
            lines << QLatin1String(index) + u"::Object:optional::VAR:m:UNSIGNED8"_s;
        lines << u"2001:01:Element:optional::VAR:m:UNSIGNED8"_s << u"$1800=1000"_s
              << u"$2002=1000"_s;
        import.run(lines.join(u'\n').toUtf8(), true, 0x1000, 0x1FFF);
        QCOMPARE(import.indices(), QList<quint16>({0x1000, 0x1800, 0x1FFF}));
        QVERIFY(import.store->subIndexExists(0, 0x2001, 1));
    }

    void copies()
    {
        const QString text = QStringList{u"1201::Server:optional::RECORD"_s,
                                         Fields{.value = u"2"_s}.line(u"1201:00"_s),
                                         u"$1202=1201"_s,
                                         Fields{}.line(u"1201:01"_s),
                                         u"$1203=1202"_s,
                                         u"1203::Own name:optional::RECORD"_s}
                                 .join(u'\n');
        Import without;
        without.run(text.toUtf8());
        QCOMPARE(without.indices(), QList<quint16>({0x1201, 0x1203}));
        QCOMPARE(without.subindices(0x1203), QList<quint8>());
        Import with;
        with.run(text.toUtf8(), true);
        QCOMPARE(with.indices(), QList<quint16>({0x1201, 0x1202, 0x1203}));
        QCOMPARE(with.subindices(0x1201), QList<quint8>({0, 1}));
        QCOMPARE(with.subindices(0x1202), QList<quint8>{0});
        QCOMPARE(with.entry(0x1203, 0).defaultvalue, u"2"_s);
        QCOMPARE(with.object(0x1202).name, u"Server"_s);
        QCOMPARE(with.object(0x1203).name, u"Own name"_s);
    }

    void copyReplacesFormerObject()
    {
        Import import;
        import.run("2000::Old:optional::RECORD\n2000:00:N:m::VAR:m:UNSIGNED8\n"
                   "2000:07:Gone:m::VAR:m:UNSIGNED8\n");
        import.run("2001::New:optional::VAR:m:UNSIGNED8\n$2000=2001\n", true);
        QCOMPARE(import.object(0x2000).name, u"New"_s);
        QCOMPARE(import.object(0x2000).objecttype, quint32(CANopen::VAR));
        QCOMPARE(import.subindices(0x2000), QList<quint8>{0});
    }

    void copyOfObjectInTheStore()
    {
        Import import;
        import.run("2000::Object:optional::RECORD\n2000:00:N:m::VAR:m:UNSIGNED8\n"
                   "2000:01:A:m::VAR:m:UNSIGNED8\n");
        import.run("2000:01:B:m::VAR:m:UNSIGNED16\n$2001=2000\n$2002=2002\n", true);
        QCOMPARE(import.subindices(0x2001), QList<quint8>({0, 1}));
        QCOMPARE(import.entry(0x2001, 1).name, u"B"_s);
        QCOMPARE(import.entry(0x2001, 0).name, u"N"_s);
        QCOMPARE(import.messages.size(), 1);
    }

    void hugeExpansionIsRefused()
    {
        Import import;
        QByteArray text = "2000::Large:optional::ARRAY\n";
        for (int sub = 0; sub < 256; ++sub)
            text += "2000:" + QByteArray::number(sub, 16) + ":Element:optional::VAR:m:UNSIGNED8\n";
        for (int index = 0x2001; index < 0x3000; ++index)
            text += '$' + QByteArray::number(index, 16) + "=2000\n";
        import.run(text, true);
        QVERIFY2(import.error.contains(u"profile.codb:"_s), qPrintable(import.error));
        QCOMPARE(import.indices(), QList<quint16>());
    }

    void unreadableFile()
    {
        Import import;
        import.runFile(import.folder.filePath(u"none.codb"_s));
        QVERIFY2(import.error.contains(u"none.codb is not readable."_s), qPrintable(import.error));
        import.runFile(import.folder.path());
        QVERIFY(!import.error.isEmpty());
    }

    void deviceProfileOverloadsBase()
    {
        Import import;
        import.runFile(StandardProfiles::communication);
        QCOMPARE(import.error, QString());
        const QList<quint16> base = import.indices();
        QCOMPARE(import.entry(0x1000, 0).defaultvalue, QString());
        QCOMPARE(import.entry(0x1600, 1).defaultvalue, QString());
        import.runFile(u":/codb/v401.codb"_s);
        QCOMPARE(import.error, QString());
        for (const quint16 index : base)
            QVERIFY2(import.store->indexExists(0, index), qPrintable(QString::number(index, 16)));
        QCOMPARE(import.entry(0x1000, 0).defaultvalue, u"0x000F0191"_s);
        QCOMPARE(import.entry(0x1600, 0).defaultvalue, u"8"_s);
        QCOMPARE(import.entry(0x1600, 1).defaultvalue, u"0x62000108"_s);
        QCOMPARE(import.entry(0x1400, 1).defaultvalue, u"$NODEID+0x200"_s);
        QCOMPARE(import.entry(0x1400, 2).defaultvalue, u"0xFF"_s);
        QCOMPARE(import.object(0x6000).datatype, quint16(CAN::UNSIGNED8));
        QCOMPARE(import.object(0x6401).datatype, quint16(CAN::INTEGER16));
        QCOMPARE(import.entry(0x6000, 1).pdomapping.toUInt(), quint8(PDOMapping::Allowed));
    }

    void wholeRangesOfPdosAndSdos()
    {
        struct Range
        {
            quint16 first;
            quint16 last;
        };
        constexpr std::array ranges{Range{0x1200, 0x12FF}, Range{0x1400, 0x17FF},
                                    Range{0x1800, 0x1BFF}};
        Import import;
        import.runFile(StandardProfiles::communication, true);
        QCOMPARE(import.error, QString());
        QCOMPARE(import.messages, QStringList());
        for (const Range &range : ranges)
            QCOMPARE(import.store->getIndices(0, range.first, range.last).size(),
                     qsizetype(range.last - range.first + 1));
        QCOMPARE(import.entry(0x15FF, 1).defaultvalue, u"0x80000000"_s);
        QCOMPARE(import.subindices(0x1BFF), import.subindices(0x1A00));
    }
};

QTEST_GUILESS_MAIN(TestCodbImporter)
#include "tst_codbimporter.moc"

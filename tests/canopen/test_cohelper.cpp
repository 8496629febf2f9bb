#include "canopen/cohelper.h"

#include <QSet>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

/// The vocabulary of CANopen as the project file, files of other makers and forms write it.
class TestCOHelper : public QObject
{
    Q_OBJECT

private slots:
    void numbersNamesAndBits_data();
    void numbersNamesAndBits();
    void everyNameLeadsBackToItsNumber();
    void dataTypeTexts_data();
    void dataTypeTexts();
    void limits_data();
    void limits();
    void objectCodes_data();
    void objectCodes();
    void accessTypes_data();
    void accessTypes();
    void categories_data();
    void categories();
    void pdoMapping_data();
    void pdoMapping();
    void pdoMappingTexts();
    void profileNames_data();
    void profileNames();
    void unknownNumbersAreEmpty();
    void firstUseFromManyThreads();
};

void TestCOHelper::numbersNamesAndBits_data()
{
    QTest::addColumn<quint16>("number");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("bits");
    const auto row = [](quint16 number, const char *name, int bits) {
        QTest::addRow("%d %s", number, name) << number << QString::fromLatin1(name) << bits;
    };
    row(0x01, "BOOLEAN", 1);
    row(0x05, "UNSIGNED8", 8);
    row(0x08, "REAL32", 32);
    row(0x09, "VISIBLE_STRING", 0);
    row(0x0A, "OCTET_STRING", 0);
    row(0x0B, "UNICODE_STRING", 0);
    row(0x0C, "TIME_OF_DAY", 48);
    row(0x0D, "TIME_DIFFERENCE", 48);
    row(0x0F, "DOMAIN", 0);
    row(0x10, "INTEGER24", 24);
    row(0x11, "REAL64", 64);
    row(0x12, "INTEGER40", 40);
    row(0x15, "INTEGER64", 64);
    row(0x16, "UNSIGNED24", 24);
    row(0x18, "UNSIGNED40", 40);
    row(0x1A, "UNSIGNED56", 56);
    row(0x1B, "UNSIGNED64", 64);
    row(124, "UTF8_STRING", 0);
    row(120, "STRING_NUL", 0);
    row(100, "UNSIGNED2", 2);
    row(105, "UNSIGNED7", 7);
    row(106, "UNSIGNED9", 9);
    row(112, "UNSIGNED15", 15);
    row(117, "UNSIGNED19", 19);
    row(118, "UNSIGNED18", 18);
    row(119, "UNSIGNED21", 21);
    row(129, "UNSIGNED29", 29);
}

void TestCOHelper::numbersNamesAndBits()
{
    QFETCH(quint16, number);
    QFETCH(QString, name);
    QTEST(int(COHelper::getDataLengthBits(number)), "bits");
    QCOMPARE(COHelper::index2DataTypeString(number), name);
    QCOMPARE(COHelper::stringDataTypeIndexMap().value(number), name);
}

void TestCOHelper::everyNameLeadsBackToItsNumber()
{
    const QMap<quint16, QString> &map = COHelper::stringDataTypeIndexMap();
    QCOMPARE(map.size(), 45);
    QSet<QString> names;
    for (auto it = map.begin(); it != map.end(); ++it) {
        const QString shortName = COHelper::index2DataTypeShortString(it.key());
        QCOMPARE(quint16(COHelper::mapDataTypeString(it.value())), it.key());
        QCOMPARE(quint16(COHelper::mapDataTypeString(shortName)), it.key());
        QCOMPARE(quint16(COHelper::mapDataTypeString(QString::number(it.key()))), it.key());
        names << it.value() << shortName;
    }
    QCOMPARE(names.size(), 2 * map.size());
}

void TestCOHelper::dataTypeTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");
    const auto rows = [](int number, const QStringList &texts) {
        for (const QString &text : texts) {
            QTest::addRow("%s", qPrintable(text)) << text << number;
        }
    };
    rows(CAN::UNSIGNED8, {"  unsigned8\t", "UNSIGNED_8", "Unsigned 8", "UNSIGNED-8", "0x0005",
                          "0X5", "5", "005", "u8", "UINT8", "uint8_t", "USINT", "BYTE"});
    rows(CAN::UNSIGNED16, {"UINT", "Word", "uint16_t"});
    rows(CAN::INTEGER8, {"SINT", "INT8", "sint8", "Integer_8"});
    rows(CAN::INTEGER16, {"INT", "int16_t", "S16"});
    rows(CAN::UNSIGNED64, {"ULINT", "UNSIGNED_64", "0x1b", "27"});
    rows(CAN::INTEGER24, {"0x10", "16", "0016"});
    rows(CAN::REAL32, {"REAL", "float", "Float32"});
    rows(CAN::REAL64, {"LREAL", "double"});
    rows(CAN::BOOLEAN, {"BOOL", "bit", "Unsigned1", "boolean"});
    rows(CAN::VISIBLE_STRING, {"STRING", "VisibleString", "VISIBLE STRING", "STRING(20)", "VS"});
    rows(CAN::OCTET_STRING, {"OCTETSTRING[8]", "octet string"});
    rows(CAN::UNICODE_STRING, {"WSTRING", "UNICODE_STRING"});
    rows(CAN::UTF8_STRING, {"U8S", "UTF-8 String", "0x7C"});
    rows(CAN::BITS2, {"BIT2", "BITS2", "U2", "100"});
    rows(CAN::UNKNOWN_TYPE, {"", "  ", "0", "14", "0x17", "0x10005", "-5", "5.0", "0x", "UNSIGNED",
                             "UNSIGNED33", "(UNSIGNED8)", "UNSIGNED8;", QString(100000, u'U'),
                             QString::fromUtf8("\xC3\x9CNSIGNED8")});
}

void TestCOHelper::dataTypeTexts()
{
    QFETCH(QString, text);
    QTEST(int(COHelper::mapDataTypeString(text)), "number");
}

void TestCOHelper::limits_data()
{
    QTest::addColumn<quint16>("number");
    QTest::addColumn<QString>("low");
    QTest::addColumn<QString>("high");
    const auto row = [](quint16 number, const char *low, const char *high) {
        QTest::addRow("%d", number) << number << QString(low) << QString(high);
    };
    row(CAN::BOOLEAN, "0", "1");
    row(CAN::UNSIGNED8, "0", "255");
    row(CAN::UNSIGNED32, "0", "4294967295");
    row(CAN::UNSIGNED56, "0", "72057594037927935");
    row(CAN::UNSIGNED64, "0", "18446744073709551615");
    row(CAN::INTEGER8, "-128", "127");
    row(CAN::INTEGER24, "-8388608", "8388607");
    row(CAN::INTEGER64, "-9223372036854775808", "9223372036854775807");
    row(CAN::BITS3, "0", "7");
    for (const quint16 none : {9, 10, 11, 12, 13, 15, 120, 121, 124, 0, 14, 200, 65535}) {
        row(none, nullptr, nullptr);
    }
}

void TestCOHelper::limits()
{
    QFETCH(quint16, number);
    QFETCH(QString, low);
    QFETCH(QString, high);
    QString gotLow = QStringLiteral("old");
    QString gotHigh = QStringLiteral("text");
    const bool has = COHelper::getDefaultLimits(number, gotLow, gotHigh);
    QCOMPARE(has, !low.isNull());
    QCOMPARE(gotLow, has ? low : QStringLiteral("old"));
    QCOMPARE(gotHigh, has ? high : QStringLiteral("text"));
}

void TestCOHelper::objectCodes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    const auto rows = [](int code, const QStringList &texts) {
        for (const QString &text : texts) {
            QTest::addRow("'%s'", qPrintable(text)) << text << code;
        }
    };
    rows(CANopen::VAR, {"VAR", " var ", "Variable", "VARIABLE", "7", "0x7", "0x07", "0X0007"});
    rows(CANopen::ARRAY, {"ARRAY", "Array", "0x8", "8"});
    rows(CANopen::RECORD, {"RECORD", "record\r", "0x09", "9"});
    rows(CANopen::DOMAIN_OBJECT, {"DOMAIN", "0x2"});
    rows(CANopen::DEFTYPE, {"deftype", "5"});
    rows(CANopen::DEFSTRUCT, {"DefStruct", "0x6"});
    rows(CANopen::UNKNOWN_OBJECT, {"", "NULL", "0", "3", "10", "0x107", "VARIANT", "-7"});
}

void TestCOHelper::objectCodes()
{
    QFETCH(QString, text);
    QFETCH(int, code);
    QCOMPARE(int(COHelper::string2objectCode(text)), code);
    const QString name = COHelper::objectCode2String(code);
    QCOMPARE(name.isEmpty(), code == CANopen::UNKNOWN_OBJECT);
    QCOMPARE(int(COHelper::string2objectCode(name)), code);
}

void TestCOHelper::accessTypes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("access");
    QTest::addColumn<QString>("label");
    const auto rows = [](const QString &access, const QString &label, const QStringList &texts) {
        for (const QString &text : texts) {
            QTest::addRow("'%s'", qPrintable(text)) << text << access << label;
        }
    };
    rows("const", "Constant", {"const", "CONST", " Constant "});
    rows("ro", "Read Only", {"ro", "RO\r\n", "read", "readOnly", "Read-Only", "R"});
    rows("wo", "Write Only", {"wo", "write", "WRITE_ONLY", "w"});
    rows("rw", "Read Write", {"rw", "RW", "r/w", "readWrite", "Read/Write", "Read Write"});
    rows("rwr", "Read Write Read",
         {"rwr", "RWR", "readWriteInput", "Read/Write Input", "read/write on process input",
          "Read Write Read"});
    rows("rww", "Read Write Write",
         {"rww", "Rww", "readWriteOutput", "Read/Write Output", "read/write on process output"});
}

void TestCOHelper::accessTypes()
{
    QFETCH(QString, text);
    QTEST(COHelper::normalizeAccessType(text), "access");
    QTEST(COHelper::accessType2String(text), "label");
    // Unknown ones stay readable for the checks, and aren't guessed at.
    QCOMPARE(COHelper::normalizeAccessType(" NoAccess "), QStringLiteral("noaccess"));
    QCOMPARE(COHelper::normalizeAccessType(QString()), QString());
    QCOMPARE(COHelper::accessType2String(" NoAccess "), QStringLiteral(" NoAccess "));
}

void TestCOHelper::categories_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("category");
    const auto rows = [](int category, const QStringList &texts) {
        for (const QString &text : texts) {
            QTest::addRow("'%s'", qPrintable(text)) << text << category;
        }
    };
    rows(CANopen::Mandatory, {"mandatory", " Mandatory\t", "M", "0", "mandatory, if PDO is used"});
    rows(CANopen::Optional, {"optional", "O", "1", "", "not mandatory", "x", "7"});
    rows(CANopen::Conditional, {"conditional", "c", "COND.", "2", "Conditional: TPDO supported"});
}

void TestCOHelper::categories()
{
    QFETCH(QString, text);
    QTEST(int(COHelper::convertCategory(text)), "category");
    QFETCH(int, category);
    QCOMPARE(int(COHelper::convertCategory(COHelper::category2String(category))), category);
}

void TestCOHelper::pdoMapping_data()
{
    QTest::addColumn<PDOMapping::PDOMappingType>("value");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("xdd");
    QTest::addRow("0") << PDOMapping::Forbidden << "Forbidden"
                       << "no";
    QTest::addRow("1") << PDOMapping::Allowed << "Allowed"
                       << "optional";
    QTest::addRow("2") << PDOMapping::Default << "Default"
                       << "default";
    QTest::addRow("3") << PDOMapping::RPDO << "RPDO"
                       << "RPDO";
    QTest::addRow("4") << PDOMapping::TPDO << "TPDO"
                       << "TPDO";
}

void TestCOHelper::pdoMapping()
{
    QFETCH(PDOMapping::PDOMappingType, value);
    const PDOMapping mapping(value);
    QTEST(COHelper::pdoMapping2String(mapping), "label");
    QTEST(mapping.getXDDStringValue(), "xdd");
    QCOMPARE(mapping.toBinary(), quint8(value == PDOMapping::Forbidden ? 0 : 1));
    QCOMPARE(PDOMapping::fromUInt(mapping.toUInt()), mapping);
    const QString csv = mapping.getCSVStringValue();
    for (const QString &text : {csv, csv.toUpper(), QString(" " + csv + "\r\n"), mapping.label(),
                                mapping.getXDDStringValue()}) {
        QCOMPARE(PDOMapping::fromCSVString(text), mapping);
    }
}

void TestCOHelper::pdoMappingTexts()
{
    QCOMPARE(PDOMapping::fromCSVString("0"), PDOMapping(false));
    QCOMPARE(PDOMapping::fromCSVString(" 1"), PDOMapping(true));
    QCOMPARE(PDOMapping::fromCSVString(""), PDOMapping());
    QCOMPARE(PDOMapping::fromCSVString("sometimes"), PDOMapping());
    QCOMPARE(PDOMapping::fromUInt(5), PDOMapping());
    QCOMPARE(PDOMapping(true).value(), PDOMapping::Allowed);
    QVERIFY(PDOMapping(PDOMapping::TPDO) != PDOMapping(PDOMapping::RPDO));
}

void TestCOHelper::profileNames_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("name");
    QTest::addRow("plain") << "v401.codb"
                           << "CiA 401";
    QTest::addRow("resource") << ":/codb/v301.codb"
                              << "CiA 301";
    QTest::addRow("part") << "v454-2.codb"
                          << "CiA 454-2";
    QTest::addRow("edition") << "v402_v3.codb"
                             << "CiA 402 V3";
    QTest::addRow("windows") << "C:\\db.d\\V447.CODB"
                             << "CiA 447";
    QTest::addRow("no number") << "/home/x.y/valve.codb"
                               << "valve";
    QTest::addRow("short number") << "v2.codb"
                                  << "v2";
    QTest::addRow("word behind") << "v401x.codb"
                                 << "v401x";
    QTest::addRow("project") << "my_device.vxmp"
                             << "my_device";
    QTest::addRow("empty") << ""
                           << "";
}

void TestCOHelper::profileNames()
{
    QFETCH(QString, file);
    QTEST(COHelper::convertDbNames(file), "name");
    QCOMPARE(COHelper::convertEBType(" uint16 "), QStringLiteral("UNSIGNED16"));
    QCOMPARE(COHelper::convertEBType("battery"), QString());
}

void TestCOHelper::unknownNumbersAreEmpty()
{
    for (const quint16 number : {0, 14, 0x17, 113, 130, 0xFFFF}) {
        QCOMPARE(COHelper::index2DataTypeString(number), QString());
        QCOMPARE(COHelper::index2DataTypeShortString(number), QString());
        QCOMPARE(COHelper::getDataLengthBits(number), quint8(0));
    }
    QCOMPARE(COHelper::implementation2String(3), QStringLiteral("Virtual Object"));
    QCOMPARE(COHelper::implementation2String(4), QString());
    QCOMPARE(COHelper::category2String(3), QString());
}

void TestCOHelper::firstUseFromManyThreads()
{
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&right] {
            QString low;
            QString high;
            for (int n = 0; n < 1000; ++n) {
                right += COHelper::mapDataTypeString("Unsigned_8") == CAN::UNSIGNED8 &&
                         COHelper::index2DataTypeString(5) == u"UNSIGNED8" &&
                         COHelper::normalizeAccessType("Read/Write") == u"rw" &&
                         COHelper::getDefaultLimits(5, low, high) && high == u"255";
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    QCOMPARE(right.load(), 8000);
}

QTEST_GUILESS_MAIN(TestCOHelper)
#include "test_cohelper.moc"

#include "canopen/cohelper.h"

#include <QSet>
#include <QTest>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

/// The vocabulary of CANopen as the project file, files of other makers and forms write it.
class TestCOHelper : public QObject
{
    Q_OBJECT

private slots:
    void numbersNamesAndBits()
    {
        struct
        {
            quint16 number;
            const char *name;
            int bits;
        } const rows[] = {
            {0x01, "BOOLEAN", 1},        {0x05, "UNSIGNED8", 8},        {0x08, "REAL32", 32},
            {0x09, "VISIBLE_STRING", 0}, {0x0A, "OCTET_STRING", 0},     {0x0B, "UNICODE_STRING", 0},
            {0x0C, "TIME_OF_DAY", 48},   {0x0D, "TIME_DIFFERENCE", 48}, {0x0F, "DOMAIN", 0},
            {0x10, "INTEGER24", 24},     {0x11, "REAL64", 64},          {0x12, "INTEGER40", 40},
            {0x15, "INTEGER64", 64},     {0x16, "UNSIGNED24", 24},      {0x18, "UNSIGNED40", 40},
            {0x1A, "UNSIGNED56", 56},    {0x1B, "UNSIGNED64", 64},      {124, "UTF8_STRING", 0},
            {120, "STRING_NUL", 0},      {100, "UNSIGNED2", 2},         {105, "UNSIGNED7", 7},
            {106, "UNSIGNED9", 9},       {112, "UNSIGNED15", 15},       {117, "UNSIGNED19", 19},
            {118, "UNSIGNED18", 18},     {119, "UNSIGNED21", 21},       {129, "UNSIGNED29", 29}};
        for (const auto &[number, name, bits] : rows) {
            QCOMPARE(int(COHelper::getDataLengthBits(number)), bits);
            QCOMPARE(COHelper::index2DataTypeString(number), QString(name));
            QCOMPARE(COHelper::stringDataTypeIndexMap().value(number), QString(name));
        }
    }

    void everyNameLeadsBackToItsNumber()
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

    void limits()
    {
        struct
        {
            quint16 number;
            const char *low;
            const char *high;
        } const rows[] = {{CAN::BOOLEAN, "0", "1"},
                          {CAN::UNSIGNED8, "0", "255"},
                          {CAN::UNSIGNED32, "0", "4294967295"},
                          {CAN::UNSIGNED56, "0", "72057594037927935"},
                          {CAN::UNSIGNED64, "0", "18446744073709551615"},
                          {CAN::INTEGER8, "-128", "127"},
                          {CAN::INTEGER24, "-8388608", "8388607"},
                          {CAN::INTEGER64, "-9223372036854775808", "9223372036854775807"},
                          {CAN::BITS3, "0", "7"}};
        QString low;
        QString high;
        for (const auto &row : rows) {
            QVERIFY(COHelper::getDefaultLimits(row.number, low, high));
            QCOMPARE(low + u' ' + high, QString(row.low) + u' ' + row.high);
        }
        low = high = u"old"_s;
        for (const quint16 none : {9, 10, 11, 12, 13, 15, 120, 121, 124, 0, 14, 200, 65535}) {
            QVERIFY(!COHelper::getDefaultLimits(none, low, high));
            QCOMPARE(low + high, u"oldold"_s);
        }
    }

    /// Texts that mean a number or a word, in the spellings of forms and of other makers' files.
    void spellings()
    {
        using Meaning = std::function<QString(const QString &)>;
        const Meaning type = [](const QString &text) {
            return QString::number(COHelper::mapDataTypeString(text));
        };
        const Meaning object = [](const QString &text) {
            const auto code = COHelper::string2objectCode(text);
            const QString name = COHelper::objectCode2String(code);
            return COHelper::string2objectCode(name) == code ? name : u"no way back"_s;
        };
        const Meaning category = [](const QString &text) {
            const auto value = COHelper::convertCategory(text);
            const QString name = COHelper::category2String(value);
            return COHelper::convertCategory(name) == value ? QString::number(value) : name;
        };
        const Meaning access = [](const QString &text) {
            return COHelper::normalizeAccessType(text) + u'/' + COHelper::accessType2String(text);
        };
        const auto number = [](int value) { return QString::number(value); };
        const struct
        {
            const Meaning &meaning;
            QString result;
            QStringList texts;
        } rows[] = {
            {type,
             number(CAN::UNSIGNED8),
             {"  unsigned8\t", "UNSIGNED_8", "Unsigned 8", "UNSIGNED-8", "0x0005", "0X5", "5",
              "005", "u8", "UINT8", "uint8_t", "USINT", "BYTE"}},
            {type, number(CAN::UNSIGNED16), {"UINT", "Word", "uint16_t"}},
            {type, number(CAN::INTEGER8), {"SINT", "INT8", "sint8", "Integer_8"}},
            {type, number(CAN::INTEGER16), {"INT", "int16_t", "S16"}},
            {type, number(CAN::UNSIGNED64), {"ULINT", "UNSIGNED_64", "0x1b", "27"}},
            {type, number(CAN::INTEGER24), {"0x10", "16", "0016"}},
            {type, number(CAN::REAL32), {"REAL", "float", "Float32"}},
            {type, number(CAN::REAL64), {"LREAL", "double"}},
            {type, number(CAN::BOOLEAN), {"BOOL", "bit", "Unsigned1", "boolean"}},
            {type,
             number(CAN::VISIBLE_STRING),
             {"STRING", "VisibleString", "VISIBLE STRING", "STRING(20)", "VS"}},
            {type, number(CAN::OCTET_STRING), {"OCTETSTRING[8]", "octet string"}},
            {type, number(CAN::UNICODE_STRING), {"WSTRING", "UNICODE_STRING"}},
            {type, number(CAN::UTF8_STRING), {"U8S", "UTF-8 String", "0x7C"}},
            {type, number(CAN::BITS2), {"BIT2", "BITS2", "U2", "100"}},
            {type,
             number(CAN::UNKNOWN_TYPE),
             {"", "  ", "0", "14", "0x17", "0x10005", "-5", "5.0", "0x", "UNSIGNED", "UNSIGNED33",
              "(UNSIGNED8)", "UNSIGNED8;", QString(100000, u'U'), u"\u00dcNSIGNED8"_s}},
            {object,
             COHelper::objectCode2String(CANopen::VAR),
             {"VAR", " var ", "Variable", "VARIABLE", "7", "0x7", "0x07", "0X0007"}},
            {object, COHelper::objectCode2String(CANopen::ARRAY), {"ARRAY", "Array", "0x8", "8"}},
            {object,
             COHelper::objectCode2String(CANopen::RECORD),
             {"RECORD", "record\r", "0x09", "9"}},
            {object, COHelper::objectCode2String(CANopen::DOMAIN_OBJECT), {"DOMAIN", "0x2"}},
            {object, COHelper::objectCode2String(CANopen::DEFTYPE), {"deftype", "5"}},
            {object, COHelper::objectCode2String(CANopen::DEFSTRUCT), {"DefStruct", "0x6"}},
            {object, QString(), {"", "NULL", "0", "3", "10", "0x107", "VARIANT", "-7"}},
            {access, "const/Constant", {"const", "CONST", " Constant "}},
            {access, "ro/Read Only", {"ro", "RO\r\n", "read", "readOnly", "Read-Only", "R"}},
            {access, "wo/Write Only", {"wo", "write", "WRITE_ONLY", "w"}},
            {access, "rw/Read Write", {"rw", "RW", "r/w", "readWrite", "Read/Write", "Read Write"}},
            {access,
             "rwr/Read Write Read",
             {"rwr", "RWR", "readWriteInput", "Read/Write Input", "read/write on process input",
              "Read Write Read"}},
            {access,
             "rww/Read Write Write",
             {"rww", "Rww", "readWriteOutput", "Read/Write Output",
              "read/write on process output"}},
            // Unknown ones stay readable for the checks, and aren't guessed at.
            {access, "noaccess/ NoAccess ", {" NoAccess "}},
            {access, "/", {QString()}},
            {category,
             number(CANopen::Mandatory),
             {"mandatory", " Mandatory\t", "M", "0", "mandatory, if PDO is used"}},
            {category,
             number(CANopen::Optional),
             {"optional", "O", "1", "", "not mandatory", "x", "7"}},
            {category,
             number(CANopen::Conditional),
             {"conditional", "c", "COND.", "2", "Conditional: TPDO supported"}}};
        for (const auto &[meaning, result, texts] : rows) {
            for (const QString &text : texts)
                QVERIFY2(meaning(text) == result, qPrintable(text + u": "_s + meaning(text)));
        }
        const CANopen::ObjectCode codes[] = {CANopen::VAR,     CANopen::ARRAY,
                                             CANopen::RECORD,  CANopen::DOMAIN_OBJECT,
                                             CANopen::DEFTYPE, CANopen::DEFSTRUCT};
        for (const auto code : codes)
            QCOMPARE(int(COHelper::string2objectCode(COHelper::objectCode2String(code))),
                     int(code));
    }

    void pdoMapping()
    {
        const char *const words[][2] = {{"Forbidden", "no"},
                                        {"Allowed", "optional"},
                                        {"Default", "default"},
                                        {"RPDO", "RPDO"},
                                        {"TPDO", "TPDO"}};
        for (quint8 value = 0; value < 5; ++value) {
            const PDOMapping mapping = PDOMapping::fromUInt(value);
            QCOMPARE(mapping.toUInt(), value);
            QCOMPARE(COHelper::pdoMapping2String(mapping), QString(words[value][0]));
            QCOMPARE(mapping.getXDDStringValue(), QString(words[value][1]));
            QCOMPARE(mapping.toBinary(), quint8(value == 0 ? 0 : 1));
            const QString csv = mapping.getCSVStringValue();
            for (const QString &text : {csv, csv.toUpper(), QString(" " + csv + "\r\n"),
                                        mapping.label(), mapping.getXDDStringValue()})
                QCOMPARE(PDOMapping::fromCSVString(text), mapping);
        }
    }

    void pdoMappingTexts()
    {
        QCOMPARE(PDOMapping::fromCSVString("0"), PDOMapping(false));
        QCOMPARE(PDOMapping::fromCSVString(" 1"), PDOMapping(true));
        QCOMPARE(PDOMapping::fromCSVString(""), PDOMapping());
        QCOMPARE(PDOMapping::fromCSVString("sometimes"), PDOMapping());
        QCOMPARE(PDOMapping::fromUInt(5), PDOMapping());
        QCOMPARE(PDOMapping(true).value(), PDOMapping::Allowed);
        QVERIFY(PDOMapping(PDOMapping::TPDO) != PDOMapping(PDOMapping::RPDO));
    }

    void profileNames()
    {
        const char *const rows[][2] = {{"v401.codb", "CiA 401"},
                                       {":/codb/v301.codb", "CiA 301"},
                                       {"v454-2.codb", "CiA 454-2"},
                                       {"v402_v3.codb", "CiA 402 V3"},
                                       {"C:\\db.d\\V447.CODB", "CiA 447"},
                                       {"/home/x.y/valve.codb", "valve"},
                                       {"v2.codb", "v2"},
                                       {"v401x.codb", "v401x"},
                                       {"my_device.vxmp", "my_device"},
                                       {"", ""}};
        for (const auto &[file, name] : rows)
            QCOMPARE(COHelper::convertDbNames(QString(file)), QString(name));
        QCOMPARE(COHelper::convertEBType(" uint16 "), u"UNSIGNED16"_s);
        QCOMPARE(COHelper::convertEBType("battery"), QString());
    }

    void unknownNumbersAreEmpty()
    {
        for (const quint16 number : {0, 14, 0x17, 113, 130, 0xFFFF}) {
            QCOMPARE(COHelper::index2DataTypeString(number), QString());
            QCOMPARE(COHelper::index2DataTypeShortString(number), QString());
            QCOMPARE(COHelper::getDataLengthBits(number), quint8(0));
        }
        QCOMPARE(COHelper::implementation2String(3), u"Virtual Object"_s);
        QCOMPARE(COHelper::implementation2String(4), QString());
        QCOMPARE(COHelper::category2String(3), QString());
    }

    void firstUseFromManyThreads()
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
};

QTEST_GUILESS_MAIN(TestCOHelper)
#include "tst_cohelper.moc"

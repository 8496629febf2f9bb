#include "canopen/datatypetable.h"

#include "canopen/canopentypes.h"
#include "canopen/wordtable.h"

#include <array>
#include <limits>
#include <string>

namespace {

/// What a type's values are; limits and the usual other names follow from it.
enum class Kind : quint8 { Boolean, Signed, Unsigned, Real, Time, Text };

struct Row
{
    CAN::CANopenDataType number;
    const char *name;
    const char *shortName;
    quint8 bits;
    Kind kind;
};

using enum CAN::CANopenDataType;

// CiA 301 names UNSIGNEDn and INTEGERn by their bit length, also lengths that have no number
// there, so the signal types of J1939 and raw CAN are named in the same way.
constexpr Row rows[] = {
    {BOOLEAN, "BOOLEAN", "BOOL", 1, Kind::Boolean},
    {INTEGER8, "INTEGER8", "I8", 8, Kind::Signed},
    {INTEGER16, "INTEGER16", "I16", 16, Kind::Signed},
    {INTEGER32, "INTEGER32", "I32", 32, Kind::Signed},
    {UNSIGNED8, "UNSIGNED8", "U8", 8, Kind::Unsigned},
    {UNSIGNED16, "UNSIGNED16", "U16", 16, Kind::Unsigned},
    {UNSIGNED32, "UNSIGNED32", "U32", 32, Kind::Unsigned},
    {REAL32, "REAL32", "R32", 32, Kind::Real},
    {VISIBLE_STRING, "VISIBLE_STRING", "VS", 0, Kind::Text},
    {OCTET_STRING, "OCTET_STRING", "OS", 0, Kind::Text},
    {UNICODE_STRING, "UNICODE_STRING", "US", 0, Kind::Text},
    {TIME_OF_DAY, "TIME_OF_DAY", "TOD", 48, Kind::Time},
    {TIME_DIFFERENCE, "TIME_DIFFERENCE", "TD", 48, Kind::Time},
    {DOMAIN_TYPE, "DOMAIN", "DOM", 0, Kind::Text},
    {INTEGER24, "INTEGER24", "I24", 24, Kind::Signed},
    {REAL64, "REAL64", "R64", 64, Kind::Real},
    {INTEGER40, "INTEGER40", "I40", 40, Kind::Signed},
    {INTEGER48, "INTEGER48", "I48", 48, Kind::Signed},
    {INTEGER56, "INTEGER56", "I56", 56, Kind::Signed},
    {INTEGER64, "INTEGER64", "I64", 64, Kind::Signed},
    {UNSIGNED24, "UNSIGNED24", "U24", 24, Kind::Unsigned},
    {UNSIGNED40, "UNSIGNED40", "U40", 40, Kind::Unsigned},
    {UNSIGNED48, "UNSIGNED48", "U48", 48, Kind::Unsigned},
    {UNSIGNED56, "UNSIGNED56", "U56", 56, Kind::Unsigned},
    {UNSIGNED64, "UNSIGNED64", "U64", 64, Kind::Unsigned},
    {BITS2, "UNSIGNED2", "U2", 2, Kind::Unsigned},
    {BITS3, "UNSIGNED3", "U3", 3, Kind::Unsigned},
    {BITS4, "UNSIGNED4", "U4", 4, Kind::Unsigned},
    {BITS5, "UNSIGNED5", "U5", 5, Kind::Unsigned},
    {BITS6, "UNSIGNED6", "U6", 6, Kind::Unsigned},
    {BITS7, "UNSIGNED7", "U7", 7, Kind::Unsigned},
    {BITS9, "UNSIGNED9", "U9", 9, Kind::Unsigned},
    {BITS10, "UNSIGNED10", "U10", 10, Kind::Unsigned},
    {BITS11, "UNSIGNED11", "U11", 11, Kind::Unsigned},
    {BITS12, "UNSIGNED12", "U12", 12, Kind::Unsigned},
    {BITS13, "UNSIGNED13", "U13", 13, Kind::Unsigned},
    {BITS14, "UNSIGNED14", "U14", 14, Kind::Unsigned},
    {BITS15, "UNSIGNED15", "U15", 15, Kind::Unsigned},
    {BITS19, "UNSIGNED19", "U19", 19, Kind::Unsigned},
    {BITS18, "UNSIGNED18", "U18", 18, Kind::Unsigned},
    {BITS21, "UNSIGNED21", "U21", 21, Kind::Unsigned},
    {STRING_NUL, "STRING_NUL", "SN", 0, Kind::Text},
    {STRING_ASTERISK, "STRING_ASTERISK", "SA", 0, Kind::Text},
    {UTF8_STRING, "UTF8_STRING", "U8S", 0, Kind::Text},
    {BITS29, "UNSIGNED29", "U29", 29, Kind::Unsigned},
};

constexpr std::size_t numberCount = 130;

/// Prefixes that give another name of an integer type when its bits follow, and what may follow
/// these (the C types of <stdint.h>).
struct Prefix
{
    Kind kind;
    const char *before;
    const char *behind;
};

constexpr Prefix prefixes[] = {
    {Kind::Boolean, "UNSIGNED", ""}, {Kind::Boolean, "U", ""},
    {Kind::Boolean, "BIT", ""},      {Kind::Unsigned, "UINT", ""},
    {Kind::Unsigned, "UINT", "T"},   {Kind::Unsigned, "BITS", ""},
    {Kind::Unsigned, "BIT", ""},     {Kind::Unsigned, "UNSIGNEDINTEGER", ""},
    {Kind::Signed, "INT", ""},       {Kind::Signed, "INT", "T"},
    {Kind::Signed, "SINT", ""},      {Kind::Signed, "SIGNED", ""},
    {Kind::Signed, "S", ""},         {Kind::Real, "FLOAT", ""},
};

struct Alias
{
    const char *word;
    CAN::CANopenDataType number;
};

/// Names without a rule: IEC 61131-3 as CiA 311 uses it, C, and words of spreadsheets.
constexpr Alias aliases[] = {
    {"BIT", BOOLEAN},
    {"B", BOOLEAN},
    {"SINT", INTEGER8},
    {"INT", INTEGER16},
    {"DINT", INTEGER32},
    {"LINT", INTEGER64},
    {"USINT", UNSIGNED8},
    {"UINT", UNSIGNED16},
    {"UDINT", UNSIGNED32},
    {"ULINT", UNSIGNED64},
    {"BYTE", UNSIGNED8},
    {"WORD", UNSIGNED16},
    {"DWORD", UNSIGNED32},
    {"LWORD", UNSIGNED64},
    {"REAL", REAL32},
    {"LREAL", REAL64},
    {"FLOAT", REAL32},
    {"DOUBLE", REAL64},
    {"STRING", VISIBLE_STRING},
    {"VIS_STRING", VISIBLE_STRING},
    {"VSTR", VISIBLE_STRING},
    {"VSTRING", VISIBLE_STRING},
    {"ASCII_STRING", VISIBLE_STRING},
    {"OCTETS", OCTET_STRING},
    {"OSTR", OCTET_STRING},
    {"OSTRING", OCTET_STRING},
    {"WSTRING", UNICODE_STRING},
    {"USTR", UNICODE_STRING},
    {"UNICODE", UNICODE_STRING},
    {"TIMEOFDAY", TIME_OF_DAY},
    {"TIME_DIFF", TIME_DIFFERENCE},
    {"TDIFF", TIME_DIFFERENCE},
    {"STRING_NULL", STRING_NUL},
    {"STRING_ASTERIKS", STRING_ASTERISK},
    {"UTF8", UTF8_STRING},
    {"UTF8STR", UTF8_STRING},
};

void setLimits(DataTypeTable::Type &type, Kind kind)
{
    const int unused = 64 - type.bits;
    switch (kind) {
    case Kind::Boolean:
    case Kind::Unsigned:
        type.low = QStringLiteral("0");
        type.high = QString::number(std::numeric_limits<quint64>::max() >> unused);
        break;
    case Kind::Signed:
        type.low = QString::number(std::numeric_limits<qint64>::min() >> unused);
        type.high = QString::number(std::numeric_limits<qint64>::max() >> unused);
        break;
    case Kind::Real: {
        // Rounded towards zero, so that a reader which goes by way of a double stays in range.
        const QString high = type.bits == 32 ? QStringLiteral("3.4028234e+38")
                                             : QStringLiteral("1.7976931348623157e+308");
        type.low = u'-' + high;
        type.high = high;
        break;
    }
    case Kind::Time:
    case Kind::Text:
        break;
    }
}

using Types = std::array<DataTypeTable::Type, numberCount>;

const Types &types()
{
    static const Types table = [] {
        Types result;
        for (const Row &row : rows) {
            DataTypeTable::Type &type = result[row.number];
            type.number = row.number;
            type.name = QString::fromLatin1(row.name);
            type.shortName = QString::fromLatin1(row.shortName);
            type.bits = row.bits;
            setLimits(type, row.kind);
        }
        return result;
    }();
    return table;
}

const WordTable<quint16> &words()
{
    static const WordTable<quint16> table = [] {
        std::vector<WordTable<quint16>::Entry> entries;
        for (const Row &row : rows) {
            entries.push_back({row.name, row.number});
            entries.push_back({row.shortName, row.number});
            for (const Prefix &prefix : prefixes) {
                if (prefix.kind == row.kind) {
                    entries.push_back(
                        {prefix.before + std::to_string(row.bits) + prefix.behind, row.number});
                }
            }
        }
        for (const Alias &alias : aliases)
            entries.push_back({alias.word, alias.number});
        return WordTable<quint16>(std::move(entries));
    }();
    return table;
}

} // namespace

const DataTypeTable::Type &DataTypeTable::byNumber(quint16 number)
{
    const Types &table = types();
    return table[number < table.size() ? number : quint16(UNKNOWN_TYPE)];
}

quint16 DataTypeTable::numberOf(QStringView text)
{
    // A length behind the name, as in "STRING(20)", doesn't belong to the type.
    for (const char16_t bracket : {u'(', u'['}) {
        if (const qsizetype at = text.indexOf(bracket); at > 0)
            text = text.left(at);
    }
    if (const auto number = readFileNumber(text))
        return *number < numberCount ? byNumber(static_cast<quint16>(*number)).number : quint16(0);
    return words().find(text).value_or(UNKNOWN_TYPE);
}

const QMap<quint16, QString> &DataTypeTable::names()
{
    static const QMap<quint16, QString> map = [] {
        QMap<quint16, QString> result;
        for (const Row &row : rows)
            result.insert(row.number, byNumber(row.number).name);
        return result;
    }();
    return map;
}

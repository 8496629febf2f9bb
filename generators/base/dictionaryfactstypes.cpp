#include "generators/base/dictionaryfactstypes.h"

#include "canopen/canopentypes.h"

#include <QRegularExpression>
#include <QStringEncoder>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>

namespace {

struct TypeRow
{
    quint16 dataType;
    TableGroup group;
    const char *tag;
};

// Both time types are the 48 bits of CiA 301's TIME_OF_DAY and TIME_DIFFERENCE. Types for which the
// stack has no table of their own stand in the table of their width, where their bits are whole;
// whether the stack knows them is told by their tag. The last row is that of all other numbers.
constexpr std::array<TypeRow, 44> typeRows = {
    {{CAN::BOOLEAN, TableGroup::U8, "BOOL"},
     {CAN::INTEGER8, TableGroup::I8, "I8"},
     {CAN::INTEGER16, TableGroup::I16, "I16"},
     {CAN::INTEGER32, TableGroup::I32, "I32"},
     {CAN::UNSIGNED8, TableGroup::U8, "U8"},
     {CAN::UNSIGNED16, TableGroup::U16, "U16"},
     {CAN::UNSIGNED32, TableGroup::U32, "U32"},
     {CAN::REAL32, TableGroup::R32, "R32"},
     {CAN::VISIBLE_STRING, TableGroup::VisString, "STRING_NULL"},
     {CAN::OCTET_STRING, TableGroup::OctetString, "OCTET_STRING"},
     {CAN::UNICODE_STRING, TableGroup::OctetString, "UNICODE_STRING"},
     {CAN::TIME_OF_DAY, TableGroup::U48, "U48"},
     {CAN::TIME_DIFFERENCE, TableGroup::U48, "U48"},
     {CAN::DOMAIN_TYPE, TableGroup::Domain, "DOMAIN"},
     {CAN::INTEGER24, TableGroup::I24, "I24"},
     {CAN::REAL64, TableGroup::U64, "R64"},
     {CAN::INTEGER40, TableGroup::U40, "I40"},
     {CAN::INTEGER48, TableGroup::U48, "I48"},
     {CAN::INTEGER56, TableGroup::U64, "I56"},
     {CAN::INTEGER64, TableGroup::U64, "I64"},
     {CAN::UNSIGNED24, TableGroup::U24, "U24"},
     {CAN::UNSIGNED40, TableGroup::U40, "U40"},
     {CAN::UNSIGNED48, TableGroup::U48, "U48"},
     {CAN::UNSIGNED56, TableGroup::U64, "U56"},
     {CAN::UNSIGNED64, TableGroup::U64, "U64"},
     {CAN::BITS2, TableGroup::U8, "U8"},
     {CAN::BITS3, TableGroup::U8, "U8"},
     {CAN::BITS4, TableGroup::U8, "U8"},
     {CAN::BITS5, TableGroup::U8, "U8"},
     {CAN::BITS6, TableGroup::U8, "U8"},
     {CAN::BITS7, TableGroup::U8, "U8"},
     {CAN::BITS9, TableGroup::U16, "U16"},
     {CAN::BITS10, TableGroup::U16, "U16"},
     {CAN::BITS11, TableGroup::U16, "U16"},
     {CAN::BITS12, TableGroup::U16, "U16"},
     {CAN::BITS13, TableGroup::U16, "U16"},
     {CAN::BITS14, TableGroup::U16, "U16"},
     {CAN::BITS15, TableGroup::U16, "U16"},
     {CAN::BITS18, TableGroup::U32, "U32"},
     {CAN::BITS19, TableGroup::U32, "U32"},
     {CAN::BITS21, TableGroup::U32, "U32"},
     {CAN::BITS29, TableGroup::U32, "U32"},
     {CAN::UTF8_STRING, TableGroup::Utf8String, "UTF8_STRING"},
     {CAN::UNKNOWN_TYPE, TableGroup::None, "UNKNOWN"}}};

constexpr quint16 highestType = CAN::BITS29;

constexpr auto typeIndex = [] {
    std::array<quint8, highestType + 1> index{};
    for (auto &entry : index)
        entry = typeRows.size() - 1;
    for (std::size_t row = 0; row < typeRows.size(); ++row)
        index[typeRows[row].dataType] = quint8(row);
    return index;
}();

constexpr std::array<TableGroupInfo, tableGroupCount> groupRows = {
    {{TableGroup::U8, "u8", "UNSIGNED8"},
     {TableGroup::U16, "u16", "UNSIGNED16"},
     {TableGroup::U24, "u24", "UNSIGNED24"},
     {TableGroup::U32, "u32", "UNSIGNED32"},
     {TableGroup::U40, "u40", "UNSIGNED40"},
     {TableGroup::U48, "u48", "UNSIGNED48"},
     {TableGroup::U64, "u64", "UNSIGNED64"},
     {TableGroup::I8, "i8", "INTEGER8"},
     {TableGroup::I16, "i16", "INTEGER16"},
     {TableGroup::I24, "i24", "INTEGER24"},
     {TableGroup::I32, "i32", "INTEGER32"},
     {TableGroup::R32, "r32", "REAL32"},
     {TableGroup::VisString, "vis_string", "VIS_STRING"},
     {TableGroup::Utf8String, "utf8_string", "UTF8_STRING"},
     {TableGroup::OctetString, "octet_string", "OCTET_STRING"},
     {TableGroup::Domain, "domain", "CO_DOMAIN_PTR"}}};

// How a number that the compiler knows no literal for is written.
struct WideForm
{
    const char *name;
    int bytes;
};

WideForm wideForm(TableGroup group)
{
    switch (group) {
    case TableGroup::I24:
        return {"I24_SET", 3};
    case TableGroup::U24:
        return {"U24_SET", 3};
    case TableGroup::U40:
        return {"U40_SET", 5};
    case TableGroup::U48:
        return {"U48_SET", 6};
    case TableGroup::U64:
        return {"U64_SET", 8};
    default:
        return {nullptr, 0};
    }
}

bool parseFloat(const QString &text, quint64 &value)
{
    bool ok = false;
    // A number beyond float is infinity, as a conversion of it would be.
    const float number = float(text.toDouble(&ok));
    const bool beyondDouble = !ok && std::isinf(text.toDouble());
    value = ok || beyondDouble
                ? std::bit_cast<quint32>(beyondDouble ? float(text.toDouble()) : number)
                : 0;
    return ok || beyondDouble;
}

bool parseDouble(const QString &text, quint64 &value)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    ok |= std::isinf(number);
    value = ok ? std::bit_cast<quint64>(number) : 0;
    return ok;
}

QByteArray floatLiteral(quint32 bits)
{
    const float value = std::bit_cast<float>(bits);
    if (std::isnan(value))
        return "(0.0f / 0.0f)";
    if (std::isinf(value))
        return value > 0 ? "(1.0f / 0.0f)" : "(-1.0f / 0.0f)";
    std::array<char, 40> buffer{};
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    Q_UNUSED(error)
    QByteArray text(buffer.data(), end - buffer.data());
    if (!text.contains('.') && !text.contains('e'))
        text += ".0";
    return text + 'f';
}

} // namespace

DictionaryType DictionaryTypes::of(quint16 dataType)
{
    const TypeRow &row =
        typeRows[dataType <= highestType ? typeIndex[dataType] : typeRows.size() - 1];
    return {row.group, row.tag, dataType < CAN::VISIBLE_STRING || dataType == CAN::UNSIGNED24};
}

const TableGroupInfo &DictionaryTypes::info(TableGroup group)
{
    return groupRows[std::size_t(group)];
}

bool DictionaryTypes::hasNodeId(const QString &text)
{
    return text.contains(QLatin1Char('$')) &&
           text.contains(QLatin1String("$nodeid"), Qt::CaseInsensitive);
}

QString DictionaryTypes::withoutNodeId(const QString &text)
{
    if (!text.contains(QLatin1Char('$')))
        return text.trimmed();
    static const QRegularExpression summand(
        QStringLiteral("\\$nodeid\\s*\\+|\\+\\s*\\$nodeid|\\$nodeid"),
        QRegularExpression::CaseInsensitiveOption);
    return QString(text).remove(summand).trimmed();
}

bool DictionaryTypes::parse(quint16 dataType, const QString &text, NumberText::Base base,
                            quint64 &value)
{
    const QString number = withoutNodeId(text);
    if (dataType == CAN::REAL32)
        return parseFloat(number, value);
    if (dataType == CAN::REAL64)
        return parseDouble(number, value);
    const auto bits = NumberText::toBits(number, base);
    value = bits.value_or(0);
    return bits.has_value();
}

QByteArray DictionaryTypes::stringBytes(quint16 dataType, const QString &text)
{
    if (dataType == CAN::UTF8_STRING)
        return text.toUtf8();
    if (dataType == CAN::UNICODE_STRING)
        return QStringEncoder(QStringEncoder::Utf16LE).encode(text);
    if (dataType == CAN::OCTET_STRING) {
        static const QRegularExpression pairs(QStringLiteral("^(?:(?:0x)?[0-9a-f]{2}[\\s,]*)+$"),
                                              QRegularExpression::CaseInsensitiveOption);
        if (pairs.match(text.trimmed()).hasMatch())
            return QByteArray::fromHex(
                QString(text).remove(QLatin1String("0x"), Qt::CaseInsensitive).toLatin1());
    }
    const bool isLatin = std::all_of(text.begin(), text.end(),
                                     [](QChar character) { return character.unicode() < 0x100; });
    return isLatin ? text.toLatin1() : text.toUtf8();
}

QByteArray DictionaryTypes::literal(TableGroup group, quint64 value)
{
    if (const WideForm form = wideForm(group); form.name) {
        static constexpr char digits[] = "0123456789abcdef";
        QByteArray text = form.name;
        for (int byte = form.bytes - 1; byte >= 0; --byte) {
            const quint8 part = quint8(value >> (8 * byte));
            text += byte == form.bytes - 1 ? "(0x" : ",0x";
            text += digits[part >> 4];
            text += digits[part & 0xF];
        }
        return text + ')';
    }
    const QByteArray cast = QByteArray("(") + info(group).cType + ')';
    if (group == TableGroup::R32)
        return cast + floatLiteral(quint32(value));
    if (!isSigned(group))
        return cast + QByteArray::number(value) + 'u';
    // C has no literal for the lowest number, only the negation of one that does not exist.
    if (value == quint64(1) << 63)
        return cast + "(-9223372036854775807 - 1)";
    return cast + QByteArray::number(qint64(value));
}

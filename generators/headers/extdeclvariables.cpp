#include "generators/headers/extdeclvariables.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"
#include "canopen/helper.h"
#include "dictionary/objectwalk.h"
#include "generators/base/codewriter.h"
#include "generators/base/commongeneratorhelper.h"
#include "generators/base/dictionaryfactstypes.h"
#include "signals/signalwalk.h"
#include "store/objectdatabase.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>

namespace {

using Row = ExtDeclVariables::Row;

/// A signal's C type by its width, as the mapping tables expect it.
QString signalType(quint16 dataType)
{
    const int bits = COHelper::getDataLengthBits(dataType);
    QString word = COHelper::index2DataTypeString(dataType);
    if (word.startsWith(QLatin1String("REAL")))
        return word;
    int width = 8;
    while (width < bits && width < 64)
        width *= 2;
    const QLatin1String sign(word.startsWith(QLatin1String("INTEGER")) ? "INTEGER" : "UNSIGNED");
    return sign + QString::number(width);
}

bool isString(quint16 dataType)
{
    return dataType == CAN::VISIBLE_STRING || dataType == CAN::STRING_NUL ||
           dataType == CAN::STRING_ASTERISK || dataType == CAN::UTF8_STRING;
}

bool isBytes(quint16 dataType)
{
    return dataType == CAN::OCTET_STRING || dataType == CAN::DOMAIN_TYPE ||
           dataType == CAN::UNICODE_STRING;
}

struct CType
{
    QString name;
    bool isArray = false;
};

/// `isSignal`: of J1939 and raw CAN, where numbers of any width lie in the next standard type.
CType typeOf(quint16 dataType, bool isSignal)
{
    if (isString(dataType))
        return {QStringLiteral("char"), true};
    if (isBytes(dataType))
        return {QStringLiteral("UNSIGNED8"), true};
    const TableGroup group = DictionaryTypes::of(dataType).group;
    if (!isSignal && group != TableGroup::None)
        return {QLatin1String(DictionaryTypes::info(group).cType)};
    return {signalType(dataType)};
}

class Collector
{
public:
    Collector(ObjectDataBase &store, const std::function<bool()> &stop)
        : m_store(store), m_helper(&store), m_stop(stop)
    {
    }

    void collectLine(quint8 line);
    void comment(const QString &text) { m_result.rows.append({.comment = text}); }

    ExtDeclVariables m_result;

private:
    void collectObjects(quint8 line);
    void collectPgns(quint8 line);
    void collectCanIds(quint8 line);
    void add(const QString &variable, const CType &type, quint32 elements, const QString &note);

    ObjectDataBase &m_store;
    CommonGeneratorHelper m_helper;
    const std::function<bool()> &m_stop;
    QHash<QString, qsizetype> m_rowOf; ///< by name
};

/// Expressions are the application's business; so are members of its structures, which can't be
/// declared one by one.
void Collector::add(const QString &variable, const CType &type, quint32 elements,
                    const QString &note)
{
    static const QRegularExpression plain(
        QStringLiteral("^&?\\s*([A-Za-z_][A-Za-z0-9_]*)\\s*(?:\\[\\s*([0-9]{1,9})\\s*\\])?$"));
    const QString text = Helper::onOneLine(variable).trimmed();
    if (text.isEmpty() || text.contains(QLatin1Char('(')))
        return;
    const QRegularExpressionMatch match = plain.match(text);
    if (!match.hasMatch()) {
        comment(text + QLatin1String(": declared by the application"));
        return;
    }
    const QString name = match.captured(1);
    const bool isElement = !match.captured(2).isEmpty();
    Row row{.comment = note,
            .type = type.name,
            .name = name,
            .isArray = type.isArray || isElement || elements > 1,
            .elements = elements};
    if (isElement)
        row.elements = match.captured(2).toUInt() + 1;
    const auto known = m_rowOf.constFind(name);
    if (known == m_rowOf.constEnd()) {
        m_rowOf.insert(name, m_result.rows.size());
        m_result.rows.append(row);
        return;
    }
    Row &former = m_result.rows[*known];
    former.isArray |= row.isArray;
    former.elements = std::max(former.elements, row.elements);
}

void Collector::collectLine(quint8 line)
{
    const LineType &type = m_store.lineType(line);
    if (type.hasCANopen)
        collectObjects(line);
    if (type.hasJ1939)
        collectPgns(line);
    if (type.hasRawCan)
        collectCanIds(line);
}

void Collector::collectObjects(quint8 line)
{
    ObjectWalk objects(m_store, line);
    for (qsizetype i = 0; i < objects.size(); ++i) {
        if (m_stop())
            return;
        const DictionaryObject &object = objects.at(i);
        for (const DictionaryEntry &entry : object.entries) {
            const ObjectDataBase::SUBINDEX_DATA_T &data = entry.data;
            if (!entry.isReadable || data.implementation != CANopen::Variable)
                continue;
            const CType type = typeOf(data.datatype, false);
            add(Helper::substituteVariables(data.varname, object.index, entry.subindex, line), type,
                type.isArray ? data.size : 0, QString());
        }
    }
}

void Collector::collectPgns(quint8 line)
{
    const auto take = [&](const SignalWalk::Pgn &pgn) {
        if (pgn.isAddressClaim())
            return;
        comment(QStringLiteral("PGN 0x%1").arg(pgn.group.number, 0, 16));
        const quint32 sources = m_helper.sourceAddresses(pgn.group);
        for (const ObjectDataBase::SPN &spn : pgn.spns) {
            if (spn.implementation != CANopen::Variable)
                continue;
            const CType type = typeOf(spn.dataType, true);
            add(spn.varName, type, type.isArray ? spn.bitSize / 8 : sources,
                QStringLiteral("SPN%1").arg(spn.spn));
        }
    };
    SignalWalk::pgns(m_store, line, take, m_stop);
}

void Collector::collectCanIds(quint8 line)
{
    const auto take = [&](const SignalWalk::CanId &canId) {
        comment(QStringLiteral("CAN-ID %1/0x%2%3")
                    .arg(line)
                    .arg(canId.identifier(), 0, 16)
                    .arg(QLatin1String(canId.isExtended() ? " ext" : "")));
        for (const ObjectDataBase::DataElement &element : canId.elements) {
            if (element.implementation != CANopen::Variable)
                continue;
            const CType type = typeOf(element.dataType, true);
            add(element.varName, type, type.isArray ? element.bitSize / 8 : 0,
                QStringLiteral("signal%1").arg(element.number));
        }
    };
    SignalWalk::canIds(m_store, line, take, m_stop);
}

} // namespace

ExtDeclVariables ExtDeclVariables::collect(ObjectDataBase &store, const QList<quint8> &lines,
                                           bool hasLines, const std::function<bool()> &stop)
{
    Collector collector(store, stop);
    for (const quint8 line : lines) {
        if (hasLines)
            collector.m_result.rows.append(
                {.comment = QStringLiteral("line %1").arg(line), .isHeading = true});
        collector.collectLine(line);
    }
    return std::move(collector.m_result);
}

QString ExtDeclVariables::declarations(bool isExtern) const
{
    QString text;
    for (const Row &row : rows) {
        if (row.type.isEmpty()) {
            const QString comment = CodeWriter::commentText(row.comment);
            text += QString::fromLatin1(row.isHeading ? "\n/* %1*/\n" : "/* %1 */\n").arg(comment);
            continue;
        }
        if (isExtern)
            text += QLatin1String("extern ");
        text += row.type + QLatin1Char(' ') + row.name;
        // A definition needs a size.
        if (row.isArray && (row.elements > 0 || !isExtern))
            text += QStringLiteral("[%1]").arg(std::max<quint32>(row.elements, 1));
        else if (row.isArray)
            text += QLatin1String("[]");
        text += QLatin1Char(';');
        if (!row.comment.isEmpty())
            text += QStringLiteral("\t/* %1 */").arg(CodeWriter::commentText(row.comment));
        text += QLatin1Char('\n');
    }
    return text;
}

#include "documents/csvrow.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"
#include "canopen/helper.h"
#include "canopen/indextext.h"

#include <algorithm>

namespace {

bool needsQuotes(const QString &text)
{
    if (text.isEmpty())
        return false;
    return text.front().isSpace() || text.back().isSpace() ||
           std::any_of(text.begin(), text.end(), [](QChar c) {
               return c == QLatin1Char(',') || c == QLatin1Char(';') || c == QLatin1Char('"');
           });
}

} // namespace

QString CsvRow::field(const QString &text)
{
    QString result = text;
    if (result.contains(QLatin1Char('\n')) || result.contains(QLatin1Char('\r'))) {
        result.replace(QLatin1String("\r\n"), Helper::csvDescLinebreak);
        result.replace(QLatin1Char('\r'), Helper::csvDescLinebreak);
        result.replace(QLatin1Char('\n'), Helper::csvDescLinebreak);
    }
    if (!needsQuotes(result))
        return result;
    result.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + result + QLatin1Char('"');
}

CsvRow::Field::Field(const Variable &variable)
    : m_text(variable.name.trimmed().isEmpty() ? Helper::onOneLine(variable.name)
                                               : field(variable.name))
{
}

QString CsvRow::text(const QList<Field> &fields)
{
    QString row;
    for (const Field &field : fields) {
        row += field.text();
        row += QLatin1Char(',');
    }
    row.back() = QLatin1Char('\n');
    return row;
}

QString CsvRow::objectCodeWord(quint32 objectCode)
{
    return objectCode == CANopen::VAR ? QStringLiteral("VARIABLE")
                                      : COHelper::objectCode2String(objectCode);
}

QString CsvRow::implementationWord(quint8 implementation)
{
    return COHelper::implementation2String(implementation).remove(QLatin1Char(' '));
}

QString CsvRow::subindexText(quint8 subindex)
{
    return IndexText::subHex(subindex);
}

QString CsvRow::indexText(quint16 index)
{
    return IndexText::hex(index);
}

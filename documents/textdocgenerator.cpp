#include "documents/textdocgenerator.h"

#include "canopen/cohelper.h"
#include "generators/base/codewriter.h"

#include <cstring>

namespace {

QString oneLine(const QString &text)
{
    return text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r')) ? text.simplified()
                                                                                : text;
}

/// A label and its value; further lines of the value stand below the first.
void writeField(CodeWriter &out, const char *label, QString value)
{
    if (value.contains(QLatin1Char('\r'))) {
        value.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        value.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    }
    if (value.contains(QLatin1Char('\n'))) {
        const QString margin(static_cast<qsizetype>(std::strlen(label)), QLatin1Char(' '));
        value.replace(QLatin1Char('\n'), QLatin1Char('\n') + margin);
    }
    out << label << value << '\n';
}

} // namespace

void TextDocGenerator::writeDocument(QIODevice &device)
{
    CodeWriter out(&device);
    out << "CANopen Object Dictionary Documenation for " << m_projectName << '\n';
    walkObjects([&](const Object &object) { writeObject(out, object); });
}

void TextDocGenerator::writeObject(CodeWriter &out, const Object &object) const
{
    (out << "\nIndex:       0x").hex(object.index, 4) << " - " << oneLine(nameOf(object)) << '\n';
    writeField(out, "DataType:    ", dataTypeText(object.dataType()));
    writeField(out, "ObjectCode:  ", COHelper::objectCode2String(object.data.objecttype));
    writeField(out, "Description: ", object.data.description);
    for (const Entry &entry : object.entries)
        writeEntry(out, object, entry);
}

void TextDocGenerator::writeEntry(CodeWriter &out, const Object &object, const Entry &entry) const
{
    (out << "  Sub:          0x").hex(entry.subindex, 2)
        << " - " << oneLine(nameOf(object, entry)) << '\n';
    const ObjectDataBase::SUBINDEX_DATA_T &data = entry.data;
    writeField(out, "  DataType:     ", dataTypeText(data.datatype));
    writeField(out, "  DefaultValue: ", plainValue(data.defaultvalue));
    writeField(out, "  AccessType:   ", data.accesstype);
    writeField(out, "  PDOMapping:   ", COHelper::pdoMapping2String(data.pdomapping));
    writeField(out, "  Description: ", data.description);
}

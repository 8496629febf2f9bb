#pragma once

#include <QList>
#include <QString>

/// Text of comma separated files as the CSV importer reads them back.
namespace CsvRow {

/// A field of one line: line ends become `Helper::csvDescLinebreak`; a text that holds a separator
/// or a quotation mark, or begins or ends with a blank, stands in quotation marks, its own doubled.
[[nodiscard]] QString field(const QString &text);
/// A field for the name of a C variable, in which blanks are nothing: a name of nothing else stands
/// as it is, without quotation marks.
struct Variable
{
    QString name;
};

/// A field as `text` writes it.
class Field
{
public:
    Field(const QString &text) : m_text(field(text)) {}
    Field(const Variable &variable);

    [[nodiscard]] QString text() const { return m_text; }

private:
    QString m_text;
};

/// The fields, separated by commas, and a line feed.
[[nodiscard]] QString text(const QList<Field> &fields);
/// "VARIABLE" for a variable, else the word of the object code.
[[nodiscard]] QString objectCodeWord(quint32 objectCode);
/// "ManagedVariable", "ManagedConst", "Variable", "VirtualObject".
[[nodiscard]] QString implementationWord(quint8 implementation);
/// Hexadecimal with prefix, which a reader can't take for a decimal number.
[[nodiscard]] QString subindexText(quint8 subindex);
[[nodiscard]] QString indexText(quint16 index);

} // namespace CsvRow

#pragma once

#include "canopen/importresult.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>

/// The columns of a table of objects.
enum class CsvColumn : quint8 {
    Index,
    Sub,
    DataType,
    Access,
    VarName,
    NvStorage,
    EdsName,
    Value,
    Description,
    ObjectCode,
    Size,
    Mapable,
    Implementation,
    HasDefault,
    DefaultInEds,
    Line,
    LowLimit,
    UpLimit,
    HasLimit,
    RefuseRead,
    RefuseWrite
};

/// One row of the table. Texts have no blanks around them unless they stood in quotation marks.
class CsvRecord
{
public:
    /// Place in the file, counted from 1.
    [[nodiscard]] int lineNumber() const { return m_lineNumber; }
    /// The table has the column.
    [[nodiscard]] bool has(CsvColumn column) const { return place(column) >= 0; }
    /// The field; empty if the row or the table doesn't have it.
    [[nodiscard]] QString text(CsvColumn column) const { return m_fields.value(place(column)); }
    [[nodiscard]] bool isBlank() const;

private:
    friend class CsvReader;
    using Places = std::array<qint16, 21>;

    [[nodiscard]] qint16 place(CsvColumn column) const
    {
        return (*m_places)[static_cast<std::size_t>(column)];
    }

    const Places *m_places = nullptr;
    QStringList m_fields;
    int m_lineNumber = 0;
};

/// Reads a table as this program, spreadsheets and people write it: UTF-8, UTF-16 with a byte order
/// mark or Latin-1; any line ends; comma, semicolon or tabulator as separator; fields in quotation
/// marks, which may go over several lines. Lines that begin with "#" are comments. Knows no store.
///
/// Time and memory grow with the file, which may have 64 MB.
class CsvReader
{
public:
    enum class Kind { End, Record, Command };

    /// Takes the file's bytes and finds out their encoding. False, with `errorText` filled, if
    /// they can't be read or are no text.
    bool load(const QString &path);
    /// The same for bytes at hand; `name` is what an error calls them.
    bool setBytes(const QByteArray &bytes, const QString &name);
    [[nodiscard]] QString errorText() const { return m_errorText; }

    /// The next row, or the next command with its fields. The first line that is neither comment
    /// nor command is the head of the table; `hasIndexColumn` tells after the first row or the end
    /// whether there was a usable one. A record is valid as long as the reader.
    Kind next(CsvRecord &record, QStringList &command);
    [[nodiscard]] bool hasIndexColumn() const { return m_places[0] >= 0; }
    /// Line of the last row or command.
    [[nodiscard]] int lineNumber() const { return m_recordLine; }
    /// Bytes read, of `size`.
    [[nodiscard]] qsizetype position() const { return m_position; }
    [[nodiscard]] qsizetype size() const { return m_bytes.size(); }
    /// What was passed over since the last call.
    [[nodiscard]] QList<ImportResult::Note> takeProblems() { return std::exchange(m_problems, {}); }

    /// The number of an index or subindex: hexadecimal with prefix "0x", with "h" behind it or if
    /// it has a letter, else decimal. -1 if it can't be read or is above `highest`.
    [[nodiscard]] static int number(const QString &text, int highest);
    /// The fields of a line. `isOpen` tells that a quotation mark has no end.
    [[nodiscard]] static QStringList split(const QString &text, QChar separator, bool &isOpen);

private:
    [[nodiscard]] bool atEnd() const { return m_position >= m_bytes.size(); }
    QByteArrayView nextLine();
    [[nodiscard]] QString decoded(QByteArrayView bytes) const;
    QStringList recordFields(qsizetype start, const QString &line);
    void readHeader(const QString &line);

    QByteArray m_bytes;
    bool m_isUtf8 = true;
    qsizetype m_position = 0;
    int m_line = 0;
    int m_recordLine = 0;
    int m_openMarks = 0; ///< quotation marks without an end
    bool m_hasHeader = false;
    QChar m_separator = u',';
    CsvRecord::Places m_places = {};
    QList<ImportResult::Note> m_problems;
    QString m_errorText;
};

#include "import/csvimporterreader.h"

#include "canopen/helper.h"
#include "canopen/safefile.h"

#include <QCoreApplication>
#include <QStringDecoder>

#include <algorithm>

namespace {

constexpr qint64 mostBytes = qint64(64) * 1024 * 1024;
constexpr qsizetype longestLine = 1024 * 1024;
constexpr qsizetype longestRecord = 1024 * 1024;
constexpr qsizetype mostFields = 256;
constexpr int mostOpenMarks = 50; ///< after so many without an end no record goes over a line

/// In the order of `CsvColumn`.
constexpr const char *columnNames[] = {
    "index",          "sub",        "datatype",     "access",     "varname",  "nvstorage",
    "edsname",        "value",      "description",  "objectcode", "size",     "mapable",
    "implementation", "hasdefault", "defaultineds", "line",       "lowlimit", "uplimit",
    "haslimit",       "refuseread", "refusewrite",
};
static_assert(std::size(columnNames) == static_cast<std::size_t>(CsvColumn::RefuseWrite) + 1);

QString tr(const char *text)
{
    return QCoreApplication::translate("CsvReader", text);
}

/// A field as the user meant it; the writer's mark for a line end is one again.
QString field(QString text)
{
    if (text.contains(u'\r')) {
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(u'\r', u'\n');
    }
    return text.replace(Helper::csvDescLinebreak, QLatin1String("\n"));
}

bool isCommand(const QString &line)
{
    const qsizetype end = line.indexOf(u',');
    if (end < 0)
        return false;
    const QStringView word = QStringView(line).left(end).trimmed();
    return word.compare(u"d", Qt::CaseInsensitive) == 0 ||
           word.compare(u"c", Qt::CaseInsensitive) == 0;
}

QChar separatorOf(const QString &header)
{
    if (header.contains(u','))
        return u',';
    return header.contains(u'\t') && !header.contains(u';') ? u'\t' : u';';
}

} // namespace

bool CsvRecord::isBlank() const
{
    return std::all_of(m_fields.begin(), m_fields.end(),
                       [](const QString &text) { return text.isEmpty(); });
}

bool CsvReader::load(const QString &path)
{
    QString fault;
    const auto content = SafeFile::read(path, mostBytes, fault);
    if (!content) {
        m_errorText = tr("%1: The file can't be opened: %2.").arg(path, fault);
        return false;
    }
    return setBytes(*content, path);
}

bool CsvReader::setBytes(const QByteArray &bytes, const QString &name)
{
    m_places.fill(-1);
    if (bytes.size() > mostBytes) {
        m_errorText = tr("%1: The file is larger than %2 MB, which no table of objects is.")
                          .arg(name, QString::number(mostBytes / 1024 / 1024));
        return false;
    }
    m_bytes = bytes;
    const auto encoding = QStringConverter::encodingForData(m_bytes);
    if (encoding && *encoding != QStringConverter::Utf8) {
        const QString text = QStringDecoder(*encoding)(m_bytes);
        m_bytes = text.toUtf8();
    }
    if (m_bytes.startsWith("\xEF\xBB\xBF"))
        m_position = 3;
    if (m_bytes.contains('\0')) {
        m_errorText = tr("%1: The file is not a table of objects; it holds binary data.").arg(name);
        return false;
    }
    m_isUtf8 = QByteArrayView(m_bytes).isValidUtf8();
    return true;
}

QString CsvReader::decoded(QByteArrayView bytes) const
{
    return m_isUtf8 ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

QByteArrayView CsvReader::nextLine()
{
    const qsizetype start = m_position;
    const char *data = m_bytes.constData();
    const char *end = data + m_bytes.size();
    const char *stop =
        std::find_if(data + start, end, [](char c) { return c == '\n' || c == '\r'; });
    const QByteArrayView line(data + start, stop);
    if (stop != end)
        stop += *stop == '\r' && stop + 1 != end && stop[1] == '\n' ? 2 : 1;
    m_position = stop - data;
    ++m_line;
    return line;
}

CsvReader::Kind CsvReader::next(CsvRecord &record, QStringList &command)
{
    while (!atEnd()) {
        const qsizetype start = m_position;
        const QByteArrayView bytes = nextLine();
        m_recordLine = m_line;
        if (bytes.size() > longestLine) {
            m_problems.append({ImportResult::Kind::PassedOver, m_line,
                               tr("The line is too long; it is passed over.")});
            continue;
        }
        const QString line = decoded(bytes);
        const QStringView content = QStringView(line).trimmed();
        if (content.isEmpty() || content.startsWith(u'#'))
            continue;
        if (isCommand(line)) {
            bool isOpen = false;
            command = split(line, u',', isOpen);
            return Kind::Command;
        }
        if (!m_hasHeader) {
            readHeader(line);
            continue;
        }
        record.m_places = &m_places;
        record.m_lineNumber = m_recordLine;
        record.m_fields = recordFields(start, line);
        if (!record.isBlank())
            return Kind::Record;
    }
    return Kind::End;
}

/// The fields of the record that begins with `line`; reads on where a quotation mark is open.
QStringList CsvReader::recordFields(qsizetype start, const QString &line)
{
    bool isOpen = false;
    QStringList fields = split(line, m_separator, isOpen);
    if (!isOpen || m_openMarks >= mostOpenMarks)
        return fields;
    const qsizetype afterLine = m_position;
    const int lineOfStart = m_line;
    // The record ends with a line that has an odd number of marks; only there it is split again.
    while (!atEnd() && m_position - start < longestRecord) {
        const QByteArrayView next = nextLine();
        if (std::count(next.begin(), next.end(), '"') % 2 == 0)
            continue;
        const QByteArrayView record(m_bytes.constData() + start, m_position - start);
        QString text = decoded(record);
        while (text.endsWith(u'\n') || text.endsWith(u'\r'))
            text.chop(1);
        QStringList whole = split(text, m_separator, isOpen);
        if (!isOpen)
            return whole;
        break;
    }
    ++m_openMarks;
    m_position = afterLine;
    m_line = lineOfStart;
    m_problems.append({ImportResult::Kind::Mended, m_line,
                       tr("A quotation mark has no end; the field ends with the line.")});
    return fields;
}

void CsvReader::readHeader(const QString &line)
{
    m_hasHeader = true;
    m_separator = separatorOf(line);
    bool isOpen = false;
    const QStringList names = split(line.toLower(), m_separator, isOpen);
    for (qsizetype place = 0; place < names.size(); ++place) {
        const auto found =
            std::find_if(std::begin(columnNames), std::end(columnNames),
                         [&](const char *name) { return names.at(place) == QLatin1String(name); });
        if (found == std::end(columnNames))
            continue;
        qint16 &known = m_places[static_cast<std::size_t>(found - std::begin(columnNames))];
        if (known < 0)
            known = static_cast<qint16>(place);
    }
}

QStringList CsvReader::split(const QString &text, QChar separator, bool &isOpen)
{
    QStringList fields;
    isOpen = false;
    qsizetype i = 0;
    const qsizetype size = text.size();
    while (fields.size() < mostFields) {
        qsizetype first = i;
        while (first < size && text.at(first).isSpace() && text.at(first) != separator)
            ++first;
        if (first < size && text.at(first) == u'"') {
            QString content;
            isOpen = true;
            for (i = first + 1; i < size; ++i) {
                if (text.at(i) != u'"') {
                    content += text.at(i);
                } else if (i + 1 < size && text.at(i + 1) == u'"') {
                    content += text.at(++i);
                } else {
                    isOpen = false;
                    ++i;
                    break;
                }
            }
            // What stands behind the mark belongs to the field; only people write that.
            const qsizetype end = text.indexOf(separator, i);
            const qsizetype stop = end < 0 ? size : end;
            content += QStringView(text).mid(i, stop - i).trimmed();
            fields.append(field(content));
            i = stop;
        } else {
            const qsizetype end = text.indexOf(separator, i);
            const qsizetype stop = end < 0 ? size : end;
            fields.append(field(text.mid(i, stop - i).trimmed()));
            i = stop;
        }
        if (i >= size)
            break;
        ++i;
    }
    return fields;
}

int CsvReader::number(const QString &text, int highest)
{
    QStringView digits = QStringView(text).trimmed();
    int base = 10;
    if (digits.startsWith(u"0x", Qt::CaseInsensitive)) {
        base = 16;
        digits = digits.mid(2);
    } else if (digits.endsWith(u'h') || digits.endsWith(u'H')) {
        base = 16;
        digits.chop(1);
    } else if (std::any_of(digits.begin(), digits.end(), [](QChar c) { return c.isLetter(); })) {
        base = 16;
    }
    if (digits.startsWith(u'-') || digits.startsWith(u'+'))
        return -1;
    bool ok = false;
    const uint value = digits.toUInt(&ok, base);
    return ok && value <= static_cast<uint>(highest) ? static_cast<int>(value) : -1;
}

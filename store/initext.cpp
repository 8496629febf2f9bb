#include "store/initext.h"

#include <QStringDecoder>

#include <algorithm>

namespace IniText {

namespace {

bool isHexDigit(uint c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool decodeUtf8(QByteArrayView bytes, QString &text)
{
    if (isAscii(bytes)) {
        text = QString::fromLatin1(bytes);
        return true;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    text = decoder(bytes);
    return !decoder.hasError();
}

/// Reads the escape behind a backslash at `i`, which is left behind the escape.
void decodeEscape(QByteArrayView raw, qsizetype &i, QByteArray &out)
{
    static constexpr char letters[] = "a\ab\bf\fn\nr\rt\tv\v\"\"\?\?''\\\\";
    const char c = raw.at(i++);
    const bool hex = c == 'x';
    if (hex || (c >= '0' && c <= '7')) {
        uint code = hex ? 0 : uint(c - '0');
        for (; i < raw.size(); ++i) {
            const uint digit = uchar(raw.at(i));
            if (hex ? !isHexDigit(digit) : (digit < '0' || digit > '7'))
                break;
            const uint value = digit <= '9' ? digit - '0' : (digit | 0x20) - 'a' + 10;
            code = (code << (hex ? 4 : 3)) + value;
        }
        out += QString(QChar(ushort(code))).toUtf8();
        return;
    }
    if (c == '\r' || c == '\n') { // a continued line
        if (i < raw.size() && raw.at(i) != c && (raw.at(i) == '\r' || raw.at(i) == '\n'))
            ++i;
        return;
    }
    for (const char *letter = letters; *letter; letter += 2) {
        if (*letter == c) {
            out += letter[1];
            return;
        }
    }
}

/// The text of a value that marks its type.
QString unmarked(const QString &text)
{
    if (text.startsWith(QLatin1String("@@")))
        return text.mid(1);
    if (text == QLatin1String("@Invalid()"))
        return {};
    for (const QLatin1String type : {QLatin1String("@ByteArray("), QLatin1String("@String(")}) {
        if (text.startsWith(type) && text.endsWith(u')'))
            return text.mid(type.size(), text.size() - type.size() - 1);
    }
    return text;
}

} // namespace

bool isPlain(QByteArrayView bytes)
{
    return bytes.isEmpty() ||
           (bytes.front() != '@' && bytes.front() != ' ' && bytes.back() != ' ' &&
            std::all_of(bytes.begin(), bytes.end(), [](char c) {
                return c >= 0x20 && c < 0x7F && c != '"' && c != '\\' && c != ';' && c != ',' &&
                       c != '=';
            }));
}

bool isAscii(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80; });
}

QByteArray encodeKey(QStringView part)
{
    if (part.isEmpty())
        return "%";
    static constexpr char digits[] = "0123456789ABCDEF";
    QByteArray result;
    for (const QChar c : part) {
        const ushort u = c.unicode();
        if (u < 0x80 && (isalnum(u) || u == '_' || u == '-' || u == '.')) {
            result += char(u);
            continue;
        }
        result += '%';
        if (u > 0xFF) {
            result += 'U';
            result += digits[u >> 12];
            result += digits[(u >> 8) & 0xF];
        }
        result += digits[(u >> 4) & 0xF];
        result += digits[u & 0xF];
    }
    return result;
}

bool decodeKey(QByteArrayView bytes, QString &part)
{
    QString escaped;
    if (!decodeUtf8(bytes, escaped))
        return false;
    part.clear();
    if (escaped == u'%')
        return true;
    part.reserve(escaped.size());
    const QStringView rest(escaped);
    for (qsizetype i = 0; i < rest.size();) {
        const bool wide = rest.sliced(i).startsWith(QLatin1String("%U"));
        const QStringView digits = rest.mid(i + (wide ? 2 : 1), wide ? 4 : 2);
        const bool complete = rest.at(i) == u'%' && digits.size() == (wide ? 4 : 2) &&
                              std::all_of(digits.begin(), digits.end(),
                                          [](QChar c) { return isHexDigit(c.unicode()); });
        part += complete ? QChar(digits.toUShort(nullptr, 16)) : rest.at(i);
        i += complete ? digits.size() + (wide ? 2 : 1) : 1;
    }
    return true;
}

void encodeValue(const QString &text, QByteArray &out)
{
    const bool marked = text.startsWith(u'@');
    QByteArray bytes = text.toUtf8();
    if (isPlain(bytes)) {
        out += bytes;
        return;
    }
    if (marked)
        bytes.prepend('@');
    static constexpr char letters[] = "\aa\bb\ff\nn\rr\tt\vv\"\"\\\\";
    // QSettings drops a byte order mark that stands in front.
    static constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
    QByteArray body;
    body.reserve(bytes.size() + bytes.size() / 8);
    bool quoted = bytes.startsWith(' ') || bytes.endsWith(' ');
    bool afterNumber = false; // a digit behind a numeric escape would be read as part of it
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes.at(i);
        quoted = quoted || c == ';' || c == ',' || c == '=';
        const char *letter = letters;
        while (*letter && *letter != c)
            letter += 2;
        if (afterNumber && isHexDigit(uchar(c))) {
            body += "\\x" + QByteArray::number(uchar(c), 16);
        } else if (*letter) {
            body += '\\';
            body += letter[1];
            afterNumber = false;
        } else if (uchar(c) < 0x20) {
            body += c ? "\\x" + QByteArray::number(uchar(c), 16) : QByteArray("\\0");
            afterNumber = true;
        } else if (c == byteOrderMark[0] &&
                   QByteArrayView(bytes).sliced(i).startsWith(byteOrderMark)) {
            body += "\\xfeff";
            afterNumber = true;
            i += 2;
        } else {
            body += c;
            afterNumber = false;
        }
    }
    if (quoted)
        out += '"';
    out += body;
    if (quoted)
        out += '"';
}

bool decodeValue(QByteArrayView raw, QString &text)
{
    const auto isSpecial = [](char c) { return c == '\\' || c == '"'; };
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!raw.isEmpty() && isBlank(raw.front()))
        raw = raw.sliced(1);
    bool decoded = false;
    if (std::none_of(raw.begin(), raw.end(), isSpecial)) {
        while (!raw.isEmpty() && isBlank(raw.back()))
            raw.chop(1);
        decoded = decodeUtf8(raw, text);
    } else {
        QByteArray bytes;
        qsizetype solid = 0; // blanks outside of quotes are dropped at the end
        bool quoted = false;
        for (qsizetype i = 0; i < raw.size();) {
            const char c = raw.at(i++);
            if (c == '\\' && i < raw.size())
                decodeEscape(raw, i, bytes);
            else if (c == '"')
                quoted = !quoted;
            else
                bytes += c;
            if (quoted || c == '"' || !isBlank(c))
                solid = bytes.size();
        }
        bytes.truncate(solid);
        decoded = decodeUtf8(bytes, text);
    }
    if (decoded && text.startsWith(u'@'))
        text = unmarked(text);
    return decoded;
}

Scanner::Token Scanner::next()
{
    skipToContent();
    m_line = m_currentLine;
    if (m_pos >= m_content.size())
        return End;
    const qsizetype start = m_pos;
    return m_content.at(start) == '[' ? readSection() : readEntry();
}

void Scanner::step()
{
    const char c = m_content.at(m_pos++);
    if (c == '\n' || (c == '\r' && (m_pos >= m_content.size() || m_content.at(m_pos) != '\n')))
        ++m_currentLine;
}

/// What follows a backslash has no meaning of its own; a line end may be two characters.
void Scanner::skipEscaped()
{
    step();
    if (m_content.sliced(m_pos).startsWith("\r\n"))
        step();
}

void Scanner::skipLine()
{
    while (m_pos < m_content.size() && !isLineEnd(m_content.at(m_pos)))
        ++m_pos;
}

void Scanner::skipToContent()
{
    while (m_pos < m_content.size()) {
        const char c = m_content.at(m_pos);
        if (c == ';' || c == '#')
            skipLine();
        else if (isLineEnd(c) || c == ' ' || c == '\t')
            step();
        else
            break;
    }
}

Scanner::Token Scanner::malformed(const char *what)
{
    m_error = QLatin1String(what);
    return Malformed;
}

Scanner::Token Scanner::readSection()
{
    const qsizetype start = ++m_pos;
    skipLine();
    const QByteArrayView rest = m_content.sliced(start, m_pos - start).trimmed();
    const qsizetype end = rest.indexOf(']');
    if (end < 0)
        return malformed("the group name has no \"]\"");
    m_name = rest.first(end);
    return Section;
}

Scanner::Token Scanner::readEntry()
{
    const qsizetype start = m_pos;
    while (m_pos < m_content.size() && m_content.at(m_pos) != '=' &&
           !isLineEnd(m_content.at(m_pos)))
        ++m_pos;
    if (m_pos >= m_content.size() || m_content.at(m_pos) != '=')
        return malformed("the line has no \"=\"");
    m_name = m_content.sliced(start, m_pos - start).trimmed();
    const qsizetype valueStart = ++m_pos;
    bool quoted = false;
    for (; m_pos < m_content.size(); step()) {
        const char c = m_content.at(m_pos);
        if (c == '"')
            quoted = !quoted;
        else if (!quoted && (isLineEnd(c) || c == ';'))
            break;
        else if (c == '\\' && m_pos + 1 < m_content.size())
            skipEscaped();
    }
    m_value = m_content.sliced(valueStart, m_pos - valueStart);
    return quoted ? malformed("the quoted text that begins here has no end") : Entry;
}

} // namespace IniText

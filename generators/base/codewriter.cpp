#include "generators/base/codewriter.h"

#include "generators/base/generationclock.h"

#include <QCoreApplication>
#include <QIODevice>

#include <cstring>

namespace {

constexpr qsizetype pieceSize = 128 * 1024;

bool isHexDigit(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

} // namespace

CodeWriter::CodeWriter(QIODevice *device) : m_device(device), m_encoder(QStringEncoder::Utf8)
{
    if (m_device)
        m_buffer.reserve(pieceSize + pieceSize / 2);
}

CodeWriter::~CodeWriter()
{
    flush();
}

void CodeWriter::flush()
{
    if (!m_device || m_buffer.isEmpty())
        return;
    m_device->write(m_buffer);
    m_buffer.resize(0);
}

void CodeWriter::writeIfLarge()
{
    if (m_device && m_buffer.size() >= pieceSize)
        flush();
}

CodeWriter &CodeWriter::operator<<(QStringView text)
{
    const qsizetype used = m_buffer.size();
    m_buffer.resize(used + m_encoder.requiredSpace(text.size()));
    const char *end = m_encoder.appendToBuffer(m_buffer.data() + used, text);
    m_buffer.resize(end - m_buffer.constData());
    writeIfLarge();
    return *this;
}

CodeWriter &CodeWriter::operator<<(QLatin1String text)
{
    return *this << QStringView(QString(text));
}

CodeWriter &CodeWriter::operator<<(const char *text)
{
    m_buffer.append(text, static_cast<qsizetype>(std::strlen(text)));
    writeIfLarge();
    return *this;
}

CodeWriter &CodeWriter::operator<<(char character)
{
    m_buffer.append(character);
    return *this;
}

CodeWriter &CodeWriter::operator<<(quint64 number)
{
    m_buffer.append(QByteArray::number(number));
    return *this;
}

CodeWriter &CodeWriter::appendNumber(qlonglong number)
{
    m_buffer.append(QByteArray::number(number));
    return *this;
}

CodeWriter &CodeWriter::hex(quint64 number, int digits)
{
    m_buffer.append(QByteArray::number(number, 16).rightJustified(digits, '0'));
    return *this;
}

CodeWriter &CodeWriter::banner(const QString &title, const QString &projectName,
                               const QString &toolVersion, const QString &date)
{
    return *this << "/*\n"
                 << titleText(title, commentText(projectName), toolVersion) << " * "
                 << (date.isEmpty() ? GenerationClock::now().toString() : commentText(date))
                 << "\n */\n\n";
}

CodeWriter &CodeWriter::beginGuard(const QString &macro)
{
    return *this << "#ifndef " << macro << "\n#define " << macro << " 1\n\n";
}

CodeWriter &CodeWriter::endGuard(const QString &macro)
{
    return *this << "\n#endif /* " << macro << " */\n";
}

CodeWriter &CodeWriter::include(const QString &file)
{
    return *this << "#include <" << file << ">\n";
}

CodeWriter &CodeWriter::includeOwn(const QString &file)
{
    return *this << "#include \"" << file << "\"\n";
}

CodeWriter &CodeWriter::comment(const QString &text)
{
    return *this << "/* " << commentText(text) << " */\n";
}

CodeWriter &CodeWriter::defineUnlessDefined(const QString &name, const QString &value)
{
    *this << "#ifndef " << name << "\n#define " << name;
    if (!value.isEmpty())
        *this << ' ' << value;
    return *this << "\n#endif\n";
}

CodeWriter &CodeWriter::beginArray(const QString &head)
{
    m_hasPendingRow = false;
    return *this << head << " {\n";
}

CodeWriter &CodeWriter::arrayRow(const QString &row, const QString &note)
{
    writePendingRow(false);
    m_pendingRow = row;
    m_pendingNote = note;
    m_hasPendingRow = true;
    return *this;
}

CodeWriter &CodeWriter::endArray()
{
    writePendingRow(true);
    return *this << "};\n";
}

void CodeWriter::writePendingRow(bool isLast)
{
    if (!m_hasPendingRow)
        return;
    m_hasPendingRow = false;
    *this << m_pendingRow;
    if (!isLast)
        *this << ',';
    if (!m_pendingNote.isEmpty())
        *this << " /* " << commentText(m_pendingNote) << " */";
    *this << '\n';
}

QString CodeWriter::commentText(const QString &text)
{
    QString result;
    result.reserve(text.size() + 2);
    for (const QChar character : text) {
        // Bidirectional and other format characters can make code look like what it is not.
        const bool isInvisible = character.category() == QChar::Other_Control ||
                                 character.category() == QChar::Other_Format ||
                                 character.category() == QChar::Separator_Line ||
                                 character.category() == QChar::Separator_Paragraph;
        const QChar next = isInvisible ? QLatin1Char(' ') : character;
        const QChar last = result.isEmpty() ? QChar() : result.back();
        const bool formsMark = (last == QLatin1Char('*') && next == QLatin1Char('/')) ||
                               (last == QLatin1Char('/') && next == QLatin1Char('*')) ||
                               (last == QLatin1Char('?') && next == QLatin1Char('?'));
        if (formsMark)
            result += QLatin1Char(' ');
        result += next;
    }
    // What stands before and behind the text may complete a mark or a line splice as well.
    if (result.startsWith(QLatin1Char('/')))
        result.prepend(QLatin1Char(' '));
    if (result.endsWith(QLatin1Char('*')) || result.endsWith(QLatin1Char('/')))
        result += QLatin1Char(' ');
    if (result.trimmed().endsWith(QLatin1Char('\\')))
        result += QLatin1String(" .");
    return result;
}

QString CodeWriter::stringLiteral(const QByteArray &bytes)
{
    QByteArray result = "\"";
    bool afterEscape = false;
    char last = 0;
    for (const char character : bytes) {
        // A hexadecimal escape has no end of its own.
        if (afterEscape && isHexDigit(character))
            result += "\"\"";
        afterEscape = false;
        if (character == '"' || character == '\\') {
            result += '\\';
            result += character;
        } else if (character == '?' && last == '?') {
            result += "\\?";
        } else if (character >= 0x20 && character < 0x7F) {
            result += character;
        } else {
            result += "\\x" +
                      QByteArray::number(static_cast<quint8>(character), 16).rightJustified(2, '0');
            afterEscape = true;
        }
        last = character;
    }
    return QString::fromLatin1(result + '"');
}

QString CodeWriter::identifier(const QString &text)
{
    QString result;
    result.reserve(text.size() + 1);
    for (const QChar character : text) {
        const char16_t code = character.unicode();
        const bool isPlain = (code >= u'a' && code <= u'z') || (code >= u'A' && code <= u'Z') ||
                             (code >= u'0' && code <= u'9') || code == u'_';
        result += isPlain ? character : QLatin1Char('_');
    }
    if (result.isEmpty() || result.front().isDigit())
        result.prepend(QLatin1Char('_'));
    return result;
}

QString CodeWriter::titleText(const QString &format, const QString &projectName,
                              const QString &toolVersion)
{
    // One call for all places, so that a percent sign in a project's name stays one.
    return format.arg(projectName, QCoreApplication::applicationName(), toolVersion);
}

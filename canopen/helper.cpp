#include "canopen/helper.h"

#include "canopen/namevariables.h"
#include "canopen/safefile.h"

#include <QFile>
#include <QSaveFile>

#include <algorithm>

// A record separator: no keyboard types it, and neither trimming nor CSV readers touch it.
const QString Helper::csvDescLinebreak = QStringLiteral("\u001E");

namespace {

bool isPlainNumber(QStringView text)
{
    const bool hex = text.startsWith(u"0x", Qt::CaseInsensitive);
    const QStringView digits = hex ? text.mid(2) : text;
    const auto isDigit = [hex](QChar c) {
        const char16_t lower = c.unicode() | 0x20;
        return (c >= u'0' && c <= u'9') || (hex && lower >= u'a' && lower <= u'f');
    };
    return !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), isDigit);
}

/// Rewrites line ends piece by piece; a CR LF may be cut by the end of a piece.
class LineEndWriter
{
public:
    explicit LineEndWriter(QByteArray ending) : m_ending(std::move(ending)) {}

    [[nodiscard]] QByteArray rewrite(const QByteArray &piece)
    {
        QByteArray result;
        result.reserve(piece.size() + piece.size() / 16);
        const char *const end = piece.constData() + piece.size();
        for (const char *pos = piece.constData(); pos != end;) {
            if (m_afterCr && *pos == '\n') {
                m_afterCr = false;
                ++pos;
                continue;
            }
            const char *lineEnd =
                std::find_if(pos, end, [](char c) { return c == '\n' || c == '\r'; });
            result.append(pos, lineEnd - pos);
            m_afterCr = lineEnd != end && *lineEnd == '\r';
            if (lineEnd != end) {
                result.append(m_ending);
                ++lineEnd;
            }
            pos = lineEnd;
        }
        return result;
    }

private:
    QByteArray m_ending;
    bool m_afterCr = false;
};

} // namespace

QString Helper::substituteVariables(const QString &text, quint16 index, quint8 subindex,
                                    quint8 line)
{
    if (!text.contains(u'$')) {
        return text;
    }
    return NameVariables(index, subindex, line).substitute(text).value_or(text);
}

QString Helper::onOneLine(const QString &text)
{
    QString line = text;
    for (QChar &character : line) {
        if (character.isSpace())
            character = u' ';
    }
    return line;
}

QString Helper::addLowerCaseUtoNumberLists(const QString &text)
{
    QString result;
    result.reserve(text.size() + 16);
    qsizetype pos = 0;
    for (;;) {
        const qsizetype comma = text.indexOf(u',', pos);
        const QStringView entry =
            QStringView(text).mid(pos, comma < 0 ? text.size() - pos : comma - pos);
        const QStringView number = entry.trimmed();
        result.append(entry);
        if (isPlainNumber(number)) {
            const qsizetype blanksBehind =
                entry.data() + entry.size() - number.data() - number.size();
            result.insert(result.size() - blanksBehind, u'u');
        }
        if (comma < 0) {
            return result;
        }
        result.append(u',');
        pos = comma + 1;
    }
}

QString Helper::UTF8String2ArrayString(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    QString result;
    result.reserve(bytes.size() * 6);
    constexpr char16_t digits[] = u"0123456789abcdef";
    for (const char byte : bytes) {
        const auto number = static_cast<uchar>(byte);
        result.append(result.isEmpty() ? QStringView(u"0x") : QStringView(u", 0x"));
        result.append(QChar(digits[number >> 4])).append(QChar(digits[number & 0x0F]));
    }
    return result;
}

QByteArray Helper::UTF8String2ByteArray(const QString &text)
{
    return text.toUtf8();
}

bool Helper::modifyLineEnding(const QString &path, const QString &ending)
{
    constexpr qint64 pieceSize = 1 << 20;
    if (ending != u"\n" && ending != u"\r\n" && ending != u"\r") {
        return false;
    }
    QFile source(path);
    QString fault;
    if (!SafeFile::open(source, fault)) {
        return false;
    }
    // Takes over the permissions of the file and replaces it only in `commit`.
    QSaveFile target(path);
    if (!target.open(QIODevice::WriteOnly)) {
        return false;
    }
    LineEndWriter writer(ending.toLatin1());
    bool changed = false;
    while (!source.atEnd()) {
        const QByteArray piece = source.read(pieceSize);
        const QByteArray rewritten = writer.rewrite(piece);
        if (piece.isEmpty() || target.write(rewritten) != rewritten.size()) {
            return false;
        }
        changed = changed || rewritten != piece;
    }
    // A file that is right already keeps its time, so that no build sees a change.
    if (!changed) {
        return source.error() == QFileDevice::NoError;
    }
    source.close();
    return source.error() == QFileDevice::NoError && target.commit();
}

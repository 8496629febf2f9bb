#include "generators/define/usersection.h"

#include "canopen/numbertext.h"
#include "canopen/safefile.h"

#include <QByteArrayView>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringDecoder>

namespace {

/// Editors that save UTF-16 tell it by a byte order mark; the generated file is UTF-8.
QByteArray asUtf8(const QByteArray &header)
{
    const auto encoding = QStringConverter::encodingForData(header);
    if (!encoding || *encoding == QStringConverter::Utf8)
        return header;
    return QString(QStringDecoder(*encoding)(header)).toUtf8();
}

/// Walks over the lines of a text without copying them.
class LineReader
{
public:
    explicit LineReader(const QByteArray &text)
        : m_rest(text), m_lineEnd(text.contains('\n') ? '\n' : '\r')
    {
    }

    bool next(QByteArrayView &line)
    {
        if (m_rest.isEmpty())
            return false;
        const qsizetype end = m_rest.indexOf(m_lineEnd);
        line = end < 0 ? m_rest : m_rest.first(end);
        m_rest = end < 0 ? QByteArrayView() : m_rest.sliced(end + 1);
        if (m_lineEnd == '\n' && line.endsWith('\r'))
            line.chop(1);
        return true;
    }

private:
    QByteArrayView m_rest;
    char m_lineEnd;
};

/// The number in "#define GEN_GENERATION_COUNT<tab>17ul".
std::optional<quint64> countIn(QByteArrayView line)
{
    if (!line.contains("GEN_GENERATION_COUNT"))
        return {};
    QByteArray number = line.sliced(line.lastIndexOf('\t') + 1).toByteArray().trimmed();
    while (number.endsWith('u') || number.endsWith('U') || number.endsWith('l') ||
           number.endsWith('L'))
        number.chop(1);
    return NumberText::toUnsigned(QString::fromLatin1(number));
}

void append(QByteArray &lines, QByteArrayView line)
{
    lines.append(line.data(), line.size());
    lines.append('\n');
}

} // namespace

UserSection UserSection::parse(const QByteArray &header)
{
    enum class Place { Outside, BehindNotice, Inside, Done };

    UserSection section;
    std::optional<quint64> count;
    QByteArray behindNotice;
    bool hasStart = false;
    Place place = Place::Outside;
    const QByteArray text = asUtf8(header);
    LineReader reader(text);
    for (QByteArrayView line; reader.next(line);) {
        if (!count)
            count = countIn(line);
        if (line == QByteArrayView(startMarker)) {
            place = Place::Inside;
            hasStart = true;
        } else if (line == QByteArrayView(endMarker)) {
            // A start marker that someone has removed: what the notice announced is the section.
            if (place == Place::BehindNotice && !hasStart)
                section.lines += behindNotice;
            place = Place::Done;
        } else if (place == Place::Inside) {
            append(section.lines, line);
        } else if (place == Place::BehindNotice) {
            append(behindNotice, line);
        } else if (place == Place::Outside && line == QByteArrayView(notice)) {
            place = Place::BehindNotice;
        }
    }
    section.generationCount = count.value_or(0);
    // The generator writes an empty line where there is nothing.
    if (section.lines == "\n")
        section.lines.clear();
    return section;
}

std::optional<QByteArray> UserSection::read(const QString &path, QString &errorText)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QByteArray();
    constexpr qint64 mostBytes = qint64(256) * 1024 * 1024;
    QString fault;
    if (auto header = SafeFile::read(path, mostBytes, fault))
        return header;
    errorText =
        QCoreApplication::translate(
            "UserSection", "The file %1 can't be read, and its user section would be lost: %2.")
            .arg(QDir::toNativeSeparators(path), fault);
    return {};
}

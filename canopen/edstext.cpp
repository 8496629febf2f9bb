#include "canopen/edstext.h"

#include "canopen/safefile.h"

#include <QCoreApplication>
#include <QStringDecoder>

#include <cstring>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("EdsText", text);
}

/// The place of the next line end from `from`, or of the end.
qsizetype lineEnd(const QByteArray &content, qsizetype from, qsizetype end)
{
    const void *found =
        std::memchr(content.constData() + from, '\n', static_cast<std::size_t>(end - from));
    return found ? static_cast<const char *>(found) - content.constData() : end;
}

constexpr qsizetype mostLongLines = 100;

} // namespace

bool EdsText::fail(const QString &text)
{
    m_content.clear();
    m_sections.clear();
    m_error = text;
    return false;
}

bool EdsText::load(const QString &path)
{
    QString fault;
    const auto content = SafeFile::read(path, mostBytes, fault);
    return content ? setContent(*content) : fail(tr("The file can't be opened: %1.").arg(fault));
}

bool EdsText::setContent(const QByteArray &content)
{
    m_content = content;
    m_sections.clear();
    m_longLines.clear();
    m_strayLine = 0;
    m_error.clear();
    toUtf8();
    if (m_content.trimmed().isEmpty())
        return fail(tr("The file is empty."));
    if (m_content.startsWith("SQLite format 3"))
        return fail(tr("The file is a database, not an EDS or DCF."));
    if (m_content.contains('\0'))
        return fail(tr("The file is binary, not the text of an EDS or DCF."));
    m_isUtf8 = QByteArrayView(m_content).isValidUtf8();
    unifyLineEnds();
    return findSections();
}

void EdsText::toUtf8()
{
    if (const auto encoding = QStringConverter::encodingForData(m_content);
        encoding && *encoding != QStringConverter::Utf8) {
        QStringDecoder decoder(*encoding);
        const QString text = decoder(m_content);
        m_content = text.toUtf8();
    }
    if (m_content.startsWith("\xEF\xBB\xBF"))
        m_content.remove(0, 3);
}

void EdsText::unifyLineEnds()
{
    if (!m_content.contains('\r'))
        return;
    char *const data = m_content.data();
    const qsizetype size = m_content.size();
    qsizetype to = 0;
    for (qsizetype from = 0; from < size; ++from) {
        char character = data[from];
        if (character == '\r') {
            if (from + 1 < size && data[from + 1] == '\n')
                ++from;
            character = '\n';
        }
        data[to++] = character;
    }
    m_content.truncate(to);
}

bool EdsText::findSections()
{
    int line = 0;
    for (qsizetype from = 0; from < m_content.size();) {
        ++line;
        const qsizetype end = lineEnd(m_content, from, m_content.size());
        const qsizetype next = qMin(end + 1, m_content.size());
        if (end - from > longestLine) {
            if (m_longLines.size() < mostLongLines)
                m_longLines.append(line);
            from = next;
            continue;
        }
        const QByteArrayView text = QByteArrayView(m_content).sliced(from, end - from).trimmed();
        if (!text.isEmpty() && text.front() == '[') {
            if (m_sections.size() == mostSections)
                return fail(tr("The file has more than %1 sections, which no device description "
                               "has.")
                                .arg(mostSections));
            if (!m_sections.isEmpty())
                m_sections.last().end = from;
            const qsizetype close = text.indexOf(']');
            const QByteArrayView name = close < 0 ? text.sliced(1) : text.sliced(1, close - 1);
            m_sections.append({name.trimmed(), line, next, m_content.size()});
        } else if (m_sections.isEmpty() && m_strayLine == 0 && !text.isEmpty() &&
                   text.front() != ';') {
            m_strayLine = line;
        }
        from = next;
    }
    return true;
}

void EdsText::forEachEntry(const Section &section, const EntryFunction &entry,
                           const CommentFunction &description) const
{
    int line = section.line;
    for (qsizetype from = section.begin; from < section.end;) {
        ++line;
        const qsizetype end = lineEnd(m_content, from, section.end);
        const QByteArrayView raw = QByteArrayView(m_content).sliced(from, end - from);
        from = end + 1;
        if (raw.size() > longestLine)
            continue;
        const QByteArrayView text = raw.trimmed();
        if (text.isEmpty())
            continue;
        if (text.front() == ';') {
            // A description keeps the blanks at its ends, which may be those between two words.
            if (description && raw.startsWith(";;"))
                description(raw.sliced(2));
            continue;
        }
        const qsizetype equals = text.indexOf('=');
        if (equals < 0)
            entry({{}, text, line});
        else
            entry({text.first(equals).trimmed(), text.sliced(equals + 1).trimmed(), line});
    }
}

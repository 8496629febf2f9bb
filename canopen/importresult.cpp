#include "canopen/importresult.h"

#include <QCoreApplication>

#include <numeric>

void ImportResult::add(Kind kind, int line, const QString &text)
{
    ++m_counts[std::size_t(kind)];
    if (!isFull())
        m_notes.append({kind, line, text});
}

void ImportResult::addError(const QString &text)
{
    m_error = m_error.isEmpty() ? text : m_error + u'\n' + text;
}

QString ImportResult::located(int line, const QString &text) const
{
    return line > 0 ? QStringLiteral("%1:%2: %3").arg(m_file, QString::number(line), text)
                    : QStringLiteral("%1: %2").arg(m_file, text);
}

QStringList ImportResult::texts() const
{
    QStringList texts;
    for (const Note &note : m_notes)
        texts.append(located(note.line, note.text));
    const qsizetype all = std::accumulate(m_counts.begin(), m_counts.end(), qsizetype(0));
    if (const qsizetype more = all - m_notes.size(); more > 0)
        texts.append(located(
            0, QCoreApplication::translate("ImportResult", "%1 further messages.").arg(more)));
    return texts;
}

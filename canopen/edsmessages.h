#pragma once

#include <QString>
#include <QStringList>

/// What a reader tells about a file, as "file:line: text". A file of nothing but faults can't fill
/// the memory with messages: from some point on they are only counted.
class EdsMessages
{
public:
    static constexpr qsizetype most = 500;

    EdsMessages() = default;
    explicit EdsMessages(const QString &file) : m_file(file) {}

    /// Line 0: about the whole file.
    void add(int line, const QString &text)
    {
        if (m_texts.size() < most)
            m_texts.append(located(line, text));
        else
            ++m_more;
    }
    [[nodiscard]] bool isFull() const { return m_texts.size() >= most; }
    [[nodiscard]] QString located(int line, const QString &text) const
    {
        return line > 0 ? QStringLiteral("%1:%2: %3").arg(m_file, QString::number(line), text)
                        : QStringLiteral("%1: %2").arg(m_file, text);
    }
    [[nodiscard]] const QStringList &texts() const { return m_texts; }
    /// How many were only counted.
    [[nodiscard]] int more() const { return m_more; }

private:
    QString m_file;
    QStringList m_texts;
    int m_more = 0;
};

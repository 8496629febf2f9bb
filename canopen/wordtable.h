#pragma once

#include <QStringView>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Looks up words as files from many makers spell them: case, blanks, underscores, hyphens,
/// slashes and ampersands don't count, so that "Read/Write" and "READ_WRITE" are one word.
/// Built once, then read only and free for every thread; a look-up allocates nothing.
template <typename T>
class WordTable
{
public:
    struct Entry
    {
        std::string word;
        T value;
    };

    /// Of two entries that fold to the same word the first counts.
    explicit WordTable(std::vector<Entry> entries) : m_entries(std::move(entries))
    {
        for (Entry &entry : m_entries) {
            Buffer buffer;
            entry.word = fold(QString::fromStdString(entry.word), buffer).value_or("");
        }
        std::stable_sort(m_entries.begin(), m_entries.end(),
                         [](const Entry &a, const Entry &b) { return a.word < b.word; });
    }

    [[nodiscard]] std::optional<T> find(QStringView text) const
    {
        Buffer buffer;
        const auto word = fold(text, buffer);
        if (!word || word->empty())
            return std::nullopt;
        const auto it = std::lower_bound(
            m_entries.begin(), m_entries.end(), *word,
            [](const Entry &entry, std::string_view wanted) { return entry.word < wanted; });
        if (it == m_entries.end() || it->word != *word)
            return std::nullopt;
        return it->value;
    }

private:
    using Buffer = std::array<char, 48>;

    /// Nothing if the text holds a character that no word has, or more than the longest word.
    static std::optional<std::string_view> fold(QStringView text, Buffer &buffer)
    {
        std::size_t length = 0;
        for (const QChar c : text) {
            const char16_t u = c.unicode();
            if (c.isSpace() || u == u'_' || u == u'-' || u == u'/' || u == u'&')
                continue;
            const bool upper = u >= u'A' && u <= u'Z';
            const bool known = upper || (u >= u'a' && u <= u'z') || (u >= u'0' && u <= u'9');
            if (!known || length == buffer.size())
                return std::nullopt;
            buffer[length++] = static_cast<char>(upper ? u - u'A' + u'a' : u);
        }
        return std::string_view(buffer.data(), length);
    }

    std::vector<Entry> m_entries;
};

/// A number of a data file: "7" or "0x0007", with blanks around it. A leading zero doesn't mean
/// octal. Nothing for signs, other characters and values beyond 32 bits.
[[nodiscard]] inline std::optional<quint32> readFileNumber(QStringView text)
{
    text = text.trimmed();
    const bool hex = text.startsWith(u"0x", Qt::CaseInsensitive);
    const QStringView digits = hex ? text.mid(2) : text;
    if (digits.isEmpty() || digits.front() == u'-' || digits.front() == u'+')
        return std::nullopt;
    bool ok = false;
    const quint32 value = digits.toUInt(&ok, hex ? 16 : 10);
    return ok ? std::optional<quint32>(value) : std::nullopt;
}

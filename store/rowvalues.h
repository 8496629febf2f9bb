#pragma once

#include "store/metadatablob.h"
#include "store/records.h"
#include "store/resultrow.h"
#include "store/sqltext.h"
#include "store/stringtable.h"

#include <QStringList>

#include <array>
#include <cstring>
#include <initializer_list>

/// Readers and writers that `RecordColumns::visit` shows the values of a record to.
namespace RecordColumns {

/// Makes texts of bytes. Short ones come again and again in a dictionary ("rw", "0"), so they are
/// made once and shared as long as none of the same place takes over.
class TextPool
{
public:
    QString text(QByteArrayView utf8)
    {
        if (utf8.isEmpty())
            return {};
        if (utf8.size() > longest)
            return ResultRow::textOf(utf8);
        Entry &entry = m_entries[place(utf8)];
        if (utf8 != QByteArrayView(entry.bytes.data(), entry.size)) {
            std::memcpy(entry.bytes.data(), utf8.data(), size_t(utf8.size()));
            entry.size = utf8.size();
            entry.text = ResultRow::textOf(utf8);
        }
        return entry.text;
    }

private:
    static constexpr qsizetype longest = 32;
    static constexpr size_t placeBits = 8;

    struct Entry
    {
        std::array<char, longest> bytes;
        qsizetype size = 0;
        QString text;
    };

    static size_t place(QByteArrayView utf8)
    {
        constexpr quint64 spread = 0x9E3779B97F4A7C15;
        quint64 front = 0;
        quint64 back = 0;
        if (utf8.size() >= qsizetype(sizeof front)) {
            std::memcpy(&front, utf8.data(), sizeof front);
            std::memcpy(&back, utf8.data() + utf8.size() - sizeof back, sizeof back);
        } else {
            for (const char byte : utf8)
                front = front << 8 | quint8(byte);
        }
        return size_t((front ^ back * 31 ^ quint64(utf8.size())) * spread >> (64 - placeBits));
    }

    std::array<Entry, size_t(1) << placeBits> m_entries;
};

/// Takes the values of a row one by one.
class Reader
{
public:
    /// Without a pool for a single row.
    Reader(const ResultRow &row, const StringTable::Texts &strings, TextPool *pool = nullptr)
        : m_row(row), m_strings(strings), m_pool(pool)
    {
    }

    /// Of the key columns that are no members, in their order.
    [[nodiscard]] quint32 key(size_t number = 0) const { return m_keys[number]; }
    /// The next column, behind those of the record.
    [[nodiscard]] qint64 rest() { return m_row.integer(m_column++); }

    void nextKey() { m_keys[m_keyCount++] = quint32(m_row.integer(m_column++)); }
    template <typename Number>
    void number(Number &field)
    {
        field = Number(m_row.integer(m_column++));
    }
    void mapping(PDOMapping &field)
    {
        field = PDOMapping::fromUInt(quint8(m_row.integer(m_column++)));
    }
    void text(QString &field)
    {
        const QByteArrayView utf8 = m_row.bytes(m_column++);
        field = m_pool == nullptr ? ResultRow::textOf(utf8) : m_pool->text(utf8);
    }
    void string(QString &field) { field = m_strings.text(m_row.integer(m_column++)); }
    void metaData(Records::MetaData &field)
    {
        if (m_row.isBlob(m_column))
            field = MetaDataBlob::fromValue(m_row.value(m_column));
        ++m_column;
    }

private:
    const ResultRow &m_row;
    const StringTable::Texts &m_strings;
    TextPool *m_pool;
    std::array<quint32, 2> m_keys{};
    size_t m_keyCount = 0;
    int m_column = 0;
};

/// Hands the values of a row on, into the list of a statement or its places. Metadata are a matter
/// of their own.
template <typename Values>
class Writer
{
public:
    Writer(Values &values, StringTable &strings) : m_strings(strings), m_values(values) {}

    /// The texts get their ids in this order, whatever that of the columns is.
    void intern(std::initializer_list<const QString *> texts)
    {
        size_t i = 0;
        for (const QString *text : texts)
            m_ids[i++] = {text, m_strings.intern(*text)};
    }
    /// Of the key columns that are no members.
    void keys(std::array<quint32, 2> values) { m_keys = values; }

    void nextKey() { m_values.number(m_keys[m_keyCount++]); }
    template <typename Number>
    void number(Number value)
    {
        m_values.number(value);
    }
    void mapping(const PDOMapping &value) { m_values.number(value.toUInt()); }
    void text(const QString &value) { m_values.text(value); }
    void string(const QString &value)
    {
        for (const auto &[text, id] : m_ids) {
            if (text == &value)
                return m_values.id(id);
        }
        Q_UNREACHABLE();
    }
    void metaData(const Records::MetaData &) { m_values.number(0); }

private:
    StringTable &m_strings;
    Values &m_values;
    std::array<std::pair<const QString *, qint64>, 3> m_ids{};
    std::array<quint32, 2> m_keys{};
    size_t m_keyCount = 0;
};

/// The values as literals, for statements that name each column.
class LiteralList
{
public:
    void number(quint64 value) { m_literals.append(QString::number(value)); }
    void id(qint64 value) { m_literals.append(QString::number(value)); }
    void text(const QString &value) { m_literals.append(SqlText::quoted(value)); }
    [[nodiscard]] const QStringList &literals() const { return m_literals; }

private:
    QStringList m_literals;
};

} // namespace RecordColumns

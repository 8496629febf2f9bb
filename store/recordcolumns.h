#pragma once

#include "store/metadatablob.h"
#include "store/objectdatabase.h"
#include "store/resultrow.h"
#include "store/sqltext.h"
#include "store/stringtable.h"

#include <array>
#include <concepts>
#include <cstring>

/// How the records of the object dictionary lie in their tables. Reading and writing go by the same
/// list of columns, which has the schema's order without the key columns at the front.
namespace RecordColumns {

template <typename Record, typename Kind>
concept RecordOf = std::same_as<std::remove_const_t<Record>, Kind>;

template <typename Values, RecordOf<ObjectDataBase::INDEX_DATA_T> Record>
void visit(Values &values, Record &data)
{
    values.string(data.name);
    values.number(data.datatype);
    values.number(data.objecttype);
    values.string(data.description);
    values.number(data.category);
    values.string(data.deviceclass);
    values.number(data.fwsupported);
    values.metaData(data.metadata);
}

template <typename Values, RecordOf<ObjectDataBase::SUBINDEX_DATA_T> Record>
void visit(Values &values, Record &data)
{
    values.string(data.name);
    values.number(data.datatype);
    values.text(data.accesstype);
    values.text(data.defaultvalue);
    values.text(data.currentvalue);
    values.mapping(data.pdomapping);
    values.text(data.lowlimit);
    values.text(data.uplimit);
    values.number(data.size);
    values.number(data.defaultineds);
    values.number(data.limitineds);
    values.number(data.refuseread);
    values.number(data.refusewrite);
    values.text(data.allowedaccesstypes);
    values.number(data.implementation);
    values.text(data.varname);
    values.string(data.description);
    values.number(data.category);
    values.number(data.writedefaulttoeds);
    values.number(data.cyclicread);
    values.number(data.dcfcomponent);
    values.number(data.changedbyuser);
    values.number(data.wizardsource);
    values.string(data.denotation);
    values.number(data.sharedlines);
    values.number(data.managedbytsk);
    values.number(data.signalid);
    values.number(data.nvstorage);
    values.metaData(data.metadata);
}

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

    [[nodiscard]] quint32 key() { return quint32(m_row.integer(m_column++)); }

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
    void metaData(ObjectDataBase::MetaData &field)
    {
        if (m_row.isBlob(m_column))
            field = MetaDataBlob::fromValue(m_row.value(m_column));
        ++m_column;
    }

private:
    const ResultRow &m_row;
    const StringTable::Texts &m_strings;
    TextPool *m_pool;
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
    template <size_t count>
    void intern(const std::array<const QString *, count> &texts)
    {
        static_assert(count == std::tuple_size_v<decltype(m_ids)>);
        for (size_t i = 0; i < count; ++i)
            m_ids[i] = {texts[i], m_strings.intern(*texts[i])};
    }
    void key(quint64 value) { m_values.number(value); }

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
    void metaData(const ObjectDataBase::MetaData &) { m_values.number(0); }

private:
    StringTable &m_strings;
    Values &m_values;
    std::array<std::pair<const QString *, qint64>, 3> m_ids{};
};

} // namespace RecordColumns

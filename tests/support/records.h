#pragma once

#include "store/recordcolumns.h"

#include <QVariant>

/// Records with a value of its own in every column, so that none can be lost or take another's.
namespace TestRecords {

/// Texts are `text`, or differ from each other where it is null. Keys are left to the caller.
template <typename Record>
Record filled(const QString &text = {})
{
    Record record;
    int count = 0;
    RecordColumns::forEachColumn<Record>([&]<typename C>(const C &) {
        ++count;
        if constexpr (!std::is_same_v<C, RecordColumns::KeyColumn>) {
            auto &field = record.*C::member;
            using Value = std::remove_cvref_t<decltype(field)>;
            if (field != Record().*C::member)
                qFatal("two columns hold one member of a record");
            const QString own = text.isNull() ? QStringLiteral("it's %1").arg(count) : text;
            if constexpr (std::is_same_v<Value, QString>)
                field = own;
            else if constexpr (std::is_same_v<Value, bool>)
                field = !field;
            else if constexpr (std::is_same_v<Value, PDOMapping>)
                field = PDOMapping::TPDO;
            else if constexpr (std::is_same_v<Value, Records::MetaData>)
                field = {{own, own}, {QStringLiteral("a/b"), own}, {QString(), own}};
            else if constexpr (C::role != RecordColumns::Role::Key)
                field = Value(~Value(0) - Value(count));
        }
    });
    return record;
}

/// "column = value" of all columns.
template <typename Record>
QStringList valuesOf(const Record &record)
{
    QStringList values;
    RecordColumns::forEachColumn<Record>([&]<typename C>(const C &column) {
        if constexpr (!std::is_same_v<C, RecordColumns::KeyColumn>) {
            const auto &field = record.*C::member;
            using Value = std::remove_cvref_t<decltype(field)>;
            QString text;
            if constexpr (std::is_same_v<Value, PDOMapping>)
                text = QString::number(field.toUInt());
            else if constexpr (std::is_same_v<Value, Records::MetaData>)
                text = field.keys().join(u',') + u':' + field.values().join(u',');
            else
                text = QVariant(field).toString();
            values.append(RecordColumns::columnName(column.definition) + QStringLiteral(" = ") +
                          text);
        }
    });
    return values;
}

} // namespace TestRecords

#pragma once

#include "compare/projectdifference.h"
#include "store/objectdatabase.h"

#include <QSet>

#include <span>

/// How comparison and merge reach what two projects hold beside objects and messages.
namespace SettingsTables {

/// One table of keys and values.
struct KeyTable
{
    SettingDifference::Table table;
    QStringList (*keys)(ObjectDataBase &);
    QString (*value)(ObjectDataBase &, const QString &);
    bool (*write)(ObjectDataBase &, const QString &, const QString &);
};

[[nodiscard]] std::span<const KeyTable> keyTables();
/// Whether a key exists only because its line does.
[[nodiscard]] bool belongsToLine(const KeyTable &table, const QString &key,
                                 const QSet<QString> &keys, quint8 line);

/// What a line says of a UDS service (ISO 14229-1).
struct UdsColumn
{
    const char *name;
    QString (*value)(ObjectDataBase &, quint8, UDS::SID);
    void (*write)(ObjectDataBase &, quint8, UDS::SID, const QString &);
};

[[nodiscard]] std::span<const UdsColumn> udsColumns();

[[nodiscard]] ObjectDataBase::NODE_DATA_T nodeOf(ObjectDataBase &store, quint8 line);
/// The lines of a project in ascending order, without the scratch lines, which are never saved.
[[nodiscard]] QList<quint8> lines(ObjectDataBase &store);

} // namespace SettingsTables

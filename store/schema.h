#pragma once

#include <QString>
#include <QStringList>

#include <span>

/// The tables of a project file. The column lists are the exact text of the `create table`
/// statements, which is part of the file format; names and types of columns are read from it.
namespace Schema {

enum class Scope {
    Project, ///< once per file
    Line     ///< once per line, with the line number behind the name
};

struct Table
{
    const char *name;
    Scope scope;
    const char *definition; ///< what stands between the parentheses
    const char *stringIds;  ///< comma list of the columns that refer to `Strings`
};

struct Column
{
    QString name;
    QString type; ///< "integer", "text", "blob" or empty
    bool stringId = false;
};

/// All tables, in the order in which a new file gets them.
[[nodiscard]] std::span<const Table> tables();
/// By name without line number; the name must be one of the list.
[[nodiscard]] const Table &table(const QString &name);
[[nodiscard]] QList<Column> columns(const Table &table);
[[nodiscard]] QStringList columnNames(const Table &table);
/// All columns joined by commas, for inserts by name: older files grew their columns in other
/// orders, and files of later versions may have more of them.
[[nodiscard]] QString columnList(const Table &table);
[[nodiscard]] QString createStatement(const Table &table, const QString &suffix = QString(),
                                      bool ifNotExists = false);

/// Columns that a table has grown since its first form.
struct Addition
{
    const char *table;
    const char *columns; ///< comma list; types are those of the table's definition
};

} // namespace Schema

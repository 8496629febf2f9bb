#pragma once

#include "store/initext.h"
#include "store/objectdatabase.h"
#include "store/schema.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <functional>

/// The shape of a project's text form: which tables have one, how the rows of a table are named,
/// and the reading of such a text into rows. Knows no database.
///
/// A group for each table. Settings have a key for each item. All other tables have a subgroup for
/// each row, named by the row's key columns, with a key for each column in it and, where the table
/// has them, metadata texts below "metadata".
namespace ProjectText {

/// Lines above are scratch lines, which have no text form.
constexpr quint8 highestLine = 253;
constexpr int maximumKeys = 3;
constexpr int mostUnhandledTold = 20; ///< a text can be made of nothing else

struct RowKey
{
    const char *column = nullptr;
    int hexDigits = 0; ///< 0 means decimal
    quint64 maximum = 0;
};

struct Layout
{
    const char *table;
    const char *order; ///< rows of equal keys keep the order in which they were made
    std::array<RowKey, maximumKeys> keys;

    [[nodiscard]] int keyCount() const
    {
        return int(
            std::count_if(keys.begin(), keys.end(), [](const RowKey &k) { return k.column; }));
    }
};

/// Signals are written in the order in which their message shows them.
inline constexpr Layout layouts[] = {
    {"Nodes", "nodeId", {{{"nodeId", 0, highestLine}}}},
    {"Objects", "objectindex", {{{"objectindex", 4, 0xFFFF}}}},
    {"SubObjects", "objectindex,subindex", {{{"objectindex", 4, 0xFFFF}, {"subindex", 2, 0xFF}}}},
    {"PGNs", "number,direction,rowid", {{{"number", 0, 0xFFFFFFFF}, {"direction", 0, 0xFF}}}},
    {"SPNs",
     "pgnnumber,pos,rowid",
     {{{"pgnnumber", 0, 0xFFFFFFFF}, {"spnnumber", 0, 0xFFFFFFFF}, {"direction", 0, 0xFF}}}},
    {"UDSSettings", "sid", {{{"sid", 0, 0xFF}}}},
};

inline constexpr const char *settingsTables[] = {"DescriptionSettings", "GeneralSettings",
                                                 "J1939Settings", "MiscSettings"};

/// Tables that are known and have no text form, without line numbers.
inline constexpr const char *leftOutTables[] = {
    "CANIDs",  "Connections", "DataElements", "EnergyBusSettings", "Groups",    "SignalGroups",
    "Signals", "Strings",     "VirtualNodes", "LockedMappings",    "LockedPDOs"};

template <typename List>
[[nodiscard]] bool contains(const List &list, const QString &name)
{
    return std::any_of(std::begin(list), std::end(list),
                       [&](const char *entry) { return name == QLatin1String(entry); });
}

enum class Kind { Integer, Text, StringId, MetaData };

struct Column
{
    QString name;
    QByteArray key; ///< lower case
    Kind kind = Kind::Text;
    QString defaultText; ///< for texts that lack the column
};

[[nodiscard]] QList<Column> columnsOf(const Layout &layout);

/// A number as a person may write it: decimal or "0x" hexadecimal, never octal.
[[nodiscard]] qint64 parseInteger(QStringView text, bool &ok);

/// Name of a row's subgroup, for a row that has an own name if `repetition` is 0.
[[nodiscard]] QByteArray rowPath(const Layout &layout, const std::array<quint64, maximumKeys> &keys,
                                 int repetition = 0);

/// What a group's name says.
struct Group
{
    QString table;                  ///< with the line number
    const Layout *layout = nullptr; ///< null for settings
    quint8 line = 0;                ///< of the tables of a line
    [[nodiscard]] bool isNodes() const { return table == QLatin1String("Nodes"); }
    [[nodiscard]] bool isLineTable() const { return layout && !isNodes(); }
};

/// False for a name that no rule takes.
[[nodiscard]] bool parseGroup(const QString &name, Group &group);

struct Row
{
    std::array<quint64, maximumKeys> keys{};
    QStringList values; ///< by column; null where the text has none
    ObjectDataBase::MetaData metadata;
    int line = 0; ///< in the file

    [[nodiscard]] QString value(const QList<Column> &columns, int i) const
    {
        return values.at(i).isNull() ? columns.at(i).defaultText : values.at(i);
    }
};

/// What a text holds beside its rows.
struct Summary
{
    QSet<quint8> lines;
    QSet<QString> groups;
    bool hasFileHash = false; ///< written by a save of this tool, so nothing may be missing
};

/// Walks a project text and hands over what it finds, in the order of the text. Groups that no
/// rule takes are logged and skipped, columns too; anything that can't be understood ends the
/// walk with an error that names the line.
class Reader
{
public:
    struct Visitor
    {
        std::function<void(const Group &, const QList<Column> &)> group;
        std::function<void(const Group &, const QString &item, const QString &value)> setting;
        std::function<void(const Group &, const QList<Column> &, const Row &)> row;
    };

    explicit Reader(QByteArrayView content) : m_content(content) {}

    bool read(const Visitor &visitor);
    [[nodiscard]] QString error() const { return m_error; }
    [[nodiscard]] const Summary &summary() const { return m_summary; }

private:
    bool fail(int line, const QString &what)
    {
        m_error = QStringLiteral("line %1: %2").arg(line).arg(what);
        return false;
    }
    bool beginGroup(const IniText::Scanner &scanner);
    bool readSetting(const IniText::Scanner &scanner);
    bool readRowEntry(const IniText::Scanner &scanner);
    bool beginRow(QByteArrayView path, int line);
    bool finishRow();
    bool setColumn(QByteArrayView key, const IniText::Scanner &scanner);
    bool setMetaData(QByteArrayView key, const IniText::Scanner &scanner);
    void logUnhandled(QByteArrayView key);
    [[nodiscard]] qsizetype columnOf(QByteArrayView key);

    QByteArrayView m_content;
    const Visitor *m_visitor = nullptr;
    Summary m_summary;
    QString m_error;
    Group m_group;
    bool m_known = false; ///< m_group has a rule
    QList<Column> m_columns;
    qsizetype m_expected = 0; ///< column that comes next in a text of our own
    int m_unhandledGroups = 0;
    QSet<QString> m_items;
    QSet<QByteArrayView> m_paths;
    QByteArrayView m_path;
    bool m_inRow = false;
    quint64 m_seen = 0; ///< columns that the row has had, by bit
    Row m_row;
};

} // namespace ProjectText

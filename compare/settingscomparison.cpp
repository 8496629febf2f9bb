#include "compare/settingscomparison.h"

#include "compare/recordproperties.h"
#include "compare/settingstables.h"

#include <algorithm>

using namespace SettingsTables;

namespace {

using Table = SettingDifference::Table;

/// What the tool notes in a file by itself: who made and saved it, and its hash.
const QSet<QString> &ownKeys()
{
    static const QSet<QString> keys{
        QStringLiteral("CreateToolName"),      QStringLiteral("CreateToolVersion"),
        QStringLiteral("DatabaseVersion"),     QStringLiteral("FileHash"),
        QStringLiteral("PreviousToolVersion"), QStringLiteral("SaveToolType"),
        QStringLiteral("SaveToolVersion"),     QStringLiteral("TamperLog")};
    return keys;
}

QStringList sortedUnion(const QStringList &current, const QStringList &other)
{
    QStringList keys = current + other;
    std::sort(keys.begin(), keys.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

void compareKeys(const KeyTable &table, ObjectDataBase &current, ObjectDataBase &other,
                 const QList<quint8> &passedLines, QList<SettingDifference> &differences)
{
    const QStringList keys = sortedUnion(table.keys(current), table.keys(other));
    const QSet<QString> known(keys.begin(), keys.end());
    for (const QString &key : keys) {
        const QString here = table.value(current, key);
        const QString there = table.value(other, key);
        if (here == there || (table.table == Table::Misc && ownKeys().contains(key)))
            continue;
        const bool isOfLine = std::any_of(passedLines.begin(), passedLines.end(), [&](quint8 line) {
            return belongsToLine(table, key, known, line);
        });
        if (!isOfLine)
            differences.append({table.table, 0, 0, key, here, there});
    }
}

void compareNodes(ObjectDataBase &current, ObjectDataBase &other, quint8 line,
                  QList<SettingDifference> &differences)
{
    const ObjectDataBase::NODE_DATA_T here = nodeOf(current, line);
    const ObjectDataBase::NODE_DATA_T there = nodeOf(other, line);
    for (const PropertyRow &row : RecordProperties::rows(&here, &there, false)) {
        if (row.differs)
            differences.append({Table::Node, line, 0, row.property, row.current, row.other});
    }
}

void compareUds(ObjectDataBase &current, ObjectDataBase &other, quint8 line,
                QList<SettingDifference> &differences)
{
    QMap<UDS::SID, bool> services = current.getUDSServices(line);
    services.insert(other.getUDSServices(line));
    for (auto sid = services.keyBegin(); sid != services.keyEnd(); ++sid) {
        for (const UdsColumn &column : udsColumns()) {
            const QString here = column.value(current, line, *sid);
            const QString there = column.value(other, line, *sid);
            if (here != there) {
                differences.append({Table::Uds, line, quint8(*sid),
                                    QString::fromLatin1(column.name), here, there});
            }
        }
    }
}

} // namespace

QList<SettingDifference> SettingsComparison::compare(ObjectDataBase &current, ObjectDataBase &other)
{
    const QList<quint8> here = lines(current);
    const QList<quint8> there = lines(other);
    QList<quint8> common;
    QList<quint8> oneSided;
    std::set_intersection(here.begin(), here.end(), there.begin(), there.end(),
                          std::back_inserter(common));
    std::set_symmetric_difference(here.begin(), here.end(), there.begin(), there.end(),
                                  std::back_inserter(oneSided));

    const QList<quint8> passed =
        oneSided + QList<quint8>{ObjectDataBase::comparisonLine, ObjectDataBase::stagingLine};

    QList<SettingDifference> differences;
    for (const KeyTable &table : keyTables())
        compareKeys(table, current, other, passed, differences);
    const auto presence = [](const QList<quint8> &list, quint8 line) {
        return list.contains(line) ? QStringLiteral("exists") : QString();
    };
    for (const quint8 line : std::as_const(oneSided)) {
        differences.append(
            {Table::Line, line, 0, QString(), presence(here, line), presence(there, line)});
    }
    for (const quint8 line : std::as_const(common)) {
        compareNodes(current, other, line, differences);
        compareUds(current, other, line, differences);
    }
    return differences;
}

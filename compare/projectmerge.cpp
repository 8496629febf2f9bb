#include "compare/projectmerge.h"

#include "compare/recordproperties.h"
#include "compare/settingstables.h"

#include <QMap>

namespace ProjectMerge {

using namespace SettingsTables;

namespace {

using SubIndex = ObjectDataBase::SUBINDEX_DATA_T;
using Table = SettingDifference::Table;

void keepIgnored(SubIndex &data, const SubIndex &here, const IgnoredProperties &ignored)
{
    if (ignored.name)
        data.name = here.name;
    if (ignored.defaultValue)
        data.defaultvalue = here.defaultvalue;
    if (ignored.varName)
        data.varname = here.varname;
}

QMap<quint8, SubIndex> subIndicesOf(ObjectDataBase &store, quint8 line, quint16 index)
{
    QMap<quint8, SubIndex> result;
    for (const quint8 subindex : store.getSubIndices(line, index))
        store.getSubIndexData(line, index, subindex, result[subindex]);
    return result;
}

bool importObject(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item,
                  const IgnoredProperties &ignored)
{
    const auto index = quint16(item.number);
    if (!other.indexExists(item.line, index))
        return false;
    const bool existed = current.indexExists(item.line, index);
    const QString name = current.getIndexName(item.line, index);
    const QMap<quint8, SubIndex> formerly = subIndicesOf(current, item.line, index);
    if (!current.copyIndex(item.line, index, item.line, index, &other))
        return false;
    if (existed && ignored.name)
        current.setIndexName(item.line, index, name);
    if (!ignored.name && !ignored.defaultValue && !ignored.varName)
        return true;
    bool done = true;
    for (auto former = formerly.cbegin(); former != formerly.cend(); ++former) {
        SubIndex data;
        if (!current.subIndexExists(item.line, index, former.key()) ||
            !current.getSubIndexData(item.line, index, former.key(), data))
            continue;
        keepIgnored(data, *former, ignored);
        done &= current.addSubIndex(item.line, index, former.key(), data);
    }
    return done;
}

bool importSubIndex(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item,
                    const IgnoredProperties &ignored)
{
    const auto index = quint16(item.number);
    const auto subindex = quint8(item.part);
    SubIndex data;
    if (!other.subIndexExists(item.line, index, subindex) ||
        !other.getSubIndexData(item.line, index, subindex, data))
        return false;
    if (!current.indexExists(item.line, index)) {
        ObjectDataBase::INDEX_DATA_T object;
        if (!other.getIndexData(item.line, index, object) ||
            !current.addIndex(item.line, index, object))
            return false;
    }
    SubIndex here;
    if (current.subIndexExists(item.line, index, subindex) &&
        current.getSubIndexData(item.line, index, subindex, here))
        keepIgnored(data, here, ignored);
    return current.addSubIndex(item.line, index, subindex, data);
}

bool importSpn(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item)
{
    ObjectDataBase::SPN spn;
    if (!other.getSPN(item.line, item.number, item.direction, item.part, spn))
        return false;
    if (!current.pgnExists(item.line, item.number, item.direction)) {
        ObjectDataBase::PGN pgn;
        if (!other.getPGN(item.line, item.number, item.direction, pgn) ||
            !current.addPGN(item.line, item.number, pgn))
            return false;
    }
    if (!current.addSPN(item.line, item.number, item.direction, item.part, spn))
        return false;
    current.repairMappingCounts(item.line);
    return true;
}

void correctMappingCount(ObjectDataBase &store, const DiffItem &item)
{
    ObjectDataBase::CANID message;
    if (!store.getCANID(item.line, item.number, item.direction, message))
        return;
    message.mappingCount =
        quint16(store.getDataElementList(item.line, item.number, item.direction).size());
    store.addCANID(item.line, item.number, message);
}

bool importElement(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item)
{
    ObjectDataBase::DataElement element;
    if (!other.getDataElement(item.line, item.number, item.direction, item.part, element))
        return false;
    if (!current.canIdExists(item.line, item.number, item.direction)) {
        ObjectDataBase::CANID message;
        if (!other.getCANID(item.line, item.number, item.direction, message) ||
            !current.addCANID(item.line, item.number, message))
            return false;
    }
    // Place and size of an element change only by making it anew.
    current.deleteDataElement(item.line, item.number, item.part, item.direction);
    if (!current.addDataElement(item.line, item.number, item.direction, item.part, element))
        return false;
    correctMappingCount(current, item);
    return true;
}

// --- settings -----------------------------------------------------------------------------------

bool takeOverNode(ObjectDataBase &current, ObjectDataBase &other,
                  const SettingDifference &difference)
{
    const ObjectDataBase::NODE_DATA_T there = nodeOf(other, difference.line);
    for (const auto &property : RecordProperties::properties<ObjectDataBase::NODE_DATA_T>()) {
        if (difference.key != QLatin1String(property.name))
            continue;
        current.setNodeSqlValue(QString::number(difference.line), difference.key,
                                property.text(there));
        return true;
    }
    return false;
}

bool addLine(ObjectDataBase &current, ObjectDataBase &other, quint8 line)
{
    if (!current.addNode(line, nodeOf(other, line)))
        return false;
    for (const KeyTable &table : keyTables()) {
        const QStringList keys = table.keys(other);
        const QSet<QString> known(keys.begin(), keys.end());
        for (const QString &key : keys) {
            if (belongsToLine(table, key, known, line))
                table.write(current, key, table.value(other, key));
        }
    }
    return ObjectDataBase::copyLine(current, other, line, line);
}

bool takeOverLine(ObjectDataBase &current, ObjectDataBase &other, quint8 line)
{
    if (other.lineExists(line))
        return addLine(current, other, line);
    const QList<quint8> present = lines(current);
    return line != 0 && !present.isEmpty() && present.last() == line && current.deleteNode(line);
}

bool takeOverUds(ObjectDataBase &current, const SettingDifference &difference)
{
    for (const UdsColumn &column : udsColumns()) {
        if (difference.key != QLatin1String(column.name))
            continue;
        column.write(current, difference.line, UDS::SID(difference.sid), difference.other);
        return true;
    }
    return false;
}

} // namespace

bool importItem(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item,
                const IgnoredProperties &ignored)
{
    if (current.writesBlocked() || !current.lineExists(item.line))
        return false;
    switch (item.kind) {
    case DiffItem::Kind::Object:
        return importObject(current, other, item, ignored);
    case DiffItem::Kind::SubIndex:
        return importSubIndex(current, other, item, ignored);
    case DiffItem::Kind::Pgn:
        return ObjectDataBase::copyPGN(current, other, item.line, item.line, item.number,
                                       item.direction, item.direction);
    case DiffItem::Kind::Spn:
        return importSpn(current, other, item);
    case DiffItem::Kind::CanId:
        return ObjectDataBase::copyCANID(current, other, item.line, item.line, item.number,
                                         item.direction, item.direction);
    case DiffItem::Kind::DataElement:
        return importElement(current, other, item);
    }
    return false;
}

bool importItemDefault(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item)
{
    return importItem(current, other, item, {});
}

bool deleteItem(ObjectDataBase &current, const DiffItem &item)
{
    if (current.writesBlocked() || item.state == DiffState::Other)
        return false;
    switch (item.kind) {
    case DiffItem::Kind::Object:
        return current.deleteIndex(item.line, quint16(item.number));
    case DiffItem::Kind::SubIndex:
        return current.deleteSubIndex(item.line, quint16(item.number), quint8(item.part));
    case DiffItem::Kind::Pgn:
        current.deletePGN(item.line, item.number, item.direction);
        return true;
    case DiffItem::Kind::Spn:
        current.deleteSPN(item.line, item.number, item.part, item.direction);
        current.repairMappingCounts(item.line);
        return true;
    case DiffItem::Kind::CanId:
        current.deleteCANID(item.line, item.number, item.direction);
        return true;
    case DiffItem::Kind::DataElement:
        current.deleteDataElement(item.line, item.number, item.part, item.direction);
        correctMappingCount(current, item);
        return true;
    }
    return false;
}

bool takeOverSetting(ObjectDataBase &current, ObjectDataBase &other,
                     const SettingDifference &difference)
{
    if (current.writesBlocked())
        return false;
    switch (difference.table) {
    case Table::Node:
        return takeOverNode(current, other, difference);
    case Table::Uds:
        return takeOverUds(current, difference);
    case Table::Line:
        return takeOverLine(current, other, difference.line);
    default:
        break;
    }
    const auto tables = keyTables();
    const auto table = std::find_if(tables.begin(), tables.end(), [&](const KeyTable &row) {
        return row.table == difference.table;
    });
    return table != tables.end() &&
           table->write(current, difference.key, table->value(other, difference.key));
}

} // namespace ProjectMerge

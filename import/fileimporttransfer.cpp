#include "import/fileimporttransfer.h"

#include "canopen/objectranges.h"
#include "import/objectwriter.h"
#include "store/storeguards.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace {

constexpr qsizetype objectsPerStep = 250;
constexpr qsizetype fewObjects = 50;

using Data = ObjectDataBase::SUBINDEX_DATA_T;

QString automaticName(quint16 index, quint8 subindex)
{
    return QStringLiteral("v_%1%2").arg(QString::number(index), QString::number(subindex));
}

bool isCompound(const ObjectDataBase::INDEX_DATA_T &object)
{
    return object.objecttype == CANopen::ARRAY || object.objecttype == CANopen::RECORD;
}

void makeManaged(quint16 index, quint8 subindex, bool, Data &data)
{
    if (data.implementation != CANopen::ManagedConst)
        data.implementation = CANopen::ManagedVariable;
    // Not everything can be managed. What the user has chosen for such a value stays.
    const QString name = data.varname;
    const quint32 size = data.size;
    ObjectWriter::makeGeneratable(data, index, subindex);
    data.size = std::max(size, data.size);
    if (!name.isEmpty())
        data.varname = name;
}

void makeApplication(quint16 index, quint8 subindex, bool isSubZero, Data &data)
{
    if (index < ObjectRanges::manufacturer.low || isSubZero) {
        makeManaged(index, subindex, isSubZero, data);
        return;
    }
    data.implementation = CANopen::Variable;
    if (data.varname.trimmed().isEmpty())
        data.varname = automaticName(index, subindex);
}

void leave(quint16, quint8, bool, Data &) {}

/// In the order of `ImportedImplementation`.
constexpr std::array appliers{makeManaged, makeApplication, leave};

} // namespace

FileImportTransfer::FileImportTransfer(ObjectDataBase &target, quint8 line, ObjectDataBase &source,
                                       quint8 sourceLine)
    : m_target(target), m_source(source), m_line(line), m_sourceLine(sourceLine)
{
}

bool FileImportTransfer::run(const std::atomic<bool> &cancelled,
                             const std::function<void(int)> &progress)
{
    m_target.setBlockUpdates(false);
    const StoreBlock block(m_target);
    if (!m_source.isLineCached(m_sourceLine))
        m_source.cacheAllSubs(m_sourceLine);
    readPresent();
    bool done = takeObjects(cancelled, progress);
    // The batches go past the caches.
    m_target.clearSubCache(m_line);
    if (!done || cancelled)
        return false;
    if (m_deviceData)
        done = takeDeviceData();
    done &= permitDynamicMapping();
    m_commands.run(m_target, m_line);
    return done && !cancelled;
}

/// What the target has of the objects, read before the first of them is written.
void FileImportTransfer::readPresent()
{
    m_present.clear();
    QSet<quint16> targets;
    for (const ImportedItem &item : std::as_const(m_items))
        targets.insert(item.target);
    QList<quint16> indices = m_target.getIndices(m_line);
    indices.removeIf([&](quint16 index) { return !targets.contains(index); });
    // The whole line is more than some of its objects, and cheaper than many.
    if (indices.size() > fewObjects)
        m_target.cacheAllSubs(m_line);
    for (const quint16 index : std::as_const(indices))
        m_present.insert(index, m_target.getSubIndices(m_line, index));
}

bool FileImportTransfer::takeObjects(const std::atomic<bool> &cancelled,
                                     const std::function<void(int)> &progress)
{
    bool done = true;
    for (qsizetype from = 0; done && from < m_items.size(); from += objectsPerStep) {
        if (cancelled)
            return false;
        const qsizetype behind = std::min(from + objectsPerStep, m_items.size());
        Batch batch;
        for (qsizetype i = from; i < behind; ++i)
            done &= takeObject(m_items.at(i), batch);
        done &= m_target.addIndices(batch.objects) && m_target.addSubIndices(batch.entries);
        progress(static_cast<int>(behind * 95 / m_items.size()));
    }
    return done;
}

bool FileImportTransfer::takeObject(const ImportedItem &item, Batch &batch)
{
    ObjectDataBase::INDEX_DATA_T object;
    if (!m_source.getIndexData(m_sourceLine, item.index, object))
        return false;
    const bool exists = m_present.contains(item.target);
    const QList<quint8> present = m_present.value(item.target);
    const bool isPart = !item.subindices.isEmpty();
    const QList<quint8> subindices = subindicesOf(item, isCompound(object));
    if (!item.name.isEmpty())
        object.name = item.name;
    if (!exists || !isPart)
        batch.objects.append({m_line, item.target, object});
    bool done = true;
    quint8 highest = subindices.isEmpty() ? quint8(0) : subindices.last();
    for (const quint8 subindex : present) {
        if (isPart)
            highest = std::max(highest, subindex);
        else if (!subindices.contains(subindex))
            done &= m_target.deleteSubIndex(m_line, item.target, subindex, true);
    }
    for (const quint8 subindex : subindices) {
        Data data;
        if (!m_source.getSubIndexData(m_sourceLine, item.index, subindex, data))
            continue;
        if (item.target != item.index && data.varname == automaticName(item.index, subindex))
            data.varname = automaticName(item.target, subindex);
        const bool isSubZero = subindex == 0 && isCompound(object);
        appliers[size_t(m_kind)](item.target, subindex, isSubZero, data);
        if (isSubZero && isPart)
            data.defaultvalue = QString::number(highest);
        if (!isCompound(object) && !item.name.isEmpty())
            data.name = item.name;
        m_hasDynamicMapping |= isSubZero && ObjectRanges::isPdoMapping(item.target) &&
                               data.accesstype == QLatin1String("rw");
        batch.entries.append({m_line, item.target, subindex, data});
    }
    if (isPart && isCompound(object) && !subindices.contains(0))
        done &= m_target.setSubIndexDefaultValue(m_line, item.target, 0, QString::number(highest));
    return done;
}

/// Ascending. The count of an array or a record comes along where it has none.
QList<quint8> FileImportTransfer::subindicesOf(const ImportedItem &item, bool isCompound)
{
    QList<quint8> subindices = m_source.getSubIndices(m_sourceLine, item.index);
    if (item.subindices.isEmpty())
        return subindices;
    const bool needsCount = isCompound && !m_present.value(item.target).contains(0);
    subindices.removeIf([&](quint8 subindex) {
        return !item.subindices.contains(subindex) && !(needsCount && subindex == 0);
    });
    return subindices;
}

bool FileImportTransfer::takeDeviceData()
{
    const quint8 sourceLine = m_source.descriptionLine();
    const quint8 targetLine = m_target.descriptionLine();
    m_source.setDescriptionLine(m_sourceLine);
    m_target.setDescriptionLine(m_line);
    bool done = true;
    // The list has the keys of all lines, each with its line behind it.
    const QString suffix = u'_' + QString::number(m_sourceLine);
    const QStringList keys = m_source.getDescriptionSettingKeys();
    for (const QString &lineKey : keys) {
        if (!lineKey.endsWith(suffix))
            continue;
        const QString key = lineKey.chopped(suffix.size());
        done &= m_target.setDescriptionSetting(key, m_source.getDescriptionSetting(key));
    }
    m_source.setDescriptionLine(sourceLine);
    m_target.setDescriptionLine(targetLine);
    return done;
}

/// Granularity 0 says that no mapping can be changed (CiA 306), which the objects contradict.
bool FileImportTransfer::permitDynamicMapping()
{
    if (!m_hasDynamicMapping)
        return true;
    const QString key = QStringLiteral("Granularity");
    const quint8 line = m_target.descriptionLine();
    m_target.setDescriptionLine(m_line);
    bool done = true;
    if (m_target.getDescriptionSetting(key).toUInt(nullptr, 0) == 0) {
        done = m_target.setDescriptionSetting(key, QStringLiteral("8"));
        m_hasMendedGranularity = done;
    }
    m_target.setDescriptionLine(line);
    return done;
}

#include "import/edsimporter.h"

#include "canopen/cohelper.h"
#include "canopen/edsparser.h"
#include "canopen/numbertext.h"
#include "canopen/objectranges.h"
#include "import/objectwriter.h"
#include "import/pdocompletion.h"

#include <algorithm>
#include <array>

namespace {

using Entry = ObjectDataBase::SUBINDEX_DATA_T;

struct DeviceKey
{
    const char *section;
    const char *key;
};

// "Dummy004" is the name that this setting has had from the start; the files' own "Dummy0004" is
// another key.
constexpr std::array deviceKeys = {
    DeviceKey{"FileInfo", "FileVersion"},     DeviceKey{"FileInfo", "FileRevision"},
    DeviceKey{"FileInfo", "CreatedBy"},       DeviceKey{"FileInfo", "ModifiedBy"},
    DeviceKey{"DummyUsage", "Dummy0001"},     DeviceKey{"DummyUsage", "Dummy0002"},
    DeviceKey{"DummyUsage", "Dummy0003"},     DeviceKey{"DummyUsage", "Dummy004"},
    DeviceKey{"DummyUsage", "Dummy0005"},     DeviceKey{"DummyUsage", "Dummy0006"},
    DeviceKey{"DummyUsage", "Dummy0007"},     DeviceKey{"DeviceInfo", "VendorName"},
    DeviceKey{"DeviceInfo", "ProductName"},   DeviceKey{"DeviceInfo", "OrderCode"},
    DeviceKey{"DeviceInfo", "LSS_Supported"}, DeviceKey{"DeviceInfo", "BaudRate_10"},
    DeviceKey{"DeviceInfo", "BaudRate_20"},   DeviceKey{"DeviceInfo", "BaudRate_50"},
    DeviceKey{"DeviceInfo", "BaudRate_125"},  DeviceKey{"DeviceInfo", "BaudRate_250"},
    DeviceKey{"DeviceInfo", "BaudRate_500"},  DeviceKey{"DeviceInfo", "BaudRate_800"},
    DeviceKey{"DeviceInfo", "BaudRate_1000"}, DeviceKey{"DeviceInfo", "NrOfRXPDO"},
    DeviceKey{"DeviceInfo", "NrOfTXPDO"},
};

/// Whether there is a mapping that the device lets be changed (CiA 301).
bool hasDynamicMapping(const QList<ObjectDataBase::SubEntry> &entries)
{
    return std::any_of(entries.begin(), entries.end(), [](const ObjectDataBase::SubEntry &entry) {
        return entry.subindex == 0 && ObjectRanges::isPdoMapping(entry.index) &&
               entry.data.accesstype == QLatin1String("rw");
    });
}

/// A file knows mappable or not; the access type tells the direction.
PDOMapping mappingOf(bool mappable, const QString &access)
{
    if (!mappable)
        return PDOMapping::Forbidden;
    if (access == QLatin1String("ro") || access == QLatin1String("rwr"))
        return PDOMapping::TPDO;
    if (access == QLatin1String("wo") || access == QLatin1String("rww"))
        return PDOMapping::RPDO;
    return PDOMapping::Allowed;
}

/// Default value and limits, which objects in compact form have too.
template <typename Record>
void takeValues(Entry &data, const Record &record)
{
    data.datatype = record.dataType;
    data.accesstype = record.accessType;
    data.defaultvalue = record.defaultValue;
    data.defaultineds = record.hasDefaultValue;
    data.writedefaulttoeds = record.hasDefaultValue ? 1 : 0;
    data.limitineds = record.hasLimits;
    if (record.hasLimits) {
        data.lowlimit = record.lowLimit;
        data.uplimit = record.highLimit;
    } else {
        COHelper::getDefaultLimits(data.datatype, data.lowlimit, data.uplimit);
    }
}

/// What a DCF configures.
void takeParameter(Entry &data, const QString &value, const QString &denotation, bool isDcf)
{
    data.currentvalue = value;
    if (isDcf && !value.isEmpty())
        data.defaultvalue = value;
    data.denotation = denotation;
    data.dcfcomponent = !denotation.isEmpty();
}

/// What a device description writes of a mapping behind its compact form is what the device
/// starts with.
void takeMappingValue(Entry &data, const QString &value)
{
    if (value.isEmpty())
        return;
    data.defaultvalue = value;
    data.defaultineds = true;
    data.writedefaulttoeds = 1;
}

quint32 numberOf(const QString &setting)
{
    return NumberText::toUnsigned32(setting).value_or(0);
}

} // namespace

EDSImporter::EDSImporter() = default;

EDSImporter::~EDSImporter()
{
    wait();
}

bool EDSImporter::import()
{
    m_writer = std::make_unique<ObjectWriter>(*store(), line());
    if (!read())
        return true;
    emit progress(50);
    const QStringList mended = m_madeCounts.mend(*m_writer);
    for (const QString &text : mended)
        note(ImportResult::Kind::Mended, 0, text);
    m_hasDynamicMapping = hasDynamicMapping(m_writer->entries());
    bool done = m_writer->write();
    noteDropped(m_writer->droppedCount());
    emit progress(85);
    store()->setDescriptionLine(line());
    done &= importDeviceData();
    done &= completePdos();
    return permitDynamicMapping() && done;
}

void EDSImporter::reset()
{
    m_parser.reset();
    m_writer.reset();
    m_madeCounts.clear();
}

bool EDSImporter::read()
{
    m_parser = std::make_shared<EdsParser>();
    connect(m_parser.get(), &EdsParser::newIndex, this, &EDSImporter::newIndex);
    connect(m_parser.get(), &EdsParser::newSubIndex, this, &EDSImporter::newSubIndex);
    const bool loaded = m_parser->LoadEds(fileName());
    adopt(m_parser->result());
    return loaded;
}

void EDSImporter::newIndex(const CANopen::CANopenIndex &record)
{
    if (isCancelled())
        m_parser->stop();
    if (!isInRange(record.index))
        return;
    ObjectDataBase::INDEX_DATA_T data;
    data.name = record.name;
    data.objecttype = record.objectCode;
    data.datatype = record.dataType;
    data.description = record.description;
    data.category = record.category;
    m_writer->addObject(record.index, data);
    if (record.compactSubObj > 0)
        addCompactEntries(record);
    emit DictionaryImporter::newIndex(record);
}

void EDSImporter::addCompactEntries(const CANopen::CANopenIndex &record)
{
    if (record.objectCode != CANopen::ARRAY && record.objectCode != CANopen::RECORD)
        return;
    Entry count;
    count.name = QStringLiteral("Highest subindex supported");
    count.datatype = CAN::UNSIGNED8;
    count.defaultvalue = QString::number(record.compactSubObj);
    count.defaultineds = true;
    count.writedefaulttoeds = 1;
    count.description = record.description;
    COHelper::getDefaultLimits(count.datatype, count.lowlimit, count.uplimit);
    m_writer->addEntry(record.index, 0, count);
    m_madeCounts.add(record.index);

    const auto names = m_parser->getCompactSubObjNames(record.index);
    const auto values = m_parser->getCompactSubObjValues(record.index);
    const auto denotations = m_parser->getCompactSubObjDenotations(record.index);
    for (quint16 i = 1; i <= record.compactSubObj; ++i) {
        const QString key = QString::number(i);
        Entry entry;
        entry.name = names.value(key);
        if (entry.name.isEmpty())
            entry.name = record.name + u' ' + key;
        takeValues(entry, record);
        takeParameter(entry, values.value(key), denotations.value(key), m_isDcf);
        if (ObjectRanges::isPdoMapping(record.index))
            takeMappingValue(entry, values.value(key));
        entry.pdomapping = PDOMapping(record.pdoMapping);
        m_writer->addEntry(record.index, static_cast<quint8>(i), entry);
    }
}

void EDSImporter::newSubIndex(const CANopenSubindex &record)
{
    if (!isInRange(record.index))
        return;
    Entry data;
    takeValues(data, record);
    data.name = record.name;
    takeParameter(data, record.parameterValue, record.denotation, m_isDcf);
    data.refuseread = record.refuseRead;
    data.refusewrite = record.refuseWrite;
    data.pdomapping = mappingOf(record.pdoMapping, record.accessType);
    data.description = record.description;
    // An array's type is the type of its first element, a variable's that of its value.
    auto *object = m_writer->object(record.index);
    if (object && (object->objecttype == CANopen::ARRAY ? record.subindex == 1
                                                        : object->objecttype == CANopen::VAR))
        object->datatype = record.dataType;
    m_writer->addEntry(record.index, record.subindex, data);
    if (record.subindex == 0) {
        if (record.isMade)
            m_madeCounts.add(record.index);
        else
            m_madeCounts.remove(record.index);
    }
    emit DictionaryImporter::newSubIndex(record);
}

bool EDSImporter::importDeviceData()
{
    bool done = true;
    for (const DeviceKey &entry : deviceKeys) {
        const QString key = QString::fromLatin1(entry.key);
        done &= store()->setDescriptionSetting(
            key, m_parser->deviceValue(QString::fromLatin1(entry.section), key));
    }
    // What the file doesn't say of the mapping leaves the project's own choice.
    const QString granularity =
        m_parser->deviceValue(QStringLiteral("DeviceInfo"), QStringLiteral("Granularity"));
    if (!granularity.isEmpty()) {
        // The setting is a decimal number, which a file need not write.
        const auto number = NumberText::toUnsigned32(granularity);
        done &= store()->setDescriptionSetting(QStringLiteral("Granularity"),
                                               number ? QString::number(*number) : granularity);
    }
    return store()->setDescriptionSetting(QStringLiteral("Comment"), m_parser->deviceComment()) &&
           done;
}

bool EDSImporter::completePdos()
{
    PdoCompletion completion(*store(), line(), lowIndex(), highIndex());
    completion.setCommunicationEntries(numberOf(
        m_parser->deviceValue(QStringLiteral("DeviceInfo"), QStringLiteral("CompactPDO"))));
    const bool done =
        completion.complete(numberOf(store()->getDescriptionSetting(QStringLiteral("NrOfRXPDO"))),
                            numberOf(store()->getDescriptionSetting(QStringLiteral("NrOfTXPDO"))));
    m_hasDynamicMapping |= completion.hasMadeMapping();
    return done;
}

/// Granularity 0 says that no mapping can be changed (CiA 306), which the objects contradict.
bool EDSImporter::permitDynamicMapping()
{
    const QString key = QStringLiteral("Granularity");
    if (!m_hasDynamicMapping || numberOf(store()->getDescriptionSetting(key)) != 0)
        return true;
    note(ImportResult::Kind::Mended, 0,
         tr("PDO mappings can be changed, which a granularity of 0 denies; it becomes 8."));
    return store()->setDescriptionSetting(key, QStringLiteral("8"));
}

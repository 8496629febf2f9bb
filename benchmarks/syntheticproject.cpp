#include "benchmarks/syntheticproject.h"

#include <QFileInfo>

#include <array>

namespace SyntheticProject {

namespace {

constexpr int firstIndex = 0x2000;
constexpr int subIndicesOfRecord = 9;

struct Type
{
    CAN::CANopenDataType type;
    const char *lowLimit;
    const char *defaultValue;
    const char *upLimit;
};

// Numbers in the notations that are found in projects side by side.
constexpr std::array<Type, 14> types = {{
    {CAN::UNSIGNED8, "0", "10", "200"},
    {CAN::UNSIGNED16, "0x0000", "0x0100", "0xFFFF"},
    {CAN::UNSIGNED32, "0", "100000", "0x7FFFFFFF"},
    {CAN::INTEGER8, "-100", "-5", "100"},
    {CAN::INTEGER16, "-32768", "-1000", "32767"},
    {CAN::INTEGER32, "-2147483648", "0", "2147483647"},
    {CAN::BOOLEAN, "0", "1", "1"},
    {CAN::REAL32, "", "3.25", ""},
    {CAN::UNSIGNED64, "0", "0x0123456789ABCDEF", ""},
    {CAN::INTEGER24, "-8388608", "12345", "0x7FFFFF"},
    {CAN::UNSIGNED24, "0", "0x00ABCD", "0xFFFFFF"},
    {CAN::REAL64, "", "-0.5", ""},
    {CAN::UNSIGNED16, "1", "500", "60000"},
    {CAN::VISIBLE_STRING, "", "Module A", ""},
}};

constexpr std::array<const char *, 8> functions = {
    "Analogue input",    "Digital output", "Temperature of channel", "Position control",
    "Velocity setpoint", "Motor current",  "Pressure monitor",       "Counter of events"};

constexpr std::array<const char *, subIndicesOfRecord> fields = {"Highest sub-index supported",
                                                                 "Value",
                                                                 "Lower threshold",
                                                                 "Upper threshold",
                                                                 "Filter constant",
                                                                 "Offset",
                                                                 "Gain",
                                                                 "Scaling",
                                                                 "Unit"};

constexpr std::array<const char *, 4> accessTypes = {"rw", "ro", "rww", "rwr"};

bool isRecord(int position)
{
    return position % 2 == 1;
}

QString objectName(int position)
{
    return QStringLiteral("%1 %2")
        .arg(QLatin1String(functions[position % functions.size()]))
        .arg(position / static_cast<int>(functions.size()) + 1);
}

ObjectDataBase::SUBINDEX_DATA_T countOfEntries()
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = QLatin1String(fields[0]);
    data.datatype = CAN::UNSIGNED8;
    data.accesstype = QStringLiteral("const");
    data.defaultvalue = QString::number(subIndicesOfRecord - 1);
    data.defaultineds = true;
    data.writedefaulttoeds = 1;
    data.implementation = CANopen::ManagedConst;
    data.category = CANopen::Mandatory;
    return data;
}

ObjectDataBase::SUBINDEX_DATA_T value(int position, int subIndex, const QString &name)
{
    const int choice = position * subIndicesOfRecord + subIndex;
    const Type &type = types[choice % types.size()];
    ObjectDataBase::SUBINDEX_DATA_T data;
    data.name = name;
    data.datatype = type.type;
    data.defaultvalue = QLatin1String(type.defaultValue);
    data.lowlimit = QLatin1String(type.lowLimit);
    data.uplimit = QLatin1String(type.upLimit);
    data.limitineds = *type.lowLimit != '\0' && *type.upLimit != '\0';
    data.defaultineds = true;
    data.writedefaulttoeds = 1;
    if (type.type == CAN::VISIBLE_STRING) {
        data.accesstype = QStringLiteral("const");
        data.implementation = CANopen::ManagedConst;
        data.size = static_cast<quint32>(data.defaultvalue.size());
        return data;
    }
    data.accesstype = QLatin1String(accessTypes[choice % accessTypes.size()]);
    data.pdomapping = choice % 3 == 0 ? PDOMapping::Allowed : PDOMapping::Forbidden;
    if (choice % 5 == 0) {
        data.implementation = CANopen::Variable;
        data.varname = QStringLiteral("process.obj%1_%2").arg(position).arg(subIndex);
    }
    if (choice % 7 == 0)
        data.description = QStringLiteral("Set by %1, read each cycle.").arg(name);
    data.nvstorage = choice % 11 == 0;
    return data;
}

bool addVariable(ObjectDataBase &store, quint16 index, const QString &name, quint16 dataType,
                 const QString &access, const QString &defaultValue)
{
    ObjectDataBase::INDEX_DATA_T object;
    object.name = name;
    object.datatype = dataType;
    object.category = CANopen::Mandatory;
    ObjectDataBase::SUBINDEX_DATA_T entry;
    entry.name = name;
    entry.datatype = dataType;
    entry.accesstype = access;
    entry.defaultvalue = defaultValue;
    entry.defaultineds = true;
    entry.writedefaulttoeds = 1;
    return store.addIndex(0, index, object) && store.addSubIndex(0, index, 0, entry);
}

bool addIdentity(ObjectDataBase &store)
{
    constexpr quint16 identity = 0x1018;
    constexpr std::array<std::pair<const char *, const char *>, 3> numbers = {
        {{"Vendor-ID", "0x00000123"}, {"Product code", "1000"}, {"Revision number", "0x00010002"}}};
    ObjectDataBase::INDEX_DATA_T object;
    object.name = QStringLiteral("Identity object");
    object.objecttype = CANopen::RECORD;
    object.category = CANopen::Mandatory;
    ObjectDataBase::SUBINDEX_DATA_T entry = countOfEntries();
    entry.defaultvalue = QString::number(numbers.size());
    bool done = store.addIndex(0, identity, object) && store.addSubIndex(0, identity, 0, entry);
    entry.datatype = CAN::UNSIGNED32;
    entry.accesstype = QStringLiteral("ro");
    quint8 subIndex = 0;
    for (const auto &[name, number] : numbers) {
        entry.name = QLatin1String(name);
        entry.defaultvalue = QLatin1String(number);
        done = done && store.addSubIndex(0, identity, ++subIndex, entry);
    }
    return done;
}

} // namespace

QList<std::pair<quint16, ObjectDataBase::INDEX_DATA_T>> objects(int count)
{
    Q_ASSERT(count <= maximumObjects);
    QList<std::pair<quint16, ObjectDataBase::INDEX_DATA_T>> list;
    list.reserve(count);
    for (int position = 0; position < count; ++position) {
        ObjectDataBase::INDEX_DATA_T data;
        data.name = objectName(position);
        data.objecttype = isRecord(position) ? CANopen::RECORD : CANopen::VAR;
        if (!isRecord(position))
            data.datatype = types[position * subIndicesOfRecord % types.size()].type;
        if (position % 4 == 0)
            data.description = QStringLiteral("Belongs to group %1.\nSee the manual of the device.")
                                   .arg(position / 100);
        list.emplace_back(static_cast<quint16>(firstIndex + position), data);
    }
    return list;
}

QList<ObjectDataBase::SubEntry> subIndices(int count, quint8 line)
{
    Q_ASSERT(count <= maximumObjects);
    QList<ObjectDataBase::SubEntry> list;
    list.reserve(static_cast<qsizetype>(count) * subIndicesPerObject);
    for (int position = 0; position < count; ++position) {
        const auto index = static_cast<quint16>(firstIndex + position);
        if (!isRecord(position)) {
            list.append({line, index, 0, value(position, 0, objectName(position))});
            continue;
        }
        list.append({line, index, 0, countOfEntries()});
        for (quint8 subIndex = 1; subIndex < subIndicesOfRecord; ++subIndex)
            list.append({line, index, subIndex,
                         value(position, subIndex, QLatin1String(fields[subIndex]))});
    }
    return list;
}

bool addObjects(ObjectDataBase &store, int count, quint8 line)
{
    bool done = true;
    const auto list = objects(count);
    for (const auto &[index, data] : list)
        done = store.addIndex(line, index, data) && done;
    return done;
}

bool addDevice(ObjectDataBase &store)
{
    static constexpr std::array<std::pair<const char *, const char *>, 7> settings = {
        {{"line0type", "1"},
         {"co_node_id", "32"},
         {"co_timer_interval", "1000"},
         {"receivebuffersize", "20"},
         {"transmitbuffersize", "20"},
         {"limit_check", "1"},
         {"Granularity", "8"}}};
    bool done = true;
    for (const auto &[key, text] : settings)
        done = store.setGeneralSetting(QLatin1String(key), QLatin1String(text)) && done;
    return addVariable(store, 0x1000, QStringLiteral("Device type"), CAN::UNSIGNED32,
                       QStringLiteral("ro"), QStringLiteral("0x00000000")) &&
           addVariable(store, 0x1001, QStringLiteral("Error register"), CAN::UNSIGNED8,
                       QStringLiteral("ro"), QStringLiteral("0")) &&
           addVariable(store, 0x1017, QStringLiteral("Producer heartbeat time"), CAN::UNSIGNED16,
                       QStringLiteral("rw"), QStringLiteral("1000")) &&
           addIdentity(store) && done;
}

bool fill(ObjectDataBase &store, int count)
{
    return addDevice(store) && addObjects(store, count) && store.addSubIndices(subIndices(count));
}

bool write(const QString &path, int count)
{
    ObjectDataBase store;
    return store.createNewDataBase() && fill(store, count) &&
           store.saveDatabase(QFileInfo(path).absoluteFilePath());
}

} // namespace SyntheticProject

#include "tests/generatedc/testproject.h"

#include "canopen/canopentypes.h"

namespace {

QString hexText(quint32 value)
{
    return QStringLiteral("0x%1").arg(value, 0, 16);
}

} // namespace

TestProject::TestProject(bool isV4)
{
    m_store.createNewDataBase();
    setting("use_core_headers", isV4 ? QStringLiteral("V4") : QString());
    setting("new_init_structure", QStringLiteral("1"));
    setting("line0type", QStringLiteral("1"));
    setting("receivebuffersize", QStringLiteral("10"));
    setting("transmitbuffersize", QStringLiteral("10"));
    setting("co_node_id", QStringLiteral("5"));
    setting("enable_dynamic", QStringLiteral("1"));
    setting("applicationheader", QStringLiteral("app.h"));
}

void TestProject::setting(const char *key, const QString &value)
{
    m_store.setGeneralSetting(QLatin1String(key), value);
}

void TestProject::settings(const char *text)
{
    for (const QString &row : QString::fromUtf8(text).split("; "))
        setting(qPrintable(row.section('=', 0, 0)), row.section('=', 1));
}

void TestProject::addLine(quint8 line)
{
    m_store.addNode(line, {});
    setting(qPrintable(QStringLiteral("line%1type").arg(line)), QStringLiteral("1"));
}

void TestProject::addDevice(quint8 line)
{
    using namespace CAN;
    variable(line, 0x1000, "Device Type", constant(UNSIGNED32, "0x00020191"));
    variable(line, 0x1001, "Error Register", managed(UNSIGNED8, "0", "ro"));
    variable(line, 0x1017, "Producer Heartbeat Time", managed(UNSIGNED16, "1000"));
    object(line, 0x1018, CANopen::RECORD, "Identity Object",
           {constant(UNSIGNED32, "0x319"), constant(UNSIGNED32, "2"), constant(UNSIGNED32, "2"),
            constant(UNSIGNED32, "0")});
    object(
        line, 0x1200, CANopen::RECORD, "SDO Server",
        {managed(UNSIGNED32, "$NODEID+0x600", "ro"), managed(UNSIGNED32, "$NODEID+0x580", "ro")});
}

void TestProject::variable(quint8 line, quint16 index, const QString &name, const Sub &sub)
{
    ObjectDataBase::INDEX_DATA_T data;
    data.name = name;
    data.datatype = sub.datatype;
    data.objecttype = sub.datatype == CAN::DOMAIN_TYPE ? CANopen::DOMAIN_OBJECT : CANopen::VAR;
    m_store.addIndex(line, index, data);
    Sub entry = sub;
    entry.name = name;
    m_store.addSubIndex(line, index, 0, entry);
}

void TestProject::object(quint8 line, quint16 index, quint32 type, const QString &name,
                         const std::vector<Sub> &entries)
{
    ObjectDataBase::INDEX_DATA_T data;
    data.name = name;
    data.objecttype = type;
    m_store.addIndex(line, index, data);
    QList<ObjectDataBase::SubEntry> subs;
    Sub zero = constant(CAN::UNSIGNED8, QString::number(entries.size()));
    zero.name = QStringLiteral("Highest subindex supported");
    if (!entries.empty() && entries.front().implementation == CANopen::VirtualObject)
        zero.implementation = CANopen::VirtualObject;
    zero.sharedlines = !entries.empty() && entries.front().sharedlines;
    subs.append({line, index, 0, zero});
    for (std::size_t i = 0; i < entries.size(); ++i) {
        Sub entry = entries[i];
        if (entry.name.isEmpty())
            entry.name = QStringLiteral("Entry %1").arg(i + 1);
        subs.append({line, index, quint8(i + 1), entry});
    }
    m_store.addSubIndices(subs);
}

void TestProject::pdo(quint8 line, quint16 communication, const std::vector<quint32> &mapping,
                      bool isDynamic)
{
    constexpr quint16 firstTransmit = 0x1800;
    const bool isTransmit = communication >= firstTransmit;
    const QString cobId = isTransmit ? QStringLiteral("$NODEID+0x180") : QStringLiteral("0x201");
    std::vector<Sub> entries = {managed(CAN::UNSIGNED32, cobId), managed(CAN::UNSIGNED8, "254"),
                                managed(CAN::UNSIGNED16, "100")};
    if (isTransmit) {
        entries.push_back(managed(CAN::UNSIGNED8, "0"));
        entries.push_back(managed(CAN::UNSIGNED16, "500"));
        entries.push_back(managed(CAN::UNSIGNED8, "7"));
    }
    object(line, communication, CANopen::RECORD, "PDO communication parameter", entries);
    std::vector<Sub> mapped;
    for (const quint32 entry : mapping)
        mapped.push_back(isDynamic ? managed(CAN::UNSIGNED32, hexText(entry))
                                   : constant(CAN::UNSIGNED32, hexText(entry)));
    const auto mappingIndex = quint16(communication + 0x200);
    object(line, mappingIndex, CANopen::RECORD, "PDO mapping parameter", mapped);
    if (isDynamic)
        m_store.addSubIndex(line, mappingIndex, 0,
                            managed(CAN::UNSIGNED8, QString::number(mapping.size())));
}

TestProject::Sub managed(quint16 dataType, const QString &value, const QString &access)
{
    TestProject::Sub sub;
    sub.datatype = dataType;
    sub.defaultvalue = value;
    sub.accesstype = access;
    sub.defaultineds = true;
    sub.pdomapping = PDOMapping::Allowed;
    return sub;
}

TestProject::Sub constant(quint16 dataType, const QString &value)
{
    TestProject::Sub result = managed(dataType, value, QStringLiteral("const"));
    result.implementation = CANopen::ManagedConst;
    result.pdomapping = PDOMapping::Forbidden;
    return result;
}

TestProject::Sub application(quint16 dataType, const QString &value, const QString &varName,
                             quint32 size)
{
    TestProject::Sub variable = managed(dataType, value);
    variable.implementation = CANopen::Variable;
    variable.varname = varName;
    variable.size = size;
    return variable;
}

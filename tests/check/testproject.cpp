#include "testproject.h"

#include <QDir>
#include <QFile>

namespace {

const char *const featureFile = "<info><required_tool_version>4.3</required_tool_version></info>";

void unsigned32(TestProject::Sub &sub)
{
    sub.datatype = CAN::UNSIGNED32;
}

} // namespace

TestProject::TestProject()
{
    QDir(folder.path()).mkdir(QStringLiteral("stack"));
    QFile feature(folder.filePath(QStringLiteral("stack/co_featureinfo_1.xml")));
    if (!feature.open(QIODevice::WriteOnly) || feature.write(featureFile) < 0 ||
        !database.createNewDataBase())
        qFatal("no test project");
    feature.close();
    QObject::connect(&checker, &ModelChecker::newError, &checker,
                     [this](const QString &text) { messages.append(text); });

    misc("costackpath", QStringLiteral("stack"));
    const QList<std::pair<const char *, const char *>> defaults = {
        {"line0type", "1"},          {"co_timer_interval", "1000"}, {"co_node_id", "32"},
        {"receivebuffersize", "20"}, {"transmitbuffersize", "20"},  {"limit_check", "1"},
        {"nmtmaster", "0"},          {"canfd_supported", "0"},      {"bitwise_mapping", "0"},
        {"emcy_routing", "0"},       {"overwrite_predef", "0"},     {"use_core_headers", ""}};
    for (const auto &[key, text] : defaults)
        general(key, text);
    granularity(8);

    variable(0x1000, QStringLiteral("0x00000191"), unsigned32);
    variable(0x1001, QStringLiteral("0"));
    array(0x1003, {QStringLiteral("0")}, unsigned32);
    variable(0x1005, QStringLiteral("0x80"), unsigned32);
    array(0x1010, {QStringLiteral("1")}, unsigned32);
    variable(0x1014, QStringLiteral("$NODEID+0x80"), unsigned32);
    array(0x1016, {QStringLiteral("0x10064"), QStringLiteral("0")}, unsigned32);
    variable(0x1017, QStringLiteral("500"));
    array(0x1018, {"0x1", "0x2", "0x3", "0"}, unsigned32);
    array(0x1028, {"0x85"}, unsigned32);
    array(0x1F81, {"1", "1"}, unsigned32);
    array(0x2000, {"0", "0"}, [](Sub &sub) {
        sub.pdomapping = PDOMapping::Allowed;
        sub.accesstype = QStringLiteral("rw");
        sub.implementation = CANopen::Variable;
        sub.varname = QStringLiteral("input");
    });
    edit(0x2000, 2, Make::implementation(CANopen::Variable, "a.b[2]"));
    variable(0x2010, QStringLiteral("10"), [](Sub &sub) {
        sub.limitineds = true;
        sub.lowlimit = QStringLiteral("0");
        sub.uplimit = QStringLiteral("20");
    });
    pdo(0x1400, QStringLiteral("$NODEID+0x200"), {"0x20000108"});
    pdo(0x1800, QStringLiteral("$NODEID+0x180"), {"0x20000108", "0x20000208"});
    array(0x1301, {"1"});
    array(0x1381, {"0x20000108", "0x20000208"}, unsigned32);
}

void TestProject::general(const char *key, const char *value)
{
    database.setGeneralSetting(QLatin1String(key), QLatin1String(value));
}

void TestProject::misc(const char *key, const QString &value)
{
    database.setMiscSetting(QLatin1String(key), value);
}

void TestProject::granularity(int bits)
{
    database.setDescriptionSetting(QStringLiteral("Granularity"), QString::number(bits));
}

void TestProject::object(quint16 index, quint32 type)
{
    ObjectDataBase::INDEX_DATA_T data;
    data.name = QStringLiteral("Object %1").arg(index, 0, 16);
    data.objecttype = type;
    database.addIndex(0, index, data);
}

void TestProject::sub(quint16 index, quint8 subindex, const QString &value,
                      const std::function<void(Sub &)> &change)
{
    Sub data;
    data.name = QStringLiteral("Entry %1").arg(subindex);
    data.datatype = CAN::UNSIGNED8;
    data.defaultvalue = value;
    data.defaultineds = true;
    data.writedefaulttoeds = 1;
    if (change)
        change(data);
    database.addSubIndex(0, index, subindex, data);
}

void TestProject::variable(quint16 index, const QString &value,
                           const std::function<void(Sub &)> &change)
{
    object(index, CANopen::VAR);
    sub(index, 0, value, change);
}

void TestProject::array(quint16 index, const QStringList &entries,
                        const std::function<void(Sub &)> &change)
{
    object(index, CANopen::ARRAY);
    sub(index, 0, QString::number(entries.size()), [](Sub &data) {
        data.accesstype = QStringLiteral("const");
        data.implementation = CANopen::ManagedConst;
    });
    for (int i = 0; i < entries.size(); ++i)
        sub(index, static_cast<quint8>(i + 1), entries.at(i), change);
}

void TestProject::edit(quint16 index, quint8 subindex, const std::function<void(Sub &)> &change)
{
    Sub data;
    if (!database.getSubIndexData(0, index, subindex, data))
        qFatal("no subindex %x-%x to edit", index, subindex);
    change(data);
    database.addSubIndex(0, index, subindex, data);
}

void TestProject::value(quint16 index, quint8 subindex, const QString &value)
{
    edit(index, subindex, [&](Sub &data) { data.defaultvalue = value; });
}

void TestProject::remove(quint16 index)
{
    database.deleteIndex(0, index);
}

void TestProject::remove(quint16 index, quint8 subindex)
{
    database.deleteSubIndex(0, index, subindex);
}

void TestProject::editObject(quint16 index,
                             const std::function<void(ObjectDataBase::INDEX_DATA_T &)> &change)
{
    ObjectDataBase::INDEX_DATA_T data;
    database.getIndexData(0, index, data);
    change(data);
    database.addIndex(0, index, data);
}

void TestProject::addLine(quint8 line, int type)
{
    database.addNode(line, {});
    ObjectDataBase::copyLine(database, database, 0, line);
    database.setGeneralSetting(QStringLiteral("line%1type").arg(line), QString::number(type));
    database.setDescriptionLine(line);
    granularity(8);
    database.setDescriptionLine(0);
}

void TestProject::pdo(quint16 communication, const QString &cobId, const QStringList &entries,
                      const char *access)
{
    array(communication, {cobId, QStringLiteral("255")}, unsigned32);
    const auto mapping = static_cast<quint16>(communication + 0x200);
    array(mapping, entries, [access](Sub &data) {
        data.datatype = CAN::UNSIGNED32;
        data.accesstype = QLatin1String(access);
    });
    edit(mapping, 0, [access](Sub &data) {
        data.accesstype = QLatin1String(access);
        if (data.accesstype == QLatin1String("rw")) {
            data.implementation = CANopen::ManagedVariable;
        }
    });
}

int TestProject::check(const QList<quint8> &lines)
{
    const qsizetype first = checker.findings().size();
    const qsizetype firstMessage = messages.size();
    for (const quint8 line : lines)
        database.cacheAllSubs(line);
    int errors = checker.checkProject(&database, folder.path());
    for (const quint8 line : lines)
        errors += checker.checkLine(line, &database, &changed);
    QStringList parts;
    QStringList texts;
    for (const CheckFinding &finding : checker.findings().mid(first)) {
        if (finding.suppressed)
            continue;
        parts.append((QStringList(finding.identifier()) + finding.arguments).join(u' '));
        texts.append(finding.text());
    }
    if (texts != messages.mid(firstMessage))
        qFatal("what was sent is not what was found");
    said = parts.join(QLatin1String("; "));
    return errors;
}

Change settings(const QList<std::pair<const char *, const char *>> &pairs)
{
    return [=](TestProject &project) {
        for (const auto &[key, value] : pairs)
            project.general(key, value);
    };
}

Change removed(const QList<quint16> &indices)
{
    return [=](TestProject &project) {
        for (const quint16 index : indices)
            project.remove(index);
    };
}

Change values(const QList<std::tuple<quint16, quint8, const char *>> &list)
{
    return [=](TestProject &project) {
        for (const auto &[index, subindex, value] : list)
            project.value(index, subindex, QLatin1String(value));
    };
}

Change edited(quint16 index, quint8 subindex, const std::function<void(TestProject::Sub &)> &change)
{
    return [=](TestProject &project) { project.edit(index, subindex, change); };
}

Change variable(quint16 index, const char *value)
{
    return [=](TestProject &p) { p.variable(index, QLatin1String(value), unsigned32); };
}

Change entry(quint16 index, quint8 subindex, const char *value)
{
    return [=](TestProject &p) { p.sub(index, subindex, QLatin1String(value), unsigned32); };
}

Change list(quint16 index, const QStringList &entries)
{
    return [=](TestProject &project) {
        project.remove(index);
        project.array(index, entries, unsigned32);
    };
}

Change operator+(const Change &first, const Change &second)
{
    return [=](TestProject &project) {
        first(project);
        second(project);
    };
}

void canFd(TestProject &project)
{
    project.general("canfd_supported", "1");
    project.remove(0x1000);
    project.array(0x1000, {"0x191"}, Make::type(CAN::UNSIGNED32));
}

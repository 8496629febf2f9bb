#include "testproject.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

static const char *const featureFile =
    "<info><required_tool_version>4.3</required_tool_version></info>";

TestProject::TestProject()
{
    QDir(folder.path()).mkdir(u"stack"_s);
    QFile feature(folder.filePath(u"stack/co_featureinfo_1.xml"_s));
    if (!feature.open(QIODevice::WriteOnly) || feature.write(featureFile) < 0 ||
        !database.createNewDataBase())
        qFatal("no test project");
    feature.close();
    QObject::connect(&checker, &ModelChecker::newError, &checker,
                     [this](const QString &text) { messages.append(text); });

    misc("costackpath", u"stack"_s);
    const QList<std::pair<const char *, const char *>> defaults = {
        {"line0type", "1"},          {"co_timer_interval", "1000"}, {"co_node_id", "32"},
        {"receivebuffersize", "20"}, {"transmitbuffersize", "20"},  {"limit_check", "1"},
        {"nmtmaster", "0"},          {"canfd_supported", "0"},      {"bitwise_mapping", "0"},
        {"emcy_routing", "0"},       {"overwrite_predef", "0"},     {"use_core_headers", ""}};
    for (const auto &[key, text] : defaults)
        general(key, text);
    granularity(8);

    variable(0x1000, u"0x00000191"_s, Make::type(CAN::UNSIGNED32));
    variable(0x1001, u"0"_s);
    array(0x1003, {u"0"_s}, Make::type(CAN::UNSIGNED32));
    variable(0x1005, u"0x80"_s, Make::type(CAN::UNSIGNED32));
    array(0x1010, {u"1"_s}, Make::type(CAN::UNSIGNED32));
    variable(0x1014, u"$NODEID+0x80"_s, Make::type(CAN::UNSIGNED32));
    array(0x1016, {u"0x10064"_s, u"0"_s}, Make::type(CAN::UNSIGNED32));
    variable(0x1017, u"500"_s);
    array(0x1018, {"0x1", "0x2", "0x3", "0"}, Make::type(CAN::UNSIGNED32));
    array(0x1028, {"0x85"}, Make::type(CAN::UNSIGNED32));
    array(0x1F81, {"1", "1"}, Make::type(CAN::UNSIGNED32));
    array(0x2000, {"0", "0"}, [](Sub &sub) {
        sub.pdomapping = PDOMapping::Allowed;
        sub.accesstype = u"rw"_s;
        sub.implementation = CANopen::Variable;
        sub.varname = u"input"_s;
    });
    edit(0x2000, 2, Make::implementation(CANopen::Variable, "a.b[2]"));
    variable(0x2010, u"10"_s, [](Sub &sub) {
        sub.limitineds = true;
        sub.lowlimit = u"0"_s;
        sub.uplimit = u"20"_s;
    });
    pdo(0x1400, u"$NODEID+0x200"_s, {"0x20000108"});
    pdo(0x1800, u"$NODEID+0x180"_s, {"0x20000108", "0x20000208"});
    array(0x1301, {"1"});
    array(0x1381, {"0x20000108", "0x20000208"}, Make::type(CAN::UNSIGNED32));
}

void TestProject::sub(quint16 index, quint8 subindex, const QString &value,
                      const std::function<void(Sub &)> &change)
{
    Sub data;
    data.name = u"Entry %1"_s.arg(subindex);
    data.datatype = CAN::UNSIGNED8;
    data.defaultvalue = value;
    data.defaultineds = true;
    data.writedefaulttoeds = 1;
    if (change)
        change(data);
    database.addSubIndex(0, index, subindex, data);
}

void TestProject::array(quint16 index, const QStringList &entries,
                        const std::function<void(Sub &)> &change)
{
    object(index, CANopen::ARRAY);
    sub(index, 0, QString::number(entries.size()), [](Sub &data) {
        data.accesstype = u"const"_s;
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

void TestProject::addLine(quint8 line, int type)
{
    database.addNode(line, {});
    ObjectDataBase::copyLine(database, database, 0, line);
    database.setGeneralSetting(u"line%1type"_s.arg(line), QString::number(type));
    database.setDescriptionLine(line);
    granularity(8);
    database.setDescriptionLine(0);
}

void TestProject::pdo(quint16 communication, const QString &cobId, const QStringList &entries,
                      const char *access)
{
    array(communication, {cobId, u"255"_s}, Make::type(CAN::UNSIGNED32));
    const auto mapping = static_cast<quint16>(communication + 0x200);
    array(mapping, entries, [access](Sub &data) {
        data.datatype = CAN::UNSIGNED32;
        data.accesstype = QLatin1String(access);
    });
    edit(mapping, 0, [access](Sub &data) {
        data.accesstype = QLatin1String(access);
        if (data.accesstype == "rw"_L1) {
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
    said = parts.join("; "_L1);
    return errors;
}

#include "cli/convertcommand.h"

#include "cli/console.h"
#include "cli/projectaccess.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QLatin1String databaseSuffix("vxmp");
const QLatin1String textSuffix("vxmt");

QString suffixOf(const QString &path)
{
    return QFileInfo(path).suffix().toLower();
}

QString suffixFault(const QString &from, const QString &to)
{
    const QString source = suffixOf(from);
    const QString target = suffixOf(to);
    for (const auto &[suffix, path] : {std::pair(source, from), std::pair(target, to)}) {
        if (suffix != databaseSuffix && suffix != textSuffix)
            return QStringLiteral("convert: \"%1\" ends neither in .vxmp nor in .vxmt").arg(path);
    }
    if (source == target)
        return QStringLiteral("convert: both files end in .%1, one has to end in .vxmp and the "
                              "other in .vxmt")
            .arg(source);
    return {};
}

/// Tables without a text form, or their beginning for those that each line has, with what a user
/// calls their content.
struct LeftOut
{
    const char *table;
    bool isOfLine;
    const char *content;
};

constexpr LeftOut leftOutTables[] = {
    {"CANIDs", true, "raw CAN messages"},
    {"DataElements", true, "raw CAN data elements"},
    {"Connections", false, "connections"},
    {"EnergyBusSettings", false, "EnergyBus settings"},
    {"Groups", false, "groups"},
    {"SignalGroups", false, "signal groups"},
    {"Signals", false, "signals"},
    {"VirtualNodes", false, "virtual nodes"},
    {"LockedMappings", false, "locked mappings"},
    {"LockedPDOs", false, "locked PDOs"},
};

/// What the text form of a project will lack.
QStringList leftOutContent(ObjectDataBase &store)
{
    QStringList result;
    for (const LeftOut &entry : leftOutTables) {
        int rows = 0;
        const QString table = QLatin1String(entry.table);
        if (entry.isOfLine) {
            for (const quint8 line : store.getLines())
                rows += store.rowCount(table + QString::number(line));
        } else {
            rows = store.rowCount(table);
        }
        if (rows != 0)
            result.append(QStringLiteral("%1 (%2)").arg(QLatin1String(entry.content)).arg(rows));
    }
    return result;
}

/// Why a project can't be written, without the name that the sentence around it has.
QString saveFault(const ObjectDataBase &store, const QString &target)
{
    QString fault = store.lastErrorText();
    const QString prefix = target + QLatin1String(": ");
    return fault.startsWith(prefix) ? fault.mid(prefix.size()) : fault;
}

} // namespace

QString ConvertCommand::name() const
{
    return QStringLiteral("convert");
}

QString ConvertCommand::summary() const
{
    return QStringLiteral("turns a project into its text form or back");
}

QString ConvertCommand::description() const
{
    return QStringLiteral(
        "One file ends in .vxmp, the database form, the other in .vxmt, the text form.\n"
        "OUT is replaced as a whole or stays as it was; a former .vxmp is kept with .bak\n"
        "behind its name. Raw CAN data, connections, EnergyBus settings and signals have\n"
        "no text form: a warning on standard error names what a .vxmt lacks.");
}

QList<CommandArgument> ConvertCommand::arguments() const
{
    return {{QStringLiteral("IN"), QStringLiteral("the project to read")},
            {QStringLiteral("OUT"), QStringLiteral("the file to write")}};
}

ExitCode ConvertCommand::run(const CommandCall &call, Console &console) const
{
    const QString &from = call.arguments.at(0);
    const QString &to = call.arguments.at(1);
    const QString usageFault = suffixFault(from, to);
    if (!usageFault.isEmpty()) {
        console.error(usageFault);
        return ExitCode::WrongUsage;
    }
    ObjectDataBase store;
    const QString openFault = ProjectAccess::open(store, from);
    if (!openFault.isEmpty()) {
        console.error(openFault);
        return ExitCode::FileFailed;
    }
    const QStringList lost = suffixOf(to) == textSuffix ? leftOutContent(store) : QStringList();
    const QString target = QFileInfo(to).absoluteFilePath();
    if (!store.saveDatabase(target)) {
        console.error(
            QStringLiteral("\"%1\" can't be written: %2")
                .arg(QDir::toNativeSeparators(to), saveFault(store, target).simplified()));
        return ExitCode::FileFailed;
    }
    if (!lost.isEmpty())
        console.warning(QStringLiteral("not in \"%1\", as it has no text form: %2")
                            .arg(QDir::toNativeSeparators(to), lost.join(QLatin1String(", "))));
    return ExitCode::Done;
}

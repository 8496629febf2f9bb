#include "cli/convertcommand.h"

#include "cli/console.h"
#include "cli/projectaccess.h"
#include "store/objectdatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <filesystem>
#include <system_error>

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

int rowCount(ObjectDataBase &store, const QString &table)
{
    if (!store.executeSql(QStringLiteral("select count(*) from \"%1\"").arg(table)))
        return 0;
    return store.statementResults().value(0).section(u' ', 0, 0).toInt();
}

/// What the text form of a project will lack.
QStringList leftOutContent(ObjectDataBase &store)
{
    QStringList result;
    for (const LeftOut &entry : leftOutTables) {
        int rows = 0;
        const QString table = QLatin1String(entry.table);
        if (entry.isOfLine) {
            for (const quint8 line : store.getLines())
                rows += rowCount(store, table + QString::number(line));
        } else {
            rows = rowCount(store, table);
        }
        if (rows != 0)
            result.append(QStringLiteral("%1 (%2)").arg(QLatin1String(entry.content)).arg(rows));
    }
    return result;
}

/// Moves a file over another one in one step.
QString moveOver(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(QFileInfo(from).filesystemFilePath(),
                            QFileInfo(to).filesystemFilePath(), error);
    return error ? QString::fromStdString(error.message()) : QString();
}

/// The bits count as well: an administrator may pass them, but whoever set them meant it.
bool isWritable(const QFileInfo &file)
{
    constexpr auto writeBits = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    return file.isWritable() && (file.permissions() & writeBits);
}

QString targetFault(const QFileInfo &target)
{
    const QFileInfo folder(target.absolutePath());
    if (target.isDir())
        return QStringLiteral("it is a folder");
    if (!folder.isDir())
        return QStringLiteral("its folder does not exist");
    if (!isWritable(folder))
        return QStringLiteral("its folder can't be written");
    if (target.exists() && !isWritable(target))
        return QStringLiteral("the file is read-only");
    return {};
}

/// The former content of a database file stays beside it, as it does when the tool saves.
QString keepBackup(const QString &target, const QString &staging)
{
    if (!QFile::exists(target) || suffixOf(target) != databaseSuffix)
        return {};
    const QString copy = staging + QLatin1String("/backup");
    QFile file(target);
    return file.copy(copy) ? moveOver(copy, target + QLatin1String(".bak")) : file.errorString();
}

/// Writes the project beside the target first, so that the target is replaced as a whole or
/// stays as it was. Gives what went wrong, or nothing.
QString writeProject(ObjectDataBase &store, const QString &path)
{
    QFileInfo info(path);
    if (info.isSymLink() && info.exists())
        info.setFile(info.canonicalFilePath()); // the link stays one
    const QString fault = targetFault(info);
    if (!fault.isEmpty())
        return fault;
    const QString target = info.absoluteFilePath();
    QTemporaryDir staging(info.absolutePath() + QLatin1String("/.quillforge-cli-XXXXXX"));
    if (!staging.isValid())
        return QStringLiteral("its folder can't be written");
    const QString staged = staging.filePath(QStringLiteral("project.") + suffixOf(path));
    if (!store.saveDatabase(staged))
        return store.lastErrorText();
    if (info.exists())
        QFile::setPermissions(staged, info.permissions());
    const QString backupFault = keepBackup(target, staging.path());
    return backupFault.isEmpty() ? moveOver(staged, target) : backupFault;
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
    const QString writeFault = writeProject(store, to);
    if (!writeFault.isEmpty()) {
        console.error(QStringLiteral("\"%1\" can't be written: %2")
                          .arg(QDir::toNativeSeparators(to), writeFault.simplified()));
        return ExitCode::FileFailed;
    }
    if (!lost.isEmpty())
        console.warning(QStringLiteral("not in \"%1\", as it has no text form: %2")
                            .arg(QDir::toNativeSeparators(to), lost.join(QLatin1String(", "))));
    return ExitCode::Done;
}

#include "tests/support/shippedprogram.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

ShippedProgram::ShippedProgram(const QString &program) : program(program)
{
    if (!folder.isValid())
        qFatal("no temporary folder");
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_LOGGING_RULES"})
        environment.remove(QLatin1String(name));
    environment.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("home/config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("home/data")));
    environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("1700000000"));
}

void ShippedProgram::prepare(QProcess &process, const QStringList &arguments) const
{
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    if (!standardOutput.isEmpty())
        process.setStandardOutputFile(standardOutput);
    process.setProgram(QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/") + program);
    process.setArguments(arguments);
}

ShippedProgram::Run ShippedProgram::run(const QStringList &arguments) const
{
    QProcess process;
    prepare(process, arguments);
    process.start(QIODevice::ReadOnly);
    if (!process.waitForFinished(timeLimit) || process.exitStatus() != QProcess::NormalExit)
        return {.errors = process.errorString()};
    return {.exitCode = process.exitCode(),
            .output = standardOutput.isEmpty() ? process.readAllStandardOutput() : QByteArray(),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

QByteArray ShippedProgram::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ShippedProgram::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s can't be written", qPrintable(name));
}

QMap<QString, QByteArray> ShippedProgram::tree(const QString &name) const
{
    QMap<QString, QByteArray> files;
    const QDir root(path(name));
    QDirIterator found(root.path(), QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (found.hasNext()) {
        const QString at = root.relativeFilePath(found.next());
        files.insert(at, found.fileInfo().isFile() ? read(root.filePath(at)) : QByteArray());
    }
    return files;
}

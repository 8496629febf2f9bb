#include "cliprogram.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>

namespace {

constexpr int timeLimit = 60000;
const QString example = QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/data/examples/io-module.vxmt");

} // namespace

CliProgram::CliProgram()
{
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_LOGGING_RULES"})
        environment.remove(QLatin1String(name));
    // Two runs are to give the same bytes.
    environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("1700000000"));
}

CliProgram::Run CliProgram::run(const QStringList &words) const
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder.path());
    if (!standardOutput.isEmpty())
        process.setStandardOutputFile(standardOutput);
    process.start(QStringLiteral(QUILLFORGE_BINARY_DIR "/bin/quillforge-cli"), words,
                  QIODevice::ReadOnly);
    const bool ended = process.waitForFinished(timeLimit);
    if (!ended || process.exitStatus() != QProcess::NormalExit)
        return {.exitCode = -1, .output = {}, .errors = process.errorString()};
    return {.exitCode = process.exitCode(),
            .output = standardOutput.isEmpty() ? process.readAllStandardOutput() : QByteArray(),
            .errors = QString::fromUtf8(process.readAllStandardError())};
}

QByteArray CliProgram::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void CliProgram::write(const QString &name, const QByteArray &content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s can't be written", qPrintable(name));
}

QMap<QString, QByteArray> CliProgram::tree(const QString &name) const
{
    QMap<QString, QByteArray> files;
    const QDir root(path(name));
    QDirIterator found(root.path(), QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (found.hasNext()) {
        QFile file(found.next());
        const bool isFile = found.fileInfo().isFile() && file.open(QIODevice::ReadOnly);
        files.insert(root.relativeFilePath(file.fileName()),
                     isFile ? file.readAll() : QByteArray());
    }
    return files;
}

void CliProgram::saveProject(const QString &name, const Change &change,
                             const QString &edition) const
{
    QCoreApplication::setApplicationName(edition);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLFORGE_VERSION));
    ObjectDataBase store;
    const bool opened = store.openDataBase(example) && store.lastErrorText().isEmpty();
    if (opened && change)
        change(store);
    if (!opened || !store.saveDatabase(path(name)))
        qFatal("%s can't be made: %s", qPrintable(name), qPrintable(store.lastErrorText()));
}

#include "tests/golden/foldercompare.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace FolderCompare {

bool isUpdateWanted()
{
    return qEnvironmentVariableIntValue("QUILLFORGE_UPDATE_GOLDENS") != 0;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files.append(QDir(folder).relativeFilePath(walk.next()));
    files.sort();
    return files;
}

bool copyTree(const QString &from, const QString &to)
{
    const QStringList files = filesBelow(from);
    for (const QString &file : files) {
        const QString target = to + QLatin1Char('/') + file;
        if (!QDir().mkpath(QFileInfo(target).absolutePath()))
            return false;
        QFile copy(target);
        if (!copy.open(QIODevice::WriteOnly) ||
            copy.write(contentOf(from + QLatin1Char('/') + file)) < 0)
            return false;
    }
    return true;
}

namespace {

/// The first line that differs, for the eye.
QString difference(const QString &name, const QByteArray &expected, const QByteArray &actual)
{
    const QList<QByteArray> before = expected.split('\n');
    const QList<QByteArray> after = actual.split('\n');
    qsizetype line = 0;
    while (line < before.size() && line < after.size() && before.at(line) == after.at(line))
        ++line;
    const auto text = [line](const QList<QByteArray> &lines) {
        return line < lines.size() ? QString::fromUtf8(lines.at(line)) : QStringLiteral("(end)");
    };
    return QStringLiteral("%1:%2:\n  expected: %3\n  actual:   %4\n")
        .arg(name)
        .arg(line + 1)
        .arg(text(before), text(after));
}

} // namespace

QString differences(const QString &expected, const QString &actual)
{
    const QStringList before = filesBelow(expected);
    const QStringList after = filesBelow(actual);
    QString report;
    for (const QString &file : before) {
        if (!after.contains(file)) {
            report += QStringLiteral("%1: missing\n").arg(file);
            continue;
        }
        const QByteArray old = contentOf(expected + QLatin1Char('/') + file);
        const QByteArray made = contentOf(actual + QLatin1Char('/') + file);
        if (old != made)
            report += difference(file, old, made);
    }
    for (const QString &file : after) {
        if (!before.contains(file))
            report += QStringLiteral("%1: not expected\n").arg(file);
    }
    return report;
}

} // namespace FolderCompare

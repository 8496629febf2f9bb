#include "store/workingcopy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cstdlib>

namespace WorkingCopy {

namespace {

constexpr qint64 chunkSize = 1 << 20;
constexpr int attempts = 1000;

QString reserveIn(const QString &folder)
{
    if (!QDir().mkpath(folder))
        return {};
    for (int i = 0; i < attempts; ++i) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe,cert-msc50-cpp): only a name, reserved exclusively
        const int first = rand();
        // NOLINTNEXTLINE(concurrency-mt-unsafe,cert-msc50-cpp)
        const int second = rand();
        const QString path = folder + QStringLiteral("/vxedatatemp_%1_%2").arg(first).arg(second);
        // Made at once, so that another process can't take the name in between.
        QFile file(path);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
            return path;
        }
        if (!QFileInfo::exists(path))
            return {};
    }
    return {};
}

} // namespace

QString reserve()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    const QString path = folder.isEmpty() ? QString() : reserveIn(folder);
    return path.isEmpty() ? reserveIn(QDir::tempPath()) : path;
}

bool copyFile(const QString &source, const QString &target, QString &error)
{
    QFile from(source);
    if (QFileInfo(source).isDir()) {
        error = QStringLiteral("Is a directory");
        return false;
    }
    if (!from.open(QIODevice::ReadOnly)) {
        error = from.errorString();
        return false;
    }
    QFile to(target);
    if (!to.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        error = to.errorString();
        return false;
    }
    while (!from.atEnd()) {
        const QByteArray chunk = from.read(chunkSize);
        if (chunk.isEmpty())
            break;
        if (to.write(chunk) != chunk.size()) {
            // A short write leaves no reason behind; room on the disk is the usual one.
            error = to.error() == QFile::NoError || to.error() == QFile::WriteError
                        ? QStringLiteral("could not be written completely; is the disk full?")
                        : to.errorString();
            return false;
        }
    }
    if (from.error() != QFile::NoError) {
        error = from.errorString();
        return false;
    }
    if (!to.flush()) {
        error = to.errorString();
        return false;
    }
    to.close();
    to.setPermissions(to.permissions() | QFile::WriteOwner | QFile::WriteUser);
    return true;
}

} // namespace WorkingCopy

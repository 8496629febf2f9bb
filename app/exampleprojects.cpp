#include "app/exampleprojects.h"

#include "canopen/safefile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <array>

namespace {

/// Folders of a stack that may hold examples.
constexpr std::array stackFolders{
    "co_example_sl",    "co_example_bootloader", "co_example_ml",    "j1939_example_sl",
    "j1939_example_ml", "co_fd_example_sl",      "co_fd_example_ml", "example_eb",
    "example_customer", "example_intern",
};
/// An example is a folder of its own with the project in it, or in one below.
constexpr int deepestFolder = 3;

const QStringList projectFiles{QStringLiteral("*.vxmp"), QStringLiteral("*.vxmt")};

void collect(const QDir &folder, const QDir &top, int depth, QList<ExampleProjects::Example> &found)
{
    static const QRegularExpression project(
        QRegularExpression::anchoredPattern(QStringLiteral("slave1.*\\.vxmp")));
    for (const QFileInfo &file : folder.entryInfoList(QDir::Files, QDir::Name)) {
        if (project.match(file.fileName()).hasMatch())
            found.append({top.relativeFilePath(file.filePath()), file.absoluteFilePath()});
    }
    if (depth == deepestFolder)
        return;
    const QDir::Filters filters = QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    for (const QFileInfo &child : folder.entryInfoList(filters, QDir::Name))
        collect(QDir(child.filePath()), top, depth + 1, found);
}

} // namespace

QList<ExampleProjects::Example> ExampleProjects::shipped()
{
    const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/data/examples"));
    QList<Example> result;
    for (const QFileInfo &file : folder.entryInfoList(projectFiles, QDir::Files, QDir::Name))
        result.append({file.completeBaseName(), file.absoluteFilePath()});
    return result;
}

QList<ExampleProjects::Example> ExampleProjects::ofStack(const QString &stackPath)
{
    const QDir stack(stackPath);
    QList<Example> result;
    for (const char *name : stackFolders) {
        const QDir folder(stack.filePath(QLatin1String(name)));
        if (folder.exists())
            collect(folder, stack, 0, result);
    }
    return result;
}

QString ExampleProjects::copyTo(const QString &examplePath, const QString &path)
{
    const QFileInfo example(examplePath);
    if (QFileInfo(path).canonicalFilePath() == example.canonicalFilePath())
        return QCoreApplication::translate("ExampleProjects", "That is the example itself.");
    if (const QString fault = SafeFile::kindFault(path); !fault.isEmpty())
        return QDir::toNativeSeparators(path) + QStringLiteral(": ") + fault;
    const auto copy = [](const QString &from, const QString &to) {
        QFile file(from);
        if (!file.copy(to))
            return SafeFile::reason(file);
        // What was installed may be for reading only.
        QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner | QFile::WriteUser);
        return QString();
    };
    if (QFile::exists(path) && !QFile::remove(path)) {
        return QCoreApplication::translate("ExampleProjects", "The file that is there can't be "
                                                              "replaced.");
    }
    if (const QString error = copy(examplePath, path); !error.isEmpty())
        return error;
    const QDir target = QFileInfo(path).absoluteDir();
    for (const QFileInfo &file : example.dir().entryInfoList(QDir::Files)) {
        const bool isProject = QDir::match(projectFiles, file.fileName());
        if (isProject || target.exists(file.fileName()))
            continue;
        if (const QString error = copy(file.filePath(), target.filePath(file.fileName()));
            !error.isEmpty()) {
            return error;
        }
    }
    return {};
}

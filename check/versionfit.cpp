#include "check/canopenchecks.h"
#include "check/canopenline.h"
#include "check/versionreader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

/// Major and minor number of this tool.
QString ownVersion()
{
    const QString version = QCoreApplication::applicationVersion();
    const auto dots = version.count(u'.');
    const auto last = version.lastIndexOf(u'.');
    if (dots == 2)
        return version.left(last);
    // a build number behind a patch number of one digit
    return dots == 3 ? version.left(last - 2) : version;
}

/// A folder that does not exist keeps its plain path, so that the message can name it.
QString stackFolder(const QString &path, const QString &projectPath)
{
    if (!QFileInfo(path).isRelative())
        return path;
    const QString joined = projectPath + u'/' + path;
    const QString canonical = QFileInfo(joined).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(joined) : canonical;
}

} // namespace

void CanopenChecks::checkStackVersion(CanopenLine &check)
{
    const QString path = check.settings().text(SettingKey::misc(QStringLiteral("costackpath")));
    if (path.isEmpty()) {
        check.report(CanopenMessage::StackNoPath);
        check.report(CanopenMessage::StackNoPathNote);
        return;
    }
    const QDir folder(stackFolder(path, check.context.projectPath));
    const QStringList files =
        folder.entryList({QStringLiteral("*_featureinfo_*.xml")}, QDir::Files);
    if (files.isEmpty())
        check.report(CanopenMessage::StackNoFeatureFile, {folder.path()});
    const QString own = ownVersion();
    for (const QString &file : files) {
        VersionReader reader;
        reader.setFile(folder.filePath(file));
        const QString required = reader.requiredToolVersion().trimmed();
        if (required == own)
            continue;
        if (required == VersionReader::unknownVersion)
            check.report(CanopenMessage::StackNeedsOlderTool);
        else
            check.report(CanopenMessage::StackNeedsOtherTool, {required, own});
        break;
    }
}

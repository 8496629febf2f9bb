#include "session/versionnotes.h"

#include <QVersionNumber>

#include <array>

namespace {

/// Projects of minor versions below `belowMinor` lack these files.
struct MissingFiles
{
    int belowMinor;
    const char *canopen;
    const char *others;
};

// The first row that fits holds.
constexpr std::array missingFiles{
    MissingFiles{7,
                 "This project has been created by an older version. Please add the file "
                 "co_common.c and co_memcpy.c to your project or makefile.",
                 "This project has been created by an older version. Please add the file "
                 "co_common.c, co_memcpy.c and co_mapping.c to your project or makefile."},
    MissingFiles{9,
                 "This project has been created by an older version. Please add the file "
                 "co_memcpy.c to your project or makefile.",
                 "This project has been created by an older version. Please add the file "
                 "co_memcpy.c and co_mapping.c to your project or makefile."},
};

} // namespace

namespace VersionNotes {

QString missingStackFiles(int minor, bool canopenEdition)
{
    for (const MissingFiles &row : missingFiles) {
        if (minor < row.belowMinor)
            return QString::fromLatin1(canopenEdition ? row.canopen : row.others);
    }
    return {};
}

QString copyKept(const QString &copyPath, const QString &projectPath)
{
    return QStringLiteral("The project had been created using V3.x of the tool. A copy has been "
                          "saved as %1.\n\n")
               .arg(copyPath) +
           QStringLiteral(" In order to use the current project %1 with this version of "
                          "Quillforge, make sure to use the corresponding stack version.")
               .arg(projectPath);
}

QString reapplyEnergyBus()
{
    return QStringLiteral("This project has been created by an older version of the EnergyBus "
                          "Marlwright. It is <strong>required to re-apply EnergyBus "
                          "settings</strong> to update the project.");
}

Version parse(const QString &version)
{
    return {version.section(u'.', 0, 0).toInt(), version.section(u'.', 1, 1).toInt()};
}

bool isOlder(const QString &version, const QString &than)
{
    const QVersionNumber number = QVersionNumber::fromString(version);
    return !number.isNull() && number < QVersionNumber::fromString(than);
}

} // namespace VersionNotes

#pragma once

#include <QString>

/// What a user who opens a project of an older version is to know.
namespace VersionNotes {

/// The note on stack files that a project of version 3.`minor` lacks; empty if it lacks none.
[[nodiscard]] QString missingStackFiles(int minor, bool canopenEdition);
/// The copy of the untouched project that version 3 can still open.
[[nodiscard]] QString copyKept(const QString &copyPath, const QString &projectPath);
[[nodiscard]] QString reapplyEnergyBus();

/// Major and minor number of a version such as "3.6.1"; 0 where there is none.
struct Version
{
    int major = 0;
    int minor = 0;
};
[[nodiscard]] Version parse(const QString &version);
/// Whether `version` is a version at all and older than `than`.
[[nodiscard]] bool isOlder(const QString &version, const QString &than);

} // namespace VersionNotes

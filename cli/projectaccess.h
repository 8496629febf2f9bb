#pragma once

#include <QString>

class GeneratorMainHandler;
class ObjectDataBase;

/// Opening of projects for commands. Each gives an empty text if the project is open, else a
/// sentence that names the file and tells what is wrong with it. The project file is only read.
namespace ProjectAccess {

/// The project as it is in its file.
[[nodiscard]] QString open(ObjectDataBase &store, const QString &path);
/// The project with the upgrades that a generation run expects.
[[nodiscard]] QString open(GeneratorMainHandler &handler, const QString &path);

} // namespace ProjectAccess

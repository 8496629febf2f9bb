#pragma once

#include "resources/builder/datasource.h"

class ObjectDataBase;

/// Writes what a source says into a project file. Owning thread of the store; errors are texts
/// that name the object or file.
class DataWriter
{
public:
    /// Enters everything into a store that was just created; an empty text, or what failed.
    [[nodiscard]] static QString fill(ObjectDataBase &store, const DataSource::Project &project);
    /// Makes a `.data`, `.vxmp` or `.vxmt` file, by the suffix. A former file is replaced only
    /// when the new one is whole, and without a backup. An empty text, or what failed.
    [[nodiscard]] static QString writeFile(const DataSource::Project &project, const QString &path);
};

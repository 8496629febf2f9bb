#pragma once

#include "resources/builder/datasource.h"

#include <QByteArray>

/// What came of reading a source.
struct SourceResult
{
    DataSource::Project project;
    QStringList errors; ///< "file:line: text", in the order in which they were found
    QStringList files;  ///< every file that was read, the source itself first
};

/// Reads the text form of reference data (see `resources/README.md`). Stateless; any thread.
/// A faulty line is reported and left out, and reading goes on, up to 50 errors.
class SourceReader
{
public:
    /// A file with all that it includes.
    [[nodiscard]] static SourceResult readFile(const QString &path);
    /// A text; `file` is its name in errors and the place that includes are relative to.
    [[nodiscard]] static SourceResult readText(const QByteArray &text, const QString &file);
};

#pragma once

#include <QString>

/// Files for benchmarks, in a folder that is gone when the program ends. Main thread only.
namespace BenchmarkSupport {

/// A synthetic project of this size in the form of the suffix; made once, not to be written.
[[nodiscard]] QString projectFile(int count, const char *suffix);
/// The same project as an older version of the program left it: without the columns and tables
/// that have come since.
[[nodiscard]] QString oldSchemaFile(int count);
/// A path in the folder at which no file stands.
[[nodiscard]] QString scratchFile(const char *suffix);
/// The folder.
[[nodiscard]] QString folder();

} // namespace BenchmarkSupport

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The MSBuild property files through which C# wrappers are compiled with the switches of
/// gen_define.h: gen_define.props holds the symbols, Directory.Build.props imports it.
namespace PropsWriter {

/// The macros that a header defines, in their order; those that begin with an underscore are left
/// out, and none comes twice.
[[nodiscard]] QStringList definedSymbols(const QByteArray &header);

/// Writes Directory.Build.props and, if `definePath` is there, gen_define.props into `folder`.
/// False if one of them could not be written.
bool write(const QString &definePath, const QString &folder);

} // namespace PropsWriter

#pragma once

#include <QByteArray>
#include <QString>

/// Makes Electronic Data Sheets (CiA 306) of any size that look like those of devices: variables
/// and records of nine subindices in turn, all usual data types, limits, PDO mapping, default
/// values, descriptions in comment lines. The same size always gives the same bytes.
namespace SyntheticEds {

/// Objects from 0x2000 on; at most 0x9000 of them (CiA 301).
inline constexpr int maximumObjects = 0x9000;
/// What each object has on average, and exactly for even counts.
inline constexpr int subIndicesPerObject = 5;

[[nodiscard]] QByteArray text(int objects);
/// False if the file can't be written.
bool write(const QString &path, int objects);

} // namespace SyntheticEds

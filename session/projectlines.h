#pragma once

#include <QList>
#include <QString>

class ObjectDataBase;

/// The CAN lines of a project as its user knows them, and how one comes to be. Errors are
/// sentences; an empty one means that it was done.
namespace ProjectLines {

/// In ascending order, without the lines that the tool keeps for itself.
[[nodiscard]] QList<quint8> of(ObjectDataBase &store);
/// 0 for a project without lines.
[[nodiscard]] quint8 highest(ObjectDataBase &store);
/// "Line 2 - CANopen".
[[nodiscard]] QString label(ObjectDataBase &store, quint8 line);
/// Whether there is room for one more.
[[nodiscard]] bool mayAdd(ObjectDataBase &store);

void setType(ObjectDataBase &store, quint8 line, int type);
/// Makes the line with the objects that all lines share with line 0. If that one has no CANopen,
/// it gets the mandatory ones of the library's staging line; the library may be null.
[[nodiscard]] QString add(ObjectDataBase &store, quint8 line, int type, ObjectDataBase *library);
/// Makes the line as a copy of another one with everything that it has.
[[nodiscard]] QString duplicate(ObjectDataBase &store, quint8 from, quint8 line);
[[nodiscard]] QString remove(ObjectDataBase &store, quint8 line);

} // namespace ProjectLines

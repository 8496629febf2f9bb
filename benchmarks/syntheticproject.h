#pragma once

#include "store/objectdatabase.h"

#include <QList>
#include <QString>

#include <utility>

/// Makes CANopen projects of any size that look like the ones that engineers have: half of the
/// objects are variables, half records of nine subindices; data types, access rights, limits and
/// implementations of every usual kind; names that partly repeat. The same size always gives the
/// same project, and the model check finds no error in it.
namespace SyntheticProject {

/// Objects lie in the range of manufacturer objects, 0x2000 to 0x5FFF (CiA 301).
inline constexpr int maximumObjects = 0x4000;
/// What each object has on average, and exactly for even counts.
inline constexpr int subIndicesPerObject = 5;

/// `count` objects in ascending order, variables and records in turn.
[[nodiscard]] QList<std::pair<quint16, ObjectDataBase::INDEX_DATA_T>> objects(int count);
/// The subindices of these objects, in ascending order.
[[nodiscard]] QList<ObjectDataBase::SubEntry> subIndices(int count, quint8 line = 0);

/// Adds the objects without their subindices to a line that exists.
bool addObjects(ObjectDataBase &store, int count, quint8 line = 0);
/// Adds what a CANopen line 0 needs to be generated: identity, heartbeat and the stack settings
/// without a default.
bool addDevice(ObjectDataBase &store);
/// Fills a new store with a whole project: device, objects and subindices.
bool fill(ObjectDataBase &store, int count);
/// Makes such a project as a file, `.vxmp` or `.vxmt` by its suffix.
bool write(const QString &path, int count);

} // namespace SyntheticProject

#pragma once

#include "canopen/canopentypes.h"
#include "dictionary/editcontext.h"

#include <QMap>

/// Edits of the records of objects and subindices, as forms show them. Each is done whole or
/// refused with a reason; what is equal to the store is not written.
namespace RecordEdits {

using Record = ObjectDataBase::SUBINDEX_DATA_T;

/// Writes subindices of an object. What follows from their new values is written too: the length in
/// mapping entries of a subindex with another data type, the name of a domain's variable, the kind
/// of implementation in a record that is virtual.
EditResult saveEntries(const EditContext &context, quint16 index,
                       const QMap<quint8, Record> &records);

/// Writes the record of an object. A new data type is taken over by the subindices of an array but
/// 0, and by the value of a variable. A new object type turns the subindices: a variable's value
/// becomes subindex 1 behind a count, and subindex 1 the value of a variable; mapping entries
/// follow. `records` are written before, as by `saveEntries`, under the numbers that they have.
EditResult saveObject(const EditContext &context, quint16 index,
                      const ObjectDataBase::INDEX_DATA_T &data,
                      const QMap<quint8, Record> &records = {});

/// Gives the subindices the default values that the library has for them.
EditResult resetDefaults(const EditContext &context, quint16 index);

/// How many subindices an object loses that gets this object type; the user is asked before.
[[nodiscard]] qsizetype lostSubindices(const EditContext &context, quint16 index,
                                       CANopen::ObjectCode objectCode);

/// Copies one field, with what follows from it in the record.
void copyField(SubIndexField field, const Record &from, Record &to);

} // namespace RecordEdits

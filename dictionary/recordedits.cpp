#include "dictionary/recordedits.h"

#include "canopen/indextext.h"
#include "dictionary/edittransaction.h"
#include "dictionary/entryrules.h"
#include "dictionary/mappinglinks.h"
#include "dictionary/newentries.h"
#include "dictionary/subzero.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {

using Move = MappingFollower::Move;
using Record = RecordEdits::Record;

EditResult notThere(const QString &what)
{
    return EditResult::refused(
        QCoreApplication::translate("RecordEdits", "There is no %1.").arg(what));
}

bool isCompound(quint32 objectCode)
{
    return objectCode == CANopen::ARRAY || objectCode == CANopen::RECORD;
}

/// What follows from the values of a subindex that is written.
void complete(const DictionaryObject &object, DictionaryEntry &entry)
{
    Record &data = entry.data;
    if (data.datatype == CAN::DOMAIN_TYPE && data.varname.isEmpty())
        data.varname = EntryRules::variableName(object.index, entry.subindex);
    const DictionaryEntry *zero = object.find(0);
    if (object.data.objecttype == CANopen::RECORD && entry.subindex > 0 && zero != nullptr &&
        zero->data.implementation == CANopen::VirtualObject)
        data.implementation = CANopen::VirtualObject;
}

/// The value of a variable becomes subindex 1 behind a count.
void makeCompound(DictionaryObject &object, QList<Move> &moves)
{
    DictionaryEntry *value = object.find(0);
    // Subindices that a variable has by mistake stay as they are.
    if (value == nullptr || object.entries.size() > 1)
        return;
    const Move move{{object.index, 0}, {object.index, 1}, object.isShared(*value)};
    DictionaryEntry count = NewEntries::count(1);
    count.data.sharedlines = value->data.sharedlines;
    value->subindex = 1;
    value->data = EntryRules::atPlace(std::move(value->data), move.from, move.to);
    if (value->data.name.isEmpty())
        value->data.name = NewEntries::defaultName(1);
    object.insert(std::move(count));
    moves.append(move);
}

/// Subindex 1, or else the first that is there, becomes the value; the others go.
void makeVariable(DictionaryObject &object, QList<Move> &moves)
{
    const auto value = std::ranges::find_if(
        object.entries, [](const DictionaryEntry &e) { return e.subindex > 0; });
    if (value == object.entries.end())
        return;
    const Move move{{object.index, value->subindex}, {object.index, 0}, object.isShared(*value)};
    DictionaryEntry entry = std::move(*value);
    entry.subindex = 0;
    entry.data = EntryRules::atPlace(std::move(entry.data), move.from, move.to);
    object.entries = {std::move(entry)};
    moves.append(move);
}

/// Brings the subindices in the shape of the object's new type.
void turn(DictionaryObject &object, quint32 former, bool takesType, QList<Move> &moves)
{
    if (object.isCompound() && !isCompound(former))
        makeCompound(object, moves);
    else if (!object.isCompound() && isCompound(former))
        makeVariable(object, moves);
    if (object.isCompound() && object.find(0) == nullptr)
        object.insert(NewEntries::count(object.highest()));
    SubZero::keep(object);
    if (!takesType || object.entries.empty())
        return;
    // The data type of a record is the number of its structure, of which it has none.
    object.data.datatype = object.data.objecttype == CANopen::RECORD
                               ? quint16(0)
                               : object.entries[object.entries.size() > 1 ? 1 : 0].data.datatype;
}

/// Subindices that have the data type of their object.
void takeType(DictionaryObject &object, quint16 dataType, MappingFollower &follower)
{
    const bool isArray = object.data.objecttype == CANopen::ARRAY;
    if (object.isCompound() && !isArray)
        return;
    for (DictionaryEntry &entry : object.entries) {
        if (isArray == (entry.subindex == 0) || entry.data.datatype == dataType)
            continue;
        EntryRules::setDataType(entry.data, dataType);
        complete(object, entry);
        follower.setDataType({object.index, entry.subindex}, dataType, object.isShared(entry));
    }
}

/// Puts the values of subindices in the object, with what follows from them.
EditResult putEntries(const EditContext &context, EditTransaction &edit, DictionaryObject &object,
                      const QMap<quint8, Record> &records)
{
    MappingFollower follower(edit, context.line);
    for (auto record = records.cbegin(); record != records.cend(); ++record) {
        DictionaryEntry *entry = object.find(record.key());
        if (entry == nullptr)
            return notThere(QStringLiteral("subindex %1 of %2")
                                .arg(record.key())
                                .arg(IndexText::hex(object.index)));
        if (entry->data == *record)
            continue;
        EditResult allowed =
            context.rights.change(object.index, record.key(), entry->data, *record);
        if (!allowed)
            return allowed;
        const quint16 former = std::exchange(entry->data, *record).datatype;
        complete(object, *entry);
        if (former == record->datatype)
            continue;
        follower.setDataType({object.index, record.key()}, record->datatype,
                             object.isShared(*entry));
        if (!object.isCompound() && object.data.datatype == former)
            object.data.datatype = record->datatype;
    }
    return EditResult::done();
}

/// Puts the record of the object in it, with what follows for its subindices.
EditResult putObject(const EditContext &context, EditTransaction &edit, DictionaryObject &object,
                     const ObjectDataBase::INDEX_DATA_T &data)
{
    if (object.data == data)
        return EditResult::done();
    if (EditResult allowed = context.rights.change(object.index, object.data, data); !allowed)
        return allowed;
    const ObjectDataBase::INDEX_DATA_T former = std::exchange(object.data, data);
    QList<Move> moves;
    if (former.objecttype != data.objecttype)
        turn(object, former.objecttype, former.datatype == data.datatype, moves);
    MappingFollower follower(edit, context.line);
    follower.follow(moves);
    if (former.datatype != data.datatype)
        takeType(object, data.datatype, follower);
    return EditResult::done();
}

template <auto member>
void copyMember(const Record &from, Record &to)
{
    to.*member = from.*member;
}

struct FieldCopy
{
    SubIndexField field;
    void (*copy)(const Record &, Record &);
};

constexpr std::array fieldCopies = {
    FieldCopy{SubIndexField::Name, &copyMember<&Record::name>},
    FieldCopy{SubIndexField::DataType,
              [](const Record &from, Record &to) {
                  if (from.datatype != to.datatype)
                      EntryRules::setDataType(to, from.datatype);
              }},
    FieldCopy{SubIndexField::AccessType, &copyMember<&Record::accesstype>},
    FieldCopy{SubIndexField::LowLimit, &copyMember<&Record::lowlimit>},
    FieldCopy{SubIndexField::HighLimit, &copyMember<&Record::uplimit>},
    FieldCopy{SubIndexField::PdoMapping, &copyMember<&Record::pdomapping>},
    FieldCopy{SubIndexField::DefaultValue, &copyMember<&Record::defaultvalue>},
    FieldCopy{SubIndexField::CurrentValue, &copyMember<&Record::currentvalue>},
    FieldCopy{SubIndexField::HasDefault, &copyMember<&Record::defaultineds>},
    FieldCopy{SubIndexField::LimitCheck,
              [](const Record &from, Record &to) {
                  if (from.limitineds != to.limitineds)
                      EntryRules::setLimitCheck(to, from.limitineds);
              }},
    FieldCopy{SubIndexField::RefuseRead, &copyMember<&Record::refuseread>},
    FieldCopy{SubIndexField::RefuseWrite, &copyMember<&Record::refusewrite>},
    FieldCopy{SubIndexField::DefaultInEds, &copyMember<&Record::writedefaulttoeds>},
    FieldCopy{SubIndexField::Implementation, &copyMember<&Record::implementation>},
    FieldCopy{SubIndexField::VariableName, &copyMember<&Record::varname>},
    FieldCopy{SubIndexField::Size, &copyMember<&Record::size>},
    FieldCopy{SubIndexField::Shared, &copyMember<&Record::sharedlines>},
    FieldCopy{SubIndexField::NonVolatile, &copyMember<&Record::nvstorage>},
    FieldCopy{SubIndexField::Category, &copyMember<&Record::category>},
    FieldCopy{SubIndexField::Description, &copyMember<&Record::description>},
    FieldCopy{SubIndexField::MetaData, &copyMember<&Record::metadata>},
};

} // namespace

EditResult RecordEdits::saveEntries(const EditContext &context, quint16 index,
                                    const QMap<quint8, Record> &records)
{
    EditTransaction edit(context.store);
    DictionaryObject *object = edit.change(context.line, index);
    if (object == nullptr)
        return notThere(QStringLiteral("object %1").arg(IndexText::hex(index)));
    if (EditResult result = putEntries(context, edit, *object, records); !result)
        return result;
    edit.spreadShared(context.line);
    return edit.commit();
}

EditResult RecordEdits::saveObject(const EditContext &context, quint16 index,
                                   const ObjectDataBase::INDEX_DATA_T &data,
                                   const QMap<quint8, Record> &records)
{
    EditTransaction edit(context.store);
    DictionaryObject *object = edit.change(context.line, index);
    if (object == nullptr)
        return notThere(QStringLiteral("object %1").arg(IndexText::hex(index)));
    ObjectDataBase::INDEX_DATA_T wanted = data;
    const quint16 dataType = object->data.datatype;
    if (EditResult result = putEntries(context, edit, *object, records); !result)
        return result;
    // A variable has followed its value.
    if (wanted.datatype == dataType)
        wanted.datatype = object->data.datatype;
    if (EditResult result = putObject(context, edit, *object, wanted); !result)
        return result;
    edit.spreadShared(context.line);
    return edit.commit();
}

EditResult RecordEdits::resetDefaults(const EditContext &context, quint16 index)
{
    constexpr quint8 staging = ObjectDataBase::stagingLine;
    if (context.library == nullptr || !context.library->indexExists(staging, index))
        return notThere(QStringLiteral("standard object %1").arg(IndexText::hex(index)));
    const DictionaryObject object = readDictionaryObject(context.store, context.line, index);
    QMap<quint8, Record> records;
    for (const DictionaryEntry &entry : object.entries) {
        Record standard;
        // How many subindices there are is not the library's to tell.
        if ((object.isCompound() && entry.subindex == 0) || context.rights.isReadOnly(entry.data) ||
            !context.library->getSubIndexData(staging, index, entry.subindex, standard))
            continue;
        Record data = entry.data;
        data.defaultvalue = standard.defaultvalue;
        data.defaultineds = standard.defaultineds;
        records.insert(entry.subindex, data);
    }
    return saveEntries(context, index, records);
}

qsizetype RecordEdits::lostSubindices(const EditContext &context, quint16 index,
                                      CANopen::ObjectCode objectCode)
{
    const DictionaryObject object = readDictionaryObject(context.store, context.line, index);
    if (!object.isCompound() || isCompound(objectCode))
        return 0;
    const auto values = std::ranges::count_if(
        object.entries, [](const DictionaryEntry &entry) { return entry.subindex > 0; });
    return std::max<qsizetype>(0, values - 1);
}

void RecordEdits::copyField(SubIndexField field, const Record &from, Record &to)
{
    const auto row = std::ranges::find(fieldCopies, field, &FieldCopy::field);
    if (row != fieldCopies.end())
        row->copy(from, to);
}

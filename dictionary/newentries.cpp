#include "dictionary/newentries.h"

#include "canopen/cohelper.h"
#include "dictionary/entryrules.h"

namespace {

using Record = ObjectDataBase::SUBINDEX_DATA_T;

/// The last subindex under the next number.
Record successor(const DictionaryObject &object, const DictionaryEntry &last, quint8 subindex)
{
    Record data =
        EntryRules::atPlace(last.data, {object.index, last.subindex}, {object.index, subindex});
    data.name = EntryRules::raised(data.name);
    if (data.varname == last.data.varname)
        data.varname = EntryRules::raised(data.varname);
    data.managedbytsk = false; // the tool that keeps the last one doesn't know this one
    return data;
}

} // namespace

DictionaryEntry NewEntries::count(quint8 highest)
{
    DictionaryEntry zero = entry(0, QStringLiteral("Highest sub-index supported"));
    zero.data.accesstype = QStringLiteral("const");
    zero.data.implementation = CANopen::ManagedConst;
    zero.data.defaultvalue = QString::number(highest);
    zero.data.defaultineds = true;
    zero.data.writedefaulttoeds = 1;
    return zero;
}

DictionaryEntry NewEntries::entry(quint8 subindex, const QString &name)
{
    DictionaryEntry entry;
    entry.subindex = subindex;
    entry.data.name = name;
    entry.data.datatype = CAN::UNSIGNED8;
    entry.data.accesstype = QStringLiteral("rw");
    entry.data.implementation = CANopen::ManagedVariable;
    entry.data.defaultvalue = QStringLiteral("0");
    COHelper::getDefaultLimits(CAN::UNSIGNED8, entry.data.lowlimit, entry.data.uplimit);
    return entry;
}

DictionaryObject NewEntries::object(quint16 index, CANopen::ObjectCode objectCode)
{
    DictionaryObject object;
    object.index = index;
    object.data.name = QStringLiteral("New object");
    object.data.objecttype = objectCode;
    // The data type of a record is the number of its structure, of which it has none.
    object.data.datatype = objectCode == CANopen::RECORD ? quint16(0) : quint16(CAN::UNSIGNED8);
    if (object.isCompound())
        object.entries = {count(1), entry(1, defaultName(1))};
    else
        object.entries = {entry(0, object.data.name)};
    return object;
}

DictionaryEntry NewEntries::further(const EditContext &context, const DictionaryObject &object,
                                    quint8 subindex)
{
    DictionaryEntry entry = NewEntries::entry(subindex, defaultName(subindex));
    constexpr quint8 staging = ObjectDataBase::stagingLine;
    if (Record prototype;
        context.library != nullptr &&
        context.library->getSubIndexData(staging, object.index, subindex, prototype)) {
        entry.data = prototype;
        return entry;
    }
    // The count is no model for what it counts.
    if (object.highest() > 0)
        entry.data = successor(object, object.entries.back(), subindex);
    const bool isArray = object.data.objecttype == CANopen::ARRAY && object.data.datatype != 0;
    if (isArray && entry.data.datatype != object.data.datatype)
        EntryRules::setDataType(entry.data, object.data.datatype);
    return entry;
}

QString NewEntries::defaultName(quint8 subindex)
{
    return QStringLiteral("Subindex %1").arg(subindex);
}

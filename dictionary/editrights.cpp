#include "dictionary/editrights.h"

#include "canopen/objectranges.h"
#include "dictionary/entryrules.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {

using IndexRecord = ObjectDataBase::INDEX_DATA_T;
using Record = ObjectDataBase::SUBINDEX_DATA_T;

QString tr(const char *text)
{
    return QCoreApplication::translate("EditRights", text);
}

QString expertOnly()
{
    return tr("The action is only supported in the expert mode.");
}

/// What makes up the shape of an object; the other fields are its values.
template <typename R, typename Field>
struct ShapeField
{
    Field field;
    bool (*differs)(const R &, const R &);
};

constexpr std::array objectShape = {
    ShapeField<IndexRecord, ObjectField>{
        ObjectField::Name,
        [](const IndexRecord &a, const IndexRecord &b) { return a.name != b.name; }},
    ShapeField<IndexRecord, ObjectField>{
        ObjectField::ObjectType,
        [](const IndexRecord &a, const IndexRecord &b) { return a.objecttype != b.objecttype; }},
    ShapeField<IndexRecord, ObjectField>{
        ObjectField::DataType,
        [](const IndexRecord &a, const IndexRecord &b) { return a.datatype != b.datatype; }},
    ShapeField<IndexRecord, ObjectField>{
        ObjectField::ObjectClass,
        [](const IndexRecord &a, const IndexRecord &b) { return a.deviceclass != b.deviceclass; }},
    ShapeField<IndexRecord, ObjectField>{
        ObjectField::Category,
        [](const IndexRecord &a, const IndexRecord &b) { return a.category != b.category; }},
};

constexpr std::array subIndexShape = {
    ShapeField<Record, SubIndexField>{
        SubIndexField::Name, [](const Record &a, const Record &b) { return a.name != b.name; }},
    ShapeField<Record, SubIndexField>{
        SubIndexField::DataType,
        [](const Record &a, const Record &b) { return a.datatype != b.datatype; }},
    ShapeField<Record, SubIndexField>{
        SubIndexField::AccessType,
        [](const Record &a, const Record &b) { return a.accesstype != b.accesstype; }},
    ShapeField<Record, SubIndexField>{
        SubIndexField::PdoMapping,
        [](const Record &a, const Record &b) { return a.pdomapping != b.pdomapping; }},
    ShapeField<Record, SubIndexField>{
        SubIndexField::Category,
        [](const Record &a, const Record &b) { return a.category != b.category; }},
    ShapeField<Record, SubIndexField>{
        SubIndexField::Implementation,
        [](const Record &a, const Record &b) { return a.implementation != b.implementation; }},
};

template <typename Shape, typename Field>
bool isShape(const Shape &shape, Field field)
{
    return std::ranges::any_of(shape, [field](const auto &row) { return row.field == field; });
}

/// Fields that mean something for some records only.
EditResult useOf(SubIndexField field, const Record &record)
{
    const bool hasLimits = EntryRules::hasLimitCheck(record.datatype);
    switch (field) {
    case SubIndexField::LowLimit:
    case SubIndexField::HighLimit:
        if (!hasLimits)
            return EditResult::refused(tr("The data type has no limits."));
        if (!record.limitineds)
            return EditResult::refused(tr("The limit check is off."));
        break;
    case SubIndexField::LimitCheck:
        if (!hasLimits)
            return EditResult::refused(tr("The data type has no limits."));
        break;
    case SubIndexField::Size:
        if (!EntryRules::hasSize(record.datatype))
            return EditResult::refused(tr("The size follows from the data type."));
        break;
    case SubIndexField::VariableName:
        if (record.implementation != CANopen::Variable &&
            record.implementation != CANopen::VirtualObject)
            return EditResult::refused(
                tr("Only application variables and virtual objects have a name."));
        break;
    default:
        break;
    }
    return EditResult::done();
}

} // namespace

bool EditRights::mayRestructure(quint16 index) const
{
    return m_flags.expert || ObjectRanges::manufacturer.contains(index);
}

EditResult EditRights::restructure(quint16 index) const
{
    return mayRestructure(index) ? EditResult::done() : EditResult::refused(expertOnly());
}

ObjectRange EditRights::targets() const
{
    return m_flags.expert ? ObjectRanges::device : ObjectRanges::manufacturer;
}

EditResult EditRights::addByHand(quint32 index) const
{
    if (index > ObjectRanges::device.high)
        return EditResult::refused(tr("An index is a number up to 0xFFFF."));
    if (index < ObjectRanges::manufacturer.low)
        return EditResult::refused(
            tr("It is not allowed to add an index in the communication segment manually. Please "
               "use 'add service' or import an object."));
    return restructure(static_cast<quint16>(index));
}

bool EditRights::isReadOnly(const Record &record) const
{
    return record.managedbytsk && !m_flags.ignoreStack;
}

EditResult EditRights::edit(quint16 index, ObjectField field) const
{
    return isShape(objectShape, field) ? restructure(index) : EditResult::done();
}

EditResult EditRights::edit(quint16 index, quint8 subindex, const Record &record,
                            SubIndexField field) const
{
    if (isReadOnly(record))
        return EditResult::refused(tr("The network tool keeps this subindex. The setting "
                                      "'ignoretsk' lets you edit it all the same."));
    const bool isImplementation =
        field == SubIndexField::Implementation || field == SubIndexField::VariableName;
    if (isImplementation && !m_flags.ignoreStack && EntryRules::isManagedByStack(index, subindex))
        return EditResult::refused(tr("Not editable - managed by stack"));
    if (isShape(subIndexShape, field) && field != SubIndexField::Implementation &&
        !mayRestructure(index))
        return EditResult::refused(expertOnly());
    return useOf(field, record);
}

EditResult EditRights::change(quint16 index, quint8 subindex, const Record &before,
                              const Record &after) const
{
    if (before != after && isReadOnly(before))
        return edit(index, subindex, before, SubIndexField::Description);
    for (const auto &row : subIndexShape) {
        if (!row.differs(before, after))
            continue;
        if (EditResult allowed = edit(index, subindex, before, row.field); !allowed)
            return allowed;
    }
    return EditResult::done();
}

EditResult EditRights::change(quint16 index, const IndexRecord &before,
                              const IndexRecord &after) const
{
    for (const auto &row : objectShape) {
        if (!row.differs(before, after))
            continue;
        if (EditResult allowed = edit(index, row.field); !allowed)
            return allowed;
    }
    return EditResult::done();
}

QStringList offeredAccessTypes(const Record &record)
{
    static const QStringList all = {QStringLiteral("const"), QStringLiteral("ro"),
                                    QStringLiteral("wo"),    QStringLiteral("rw"),
                                    QStringLiteral("rwr"),   QStringLiteral("rww")};
    const QStringList allowed = record.allowedaccesstypes.split(u',', Qt::SkipEmptyParts);
    QStringList offered;
    for (const QString &type : all) {
        const bool isAllowed =
            allowed.isEmpty() || std::ranges::any_of(allowed, [&](const QString &text) {
                return text.trimmed() == type;
            });
        if (isAllowed)
            offered.append(type);
    }
    if (!record.accesstype.isEmpty() && !offered.contains(record.accesstype))
        offered.append(record.accesstype);
    return offered;
}

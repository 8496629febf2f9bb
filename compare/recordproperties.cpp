#include "compare/recordproperties.h"

#include "canopen/cohelper.h"
#include "store/recordcolumns.h"

#include <type_traits>

namespace RecordProperties {

namespace {

// --- values in words ----------------------------------------------------------------------------

template <typename Value>
QString plain(const Value &value)
{
    if constexpr (std::is_same_v<Value, bool>)
        return value ? QStringLiteral("yes") : QStringLiteral("no");
    else if constexpr (std::is_integral_v<Value>)
        return QString::number(value);
    else if constexpr (std::is_same_v<Value, PDOMapping>)
        return value.label();
    else
        return value;
}

/// A name, or the number where there is none: two values never read alike.
QString named(const QString &name, quint32 value)
{
    return name.isEmpty() ? QString::number(value) : name;
}

QString dataType(quint32 value)
{
    return named(COHelper::index2DataTypeString(quint16(value)), value);
}

QString objectCode(quint32 value)
{
    return named(COHelper::objectCode2String(value), value);
}

QString category(quint32 value)
{
    return named(COHelper::category2String(quint8(value)), value);
}

QString implementation(quint32 value)
{
    return named(COHelper::implementation2String(quint8(value)), value);
}

/// As the column of a flag holds it.
QString number(quint32 value)
{
    return QString::number(value);
}

QString edsDefault(quint32 value)
{
    constexpr const char *texts[] = {"no", "as defaultvalue", "yes"};
    return value < std::size(texts) ? QString::fromLatin1(texts[value]) : QString::number(value);
}

// --- tables -------------------------------------------------------------------------------------

template <typename Class, typename Type>
Class recordOf(Type Class::*);

using Words = QString (*)(quint32);

/// One member of a record; `words` tells numbers that have names.
template <auto member, Words words = nullptr>
constexpr auto property(const char *name, Shown shown = Shown::Always)
{
    using Record = decltype(recordOf(member));
    return Property<Record>{name,
                            [](const Record &a, const Record &b) { return a.*member == b.*member; },
                            [](const Record &record) {
                                if constexpr (words != nullptr)
                                    return words(quint32(record.*member));
                                else
                                    return plain(record.*member);
                            },
                            shown};
}

using Object = ObjectDataBase::INDEX_DATA_T;
using SubIndex = ObjectDataBase::SUBINDEX_DATA_T;
using PGN = ObjectDataBase::PGN;
using SPN = ObjectDataBase::SPN;
using CANID = ObjectDataBase::CANID;
using Element = ObjectDataBase::DataElement;
using Node = ObjectDataBase::NODE_DATA_T;
using enum Shown;

constexpr Property<Object> objectProperties[] = {
    property<&Object::name>("Name"),
    property<&Object::objecttype, objectCode>("ObjectType"),
    property<&Object::datatype, dataType>("DataType"),
    property<&Object::category, category>("Category"),
    property<&Object::deviceclass>("ObjectClass", IfDifferent),
    property<&Object::fwsupported>("FWSupport", IfDifferent),
    property<&Object::description>("Description", IfDifferent),
};

constexpr Property<SubIndex> subIndexProperties[] = {
    property<&SubIndex::name>("Name"),
    property<&SubIndex::datatype, dataType>("DataType"),
    property<&SubIndex::accesstype>("AccessType"),
    property<&SubIndex::defaultvalue>("DefaultValue"),
    property<&SubIndex::pdomapping>("PdoMapping"),
    property<&SubIndex::lowlimit>("LowerLimit"),
    property<&SubIndex::uplimit>("UpperLimit"),
    property<&SubIndex::size>("Size"),
    property<&SubIndex::implementation, implementation>("Implementation"),
    property<&SubIndex::varname>("VariableName"),
    property<&SubIndex::category, category>("Category"),
    property<&SubIndex::nvstorage>("NonVolatileStorage", IfDifferent),
    property<&SubIndex::sharedlines>("SharedInAllLines", IfDifferent),
    property<&SubIndex::defaultineds>("HasDefault", IfDifferent),
    property<&SubIndex::writedefaulttoeds, edsDefault>("DefaultInEDS", IfDifferent),
    property<&SubIndex::limitineds>("LimitCheck", IfDifferent),
    property<&SubIndex::refuseread>("RefuseRead", IfDifferent),
    property<&SubIndex::refusewrite>("RefuseWrite", IfDifferent),
    property<&SubIndex::allowedaccesstypes>("AllowedAccessTypes", IfDifferent),
    property<&SubIndex::currentvalue>("CurrentValue", IfDifferent),
    property<&SubIndex::denotation>("Denotation", IfDifferent),
    property<&SubIndex::description>("Description", IfDifferent),
    property<&SubIndex::dcfcomponent>("DcfComponent", IfDifferent),
    property<&SubIndex::cyclicread>("CyclicRead", IfDifferent),
    property<&SubIndex::signalid>("SignalId", IfDifferent),
    property<&SubIndex::wizardsource>("WizardSource", Internal),
    property<&SubIndex::changedbyuser>("ChangedByUser", Internal),
    property<&SubIndex::managedbytsk>("ManagedByStack", Internal),
};

constexpr Property<PGN> pgnProperties[] = {
    property<&PGN::name>("Name"),
    property<&PGN::priority>("Priority"),
    property<&PGN::cycleTime>("CycleTime"),
    property<&PGN::inhibitTime>("InhibitTime"),
    property<&PGN::desc>("Description", IfDifferent),
    property<&PGN::isSafe>("Safe", IfDifferent),
    property<&PGN::srvt>("SRVT", IfDifferent),
    property<&PGN::safetyType>("SafetyType", IfDifferent),
    property<&PGN::fdTrailerFormat>("FDTrailerFormat", IfDifferent),
    property<&PGN::fdAssuranceType>("FDAssuranceType", IfDifferent),
    property<&PGN::fdAssuranceDataSize>("FDAssuranceDataSize", IfDifferent),
    property<&PGN::fdDataId>("FDDataId", IfDifferent),
    property<&PGN::multiSourceAddress>("MultiSourceAddress", IfDifferent),
    property<&PGN::edpDpKey>("PageKey", IfDifferent),
    property<&PGN::mappingCount>("MappingCount", Internal),
};

constexpr Property<SPN> spnProperties[] = {
    property<&SPN::name>("Name"),
    property<&SPN::dataType, dataType>("DataType"),
    property<&SPN::defaultValue>("DefaultValue"),
    property<&SPN::bitPosition>("BitPosition"),
    property<&SPN::bitSize>("BitSize"),
    property<&SPN::implementation, implementation>("Implementation"),
    property<&SPN::varName>("VariableName"),
    property<&SPN::pos>("Position", IfDifferent),
    property<&SPN::slotDf>("SLOT", IfDifferent),
    property<&SPN::desc>("Description", IfDifferent),
};

constexpr Property<CANID> canIdProperties[] = {
    property<&CANID::name>("Name"),
    property<&CANID::cycleTime>("CycleTime"),
    property<&CANID::inhibitTime>("InhibitTime"),
    property<&CANID::desc>("Description", IfDifferent),
    property<&CANID::mappingCount>("MappingCount", Internal),
};

constexpr Property<Element> elementProperties[] = {
    property<&Element::name>("Name"),
    property<&Element::dataType, dataType>("DataType"),
    property<&Element::defaultValue>("DefaultValue"),
    property<&Element::bitPos>("BitPosition"),
    property<&Element::bitSize>("BitSize"),
    property<&Element::implementation, implementation>("Implementation"),
    property<&Element::varName>("VariableName"),
    property<&Element::pos>("Position", IfDifferent),
    property<&Element::desc>("Description", IfDifferent),
};

constexpr Property<Node> nodeProperties[] = {
    property<&Node::name>("name"),
    property<&Node::iconpath>("iconpath"),
    property<&Node::edspath>("edspath"),
    property<&Node::dcfpath>("dcfpath"),
    property<&Node::xddpath>("xddpath"),
    property<&Node::tpdocnt>("tpdocnt"),
    property<&Node::rpdocnt>("rpdocnt"),
    property<&Node::prefix>("prefix"),
    property<&Node::outputpath>("outputpath"),
    property<&Node::ismaster, number>("ismaster"),
    property<&Node::issyncproducer, number>("issyncproducer"),
    property<&Node::issyncconsumer, number>("issyncconsumer"),
    property<&Node::ishbconsumer, number>("ishbconsumer"),
    property<&Node::isemergencyproducer, number>("isemergencyproducer"),
    property<&Node::isemergencyconsumer, number>("isemergencyconsumer"),
    property<&Node::ismpdosupported, number>("ismpdosupported"),
    property<&Node::iscanopengateway, number>("iscanopengateway"),
    property<&Node::allpdosstatic, number>("allpdosstatic"),
    property<&Node::excludegeneration, number>("excludegeneration"),
    property<&Node::generatedcf, number>("generatedcf"),
    property<&Node::isbootupmanager, number>("isbootupmanager"),
    property<&Node::isconfigmanager, number>("isconfigmanager"),
    property<&Node::excludepdolinking, number>("excludepdolinking"),
    property<&Node::multilinedata>("multilinedata"),
    property<&Node::lssslave, number>("lssslave"),
};

/// Every column that isn't part of a key is compared; metadata are told by key.
template <typename Record, size_t count>
constexpr bool isComplete(const Property<Record> (&)[count])
{
    return count == RecordColumns::comparedColumns<Record>;
}
static_assert(isComplete(objectProperties));
static_assert(isComplete(subIndexProperties));
static_assert(isComplete(pgnProperties));
static_assert(isComplete(spnProperties));
static_assert(isComplete(canIdProperties));
static_assert(isComplete(elementProperties));
static_assert(isComplete(nodeProperties));

} // namespace

template <>
std::span<const Property<Object>> properties()
{
    return objectProperties;
}

template <>
std::span<const Property<SubIndex>> properties()
{
    return subIndexProperties;
}

template <>
std::span<const Property<PGN>> properties()
{
    return pgnProperties;
}

template <>
std::span<const Property<SPN>> properties()
{
    return spnProperties;
}

template <>
std::span<const Property<CANID>> properties()
{
    return canIdProperties;
}

template <>
std::span<const Property<Element>> properties()
{
    return elementProperties;
}

template <>
std::span<const Property<Node>> properties()
{
    return nodeProperties;
}

void appendMetaData(QList<PropertyRow> &rows, const ObjectDataBase::MetaData &current,
                    const ObjectDataBase::MetaData &other, bool all)
{
    ObjectDataBase::MetaData keys = current;
    keys.insert(other);
    for (auto key = keys.keyBegin(); key != keys.keyEnd(); ++key) {
        const bool differs = current.contains(*key) != other.contains(*key) ||
                             current.value(*key) != other.value(*key);
        if (all || differs) {
            rows.append({QStringLiteral("MetaData: %1").arg(*key), current.value(*key),
                         other.value(*key), differs});
        }
    }
}

} // namespace RecordProperties

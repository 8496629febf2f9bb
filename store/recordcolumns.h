#pragma once

#include "store/records.h"

#include <QStringList>

#include <tuple>
#include <type_traits>

/// How the records lie in their tables: the one list of columns a record, by which the schema is
/// made and records are written, read, cached and compared. A new member of a record is one row
/// here (and one in `compare/recordproperties.cpp`, which won't compile without it).
namespace RecordColumns {

enum class Form : quint8 {
    Plain,   ///< the value itself
    StringId ///< a text's number in `Strings`
};
enum class Role : quint8 {
    Value,
    Key,       ///< part of what the row is found by
    InsertOnly ///< an update leaves it alone
};

/// A column that holds a member. `definition` is the exact text between two commas of the statement
/// that makes the table, blanks included: it is part of the file format.
template <auto memberPointer, Form columnForm = Form::Plain, Role columnRole = Role::Value>
struct Column
{
    static constexpr auto member = memberPointer;
    static constexpr Form form = columnForm;
    static constexpr Role role = columnRole;
    const char *definition;
};

/// A part of the row's key that is no member of the record.
struct KeyColumn
{
    static constexpr Form form = Form::Plain;
    static constexpr Role role = Role::Key;
    const char *definition;
};

/// Name of a record's table (without the line) and its columns in the schema's order.
template <typename Record>
struct Table;

template <>
struct Table<Records::Node>
{
    using R = Records::Node;
    static constexpr const char *name = "Nodes";
    static constexpr std::tuple columns{
        KeyColumn{"nodeId integer primary key"},
        Column<&R::name>{" name text"},
        Column<&R::edspath>{" edspath text"},
        Column<&R::xddpath>{" xddpath text"},
        Column<&R::dcfpath>{" dcfpath text"},
        Column<&R::tpdocnt>{" tpdocnt integer"},
        Column<&R::rpdocnt>{" rpdocnt integer"},
        Column<&R::ismaster>{" ismaster integer"},
        Column<&R::issyncproducer>{" issyncproducer integer"},
        Column<&R::issyncconsumer>{" issyncconsumer integer"},
        Column<&R::ishbconsumer>{" ishbconsumer integer"},
        Column<&R::isemergencyproducer>{" isemergencyproducer integer"},
        Column<&R::isemergencyconsumer>{" isemergencyconsumer integer"},
        Column<&R::ismpdosupported>{" ismpdosupported integer"},
        Column<&R::iscanopengateway>{" iscanopengateway integer"},
        Column<&R::allpdosstatic>{" allpdosstatic integer"},
        Column<&R::excludegeneration>{" excludegeneration integer"},
        Column<&R::generatedcf>{" generatedcf integer"},
        Column<&R::prefix>{" prefix text"},
        Column<&R::outputpath>{" outputpath text"},
        Column<&R::iconpath>{" iconpath text"},
        Column<&R::isbootupmanager, Form::Plain, Role::InsertOnly>{" isbootupmanager integer"},
        Column<&R::isconfigmanager, Form::Plain, Role::InsertOnly>{" isconfigmanager integer"},
        Column<&R::excludepdolinking, Form::Plain, Role::InsertOnly>{" excludepdolinking integer"},
        Column<&R::multilinedata, Form::Plain, Role::InsertOnly>{" multilinedata integer"},
        Column<&R::lssslave, Form::Plain, Role::InsertOnly>{" lssslave"}};
};

template <>
struct Table<Records::Index>
{
    using R = Records::Index;
    static constexpr const char *name = "Objects";
    static constexpr std::tuple columns{
        KeyColumn{"objectindex integer primary key"},
        Column<&R::name, Form::StringId>{" name integer"},
        Column<&R::datatype>{" datatype integer not null"},
        Column<&R::objecttype>{" objecttype integer not null"},
        Column<&R::description, Form::StringId>{" description integer"},
        Column<&R::category>{" category integer"},
        Column<&R::deviceclass, Form::StringId>{" device_class integer"},
        Column<&R::fwsupported>{" fwsupported integer"},
        Column<&R::metadata, Form::Plain, Role::InsertOnly>{" metadata blob"}};
};

template <>
struct Table<Records::SubIndex>
{
    using R = Records::SubIndex;
    static constexpr const char *name = "SubObjects";
    static constexpr std::tuple columns{
        KeyColumn{"objectindex integer not null"},
        KeyColumn{" subindex integer not null"},
        Column<&R::name, Form::StringId>{" name integer"},
        Column<&R::datatype>{" datatype integer not null"},
        Column<&R::accesstype>{" accesstype text not null"},
        Column<&R::defaultvalue>{" defaultvalue text"},
        Column<&R::currentvalue>{" currentvalue text"},
        Column<&R::pdomapping>{" pdomapping integer"},
        Column<&R::lowlimit>{"lowlimit text"},
        Column<&R::uplimit>{" uplimit text"},
        Column<&R::size>{" size integer"},
        Column<&R::defaultineds>{" defaultineds integer"},
        Column<&R::limitineds>{" limitineds integer"},
        Column<&R::refuseread>{" refuseread integer"},
        Column<&R::refusewrite>{" refusewrite integer"},
        Column<&R::allowedaccesstypes>{" allowedaccesstypes text"},
        Column<&R::implementation>{" implementation integer not null"},
        Column<&R::varname>{" varname text"},
        Column<&R::description, Form::StringId>{" description integer"},
        Column<&R::category>{" category integer"},
        Column<&R::writedefaulttoeds>{" writedefaulttoeds integer"},
        Column<&R::cyclicread>{" cyclicread integer"},
        Column<&R::dcfcomponent>{" dcfcomponent integer"},
        Column<&R::changedbyuser>{" changedbyuser integer"},
        Column<&R::wizardsource>{" wizardsource integer"},
        Column<&R::denotation, Form::StringId>{" denotation integer"},
        Column<&R::sharedlines>{" sharedlines integer"},
        Column<&R::managedbytsk>{" managedbytsk integer"},
        Column<&R::signalid>{" signalid integer"},
        Column<&R::nvstorage>{" nvstorage integer"},
        Column<&R::metadata>{"metadata blob"}};
};

template <>
struct Table<Records::PGN>
{
    using R = Records::PGN;
    static constexpr const char *name = "PGNs";
    static constexpr std::tuple columns{
        Column<&R::number, Form::Plain, Role::Key>{"number integer not null"},
        Column<&R::edpDpKey>{" edp_dp_key integer"},
        Column<&R::priority>{" priority integer"},
        Column<&R::cycleTime>{" cycletime_ms integer"},
        Column<&R::inhibitTime>{" inhibittime_ms integer"},
        Column<&R::mappingCount>{" mappingcount integer"},
        Column<&R::direction, Form::Plain, Role::Key>{" direction integer"},
        Column<&R::name, Form::StringId>{" name integer"},
        Column<&R::desc, Form::StringId>{" desc integer"},
        Column<&R::isSafe>{"issafe integer"},
        Column<&R::srvt>{"srvt_ms integer"},
        Column<&R::fdTrailerFormat>{" FD_TrailerFormat integer"},
        Column<&R::fdAssuranceType>{"FD_AssuranceType integer"},
        Column<&R::fdAssuranceDataSize>{"FD_AssuranceDataSize integer"},
        Column<&R::multiSourceAddress>{"multisourceaddress integer"},
        Column<&R::safetyType>{"safetytype integer"},
        Column<&R::fdDataId>{"FD_DataId integer"}};
};

template <>
struct Table<Records::SPN>
{
    using R = Records::SPN;
    static constexpr const char *name = "SPNs";
    static constexpr std::tuple columns{
        Column<&R::pgn, Form::Plain, Role::Key>{"pgnnumber integer not null"},
        Column<&R::spn, Form::Plain, Role::Key>{" spnnumber integer not null"},
        Column<&R::dataType>{" datatype integer"},
        Column<&R::implementation>{" implementation integer"},
        Column<&R::varName>{" varname text"},
        Column<&R::defaultValue>{" defaultvalue text"},
        Column<&R::name, Form::StringId>{" name integer"},
        Column<&R::desc, Form::StringId>{" desc integer"},
        Column<&R::pos>{" pos integer"},
        Column<&R::bitSize>{" bitsize integer"},
        Column<&R::direction, Form::Plain, Role::Key>{" direction integer"},
        Column<&R::slotDf>{" slot_df integer"},
        Column<&R::bitPosition>{" bitposition integer"}};
};

template <>
struct Table<Records::CANID>
{
    using R = Records::CANID;
    static constexpr const char *name = "CANIDs";
    static constexpr std::tuple columns{
        Column<&R::id, Form::Plain, Role::Key>{"id integer not null"},
        Column<&R::cycleTime>{" cycletime_ms integer"},
        Column<&R::inhibitTime>{" inhibittime_ms integer"},
        Column<&R::mappingCount>{" mappingcount integer"},
        Column<&R::direction, Form::Plain, Role::Key>{" direction integer"},
        Column<&R::name, Form::StringId>{" name integer"},
        Column<&R::desc, Form::StringId>{" desc integer"}};
};

template <>
struct Table<Records::DataElement>
{
    using R = Records::DataElement;
    static constexpr const char *name = "DataElements";
    static constexpr std::tuple columns{
        Column<&R::canId, Form::Plain, Role::Key>{"canid integer not null"},
        Column<&R::number, Form::Plain, Role::Key>{" number integer not null"},
        Column<&R::dataType>{" datatype integer"},
        Column<&R::implementation>{" implementation integer"},
        Column<&R::varName>{" varname text"},
        Column<&R::defaultValue>{" defaultvalue text"},
        Column<&R::name, Form::StringId>{" name integer"},
        Column<&R::desc, Form::StringId>{" desc integer"},
        Column<&R::pos, Form::Plain, Role::InsertOnly>{" pos integer"},
        Column<&R::bitSize, Form::Plain, Role::InsertOnly>{" bitsize integer"},
        Column<&R::direction, Form::Plain, Role::Key>{" direction integer"},
        Column<&R::bitPos>{" bitpos integer"}};
};

template <typename Record, typename Visit>
void forEachColumn(const Visit &visit)
{
    std::apply([&](const auto &...column) { (visit(column), ...); }, Table<Record>::columns);
}

template <typename C, typename Values, typename Field>
void visitMember(Values &values, Field &field)
{
    using Value = std::remove_const_t<Field>;
    if constexpr (C::form == Form::StringId)
        values.string(field);
    else if constexpr (std::is_same_v<Value, QString>)
        values.text(field);
    else if constexpr (std::is_same_v<Value, PDOMapping>)
        values.mapping(field);
    else if constexpr (std::is_same_v<Value, Records::MetaData>)
        values.metaData(field);
    else
        values.number(field);
}

/// Shows a record's values in the order of the columns to a reader or writer.
template <typename Values, typename Record>
void visit(Values &values, Record &data)
{
    forEachColumn<std::remove_const_t<Record>>([&]<typename C>(const C &) {
        if constexpr (std::is_same_v<C, KeyColumn>)
            values.nextKey();
        else
            visitMember<C>(values, data.*C::member);
    });
}

/// What stands between the parentheses of the statement that makes the table.
template <typename Record>
[[nodiscard]] QByteArray definition()
{
    QByteArrayList parts;
    forEachColumn<Record>([&](const auto &column) { parts.append(column.definition); });
    return parts.join(',');
}

[[nodiscard]] inline QString columnName(const char *definition)
{
    return QString::fromLatin1(definition).trimmed().section(u' ', 0, 0);
}

/// Names of all columns, or of those that are texts' numbers.
template <typename Record>
[[nodiscard]] QStringList columnNames(bool onlyStringIds = false)
{
    QStringList names;
    forEachColumn<Record>([&]<typename C>(const C &column) {
        if (!onlyStringIds || C::form == Form::StringId)
            names.append(columnName(column.definition));
    });
    return names;
}

/// The columns that tell rows apart in a comparison: neither keys nor metadata.
template <typename Record>
constexpr size_t comparedColumns = std::apply(
    []<typename... C>(const C &...) {
        const auto isCompared = []<typename One>(const One *) {
            if constexpr (std::is_same_v<One, KeyColumn>)
                return false;
            else
                return One::role != Role::Key &&
                       !std::is_same_v<decltype(std::declval<Record>().*One::member),
                                       Records::MetaData &&>;
        };
        return (size_t(isCompared(static_cast<const C *>(nullptr))) + ...);
    },
    Table<Record>::columns);

/// Takes what an update leaves alone from the record as it was.
template <typename Record>
void keepUnwritten(Record &record, const Record &former)
{
    forEachColumn<Record>([&]<typename C>(const C &) {
        if constexpr (C::role == Role::InsertOnly)
            record.*C::member = former.*C::member;
    });
}

/// Whether a text of the record comes back from the database as another one: SQL knows neither NUL
/// nor half of a surrogate pair.
template <typename Record>
[[nodiscard]] bool hasOddText(const Record &record)
{
    bool odd = false;
    forEachColumn<Record>([&]<typename C>(const C &) {
        if constexpr (!std::is_same_v<C, KeyColumn>) {
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(record.*C::member)>,
                                         QString>) {
                const QString &text = record.*C::member;
                odd |= text.contains(QChar(u'\0')) || !text.isValidUtf16();
            }
        }
    });
    return odd;
}

/// "column = value" for each column that an update writes; `values` are literals of all columns, or
/// empty for places.
template <typename Record>
[[nodiscard]] QString assignments(const QStringList &values)
{
    QStringList terms;
    qsizetype i = 0;
    forEachColumn<Record>([&]<typename C>(const C &column) {
        const QString value = values.isEmpty() ? QStringLiteral("?") : values.at(i++);
        if (C::role == Role::Value)
            terms.append(columnName(column.definition) + u'=' + value);
    });
    return terms.join(u',');
}

/// Passes on what an update writes, in the order of `assignments`, and the texts of the other
/// columns not at all.
template <typename Values, typename Record>
void visitUpdated(Values &values, Record &data)
{
    forEachColumn<std::remove_const_t<Record>>([&]<typename C>(const C &) {
        if constexpr (C::role == Role::Value)
            visitMember<C>(values, data.*C::member);
    });
}

} // namespace RecordColumns

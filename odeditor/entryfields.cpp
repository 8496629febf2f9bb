#include "odeditor/entryfields.h"

#include "canopen/cohelper.h"
#include "canopen/valuetext.h"
#include "dictionary/entryrules.h"
#include "dictionary/recordedits.h"
#include "gui/basetreeform.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QSignalBlocker>

#include <algorithm>
#include <array>
#include <limits>

namespace {

using EntryFields::Kind;
using EntryFields::Record;

constexpr qsizetype longestValue = 4096;

QString tr(const char *text)
{
    return QCoreApplication::translate("EntryFields", text);
}

template <auto member>
QVariant get(const Record &record)
{
    return QVariant::fromValue(record.*member);
}

template <auto member>
void put(Record &record, const QVariant &value)
{
    record.*member = value.value<std::remove_cvref_t<decltype(record.*member)>>();
}

QVariant getMapping(const Record &record)
{
    return QVariant::fromValue(record.pdomapping.toUInt());
}

void putMapping(Record &record, const QVariant &value)
{
    record.pdomapping.setValue(static_cast<PDOMapping::PDOMappingType>(value.toUInt()));
}

void putDefault(Record &record, const QVariant &value)
{
    record.defaultvalue = value.toString();
    record.defaultineds = true; // who types a default value wants it to count
}

struct Row
{
    SubIndexField field;
    Kind kind;
    QVariant (*get)(const Record &);
    void (*put)(Record &, const QVariant &);
};

template <auto member>
constexpr Row row(SubIndexField field, Kind kind)
{
    return {field, kind, &get<member>, &put<member>};
}

// The order in which changes are taken over: what follows from a field stands behind it.
constexpr std::array rows{
    row<&Record::name>(SubIndexField::Name, Kind::Text),
    row<&Record::datatype>(SubIndexField::DataType, Kind::Choice),
    row<&Record::accesstype>(SubIndexField::AccessType, Kind::Choice),
    Row{SubIndexField::PdoMapping, Kind::Choice, &getMapping, &putMapping},
    row<&Record::limitineds>(SubIndexField::LimitCheck, Kind::Check),
    row<&Record::lowlimit>(SubIndexField::LowLimit, Kind::Value),
    row<&Record::uplimit>(SubIndexField::HighLimit, Kind::Value),
    Row{SubIndexField::DefaultValue, Kind::Value, &get<&Record::defaultvalue>, &putDefault},
    row<&Record::currentvalue>(SubIndexField::CurrentValue, Kind::Value),
    row<&Record::defaultineds>(SubIndexField::HasDefault, Kind::Check),
    row<&Record::refuseread>(SubIndexField::RefuseRead, Kind::Check),
    row<&Record::refusewrite>(SubIndexField::RefuseWrite, Kind::Check),
    row<&Record::writedefaulttoeds>(SubIndexField::DefaultInEds, Kind::Choice),
    row<&Record::implementation>(SubIndexField::Implementation, Kind::Choice),
    row<&Record::varname>(SubIndexField::VariableName, Kind::Text),
    row<&Record::size>(SubIndexField::Size, Kind::Value),
    row<&Record::sharedlines>(SubIndexField::Shared, Kind::Check),
    row<&Record::nvstorage>(SubIndexField::NonVolatile, Kind::Check),
    row<&Record::description>(SubIndexField::Description, Kind::Text),
    Row{SubIndexField::MetaData, Kind::Text,
        [](const Record &record) { return QVariant::fromValue(record.metadata); },
        [](Record &record, const QVariant &value) {
            record.metadata = value.value<ObjectDataBase::MetaData>();
        }},
};

const Row &rowOf(SubIndexField field)
{
    const auto found = std::ranges::find(rows, field, &Row::field);
    Q_ASSERT(found != rows.end());
    return *found;
}

QString labelOf(SubIndexField field, const QVariant &value)
{
    static const QStringList inEds = {QStringLiteral("no"), QStringLiteral("as defaultvalue"),
                                      QStringLiteral("yes")};
    QString label;
    switch (field) {
    case SubIndexField::DataType:
        label = COHelper::index2DataTypeString(quint16(value.toUInt()));
        break;
    case SubIndexField::AccessType:
        label = COHelper::accessType2String(value.toString());
        break;
    case SubIndexField::PdoMapping:
        label = COHelper::pdoMapping2String(
            PDOMapping(static_cast<PDOMapping::PDOMappingType>(value.toUInt())));
        break;
    case SubIndexField::DefaultInEds:
        label = inEds.value(value.toInt());
        break;
    case SubIndexField::Implementation:
        label = COHelper::implementation2String(quint8(value.toUInt()));
        break;
    default:
        break;
    }
    return label.isEmpty() ? value.toString() : label;
}

void addChoices(QComboBox &box, SubIndexField field, const QVariantList &values)
{
    for (const QVariant &value : values)
        box.addItem(labelOf(field, value), value);
}

QVariantList numbers(int count)
{
    QVariantList list;
    for (int i = 0; i < count; ++i)
        list.append(i);
    return list;
}

} // namespace

Kind EntryFields::kindOf(SubIndexField field)
{
    return rowOf(field).kind;
}

QVariant EntryFields::value(SubIndexField field, const Record &record)
{
    return rowOf(field).get(record);
}

QString EntryFields::text(SubIndexField field, const Record &record)
{
    if (field == SubIndexField::Size && !EntryRules::hasSize(record.datatype))
        return {};
    const Row &row = rowOf(field);
    switch (row.kind) {
    case Kind::Check:
        return {};
    case Kind::Choice:
        return labelOf(field, row.get(record));
    default:
        return row.get(record).toString();
    }
}

void EntryFields::set(SubIndexField field, Record &record, const QVariant &value)
{
    Record wanted = record;
    rowOf(field).put(wanted, value);
    RecordEdits::copyField(field, wanted, record);
    if (field == SubIndexField::DefaultValue)
        record.defaultineds = wanted.defaultineds;
}

QString EntryFields::lineFault(const QString &text, qsizetype longest)
{
    const bool isOneLine = std::ranges::all_of(
        text, [](QChar c) { return c.isPrint() || c.category() == QChar::Other_Format; });
    if (!isOneLine)
        return tr("Line breaks and other control characters can't be entered here.");
    if (text.size() > longest)
        return tr("The text has %1 characters; %2 is the most.").arg(text.size()).arg(longest);
    return {};
}

QString EntryFields::fault(SubIndexField field, const Record &record, const QString &text)
{
    const bool isValue = kindOf(field) == Kind::Value;
    const QString line = lineFault(text, isValue ? longestValue : longestName);
    if (!line.isEmpty() || !isValue || isValueConvertible(record.datatype, text))
        return line;
    return tr("\"%1\" is no value of %2.")
        .arg(text, COHelper::index2DataTypeString(record.datatype));
}

void EntryFields::fill(QComboBox &box, SubIndexField field, const Record &record,
                       const QString &objectClass)
{
    const QSignalBlocker blocker(box);
    box.clear();
    switch (field) {
    case SubIndexField::DataType:
        BaseTreeForm::fillDataTypes(box, objectClass);
        break;
    case SubIndexField::AccessType:
        for (const QString &type : offeredAccessTypes(record))
            box.addItem(labelOf(field, type), type);
        break;
    case SubIndexField::PdoMapping:
        addChoices(box, field, numbers(5));
        break;
    case SubIndexField::DefaultInEds:
        addChoices(box, field, numbers(3));
        break;
    case SubIndexField::Implementation:
        addChoices(box, field, numbers(4));
        break;
    default:
        break;
    }
    const QVariant stored = value(field, record);
    if (BaseTreeForm::selectComboItem(box, stored))
        return;
    box.addItem(labelOf(field, stored), stored);
    box.setCurrentIndex(box.count() - 1);
}

WidgetDelegate::Cell EntryFields::cell(SubIndexField field, const Record &record,
                                       const QString &objectClass)
{
    if (kindOf(field) == Kind::Choice)
        return {.fill = [=](QComboBox &box) { fill(box, field, record, objectClass); }};
    if (field == SubIndexField::Size)
        return {.numbers = WidgetDelegate::Range{0, std::numeric_limits<int>::max()}};
    return {.fault = [=](const QString &text) { return fault(field, record, text); }};
}

Record EntryFields::merged(const Record &shown, const Record &edited, const Record &stored)
{
    Record result = stored;
    for (const Row &row : rows) {
        if (shown == edited)
            break;
        if (row.get(shown) != row.get(edited))
            RecordEdits::copyField(row.field, edited, result);
    }
    return result;
}

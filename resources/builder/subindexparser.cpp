#include "resources/builder/subindexparser.h"

#include "canopen/cohelper.h"
#include "resources/builder/valuecheck.h"

#include <QSet>

namespace {

using Record = ObjectDataBase::SUBINDEX_DATA_T;

constexpr quint8 exportDefault = 1;
constexpr quint32 maximumSize = 0x10000000;

/// One word of a closed list and the number that it stands for.
struct Choice
{
    const char *word;
    quint8 value;
};

constexpr Choice categories[] = {{"mandatory", CANopen::Mandatory},
                                 {"optional", CANopen::Optional},
                                 {"conditional", CANopen::Conditional}};
constexpr Choice implementations[] = {{"managed", CANopen::ManagedVariable},
                                      {"const", CANopen::ManagedConst},
                                      {"variable", CANopen::Variable},
                                      {"virtual", CANopen::VirtualObject}};
constexpr Choice mappings[] = {{"no", PDOMapping::Forbidden},
                               {"yes", PDOMapping::Allowed},
                               {"default", PDOMapping::Default},
                               {"rpdo", PDOMapping::RPDO},
                               {"tpdo", PDOMapping::TPDO}};
constexpr Choice edsExports[] = {{"never", 0}, {"default", exportDefault}, {"always", 2}};

template <std::size_t N>
QString choose(const Choice (&choices)[N], const QString &text, quint8 &value)
{
    QStringList words;
    for (const Choice &choice : choices) {
        const auto word = QLatin1String(choice.word);
        if (text == word) {
            value = choice.value;
            return {};
        }
        words.append(word);
    }
    return QStringLiteral("'%1' is not one of %2").arg(text, words.join(QLatin1String(", ")));
}

QString setDefault(Record &record, const QString &text)
{
    record.defaultvalue = text;
    record.defaultineds = true;
    record.writedefaulttoeds = exportDefault;
    return {};
}

QString setLow(Record &record, const QString &text)
{
    record.lowlimit = text;
    record.limitineds = true;
    return {};
}

QString setHigh(Record &record, const QString &text)
{
    record.uplimit = text;
    record.limitineds = true;
    return {};
}

QString setSize(Record &record, const QString &text)
{
    bool ok = false;
    record.size = text.toUInt(&ok, 0);
    if (ok && record.size > 0 && record.size <= maximumSize)
        return {};
    return QStringLiteral("'%1' is no size in bytes from 1 to %2").arg(text).arg(maximumSize);
}

QString setVariable(Record &record, const QString &text)
{
    record.varname = text;
    if (!text.trimmed().isEmpty())
        record.implementation = CANopen::Variable;
    return {};
}

QString setMapping(Record &record, const QString &text)
{
    quint8 value = 0;
    const QString problem = choose(mappings, text, value);
    record.pdomapping = PDOMapping::fromUInt(value);
    return problem;
}

bool isAccessType(const QString &text)
{
    static const QSet<QString> types = {QStringLiteral("const"), QStringLiteral("ro"),
                                        QStringLiteral("wo"),    QStringLiteral("rw"),
                                        QStringLiteral("rwr"),   QStringLiteral("rww")};
    return types.contains(text);
}

QString setAllowed(Record &record, const QString &text)
{
    for (const QString &type : text.split(u','))
        if (!isAccessType(type))
            return QStringLiteral("'%1' is no access type").arg(type);
    record.allowedaccesstypes = text;
    return {};
}

QString setRefused(Record &record, const QString &text)
{
    const QStringList parts = text.split(u',');
    for (const QString &part : parts)
        if (part != QLatin1String("read") && part != QLatin1String("write"))
            return QStringLiteral("'%1' is neither read nor write").arg(part);
    record.refuseread = parts.contains(QLatin1String("read"));
    record.refusewrite = parts.contains(QLatin1String("write"));
    return {};
}

template <auto Member>
QString setText(Record &record, const QString &text)
{
    record.*Member = text;
    return {};
}

template <auto Member>
QString setFlag(Record &record, const QString &text)
{
    return SubIndexParser::parseYesNo(text, record.*Member);
}

struct Key
{
    const char *name;
    QString (*apply)(Record &record, const QString &text);
};

constexpr Key keys[] = {
    {"default", setDefault},
    {"current", setText<&Record::currentvalue>},
    {"low", setLow},
    {"high", setHigh},
    {"check", setFlag<&Record::limitineds>},
    {"size", setSize},
    {"var", setVariable},
    {"impl",
     [](Record &record, const QString &text) {
         return choose(implementations, text, record.implementation);
     }},
    {"map", setMapping},
    {"category",
     [](Record &record, const QString &text) { return choose(categories, text, record.category); }},
    {"eds", [](Record &record,
               const QString &text) { return choose(edsExports, text, record.writedefaulttoeds); }},
    {"allow", setAllowed},
    {"refuse", setRefused},
    {"denotation", setText<&Record::denotation>},
    {"nv", setFlag<&Record::nvstorage>},
    {"shared", setFlag<&Record::sharedlines>},
    {"dcf", setFlag<&Record::dcfcomponent>},
    {"cyclic", setFlag<&Record::cyclicread>},
};

QString applyKey(Record &record, const SourceWord &word)
{
    if (word.key.startsWith(QLatin1String("meta:"))) {
        record.metadata.insert(word.key.mid(5), word.text);
        return {};
    }
    for (const Key &key : keys) {
        if (word.key == QLatin1String(key.name)) {
            const QString problem = key.apply(record, word.text);
            return problem.isEmpty() ? QString() : QStringLiteral("%1: %2").arg(word.key, problem);
        }
    }
    return QStringLiteral("unknown key '%1'").arg(word.key);
}

/// The words without "=": type, access, "name", each at most once and in this order.
struct Positional
{
    QString type;
    QString access;
    QString name;
};

QString readWords(const QList<SourceWord> &words, Positional &positional, Record &record)
{
    QSet<QString> seen;
    for (const SourceWord &word : words) {
        if (!word.key.isEmpty()) {
            if (seen.contains(word.key))
                return QStringLiteral("key '%1' stands twice").arg(word.key);
            seen.insert(word.key);
            if (const QString problem = applyKey(record, word); !problem.isEmpty())
                return problem;
            continue;
        }
        QString &place = word.quoted                 ? positional.name
                         : positional.type.isEmpty() ? positional.type
                                                     : positional.access;
        if (!place.isEmpty() || word.text.isEmpty())
            return QStringLiteral("'%1' is out of place").arg(word.text);
        place = word.text;
    }
    return {};
}

QString applyPositional(const DataSource::Object &object, bool isNew, const Positional &words,
                        Record &record)
{
    if (isNew && words.access.isEmpty())
        return QStringLiteral("data type and access type are missing");
    if (!words.type.isEmpty()) {
        record.datatype = COHelper::mapDataTypeString(words.type);
        // Names only: "5" would be read as a type too, but nobody sees which.
        if (COHelper::index2DataTypeString(record.datatype) != words.type)
            return QStringLiteral("unknown data type '%1'").arg(words.type);
    }
    if (!words.access.isEmpty()) {
        if (!isAccessType(words.access))
            return QStringLiteral("unknown access type '%1'").arg(words.access);
        record.accesstype = words.access;
    }
    if (!words.name.isEmpty())
        record.name = words.name;
    else if (isNew)
        record.name =
            object.data.objecttype == CANopen::ARRAY || object.data.objecttype == CANopen::RECORD
                ? QString()
                : object.data.name;
    return record.name.isEmpty() ? QStringLiteral("the name is missing") : QString();
}

bool isString(quint16 dataType)
{
    return ValueCheck::hasFreeLength(dataType) && dataType != CAN::DOMAIN_TYPE;
}

/// What the source leaves to the data type: the kind of storage, natural limits, string sizes.
void fillIn(Record &record, bool isNew, bool hasImplementation)
{
    if (isNew && !hasImplementation &&
        (record.accesstype == QLatin1String("const") ||
         (isString(record.datatype) && record.accesstype == QLatin1String("ro"))))
        record.implementation = CANopen::ManagedConst;
    if (record.lowlimit.isEmpty() && record.uplimit.isEmpty())
        COHelper::getDefaultLimits(record.datatype, record.lowlimit, record.uplimit);
    if (isString(record.datatype) && record.size == 0)
        record.size = quint32(record.defaultvalue.toUtf8().size());
}

QString implementationProblem(const Record &record)
{
    const QString variable = record.varname.trimmed();
    if (record.implementation == CANopen::Variable && variable.isEmpty())
        return QStringLiteral("an application variable needs var=");
    if (variable.contains(u' ') || variable.contains(u',') || variable.contains(u';'))
        return QStringLiteral("variable name '%1' holds a blank, comma or semicolon").arg(variable);
    if (record.implementation == CANopen::ManagedConst && record.accesstype.contains(u'w'))
        return QStringLiteral("impl=const does not go with access %1").arg(record.accesstype);
    if (record.implementation == CANopen::ManagedVariable && isString(record.datatype))
        return QStringLiteral("a writable string needs var= or impl=virtual");
    return {};
}

QString limitProblem(const Record &record)
{
    if (record.lowlimit.isEmpty() != record.uplimit.isEmpty())
        return QStringLiteral("low and high go together");
    if (record.lowlimit.isEmpty())
        return record.limitineds ? QStringLiteral("limits to check are missing") : QString();
    if (ValueCheck::hasFreeLength(record.datatype))
        return QStringLiteral("a string or domain has no limits");
    for (const QString &limit : {record.lowlimit, record.uplimit}) {
        if (const QString problem = ValueCheck::problem(record.datatype, limit); !problem.isEmpty())
            return QStringLiteral("limit %1").arg(problem);
    }
    const QString &value = record.defaultvalue;
    if (!ValueCheck::inOrder(record.datatype, record.lowlimit, record.uplimit))
        return QStringLiteral("low is above high");
    if (value.isEmpty() || value.contains(QLatin1String("$NODEID")))
        return {};
    if (!ValueCheck::inOrder(record.datatype, record.lowlimit, value) ||
        !ValueCheck::inOrder(record.datatype, value, record.uplimit))
        return QStringLiteral("default %1 is outside of its limits").arg(value);
    return {};
}

QString recordProblem(const Record &record)
{
    for (const QString &value : {record.defaultvalue, record.currentvalue}) {
        if (const QString problem = ValueCheck::problem(record.datatype, value); !problem.isEmpty())
            return problem;
        if (isString(record.datatype) && record.size < quint32(value.toUtf8().size()))
            return QStringLiteral("'%1' is longer than its size %2").arg(value).arg(record.size);
    }
    if (const QString problem = limitProblem(record); !problem.isEmpty())
        return problem;
    return implementationProblem(record);
}

QString listProblem(const DataSource::Object &object)
{
    const Record &count = object.subIndices.first();
    if (count.datatype != CAN::UNSIGNED8)
        return QStringLiteral("subindex 0 must be UNSIGNED8");
    if (object.subIndices.size() < 2)
        return QStringLiteral("there is no subindex besides 0");
    const quint8 highest = object.subIndices.lastKey();
    if (count.implementation == CANopen::ManagedConst && count.defaultvalue.toUInt() != highest)
        return QStringLiteral("subindex 0 says '%1', but the highest subindex is %2")
            .arg(count.defaultvalue)
            .arg(highest);
    return {};
}

} // namespace

QString SubIndexParser::parseCategory(const QString &text, quint8 &category)
{
    return choose(categories, text, category);
}

QString SubIndexParser::parseYesNo(const QString &text, bool &value)
{
    value = text == QLatin1String("yes");
    return value || text == QLatin1String("no")
               ? QString()
               : QStringLiteral("'%1' is neither yes nor no").arg(text);
}

QString SubIndexParser::parseRange(const QString &text, quint8 &first, quint8 &last)
{
    const qsizetype dots = text.indexOf(QLatin1String(".."));
    bool lowOk = false;
    bool highOk = false;
    const uint low = text.left(dots).toUInt(&lowOk, 0);
    const uint high = dots < 0 ? low : text.mid(dots + 2).toUInt(&highOk, 0);
    if (!lowOk || (dots >= 0 && !highOk) || low > high || high > 0xFF)
        return QStringLiteral("'%1' is no subindex from 0 to 255 and no range like 1..8").arg(text);
    first = quint8(low);
    last = quint8(high);
    return {};
}

QString SubIndexParser::apply(DataSource::Object &object, quint8 subindex,
                              const QList<SourceWord> &words)
{
    const bool isNew = !object.subIndices.contains(subindex);
    Record record = object.subIndices.value(subindex);
    QList<SourceWord> expanded = words;
    bool hasImplementation = false;
    for (SourceWord &word : expanded) {
        word.text = SourceLexer::expand(word.text, subindex);
        hasImplementation = hasImplementation || word.key == QLatin1String("impl") ||
                            (word.key == QLatin1String("var") && !word.text.trimmed().isEmpty());
    }
    Positional positional;
    QString problem = readWords(expanded, positional, record);
    if (problem.isEmpty())
        problem = applyPositional(object, isNew, positional, record);
    if (problem.isEmpty()) {
        if (!positional.type.isEmpty() && !record.limitineds)
            record.lowlimit = record.uplimit = QString();
        fillIn(record, isNew, hasImplementation);
        problem = recordProblem(record);
    }
    // Kept even if it is wrong, so that one fault does not make others up.
    object.subIndices.insert(subindex, record);
    return problem;
}

QString SubIndexParser::finish(DataSource::Object &object)
{
    const auto &subs = object.subIndices;
    if (!subs.contains(0))
        return QStringLiteral("subindex 0 is missing");
    const quint16 type = subs.first().datatype;
    switch (object.data.objecttype) {
    case CANopen::DOMAIN_OBJECT:
        if (type != CAN::DOMAIN_TYPE)
            return QStringLiteral("subindex 0 must be DOMAIN");
        [[fallthrough]];
    case CANopen::VAR:
        object.data.datatype = type;
        return subs.size() > 1 ? QStringLiteral("it may have subindex 0 only") : QString();
    default:
        break;
    }
    QString problem = listProblem(object);
    if (!problem.isEmpty() || object.data.objecttype == CANopen::RECORD)
        return problem;
    object.data.datatype = std::next(subs.begin())->datatype;
    for (auto sub = std::next(subs.begin()); sub != subs.end(); ++sub) {
        if (sub->datatype != object.data.datatype)
            return QStringLiteral("the subindices of an ARRAY must have one data type");
    }
    return {};
}

#include "generators/canopen/objdictcontext.h"

#include "canopen/canopentypes.h"
#include "store/projectsettings.h"

#include <algorithm>

int ObjDictContext::number(const char *key) const
{
    return ProjectSettings(store).decimal(key);
}

int ObjDictContext::lineNumber(const char *key, quint8 line) const
{
    return ProjectSettings(store).lineDecimal(key, line);
}

bool ObjDictContext::isOnAnyLine(const char *key) const
{
    return std::any_of(facts.activeLines.begin(), facts.activeLines.end(),
                       [this, key](quint8 line) { return lineNumber(key, line) > 0; });
}

bool ObjDictContext::isMaster(quint8 line) const
{
    constexpr int master = 1;
    constexpr int chosenPerLine = 2;
    const int role = lineNumber("nmtmaster", line);
    return role == master || (role == chosenPerLine && lineNumber("co_ml_ms", line) == master);
}

QByteArray ObjDictContext::variable(const QString &varName)
{
    if (varName.isEmpty())
        return "NULL";
    const QByteArray name = varName.toUtf8();
    return name.contains('(') ? name : "&(" + name + ')';
}

QByteArray ObjDictContext::address(const DictionaryFacts::Entry &entry) const
{
    if (entry.position == DictionaryFacts::noPosition ||
        entry.implementation == CANopen::VirtualObject)
        return "NULL";
    const bool isTabled =
        DictionaryTypes::isNumeric(entry.group) || DictionaryTypes::isString(entry.group);
    if (entry.implementation == CANopen::Variable && DictionaryTypes::isNumeric(entry.group))
        return variable(entry.varName);
    const bool isConstant = entry.implementation == CANopen::ManagedConst && isTabled;
    return QByteArray(isConstant ? "&od_const_" : "&od_") + DictionaryTypes::info(entry.group).tag +
           '[' + QByteArray::number(entry.position) + ']';
}

QByteArray ObjDictContext::constantOf(quint8 line, quint16 index, quint8 sub) const
{
    const DictionaryFacts::Entry *entry = facts.find(line, index, sub);
    // Wider types are structures on many targets and can't be passed as a number.
    const bool isPlain =
        entry && (entry->group == TableGroup::U8 || entry->group == TableGroup::U16 ||
                  entry->group == TableGroup::U32);
    if (!isPlain)
        return "0u";
    return QByteArray("od_const_") + DictionaryTypes::info(entry->group).tag + '[' +
           QByteArray::number(entry->defaultPosition) + ']';
}

QByteArray ObjDictContext::place(const DictionaryFacts::Place &place) const
{
    QByteArray text;
    if (facts.lineForm)
        text = QByteArray::number(place.line) + '-';
    return text + "0x" + QByteArray::number(place.index, 16).rightJustified(4, '0') + ':' +
           QByteArray::number(place.sub);
}

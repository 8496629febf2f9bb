#include "canopen/canopentypes.h"
#include "canopen/indextext.h"
#include "canopen/numbertext.h"
#include "canopen/objectranges.h"
#include "canopen/valuetext.h"
#include "check/canopenchecks.h"
#include "check/canopenline.h"
#include "dictionary/subzero.h"

#include <QCoreApplication>
#include <QStringView>

#include <algorithm>
#include <array>
#include <memory_resource>
#include <unordered_map>
#include <utility>

namespace {

/// Keeps the log window live during long runs.
void runEvents()
{
    if (QCoreApplication::instance() != nullptr)
        QCoreApplication::processEvents();
}

/// An upper limit that stands for none, whatever the data type.
constexpr qlonglong openUpperLimit = 0x7FFFFF;

bool isAccessType(const QString &text)
{
    static constexpr std::array valid = {QLatin1String("ro"),  QLatin1String("const"),
                                         QLatin1String("rw"),  QLatin1String("rwr"),
                                         QLatin1String("rww"), QLatin1String("wo")};
    return std::any_of(valid.begin(), valid.end(), [&](QLatin1String one) { return text == one; });
}

/// Only these have a subindex 0 that tells of others; that of a DOMAIN is its data.
bool isListObject(const ObjectModel &object)
{
    return object.objecttype == CANopen::ARRAY || object.objecttype == CANopen::RECORD;
}

/// Whether subindex 0 must mirror the highest subindex.
bool isSubZeroRuleApplicable(const ObjectModel &object)
{
    const SubIndexModel *zero = object.find(0);
    return SubZero::isRuleApplicable(object.index, zero != nullptr ? zero->accesstype : QString(),
                                     object.value(0));
}

void correctSubZeroValue(CanopenLine &check, const ObjectModel &object)
{
    const quint8 highest = object.subs.back().subindex;
    if (check.autoCorrectionDisabled || !isListObject(object) || object.find(0) == nullptr ||
        toByte(object.value(0)) == highest || !isSubZeroRuleApplicable(object))
        return;
    if (check.correctDefaultValue(object.index, 0, QString::number(highest)))
        check.reportSub(CanopenMessage::SubZeroCorrected, object.index, 0);
}

void correctSubZeroImplementation(CanopenLine &check, const ObjectModel &object)
{
    const SubIndexModel *zero = object.find(0);
    if (check.autoCorrectionDisabled || !isListObject(object) ||
        zero->implementation == CANopen::ManagedConst ||
        zero->implementation == CANopen::VirtualObject ||
        zero->accesstype != QLatin1String("const") || !isSubZeroRuleApplicable(object))
        return;
    if (check.correctImplementation(object.index, 0, CANopen::ManagedConst))
        check.reportSub(CanopenMessage::SubZeroConstCorrected, object.index, 0);
}

/// An object with subindices; `object` follows the corrections.
void checkSubZero(CanopenLine &check, const ObjectModel &object)
{
    if (object.subs.empty()) {
        check.reportObject(CanopenMessage::ArrayEmpty, object.index);
        return;
    }
    correctSubZeroValue(check, object);
    if (object.find(0) == nullptr)
        return;
    if (!object.find(0)->hasDefault && isSubZeroRuleApplicable(object))
        check.reportSub(CanopenMessage::SubZeroDefaultFlag, object.index, 0);
    correctSubZeroImplementation(check, object);
    if (!object.find(0)->isExported())
        check.reportSub(CanopenMessage::SubZeroNotInEds, object.index, 0);
}

void checkVariableName(CanopenLine &check, quint16 index, const SubIndexModel &sub)
{
    if (sub.implementation != CANopen::Variable)
        return;
    if (sub.varname.isEmpty())
        check.reportSub(CanopenMessage::VariableNameMissing, index, sub.subindex);
    const bool isInvalid = std::any_of(sub.varname.begin(), sub.varname.end(), [](QChar character) {
        return character.isSpace() || character == u',' || character == u';';
    });
    if (isInvalid)
        check.reportSub(CanopenMessage::VariableNameInvalid, index, sub.subindex);
}

void checkAccess(CanopenLine &check, quint16 index, const SubIndexModel &sub)
{
    if (!isAccessType(sub.accesstype))
        check.reportSub(CanopenMessage::AccessTypeInvalid, index, sub.subindex, {sub.accesstype});
    if (sub.implementation == CANopen::ManagedConst && sub.accesstype.contains(u'w'))
        check.reportSub(CanopenMessage::ManagedConstWritable, index, sub.subindex);
}

void checkManagedString(CanopenLine &check, quint16 index, const SubIndexModel &sub)
{
    if (sub.implementation != CANopen::ManagedVariable)
        return;
    if (sub.datatype == CAN::OCTET_STRING)
        check.reportSub(CanopenMessage::ManagedOctetString, index, sub.subindex);
    else if (sub.datatype == CAN::VISIBLE_STRING)
        check.reportSub(CanopenMessage::ManagedVisibleString, index, sub.subindex);
    else if (sub.datatype == CAN::UTF8_STRING)
        check.reportSub(CanopenMessage::ManagedUtf8String, index, sub.subindex);
}

void checkLimits(CanopenLine &check, quint16 index, const SubIndexModel &sub)
{
    if (!sub.useLimit)
        return;
    const auto value = NumberText::toSigned(sub.defaultvalue);
    const qint64 low = NumberText::toSigned(sub.lowlimit).value_or(0);
    const qint64 high = NumberText::toSigned(sub.uplimit).value_or(0);
    const bool isOutside = value && (low > *value || high < *value);
    if (isOutside && high != openUpperLimit)
        check.reportSub(CanopenMessage::DefaultOutOfLimits, index, sub.subindex);
}

void checkSubIndex(CanopenLine &check, const ObjectModel &object, const SubIndexModel &sub)
{
    if (!check.limitCheckEnabled && sub.useLimit)
        check.reportSub(CanopenMessage::LimitCheckDisabled, object.index, sub.subindex);
    if (isListObject(object) && sub.name.isEmpty())
        check.reportSub(CanopenMessage::SubIndexNameMissing, object.index, sub.subindex);
    checkVariableName(check, object.index, sub);
    checkAccess(check, object.index, sub);
    checkManagedString(check, object.index, sub);
    if (sub.datatype == CAN::OCTET_STRING || sub.datatype == CAN::VISIBLE_STRING)
        return;
    if (sub.datatype == CAN::UNKNOWN_TYPE)
        check.reportSub(CanopenMessage::DataTypeUnknown, object.index, sub.subindex);
    if (sub.datatype != CAN::DOMAIN_TYPE)
        checkLimits(check, object.index, sub);
}

void checkIndex(CanopenLine &check, const ObjectModel &object)
{
    if (object.objecttype != CANopen::VAR)
        checkSubZero(check, object);
    if (object.name.isEmpty())
        check.reportObject(CanopenMessage::ObjectNameMissing, object.index);
    if (object.objecttype == CANopen::VAR && object.subs.size() >= 2)
        check.reportObject(CanopenMessage::VariableWithSubIndices, object.index);
    for (const SubIndexModel &sub : object.subs)
        checkSubIndex(check, object, sub);
}

} // namespace

void CanopenChecks::checkValueConversions(CanopenLine &check)
{
    for (const ObjectModel &object : check.model.deviceObjects()) {
        runEvents();
        for (const SubIndexModel &sub : object.subs) {
            if (!isValueConvertible(sub.datatype, sub.defaultvalue)) {
                // the subindex is decimal behind its 0x, as logs have always shown it
                check.report(CanopenMessage::ValueConversion,
                             {IndexText::digits(object.index), QString::number(sub.subindex)},
                             object.index, sub.subindex);
            }
        }
    }
}

void CanopenChecks::checkIndices(CanopenLine &check)
{
    for (const ObjectModel &object : check.model.deviceObjects()) {
        runEvents();
        checkIndex(check, object);
    }
}

void CanopenChecks::checkVariableNames(CanopenLine &check)
{
    // tens of thousands of small nodes: one after the other in memory they cost a fifth
    std::pmr::monotonic_buffer_resource memory;
    std::pmr::unordered_map<QStringView, std::pair<quint16, quint8>> users(&memory);
    for (const ObjectModel &object : check.model.deviceObjects()) {
        for (const SubIndexModel &sub : object.subs) {
            if (sub.implementation != CANopen::Variable || sub.varname.trimmed().isEmpty())
                continue;
            const auto [first, isNew] =
                users.try_emplace(sub.varname, std::pair(object.index, sub.subindex));
            if (!isNew) {
                const auto &[index, subindex] = first->second;
                check.reportSub(
                    CanopenMessage::VariableNameUsedTwice, object.index, sub.subindex,
                    {sub.varname, IndexText::digits(index), IndexText::subDigits(subindex)});
            }
        }
    }
}

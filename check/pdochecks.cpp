#include "canopen/canopentypes.h"
#include "canopen/cobid.h"
#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "canopen/numbertext.h"
#include "canopen/objectranges.h"
#include "canopen/valuetext.h"
#include "check/canopenchecks.h"
#include "check/canopenline.h"

#include <QMap>

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

constexpr std::array mappingRanges = {ObjectRanges::receiveMappings,
                                      ObjectRanges::transmitMappings};
constexpr std::array communicationRanges = {ObjectRanges::receivePdos, ObjectRanges::transmitPdos};

/// The TPDOs of the pre-defined connection set (CiA 301) are four.
constexpr quint16 lastPredefinedMapping = ObjectRanges::transmitMappings.low + 3;
/// CiA 301 maps 64 objects at most; numbers above mark special mappings.
constexpr quint8 highestCount = 64;
constexpr quint64 cobIdInvalid = 0x80000000U;
constexpr quint64 cobIdBits = 0x1FFFFFFFU;

MappingEntry mappingEntry(const QString &text)
{
    return MappingEntry::fromNumber(toNumber(text));
}

bool isOneOf(const QString &text, std::initializer_list<const char *> values)
{
    return std::any_of(values.begin(), values.end(),
                       [&](const char *value) { return text == QLatin1String(value); });
}

/// What a mapped object must allow.
void checkMappedObject(CanopenLine &check, quint16 mapping, const MappingEntry &entry)
{
    const QStringList names = {IndexText::digits(entry.index),
                               IndexText::subDigits(entry.subindex)};
    const SubIndexModel *target = check.model.find(entry.index, entry.subindex);
    if (target == nullptr) {
        check.reportObject(CanopenMessage::MappedObjectMissing, mapping, names);
        return;
    }
    if (target->pdomapping.isEqualToType(PDOMapping::Forbidden))
        check.reportObject(CanopenMessage::MappedObjectForbidden, mapping, names);
    const quint8 length = COHelper::getDataLengthBits(target->datatype);
    if (entry.bits < length)
        check.reportObject(CanopenMessage::MappedObjectTooSmall, mapping, names);
    else if (entry.bits > length)
        check.reportObject(CanopenMessage::MappedObjectTooLarge, mapping, names);
    const bool transmit = mapping >= ObjectRanges::transmitPdos.low;
    if (transmit && isOneOf(target->accesstype, {"wo", "rww"}))
        check.reportObject(CanopenMessage::MappedAccessTransmit, mapping, names);
    if (!transmit && isOneOf(target->accesstype, {"ro", "const", "rwr"}))
        check.reportObject(CanopenMessage::MappedAccessReceive, mapping, names);
}

/// Returns the bits of all active entries.
quint16 checkMappingEntries(CanopenLine &check, const ObjectModel &mapping)
{
    const quint8 count = toByte(mapping.value(0));
    const SubIndexModel *zero = mapping.find(0);
    const QString access = zero != nullptr ? zero->accesstype : QString();
    if (access == QLatin1String("rw"))
        check.dynamicSeen = true;
    quint16 totalBits = 0;
    for (const SubIndexModel &sub : mapping.subs) {
        if (sub.subindex == 0)
            continue;
        if (sub.accesstype != access)
            check.reportObject(CanopenMessage::MappingAccessMixed, mapping.index);
        const MappingEntry entry = mappingEntry(sub.defaultvalue);
        const bool active = sub.subindex <= count;
        if (active)
            totalBits = static_cast<quint16>(totalBits + entry.bits);
        if (entry.bits >= 1 && entry.bits <= 7)
            check.bitwiseSeen = true;
        constexpr quint16 firstObject = 8; // below: data types, mapped as dummies
        if (active && entry.index == 0) {
            check.reportObject(CanopenMessage::MappingEntryEmpty, mapping.index,
                               {QString::number(sub.subindex)});
        } else if (entry.index >= firstObject) {
            checkMappedObject(check, mapping.index, entry);
        }
    }
    return totalBits;
}

/// A dynamic TPDO that starts empty must start disabled.
void correctEmptyTransmitPdo(CanopenLine &check, const ObjectModel &mapping)
{
    const SubIndexModel *zero = mapping.find(0);
    if (check.autoCorrectionDisabled || mapping.index < ObjectRanges::transmitMappings.low ||
        mapping.index > lastPredefinedMapping || zero == nullptr ||
        zero->accesstype != QLatin1String("rw") || toNumber(zero->defaultvalue) != 0)
        return;
    const auto communication =
        static_cast<quint16>(mapping.index - ObjectRanges::pdoMappingDistance);
    const QString before = check.model.value(communication, 1);
    const QString after = CobId::disabled(before);
    if (!CobId::isDisabled(before) && after != before &&
        check.correctDefaultValue(communication, 1, after)) {
        check.report(CanopenMessage::PdoDisabledCorrected,
                     {IndexText::digits(communication), after}, communication, 1);
    }
}

void checkMappingObject(CanopenLine &check, const ObjectModel &mapping)
{
    const auto communication =
        static_cast<quint16>(mapping.index - ObjectRanges::pdoMappingDistance);
    if (!check.model.contains(communication)) {
        check.reportObject(CanopenMessage::MappingWithoutCommunication, mapping.index,
                           {IndexText::digits(communication)});
    }
    const quint8 count = toByte(mapping.value(0));
    if (count <= highestCount && mapping.subs.size() < 2) {
        check.reportObject(CanopenMessage::MappingEmpty, mapping.index,
                           {QString::number(check.line)});
    }
    if (checkMappingEntries(check, mapping) > check.maxPdoBits())
        check.reportObject(CanopenMessage::PdoTooLong, mapping.index);
    if (count > mapping.entryCount() && count <= highestCount)
        check.reportObject(CanopenMessage::MappingCountInvalid, mapping.index);
    correctEmptyTransmitPdo(check, mapping);
}

/// Enabled PDOs by COB-ID and the use of the node-ID in it.
using CobIdUsers = QMap<QString, quint16>;

void checkCobId(CanopenLine &check, const ObjectModel &communication, CobIdUsers &users)
{
    const SubIndexModel *cobId = communication.find(1);
    if (cobId == nullptr)
        return;
    const QString text = cobId->defaultvalue.trimmed();
    QString rest = text;
    rest.remove(QLatin1String("$nodeid+"), Qt::CaseInsensitive);
    const bool hasNodeId = rest.size() != text.size();
    const auto number = NumberText::toUnsigned32(rest);
    if (!number || (*number & cobIdInvalid) != 0)
        return;
    const auto mapping =
        static_cast<quint16>(communication.index + ObjectRanges::pdoMappingDistance);
    const SubIndexModel *mapped = check.model.find(mapping, 0);
    if (mapped != nullptr && toNumber(mapped->defaultvalue) == 0) {
        check.reportObject(CanopenMessage::PdoEnabledButEmpty, communication.index,
                           {IndexText::digits(mapping)});
    }
    const QString key =
        QStringLiteral("%1:0x%2").arg(hasNodeId ? 1 : 0).arg(*number & cobIdBits, 0, 16);
    const auto user = users.constFind(key);
    if (user != users.constEnd()) {
        check.reportObject(CanopenMessage::CobIdCollision, communication.index,
                           {text, IndexText::digits(*user)});
    } else {
        users.insert(key, communication.index);
    }
}

void checkCommunicationObject(CanopenLine &check, const ObjectModel &communication,
                              CobIdUsers &users)
{
    const auto mapping =
        static_cast<quint16>(communication.index + ObjectRanges::pdoMappingDistance);
    if (!check.model.contains(mapping)) {
        check.reportObject(CanopenMessage::CommunicationWithoutMapping, communication.index,
                           {IndexText::digits(mapping)});
    }
    const auto isExported = [&](quint8 subindex) {
        const SubIndexModel *sub = communication.find(subindex);
        return sub != nullptr && sub->isExported();
    };
    if (!isExported(1)) {
        check.report(CanopenMessage::CobIdNotInEds, {IndexText::digits(communication.index)},
                     communication.index, 1);
    }
    if (!isExported(2)) {
        check.report(CanopenMessage::TransmissionTypeNotInEds,
                     {IndexText::digits(communication.index)}, communication.index, 2);
    }
    checkCobId(check, communication, users);
}

/// COB-IDs of the pre-defined connection set (CiA 301) by communication object.
const QMap<quint16, QStringList> &predefinedConnectionSet()
{
    static const QMap<quint16, QStringList> table = [] {
        constexpr std::array<std::pair<quint16, quint16>, 8> bases = {{{0x1400, 0x200},
                                                                       {0x1401, 0x300},
                                                                       {0x1402, 0x400},
                                                                       {0x1403, 0x500},
                                                                       {0x1800, 0x180},
                                                                       {0x1801, 0x280},
                                                                       {0x1802, 0x380},
                                                                       {0x1803, 0x480}}};
        QMap<quint16, QStringList> map;
        for (const auto &[index, base] : bases) {
            QStringList texts(QStringLiteral("$nodeid+0x%1").arg(base, 0, 16));
            for (const char *top : {"0", "8", "4", "c"})
                texts.append(QStringLiteral("$nodeid+0x%1%2")
                                 .arg(QLatin1String(top))
                                 .arg(base, 7, 16, QChar(u'0')));
            map.insert(index, texts);
        }
        return map;
    }();
    return table;
}

} // namespace

void CanopenChecks::checkPdoMapping(CanopenLine &check)
{
    for (const ObjectRange &range : mappingRanges)
        for (const ObjectModel &mapping : check.model.range(range))
            checkMappingObject(check, mapping);
}

void CanopenChecks::checkPdoCommunication(CanopenLine &check)
{
    CobIdUsers users;
    for (const ObjectRange &range : communicationRanges)
        for (const ObjectModel &communication : check.model.range(range))
            checkCommunicationObject(check, communication, users);
}

void CanopenChecks::checkPdoTimes(CanopenLine &check)
{
    constexpr quint8 inhibitTime = 3; // in 100 us
    constexpr quint8 eventTimer = 5;  // in ms
    for (const ObjectModel &communication : check.model.range(ObjectRanges::transmitPdos)) {
        if (communication.find(inhibitTime) == nullptr || communication.find(eventTimer) == nullptr)
            continue;
        const quint64 event = toNumber(communication.value(eventTimer));
        if (event != 0 && toNumber(communication.value(inhibitTime)) / 10 >= event)
            check.reportObject(CanopenMessage::EventBelowInhibitTime, communication.index);
    }
}

void CanopenChecks::checkSrdoCommunication(CanopenLine &check)
{
    for (const ObjectModel &communication : check.model.range(ObjectRanges::srdos)) {
        const auto mapping =
            static_cast<quint16>(communication.index + ObjectRanges::srdoMappingDistance);
        if (!check.model.contains(mapping)) {
            check.reportObject(CanopenMessage::SrdoWithoutMapping, communication.index,
                               {IndexText::digits(mapping)});
        }
    }
}

void CanopenChecks::checkSrdoMapping(CanopenLine &check)
{
    for (const ObjectModel &mapping : check.model.range({ObjectRanges::srdoMappings.low, 0x13BF})) {
        for (const SubIndexModel &sub : mapping.subs) {
            if (sub.subindex == 0)
                continue;
            const MappingEntry entry = mappingEntry(sub.defaultvalue);
            const QStringList names = {IndexText::digits(entry.index),
                                       IndexText::subDigits(entry.subindex)};
            const SubIndexModel *target = check.model.find(entry.index, entry.subindex);
            if (target == nullptr) {
                check.reportObject(CanopenMessage::SrdoMappedMissing, mapping.index, names);
                continue;
            }
            if (target->implementation != CANopen::Variable)
                check.reportObject(CanopenMessage::SrdoMappedManaged, mapping.index, names);
            if (target->pdomapping.isEqualToType(PDOMapping::Forbidden))
                check.reportObject(CanopenMessage::SrdoMappedForbidden, mapping.index, names);
        }
    }
}

void CanopenChecks::checkGranularity(CanopenLine &check)
{
    constexpr quint8 wholeBytes = 8;
    if (check.bitwiseSeen && check.granularity == wholeBytes)
        check.report(CanopenMessage::BitwiseGranularity);
    if (check.bitwiseSeen && !check.bitwiseEnabled)
        check.report(CanopenMessage::BitwiseDisabled);
    if (check.dynamicSeen && check.granularity == 0)
        check.report(CanopenMessage::DynamicGranularity);
}

void CanopenChecks::checkPredefinedConnectionSet(CanopenLine &check)
{
    if (check.settings().lineDecimal("overwrite_predef", check.line) != 0)
        return;
    bool found = false;
    const QMap<quint16, QStringList> &table = predefinedConnectionSet();
    for (auto row = table.cbegin(); row != table.cend(); ++row) {
        if (check.model.contains(row.key()) &&
            !row.value().contains(check.model.value(row.key(), 1).toLower())) {
            check.report(CanopenMessage::PredefinedConnectionSet, {IndexText::digits(row.key())},
                         row.key(), 1);
            found = true;
        }
    }
    if (found)
        check.report(CanopenMessage::PredefinedConnectionSetNote);
}

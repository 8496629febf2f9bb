#include "canopen/canopentypes.h"
#include "canopen/indextext.h"
#include "canopen/valuetext.h"
#include "check/canopenchecks.h"
#include "check/canopenline.h"

#include <array>

void CanopenChecks::checkDeviceType(CanopenLine &check)
{
    const ObjectModel *deviceType = check.model.find(0x1000);
    const quint32 code = deviceType != nullptr ? deviceType->objecttype : 0;
    if (check.canFd && code != CANopen::ARRAY)
        check.reportObject(CanopenMessage::DeviceTypeArray, 0x1000);
    if (!check.canFd && code != CANopen::VAR)
        check.reportObject(CanopenMessage::DeviceTypeVariable, 0x1000);
}

void CanopenChecks::checkMandatoryObjects(CanopenLine &check)
{
    if (!check.model.contains(0x1000))
        check.reportObject(CanopenMessage::DeviceTypeMissing, 0x1000);
    if (!check.model.contains(0x1001))
        check.reportObject(CanopenMessage::ErrorRegisterMissing, 0x1001);
    if (!check.model.contains(0x1017) && !check.model.contains(0x100C))
        check.reportObject(CanopenMessage::HeartbeatMissing, 0x1017);
}

void CanopenChecks::checkSlaveAssignment(CanopenLine &check)
{
    const ObjectModel *slaves = check.model.find(0x1F81);
    if (slaves == nullptr)
        return;
    const auto count = static_cast<quint16>(check.settings().decimal("max_slave_assignment"));
    if (count > slaves->entryCount())
        check.report(CanopenMessage::SlaveAssignmentCount, {}, 0x1F81);
}

void CanopenChecks::checkGaps(CanopenLine &check)
{
    constexpr std::array<quint16, 3> lists = {0x1016, 0x1028, 0x1F81};
    for (const quint16 index : lists) {
        const ObjectModel *list = check.model.find(index);
        if (list == nullptr)
            continue;
        if (list->entryCount() == 0)
            check.reportObject(CanopenMessage::ListEmpty, index);
        else if (list->subs.back().subindex != list->entryCount())
            check.reportObject(CanopenMessage::ListGaps, index);
    }
}

void CanopenChecks::checkSync(CanopenLine &check)
{
    constexpr quint64 producer = 1U << 30;
    if ((toNumber(check.model.value(0x1005, 0)) & producer) != 0 && !check.model.contains(0x1006))
        check.report(CanopenMessage::SyncPeriodMissing, {}, 0x1006);
}

void CanopenChecks::checkStoreAndRestore(CanopenLine &check)
{
    const bool byApplication = check.settings().decimal("1010autostore_by_application") != 0;
    const quint64 highest = byApplication ? 3 : 1;
    const CanopenMessage id =
        byApplication ? CanopenMessage::StoreByApplication : CanopenMessage::StoreByStack;
    for (const quint16 index : {0x1010, 0x1011}) {
        for (const quint8 subindex : {1, 2, 3}) {
            const QString value = check.model.value(index, subindex);
            if (!value.isEmpty() && toNumber(value) > highest)
                check.report(id, {IndexText::digits(index), QString::number(subindex)}, index,
                             subindex);
        }
    }
}

void CanopenChecks::checkNmtInhibitTime(CanopenLine &check)
{
    if (check.nmtMaster == 1 && !check.model.contains(0x102A))
        check.reportObject(CanopenMessage::NmtInhibitTime, 0x102A);
}

void CanopenChecks::checkIdentity(CanopenLine &check)
{
    constexpr quint16 identity = 0x1018;
    constexpr quint64 testVendor = 0x7A5;
    const auto report = [&](CanopenMessage id, int subindex) {
        check.report(id, {IndexText::digits(identity)}, identity, subindex);
    };
    const auto isEmpty = [&](quint8 subindex) {
        const SubIndexModel *sub = check.model.find(identity, subindex);
        return sub != nullptr && sub->defaultvalue.isEmpty();
    };
    const QString vendor = check.model.value(identity, 1);
    if (vendor.isEmpty())
        report(CanopenMessage::VendorIdEmpty, 1);
    if (toNumber(vendor) == testVendor)
        report(CanopenMessage::VendorIdTest, 1);
    if (isEmpty(2))
        report(CanopenMessage::ProductCodeEmpty, 2);
    if (isEmpty(3))
        report(CanopenMessage::RevisionEmpty, 3);
    const SubIndexModel *serial = check.model.find(identity, 4);
    if (serial != nullptr && serial->implementation == CANopen::ManagedConst)
        report(CanopenMessage::SerialNumberConst, 4);
}

void CanopenChecks::checkErrorField(CanopenLine &check)
{
    if (check.model.contains(0x1003) && !check.model.contains(0x1014))
        check.reportObject(CanopenMessage::ErrorFieldWithoutEmcy, 0x1003);
}

void CanopenChecks::checkEmcyConsumers(CanopenLine &check)
{
    constexpr quint16 consumers = 0x1028;
    constexpr quint8 highestNode = 127;
    const ObjectModel *object = check.model.find(consumers);
    if (object == nullptr)
        return;
    for (const SubIndexModel &sub : object->subs)
        if (sub.subindex != 0 && sub.subindex <= highestNode && toNumber(sub.defaultvalue) == 0)
            check.reportSub(CanopenMessage::EmcyConsumerZero, consumers, sub.subindex);
}

#include "canopen/canopentypes.h"
#include "canopen/indextext.h"
#include "check/linecheck.h"
#include "check/linechecks.h"
#include "check/valuetext.h"
#include "store/objectdatabase.h"

#include <array>

void LineChecks::checkDeviceType(LineCheck &check)
{
    const ObjectModel *deviceType = check.model.find(0x1000);
    const quint32 code = deviceType != nullptr ? deviceType->objecttype : 0;
    if (check.canFd && code != CANopen::ARRAY) {
        check.reportObject(CheckId::DeviceTypeArray, 0x1000);
    }
    if (!check.canFd && code != CANopen::VAR) {
        check.reportObject(CheckId::DeviceTypeVariable, 0x1000);
    }
}

void LineChecks::checkMandatoryObjects(LineCheck &check)
{
    if (!check.model.contains(0x1000)) {
        check.reportObject(CheckId::DeviceTypeMissing, 0x1000);
    }
    if (!check.model.contains(0x1001)) {
        check.reportObject(CheckId::ErrorRegisterMissing, 0x1001);
    }
    if (!check.model.contains(0x1017) && !check.model.contains(0x100C)) {
        check.reportObject(CheckId::HeartbeatMissing, 0x1017);
    }
}

void LineChecks::checkSlaveAssignment(LineCheck &check)
{
    const ObjectModel *slaves = check.model.find(0x1F81);
    if (slaves == nullptr) {
        return;
    }
    const QString text = check.database.getGeneralSetting(QStringLiteral("max_slave_assignment"));
    const auto count = static_cast<quint16>(toDecimal(text.trimmed()));
    if (count > slaves->entryCount()) {
        check.report(CheckId::SlaveAssignmentCount, {}, 0x1F81);
    }
}

void LineChecks::checkGaps(LineCheck &check)
{
    constexpr std::array<quint16, 3> lists = {0x1016, 0x1028, 0x1F81};
    for (const quint16 index : lists) {
        const ObjectModel *list = check.model.find(index);
        if (list == nullptr) {
            continue;
        }
        if (list->entryCount() == 0) {
            check.reportObject(CheckId::ListEmpty, index);
        } else if (list->subs.back().subindex != list->entryCount()) {
            check.reportObject(CheckId::ListGaps, index);
        }
    }
}

void LineChecks::checkSync(LineCheck &check)
{
    constexpr quint64 producer = 1U << 30;
    if ((toNumber(check.model.value(0x1005, 0)) & producer) != 0 && !check.model.contains(0x1006)) {
        check.report(CheckId::SyncPeriodMissing, {}, 0x1006);
    }
}

void LineChecks::checkStoreAndRestore(LineCheck &check)
{
    const bool byApplication = toDecimal(check.database.getGeneralSetting(
                                   QStringLiteral("1010autostore_by_application"))) != 0;
    const quint64 highest = byApplication ? 3 : 1;
    const CheckId id = byApplication ? CheckId::StoreByApplication : CheckId::StoreByStack;
    for (const quint16 index : {0x1010, 0x1011}) {
        for (const quint8 subindex : {1, 2, 3}) {
            const QString value = check.model.value(index, subindex);
            if (!value.isEmpty() && toNumber(value) > highest) {
                check.report(id, {IndexText::digits(index), QString::number(subindex)}, index,
                             subindex);
            }
        }
    }
}

void LineChecks::checkNmtInhibitTime(LineCheck &check)
{
    if (check.nmtMaster == 1 && !check.model.contains(0x102A)) {
        check.reportObject(CheckId::NmtInhibitTime, 0x102A);
    }
}

void LineChecks::checkIdentity(LineCheck &check)
{
    constexpr quint16 identity = 0x1018;
    constexpr quint64 testVendor = 0x7A5;
    const auto report = [&](CheckId id, int subindex) {
        check.report(id, {IndexText::digits(identity)}, identity, subindex);
    };
    const auto isEmpty = [&](quint8 subindex) {
        const SubIndexModel *sub = check.model.find(identity, subindex);
        return sub != nullptr && sub->defaultvalue.isEmpty();
    };
    const QString vendor = check.model.value(identity, 1);
    if (vendor.isEmpty()) {
        report(CheckId::VendorIdEmpty, 1);
    }
    if (toNumber(vendor) == testVendor) {
        report(CheckId::VendorIdTest, 1);
    }
    if (isEmpty(2)) {
        report(CheckId::ProductCodeEmpty, 2);
    }
    if (isEmpty(3)) {
        report(CheckId::RevisionEmpty, 3);
    }
    const SubIndexModel *serial = check.model.find(identity, 4);
    if (serial != nullptr && serial->implementation == CANopen::ManagedConst) {
        report(CheckId::SerialNumberConst, 4);
    }
}

void LineChecks::checkErrorField(LineCheck &check)
{
    if (check.model.contains(0x1003) && !check.model.contains(0x1014)) {
        check.reportObject(CheckId::ErrorFieldWithoutEmcy, 0x1003);
    }
}

void LineChecks::checkEmcyConsumers(LineCheck &check)
{
    constexpr quint16 consumers = 0x1028;
    constexpr quint8 highestNode = 127;
    const ObjectModel *object = check.model.find(consumers);
    if (object == nullptr) {
        return;
    }
    for (const SubIndexModel &sub : object->subs) {
        if (sub.subindex != 0 && sub.subindex <= highestNode && toNumber(sub.defaultvalue) == 0) {
            check.reportSub(CheckId::EmcyConsumerZero, consumers, sub.subindex);
        }
    }
}

#include "check/canopenline.h"

#include "canopen/indextext.h"
#include "canopen/valuetext.h"
#include "store/objectdatabase.h"
#include "store/usersettings.h"

void CanopenLine::readSettings()
{
    limitCheckEnabled = settings().decimal("limit_check") == 1;
    canFd = settings().decimal("canfd_supported") == 1;
    bitwiseEnabled = settings().decimal("bitwise_mapping") != 0;
    nmtMaster = settings().decimal("nmtmaster");
    granularity = static_cast<quint8>(
        settings().lineDecimal(SettingKey::description(QStringLiteral("Granularity")), line));
    // A choice of the user, not of the project.
    autoCorrectionDisabled =
        UserSettings::general(QStringLiteral("disableautocorrection"), false).toBool();
}

void CanopenLine::report(CanopenMessage message, const QStringList &arguments, int index,
                         int subindex)
{
    context.sink.report(message, arguments, {.line = line, .index = index, .subindex = subindex});
}

void CanopenLine::reportObject(CanopenMessage message, quint16 index, const QStringList &more)
{
    report(message, QStringList(IndexText::digits(index)) + more, index);
}

void CanopenLine::reportSub(CanopenMessage message, quint16 index, quint8 subindex,
                            const QStringList &more)
{
    report(message, QStringList{IndexText::digits(index), IndexText::subDigits(subindex)} + more,
           index, subindex);
}

bool CanopenLine::correctDefaultValue(quint16 index, quint8 subindex, const QString &value)
{
    if (!database().setSubIndexDefaultValue(line, index, subindex, value))
        return false;
    corrected(index);
    return true;
}

bool CanopenLine::correctImplementation(quint16 index, quint8 subindex, quint8 implementation)
{
    ObjectDataBase::SUBINDEX_DATA_T record;
    if (!database().getSubIndexData(line, index, subindex, record))
        return false;
    record.implementation = implementation;
    if (!database().addSubIndex(line, index, subindex, record))
        return false;
    corrected(index);
    return true;
}

void CanopenLine::corrected(quint16 index)
{
    model.refresh(database(), index);
    ++correctionCount;
    if (context.changed != nullptr)
        *context.changed = true;
}

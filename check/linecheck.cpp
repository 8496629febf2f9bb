#include "check/linecheck.h"

#include "canopen/indextext.h"
#include "check/modelchecker.h"
#include "check/valuetext.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QScopeGuard>
#include <QSettings>

namespace {

/// A choice of the user, not of the project.
bool readAutoCorrectionDisabled()
{
    const QCoreApplication *application = QCoreApplication::instance();
    if (application == nullptr) {
        return false;
    }
    QSettings settings(QStringLiteral("tolvex"),
                       application->property("AppNameWithVersion").toString());
    settings.beginGroup(QStringLiteral("General"));
    return settings.value(QStringLiteral("disableautocorrection"), false).toBool();
}

QString descriptionSetting(ObjectDataBase &database, quint8 line, const QString &key)
{
    const quint8 before = database.descriptionLine();
    const auto restore = qScopeGuard([&] { database.setDescriptionLine(before); });
    database.setDescriptionLine(line);
    return database.getDescriptionSetting(key);
}

} // namespace

void LineCheck::readSettings()
{
    const auto number = [this](const char *key) {
        return toDecimal(database.getGeneralSetting(QLatin1String(key)));
    };
    limitCheckEnabled = number("limit_check") == 1;
    canFd = number("canfd_supported") == 1;
    bitwiseEnabled = number("bitwise_mapping") != 0;
    nmtMaster = number("nmtmaster");
    granularity = static_cast<quint8>(
        toDecimal(descriptionSetting(database, line, QStringLiteral("Granularity"))));
    stackPath = database.getMiscSetting(QStringLiteral("costackpath"));
    autoCorrectionDisabled = readAutoCorrectionDisabled();
}

void LineCheck::report(CheckId id, const QStringList &arguments, int index, int subindex)
{
    errorCount +=
        checker.report(id, arguments, {.line = line, .index = index, .subindex = subindex});
}

void LineCheck::reportObject(CheckId id, quint16 index, const QStringList &more)
{
    report(id, QStringList(IndexText::digits(index)) + more, index);
}

void LineCheck::reportSub(CheckId id, quint16 index, quint8 subindex, const QStringList &more)
{
    report(id, QStringList{IndexText::digits(index), IndexText::subDigits(subindex)} + more, index,
           subindex);
}

bool LineCheck::correctDefaultValue(quint16 index, quint8 subindex, const QString &value)
{
    if (!database.setSubIndexDefaultValue(line, index, subindex, value)) {
        return false;
    }
    corrected(index);
    return true;
}

bool LineCheck::correctImplementation(quint16 index, quint8 subindex, quint8 implementation)
{
    ObjectDataBase::SUBINDEX_DATA_T record;
    if (!database.getSubIndexData(line, index, subindex, record)) {
        return false;
    }
    record.implementation = implementation;
    if (!database.addSubIndex(line, index, subindex, record)) {
        return false;
    }
    corrected(index);
    return true;
}

void LineCheck::corrected(quint16 index)
{
    model.refresh(database, index);
    ++correctionCount;
    if (changed != nullptr) {
        *changed = true;
    }
}

#include "store/projectconverter.h"

#include "canopen/j1939numbers.h"
#include "store/objectdatabase.h"

#include <QCoreApplication>
#include <QDebug>
#include <QSettings>

namespace {

constexpr quint16 extendedObject = 0x1032;

} // namespace

ProjectConverter::ProjectConverter(ObjectDataBase *store, QObject *parent)
    : QObject(parent), m_store(store)
{
}

void ProjectConverter::doGenericCorrection()
{
    const QString groupFilter = QStringLiteral("drv_group_filter");
    if (m_store->getGeneralSetting(groupFilter) == QLatin1String("1")) {
        const QString defines = QStringLiteral("hw_defines");
        // The switch goes off only once its define is in place.
        if (m_store->setGeneralSetting(defines,
                                       m_store->getGeneralSetting(defines) +
                                           QLatin1String("\n\n /* old group filter setting */\n"
                                                         "#define CO_DRV_GROUP_FILTER 1u\n")))
            m_store->setGeneralSetting(groupFilter, QStringLiteral("0"));
    }
    const QString version = QStringLiteral("udsserver_version");
    if (m_store->getGeneralSetting(version) == QLatin1String("5"))
        m_store->setGeneralSetting(version, QStringLiteral("6"));
}

void ProjectConverter::doStackPathCorrection()
{
    const QString stackPath = QStringLiteral("costackpath");
    if (m_store->getMiscSetting(stackPath).isEmpty()) {
        QSettings settings(QStringLiteral("tolvex"),
                           qApp->property("AppNameWithVersion").toString());
        const QString path = settings.value(QLatin1String("General/") + stackPath).toString();
        if (!path.isEmpty())
            m_store->setMiscSetting(stackPath, path);
    }

    const QList<quint8> lines = m_store->getLines();
    const QString masterList = QStringLiteral("co_ml_ms");
    const QString masters = m_store->getGeneralSetting(masterList);
    if (!lines.isEmpty() && masters.contains(u',') &&
        m_store->setGeneralSetting(QStringLiteral("nmtmaster"), masters))
        m_store->setGeneralSetting(masterList, QString());

    enableIfCounted(QStringLiteral("usdo_server_enabled"), QStringLiteral("usdo_server_cnt"));
    enableIfCounted(QStringLiteral("usdo_client_enabled"), QStringLiteral("usdo_client_cnt"));
    for (const quint8 line : lines)
        rewriteFirstSubIndex(line);
}

void ProjectConverter::enableIfCounted(const QString &enabledKey, const QString &countKey)
{
    if (m_store->getGeneralSetting(enabledKey).toInt(nullptr, 0) == 0 &&
        m_store->getGeneralSetting(countKey).toInt(nullptr, 0) != 0)
        m_store->setGeneralSetting(enabledKey, QStringLiteral("1"));
}

/// Rows of older versions lack values in the columns that were added since.
void ProjectConverter::rewriteFirstSubIndex(quint8 line)
{
    ObjectDataBase::SUBINDEX_DATA_T data;
    if (m_store->subIndexExists(line, extendedObject, 0) &&
        m_store->getSubIndexData(line, extendedObject, 0, data))
        m_store->addSubIndex(line, extendedObject, 0, data);
}

void ProjectConverter::doEnergyBusCorrection()
{
    const QString count = QStringLiteral("device_cnt");
    correctEnergyBusValue(count);
    // The keys themselves are walked: numbering and count of old projects need not agree.
    const QStringList keys = m_store->getEnergyBusSettingKeys();
    for (const QString &key : keys) {
        const bool device = key.startsWith(QLatin1String("device_")) && key != count;
        const bool kind =
            key.startsWith(QLatin1String("sec_")) && key.endsWith(QLatin1String("_kind"));
        if (device || kind)
            correctEnergyBusValue(key);
    }
}

void ProjectConverter::correctEnergyBusValue(const QString &key)
{
    if (m_store->getEnergyBusSetting(key) != QLatin1String("ecurity"))
        return;
    qDebug() << "correct " << key;
    m_store->setEnergyBusSetting(key, QStringLiteral("security"));
}

void ProjectConverter::doJ1939Correction()
{
    for (const quint8 line : m_store->getLines()) {
        if (line > LineType::maximumLines)
            continue;
        m_store->repairMappingCounts(line);
        m_store->foldPageKeys(line);
    }
}

void ProjectConverter::doCanCorrection()
{
    for (const quint8 line : m_store->getLines())
        m_store->deletePGN(line, J1939::addressClaimed, ObjectDataBase::transmit);
    doJ1939Correction();
}

#include "store/projectsettings.h"

#include "canopen/numbertext.h"
#include "store/objectdatabase.h"

#include <QScopeGuard>

QString ProjectSettings::text(const SettingKey &key) const
{
    switch (key.table) {
    case SettingTable::General:
        return m_store->getGeneralSetting(key.name);
    case SettingTable::J1939:
        return m_store->getJ1939Setting(key.name);
    case SettingTable::EnergyBus:
        return m_store->getEnergyBusSetting(key.name);
    case SettingTable::Misc:
        return m_store->getMiscSetting(key.name);
    case SettingTable::Description:
        return lineText(key, 0);
    }
    return {};
}

QStringList ProjectSettings::items(const SettingKey &key) const
{
    return text(key).split(u',');
}

QString ProjectSettings::lineText(const SettingKey &key, quint8 line, Beyond beyond) const
{
    if (key.table != SettingTable::Description)
        return item(text(key), line, beyond);
    const quint8 before = m_store->descriptionLine();
    const auto restore = qScopeGuard([&] { m_store->setDescriptionLine(before); });
    m_store->setDescriptionLine(line);
    return m_store->getDescriptionSetting(key.name);
}

bool ProjectSettings::isTrue(const SettingKey &key) const
{
    return text(key) == QLatin1String("true");
}

int ProjectSettings::decimal(const SettingKey &key) const
{
    return toDecimal(text(key));
}

int ProjectSettings::lineDecimal(const SettingKey &key, quint8 line) const
{
    return toDecimal(lineText(key, line));
}

quint64 ProjectSettings::number(const SettingKey &key) const
{
    return toNumber(text(key));
}

quint64 ProjectSettings::lineNumber(const SettingKey &key, quint8 line) const
{
    return toNumber(lineText(key, line));
}

quint32 ProjectSettings::count(const SettingKey &key) const
{
    return toCount(text(key));
}

quint32 ProjectSettings::lineCount(const SettingKey &key, quint8 line) const
{
    return toCount(lineText(key, line));
}

QString ProjectSettings::item(const QString &list, quint8 line, Beyond beyond)
{
    const QStringList items = list.split(u',');
    return items.value(line, beyond == Beyond::LastItem ? items.constLast() : QString());
}

int ProjectSettings::toDecimal(const QString &text)
{
    return text.toInt();
}

quint64 ProjectSettings::toNumber(const QString &text)
{
    return NumberText::toUnsigned(text).value_or(0);
}

quint32 ProjectSettings::toCount(const QString &text)
{
    const QStringView first = QStringView(text).left(text.indexOf(u','));
    return NumberText::toUnsigned32(first, NumberText::Base::Decimal).value_or(0);
}

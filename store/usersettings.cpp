#include "store/usersettings.h"

#include <QCoreApplication>

UserSettings::UserSettings()
    : QSettings(QCoreApplication::organizationName(),
                QCoreApplication::instance()->property("AppNameWithVersion").toString())
{
}

QVariant UserSettings::general(const QString &key, const QVariant &defaultValue)
{
    return UserSettings().value(QStringLiteral("General/%1").arg(key), defaultValue);
}

void UserSettings::setGeneral(const QString &key, const QVariant &value)
{
    UserSettings().setValue(QStringLiteral("General/%1").arg(key), value);
}

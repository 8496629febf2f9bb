#include "store/usersettings.h"

#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

UserSettings::UserSettings()
    : QSettings(QCoreApplication::organizationName(),
                QCoreApplication::instance()->property("AppNameWithVersion").toString())
{
}

void UserSettings::stayOutOfMissingHome()
{
    const QString place = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (!WorkingCopy::isInMissingHome(place))
        return;
    static const QTemporaryDir folder;
    if (folder.isValid())
        setPath(NativeFormat, UserScope, folder.path());
}

QVariant UserSettings::general(const QString &key, const QVariant &defaultValue)
{
    return UserSettings().value(QStringLiteral("General/%1").arg(key), defaultValue);
}

void UserSettings::setGeneral(const QString &key, const QVariant &value)
{
    UserSettings().setValue(QStringLiteral("General/%1").arg(key), value);
}

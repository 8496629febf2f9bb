#include "store/usersettings.h"

#include "store/workingcopy.h"

#include <QCoreApplication>
#include <QDir>
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
    // Where nothing can be written, no settings are kept either.
    setPath(NativeFormat, UserScope, folder.isValid() ? folder.path() : QDir::tempPath());
}

QVariant UserSettings::general(const QString &key, const QVariant &defaultValue)
{
    return UserSettings().value(QStringLiteral("General/%1").arg(key), defaultValue);
}

void UserSettings::setGeneral(const QString &key, const QVariant &value)
{
    UserSettings().setValue(QStringLiteral("General/%1").arg(key), value);
}

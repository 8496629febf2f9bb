#pragma once

#include <QSettings>

/// The user's settings of this edition and version, outside of any project.
class UserSettings : public QSettings
{
public:
    UserSettings();
    /// Keeps the settings in a folder of the running program where writing them would make a home
    /// that isn't there. Before the first use of settings.
    static void stayOutOfMissingHome();

    /// A value of the group "General".
    [[nodiscard]] static QVariant general(const QString &key,
                                          const QVariant &defaultValue = QVariant());
    static void setGeneral(const QString &key, const QVariant &value);
};

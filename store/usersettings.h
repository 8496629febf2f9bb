#pragma once

#include <QSettings>

/// The user's settings of this edition and version, outside of any project.
class UserSettings : public QSettings
{
public:
    UserSettings();

    /// A value of the group "General".
    [[nodiscard]] static QVariant general(const QString &key,
                                          const QVariant &defaultValue = QVariant());
    static void setGeneral(const QString &key, const QVariant &value);
};

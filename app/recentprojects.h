#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

/// The last ten projects, in the user's settings.
class RecentProjects
{
public:
    static constexpr int capacity = 10;

    struct Entry
    {
        QString path;
        qint64 time = 0; ///< milliseconds since the epoch
    };

    /// Puts the path among them, or renews its time; the oldest gives way when all places are
    /// taken.
    static void add(const QString &path, qint64 time = QDateTime::currentMSecsSinceEpoch());
    /// Latest first.
    [[nodiscard]] static QList<Entry> entries();
};

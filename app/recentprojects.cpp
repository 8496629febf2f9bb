#include "app/recentprojects.h"

#include "store/usersettings.h"

#include <algorithm>

namespace {

QString pathKey(int place)
{
    return QStringLiteral("RecentProjects/project%1path").arg(place);
}

QString timeKey(int place)
{
    return QStringLiteral("RecentProjects/project%1time").arg(place);
}

} // namespace

void RecentProjects::add(const QString &path, qint64 time)
{
    UserSettings settings;
    int place = 0;
    int oldest = 0;
    qint64 oldestTime = std::numeric_limits<qint64>::max();
    for (; place < capacity; ++place) {
        const QString known = settings.value(pathKey(place)).toString();
        if (known.isEmpty() || known == path)
            break;
        const qint64 knownTime = settings.value(timeKey(place)).toLongLong();
        if (knownTime < oldestTime) {
            oldestTime = knownTime;
            oldest = place;
        }
    }
    if (place == capacity)
        place = oldest;
    settings.setValue(pathKey(place), path);
    settings.setValue(timeKey(place), time);
}

QList<RecentProjects::Entry> RecentProjects::entries()
{
    UserSettings settings;
    QList<Entry> result;
    for (int place = 0; place < capacity; ++place) {
        const QString path = settings.value(pathKey(place)).toString();
        if (!path.isEmpty())
            result.append({path, settings.value(timeKey(place)).toLongLong()});
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const Entry &a, const Entry &b) { return a.time > b.time; });
    return result;
}

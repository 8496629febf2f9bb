#pragma once

#include <QDateTime>

/// The one clock of banners and EDS dates. With the environment variable `SOURCE_DATE_EPOCH`
/// (seconds since 1970, UTC) it stands at that moment and speaks UTC, so that two runs on the
/// same project give the same bytes; without it, or if its value can't be read, it is now, in
/// local time.
class GenerationClock
{
public:
    [[nodiscard]] static QDateTime now();
};

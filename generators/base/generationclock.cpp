#include "generators/base/generationclock.h"

QDateTime GenerationClock::now()
{
    bool ok = false;
    const qint64 epoch = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&ok);
    if (!ok || epoch < 0)
        return QDateTime::currentDateTime();
    return QDateTime::fromSecsSinceEpoch(epoch).toUTC();
}

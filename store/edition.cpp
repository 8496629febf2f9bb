#include "store/edition.h"

#include "canopen/linetype.h"

#include <QCoreApplication>

namespace Edition {

bool isCANopen()
{
    return QCoreApplication::applicationName().contains(QLatin1String("CANopen"));
}

bool isJ1939()
{
    return QCoreApplication::applicationName().contains(QLatin1String("J1939"));
}

bool isCan()
{
    return QCoreApplication::applicationName() == QLatin1String("CAN Quillforge");
}

bool isEnergyBus()
{
    return QCoreApplication::applicationName() == QLatin1String("EnergyBus Marlwright");
}

int defaultLineType()
{
    return isJ1939() ? LineType::J1939 : LineType::CANopen;
}

} // namespace Edition

#pragma once

#include <QBrush>
#include <QString>

/// The ground behind objects of an EnergyBus device, by the class of device that they belong to.
namespace DeviceClassColour {

/// No brush for objects of no class. Light enough to read on a light and on a dark palette.
[[nodiscard]] QBrush of(const QString &deviceClass);

} // namespace DeviceClassColour

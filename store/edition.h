#pragma once

#include <QString>

/// The editions of the product differ in nothing but the application name, and every test of the
/// edition looks at that name.
namespace Edition {

[[nodiscard]] bool isCANopen();   ///< the name contains "CANopen"
[[nodiscard]] bool isJ1939();     ///< the name contains "J1939"
[[nodiscard]] bool isCan();       ///< raw CAN and everything: "CAN Quillforge"
[[nodiscard]] bool isEnergyBus(); ///< "EnergyBus Marlwright"

/// The type of line 0 of a new project. In the CAN edition the user chooses it; this is then what
/// a user who does not choose gets.
[[nodiscard]] int defaultLineType();

} // namespace Edition

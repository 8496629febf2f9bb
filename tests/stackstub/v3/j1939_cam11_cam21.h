#ifndef J1939_CAM11_CAM21_H
#define J1939_CAM11_CAM21_H 1

#include "co_canopen.h"

#endif /* J1939_CAM11_CAM21_H */

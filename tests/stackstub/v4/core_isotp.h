#ifndef CORE_ISOTP_H
#define CORE_ISOTP_H 1

#include "co_canopen.h"

#endif /* CORE_ISOTP_H */

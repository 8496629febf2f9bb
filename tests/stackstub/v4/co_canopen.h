#ifndef CO_CANOPEN_H
#define CO_CANOPEN_H 1

#include "core_datatype.h"

#include "../stackstub_canopen.h"

#include "co_events.h"

#endif /* CO_CANOPEN_H */

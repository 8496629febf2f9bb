#ifndef UDS_INDICATION_H
#define UDS_INDICATION_H 1

#include "co_canopen.h"

#endif /* UDS_INDICATION_H */

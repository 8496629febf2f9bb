#ifndef UDS_UDS_H
#define UDS_UDS_H 1

#include "co_canopen.h"

#endif /* UDS_UDS_H */

#ifndef CO_ODACCESS_H
#define CO_ODACCESS_H 1

#include "co_canopen.h"

#endif /* CO_ODACCESS_H */

#ifndef ISO_TP_H
#define ISO_TP_H 1

#include "co_canopen.h"

#endif /* ISO_TP_H */

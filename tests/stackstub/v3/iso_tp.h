#include "co_canopen.h"

#ifndef APP_H
#define APP_H 1
#endif

#ifndef APP_H
#define APP_H 1
extern UNSIGNED32 appU32;
#endif

#ifndef APP_H
#define APP_H 1
extern UNSIGNED8 appU8;
#endif

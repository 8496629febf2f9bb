#ifndef APP_H
#define APP_H 1
extern char texts[10][20];
extern char shortText[4];
extern char exactText[4];
#endif

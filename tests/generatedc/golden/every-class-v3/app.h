#ifndef APP_H
#define APP_H 1
extern UNSIGNED8 appU8;
extern UNSIGNED16 appU16;
extern UNSIGNED24 appU24;
extern UNSIGNED32 appTable[2][3];
extern UNSIGNED40 appU40;
extern UNSIGNED48 appU48;
extern UNSIGNED64 appU64;
extern INTEGER8 appI8;
extern INTEGER16 appI16;
extern INTEGER24 appI24;
extern INTEGER32 appI32;
extern REAL32 appR32;
extern UNSIGNED16 appList[300];
extern char appText[20];
extern char appUtf8[20];
extern UNSIGNED8 appOctets[8];
extern UNSIGNED8 appDomain[100];
#endif

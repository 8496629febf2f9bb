/* Starts the stack with the generated dictionary and prints what it was given. */

#include <stdio.h>

#include <gen_define.h>

#include <co_canopen.h>

#ifdef STACKSTUB_USER
#include <gen_user.h>
#endif

void stackstubPrintDictionary(void);
void stackstubPrintApplication(void);

int main(void)
{
    RET_T retVal;
#ifdef STACKSTUB_FD
    BOOL_T modes[STACKSTUB_LINES] = {CO_TRUE};

    retVal = coCanOpenStackInit(NULL, modes
#else
    retVal = coCanOpenStackInit(NULL
#endif
#ifdef STACKSTUB_MULTI_LINE
                                ,
                                NULL
#endif
    );
    printf("init %d\n", (int)retVal);
    stackstubPrintDictionary();
#ifdef STACKSTUB_STRING_DEFAULTS
    retVal = userOverwriteStringDefaultvalues();
    stackstubPrintApplication();
#endif
#ifdef STACKSTUB_OVERWRITE
#ifdef STACKSTUB_MULTI_LINE
    retVal = userOverwriteCobIdSettingsLine(0u);
#else
    retVal = userOverwriteCobIdSettings();
#endif
    printf("overwrite %d\n", (int)retVal);
#endif
    return 0;
}

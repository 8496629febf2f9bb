#include "generation/protocoloutputs.h"

QList<OutputRow> ProtocolOutputs::ofRawCAN()
{
    return {
        {.step = 60, .applies = whenRawCAN, .missing = "raw CAN documents (text, HTML)"},
    };
}

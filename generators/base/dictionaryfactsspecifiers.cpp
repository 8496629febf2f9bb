#include "generators/base/dictionaryfactsspecifiers.h"

#include <algorithm>
#include <array>

namespace {

enum class Subs : quint8 { Any, NotZero, One };

struct Range
{
    quint16 low;
    quint16 high;
    Subs subs;
    const char *suffix;
    quint16 base; ///< taken from the index to give the service's number
};

// Ascending and without overlap.
constexpr std::array<Range, 26> ranges = {{
    {0x1003, 0x1003, Subs::Any, "_EMCY", 0},
    {0x1005, 0x1006, Subs::Any, "_SYNC", 0},
    {0x100C, 0x100D, Subs::Any, "_ERRCTRL", 0},
    {0x1010, 0x1011, Subs::NotZero, "_STORE", 0},
    {0x1012, 0x1012, Subs::Any, "_TIME", 0},
    {0x1014, 0x1015, Subs::Any, "_EMCY", 0},
    {0x1016, 0x1016, Subs::NotZero, "_ERRCTRL", 0},
    {0x1017, 0x1017, Subs::Any, "_ERRCTRL", 0},
    {0x1019, 0x1019, Subs::Any, "_SYNC", 0},
    {0x1028, 0x1028, Subs::NotZero, "_EMCY", 0},
    {0x1029, 0x1029, Subs::One, "_ERRCTRL", 0},
    {0x102A, 0x102A, Subs::Any, "_NMT", 0},
    {0x1032, 0x1032, Subs::Any, "_EMCY", 0},
    {0x1200, 0x127F, Subs::NotZero, "_SDO_SERVER", 0x11FF},
    {0x1280, 0x12FF, Subs::NotZero, "_SDO_CLIENT", 0x127F},
    {0x1300, 0x1300, Subs::Any, "_GFC", 0},
    {0x1301, 0x13F0, Subs::NotZero, "_SRDO", 0},
    {0x13FE, 0x13FF, Subs::Any, "_SRDO", 0},
    {0x1400, 0x15FF, Subs::NotZero, "_RPDO", 0x13FF},
    {0x1600, 0x17FF, Subs::Any, "_RMAP", 0x15FF},
    {0x1800, 0x19FF, Subs::NotZero, "_TPDO", 0x17FF},
    {0x1A00, 0x1BFF, Subs::Any, "_TMAP", 0x19FF},
    {0x1F10, 0x1F11, Subs::Any, "_SRD", 0},
    {0x1F2C, 0x1F2C, Subs::NotZero, "_NETWORK", 0},
    {0x1F80, 0x1F82, Subs::Any, "_NMT", 0},
    {0x1F90, 0x1F90, Subs::Any, "_FLYMA", 0},
}};

bool applies(Subs subs, quint8 sub)
{
    return subs == Subs::Any || (subs == Subs::NotZero ? sub != 0 : sub == 1);
}

} // namespace

ServiceSpecifier serviceSpecifier(quint16 index, quint8 sub)
{
    const auto range =
        std::lower_bound(ranges.begin(), ranges.end(), index,
                         [](const Range &entry, quint16 wanted) { return entry.high < wanted; });
    if (range == ranges.end() || index < range->low || !applies(range->subs, sub))
        return {};
    return {range->suffix, quint16(index - range->base)};
}

#include "generators/base/dictionaryfactsspecifiers.h"

#include "canopen/objectranges.h"

#include <algorithm>
#include <array>

namespace {

enum class Subs : quint8 { Any, NotZero, One };

struct Range
{
    ObjectRange objects;
    Subs subs;
    const char *suffix;
    quint16 base; ///< taken from the index to give the service's number
};

// Ascending and without overlap.
constexpr std::array<Range, 26> ranges = {{
    {{0x1003, 0x1003}, Subs::Any, "_EMCY", 0},
    {{0x1005, 0x1006}, Subs::Any, "_SYNC", 0},
    {{0x100C, 0x100D}, Subs::Any, "_ERRCTRL", 0},
    {{0x1010, 0x1011}, Subs::NotZero, "_STORE", 0},
    {{0x1012, 0x1012}, Subs::Any, "_TIME", 0},
    {{0x1014, 0x1015}, Subs::Any, "_EMCY", 0},
    {{0x1016, 0x1016}, Subs::NotZero, "_ERRCTRL", 0},
    {{0x1017, 0x1017}, Subs::Any, "_ERRCTRL", 0},
    {{0x1019, 0x1019}, Subs::Any, "_SYNC", 0},
    {{0x1028, 0x1028}, Subs::NotZero, "_EMCY", 0},
    {{0x1029, 0x1029}, Subs::One, "_ERRCTRL", 0},
    {{0x102A, 0x102A}, Subs::Any, "_NMT", 0},
    {{0x1032, 0x1032}, Subs::Any, "_EMCY", 0},
    {ObjectRanges::sdoServers, Subs::NotZero, "_SDO_SERVER", 0x11FF},
    {ObjectRanges::sdoClients, Subs::NotZero, "_SDO_CLIENT", 0x127F},
    {{0x1300, 0x1300}, Subs::Any, "_GFC", 0},
    {{0x1301, 0x13F0}, Subs::NotZero, "_SRDO", 0},
    {{0x13FE, 0x13FF}, Subs::Any, "_SRDO", 0},
    {ObjectRanges::receivePdos, Subs::NotZero, "_RPDO", 0x13FF},
    {ObjectRanges::receiveMappings, Subs::Any, "_RMAP", 0x15FF},
    {ObjectRanges::transmitPdos, Subs::NotZero, "_TPDO", 0x17FF},
    {ObjectRanges::transmitMappings, Subs::Any, "_TMAP", 0x19FF},
    {{0x1F10, 0x1F11}, Subs::Any, "_SRD", 0},
    {{0x1F2C, 0x1F2C}, Subs::NotZero, "_NETWORK", 0},
    {{0x1F80, 0x1F82}, Subs::Any, "_NMT", 0},
    {{0x1F90, 0x1F90}, Subs::Any, "_FLYMA", 0},
}};

bool applies(Subs subs, quint8 sub)
{
    return subs == Subs::Any || (subs == Subs::NotZero ? sub != 0 : sub == 1);
}

} // namespace

ServiceSpecifier serviceSpecifier(quint16 index, quint8 sub)
{
    const auto range = std::lower_bound(
        ranges.begin(), ranges.end(), index,
        [](const Range &entry, quint16 wanted) { return entry.objects.high < wanted; });
    if (range == ranges.end() || !range->objects.contains(index) || !applies(range->subs, sub))
        return {};
    return {range->suffix, quint16(index - range->base)};
}

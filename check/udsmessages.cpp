#include "check/udsmessages.h"

#include "check/messagemarks.h"

namespace {

using enum CheckClass;
using enum UdsMessage;

// clang-format off
constexpr CheckDefinition definitions[] = {
    {Roles, "PRJ-UDS-ROLES", Error, 0, 1, "udsserver_supported",
     MARK_RED "UDS server and UDS client together on one line is not possible.",
     "The stack builds either the server or the client for a line. All messages of one run count as one error."},
    {StaticUnused, "PRJ-UDS-STATIC-UNUSED", Warning, 8, 0, "uds_static_indication",
     "<strong>Warning: </strong>Static UDS indication is enabled, but neither the UDS server nor a UDS client is active. Disable it in UDS Settings -> Static Indication or activate UDS.",
     "Static indication functions are called by a UDS server or client only."},
    {StaticNoName, "PRJ-UDS-STATIC-NO-NAME", Warning, 8, 0, "uds_static_indication",
     "<strong>Warning: </strong>Static UDS indication is enabled but no service has a function name; no callback will be wired up.",
     "Without a function name the application hears nothing of UDS requests."},
    {StaticDuplicate, "PRJ-UDS-STATIC-DUPLICATE", Error, 0, 1, "",
     MARK_RED "The function name '%1' is used for more than one UDS static indication service; each service needs its own callback (different signature).",
     "The callbacks have different signatures, so the generated code would not compile."},
};
// clang-format on

static_assert(standsInOrderOf<UdsMessage>(definitions));

} // namespace

std::span<const CheckDefinition> udsMessages()
{
    return definitions;
}

const CheckDefinition &definitionOf(UdsMessage message)
{
    return definitions[static_cast<std::size_t>(message)];
}

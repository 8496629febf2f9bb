#include "check/commonmessages.h"

#include "check/messagemarks.h"

namespace {

using enum CheckClass;
using enum CommonMessage;

// clang-format off
constexpr CheckDefinition definitions[] = {
    {UpdateCanopen37, "PRJ-UPDATE-CO-37", Hint, 7, 0, "",
     "<strong>Hint: </strong>Add <font color='red'>co_memcpy.c</font> to your project or Makefile.",
     "Stacks for tools up to 3.8 did not have this file. Shown once after the update."},
    {UpdateMulti37, "PRJ-UPDATE-MP-37", Hint, 7, 0, "",
     "<strong>Hint: </strong>Add <font color='red'>co_memcpy.c and co_mapping.c</font> to your project or Makefile.",
     "Stacks for tools up to 3.8 did not have these files. Shown once after the update."},
    {UpdateUds, "PRJ-UPDATE-UDS", Hint, 7, 0, "",
     "<strong>Hint: </strong>Add <font color='red'>uds_init.c</font> to your project or Makefile.",
     "UDS initialisation moved to a file of its own after 3.8. Shown once after the update."},
    {UpdateCanopen36, "PRJ-UPDATE-CO-36", Hint, 7, 0, "",
     "<strong>Hint: </strong>Add <font color='red'>co_common.c and co_memcpy.c</font> to your project or Makefile.",
     "Stacks for tools before 3.7 did not have these files. Shown once after the update."},
    {UpdateMulti36, "PRJ-UPDATE-MP-36", Hint, 7, 0, "",
     "<strong>Hint: </strong>Add <font color='red'>co_common.c, co_memcpy.c and co_mapping.c</font> to your project or Makefile.",
     "Stacks for tools before 3.7 did not have these files. Shown once after the update."},
    {SdoBlockSize, "PRJ-SDO-BLOCK-SIZE", Error, 0, 1, "sdo_blocktransfer_block_size",
     MARK_RED "CANopen SDO block size may not exceed 127.",
     "CiA 301 allows 1 to 127 segments in a block."},
    {TimerInterval, "PRJ-TIMER-INTERVAL", Error, 0, 1, "co_timer_interval",
     MARK_RED "Timer interval not set in Common Settings -> Hardware/Target.",
     "All times of the stack are counted in timer intervals."},
    {NmtMasterMultiProtocol, "PRJ-NMT-MULTI-PROTOCOL", Error, 0, 1, "nmtmaster",
     MARK_RED "The CANopen setting 'NMT Master or Slave' is not supported in multi-protocol projects.",
     "The choice at run time exists in pure CANopen stacks only."},
    {NumericSetting, "PRJ-NUMERIC", Error, 0, 1, "",
     MARK_ERROR "\"%1\" has non-numeric value \"%2\".",
     "The value becomes a number in the generated code."},
    {LineTypeMissing, "PRJ-LINE-TYPE", Warning, 0, 0, "",
     "Warning line type not set for line %1.",
     "A line without a protocol is neither checked nor generated."},
};
// clang-format on

static_assert(standsInOrderOf<CommonMessage>(definitions));

} // namespace

std::span<const CheckDefinition> commonMessages()
{
    return definitions;
}

const CheckDefinition &definitionOf(CommonMessage message)
{
    return definitions[static_cast<std::size_t>(message)];
}

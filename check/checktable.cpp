#include "check/checktable.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr auto error = CheckClass::Error;
constexpr auto warning = CheckClass::Warning;
constexpr auto hint = CheckClass::Hint;
constexpr auto info = CheckClass::Info;
constexpr auto corrected = CheckClass::Corrected;
constexpr auto note = CheckClass::Note;

/// The mark-up of errors of the project pass and of the stack fit.
#define MARK_RED "<strong><font color='red'>Error: </font></strong>"
#define MARK_ERROR "<strong>Error: </strong>"

// clang-format off
constexpr CheckDefinition definitions[] = {
    {CheckId::ProjectUdsRoles, "PRJ-UDS-ROLES", error, 0, true,
     MARK_RED "UDS server and UDS client together on one line is not possible.",
     "The stack builds either the server or the client for a line. All messages of one run count as one error."},
    {CheckId::ProjectUdsStaticUnused, "PRJ-UDS-STATIC-UNUSED", warning, 8, false,
     "<strong>Warning: </strong>Static UDS indication is enabled, but neither the UDS server nor a UDS client is active. Disable it in UDS Settings -> Static Indication or activate UDS.",
     "Static indication functions are called by a UDS server or client only."},
    {CheckId::ProjectUdsStaticNoName, "PRJ-UDS-STATIC-NO-NAME", warning, 8, false,
     "<strong>Warning: </strong>Static UDS indication is enabled but no service has a function name; no callback will be wired up.",
     "Without a function name the application hears nothing of UDS requests."},
    {CheckId::ProjectUdsStaticDuplicate, "PRJ-UDS-STATIC-DUPLICATE", error, 0, true,
     MARK_RED "The function name '%1' is used for more than one UDS static indication service; each service needs its own callback (different signature).",
     "The callbacks have different signatures, so the generated code would not compile."},
    {CheckId::ProjectUpdateCanopen37, "PRJ-UPDATE-CO-37", hint, 7, false,
     "<strong>Hint: </strong>Add <font color='red'>co_memcpy.c</font> to your project or Makefile.",
     "Stacks for tools up to 3.8 did not have this file. Shown once after the update."},
    {CheckId::ProjectUpdateMulti37, "PRJ-UPDATE-MP-37", hint, 7, false,
     "<strong>Hint: </strong>Add <font color='red'>co_memcpy.c and co_mapping.c</font> to your project or Makefile.",
     "Stacks for tools up to 3.8 did not have these files. Shown once after the update."},
    {CheckId::ProjectUpdateUds, "PRJ-UPDATE-UDS", hint, 7, false,
     "<strong>Hint: </strong>Add <font color='red'>uds_init.c</font> to your project or Makefile.",
     "UDS initialisation moved to a file of its own after 3.8. Shown once after the update."},
    {CheckId::ProjectUpdateCanopen36, "PRJ-UPDATE-CO-36", hint, 7, false,
     "<strong>Hint: </strong>Add <font color='red'>co_common.c and co_memcpy.c</font> to your project or Makefile.",
     "Stacks for tools before 3.7 did not have these files. Shown once after the update."},
    {CheckId::ProjectUpdateMulti36, "PRJ-UPDATE-MP-36", hint, 7, false,
     "<strong>Hint: </strong>Add <font color='red'>co_common.c, co_memcpy.c and co_mapping.c</font> to your project or Makefile.",
     "Stacks for tools before 3.7 did not have these files. Shown once after the update."},
    {CheckId::ProjectSdoBlockSize, "PRJ-SDO-BLOCK-SIZE", error, 0, true,
     MARK_RED "CANopen SDO block size may not exceed 127.",
     "CiA 301 allows 1 to 127 segments in a block."},
    {CheckId::ProjectTimerInterval, "PRJ-TIMER-INTERVAL", error, 0, true,
     MARK_RED "Timer interval not set in Common Settings -> Hardware/Target.",
     "All times of the stack are counted in timer intervals."},
    {CheckId::ProjectNmtMasterMultiProtocol, "PRJ-NMT-MULTI-PROTOCOL", error, 0, true,
     MARK_RED "The CANopen setting 'NMT Master or Slave' is not supported in multi-protocol projects.",
     "The choice at run time exists in pure CANopen stacks only."},
    {CheckId::ProjectNumericSetting, "PRJ-NUMERIC", error, 0, true,
     MARK_ERROR "\"%1\" has non-numeric value \"%2\".",
     "The value becomes a number in the generated code."},
    {CheckId::ProjectLineType, "PRJ-LINE-TYPE", warning, 0, false,
     "Warning line type not set for line %1.",
     "A line without a protocol is neither checked nor generated."},

    {CheckId::StackNoPath, "CO-STACK-NO-PATH", info, 7, false,
     "Info: Path to protocol stack not specified. Cannot check if generated code fits to installed stack/framework.",
     "Without the folder of the stack its version can't be compared."},
    {CheckId::StackNoPathNote, "CO-STACK-NO-PATH-NOTE", note, 7, false,
     "Specify path to protocol stack at Options -> Settings.",
     "Follows CO-STACK-NO-PATH and is withheld with it."},
    {CheckId::StackNoFeatureFile, "CO-STACK-NO-FILE", info, 7, false,
     "Info: No *_featureinfo_*.xml file found in protocol stack folder %1. Cannot check if generated code fits to installed stack/framework.",
     "The stack tells the tool version that it needs in this file."},
    {CheckId::StackNeedsOlderTool, "CO-STACK-OLDER", error, 0, true,
     MARK_RED "Version of installed stack does not fit. It requires an older version of the tool. Cannot generate files.",
     "The feature file can't be read, or it has no required_tool_version as newer stacks have."},
    {CheckId::StackNeedsOtherTool, "CO-STACK-VERSION", error, 0, true,
     MARK_RED "Version of installed stack does not fit. It requires tool version %1. Cannot generate files. This is version %2.",
     "Generated code and stack share structures that change from version to version."},

    {CheckId::ValueConversion, "CO-VALUE", error, 0, true,
     MARK_ERROR "Value conversion failed with Object 0x%1-0x%2.",
     "The default value can't be read as the data type. Each failure counts twice."},
    {CheckId::NodeIdMissing, "CO-NODE-ID", error, 0, true,
     MARK_ERROR "CANopen basic Stack Settings: No Node-Id specified for line %1: Specify a number between 1 and 127, or 255 for LSS or a function name like e.g. readDipSwitch in the line below.",
     "A CANopen device can't start without a node-ID."},
    {CheckId::NodeIdFunctionOpens, "CO-NODE-ID-FCT-OPEN", error, 0, true,
     MARK_ERROR "CANopen basic Stack Settings: The name of the NodeId function may not include a (.",
     "The name alone is wanted, the generator writes the call."},
    {CheckId::NodeIdFunctionCloses, "CO-NODE-ID-FCT-CLOSE", error, 0, true,
     MARK_ERROR "CANopen basic Stack Settings: The name of the NodeId function may not include a ).",
     "The name alone is wanted, the generator writes the call."},
    {CheckId::ReceiveBuffer, "CO-BUFFER-RX", error, 0, true,
     MARK_ERROR "Common Settings: CAN receive buffer size must be specified individually for each line.",
     "Each line has a receive buffer of its own."},
    {CheckId::TransmitBuffer, "CO-BUFFER-TX", error, 0, true,
     MARK_ERROR "Common Settings: CAN transmit buffer size must be specified individually for each line.",
     "Each line has a transmit buffer of its own."},
    {CheckId::MultiLineMasterSlave, "CO-ML-MASTER-SLAVE", error, 0, true,
     MARK_ERROR "General Settings: The ML master/slave settings size must be specified individually for each line. (e.g 0,1)",
     "With the role chosen at run time every line needs its own choice."},
    {CheckId::UsdoServerCount, "CO-USDO-SERVER-COUNT", error, 0, true,
     MARK_ERROR "Number of USDO server connections must be at least 1.",
     "An enabled USDO server (CiA 1301) without a connection can't be reached."},
    {CheckId::PdoIndicationPair, "CO-PDO-INDICATION-PAIR", error, 0, true,
     MARK_ERROR "Both static RPDO and TPDO event indication functions have to be defined.",
     "The stack takes both static functions or none."},
    {CheckId::EmcyRouting, "CO-EMCY-ROUTING", error, 0, true,
     MARK_ERROR "Both EMCY producer objects and EMCY consumer objects must be present to use EMCY routing.",
     "Routing takes EMCY messages in by 0x1028 of one line and sends them by 0x1014 of another. Shown once a run."},

    {CheckId::DeviceTypeArray, "CO-1000-ARRAY", error, 0, true,
     MARK_ERROR "Object 0x%1 (Device Type) must be an ARRAY according to the CANopen FD specification.",
     "CiA 1301 defines the device type as an array."},
    {CheckId::DeviceTypeVariable, "CO-1000-VARIABLE", error, 0, true,
     MARK_ERROR "Object 0x%1 (Device Type) must be a VARIABLE according to the CANopen specification.",
     "CiA 301 defines the device type as a variable."},
    {CheckId::DeviceTypeMissing, "CO-1000-MISSING", error, 0, true,
     MARK_ERROR "Object 0x%1 (Device Type) does not exist, but it is mandatory according to CANopen specification.",
     "Mandatory by CiA 301."},
    {CheckId::ErrorRegisterMissing, "CO-1001-MISSING", error, 0, true,
     MARK_ERROR "Object 0x%1 (Error Register) does not exist, but it is mandatory according to CANopen specification.",
     "Mandatory by CiA 301."},
    {CheckId::HeartbeatMissing, "CO-1017-MISSING", error, 0, true,
     MARK_ERROR "Object 0x%1 (Producer Heartbeat) and 0x100C (Guard Time) do not exist, but one of them is mandatory.",
     "CiA 301 wants one way of error control."},
    {CheckId::SlaveAssignmentCount, "CO-1F81-COUNT", error, 0, true,
     MARK_ERROR "Object 0x1f81: Value of 'max slave Assigment count' may not exceed number of subindices of object 0x1f81.",
     "Each assignment is a subindex of 0x1F81 (CiA 302-2)."},
    {CheckId::ListEmpty, "CO-LIST-EMPTY", error, 0, true,
     MARK_ERROR "Object 0x%1 does not contain any sub-indices.",
     "The lists 0x1016, 0x1028 and 0x1F81 make no sense without an entry."},
    {CheckId::ListGaps, "CO-LIST-GAPS", error, 0, true,
     MARK_ERROR "Object 0x%1 may not have gaps.",
     "The stack addresses the entries of these lists by position."},
    {CheckId::SyncPeriodMissing, "CO-1006-MISSING", error, 0, true,
     MARK_ERROR "Object 0x1006 must be present, if SYNC producer bit is set in object 0x1005.",
     "A SYNC producer needs its period (CiA 301)."},
    {CheckId::StoreByApplication, "CO-STORE-APPLICATION", error, 0, true,
     MARK_ERROR "Object 0x%1:%2 only default values between 0 and 3 are supported.",
     "Two bits tell how parameters are saved (CiA 301, 0x1010)."},
    {CheckId::StoreByStack, "CO-STORE-STACK", error, 0, true,
     MARK_ERROR "Object 0x%1:%2 only default values between 0 and 1 are supported. Enable CO_AUTO_STORE_HANDLED_BY_APPLICATION to support other values",
     "The stack saves on command only."},
    {CheckId::NmtInhibitTime, "CO-102A-MISSING", warning, 8, false,
     "Warning: Object 0x%1: The object 0x102A (NMT inhibit time) is highly recommended for masters. It may be added via 'Add Communication Service'.",
     "Without it an NMT master may send commands faster than slaves take them (CiA 302-2)."},
    {CheckId::VendorIdEmpty, "CO-1018-VENDOR", error, 0, true,
     MARK_ERROR "Object 0x%1-0x01: The value of subindex 1 (vendor-ID) is empty.",
     "The vendor-ID is mandatory by CiA 301."},
    {CheckId::VendorIdTest, "CO-1018-VENDOR-TEST", warning, 2, false,
     "<strong>Warning: Object 0x%1-0x01: The vendor-ID 0x7A5 (tolvex device systems GmbH) may not be used for production. </strong>",
     "A vendor-ID belongs to the company to which CiA has given it."},
    {CheckId::ProductCodeEmpty, "CO-1018-PRODUCT", error, 0, true,
     MARK_ERROR "Object 0x%1-0x02: The value of subindex 2 (product code) is empty.",
     "A subindex that exists needs a value."},
    {CheckId::RevisionEmpty, "CO-1018-REVISION", error, 0, true,
     MARK_ERROR "Object 0x%1-0x03: The value of subindex 3 (revision number) is empty.",
     "A subindex that exists needs a value."},
    {CheckId::SerialNumberConst, "CO-1018-SERIAL", warning, 2, false,
     "<strong>Warning</strong>: Object 0x%1: The implementation type of subindex 4 (serial number) is 'Managed Const'. This is not useful in most cases.",
     "A constant serial number is the same in every device."},
    {CheckId::ErrorFieldWithoutEmcy, "CO-1003-EMCY", error, 0, true,
     MARK_ERROR "Object 0x%1: This object can only be used, if object 0x1014 exists as well.",
     "The error field keeps the errors that were sent as EMCY."},
    {CheckId::EmcyConsumerZero, "CO-1028-ZERO", error, 0, true,
     MARK_ERROR "Object 0x%1-%2: The value of this sub index may not be 0x00000000.",
     "COB-ID 0 is the NMT command."},

    {CheckId::ArrayEmpty, "CO-OBJ-EMPTY", error, 0, true,
     MARK_ERROR "Object 0x%1: This array does not contain any sub-indices",
     "An array or record is made of its subindices."},
    {CheckId::SubZeroCorrected, "CO-SUB0-VALUE", corrected, 0, false,
     "<i>Corrected: Object 0x%1</i>: The value of subindex 0 does not fit to the highest subindex.",
     "Subindex 0 tells the highest subindex (CiA 301)."},
    {CheckId::SubZeroDefaultFlag, "CO-SUB0-DEFAULT", error, 0, true,
     MARK_ERROR "Object 0x%1-0:The 'default value' flag must be set for this subindex.",
     "Without a default the device would start with another number of entries."},
    {CheckId::SubZeroConstCorrected, "CO-SUB0-CONST", corrected, 0, false,
     "<i>Corrected: Object 0x%1-0</i>:'Managed Const' is used as implementation type for this subindex.",
     "A constant subindex 0 needs no memory in the device."},
    {CheckId::SubZeroNotInEds, "CO-SUB0-EDS", warning, 6, false,
     "Warning: Object 0x%1-0:The defaultvalue of this subindex should be written into the EDS/XDD file.",
     "Tools that read the EDS learn the number of entries from it."},
    {CheckId::ObjectNameMissing, "CO-OBJ-NAME", error, 0, true,
     MARK_ERROR "Object 0x%1: The object does not have a name. (Required for EDS)",
     "CiA 306 wants a name."},
    {CheckId::VariableWithSubIndices, "CO-OBJ-VARIABLE", error, 0, true,
     MARK_ERROR "Object 0x%1: The object is a VARIABLE but has multiple subindices.",
     "A variable has subindex 0 only."},
    {CheckId::LimitCheckDisabled, "CO-SUB-LIMIT-OFF", warning, 5, false,
     "Warning: Object 0x%1-0x%2: Limit Check is activated, but it is deactivated in the global settings.",
     "The limits are not in the generated code."},
    {CheckId::SubIndexNameMissing, "CO-SUB-NAME", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The object does not have a name. (Required for EDS)",
     "CiA 306 wants a name."},
    {CheckId::VariableNameMissing, "CO-SUB-VARIABLE", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The variable name is missing.",
     "An application variable is referred to by its name."},
    {CheckId::VariableNameInvalid, "CO-SUB-VARIABLE-CHARS", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The variable name contains invalid characters like spaces or commas.",
     "The name stands in C code as it is; references such as a.b[2] are allowed."},
    {CheckId::AccessTypeInvalid, "CO-SUB-ACCESS", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The access type '%3' is invalid. Use ro, rw, const, wo, rww or rwr instead.",
     "The access types of CiA 306."},
    {CheckId::ManagedConstWritable, "CO-SUB-CONST-WRITE", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The implementation type is Managed Const, but the access type allows write access.",
     "A constant can't be written."},
    {CheckId::ManagedOctetString, "CO-SUB-OCTET-STRING", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for octet strings.",
     "The stack has no memory of its own for strings."},
    {CheckId::ManagedVisibleString, "CO-SUB-VISIBLE-STRING", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for visible strings. Use 'Managed Const' or 'Variable' instead.",
     "The stack has no memory of its own for strings."},
    {CheckId::ManagedUtf8String, "CO-SUB-UTF8-STRING", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The implementation type 'Managed Variable' is not possible for UTF8 strings. Use 'Managed Const' or 'Variable' instead.",
     "The stack has no memory of its own for strings."},
    {CheckId::DataTypeUnknown, "CO-SUB-TYPE", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: Unknown or unsupported datatype.",
     "No code can be generated without a data type."},
    {CheckId::DefaultOutOfLimits, "CO-SUB-LIMITS", error, 0, true,
     MARK_ERROR "Object 0x%1-0x%2: The defaultvalue is not in the range of the limits.",
     "The device would refuse its own default. An upper limit of 0x7FFFFF stands for none."},

    {CheckId::MappingWithoutCommunication, "CO-PDO-NO-COMMUNICATION", error, 0, true,
     MARK_ERROR "Object 0x%1: The corresponding PDO communication parameter object 0x%2 does not exist.",
     "A PDO is a pair of communication and mapping object."},
    {CheckId::MappingEmpty, "CO-PDO-EMPTY", error, 0, true,
     MARK_ERROR "Object 0x%1 of line %2: The PDO mapping table does not contain any mapped object.",
     "A PDO without an entry carries nothing."},
    {CheckId::MappingAccessMixed, "CO-PDO-ACCESS-MIXED", error, 0, true,
     MARK_ERROR "Object 0x%1: All subindices of a PDO mapping object must have the same access type. (const for static mapping or rw for dynamic mapping",
     "A mapping is static or dynamic as a whole."},
    {CheckId::MappingEntryEmpty, "CO-PDO-ENTRY-EMPTY", error, 0, true,
     MARK_ERROR "Object 0x%1:%2 is an active mapping entry but maps no object (empty entry).",
     "The entries behind it would slip."},
    {CheckId::MappedObjectMissing, "CO-PDO-MAPPED-MISSING", error, 0, true,
     MARK_ERROR "Object 0x%1: The mapped object 0x%2:%3 does not exist.",
     "The stack refuses such a mapping."},
    {CheckId::MappedObjectForbidden, "CO-PDO-MAPPED-FORBIDDEN", error, 0, true,
     MARK_ERROR "Object 0x%1: PDO mapping is not allowed for object 0x%2:%3.",
     "The PDO mapping attribute of the object is off."},
    {CheckId::MappedObjectTooSmall, "CO-PDO-MAPPED-SMALL", warning, 3, false,
     "Warning: Object 0x%1: The size of the mapped object 0x%2:%3 is too small.",
     "The entry carries a part of the object only."},
    {CheckId::MappedObjectTooLarge, "CO-PDO-MAPPED-LARGE", error, 0, true,
     MARK_ERROR "Object 0x%1: The size of the mapped object 0x%2:%3 is too large.",
     "The entry reaches behind the end of the object."},
    {CheckId::MappedAccessTransmit, "CO-PDO-ACCESS-TPDO", error, 0, true,
     MARK_ERROR "Object 0x%1: The access right of the mapped object 0x%2:%3 does not fit for a TPDO.",
     "What is sent must be readable (CiA 301: rww maps into RPDOs)."},
    {CheckId::MappedAccessReceive, "CO-PDO-ACCESS-RPDO", error, 0, true,
     MARK_ERROR "Object 0x%1: The access right of the mapped object 0x%2:%3 does not fit for an RPDO.",
     "What is received must be writable (CiA 301: rwr maps into TPDOs)."},
    {CheckId::PdoTooLong, "CO-PDO-LENGTH", error, 0, true,
     MARK_ERROR "Object 0x%1: Size of PDO exceeds the limit. ",
     "64 bits on classical CAN, 512 bits on CAN FD."},
    {CheckId::MappingCountInvalid, "CO-PDO-COUNT", error, 0, true,
     MARK_ERROR "Object 0x%1:  Invalid number of mapping entries.",
     "Subindex 0 activates entries that don't exist."},
    {CheckId::PdoDisabledCorrected, "CO-PDO-DISABLED", corrected, 0, false,
     "<i>Corrected: Object 0x%1</i>: The COB-ID of this PDO has been disabled (%2), because it does not contain active mapping entries.",
     "A dynamic PDO may start empty, but not enabled. Done for the first four TPDOs."},
    {CheckId::BitwiseGranularity, "CO-PDO-BITWISE-GRANULARITY", warning, 3, false,
     "<strong>Warning: </strong>Bitwise mapping cannot be used with a granularity of 8. Correct device description settings or PDO mapping.",
     "The EDS would deny what the mapping uses (CiA 306)."},
    {CheckId::BitwiseDisabled, "CO-PDO-BITWISE", error, 0, true,
     MARK_ERROR "Bitwise mapping not enabled in general settings. Correct general settings or PDO mapping.",
     "The stack is built without the code for single bits."},
    {CheckId::DynamicGranularity, "CO-PDO-DYNAMIC-GRANULARITY", error, 0, false,
     MARK_ERROR "Dynamic mapping cannot be used with a granularity of 0. Correct device description settings or PDO mapping.",
     "Granularity 0 means that the mapping can't be changed (CiA 306). Not counted, so that it alone does not stop generation."},

    {CheckId::CommunicationWithoutMapping, "CO-PDO-NO-MAPPING", error, 0, true,
     MARK_ERROR "Object 0x%1: The corresponding PDO mapping object 0x%2 does not exist.",
     "A PDO is a pair of communication and mapping object."},
    {CheckId::CobIdNotInEds, "CO-PDO-EDS-COBID", hint, 6, false,
     "<strong>Hint: </strong>Subindex 1 of 0x%2 should have its default value in the EDS file.",
     "Tools that read the EDS learn the COB-ID from it."},
    {CheckId::TransmissionTypeNotInEds, "CO-PDO-EDS-TYPE", hint, 6, false,
     "<strong>Hint: </strong>Subindex 2 of 0x%2 should have its default value in the EDS file.",
     "Tools that read the EDS learn the transmission type from it."},
    {CheckId::PdoEnabledButEmpty, "CO-PDO-ENABLED-EMPTY", error, 0, true,
     MARK_ERROR "Object 0x%1: PDO is enabled but its mapping table (0x%2) is empty (sub 0 = 0).",
     "An empty PDO must have bit 31 of its COB-ID set."},
    {CheckId::CobIdCollision, "CO-PDO-OVERLAP", error, 0, true,
     MARK_ERROR "Object 0x%1: COB-ID '%2' is already used by PDO object 0x%3.",
     "Two enabled PDOs of a device can't share a COB-ID."},
    {CheckId::EventBelowInhibitTime, "CO-PDO-TIMES", warning, 5, false,
     "<strong>Warning: </strong>Subindex 3 and 5 of 0x%1: Event timer value should be greater than inhibit time value.",
     "The inhibit time (100 us) would hold back every event of the timer (ms)."},
    {CheckId::PredefinedConnectionSet, "CO-PDO-PREDEFINED", warning, 4, false,
     "Warning: Object 0x%1-0x01: The COB-ID for this PDO does not follow the pre-defined connection set.",
     "The stack sets the COB-IDs of the first four PDOs by CiA 301 unless told otherwise."},
    {CheckId::PredefinedConnectionSetNote, "CO-PDO-PREDEFINED-NOTE", note, 4, false,
     "Enable CANopen Stack Settings -> Overwrite pre-defined connection set and call userOverwriteCobIdSettings() to use these COB-ID settings.\n\n",
     "Follows CO-PDO-PREDEFINED and is withheld with it."},

    {CheckId::SrdoWithoutMapping, "CO-SRDO-NO-MAPPING", error, 0, true,
     MARK_ERROR "Object 0x%1: The corresponding SRDO mapping object 0x%2 does not exist.",
     "An SRDO is a pair of communication and mapping object (EN 50325-5)."},
    {CheckId::SrdoMappedMissing, "CO-SRDO-MAPPED-MISSING", error, 0, true,
     MARK_ERROR "Object 0x%1: The object 0x%2:%3 mapped into an SRDO does not exist.",
     "The stack refuses such a mapping."},
    {CheckId::SrdoMappedManaged, "CO-SRDO-MAPPED-MANAGED", error, 0, true,
     MARK_ERROR "Object 0x%1: The object 0x%2:%3 mapped into an SRDO must be an application variable.",
     "Safety data lives in the application, plain and inverted."},
    {CheckId::SrdoMappedForbidden, "CO-SRDO-MAPPED-FORBIDDEN", error, 0, true,
     MARK_ERROR "Object 0x%1: The PDO mapping must be enabled for object 0x%2:%3 to use it in an SRDO.",
     "The PDO mapping attribute of the object is off."},

    {CheckId::VariableNameUsedTwice, "CO-VARIABLE-TWICE", warning, 1, false,
     "<strong>Warning: </strong>Object 0x%1-0x%2: Variable name '%3' is already used by object 0x%4-0x%5.",
     "Two objects share one variable of the application."},
};
// clang-format on

#undef MARK_ERROR
#undef MARK_RED

constexpr bool positionsFit()
{
    for (std::size_t i = 0; i < std::size(definitions); ++i) {
        if (static_cast<std::size_t>(definitions[i].id) != i) {
            return false;
        }
    }
    return std::size(definitions) == static_cast<std::size_t>(CheckId::Count);
}
static_assert(positionsFit(), "the table stands in the order of CheckId");

constexpr std::array<const char *, 6> classNames = {"Error", "Warning",   "Hint",
                                                    "Info",  "Corrected", "Note"};

bool isMarker(const QString &text, qsizetype at)
{
    return text.at(at) == u'%' && at + 1 < text.size() && text.at(at + 1) >= u'1' &&
           text.at(at + 1) <= u'9';
}

} // namespace

const QList<CheckDefinition> &checkTable()
{
    static const QList<CheckDefinition> table(std::begin(definitions), std::end(definitions));
    return table;
}

const CheckDefinition &checkDefinition(CheckId id)
{
    return definitions[static_cast<int>(id)];
}

QString checkClassName(CheckClass kind)
{
    return QLatin1String(classNames.at(static_cast<std::size_t>(kind)));
}

QString checkMessage(const CheckDefinition &definition, const QStringList &arguments)
{
    const QString text = QString::fromUtf8(definition.text);
    QList<QChar> markers;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isMarker(text, i) && !markers.contains(text.at(i + 1))) {
            markers.append(text.at(i + 1));
        }
    }
    std::sort(markers.begin(), markers.end());
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool marker = isMarker(text, i);
        const qsizetype position = marker ? markers.indexOf(text.at(i + 1)) : arguments.size();
        if (position < arguments.size()) {
            result += arguments.at(position);
            ++i;
        } else {
            result += text.at(i);
        }
    }
    return result;
}

#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// What a message means for the run. Only errors stop a generation, only warnings, hints and
/// infos can be suppressed by their group.
enum class CheckClass : quint8 { Error, Warning, Hint, Info, Corrected, Note };

/// Every message that the model check can give, in the order of `checkTable`.
enum class CheckId : quint8 {
    // the whole project
    ProjectUdsRoles,
    ProjectUdsStaticUnused,
    ProjectUdsStaticNoName,
    ProjectUdsStaticDuplicate,
    ProjectUpdateCanopen37,
    ProjectUpdateMulti37,
    ProjectUpdateUds,
    ProjectUpdateCanopen36,
    ProjectUpdateMulti36,
    ProjectSdoBlockSize,
    ProjectTimerInterval,
    ProjectNmtMasterMultiProtocol,
    ProjectNumericSetting,
    ProjectLineType,
    // fit of the installed stack
    StackNoPath,
    StackNoPathNote,
    StackNoFeatureFile,
    StackNeedsOlderTool,
    StackNeedsOtherTool,
    // settings of a CANopen line
    ValueConversion,
    NodeIdMissing,
    NodeIdFunctionOpens,
    NodeIdFunctionCloses,
    ReceiveBuffer,
    TransmitBuffer,
    MultiLineMasterSlave,
    UsdoServerCount,
    PdoIndicationPair,
    EmcyRouting,
    // standard objects
    DeviceTypeArray,
    DeviceTypeVariable,
    DeviceTypeMissing,
    ErrorRegisterMissing,
    HeartbeatMissing,
    SlaveAssignmentCount,
    ListEmpty,
    ListGaps,
    SyncPeriodMissing,
    StoreByApplication,
    StoreByStack,
    NmtInhibitTime,
    VendorIdEmpty,
    VendorIdTest,
    ProductCodeEmpty,
    RevisionEmpty,
    SerialNumberConst,
    ErrorFieldWithoutEmcy,
    EmcyConsumerZero,
    // any object
    ArrayEmpty,
    SubZeroCorrected,
    SubZeroDefaultFlag,
    SubZeroConstCorrected,
    SubZeroNotInEds,
    ObjectNameMissing,
    VariableWithSubIndices,
    LimitCheckDisabled,
    SubIndexNameMissing,
    VariableNameMissing,
    VariableNameInvalid,
    AccessTypeInvalid,
    ManagedConstWritable,
    ManagedOctetString,
    ManagedVisibleString,
    ManagedUtf8String,
    DataTypeUnknown,
    DefaultOutOfLimits,
    // PDO mapping
    MappingWithoutCommunication,
    MappingEmpty,
    MappingAccessMixed,
    MappingEntryEmpty,
    MappedObjectMissing,
    MappedObjectForbidden,
    MappedObjectTooSmall,
    MappedObjectTooLarge,
    MappedAccessTransmit,
    MappedAccessReceive,
    PdoTooLong,
    MappingCountInvalid,
    PdoDisabledCorrected,
    BitwiseGranularity,
    BitwiseDisabled,
    DynamicGranularity,
    // PDO communication
    CommunicationWithoutMapping,
    CobIdNotInEds,
    TransmissionTypeNotInEds,
    PdoEnabledButEmpty,
    CobIdCollision,
    EventBelowInhibitTime,
    PredefinedConnectionSet,
    PredefinedConnectionSetNote,
    // SRDO
    SrdoWithoutMapping,
    SrdoMappedMissing,
    SrdoMappedManaged,
    SrdoMappedForbidden,
    // across the line
    VariableNameUsedTwice,
    Count
};

struct CheckDefinition
{
    CheckId id;
    /// Stable for ever, as build servers key on it.
    const char *identifier;
    CheckClass kind;
    /// Warning group by which it is suppressed; 0 for what can't be suppressed.
    quint8 group;
    /// Whether it raises the error count.
    bool counted;
    /// The message with its mark-up; `%1` and so on are filled in by `checkMessage`.
    const char *text;
    const char *reason;
};

/// All definitions; the position of one is the number of its `CheckId`.
[[nodiscard]] const QList<CheckDefinition> &checkTable();
[[nodiscard]] const CheckDefinition &checkDefinition(CheckId id);
/// "Error", "Warning", "Hint", "Info", "Corrected", "Note".
[[nodiscard]] QString checkClassName(CheckClass kind);
/// The text with the lowest marker replaced by the first argument, the next by the second and so
/// on. All in one go: a marker within an argument stays as it is.
[[nodiscard]] QString checkMessage(const CheckDefinition &definition, const QStringList &arguments);

/// Where a message belongs; -1 for what does not apply.
struct CheckPlace
{
    int line = -1; ///< -1: the whole project
    int index = -1;
    int subindex = -1;
};

/// One message of a run with what a program wants to know about it.
struct CheckFinding
{
    QString identifier;
    CheckClass kind = CheckClass::Error;
    quint8 group = 0;
    bool counted = false;    ///< raised the error count
    bool suppressed = false; ///< withheld by the project's settings
    QString text;            ///< with mark-up
    CheckPlace place = {};
};

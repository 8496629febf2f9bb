#pragma once

#include "check/checkdefinition.h"

#include <span>

/// Messages on a CANopen line, in the order of their table.
enum class CanopenMessage : quint8 {
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

[[nodiscard]] std::span<const CheckDefinition> canopenMessages();
[[nodiscard]] const CheckDefinition &definitionOf(CanopenMessage message);

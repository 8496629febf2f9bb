#pragma once

#include <QtGlobal>

struct LineCheck;
struct ObjectModel;
struct SubIndexModel;

/// The checks of a CANopen line. Each reads the pass, reports to it, and goes on whatever it has
/// found; `ModelChecker` holds their order.
namespace LineChecks {

using Function = void (*)(LineCheck &);

/// Default values that can't be read as their data type. Each counts twice.
void checkValueConversions(LineCheck &check);
/// Generated code against the version that the installed stack requires.
void checkStackVersion(LineCheck &check);

// settings
void checkNodeId(LineCheck &check);
void checkBuffers(LineCheck &check);
void checkMultiLineMasterSlave(LineCheck &check);
void checkUsdoServer(LineCheck &check);
void checkPdoIndications(LineCheck &check);
void checkEmcyRouting(LineCheck &check);

// standard objects
void checkDeviceType(LineCheck &check);
void checkMandatoryObjects(LineCheck &check);
void checkSlaveAssignment(LineCheck &check);
void checkGaps(LineCheck &check);
void checkSync(LineCheck &check);
void checkStoreAndRestore(LineCheck &check);
void checkNmtInhibitTime(LineCheck &check);
void checkIdentity(LineCheck &check);
void checkErrorField(LineCheck &check);
void checkEmcyConsumers(LineCheck &check);

// any object
void checkIndices(LineCheck &check);
void checkVariableNames(LineCheck &check);

// process data
void checkPdoMapping(LineCheck &check);
void checkPdoCommunication(LineCheck &check);
void checkPdoTimes(LineCheck &check);
void checkSrdoCommunication(LineCheck &check);
void checkSrdoMapping(LineCheck &check);
void checkGranularity(LineCheck &check);
void checkPredefinedConnectionSet(LineCheck &check);

} // namespace LineChecks

#pragma once

#include <QtGlobal>

struct CanopenLine;

/// The checks of a CANopen line. Each reads the pass, reports to it, and goes on whatever it has
/// found; canopenpass.cpp holds their order.
namespace CanopenChecks {

using Function = void (*)(CanopenLine &);

/// Default values that can't be read as their data type.
void checkValueConversions(CanopenLine &check);
/// Generated code against the version that the installed stack requires.
void checkStackVersion(CanopenLine &check);

// settings
void checkNodeId(CanopenLine &check);
void checkBuffers(CanopenLine &check);
void checkMultiLineMasterSlave(CanopenLine &check);
void checkUsdoServer(CanopenLine &check);
void checkPdoIndications(CanopenLine &check);
void checkEmcyRouting(CanopenLine &check);

// standard objects
void checkDeviceType(CanopenLine &check);
void checkMandatoryObjects(CanopenLine &check);
void checkSlaveAssignment(CanopenLine &check);
void checkGaps(CanopenLine &check);
void checkSync(CanopenLine &check);
void checkStoreAndRestore(CanopenLine &check);
void checkNmtInhibitTime(CanopenLine &check);
void checkIdentity(CanopenLine &check);
void checkErrorField(CanopenLine &check);
void checkEmcyConsumers(CanopenLine &check);

// any object
void checkIndices(CanopenLine &check);
void checkVariableNames(CanopenLine &check);

// process data
void checkPdoMapping(CanopenLine &check);
void checkPdoCommunication(CanopenLine &check);
void checkPdoTimes(CanopenLine &check);
void checkSrdoCommunication(CanopenLine &check);
void checkSrdoMapping(CanopenLine &check);
void checkGranularity(CanopenLine &check);
void checkPredefinedConnectionSet(CanopenLine &check);

} // namespace CanopenChecks

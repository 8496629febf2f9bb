#include "check/canopenchecks.h"
#include "check/canopenline.h"
#include "check/checkpass.h"
#include "store/objectdatabase.h"

namespace {

/// The order in which a log shows the faults of a line. Process data stands in an order of its
/// own: mapping first, as its corrections disable the communication objects that follow.
constexpr CanopenChecks::Function lineChecks[] = {
    CanopenChecks::checkValueConversions,
    CanopenChecks::checkStackVersion,
    CanopenChecks::checkNodeId,
    CanopenChecks::checkBuffers,
    CanopenChecks::checkMultiLineMasterSlave,
    CanopenChecks::checkDeviceType,
    CanopenChecks::checkMandatoryObjects,
    CanopenChecks::checkSlaveAssignment,
    CanopenChecks::checkGaps,
    CanopenChecks::checkSync,
    CanopenChecks::checkUsdoServer,
    CanopenChecks::checkStoreAndRestore,
    CanopenChecks::checkNmtInhibitTime,
    CanopenChecks::checkIdentity,
    CanopenChecks::checkErrorField,
    CanopenChecks::checkEmcyConsumers,
    CanopenChecks::checkIndices,
    CanopenChecks::checkPdoMapping,
    CanopenChecks::checkPdoCommunication,
    CanopenChecks::checkPdoTimes,
    CanopenChecks::checkSrdoCommunication,
    CanopenChecks::checkSrdoMapping,
    CanopenChecks::checkGranularity,
    CanopenChecks::checkPdoIndications,
    CanopenChecks::checkEmcyRouting,
    CanopenChecks::checkPredefinedConnectionSet,
    CanopenChecks::checkVariableNames,
};

class CanopenPass : public CheckPass
{
public:
    void checkLine(const CheckContext &context, quint8 line) override
    {
        CanopenLine check{
            .context = context, .line = line, .emcyRoutingReported = m_emcyRoutingReported};
        check.model.load(context.database, line);
        check.readSettings();
        for (const CanopenChecks::Function function : lineChecks)
            function(check);
        // A write drops what the store knows of the line, and the generators want it whole.
        if (check.correctionCount > 0)
            context.database.cacheAllSubs(line);
    }

private:
    bool m_emcyRoutingReported = false;
};

} // namespace

std::unique_ptr<CheckPass> makeCanopenPass()
{
    return std::make_unique<CanopenPass>();
}

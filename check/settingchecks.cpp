#include "check/linecheck.h"
#include "check/linechecks.h"
#include "check/valuetext.h"
#include "store/objectdatabase.h"

#include <algorithm>

namespace {

QString setting(const LineCheck &check, const char *key)
{
    return check.database.getGeneralSetting(QLatin1String(key));
}

bool isDecimal(const QString &text)
{
    bool ok = false;
    static_cast<void>(text.toUInt(&ok));
    return ok;
}

} // namespace

void LineChecks::checkNodeId(LineCheck &check)
{
    const QString id = itemOrEmpty(setting(check, "co_node_id"), check.line).trimmed();
    const QString function = itemOrEmpty(setting(check, "co_node_id_fct"), check.line).trimmed();
    if (id.isEmpty() && function.isEmpty()) {
        check.report(CheckId::NodeIdMissing, {QString::number(check.line)});
    }
    if (function.contains(u'(')) {
        check.report(CheckId::NodeIdFunctionOpens);
    }
    if (function.contains(u')')) {
        check.report(CheckId::NodeIdFunctionCloses);
    }
}

void LineChecks::checkBuffers(LineCheck &check)
{
    if (!isDecimal(itemOrEmpty(setting(check, "receivebuffersize"), check.line))) {
        check.report(CheckId::ReceiveBuffer);
    }
    if (!isDecimal(itemOrEmpty(setting(check, "transmitbuffersize"), check.line))) {
        check.report(CheckId::TransmitBuffer);
    }
}

void LineChecks::checkMultiLineMasterSlave(LineCheck &check)
{
    constexpr int masterOrSlave = 2; // chosen at run time
    if (check.line != 0 && check.nmtMaster == masterOrSlave &&
        !setting(check, "co_ml_ms").contains(u',')) {
        check.report(CheckId::MultiLineMasterSlave);
    }
}

void LineChecks::checkUsdoServer(LineCheck &check)
{
    const auto item = [&](const char *key) {
        return itemOrLast(setting(check, key), check.line).trimmed();
    };
    if (check.canFd && item("usdo_server_enabled") == QLatin1String("1") &&
        toDecimal(item("usdo_server_cnt")) == 0) {
        check.report(CheckId::UsdoServerCount);
    }
}

void LineChecks::checkPdoIndications(LineCheck &check)
{
    if (setting(check, "use_core_headers") == QLatin1String("V4")) {
        return;
    }
    const bool transmit = setting(check, "fct_pdo").trimmed().isEmpty();
    const bool receive = setting(check, "fct_pdo_receive").trimmed().isEmpty();
    if (transmit != receive) {
        check.report(CheckId::PdoIndicationPair);
    }
}

void LineChecks::checkEmcyRouting(LineCheck &check)
{
    constexpr quint8 firstScratchLine = 250;
    if (check.emcyRoutingReported || toDecimal(setting(check, "emcy_routing")) < 1) {
        return;
    }
    const QList<quint8> lines = check.database.getLines();
    const auto anyLineHas = [&](quint16 index) {
        return std::any_of(lines.begin(), lines.end(), [&](quint8 line) {
            return line < firstScratchLine && check.database.indexExists(line, index);
        });
    };
    if (!anyLineHas(0x1014) || !anyLineHas(0x1028)) {
        check.report(CheckId::EmcyRouting);
        check.emcyRoutingReported = true;
    }
}

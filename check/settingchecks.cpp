#include "check/canopenchecks.h"
#include "check/canopenline.h"
#include "store/objectdatabase.h"

#include <algorithm>

namespace {

/// What a line has of its own: nothing beyond the end of the list.
QString ownText(const CanopenLine &check, const char *key)
{
    return check.settings().lineText(key, check.line, ProjectSettings::Beyond::Nothing);
}

bool isDecimal(const QString &text)
{
    bool ok = false;
    static_cast<void>(text.toUInt(&ok));
    return ok;
}

} // namespace

void CanopenChecks::checkNodeId(CanopenLine &check)
{
    const QString id = ownText(check, "co_node_id").trimmed();
    const QString function = ownText(check, "co_node_id_fct").trimmed();
    if (id.isEmpty() && function.isEmpty())
        check.report(CanopenMessage::NodeIdMissing, {QString::number(check.line)});
    if (function.contains(u'('))
        check.report(CanopenMessage::NodeIdFunctionOpens);
    if (function.contains(u')'))
        check.report(CanopenMessage::NodeIdFunctionCloses);
}

void CanopenChecks::checkBuffers(CanopenLine &check)
{
    if (!isDecimal(ownText(check, "receivebuffersize")))
        check.report(CanopenMessage::ReceiveBuffer);
    if (!isDecimal(ownText(check, "transmitbuffersize")))
        check.report(CanopenMessage::TransmitBuffer);
}

void CanopenChecks::checkMultiLineMasterSlave(CanopenLine &check)
{
    constexpr int masterOrSlave = 2; // chosen at run time
    if (check.line != 0 && check.nmtMaster == masterOrSlave &&
        !check.settings().text("co_ml_ms").contains(u','))
        check.report(CanopenMessage::MultiLineMasterSlave);
}

void CanopenChecks::checkUsdoServer(CanopenLine &check)
{
    const QString enabled = check.settings().lineText("usdo_server_enabled", check.line).trimmed();
    if (check.canFd && enabled == QLatin1String("1") &&
        check.settings().lineDecimal("usdo_server_cnt", check.line) == 0)
        check.report(CanopenMessage::UsdoServerCount);
}

void CanopenChecks::checkPdoIndications(CanopenLine &check)
{
    if (check.settings().text("use_core_headers") == QLatin1String("V4"))
        return;
    const auto isEmpty = [&](const char *key) {
        return check.settings().text(key).trimmed().isEmpty();
    };
    if (isEmpty("fct_pdo") != isEmpty("fct_pdo_receive"))
        check.report(CanopenMessage::PdoIndicationPair);
}

void CanopenChecks::checkEmcyRouting(CanopenLine &check)
{
    constexpr quint8 firstScratchLine = 250;
    if (check.emcyRoutingReported || check.settings().decimal("emcy_routing") < 1)
        return;
    const QList<quint8> lines = check.database().getLines();
    const auto anyLineHas = [&](quint16 index) {
        return std::any_of(lines.begin(), lines.end(), [&](quint8 line) {
            return line < firstScratchLine && check.database().indexExists(line, index);
        });
    };
    if (!anyLineHas(0x1014) || !anyLineHas(0x1028)) {
        check.report(CanopenMessage::EmcyRouting);
        check.emcyRoutingReported = true;
    }
}

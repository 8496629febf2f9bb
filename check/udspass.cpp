#include "check/checkpass.h"
#include "check/udsmessages.h"
#include "store/objectdatabase.h"

#include <algorithm>

namespace {

/// The callbacks that static indication binds, one a group of UDS services.
constexpr const char *functionKeys[] = {
    "uds_fct_clear_dtc_info",
    "uds_fct_dtc_info",
    "uds_fct_id_data_transmit",
    "uds_fct_mem_data_transmit",
    "uds_fct_sec_access_req_key",
    "uds_fct_authent_req",
    "uds_fct_ioctrl",
    "uds_fct_routine_ctrl",
    "uds_fct_data_transfer",
    "uds_fct_req_commgt",
    "uds_fct_check_req_session",
    "uds_fct_generic",
};

/// The fault is told of the line and of the project, and is one error.
void checkRoles(const CheckContext &context)
{
    const ProjectSettings &settings = context.settings;
    if (settings.decimal("udsserver_supported") == 0 ||
        settings.decimal("udsclient_supported") == 0)
        return;
    const QList<quint8> lines = context.lines();
    const auto line = std::find_if(lines.begin(), lines.end(), [&](quint8 number) {
        return lines.size() == 1 || (settings.lineDecimal("udsserver_supported", number) != 0 &&
                                     settings.lineDecimal("udsclient_supported", number) != 0);
    });
    if (line != lines.end())
        context.sink.repeat(UdsMessage::Roles, {}, {.line = *line});
    context.sink.report(UdsMessage::Roles);
}

bool isAnyItemSet(const ProjectSettings &settings, const char *key)
{
    const QStringList items = settings.items(key);
    return std::any_of(items.begin(), items.end(),
                       [](const QString &item) { return ProjectSettings::toDecimal(item) != 0; });
}

void checkStaticIndication(const CheckContext &context)
{
    const ProjectSettings &settings = context.settings;
    if (settings.decimal("uds_static_indication") != 1)
        return;
    if (!isAnyItemSet(settings, "uds_server_active") && !isAnyItemSet(settings, "uds_client_cnt"))
        context.sink.report(UdsMessage::StaticUnused);
    QStringList names;
    for (const char *key : functionKeys) {
        const QString name = settings.text(key).trimmed();
        if (!name.isEmpty())
            names.append(name);
    }
    if (names.isEmpty())
        context.sink.report(UdsMessage::StaticNoName);
    QStringList distinct = names;
    distinct.removeDuplicates();
    for (const QString &name : std::as_const(distinct))
        if (names.count(name) > 1)
            context.sink.report(UdsMessage::StaticDuplicate, {name});
}

class UdsPass : public CheckPass
{
public:
    void checkProject(const CheckContext &context) override
    {
        checkRoles(context);
        checkStaticIndication(context);
    }
};

} // namespace

std::unique_ptr<CheckPass> makeUdsPass()
{
    return std::make_unique<UdsPass>();
}

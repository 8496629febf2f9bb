#include "store/objectdatabase_p.h"

namespace {

QString udsTable(quint8 line)
{
    return SqlText::lineTable("UDSSettings", line);
}

QString whereSid(quint8 line, UDS::SID sid)
{
    return QLatin1String(" from ") + udsTable(line) + QLatin1String(" where sid = ") +
           QString::number(int(sid));
}

} // namespace

UdsService ObjectDataBase::State::udsService(quint8 line, UDS::SID sid)
{
    UdsService service;
    runner.forEachRow(QLatin1String("select sessions,userlevels,authentication,active") +
                          whereSid(line, sid),
                      [&](const ResultRow &row) {
                          service = {row.integer(3) != 0, row.text(0), row.text(1), row.text(2)};
                      });
    return service;
}

bool ObjectDataBase::State::changeUdsService(quint8 line, UDS::SID sid, const UdsChange &change)
{
    bool written = false;
    runner.exclusive([&] {
        const UdsService former = udsService(line, sid);
        UdsService service = former;
        change(service);
        if (service == former)
            return;
        written = runner.exec(
            QLatin1String("insert or replace into ") + udsTable(line) +
                QLatin1String(" (sid,active,sessions,userlevels,authentication) "
                              "values(") +
                QString::number(int(sid)) + u',' + SqlText::number(service.active) + u',' +
                SqlText::quoted(service.sessions) + u',' + SqlText::quoted(service.userLevels) +
                u',' + SqlText::quoted(service.authentication) + u')',
            Q_FUNC_INFO);
    });
    return written;
}

QMap<UDS::SID, bool> ObjectDataBase::getUDSServices(quint8 line)
{
    QMap<UDS::SID, bool> services;
    d->runner.forEachRow(
        QLatin1String("select active, sid from ") + udsTable(line), [&](const ResultRow &row) {
            services.insert(UDS::SID(row.value(1).toInt()), row.value(0).toInt() != 0);
        });
    return services;
}

bool ObjectDataBase::getUDSServiceActive(quint8 line, UDS::SID sid)
{
    return d->udsService(line, sid).active;
}

QString ObjectDataBase::getUDSServiceSessions(quint8 line, UDS::SID sid)
{
    return d->udsService(line, sid).sessions;
}

QString ObjectDataBase::getUDSServiceUserLevels(quint8 line, UDS::SID sid)
{
    return d->udsService(line, sid).userLevels;
}

QString ObjectDataBase::getUDSAuthentication(quint8 line, UDS::SID sid)
{
    return d->udsService(line, sid).authentication;
}

void ObjectDataBase::State::setUdsService(quint8 line, UDS::SID sid, const UdsChange &change)
{
    if (!refusesWrites() && changeUdsService(line, sid, change))
        notify({.kind = GeneralSettingChanged, .line = line});
}

void ObjectDataBase::setUDSServiceActive(quint8 line, UDS::SID sid, bool active)
{
    d->setUdsService(line, sid, [&](UdsService &service) { service.active = active; });
}

void ObjectDataBase::setUDSServiceSessions(quint8 line, UDS::SID sid, const QString &sessions)
{
    d->setUdsService(line, sid, [&](UdsService &service) { service.sessions = sessions; });
}

void ObjectDataBase::setUDSServiceUserLevels(quint8 line, UDS::SID sid, const QString &levels)
{
    d->setUdsService(line, sid, [&](UdsService &service) { service.userLevels = levels; });
}

void ObjectDataBase::setUDSAuthentication(quint8 line, UDS::SID sid, const QString &authentication)
{
    d->setUdsService(line, sid,
                     [&](UdsService &service) { service.authentication = authentication; });
}

#include "store/objectdatabase_p.h"

namespace {

struct UdsRow
{
    bool active = false;
    QString sessions;
    QString userLevels;
    QString authentication;
};

QString udsTable(quint8 line)
{
    return SqlText::lineTable("UDSSettings", line);
}

QString whereSid(quint8 line, UDS::SID sid)
{
    return QLatin1String(" from ") + udsTable(line) + QLatin1String(" where sid = ") +
           QString::number(int(sid));
}

UdsRow readRow(StatementRunner &runner, quint8 line, UDS::SID sid)
{
    UdsRow data;
    runner.forEachRow(QLatin1String("select sessions,userlevels,authentication,active") +
                          whereSid(line, sid),
                      [&](const ResultRow &row) {
                          data = {row.value(3).toInt() != 0, row.value(0).toString(),
                                  row.value(1).toString(), row.value(2).toString()};
                      });
    return data;
}

void writeRow(StatementRunner &runner, quint8 line, UDS::SID sid, const UdsRow &data)
{
    runner.exec(QLatin1String("insert or replace into ") + udsTable(line) +
                    QLatin1String(" (sid,active,sessions,userlevels,authentication) values(") +
                    QString::number(int(sid)) + u',' + SqlText::number(data.active) + u',' +
                    SqlText::quoted(data.sessions) + u',' + SqlText::quoted(data.userLevels) +
                    u',' + SqlText::quoted(data.authentication) + u')',
                Q_FUNC_INFO);
}

template <typename Change>
void changeRow(StatementRunner &runner, quint8 line, UDS::SID sid, const Change &change)
{
    UdsRow row = readRow(runner, line, sid);
    change(row);
    writeRow(runner, line, sid, row);
}

} // namespace

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
    return readRow(d->runner, line, sid).active;
}

QString ObjectDataBase::getUDSServiceSessions(quint8 line, UDS::SID sid)
{
    return readRow(d->runner, line, sid).sessions;
}

QString ObjectDataBase::getUDSServiceUserLevels(quint8 line, UDS::SID sid)
{
    return readRow(d->runner, line, sid).userLevels;
}

QString ObjectDataBase::getUDSAuthentication(quint8 line, UDS::SID sid)
{
    return readRow(d->runner, line, sid).authentication;
}

// Each setter writes the whole row, with the other columns as they are.

void ObjectDataBase::setUDSServiceActive(quint8 line, UDS::SID sid, bool active)
{
    if (!d->refusesWrites())
        changeRow(d->runner, line, sid, [&](UdsRow &row) { row.active = active; });
}

void ObjectDataBase::setUDSServiceSessions(quint8 line, UDS::SID sid, const QString &sessions)
{
    if (!d->refusesWrites())
        changeRow(d->runner, line, sid, [&](UdsRow &row) { row.sessions = sessions; });
}

void ObjectDataBase::setUDSServiceUserLevels(quint8 line, UDS::SID sid, const QString &levels)
{
    if (!d->refusesWrites())
        changeRow(d->runner, line, sid, [&](UdsRow &row) { row.userLevels = levels; });
}

void ObjectDataBase::setUDSAuthentication(quint8 line, UDS::SID sid, const QString &authentication)
{
    if (!d->refusesWrites())
        changeRow(d->runner, line, sid, [&](UdsRow &row) { row.authentication = authentication; });
}

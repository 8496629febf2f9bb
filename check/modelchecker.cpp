#include "check/modelchecker.h"

#include "check/linecheck.h"
#include "check/linechecks.h"
#include "check/projectchecks.h"
#include "store/objectdatabase.h"

#include <QStringList>

namespace {

/// The order in which a log shows the faults of a line. Process data stands in an order of its
/// own: mapping first, as its corrections disable the communication objects that follow.
constexpr LineChecks::Function lineChecks[] = {
    LineChecks::checkStackVersion,
    LineChecks::checkNodeId,
    LineChecks::checkBuffers,
    LineChecks::checkMultiLineMasterSlave,
    LineChecks::checkDeviceType,
    LineChecks::checkMandatoryObjects,
    LineChecks::checkSlaveAssignment,
    LineChecks::checkGaps,
    LineChecks::checkSync,
    LineChecks::checkUsdoServer,
    LineChecks::checkStoreAndRestore,
    LineChecks::checkNmtInhibitTime,
    LineChecks::checkIdentity,
    LineChecks::checkErrorField,
    LineChecks::checkEmcyConsumers,
    LineChecks::checkIndices,
    LineChecks::checkPdoMapping,
    LineChecks::checkPdoCommunication,
    LineChecks::checkPdoTimes,
    LineChecks::checkSrdoCommunication,
    LineChecks::checkSrdoMapping,
    LineChecks::checkGranularity,
    LineChecks::checkPdoIndications,
    LineChecks::checkEmcyRouting,
    LineChecks::checkPredefinedConnectionSet,
    LineChecks::checkVariableNames,
};

} // namespace

ModelChecker::ModelChecker(QObject *parent) : QObject(parent) {}

int ModelChecker::checkProject(ObjectDataBase *database, const QString &projectPath)
{
    m_projectPath = projectPath;
    loadSuppressedGroups(database);
    return database != nullptr ? ProjectChecks::checkProject(*this, *database) : 0;
}

int ModelChecker::checkCANopenLine(quint8 line, ObjectDataBase *database, bool *changed)
{
    loadSuppressedGroups(database);
    if (database == nullptr) {
        return 0;
    }
    LineCheck check{.checker = *this,
                    .database = *database,
                    .line = line,
                    .changed = changed,
                    .projectPath = m_projectPath,
                    .emcyRoutingReported = m_emcyRoutingReported};
    check.model.load(*database, line);
    LineChecks::checkValueConversions(check);
    check.readSettings();
    for (const LineChecks::Function function : lineChecks) {
        function(check);
    }
    if (check.correctionCount > 0) {
        // a write drops what the store knows of the line, and the generators want it whole
        database->cacheAllSubs(line);
    }
    return check.errorCount;
}

void ModelChecker::loadSuppressedGroups(ObjectDataBase *database)
{
    if (database != nullptr) {
        m_suppressedGroups =
            ::parseWarningGroups(database->getMiscSetting(SuppressedWarningGroups));
    }
}

void ModelChecker::addGroupWarning(quint8 group, const QString &text)
{
    if (isSuppressed(group)) {
        ++m_suppressedCounts[group];
    } else {
        emit newError(text);
    }
}

void ModelChecker::addGroupNote(quint8 group, const QString &text)
{
    if (!isSuppressed(group)) {
        emit newError(text);
    }
}

QString ModelChecker::suppressedSummary() const
{
    quint32 sum = 0;
    for (const quint32 count : m_suppressedCounts) {
        sum += count;
    }
    if (sum == 0) {
        return {};
    }
    QStringList lines(QStringLiteral("<strong>Note: </strong>%1 warning(s) suppressed by the "
                                     "project settings:")
                          .arg(sum));
    for (const WarningGroup &group : ::warningGroups()) {
        const quint32 count = m_suppressedCounts.value(group.number);
        if (count != 0) {
            lines.append(QStringLiteral("&nbsp;&nbsp;%1 (%2): %3")
                             .arg(group.key, group.title, QString::number(count)));
        }
    }
    return lines.join(u'\n');
}

int ModelChecker::report(CheckId id, const QStringList &arguments, const CheckPlace &place)
{
    const CheckDefinition &definition = checkDefinition(id);
    const QString text = checkMessage(definition, arguments);
    m_findings.append({.identifier = QLatin1String(definition.identifier),
                       .kind = definition.kind,
                       .group = definition.group,
                       .counted = definition.counted,
                       .suppressed = definition.group != 0 && isSuppressed(definition.group),
                       .text = text,
                       .place = place});
    if (definition.group == 0) {
        emit newError(text);
    } else if (definition.kind == CheckClass::Note) {
        addGroupNote(definition.group, text);
    } else {
        addGroupWarning(definition.group, text);
    }
    return definition.counted ? 1 : 0;
}

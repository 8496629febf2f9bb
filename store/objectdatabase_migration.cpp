#include "store/objectdatabase_p.h"

#include "store/schema.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFileInfo>

// Bringing an older project up to this version's schema and content, in the working copy only.
// The steps run on every open: a file of any version, or one that another tool has touched, comes
// out complete.

namespace {

constexpr int firstVersionWithDirections = 100;
constexpr int firstVersionWithPositions = 105;

constexpr const char *createFirst[] = {
    "GeneralSettings", "DescriptionSettings", "VirtualNodes",  "SignalGroups", "Signals",
    "Groups",          "EnergyBusSettings",   "J1939Settings", "MiscSettings"};

constexpr const char *createWithMiscSettings[] = {
    "Connections", "LockedMappings", "LockedPDOs", "PGNs0", "SPNs0", "CANIDs0", "DataElements0"};

/// What lines behind the first one may lack.
constexpr const char *signalTables[] = {"PGNs", "SPNs", "CANIDs", "DataElements"};

constexpr Schema::Addition additionsOfProject[] = {
    {"Nodes", "dcfpath,tpdocnt,rpdocnt,ismaster,issyncproducer,issyncconsumer,ishbconsumer,"
              "isemergencyproducer,isemergencyconsumer,ismpdosupported,iscanopengateway,"
              "allpdosstatic,excludegeneration,generatedcf,prefix,outputpath,iconpath,"
              "isbootupmanager,isconfigmanager,excludepdolinking,multilinedata,lssslave"},
    {"Signals", "transmittype,transmittrigger,eventtimer,syncvalue,syncstartvalue,routing"},
};

constexpr const char *additionsOfSubObjects =
    "writedefaulttoeds,cyclicread,dcfcomponent,changedbyuser,wizardsource,denotation,sharedlines,"
    "managedbytsk,signalid,nvstorage,metadata";

constexpr Schema::Addition additionsOfLine[] = {
    {"Objects", "fwsupported,device_class,metadata"},
    {"SubObjects", additionsOfSubObjects},
    {"SPNs", "pos,bitsize,direction,slot_df,bitposition"},
};

constexpr const char *additionsOfPGNs = "issafe,srvt_ms,FD_TrailerFormat,FD_AssuranceType,"
                                        "FD_AssuranceDataSize,multisourceaddress";

/// "add column" statements for columns of a table, typed as the schema types them.
QStringList additionStatements(const char *table, const QString &suffix, const char *columns)
{
    QStringList statements;
    const QStringList wanted = QString::fromLatin1(columns).split(u',');
    for (const Schema::Column &column :
         Schema::columns(Schema::table(QString::fromLatin1(table)))) {
        if (!wanted.contains(column.name))
            continue;
        // The untyped last column of Nodes grows as an integer.
        const QString type = column.type.isEmpty() ? QStringLiteral("integer") : column.type;
        statements.append(QStringLiteral("alter table %1%2 add %3 %4")
                              .arg(QLatin1String(table), suffix, column.name, type));
    }
    return statements;
}

QString createIfMissing(const char *nameWithLine)
{
    QString name = QString::fromLatin1(nameWithLine);
    QString suffix;
    if (name.endsWith(u'0')) {
        name.chop(1);
        suffix = QStringLiteral("0");
    }
    return Schema::createStatement(Schema::table(name), suffix, true);
}

/// Statements that differ in existing files from those of new ones, for the sake of the files
/// that are about.
QString createIfMissingInOldFile(const char *name)
{
    if (qstrcmp(name, "Groups") == 0)
        return QStringLiteral("create table if not exists Groups (groupid integer primary key, "
                              "name text, nodeidlist text)");
    QString statement = createIfMissing(name);
    if (qstrcmp(name, "SPNs0") == 0)
        statement.replace(QLatin1String("bitposition integer"),
                          QLatin1String("bitpostion integer"));
    return statement;
}

class Migration
{
public:
    Migration(ObjectDataBase &store, StatementRunner &runner)
        : m_store(store), m_runner(runner),
          m_version(store.getMiscSetting(QStringLiteral("DatabaseVersion")).toInt())
    {
    }

    void runSchemaSteps();

private:
    void addColumns(const char *table, const QString &suffix, const char *columns)
    {
        for (const QString &statement : additionStatements(table, suffix, columns))
            m_runner.migrationExec(statement);
    }
    void migrateLine(quint8 line);
    void rebuildSubObjects(quint8 line);
    [[nodiscard]] QStringList columnsOf(const QString &table);

    ObjectDataBase &m_store;
    StatementRunner &m_runner;
    int m_version;
};

void Migration::runSchemaSteps()
{
    bool miscCreated = false;
    for (const char *name : createFirst)
        miscCreated = m_runner.exec(createIfMissingInOldFile(name));
    for (const QString &statement :
         additionStatements("SubObjects", QStringLiteral("0"), additionsOfSubObjects))
        m_runner.exec(statement);
    for (const Schema::Addition &addition : additionsOfProject)
        for (const QString &statement :
             additionStatements(addition.table, QString(), addition.columns))
            m_runner.exec(statement);
    QList<quint8> lines = m_store.getLines();
    std::sort(lines.begin(), lines.end());
    for (const quint8 line : std::as_const(lines))
        migrateLine(line);
    addColumns("Connections", QString(), "priority");
    if (!miscCreated)
        return;
    for (const char *name : createWithMiscSettings)
        m_runner.migrationExec(createIfMissingInOldFile(name));
    // A table that was just made has the misspelled column only.
    addColumns("SPNs", QStringLiteral("0"), "bitposition");
}

void Migration::migrateLine(quint8 line)
{
    const QString suffix = QString::number(line);
    if (line != 0) {
        for (const char *table : signalTables)
            m_runner.exec(
                Schema::createStatement(Schema::table(QString::fromLatin1(table)), suffix, true),
                Q_FUNC_INFO);
    }
    for (const Schema::Addition &addition : additionsOfLine)
        addColumns(addition.table, suffix, addition.columns);
    if (m_version < 101)
        rebuildSubObjects(line);
    if (m_version < firstVersionWithPositions)
        addColumns("DataElements", suffix, "bitpos");
    if (m_version < 107)
        m_runner.exec(
            QStringLiteral("alter table UDSSettings%0 add authentication text").arg(line));
    addColumns("PGNs", suffix, additionsOfPGNs);
    if (m_version < 106)
        addColumns("PGNs", suffix, "safetytype,FD_DataId");
}

QStringList Migration::columnsOf(const QString &table)
{
    QStringList names;
    m_runner.forEachRow(
        QStringLiteral("SELECT name FROM pragma_table_info(%1)").arg(SqlText::quoted(table)),
        [&](const ResultRow &row) { names.append(row.value(0).toString()); });
    return names;
}

/// Gives the table its uniqueness and its text limits. Columns are copied by name, since older
/// files have them in other orders.
void Migration::rebuildSubObjects(quint8 line)
{
    const QString name = SqlText::lineTable("SubObjects", line);
    const QString old = name + QLatin1String("_old");
    m_runner.exec(QLatin1String("DROP TABLE ") + old);
    if (!m_runner.exec(QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(name, old), Q_FUNC_INFO))
        return;
    const Schema::Table &table = Schema::table(QStringLiteral("SubObjects"));
    if (!m_runner.exec(Schema::createStatement(table, QString::number(line), true), Q_FUNC_INFO))
        return;
    const QStringList present = columnsOf(old);
    QStringList common;
    for (const QString &column : Schema::columnNames(table)) {
        if (present.contains(column, Qt::CaseInsensitive))
            common.append(column);
    }
    const QString list = common.join(u',');
    if (!m_runner.exec(
            QStringLiteral("INSERT OR REPLACE INTO %1 (%2) SELECT %2 FROM %3").arg(name, list, old),
            Q_FUNC_INFO))
        return;
    m_runner.exec(QLatin1String("DROP TABLE ") + old, Q_FUNC_INFO);
}

} // namespace

void ObjectDataBase::State::runSchemaSteps()
{
    Migration(face, runner).runSchemaSteps();
}

bool ObjectDataBase::State::editionAllowed()
{
    const QString edition = QCoreApplication::applicationName();
    const QString saved = face.getMiscSetting(QStringLiteral("SaveToolType"));
    if (saved.isEmpty() || saved == edition || edition == QLatin1String("CAN Quillforge"))
        return true;
    bool hasCANopen = false;
    bool hasJ1939 = false;
    for (const quint8 line : face.getLines()) {
        const int type = face.getLineType(line);
        // Of the types with raw CAN only the plain one marks a project, with both.
        const bool marksBoth = type == LineType::RawCan || type == LineType::CANopenJ1939;
        hasCANopen |= type == LineType::CANopen || marksBoth;
        hasJ1939 |= type == LineType::J1939 || marksBoth;
    }
    if (edition.contains(QLatin1String("CANopen")))
        return !hasJ1939;
    if (edition.contains(QLatin1String("J1939")))
        return !hasCANopen;
    return true;
}

namespace {

/// What the content of an older project needs, once its tables are complete.
class ContentSteps
{
public:
    ContentSteps(ObjectDataBase &store, StatementRunner &runner)
        : m_store(store), m_runner(runner), m_lines(store.getLines())
    {
    }

    void fillLineTypes();
    void repairSPNDirections();
    void makeNodePathsAbsolute(const QDir &folder);
    void fitLineLists();

private:
    void giveSPNsDirection(quint8 line, quint32 pgn, const QSet<quint8> &pgnDirections);

    ObjectDataBase &m_store;
    StatementRunner &m_runner;
    QList<quint8> m_lines;
};

void ContentSteps::fillLineTypes()
{
    const QString tool = m_store.getMiscSetting(QStringLiteral("CreateToolVersion"));
    for (const quint8 line : std::as_const(m_lines)) {
        const QString key = LineType::settingKey(line);
        if (!m_store.getGeneralSetting(key).isEmpty())
            continue;
        bool j1939 = tool.contains(QLatin1String("J1939 Quillforge"));
        if (!j1939 && !tool.contains(QLatin1String("CANopen Quillforge")))
            j1939 = m_store.getIndices(line, 0x1000).size() <= m_store.getPGNList(line).size();
        m_store.setGeneralSetting(
            key, QString::number(int(j1939 ? LineType::J1939 : LineType::CANopen)));
    }
}

/// Signals of the first files have no direction of their own. One that belongs to a PGN in both
/// directions is given to both.
void ContentSteps::repairSPNDirections()
{
    for (const quint8 line : std::as_const(m_lines)) {
        if (m_store.getLineType(line) != LineType::J1939)
            continue;
        QMap<quint32, QSet<quint8>> ofPgn;
        m_runner.forEachRow(
            QStringLiteral("select number, direction from PGNs%1 where direction is not NULL")
                .arg(line),
            [&](const ResultRow &row) {
                ofPgn[quint32(row.integer(0))].insert(quint8(row.integer(1)));
            });
        QSet<quint32> wrong;
        m_runner.forEachRow(QStringLiteral("select pgnnumber,direction from SPNs%1").arg(line),
                            [&](const ResultRow &row) {
                                const auto pgn = quint32(row.integer(0));
                                const auto found = ofPgn.constFind(pgn);
                                if (found != ofPgn.constEnd() &&
                                    !found->contains(quint8(row.integer(1))))
                                    wrong.insert(pgn);
                            });
        for (const quint32 pgn : std::as_const(wrong))
            giveSPNsDirection(line, pgn, ofPgn.value(pgn));
    }
}

void ContentSteps::giveSPNsDirection(quint8 line, quint32 pgn, const QSet<quint8> &pgnDirections)
{
    constexpr quint8 receive = ObjectDataBase::receive;
    constexpr quint8 transmit = ObjectDataBase::transmit;
    const QString table = SqlText::lineTable("SPNs", line);
    if (pgnDirections.size() == 1) {
        m_runner.execBound(QLatin1String("update ") + table +
                               QLatin1String(" SET direction = :direction where pgnnumber = "
                                             ":pgnnumber"),
                           {{QStringLiteral(":direction"), int(*pgnDirections.cbegin())},
                            {QStringLiteral(":pgnnumber"), pgn}},
                           Q_FUNC_INFO);
        return;
    }
    const QString orphans = QStringLiteral(" where pgnnumber = %1 and ifnull(direction,0) not in "
                                           "(%2,%3)")
                                .arg(pgn)
                                .arg(receive)
                                .arg(transmit);
    const QString columns = Schema::columnList(Schema::table(QStringLiteral("SPNs")));
    QString transmitted = columns;
    transmitted.replace(QLatin1String("direction"), QString::number(transmit));
    m_runner.exec(QStringLiteral("insert into %1 (%2) select %3 from %1%4")
                      .arg(table, columns, transmitted, orphans),
                  Q_FUNC_INFO);
    m_runner.exec(QStringLiteral("update %1 SET direction = %2%3")
                      .arg(table, QString::number(receive), orphans),
                  Q_FUNC_INFO);
}

void ContentSteps::makeNodePathsAbsolute(const QDir &folder)
{
    QDir::setCurrent(folder.absolutePath());
    const auto absolute = [&](QString &path) {
        if (!path.isEmpty())
            path = QDir::cleanPath(folder.absoluteFilePath(path));
    };
    for (const quint8 line : std::as_const(m_lines)) {
        ObjectDataBase::NODE_DATA_T node;
        if (!m_store.getNodeData(line, node))
            continue;
        absolute(node.edspath);
        absolute(node.xddpath);
        absolute(node.dcfpath);
        absolute(node.iconpath);
        node.outputpath = QStringLiteral("C:/");
        m_store.addNode(line, node);
    }
}

void ContentSteps::fitLineLists()
{
    int highest = 0;
    for (const quint8 line : std::as_const(m_lines)) {
        if (line != ObjectDataBase::comparisonLine && line != ObjectDataBase::stagingLine)
            highest = qMax(highest, int(line));
    }
    for (const QString &key : ObjectDataBase::getMultiLineKeys()) {
        const QString list = m_store.getGeneralSetting(key);
        if (list.isEmpty())
            continue;
        QStringList items = list.split(u',');
        items.resize(highest + 1);
        m_store.setGeneralSetting(key, items.join(u','));
    }
}

} // namespace

int ObjectDataBase::State::fileVersion()
{
    return setting("MiscSettings", QStringLiteral("DatabaseVersion")).toInt();
}

void ObjectDataBase::State::runContentSteps()
{
    const QList<quint8> lines = face.getLines();
    ContentSteps steps(face, runner);
    steps.fillLineTypes();
    for (const quint8 line : lines)
        completeUdsSettings(line);
    if (fileVersion() < firstVersionWithDirections)
        steps.repairSPNDirections();
    if (projectPath.endsWith(QLatin1String("vxep"), Qt::CaseInsensitive))
        steps.makeNodePathsAbsolute(QFileInfo(projectPath).absoluteDir());
    for (const quint8 line : lines)
        writeMissingDescriptionDefaults(line);
    strings.rebuild();
    // What was read of the signals before was read without their texts and directions.
    pgns.clear();
    canIds.clear();
    adaptSignals(lines);
    runner.transaction([&] {
        for (const quint8 line : lines)
            pgns.repairMappingCounts(line);
    });
    steps.fitLineLists();
    if (!runner.exec(QStringLiteral("VACUUM")))
        qDebug() << "migration statement failed:"
                 << "VACUUM" << runner.lastError();
    // That may number the rows of tables anew.
    pgns.clear();
    canIds.clear();
}

void ObjectDataBase::State::completeUdsSettings(quint8 line)
{
    static constexpr quint8 services[] = {0x10, 0x11, 0x3E, 0x22, 0x2E, 0x23, 0x3D, 0x14, 0x19,
                                          0x31, 0x27, 0x28, 0x2F, 0x34, 0x35, 0x36, 0x37};
    constexpr int inAllSessions = 10;
    runner.exec(Schema::createStatement(Schema::table(QStringLiteral("UDSSettings")),
                                        QString::number(line), true),
                Q_FUNC_INFO);
    const QMap<UDS::SID, bool> stored = face.getUDSServices(line);
    if (std::any_of(stored.cbegin(), stored.cend(), [](bool active) { return active; }))
        return;
    for (int i = 0; i < int(std::size(services)); ++i) {
        changeUdsService(line, UDS::SID(services[i]), [&](UdsService &service) {
            service.active = true;
            service.sessions =
                i < inAllSessions ? QStringLiteral("1,2,3,4") : QStringLiteral("2,3,4");
        });
    }
}

void ObjectDataBase::State::adaptSignals(const QList<quint8> &lines)
{
    if (fileVersion() < firstVersionWithPositions) {
        for (const quint8 line : lines) {
            if (line >= maximumLines)
                continue;
            canIds.layOutLine(line);
            pgns.layOutLine(line);
        }
    }
    for (const quint8 line : lines)
        face.foldPageKeys(line);
}

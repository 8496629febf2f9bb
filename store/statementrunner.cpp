#include "store/statementrunner.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QSqlDriver>
#include <QSqlError>

namespace {

constexpr int statementWaitMs = 5000;

bool writes(QStringView statement)
{
    static constexpr QLatin1String prefixes[] = {QLatin1String("insert"), QLatin1String("update"),
                                                 QLatin1String("delete"), QLatin1String("replace"),
                                                 QLatin1String("create"), QLatin1String("drop"),
                                                 QLatin1String("alter")};
    const QStringView trimmed = statement.trimmed();
    return std::any_of(std::begin(prefixes), std::end(prefixes), [&](QLatin1String prefix) {
        return trimmed.startsWith(prefix, Qt::CaseInsensitive);
    });
}

void logFailure(const char *context, const QString &statement, const QString &error)
{
    qDebug() << context << statement << error;
}

} // namespace

/// One statement's (or one exclusive body's) stay at the connection.
class StatementRunner::Passage
{
public:
    explicit Passage(StatementRunner &runner) : m_runner(runner) { m_runner.enter(); }
    ~Passage() { m_runner.leave(); }
    Passage(const Passage &) = delete;
    Passage &operator=(const Passage &) = delete;

private:
    StatementRunner &m_runner;
};

StatementRunner::StatementRunner(const QString &connectionName)
    : m_connectionName(connectionName),
      m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName))
{
}

StatementRunner::~StatementRunner()
{
    waitForStatements();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool StatementRunner::open(const QString &fileName)
{
    bool opened = false;
    exclusive([&] {
        m_database.close();
        m_database.setDatabaseName(fileName);
        opened = m_database.open();
    });
    return opened;
}

void StatementRunner::close()
{
    exclusive([&] { m_database.close(); });
}

bool StatementRunner::mayPass()
{
    if (m_blockActive.load() == 0)
        return true;
    const QMutexLocker locker(&m_threadMutex);
    return m_blockingThreads.contains(QThread::currentThreadId());
}

void StatementRunner::enter()
{
    ++m_inFlight;
    // A thread that already holds the connection must finish, or nobody could go on.
    if (m_owner.load() != QThread::currentThreadId()) {
        while (!mayPass()) {
            --m_inFlight;
            QCoreApplication::processEvents();
            QThread::usleep(200);
            ++m_inFlight;
        }
    }
    m_connection.lock();
    if (++m_depth == 1)
        m_owner = QThread::currentThreadId();
}

void StatementRunner::leave()
{
    if (--m_depth == 0)
        m_owner = nullptr;
    m_connection.unlock();
    --m_inFlight;
}

bool StatementRunner::runLocked(QSqlQuery &query, const QString &statement, const char *context)
{
    const bool done = statement.isEmpty() ? query.exec() : query.exec(statement);
    if (done) {
        reportWrite(statement, query);
        return true;
    }
    const QString error = query.lastError().text();
    {
        const std::scoped_lock lock(m_errorMutex);
        m_lastError = error;
    }
    if (context != nullptr)
        logFailure(context, statement.isEmpty() ? query.lastQuery() : statement, error);
    return false;
}

void StatementRunner::reportWrite(const QString &statement, const QSqlQuery &query)
{
    if (m_writeSignals && m_onWrite && writes(statement.isEmpty() ? query.lastQuery() : statement))
        m_onWrite();
}

bool StatementRunner::exec(const QString &statement, const char *context)
{
    const Passage passage(*this);
    QSqlQuery query(m_database);
    return runLocked(query, statement, context);
}

bool StatementRunner::forEachRow(const QString &statement, const RowFunction &row,
                                 const char *context)
{
    const Passage passage(*this);
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    if (!runLocked(query, statement, context))
        return false;
    while (query.next())
        row(query);
    if (!query.lastError().isValid())
        return true;
    const std::scoped_lock lock(m_errorMutex);
    m_lastError = query.lastError().text();
    return false;
}

QVariant StatementRunner::value(const QString &statement)
{
    const Passage passage(*this);
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    if (!runLocked(query, statement, nullptr) || !query.next())
        return {};
    return query.value(0);
}

bool StatementRunner::execBound(const QString &statement,
                                const QList<std::pair<QString, QVariant>> &values,
                                const char *context)
{
    const Passage passage(*this);
    QSqlQuery query(m_database);
    if (!query.prepare(statement)) {
        if (context != nullptr)
            logFailure(context, statement, query.lastError().text());
        return false;
    }
    for (const auto &[name, value] : values)
        query.bindValue(name, value);
    return runLocked(query, QString(), context);
}

qint64 StatementRunner::insert(const QString &statement, const char *context)
{
    const Passage passage(*this);
    QSqlQuery query(m_database);
    if (!runLocked(query, statement, context))
        return -1;
    return query.lastInsertId().toLongLong();
}

void StatementRunner::migrationExec(const QString &statement)
{
    if (!exec(statement) && !lastError().contains(QLatin1String("duplicate column name")))
        qDebug() << "migration statement failed:" << statement << lastError();
}

void StatementRunner::exclusive(const std::function<void()> &body)
{
    const Passage passage(*this);
    body();
}

bool StatementRunner::transaction(const std::function<void()> &body)
{
    const Passage passage(*this);
    const bool outermost = m_database.transaction();
    body();
    return !outermost || m_database.commit();
}

QString StatementRunner::lastError() const
{
    const std::scoped_lock lock(m_errorMutex);
    return m_lastError;
}

void StatementRunner::setBlock(bool block)
{
    {
        const QMutexLocker locker(&m_threadMutex);
        const Qt::HANDLE current = QThread::currentThreadId();
        if (!block)
            m_blockingThreads.removeAll(current);
        else if (!m_blockingThreads.contains(current))
            m_blockingThreads.append(current);
    }
    m_blockActive = block ? 1 : 0;
}

bool StatementRunner::waitForStatements()
{
    QElapsedTimer timer;
    timer.start();
    while (m_inFlight.load() > 0 && timer.elapsed() < statementWaitMs)
        QThread::yieldCurrentThread();
    return m_inFlight.load() == 0;
}

#include "store/statementrunner.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>
#include <cstring>

namespace {

constexpr int statementWaitMs = 5000;

bool writes(QByteArrayView statement)
{
    static constexpr QByteArrayView prefixes[] = {"insert", "update", "delete", "replace",
                                                  "create", "drop",   "alter"};
    const QByteArrayView trimmed = statement.trimmed();
    return std::any_of(std::begin(prefixes), std::end(prefixes), [&](QByteArrayView prefix) {
        return trimmed.size() >= prefix.size() &&
               trimmed.first(prefix.size()).compare(prefix, Qt::CaseInsensitive) == 0;
    });
}

/// A row as Qt's driver gives it.
class DriverRow final : public ResultRow
{
public:
    explicit DriverRow(const QSqlQuery &query) : m_query(query) {}

    [[nodiscard]] QStringList columnNames() const override
    {
        QStringList names;
        const QSqlRecord record = m_query.record();
        for (int i = 0; i < record.count(); ++i)
            names.append(record.fieldName(i));
        return names;
    }
    [[nodiscard]] QVariant value(int column) const override
    {
        return column < 0 ? QVariant() : m_query.value(column);
    }
    [[nodiscard]] bool isNull(int column) const override { return m_query.isNull(column); }
    [[nodiscard]] qint64 integer(int column) const override { return value(column).toLongLong(); }
    [[nodiscard]] QByteArrayView bytes(int column) const override
    {
        const QVariant whole = value(column);
        m_bytes = whole.typeId() == QMetaType::QByteArray ? whole.toByteArray()
                                                          : whole.toString().toUtf8();
        return m_bytes;
    }
    [[nodiscard]] bool isBlob(int column) const override
    {
        return value(column).typeId() == QMetaType::QByteArray;
    }
    void appendText(std::string &text, int column) const override
    {
        const QByteArrayView all = bytes(column);
        if (!all.isEmpty())
            text.append(all.data(), strnlen(all.data(), size_t(all.size())));
    }

private:
    const QSqlQuery &m_query;
    mutable QByteArray m_bytes; ///< what the last view shows
};

void takeRows(QSqlQuery &query, const StatementRunner::RowFunction &row, DirectAccess::Rows rows)
{
    const DriverRow current(query);
    while (query.next()) {
        row(current);
        if (rows == DirectAccess::Rows::First)
            break;
    }
}

SqlFailure failureOf(const QSqlError &error)
{
    return {error.text(), error.nativeErrorCode().toInt() & 0xFF};
}

/// The result codes of the database library that tell a user something. Their numbers are part of
/// its file format's documentation and never change.
struct FailureReason
{
    int code;
    /// The database may hold half of what was to be written: it has no journal to go back by.
    bool isDamaging;
    const char *text;
};

constexpr FailureReason failureReasons[] = {
    {5, false, "another program uses it"},
    {7, true, "the memory is used up"},
    {8, true, "it is read-only"},
    {9, true, "a statement took too long"},
    {10, true, "the disk reported an error"},
    {11, true, "the file is damaged and can't be read completely"},
    {13, true, "the disk is full"},
    {14, false, "the file can't be opened"},
    {18, false, "a text is too long"},
    {26, true, "it is no project but a file of another kind"},
};

const FailureReason *failureReason(int code)
{
    const auto *found = std::find_if(std::begin(failureReasons), std::end(failureReasons),
                                     [&](const FailureReason &r) { return r.code == code; });
    return found == std::end(failureReasons) ? nullptr : found;
}

/// Such a statement writes into another file and only reads the database.
bool copiesDatabase(QByteArrayView statement)
{
    return statement.startsWith("VACUUM INTO");
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
    m_direct.release();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool StatementRunner::open(const QString &fileName)
{
    bool opened = false;
    exclusive([&] {
        m_direct.release();
        m_database.close();
        m_database.setDatabaseName(fileName);
        opened = m_direct.open(m_database);
        const SqlFailure error = failureOf(m_database.lastError());
        const std::scoped_lock lock(m_errorMutex);
        m_damage.clear();
        m_lastError = error.text;
        m_lastCode = error.code;
    });
    return opened;
}

void StatementRunner::close()
{
    exclusive([&] {
        m_direct.release();
        m_database.close();
        m_database.setDatabaseName(QString());
    });
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

/// Needs the connection.
bool StatementRunner::run(QByteArrayView statement, const RowFunction *row, Rows rows,
                          const char *context)
{
    SqlFailure error;
    bool done = false;
    m_direct.startClock();
    if (m_direct.isAvailable()) {
        done = m_direct.run(statement, row, rows, error);
    } else {
        QSqlQuery query(m_database);
        query.setForwardOnly(true);
        done = query.exec(QString::fromUtf8(statement));
        if (done && row != nullptr)
            takeRows(query, *row, rows);
        error = failureOf(query.lastError());
        done = done && !query.lastError().isValid();
    }
    return finish(done, statement, error, context);
}

/// What follows on a statement, however it was run.
bool StatementRunner::finish(bool done, QByteArrayView statement, const SqlFailure &error,
                             const char *context)
{
    if (done) {
        if (m_writeSignals && m_onWrite && writes(statement))
            m_onWrite();
        return true;
    }
    {
        const std::scoped_lock lock(m_errorMutex);
        m_lastError = error.text;
        m_lastCode = error.code;
        const FailureReason *reason = failureReason(error.code);
        if (reason != nullptr && reason->isDamaging && m_damage.isEmpty() &&
            !copiesDatabase(statement))
            m_damage = QString::fromLatin1(reason->text);
    }
    if (context != nullptr)
        qDebug() << context << QString::fromUtf8(statement) << error.text;
    return false;
}

bool StatementRunner::exec(const QString &statement, const char *context)
{
    const Passage passage(*this);
    return run(statement.toUtf8(), nullptr, Rows::All, context);
}

bool StatementRunner::execUtf8(const std::string &statement, const char *context)
{
    const Passage passage(*this);
    return run(statement, nullptr, Rows::All, context);
}

bool StatementRunner::execMany(const std::string &statement, qsizetype count,
                               const DirectAccess::FillFunction &fill, const char *context)
{
    const Passage passage(*this);
    SqlFailure error;
    m_direct.startClock();
    const bool done = m_direct.runMany(statement, count, fill, error);
    return finish(done, statement, error, context);
}

bool StatementRunner::forEachRow(const QString &statement, const RowFunction &row,
                                 const char *context)
{
    const Passage passage(*this);
    return run(statement.toUtf8(), &row, Rows::All, context);
}

QVariant StatementRunner::value(const QString &statement)
{
    QVariant value;
    const RowFunction keep = [&](const ResultRow &row) { value = row.value(0); };
    const Passage passage(*this);
    run(statement.toUtf8(), &keep, Rows::First, nullptr);
    return value;
}

bool StatementRunner::execBound(const QString &statement,
                                const QList<std::pair<QString, QVariant>> &values,
                                const char *context)
{
    const Passage passage(*this);
    QSqlQuery query(m_database);
    m_direct.startClock();
    bool done = query.prepare(statement);
    if (done) {
        for (const auto &[name, value] : values)
            query.bindValue(name, value);
        done = query.exec();
    }
    return finish(done, statement.toUtf8(), failureOf(query.lastError()), context);
}

qint64 StatementRunner::insert(const QString &statement, const char *context)
{
    const Passage passage(*this);
    if (!run(statement.toUtf8(), nullptr, Rows::All, context))
        return -1;
    return m_direct.isAvailable()
               ? m_direct.lastInsertId()
               : value(QStringLiteral("select last_insert_rowid()")).toLongLong();
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
    return !outermost || m_database.commit() ||
           finish(false, "COMMIT", failureOf(m_database.lastError()), Q_FUNC_INFO);
}

QString StatementRunner::lastError() const
{
    const std::scoped_lock lock(m_errorMutex);
    return m_lastError;
}

QString StatementRunner::lastReason() const
{
    const std::scoped_lock lock(m_errorMutex);
    // What comes after a damage tells nothing new.
    if (!m_damage.isEmpty())
        return m_damage;
    const FailureReason *reason = failureReason(m_lastCode);
    return reason == nullptr ? QStringLiteral("the database refuses it")
                             : QString::fromLatin1(reason->text);
}

void StatementRunner::noteDamage(const QString &reason)
{
    const std::scoped_lock lock(m_errorMutex);
    if (m_damage.isEmpty())
        m_damage = reason;
}

QString StatementRunner::damage() const
{
    const std::scoped_lock lock(m_errorMutex);
    return m_damage;
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

bool StatementRunner::enterBlock()
{
    const QMutexLocker locker(&m_threadMutex);
    const Qt::HANDLE current = QThread::currentThreadId();
    if (m_blockActive.load() != 0 && m_blockingThreads.contains(current))
        return false;
    if (!m_blockingThreads.contains(current))
        m_blockingThreads.append(current);
    m_blockActive = 1;
    return true;
}

bool StatementRunner::leaveBlock()
{
    const QMutexLocker locker(&m_threadMutex);
    m_blockingThreads.removeAll(QThread::currentThreadId());
    if (!m_blockingThreads.isEmpty())
        return false;
    m_blockActive = 0;
    return true;
}

bool StatementRunner::waitForStatements()
{
    QElapsedTimer timer;
    timer.start();
    while (m_inFlight.load() > 0 && timer.elapsed() < statementWaitMs)
        QThread::yieldCurrentThread();
    return m_inFlight.load() == 0;
}

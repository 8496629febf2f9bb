#pragma once

#include "store/directaccess.h"

#include <QList>
#include <QMutex>
#include <QSqlDatabase>
#include <QString>
#include <QThread>
#include <QVariant>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

/// The one way to the database connection. Serialises the statements of all threads, counts the
/// ones in flight, and holds back threads that a block does not name.
///
/// A statement's rows are consumed while the connection is held, so a row callback should only
/// collect; statements that it runs itself are let through.
class StatementRunner
{
public:
    using RowFunction = DirectAccess::RowFunction;

    explicit StatementRunner(const QString &connectionName);
    ~StatementRunner();
    StatementRunner(const StatementRunner &) = delete;
    StatementRunner &operator=(const StatementRunner &) = delete;

    [[nodiscard]] QSqlDatabase &database() { return m_database; }
    /// Closes the connection and opens the given file.
    bool open(const QString &fileName);
    void close();
    [[nodiscard]] QString fileName() const { return m_database.databaseName(); }
    /// Whether rows come straight from the database library, so that each value costs little.
    [[nodiscard]] bool isDirect() const { return m_direct.isAvailable(); }

    /// Runs a statement. On failure false; logged under `context` unless that is null.
    bool exec(const QString &statement, const char *context = nullptr);
    /// The same for a statement in UTF-8.
    bool execUtf8(const std::string &statement, const char *context = nullptr);
    /// Runs a statement once for each of `count` rows, whose places `fill` fills. Only where
    /// `isDirect`.
    bool execMany(const std::string &statement, qsizetype count,
                  const DirectAccess::FillFunction &fill, const char *context = nullptr);
    /// Runs a statement and calls `row` for each of its rows.
    bool forEachRow(const QString &statement, const RowFunction &row,
                    const char *context = nullptr);
    /// The first column of the first row; invalid if there is none.
    [[nodiscard]] QVariant value(const QString &statement);
    [[nodiscard]] bool hasRow(const QString &statement) { return value(statement).isValid(); }
    /// Runs a statement whose places are bound by name.
    bool execBound(const QString &statement, const QList<std::pair<QString, QVariant>> &values,
                   const char *context = nullptr);
    /// Inserts and gives the new row's id; -1 on failure.
    qint64 insert(const QString &statement, const char *context = nullptr);
    /// For schema steps that are tried on every open: silent on a column that exists already.
    void migrationExec(const QString &statement);
    /// Holds the connection for the whole body: no other thread's statement comes between.
    void exclusive(const std::function<void()> &body);
    /// As `exclusive`, inside one transaction. There is no way back from it: the working copy has
    /// no journal.
    bool transaction(const std::function<void()> &body);
    /// Error text of this thread's last failed statement.
    [[nodiscard]] QString lastError() const;
    /// The same for a user, as part of a sentence about the database or its file.
    [[nodiscard]] QString lastReason() const;
    /// Why the database can't be trusted since a statement failed half-way, as part of a sentence;
    /// empty if it can. The next `open` ends it.
    [[nodiscard]] QString damage() const;
    void noteDamage(const QString &reason);

    /// While active, only threads that activated it run statements. Blocks do not nest: the first
    /// release ends it for all.
    void setBlock(bool block);
    /// For guards, whose blocks nest: this thread joins the block; false if it has it already.
    bool enterBlock();
    /// The block ends with its last thread, which is told by true.
    bool leaveBlock();
    /// Waits up to 5 s for the statements in flight; false if some are left.
    bool waitForStatements();

    void setWriteHandler(std::function<void()> handler) { m_onWrite = std::move(handler); }
    void setWriteSignals(bool on) { m_writeSignals = on; }

private:
    class Passage;

    void enter();
    void leave();
    [[nodiscard]] bool mayPass();
    using Rows = DirectAccess::Rows;
    bool run(QByteArrayView statement, const RowFunction *row, Rows rows, const char *context);
    bool finish(bool done, QByteArrayView statement, const SqlFailure &error, const char *context);

    QString m_connectionName;
    QSqlDatabase m_database;
    DirectAccess m_direct; ///< guarded by m_connection
    std::recursive_mutex m_connection;
    std::atomic<Qt::HANDLE> m_owner{nullptr};
    int m_depth = 0; ///< guarded by m_connection
    mutable std::mutex m_errorMutex;
    QString m_lastError; ///< guarded by m_errorMutex
    int m_lastCode = 0;  ///< guarded by m_errorMutex
    QString m_damage;    ///< guarded by m_errorMutex
    QMutex m_threadMutex;
    QList<Qt::HANDLE> m_blockingThreads; ///< guarded by m_threadMutex
    std::atomic<int> m_blockActive{0};
    std::atomic<int> m_inFlight{0};
    std::atomic<bool> m_writeSignals{false};
    std::function<void()> m_onWrite;
};

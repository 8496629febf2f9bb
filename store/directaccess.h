#pragma once

#include "store/resultrow.h"

#include <QByteArrayView>
#include <QDeadlineTimer>
#include <QSqlDatabase>

#include <functional>

/// The places of a statement, filled one after the other. What a place gets is what the same value
/// would be as a literal.
class BoundRow
{
public:
    explicit BoundRow(void *statement) : m_statement(statement) {}

    void number(quint64 value) { id(qint64(value)); }
    void id(qint64 value);
    void text(const QString &value);

private:
    void *m_statement;
    int m_place = 0;
};

/// Why a statement failed, in the driver's words and with the code of the database library.
struct SqlFailure
{
    QString text;
    int code = 0;
};

/// Runs statements on Qt's connection by the database library itself. Qt's driver makes an object
/// of every value and every statement, which takes most of the time where there are ten thousands
/// of them.
///
/// That works where Qt's driver and this program share one copy of the library. Where the driver
/// brings its own, as it does on some platforms, where the library's header was not there to build
/// with, or where the environment has `QUILLFORGE_PLAIN_SQL`, `isAvailable` is false and everything
/// goes through the driver.
///
/// Used under the lock of the connection.
class DirectAccess
{
public:
    using RowFunction = std::function<void(const ResultRow &)>;
    using FillFunction = std::function<void(qsizetype, BoundRow &)>;
    enum class Rows { All, First };

    /// No text, blob or row of a project is larger.
    static constexpr int mostBytesOfValue = 64 * 1024 * 1024;
    /// No statement runs longer, as far as the library can be asked to look.
    static constexpr int mostMilliseconds = 60000;

    /// Opens the connection and takes hold of it if possible.
    bool open(QSqlDatabase &database);
    /// Before the connection is closed.
    void release() { m_handle = nullptr; }
    [[nodiscard]] bool isAvailable() const { return m_handle != nullptr; }

    /// The time of a statement begins.
    void startClock() { m_deadline.setRemainingTime(mostMilliseconds); }
    /// Runs one statement, in UTF-8 with a NUL behind it. On failure false, with the words of Qt's
    /// driver in `error`. Rows go to `row`, unless that is null.
    bool run(QByteArrayView statement, const RowFunction *row, Rows rows, SqlFailure &error) const;
    /// Runs one statement that gives no rows `count` times; `fill` hears which time it is. Goes on
    /// after a failure; false and the first reason if there was one.
    bool runMany(QByteArrayView statement, qsizetype count, const FillFunction &fill,
                 SqlFailure &error) const;
    [[nodiscard]] qint64 lastInsertId() const;

private:
    QDeadlineTimer m_deadline{QDeadlineTimer::Forever};
    void *m_handle = nullptr; ///< the library's connection, which belongs to Qt's driver
};

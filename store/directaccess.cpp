#include "store/directaccess.h"

#ifndef QUILLFORGE_DIRECT_SQL

bool DirectAccess::open(QSqlDatabase &database)
{
    return database.open();
}

bool DirectAccess::run(QByteArrayView, const RowFunction *, Rows, SqlFailure &) const
{
    return false;
}

bool DirectAccess::runMany(QByteArrayView, qsizetype, const FillFunction &, SqlFailure &) const
{
    return false;
}

qint64 DirectAccess::lastInsertId() const
{
    return -1;
}

void BoundRow::id(qint64) {}

void BoundRow::text(const QString &) {}

#else

#include "store/sqltext.h"

#include <QSqlDriver>
#include <QStringList>
#include <QVariant>

#include <sqlite3.h>

namespace {

thread_local sqlite3 *openedHere = nullptr;

/// This program's copy of the library calls it for every connection that it opens.
int noteOpened(sqlite3 *connection, char **, const sqlite3_api_routines *)
{
    openedHere = connection;
    return SQLITE_OK;
}

bool watch()
{
    // A tenth of the time of a long insert goes into counting bytes of memory, which nobody reads.
    // The library takes it only before its first connection; later it changes nothing.
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    return sqlite3_auto_extension(reinterpret_cast<void (*)()>(noteOpened)) == SQLITE_OK;
}

sqlite3 *handleOf(const QSqlDatabase &database)
{
    const QVariant handle = database.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(handle.constData());
}

/// A statement that is ready to run.
class Statement
{
public:
    Statement(sqlite3 *connection, QByteArrayView text)
    {
        const char *rest = nullptr;
        m_result =
            sqlite3_prepare_v2(connection, text.data(), int(text.size()) + 1, &m_handle, &rest);
        // Where a statement can't be read, the rest tells nothing of what stands behind it.
        m_isSingle = m_result != SQLITE_OK || rest == text.end() ||
                     QByteArrayView(rest, text.end()).trimmed().isEmpty();
    }
    ~Statement() { sqlite3_finalize(m_handle); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    [[nodiscard]] bool isReady() const
    {
        return m_result == SQLITE_OK && m_handle != nullptr && m_isSingle;
    }
    [[nodiscard]] bool isSingle() const { return m_isSingle; }
    [[nodiscard]] sqlite3_stmt *handle() const { return m_handle; }

private:
    sqlite3_stmt *m_handle = nullptr;
    int m_result = SQLITE_OK;
    bool m_isSingle = true;
};

class DirectRow final : public ResultRow
{
public:
    explicit DirectRow(sqlite3_stmt *statement) : m_statement(statement) {}

    [[nodiscard]] QStringList columnNames() const override
    {
        QStringList names;
        for (int i = 0; i < sqlite3_column_count(m_statement); ++i)
            names.append(QString::fromUtf8(sqlite3_column_name(m_statement, i)));
        return names;
    }
    [[nodiscard]] QVariant value(int column) const override
    {
        if (column < 0 || column >= sqlite3_data_count(m_statement))
            return {};
        switch (sqlite3_column_type(m_statement, column)) {
        case SQLITE_INTEGER:
            return sqlite3_column_int64(m_statement, column);
        case SQLITE_FLOAT:
            return sqlite3_column_double(m_statement, column);
        case SQLITE_BLOB:
            return blob(column);
        case SQLITE_NULL:
            return QVariant(QMetaType::fromType<QString>());
        default:
            return text(column);
        }
    }
    [[nodiscard]] bool isNull(int column) const override
    {
        return sqlite3_value_type(at(column)) == SQLITE_NULL;
    }
    [[nodiscard]] qint64 integer(int column) const override
    {
        return sqlite3_column_int64(m_statement, column);
    }
    [[nodiscard]] QByteArrayView bytes(int column) const override
    {
        sqlite3_value *value = at(column);
        // The text has to be asked for first, as it may be made of something else.
        const unsigned char *data = sqlite3_value_text(value);
        return {data, sqlite3_value_bytes(value)};
    }
    [[nodiscard]] bool isBlob(int column) const override
    {
        return sqlite3_value_type(at(column)) == SQLITE_BLOB;
    }
    void appendText(std::string &text, int column) const override
    {
        sqlite3_value *value = at(column);
        if (sqlite3_value_type(value) == SQLITE_INTEGER)
            SqlText::appendNumber(text, sqlite3_value_int64(value));
        else if (const unsigned char *data = sqlite3_value_text(value))
            text += reinterpret_cast<const char *>(data);
    }

private:
    /// Faster than asking the statement for each property. Only for who holds the connection.
    [[nodiscard]] sqlite3_value *at(int column) const
    {
        return sqlite3_column_value(m_statement, column);
    }
    [[nodiscard]] QByteArray blob(int column) const
    {
        const auto *data = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
        return {data, sqlite3_column_bytes(m_statement, column)};
    }

    sqlite3_stmt *m_statement;
};

SqlFailure failure(sqlite3 *connection, QLatin1String what)
{
    return {QString::fromUtf8(sqlite3_errmsg(connection)) + u' ' + what,
            sqlite3_errcode(connection) & 0xFF};
}

SqlFailure notReady(sqlite3 *connection, const Statement &statement)
{
    if (statement.isSingle())
        return failure(connection, QLatin1String("Unable to execute statement"));
    return {QStringLiteral("Unable to execute multiple statements at a time"), SQLITE_ERROR};
}

/// Asked by the library every so many of its steps; anything but 0 ends the statement.
int isOverdue(void *deadline)
{
    return static_cast<const QDeadlineTimer *>(deadline)->hasExpired() ? 1 : 0;
}

} // namespace

bool DirectAccess::open(QSqlDatabase &database)
{
    m_handle = nullptr;
    static const bool watching = !qEnvironmentVariableIsSet("QUILLFORGE_PLAIN_SQL") && watch();
    openedHere = nullptr;
    if (!database.open())
        return false;
    // A handle of another copy of the library must not be touched, however alike the two are.
    sqlite3 *handle = handleOf(database);
    if (watching && handle == openedHere) {
        m_handle = handle;
        sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, mostBytesOfValue);
        constexpr int steps = 20000;
        sqlite3_progress_handler(handle, steps, isOverdue, &m_deadline);
    }
    return true;
}

bool DirectAccess::run(QByteArrayView text, const RowFunction *row, Rows rows,
                       SqlFailure &error) const
{
    auto *connection = static_cast<sqlite3 *>(m_handle);
    const Statement statement(connection, text);
    if (!statement.isReady()) {
        error = notReady(connection, statement);
        return false;
    }
    const DirectRow current(statement.handle());
    int result = sqlite3_step(statement.handle());
    for (; result == SQLITE_ROW; result = sqlite3_step(statement.handle())) {
        if (row != nullptr)
            (*row)(current);
        if (rows == Rows::First)
            return true;
    }
    if (result == SQLITE_DONE)
        return true;
    sqlite3_reset(statement.handle()); // only then the reason is told
    error = failure(connection, QLatin1String("Unable to fetch row"));
    return false;
}

bool DirectAccess::runMany(QByteArrayView text, qsizetype count, const FillFunction &fill,
                           SqlFailure &error) const
{
    auto *connection = static_cast<sqlite3 *>(m_handle);
    const Statement statement(connection, text);
    if (!statement.isReady()) {
        error = notReady(connection, statement);
        return false;
    }
    bool done = true;
    for (qsizetype i = 0; i < count; ++i) {
        BoundRow row(statement.handle());
        fill(i, row);
        const int result = sqlite3_step(statement.handle());
        sqlite3_reset(statement.handle());
        if (result != SQLITE_DONE && done) {
            error = failure(connection, QLatin1String("Unable to fetch row"));
            done = false;
        }
    }
    return done;
}

void BoundRow::id(qint64 value)
{
    sqlite3_bind_int64(static_cast<sqlite3_stmt *>(m_statement), ++m_place, value);
}

void BoundRow::text(const QString &value)
{
    QByteArray utf8 = value.toUtf8();
    if (utf8.contains('\0'))
        utf8.replace('\0', QByteArray());
    sqlite3_bind_text(static_cast<sqlite3_stmt *>(m_statement), ++m_place, utf8.constData(),
                      int(utf8.size()), SQLITE_TRANSIENT);
}

qint64 DirectAccess::lastInsertId() const
{
    return sqlite3_last_insert_rowid(static_cast<sqlite3 *>(m_handle));
}

#endif

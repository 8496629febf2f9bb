#include "store/databasetextconverter.h"

#include "canopen/safefile.h"
#include "store/metadatablob.h"
#include "store/objectdatabase_p.h"
#include "store/projectguard.h"
#include "store/projecttext.h"
#include "store/resultrow.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>

namespace {

using namespace ProjectText;

constexpr qsizetype flushSize = 1 << 20;
constexpr qsizetype batchSize = 1 << 15; ///< characters of one insert statement

/// Up to the values.
QString insertStatement(const QString &table, const QList<Column> &columns)
{
    QStringList names;
    for (const Column &column : columns)
        names.append(column.name);
    return QStringLiteral("INSERT OR REPLACE INTO %1 (%2) VALUES ").arg(table, names.join(u','));
}

/// What identifies a row in a statement, in the order of the layout's keys.
QString rowCondition(const Layout &layout, const Row &row)
{
    QStringList terms;
    for (int i = 0; i < layout.keyCount(); ++i)
        terms.append(
            QStringLiteral("%1 = %2").arg(QLatin1String(layout.keys[i].column)).arg(row.keys[i]));
    return terms.join(QLatin1String(" and "));
}

/// Writes rows of a project text into the database.
class RowImporter
{
public:
    RowImporter(StatementRunner &runner, StringTable &strings)
        : m_runner(runner), m_strings(strings)
    {
    }

    void beginGroup(const Group &group, const QList<Column> &columns)
    {
        flush();
        m_insert = insertStatement(group.table, columns);
        // A new line brings services of its own, which the text need not have.
        if (group.table.startsWith(QLatin1String("UDSSettings")))
            m_runner.exec(QLatin1String("delete from ") + group.table, Q_FUNC_INFO);
        // The text says which program made the project, also if that is none that left its name.
        if (group.table == QLatin1String("MiscSettings"))
            m_runner.exec(
                QStringLiteral("delete from MiscSettings where item <> 'DatabaseVersion'"),
                Q_FUNC_INFO);
    }

    void row(const Group &group, const QList<Column> &columns, const Row &row)
    {
        if (group.isNodes())
            run(updateStatement(group, columns, row), row.line);
        else
            addToBatch(columns, row);
        if (!row.metadata.isEmpty()) {
            flush();
            writeMetaData(group, row);
        }
    }

    /// Many rows in one statement take a third of the time. If one of them is refused, the others
    /// go in one by one.
    void flush()
    {
        if (m_rows.isEmpty())
            return;
        if (!m_runner.exec(m_insert + m_batch.chopped(1))) {
            for (const BatchRow &row : m_rows)
                run(m_insert + m_batch.mid(row.start, row.length), row.line);
        }
        m_rows.clear();
        m_batch.clear();
    }

private:
    [[nodiscard]] QString literal(const Column &column, const QString &value)
    {
        switch (column.kind) {
        case Kind::Integer:
            return value;
        case Kind::Text:
            return SqlText::quoted(value);
        case Kind::StringId:
            return QString::number(m_strings.intern(value));
        case Kind::MetaData:
            break;
        }
        return QStringLiteral("0");
    }

    void addToBatch(const QList<Column> &columns, const Row &row)
    {
        const qsizetype start = m_batch.size();
        for (int i = 0; i < columns.size(); ++i) {
            m_batch += i == 0 ? u'(' : u',';
            m_batch += literal(columns.at(i), row.value(columns, i));
        }
        m_batch += u')';
        m_rows.append({start, m_batch.size() - start, row.line});
        m_batch += u',';
        if (m_batch.size() > batchSize)
            flush();
    }

    /// Lines are there already, with the defaults of the columns that the text lacks.
    [[nodiscard]] QString updateStatement(const Group &group, const QList<Column> &columns,
                                          const Row &row)
    {
        QStringList terms;
        for (int i = 0; i < columns.size(); ++i) {
            if (!row.values.at(i).isNull())
                terms.append(columns.at(i).name + u'=' + literal(columns.at(i), row.values.at(i)));
        }
        return QStringLiteral("update %1 set ").arg(group.table) + terms.join(u',') +
               QLatin1String(" where ") + rowCondition(*group.layout, row);
    }

    void writeMetaData(const Group &group, const Row &row)
    {
        const QString statement =
            QStringLiteral("update %1 SET metadata = :metadata where ").arg(group.table) +
            rowCondition(*group.layout, row);
        if (!m_runner.execBound(
                statement, {{QStringLiteral(":metadata"), MetaDataBlob::toBlob(row.metadata)}}))
            report(row.line, statement);
    }

    void run(const QString &statement, int line)
    {
        if (!m_runner.exec(statement))
            report(line, statement);
    }

    void report(int line, const QString &statement) const
    {
        qDebug() << Q_FUNC_INFO << "Line:" << line << "failed:" << statement
                 << m_runner.lastError();
    }

    StatementRunner &m_runner;
    StringTable &m_strings;
    QString m_insert;
    QString m_batch; ///< values of the rows, each with a comma behind
    struct BatchRow
    {
        qsizetype start;
        qsizetype length;
        int line; ///< in the file
    };
    QList<BatchRow> m_rows;
};

/// Turns rows of a table into lines of a project text.
class RowWriter
{
public:
    RowWriter(const Layout &layout, const QString &table, const StringTable::Texts &strings)
        : m_layout(layout), m_table(table), m_strings(strings), m_columns(columnsOf(layout))
    {
        for (const Column &column : m_columns)
            m_names.append(IniText::separator + IniText::encodeKey(column.name) + '=');
    }

    void write(const ResultRow &row, QByteArray &text)
    {
        if (m_places.isEmpty())
            findColumns(row);
        std::array<quint64, maximumKeys> keys{};
        for (int i = 0; i < m_layout.keyCount(); ++i) {
            keys[i] = quint64(row.integer(m_keyPlaces.at(i)));
            if (keys[i] > m_layout.keys[i].maximum) {
                qDebug() << "Ignored row of" << m_table << m_layout.keys[i].column
                         << row.value(m_keyPlaces.at(i));
                return;
            }
        }
        const QByteArray firstPath = rowPath(m_layout, keys);
        const int repetition = m_paths[firstPath]++;
        const QByteArray path = repetition ? rowPath(m_layout, keys, repetition) : firstPath;
        for (int i = 0; i < m_columns.size(); ++i) {
            if (m_columns.at(i).kind == Kind::MetaData) {
                writeMetaData(row, i, path, text);
                continue;
            }
            text += path;
            text += m_names.at(i);
            writeValue(row, i, text);
            text += '\n';
        }
    }

private:
    /// The table may have grown its columns in another order.
    void findColumns(const ResultRow &row)
    {
        for (const Column &column : m_columns)
            m_places.append(row.columnOf(column.name));
        for (int i = 0; i < m_layout.keyCount(); ++i)
            m_keyPlaces.append(row.columnOf(QLatin1String(m_layout.keys[i].column)));
    }

    void writeValue(const ResultRow &row, int i, QByteArray &text) const
    {
        const int place = m_places.at(i);
        switch (m_columns.at(i).kind) {
        case Kind::Integer:
            text += QByteArray::number(row.integer(place));
            break;
        case Kind::Text:
            if (const QByteArrayView bytes = row.bytes(place); IniText::isPlain(bytes))
                text += bytes;
            else
                IniText::encodeValue(ResultRow::textOf(bytes), text);
            break;
        case Kind::StringId:
            IniText::encodeValue(m_strings.text(row.integer(place)), text);
            break;
        case Kind::MetaData:
            break;
        }
    }

    void writeMetaData(const ResultRow &row, int i, const QByteArray &path, QByteArray &text) const
    {
        if (!row.isBlob(m_places.at(i)))
            return;
        const auto map = MetaDataBlob::fromValue(row.value(m_places.at(i)));
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            text += path + m_names.at(i).chopped(1) + IniText::separator +
                    IniText::encodeKey(it.key()) + '=';
            IniText::encodeValue(it.value(), text);
            text += '\n';
        }
    }

    const Layout &m_layout;
    const QString &m_table;
    const StringTable::Texts &m_strings;
    QList<Column> m_columns;
    QList<QByteArray> m_names;      ///< by column, with what stands around them
    QList<int> m_places;            ///< in the table, by column; -1 for one that it lacks
    QList<int> m_keyPlaces;         ///< by key
    QHash<QByteArray, int> m_paths; ///< how often each is taken
};

void writeSetting(ObjectDataBase &store, const QString &table, const QString &item,
                  const QString &value)
{
    using Setter = void (*)(ObjectDataBase &, const QString &, const QString &);
    static const QHash<QString, Setter> setters = {
        {QStringLiteral("DescriptionSettings"),
         [](ObjectDataBase &s, const QString &i, const QString &v) {
             s.setDescriptionSetting(i, v);
         }},
        {QStringLiteral("GeneralSettings"),
         [](ObjectDataBase &s, const QString &i, const QString &v) { s.setGeneralSetting(i, v); }},
        {QStringLiteral("J1939Settings"),
         [](ObjectDataBase &s, const QString &i, const QString &v) { s.setJ1939Setting(i, v); }},
        {QStringLiteral("MiscSettings"),
         [](ObjectDataBase &s, const QString &i, const QString &v) { s.setMiscSetting(i, v); }},
    };
    if (const Setter setter = setters.value(table))
        setter(store, item, value);
}

} // namespace

DatabaseTextConverter::DatabaseTextConverter(ObjectDataBase &store, const QString &path,
                                             QObject *parent)
    : QObject(parent), m_store(store), m_path(path)
{
}

bool DatabaseTextConverter::fail(const QString &what)
{
    m_errorText = m_path + QLatin1String(": ") + what;
    return false;
}

// --- Writing --------------------------------------------------------------------------------

/// On a full disk a part of the text may be written, without an error of the file.
bool DatabaseTextConverter::put(const QByteArray &text, QIODevice &out)
{
    return out.write(text) == text.size() ||
           fail(QStringLiteral("can't be written completely, the disk may be full"));
}

QStringList DatabaseTextConverter::allTables()
{
    QStringList tables;
    m_store.d->runner.forEachRow(
        QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"),
        [&](const ResultRow &row) { tables.append(row.value(0).toString()); });
    return tables;
}

/// Sets the NULLs of a table to 0 or the empty text, with one statement for all of its rows. Rows
/// that a constraint keeps from changing stay as they are.
void DatabaseTextConverter::normaliseNulls(const QString &table)
{
    QStringList assignments;
    QStringList conditions;
    m_store.d->runner.forEachRow(
        QStringLiteral("SELECT name,type FROM PRAGMA_TABLE_INFO('%1') ORDER BY name")
            .arg(SqlText::escaped(table)),
        [&](const ResultRow &row) {
            const QString name = u'"' + row.value(0).toString() + u'"';
            const QString type = row.value(1).toString().toLower();
            if (type != QLatin1String("integer") && type != QLatin1String("text"))
                return;
            const QLatin1String empty(type == QLatin1String("integer") ? "0" : "''");
            assignments.append(QStringLiteral("%1=ifnull(%1,%2)").arg(name, empty));
            conditions.append(name + QLatin1String(" is null"));
        });
    if (assignments.isEmpty())
        return;
    // Looked for first, since an update that changes nothing still counts as a write.
    const QString where = QLatin1String(" where ") + conditions.join(QLatin1String(" or "));
    if (m_store.d->runner.hasRow(QStringLiteral("select 1 from \"%1\"").arg(table) + where +
                                 QLatin1String(" limit 1")))
        m_store.d->runner.exec(QStringLiteral("update or ignore \"%1\" set ").arg(table) +
                                   assignments.join(u',') + where,
                               Q_FUNC_INFO);
}

bool DatabaseTextConverter::convertSqlToText()
{
    m_errorText.clear();
    const QFileInfo info(m_path);
    if (info.exists() && !info.isFile())
        return fail(info.isDir() ? QStringLiteral("is a folder") : QStringLiteral("is no file"));
    // For some users every file is writable, whatever its permissions say.
    constexpr QFile::Permissions writeBits =
        QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    if (info.exists() && (!info.isWritable() || !(info.permissions() & writeBits)))
        return fail(QStringLiteral("the file is read-only"));
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(QStringLiteral("can't be written: ") + SafeFile::reason(file));
    bool written = false;
    m_store.d->runner.exclusive([&] {
        const QStringList tables = allTables();
        for (const QString &table : tables)
            normaliseNulls(table);
        written = !tables.isEmpty() &&
                  std::all_of(tables.begin(), tables.end(),
                              [&](const QString &table) { return writeTable(table, file); });
    });
    if (!written) {
        file.cancelWriting();
        return !m_errorText.isEmpty()
                   ? false
                   : fail(QStringLiteral("not written, the project can't be read: ") +
                          m_store.d->runner.lastReason());
    }
    // What is still in the buffer has to be on its way before the old file is replaced.
    if (!file.flush() || file.error() != QFile::NoError || !file.commit())
        return fail(QStringLiteral("can't be written: ") + SafeFile::reason(file));
    return true;
}

bool DatabaseTextConverter::writeTable(const QString &table, QIODevice &out)
{
    static const QRegularExpression trailingDigits(QStringLiteral("(\\d+)$"));
    const QRegularExpressionMatch match = trailingDigits.match(table);
    const QString base = table.left(match.hasMatch() ? match.capturedStart() : table.size());
    if (contains(leftOutTables, table) || contains(leftOutTables, base))
        return true;
    Group group;
    if (parseGroup(table, group)) {
        if (!group.layout)
            return writeSettings(table, out);
        if (group.isNodes() || m_store.lineExists(group.line))
            return writeRows(*group.layout, table, out);
        qDebug() << "Ignored table " << table;
        return true;
    }
    bool ok = true;
    if (match.hasMatch())
        match.captured(1).toUShort(&ok);
    if (!ok)
        qDebug() << "Could not convert captured digits:" << match.captured(1);
    // Scratch lines, and what the database keeps for itself.
    const bool expected = group.isLineTable() || table.startsWith(QLatin1String("sqlite_"));
    qDebug() << (expected ? "Ignored table " : "unhandled table") << table;
    return true;
}

bool DatabaseTextConverter::writeSettings(const QString &table, QIODevice &out)
{
    QByteArray text = (out.pos() > 0 ? "\n[" : "[") + IniText::encodeKey(table) + "]\n";
    const bool read = m_store.d->runner.forEachRow(
        QStringLiteral("SELECT * FROM %1 ORDER BY item").arg(table),
        [&](const ResultRow &row) {
            if (row.isNull(0)) { // can't be asked for
                qDebug() << "Ignored row of" << table;
                return;
            }
            text += IniText::encodeKey(row.value(0).toString()) + '=';
            IniText::encodeValue(row.value(1).toString(), text);
            text += '\n';
        },
        Q_FUNC_INFO);
    return read && put(text, out);
}

bool DatabaseTextConverter::writeRows(const Layout &layout, const QString &table, QIODevice &out)
{
    QByteArray text = (out.pos() > 0 ? "\n[" : "[") + IniText::encodeKey(table) + "]\n";
    const StringTable::Texts strings(m_store.d->strings);
    RowWriter writer(layout, table, strings);
    bool written = true;
    const bool read = m_store.d->runner.forEachRow(
        QStringLiteral("SELECT * FROM %1 ORDER by %2").arg(table, QLatin1String(layout.order)),
        [&](const ResultRow &row) {
            writer.write(row, text);
            if (text.size() > flushSize) {
                written = written && put(text, out);
                text.resize(0);
            }
        },
        Q_FUNC_INFO);
    return read && written && put(text, out);
}

// --- Reading --------------------------------------------------------------------------------

bool DatabaseTextConverter::readFile(QByteArray &content)
{
    QString fault;
    auto bytes = SafeFile::read(m_path, ProjectGuard::mostBytesOfFile, fault);
    if (!bytes)
        return fail(QStringLiteral("can't be read: ") + fault);
    content = std::move(*bytes);
    if (content.isEmpty())
        return fail(QStringLiteral("is empty"));
    if (content.contains('\0'))
        return fail(QStringLiteral("is no text"));
    return true;
}

/// A file that was cut off at the end of a line is still good INI text. What this tool writes ends
/// with a line end and has a group for each table, even for an empty one.
bool DatabaseTextConverter::checkComplete(const Summary &summary, const QByteArray &content)
{
    if (summary.groups.isEmpty())
        return fail(QStringLiteral("holds no project"));
    if (!summary.hasFileHash)
        return true;
    if (!content.endsWith('\n') && !content.endsWith('\r'))
        return fail(QStringLiteral("ends in the middle of a line"));
    for (const quint8 line : summary.lines) {
        const QString last = SqlText::lineTable("UDSSettings", line);
        if (!summary.groups.contains(last))
            return fail(QStringLiteral("is not complete, the group \"%1\" is missing").arg(last));
    }
    return true;
}

bool DatabaseTextConverter::convertTextToSql()
{
    m_errorText.clear();
    if (m_store.d->refusesWrites())
        return fail(QStringLiteral("the project is in use by a running job"));
    QByteArray content;
    if (!readFile(content))
        return false;
    Reader reader(content);
    if (!reader.read({}))
        return fail(reader.error());
    const Summary summary = reader.summary();
    if (!checkComplete(summary, content))
        return false;
    createLines(summary);
    importContent(reader);
    return true;
}

void DatabaseTextConverter::createLines(const Summary &summary)
{
    QList<quint8> lines = summary.lines.values();
    if (lines.isEmpty())
        return;
    std::sort(lines.begin(), lines.end());
    if (!lines.contains(0))
        m_store.deleteNode(0); // which a new store has
    for (const quint8 line : lines)
        m_store.addNode(line, ObjectDataBase::NODE_DATA_T());
    if (summary.hasFileHash)
        m_store.d->runner.exec(QStringLiteral("delete from DescriptionSettings"), Q_FUNC_INFO);
}

void DatabaseTextConverter::importContent(Reader &reader)
{
    RowImporter importer(m_store.d->runner, m_store.d->strings);
    Reader::Visitor visitor;
    visitor.group = [&](const Group &group, const QList<Column> &columns) {
        importer.beginGroup(group, columns);
    };
    visitor.setting = [&](const Group &group, const QString &item, const QString &value) {
        writeSetting(m_store, group.table, item, value);
    };
    visitor.row = [&](const Group &group, const QList<Column> &columns, const Row &row) {
        importer.row(group, columns, row);
    };
    // Items of the text carry the line already.
    const quint8 descriptionLine = m_store.descriptionLine();
    m_store.setDescriptionLine(0);
    m_store.d->runner.transaction([&] {
        reader.read(visitor);
        importer.flush();
    });
    m_store.setDescriptionLine(descriptionLine);
    m_store.d->clearCaches();
}

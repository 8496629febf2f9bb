#pragma once

#include "store/objectcache.h"
#include "store/objectdatabase.h"
#include "store/schema.h"
#include "store/sqltext.h"
#include "store/statementrunner.h"
#include "store/stringtable.h"

#include <QHash>
#include <QMap>

#include <atomic>
#include <functional>
#include <mutex>
#include <shared_mutex>

/// What was read of the J1939 signals; lives inside one generator or checker pass.
struct SignalCache
{
    /// (line, PGN, direction, SPN)
    using SpnKey = std::tuple<quint8, quint32, quint8, quint32>;
    /// (line, PGN, direction)
    using PgnKey = std::tuple<quint8, quint32, quint8>;

    std::shared_mutex mutex;
    QMap<SpnKey, ObjectDataBase::SPN> spns;
    QMap<PgnKey, QList<quint32>> lists;
    QSet<quint8> lines;

    /// Before anything of the line is written.
    void drop(quint8 line);
    void clear();
};

/// What a line says of one UDS service.
struct UdsService
{
    bool active = false;
    QString sessions;
    QString userLevels;
    QString authentication;

    bool operator==(const UdsService &) const = default;
};

/// The rooms behind `ObjectDataBase`.
struct ObjectDataBase::State
{
    explicit State(const QString &connectionName) : runner(connectionName), strings(runner) {}

    StatementRunner runner;
    StringTable strings;
    ObjectCache objects;
    SignalCache signalCache;
    QString lastError;
    QString projectPath;
    QStringList workingFiles;
    QStringList statementResults;
    std::atomic<bool> writesBlocked{false};
    std::atomic<bool> generating{false};
    bool externallyModified = false;
    BackupRule backupRule = BackupRule::EachSave;
    QString savedPath; ///< over which the last save went
    quint8 descriptionLine = 0;
    std::mutex orderMutex;
    QHash<QByteArray, std::string> intoClauses; ///< by table; guarded by orderMutex

    [[nodiscard]] bool refusesWrites() const { return writesBlocked || generating; }
    /// Reserves a working file and notes it for deletion.
    QString newWorkingFile();
    void dropWorkingFile(const QString &path);
    /// What is open, to come back to if what is to take its place turns out to be of no use.
    struct Former
    {
        QString file;
        QString path;
        QString damage;
        bool externallyModified = false;
    };
    [[nodiscard]] Former present() const;
    void goBackTo(const Former &former);
    /// Where the store has its database, in the form of `workingFiles`.
    [[nodiscard]] QString presentFile() const;
    bool openWorkingFile(const QString &path);
    [[nodiscard]] QString copyInPlaceOfDamaged(const QString &snapshot, QString &error);
    /// Settings that give up safety: the working copy is disposable, and opening a project runs
    /// thousands of small statements.
    void runPragmas(int cachePages);
    static constexpr int cachePagesOpen = 64000; ///< for a project with content
    void clearCaches();

    [[nodiscard]] QString internedId(const QString &text)
    {
        return QString::number(strings.intern(text));
    }
    [[nodiscard]] QString text(const QVariant &id) { return strings.lookup(id.toLongLong()); }

    // --- settings tables, all of one shape ---------------------------------------------------
    [[nodiscard]] QString setting(const char *table, const QString &key);
    [[nodiscard]] bool settingExists(const char *table, const QString &key);
    [[nodiscard]] QStringList settingKeys(const char *table);
    enum class SettingChange { Failed, Unchanged, Written };
    SettingChange writeSetting(const char *table, const QString &key, const QString &value);

    SettingChange writeLineSetting(const char *table, const QString &key, const QString &value,
                                   quint8 line);

    // --- UDS ---------------------------------------------------------------------------------
    [[nodiscard]] UdsService udsService(quint8 line, UDS::SID sid);
    /// Changes what there is of a service; false if that left it as it was, or failed.
    bool changeUdsService(quint8 line, UDS::SID sid,
                          const std::function<void(UdsService &)> &change);

    // --- lines -------------------------------------------------------------------------------
    bool createLineTables(quint8 line);
    /// `DatabaseVersion` of what was opened.
    [[nodiscard]] int fileVersion();
    /// What stands between "insert" and the rows for a table of the line.
    [[nodiscard]] std::string intoClause(const char *table, quint8 line);
    static constexpr qsizetype mostRowsOfInsert = 20;
    bool readLine(quint8 line, ObjectCache::Subs &subs, ObjectCache::Walk &walk);
    void readObjects(quint8 line, ObjectCache::Walk &walk);
    bool readSubs(quint8 line, quint16 index, ObjectCache::Subs &subs);
    void writeMissingDescriptionDefaults(quint8 line);
    [[nodiscard]] QString descriptionKey(const QString &key) const
    {
        return descriptionLine == 0 ? key : key + u'_' + QString::number(descriptionLine);
    }

    struct Row
    {
        QString table;
        QString where;
        QString inserted; ///< what stands behind the table where the row has to be made
    };
    /// Writes one column of a row, which is made if it is missing.
    bool writeColumn(const Row &row, const QString &column, const QString &text);
    /// Upsert of a row by its key: `values` are (column, SQL literal).
    bool upsert(const QString &table, const QString &where,
                const QList<std::pair<QString, QString>> &values,
                const QStringList &insertOnlyColumns, const char *context);
};

namespace StoreText {
/// Defaults of `DescriptionSettings`, as (key, value).
[[nodiscard]] const QList<std::pair<QString, QString>> &descriptionDefaults();
/// The line's item of a comma list, or the last item for a line beyond its end.
[[nodiscard]] QString lineItem(const QString &list, quint8 line);
/// The line's item of a comma list; empty for a line beyond its end.
[[nodiscard]] QString ownLineItem(const QString &list, quint8 line);
} // namespace StoreText

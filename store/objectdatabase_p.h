#pragma once

#include "canopen/j1939numbers.h"
#include "store/messagestore.h"
#include "store/objectcache.h"
#include "store/objectdatabase.h"
#include "store/schema.h"
#include "store/sqltext.h"
#include "store/statementrunner.h"
#include "store/storeguards.h"
#include "store/stringtable.h"

#include <QHash>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// What a line says of one UDS service.
struct UdsService
{
    bool active = false;
    QString sessions;
    QString userLevels;
    QString authentication;

    bool operator==(const UdsService &) const = default;
};

/// The rooms behind `ObjectDataBase`, and what several of its operations share.
struct ObjectDataBase::State
{
    State(ObjectDataBase &store, const QString &connectionName)
        : face(store), runner(connectionName), strings(runner), pgns(runner, strings),
          canIds(runner, strings)
    {
    }

    ObjectDataBase &face;
    StatementRunner runner;
    StringTable strings;
    ObjectCache objects;
    MessageStore<pgnFamily> pgns;
    MessageStore<canIdFamily> canIds;
    template <const auto &family>
    class Messages;
    using Pgns = Messages<pgnFamily>;
    using CanIds = Messages<canIdFamily>;
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
    /// Whether another project may take the place of this one; tells the reason if not.
    [[nodiscard]] bool mayBeReplaced();
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

    // --- telling -----------------------------------------------------------------------------

    /// What a `StoreBulkChange` gathers; guarded by its mutex, which the changing thread holds.
    struct Bulk
    {
        std::recursive_mutex mutex;
        int depth = 0;
        bool isFailed = false;
        bool hasWritten = false;
        std::optional<ChangeSet> change;
        std::unique_ptr<StoreBlock> block;
        std::atomic<Qt::HANDLE> thread{nullptr};
    };
    Bulk bulk;
    bool beginBulk();
    bool endBulk(bool keep);
    void notify(const ChangeSet &change);
    void tellWrite();

    // --- settings tables, all of one shape ---------------------------------------------------
    [[nodiscard]] QString setting(const char *table, const QString &key);
    [[nodiscard]] bool settingExists(const char *table, const QString &key);
    [[nodiscard]] QStringList settingKeys(const char *table);
    enum class SettingChange { Failed, Unchanged, Written };
    SettingChange writeSetting(const char *table, const QString &key, const QString &value);

    bool setSetting(const char *table, const QString &key, const QString &value,
                    const ChangeSet &change);
    bool setLineSetting(const char *table, const QString &key, const QString &value, quint8 line,
                        const ChangeSet &change);
    SettingChange writeLineSetting(const char *table, const QString &key, const QString &value,
                                   quint8 line);

    // --- UDS ---------------------------------------------------------------------------------
    [[nodiscard]] UdsService udsService(quint8 line, UDS::SID sid);
    using UdsChange = std::function<void(UdsService &)>;
    /// Changes what there is of a service; false if that left it as it was, or failed.
    bool changeUdsService(quint8 line, UDS::SID sid, const UdsChange &change);
    /// The same for users, who hear of it.
    void setUdsService(quint8 line, UDS::SID sid, const UdsChange &change);
    bool copyUdsSettings(State &source, quint8 sourceLine, quint8 targetLine);

    // --- lines -------------------------------------------------------------------------------
    bool createLineTables(quint8 line);
    void inheritLineSettings(quint8 line);
    void createUdsTable(quint8 line);
    void completeUdsSettings(quint8 line);
    void deleteDescriptionOfLine(quint8 line);
    void cutLineFromSettings(const char *table, quint8 line);
    void writeMissingDescriptionDefaults(quint8 line);
    bool copyObjects(ObjectDataBase &source, quint8 sourceLine, quint8 targetLine, int low,
                     int high);
    bool copySettings(const char *table, State &source);
    [[nodiscard]] QString descriptionKey(const QString &key) const
    {
        return descriptionLine == 0 ? key : key + u'_' + QString::number(descriptionLine);
    }

    /// `DatabaseVersion` of what was opened.
    [[nodiscard]] int fileVersion();
    // --- opening and saving ------------------------------------------------------------------
    enum class Opened { No, WrongTool, Yes };
    bool makeEmptyProject();
    void noteCreator();
    Opened openText(const QString &path);
    Opened openSql(const QString &path);
    bool openWorkingCopyOf(const QString &path);
    void nameBackup(const QString &path);
    bool checkExternalModification();
    bool mayBeSaved(const QString &target);
    bool writeSaveKeys();
    bool writeProjectFile(const QString &target, const QString &hash);
    bool refuseSave(const QString &target, const QString &reason);
    bool writeText(const QString &path);
    bool textHash(const QString &trial, QString &hash);
    void runSchemaSteps();
    [[nodiscard]] bool editionAllowed();
    void runContentSteps();
    /// Signals of older versions, whatever the form of their file.
    void adaptSignals(const QList<quint8> &lines);

    // --- objects and subindices --------------------------------------------------------------
    bool readLine(quint8 line, ObjectCache::Subs &subs, ObjectCache::Walk &walk);
    void readObjects(quint8 line, ObjectCache::Walk &walk);
    bool readSubs(quint8 line, quint16 index, ObjectCache::Subs &subs);
    [[nodiscard]] QVariant subIndexColumn(quint8 line, quint16 index, quint8 subindex,
                                          const char *column);
    [[nodiscard]] QList<SubIndexKey> selectKeys(const QString &statement);
    /// " = value", or the ids of the text for one of the columns `stringIds`.
    [[nodiscard]] QString columnLiteral(const QStringList &stringIds, const QString &column,
                                        const QVariant &value);
    bool writeIndex(quint8 line, quint16 index, const INDEX_DATA_T &data);
    bool writeIndexMetaData(quint8 line, quint16 index, const MetaData &metadata);
    bool writeSubMetaData(quint8 line, quint16 index, quint8 subindex, const MetaData &metadata);
    qsizetype writeBatch(const QList<IndexEntry> &entries, qsizetype from, bool &done);
    qsizetype writeBatch(const QList<SubEntry> &entries, qsizetype from, bool &done);
    qsizetype writeBatchAsText(const QList<SubEntry> &entries, qsizetype from, bool &done);
    void appendSubIndexValues(std::string &statement, quint16 index, quint8 subindex,
                              const SUBINDEX_DATA_T &data);
    void tellIndexValue(quint8 line, quint16 index);
    void tellSubIndexValue(quint8 line, quint16 index, quint8 subindex);

    // --- rows --------------------------------------------------------------------------------
    /// What stands between "insert" and the rows for a table of the line.
    [[nodiscard]] std::string intoClause(const char *table, quint8 line);
    static constexpr qsizetype mostRowsOfInsert = 20;

    struct Row
    {
        QString table;
        QString where;
        QString inserted; ///< what stands behind the table where the row has to be made
    };
    /// Writes one column of a row, which is made if it is missing.
    bool writeColumn(const Row &row, const QString &column, const QString &text);
    /// The text that a single column write stores; empty if there is nothing to write.
    [[nodiscard]] QString sqlValueText(const QString &column, const QVariant &value);
    /// Updates the row by `assignments`, or makes it of the columns and their literals.
    struct Upsert
    {
        QString table;
        QString where;
        QString assignments;
        QStringList columns;
        QStringList literals;
    };
    bool upsert(const Upsert &row, const char *context);
};

namespace StoreText {
/// Defaults of `DescriptionSettings`, as (key, value).
[[nodiscard]] const QList<std::pair<QString, QString>> &descriptionDefaults();
/// The line's item of a comma list, or the last item for a line beyond its end.
[[nodiscard]] QString lineItem(const QString &list, quint8 line);
/// The line's item of a comma list; empty for a line beyond its end.
[[nodiscard]] QString ownLineItem(const QString &list, quint8 line);
} // namespace StoreText

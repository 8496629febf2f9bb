#pragma once

#include "canopen/linetype.h"
#include "canopen/udssid.h"
#include "store/records.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <utility>

/// The one class through which everything reads and writes a project.
///
/// A store never works on the user's file. Opening copies the project file to a private working
/// copy in the application's data folder; saving copies the working copy back. So a crash never
/// damages a project, and only a save touches it.
///
/// Lines are bytes. A line is one row of `Nodes` with tables of its own; lines 254 and 255 are
/// scratch lines that are never saved. The records are described in `records.h`.
///
/// Threads: any thread may call any operation; statements on the one connection are serialised, and
/// an operation that looks before it writes does both in one step. A block (`StoreBlock`) lets only
/// the threads that hold it run statements, all others wait and keep their events going. The
/// destructor, opening and restoring belong to the owning thread. Modes are held by the guards of
/// `storeguards.h`, never set and reset by hand.
///
/// Errors: operations return false or an empty value and log statement and error to the debug
/// stream; nothing throws. An out-record is as it was when a getter returns false. While writes are
/// refused (`writesBlocked`) every write returns false, changes nothing and tells nothing; opening
/// and making projects is refused, too.
///
/// Telling: what has changed is told by `updateNotify`, once the write is done, on the thread that
/// wrote. Each writing operation says below which kind it sends; unless it says otherwise it sends
/// it whether or not the statement worked, so that nobody goes on with what he has read before. A
/// `StoreBulkChange` gathers what is told on its thread and tells it as one.
///
/// Caches: subindices and objects are cached on request (`cacheAllSubs`), until a write to the line
/// changes what there is. Messages and signals of a line are read as a whole by the first question
/// to them and kept up to date by every write. All caches end with another project, an undo step
/// and the line; a statement of `executeSql` ends those of messages and signals. What goes past the
/// store (there is nothing that should) is not seen by them.
class ObjectDataBase : public QObject
{
    Q_OBJECT

public:
    using MetaData = Records::MetaData;
    using NODE_DATA_T = Records::Node;
    using INDEX_DATA_T = Records::Index;
    using SUBINDEX_DATA_T = Records::SubIndex;
    using IndexEntry = Records::IndexEntry;
    using SubEntry = Records::SubEntry;
    using PGN = Records::PGN;
    using SPN = Records::SPN;
    using CANID = Records::CANID;
    using DataElement = Records::DataElement;
    using MessageKey = Records::MessageKey;
    using SignalKey = Records::SignalKey;
    using Direction = Records::Direction;
    /// (object index, subindex)
    using SubIndexKey = std::pair<quint16, quint8>;

    static constexpr quint8 comparisonLine = 254;
    static constexpr quint8 stagingLine = 255;
    static constexpr int maximumLines = LineType::maximumLines;
    static constexpr auto transmit = quint8(Direction::Transmit);
    static constexpr auto receive = quint8(Direction::Receive);
    static constexpr int schemaVersion = 107;

    enum ChangeKind : quint32 {
        NoChange = 0,
        IndexAdded = 1,
        SubIndexAdded = 2,
        IndexDeleted = 3,
        SubIndexDeleted = 4,
        NodeAdded = 6,
        NodeDeleted = 7,
        GeneralSettingChanged = 9,
        DescriptionSettingChanged = 10,
        EnergyBusSettingChanged = 11,
        MiscSettingChanged = 12,
        J1939SettingChanged = 13,
        ProjectReplaced = 14,
        PGNAdded = 15,
        PGNDeleted = 16,
        CANIDAdded = 17,
        CANIDDeleted = 18,
        SPNAdded = 19,
        SPNOrDataElementDeleted = 20, ///< told apart by the fields that are filled
        DataElementAdded = 21
    };

    /// What a change notification carries; fields that do not apply are 0.
    struct ChangeSet
    {
        ChangeKind kind = NoChange;
        quint16 index = 0;
        quint8 subindex = 0;
        quint8 line = 0;
        quint32 pgn = 0;
        quint32 spn = 0;
        quint32 canid = 0;
        quint32 element = 0;
        quint8 direction = 0;
    };

    /// Opens nothing.
    explicit ObjectDataBase(QObject *parent = nullptr);
    /// Waits for statements of other threads, closes, deletes every working copy it made.
    ~ObjectDataBase() override;

    // --- Life cycle -------------------------------------------------------------------------

    /// A new, empty project in a new working copy, with line 0. On false, `lastErrorText` says why,
    /// and the former project is still open.
    bool createNewDataBase();
    /// Opens a `.vxmp` (or any database of the same form) or `.vxmt` file. Brings the schema up to
    /// date in the working copy only. On false, `lastErrorText` says why (it is empty for a
    /// database that is no project), and the former project is still open. The flag has no effect.
    ///
    /// Refused are what is no ordinary file, a damaged database, one that holds more than tables
    /// (views, triggers, computed columns), and one beyond the limits of `ProjectGuard`.
    bool openDataBase(const QString &path, bool flag = true);
    /// Saves to `path`, or to the project path if it is empty; "vxmt" gives the text form.
    bool saveDatabase(const QString &path = QString());
    /// Saves as a database file; the former file stays beside it with ".bak" behind its name.
    ///
    /// A save that gives true has reached the disk. One that fails leaves file and backup as they
    /// were, and `lastErrorText` says why. A project that `isDamaged` is never saved.
    bool saveDatabaseAsSql(const QString &path = QString());
    /// Saves as a text file; makes no backup.
    bool saveDatabaseAsText(const QString &path = QString());
    /// What the ".bak" is after several saves over the same file: what the last of them found, or
    /// what the first of them found, as for a batch run, whose user wants to go back behind it.
    enum class BackupRule { EachSave, FirstSave };
    void setBackupRule(BackupRule rule);
    /// A statement failed half-way, as on a full disk, or a save found the working copy damaged.
    /// Nothing can be saved until another project is opened or a snapshot restored.
    [[nodiscard]] bool isDamaged() const;
    /// The file that the user knows; empty for a project that was never saved.
    [[nodiscard]] QString projectPath() const;
    [[nodiscard]] QString lastErrorText() const;
    /// The file had been changed by something else than this tool when it was opened.
    [[nodiscard]] bool wasExternallyModified() const;
    /// SHA-256 over all tables as lower-case hexadecimal text, independent of the page layout.
    /// Leaves out the keys `FileHash` and `TamperLog`.
    [[nodiscard]] QString contentHash();
    /// The working copies that this store has made and still has.
    [[nodiscard]] QStringList workingFiles() const;
    /// Deletes the texts that nothing refers to.
    void purgeStrings();
    /// The number of rows of any table; 0 if there is none of that name.
    [[nodiscard]] int rowCount(const QString &table);
    /// Runs any statement; its rows (10 columns at most) are in `statementResults`.
    bool executeSql(const QString &statement);
    [[nodiscard]] QStringList statementResults() const;

    /// Refuses writes, and blocks statements of all other threads than the caller's. False ends all
    /// blocks, whoever made them.
    void setBlockUpdates(bool block);
    /// The plain block: only statements of other threads wait, writes of the caller go on.
    void setThreadBlock(bool block);
    /// Ends whatever a `StoreSilence` holds back.
    void endSilence();
    [[nodiscard]] bool writesBlocked() const;
    /// Generation mode: writes are refused, reads come from the caches where they are filled.
    void setGenerating(bool generating);
    [[nodiscard]] bool isGenerating() const;
    /// Whether `databaseWriteExecuted` is sent.
    void setWriteSignals(bool on);
    /// A complete copy of the project as it stands, into a new file. Refused for one that
    /// `isDamaged`.
    bool takeSnapshot(const QString &path);
    /// Takes the project's content from a snapshot, which stays as it is. On false the store is as
    /// it was, but for a damaged one, which gives up its working copy if the room is needed.
    bool restoreSnapshot(const QString &path);

    // --- Caches -----------------------------------------------------------------------------

    /// Reads all subindices of the line (or of one index) with one statement. With index 0 the
    /// list of objects is cached too, so that a walk over the line asks the database nothing.
    bool cacheAllSubs(quint8 line, quint16 index = 0);
    /// Whether a walk over the line's dictionary is answered without the database.
    [[nodiscard]] bool isLineCached(quint8 line) const;
    /// Reads name and denotation texts of a line's subindices with one statement.
    bool cacheSubIndexNames(quint8 line);
    /// Drops the object and subindex caches of a line.
    void clearSubCache(quint8 line);
    void clearSubCaches();

    // --- Objects ----------------------------------------------------------------------------

    bool getIndexData(quint8 line, quint16 index, INDEX_DATA_T &data);
    /// Ascending, from `low` to `high`; -1 means no upper bound.
    [[nodiscard]] QList<quint16> getIndices(quint8 line, int low = 0, int high = -1);
    bool getSubIndexData(quint8 line, quint16 index, quint8 subindex, SUBINDEX_DATA_T &data);
    /// Ascending.
    [[nodiscard]] QList<quint8> getSubIndices(quint8 line, quint16 index);
    [[nodiscard]] bool indexExists(quint8 line, quint16 index);
    [[nodiscard]] bool subIndexExists(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] QString getIndexName(quint8 line, quint16 index);
    [[nodiscard]] QString getSubIndexName(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] QString getSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex);
    [[nodiscard]] quint16 getSubIndexDataType(quint8 line, quint16 index, quint8 subindex);
    /// Objects whose column holds the value; string-id columns take the text.
    [[nodiscard]] QList<quint16> findIndices(quint8 line, const QString &column,
                                             const QVariant &value);
    [[nodiscard]] QList<SubIndexKey> findSubIndices(quint8 line, const QString &column,
                                                    const QVariant &value);
    [[nodiscard]] QList<SubIndexKey> getMappableSubIndices(quint8 line);
    /// Metadata of all objects (key subindex -1) and subindices of a line that have any.
    [[nodiscard]] QMap<std::pair<quint16, int>, MetaData> getAllMetaData(quint8 line);

    /// Makes the object or changes it; an empty map leaves the metadata that are there. Sends 1.
    bool addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data);
    /// As `addIndex` for each entry, in one transaction. Notifies of each when all are written.
    bool addIndices(const QList<IndexEntry> &entries);
    /// Makes the subindex or replaces it, metadata and all. Sends 2.
    bool addSubIndex(quint8 line, quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data);
    /// In one transaction, without notification and without touching cached records. A row that
    /// can't be written gives false, and the others are written.
    bool addSubIndices(const QList<SubEntry> &entries);
    /// With its subindices. Sends 3.
    bool deleteIndex(quint8 line, quint16 index, bool keepConnections = false);
    /// Sends 4.
    bool deleteSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections = false);
    /// Sends 2 for the new object and 3 for the former one; as one change within a bulk.
    bool moveIndex(quint8 sourceLine, quint16 index, quint8 targetLine, quint16 newIndex);
    /// `source` is the store to copy from, this one if null. Whole or not at all. Sends 2 with
    /// subindex 0.
    bool copyIndex(quint8 sourceLine, quint16 index, quint8 targetLine, quint16 newIndex,
                   ObjectDataBase *source = nullptr);
    /// One column of a row, which is made if it is missing; an empty value changes nothing. Table,
    /// index and subindex are texts as they stand in a statement. The caches drop what they have of
    /// the row. Sends 1 or 2 if something was written.
    void setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                const QVariant &value);
    void setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex,
                             const QString &column, const QVariant &value);
    /// Send 1 and 2, if the statement worked.
    void setIndexName(quint8 line, quint16 index, const QString &name);
    void setSubIndexName(quint8 line, quint16 index, quint8 subindex, const QString &name);
    bool setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value);

    // --- Lines ------------------------------------------------------------------------------

    /// Makes the line with its tables and settings, or changes its record up to `generatedcf`; the
    /// members behind that change by `setNodeSqlValue`. Sends 6, and 9 for each list of settings
    /// that grew.
    bool addNode(quint8 line, const NODE_DATA_T &data);
    /// With its tables, settings and connections; a line that isn't there is deleted quietly, too.
    /// Sends 7.
    bool deleteNode(quint8 line);
    /// In table order.
    [[nodiscard]] QList<quint8> getLines();
    [[nodiscard]] bool lineExists(quint8 line);
    bool getNodeData(quint8 line, NODE_DATA_T &data);
    /// Sends 6 if the statement worked.
    void setNodeSqlValue(const QString &node, const QString &column, const QVariant &value);
    /// Objects of the range, PGNs, CAN-IDs and UDS settings of a line, between two stores or
    /// within one; objects at the target are replaced. Whole or not at all; sends one 14. Onto
    /// itself it changes nothing.
    static bool copyLine(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                         quint8 targetLine, quint16 low = 0x1000, quint16 high = 0xFFFF);
    /// Replaces general and description settings by those of another store, whole or not at all.
    /// Sends one 14.
    bool copySettings(ObjectDataBase &source);

    // --- Settings ---------------------------------------------------------------------------
    //
    // A setter of a key notifies only if it changed the value: general settings by 9, description
    // settings by 10 with the line, EnergyBus by 11, misc by 12, J1939 by 13.

    [[nodiscard]] QString getGeneralSetting(const QString &key);
    bool setGeneralSetting(const QString &key, const QString &value);
    bool setGeneralSettingForLine(const QString &key, const QString &value, quint8 line);
    /// The line's item of a comma list, or the last item for a line beyond its end.
    [[nodiscard]] QString getGeneralLineSetting(const QString &key, quint8 line);
    /// The line's item of a comma list; empty for a line beyond its end.
    [[nodiscard]] QString getGeneralOwnLineSetting(const QString &key, quint8 line);
    [[nodiscard]] QStringList getGeneralSettingKeys();
    [[nodiscard]] bool generalSettingExists(const QString &key);
    /// The general settings that hold one value a line, joined by commas.
    [[nodiscard]] static const QStringList &getMultiLineKeys();
    /// The number of the general setting `LineType::settingKey`; 0 if it is not set.
    [[nodiscard]] int getLineType(quint8 line);
    /// What the line speaks.
    [[nodiscard]] const LineType &lineType(quint8 line) { return LineType::of(getLineType(line)); }

    /// Description settings are those of the description line, a state of the store.
    [[nodiscard]] QString getDescriptionSetting(const QString &key);
    bool setDescriptionSetting(const QString &key, const QString &value);
    [[nodiscard]] QStringList getDescriptionSettingKeys();
    [[nodiscard]] bool descriptionSettingExists(const QString &key);
    void setDescriptionLine(quint8 line);
    [[nodiscard]] quint8 descriptionLine() const;

    [[nodiscard]] QString getEnergyBusSetting(const QString &key);
    bool setEnergyBusSetting(const QString &key, const QString &value);
    bool deleteEnergyBusSetting(const QString &key);
    [[nodiscard]] QStringList getEnergyBusSettingKeys();
    [[nodiscard]] bool energyBusSettingExists(const QString &key);

    [[nodiscard]] QString getMiscSetting(const QString &key);
    bool setMiscSetting(const QString &key, const QString &value);
    [[nodiscard]] QStringList getMiscSettingKeys();
    [[nodiscard]] bool miscSettingExists(const QString &key);

    [[nodiscard]] QString getJ1939Setting(const QString &key);
    /// As their general namesakes.
    [[nodiscard]] QString getJ1939LineSetting(const QString &key, quint8 line);
    [[nodiscard]] QString getJ1939OwnLineSetting(const QString &key, quint8 line);
    bool setJ1939Setting(const QString &key, const QString &value);
    bool setJ1939LineSetting(const QString &key, const QString &value, quint8 line);
    [[nodiscard]] QStringList getJ1939SettingKeys();
    [[nodiscard]] bool j1939SettingExists(const QString &key);

    /// A setter that changes a value notifies with the line; one that doesn't writes nothing.
    [[nodiscard]] QMap<UDS::SID, bool> getUDSServices(quint8 line);
    [[nodiscard]] bool getUDSServiceActive(quint8 line, UDS::SID sid);
    [[nodiscard]] QString getUDSServiceSessions(quint8 line, UDS::SID sid);
    [[nodiscard]] QString getUDSServiceUserLevels(quint8 line, UDS::SID sid);
    [[nodiscard]] QString getUDSAuthentication(quint8 line, UDS::SID sid);
    void setUDSServiceActive(quint8 line, UDS::SID sid, bool active);
    void setUDSServiceSessions(quint8 line, UDS::SID sid, const QString &sessions);
    void setUDSServiceUserLevels(quint8 line, UDS::SID sid, const QString &levels);
    void setUDSAuthentication(quint8 line, UDS::SID sid, const QString &authentication);

    bool removeProducerConnections(quint8 line, quint16 index);
    bool removeConsumerConnection(quint8 line, quint16 index, quint8 subindex);

    // --- J1939 (SAE J1939-21) ---------------------------------------------------------------
    //
    // Directions are bytes, `transmit` or `receive`; keys given beside a record win over its own.

    /// Makes the PGN or changes it. Sends 15.
    bool addPGN(quint8 line, quint32 number, const PGN &data);
    /// Makes the SPN or changes it; it needs no PGN. Sends 19.
    bool addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data);
    /// Many, found by the keys in the records. Sends 14 once.
    bool addPGNs(quint8 line, const QList<PGN> &pgns, const QList<SPN> &spns);
    [[nodiscard]] bool pgnExists(quint8 line, quint32 number, quint8 direction);
    bool getPGN(quint8 line, quint32 number, quint8 direction, PGN &data);
    /// Of both directions, ascending by number.
    [[nodiscard]] QList<PGN> getPGNs(quint8 line);
    [[nodiscard]] QString getPGNName(quint8 line, quint32 number, quint8 direction);
    [[nodiscard]] quint16 getMappingCount(quint8 line, quint32 number, quint8 direction);
    /// Ascending; direction 0 means both. With the flag, PGNs sent as safety messages are left out.
    [[nodiscard]] QList<quint32> getPGNList(quint8 line, quint8 direction = 0,
                                            bool withoutSafe = false);
    /// In the order of their rows.
    [[nodiscard]] QList<quint32> getSPNList(quint8 line, quint32 pgn, quint8 direction);
    [[nodiscard]] QList<SPN> getSPNs(quint8 line, const MessageKey &pgn);
    bool getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, SPN &data);
    [[nodiscard]] quint16 getSPNDataType(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    [[nodiscard]] QString getSPNName(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    /// With its SPNs. Sends 16.
    void deletePGN(quint8 line, quint32 number, quint8 direction);
    /// Sends 20.
    void deleteSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    /// Lays the SPNs out one behind the other if all of them start at bit 0, or if forced. Sends 15
    /// if one moved.
    void realignSPNs(quint8 line, quint8 direction, quint32 pgn, bool force = false);
    /// With its SPNs, in place of the target's. `implementation` 0 makes every SPN managed, 2 an
    /// application variable, else it is kept. Whole or not at all. Sends 15 once.
    static bool copyPGN(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                        quint8 targetLine, quint32 number, quint8 direction, quint8 targetDirection,
                        int implementation = -1);
    /// All PGNs of a line with numbers up to `highest`, in place of those of the target with the
    /// same keys. Whole or not at all. Sends 14 once.
    static bool copyPGNs(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                         quint8 targetLine, quint32 highest);
    /// Keeps messages and signals as they are now until `clearSPNCache` or a write to the line,
    /// even if a statement of `executeSql` changes them.
    bool loadSPNCache(quint8 line);
    void clearSPNCache();
    /// Repairs `mappingcount` of every PGN of a line. Sends nothing.
    void repairMappingCounts(quint8 line);
    /// Folds legacy page keys (`edpDpKey`) into the PGN numbers. A PGN whose folded number is taken
    /// in its direction stays as it is, and the debug log says so. Sends 14 once if any
    /// changed.
    void foldPageKeys(quint8 line);

    // --- Raw CAN (ISO 11898) ----------------------------------------------------------------
    //
    // As their J1939 namesakes, with kinds 17, 18, 21 and 20.

    bool addCANID(quint8 line, quint32 id, const CANID &data);
    /// A change leaves `pos` and `bitSize` as they are.
    bool addDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                        const DataElement &data);
    bool addCANIDs(quint8 line, const QList<CANID> &messages, const QList<DataElement> &elements);
    [[nodiscard]] bool canIdExists(quint8 line, quint32 id, quint8 direction);
    bool getCANID(quint8 line, quint32 id, quint8 direction, CANID &data);
    [[nodiscard]] QList<CANID> getCANIDs(quint8 line);
    [[nodiscard]] QString getCANIDName(quint8 line, quint32 id, quint8 direction);
    /// Ascending; direction 0 means both.
    [[nodiscard]] QList<quint32> getCANIDList(quint8 line, quint8 direction = 0);
    bool getDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                        DataElement &data);
    [[nodiscard]] QString getDataElementName(quint8 line, quint32 canId, quint8 direction,
                                             quint32 number);
    /// Ascending.
    [[nodiscard]] QList<quint32> getDataElementList(quint8 line, quint32 canId, quint8 direction);
    [[nodiscard]] QList<DataElement> getDataElements(quint8 line, const MessageKey &canId);
    void deleteCANID(quint8 line, quint32 id, quint8 direction);
    void deleteDataElement(quint8 line, quint32 canId, quint32 number, quint8 direction);
    static bool copyCANID(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                          quint8 targetLine, quint32 id, quint8 direction, quint8 targetDirection);
    static bool copyCANIDs(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                           quint8 targetLine);
    /// Lays the elements out one behind the other if all of them start at bit 0.
    void realignDataElements(quint8 line, quint8 direction, quint32 canId);

signals:
    void updateNotify(ObjectDataBase::ChangeSet modification);
    /// The project that was to be opened belongs to another edition.
    void wrongTool();
    void blockStateChanged(bool blockupdates);
    /// A statement that writes has been run.
    void databaseWriteExecuted();

private:
    friend class DatabaseTextConverter;
    friend class StoreBlock;
    friend class StoreSilence;
    friend class StoreBulkChange;
    struct State;
    std::unique_ptr<State> d;

    void notify(const ChangeSet &change);
};

Q_DECLARE_METATYPE(ObjectDataBase::ChangeSet)

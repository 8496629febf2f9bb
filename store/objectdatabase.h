#pragma once

#include "canopen/canopentypes.h"
#include "canopen/pdomapping.h"
#include "canopen/udssid.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <string>
#include <utility>

/// The one class through which everything reads and writes a project.
///
/// A store never works on the user's file. Opening copies the project file to a private working
/// copy in the application's data folder; saving copies the working copy back. So a crash never
/// damages a project, and only a save touches it.
///
/// Lines are bytes. A line is one row of `Nodes` with tables of its own; lines 254 and 255 are
/// scratch lines that are never saved. Texts are Unicode of any length; numbers that a user
/// writes (defaults, limits) are kept as the text that was written.
///
/// Threads: any thread may call any operation; statements on the one connection are serialised.
/// A block (`setBlockUpdates`) lets only the threads that asked for it run statements, all others
/// wait and keep their events going. The destructor, opening and restoring belong to the owning
/// thread.
///
/// Errors: operations return false or an empty value and log statement and error to the debug
/// stream; nothing throws. While writes are refused (`setBlockUpdates`, `setGenerating`) every
/// write returns false and changes nothing.
class ObjectDataBase : public QObject
{
    Q_OBJECT

public:
    using MetaData = QMap<QString, QString>;
    /// (object index, subindex)
    using SubIndexKey = std::pair<quint16, quint8>;

    static constexpr quint8 comparisonLine = 254;
    static constexpr quint8 stagingLine = 255;
    static constexpr int maximumLines = 32;
    static constexpr quint8 transmit = 85; ///< direction byte
    static constexpr quint8 receive = 119; ///< direction byte
    static constexpr int schemaVersion = 107;
    static constexpr quint32 highestPGN = 0x3FFFF; ///< 18 bits (SAE J1939-21)

    /// One CAN line.
    struct NODE_DATA_T
    {
        QString name;
        QString iconpath;
        QString edspath;
        QString dcfpath;
        QString xddpath;
        quint16 tpdocnt = 0;
        quint16 rpdocnt = 0;
        QString prefix = QStringLiteral("_");
        QString outputpath = QStringLiteral("C:/");
        bool ismaster = false;
        bool issyncproducer = false;
        bool issyncconsumer = false;
        bool ishbconsumer = false;
        bool isemergencyproducer = false;
        bool isemergencyconsumer = false;
        bool ismpdosupported = false;
        bool iscanopengateway = false;
        bool allpdosstatic = false;
        bool excludegeneration = false;
        bool generatedcf = true;
        bool isbootupmanager = false;
        bool isconfigmanager = false;
        bool excludepdolinking = false;
        quint32 multilinedata = 0;
        bool lssslave = false;
    };

    /// One object of the CANopen dictionary.
    struct INDEX_DATA_T
    {
        QString name;
        quint16 datatype = 0;
        quint32 objecttype = CANopen::VAR; ///< CANopen::ObjectCode
        QString description;
        quint16 category = CANopen::Optional;
        QString deviceclass;
        bool fwsupported = false;
        MetaData metadata;

        bool operator==(const INDEX_DATA_T &) const = default;
    };

    /// One subindex.
    struct SUBINDEX_DATA_T
    {
        QString name;
        quint16 datatype = 0; ///< CAN::CANopenDataType
        QString accesstype = QStringLiteral("ro");
        QString defaultvalue;
        QString currentvalue;
        PDOMapping pdomapping;
        QString lowlimit;
        QString uplimit;
        quint32 size = 0;          ///< bytes, strings and domains
        bool defaultineds = false; ///< the 'default value' flag
        bool limitineds = false;   ///< the 'limit check' flag
        bool refuseread = false;
        bool refusewrite = false;
        bool dcfcomponent = false;
        bool cyclicread = false;
        QString allowedaccesstypes = QStringLiteral("const,ro,rw,wo,rww,rwr");
        quint8 implementation = CANopen::ManagedVariable;
        QString description;
        QString varname;
        quint8 category = CANopen::Optional;
        quint8 writedefaulttoeds = 0; ///< 0 no, 1 if `defaultineds`, 2 yes
        bool changedbyuser = false;
        quint16 wizardsource = 0;
        bool sharedlines = false;
        QString denotation;
        bool managedbytsk = false;
        quint32 signalid = 0;
        bool nvstorage = false;
        MetaData metadata;

        bool operator==(const SUBINDEX_DATA_T &) const = default;
    };

    /// One entry of a batch for `addIndices`.
    struct IndexEntry
    {
        quint8 line = 0;
        quint16 index = 0;
        INDEX_DATA_T data;
    };

    /// One entry of a batch for `addSubIndices`.
    struct SubEntry
    {
        quint8 line = 0;
        quint16 index = 0;
        quint8 subindex = 0;
        SUBINDEX_DATA_T data;
    };

    /// A J1939 parameter group. Times in milliseconds.
    struct PGN
    {
        QString name;
        QString desc;
        quint32 number = 0; ///< EDP in bit 17, DP in bit 16
        quint8 edpDpKey = 0;
        quint8 priority = 0;
        quint16 cycleTime = 0; ///< transmit: cycle; receive: monitoring time
        quint16 inhibitTime = 0;
        quint16 mappingCount = 0;
        quint8 direction = 0;
        quint16 srvt = 0;
        quint8 isSafe = 0;
        quint8 fdTrailerFormat = 0;
        quint8 fdAssuranceType = 0;
        quint8 fdAssuranceDataSize = 0;
        quint8 multiSourceAddress = 0;
        quint8 safetyType = 0;
        quint32 fdDataId = 0;
    };

    /// A J1939 signal. Positions and sizes in bits.
    struct SPN
    {
        quint16 pos = 0; ///< row in its PGN's table
        QString name;
        QString desc;
        QString defaultValue = QStringLiteral("0");
        quint16 dataType = 0;
        quint32 pgn = 0;
        quint8 direction = 0;
        quint32 spn = 0;
        quint8 implementation = CANopen::Variable;
        QString varName;
        quint16 bitSize = 0; ///< types 10, 120, 121 only
        quint16 slotDf = 0;
        quint16 bitPosition = 0;
    };

    /// A raw CAN message. Times in milliseconds.
    struct CANID
    {
        quint32 id = 0; ///< bits 0 to 28; bit 29 set means extended identifier
        QString name;
        QString desc;
        quint16 cycleTime = 0;
        quint16 inhibitTime = 0;
        quint16 mappingCount = 0;
        quint8 direction = 0;
    };

    /// A signal of a raw CAN message. Positions and sizes in bits.
    struct DataElement
    {
        quint16 pos = 0; ///< row in its message's table
        QString name;
        QString desc;
        QString defaultValue = QStringLiteral("0");
        quint16 dataType = 0;
        quint32 canId = 0;
        quint8 direction = 0;
        quint32 number = 0;
        quint8 implementation = CANopen::Variable;
        QString varName;
        quint16 bitSize = 0;
        quint16 bitPos = 0;
    };

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
    /// Runs any statement; its rows (10 columns at most) are in `statementResults`.
    bool executeSql(const QString &statement);
    [[nodiscard]] QStringList statementResults() const;

    /// Refuses writes, and blocks statements of all other threads than the caller's.
    void setBlockUpdates(bool block);
    /// The plain block: only statements of other threads wait, writes of the caller go on.
    void setThreadBlock(bool block);
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

    bool addIndex(quint8 line, quint16 index, const INDEX_DATA_T &data);
    /// As `addIndex` for each entry, in one transaction. Notifies of each when all are written.
    bool addIndices(const QList<IndexEntry> &entries);
    bool addSubIndex(quint8 line, quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data);
    /// In one transaction, without notification and without touching a cache.
    bool addSubIndices(const QList<SubEntry> &entries);
    bool deleteIndex(quint8 line, quint16 index, bool keepConnections = false);
    bool deleteSubIndex(quint8 line, quint16 index, quint8 subindex, bool keepConnections = false);
    bool moveIndex(quint8 sourceLine, quint16 index, quint8 targetLine, quint16 newIndex);
    /// `source` is the store to copy from, this one if null.
    bool copyIndex(quint8 sourceLine, quint16 index, quint8 targetLine, quint16 newIndex,
                   ObjectDataBase *source = nullptr);
    /// One column of a row, which is made if it is missing; an empty value changes nothing. Table,
    /// index and subindex are texts as they stand in a statement. The caches drop what they have of
    /// the row.
    void setObjectIndexSqlValue(const QString &table, const QString &index, const QString &column,
                                const QVariant &value);
    void setSubindexSqlValue(const QString &table, const QString &index, const QString &subindex,
                             const QString &column, const QVariant &value);
    void setIndexName(quint8 line, quint16 index, const QString &name);
    void setSubIndexName(quint8 line, quint16 index, quint8 subindex, const QString &name);
    bool setSubIndexDefaultValue(quint8 line, quint16 index, quint8 subindex, const QString &value);

    // --- Lines ------------------------------------------------------------------------------

    bool addNode(quint8 line, const NODE_DATA_T &data);
    bool deleteNode(quint8 line);
    /// In table order.
    [[nodiscard]] QList<quint8> getLines();
    [[nodiscard]] bool lineExists(quint8 line);
    bool getNodeData(quint8 line, NODE_DATA_T &data);
    void setNodeSqlValue(const QString &node, const QString &column, const QVariant &value);
    /// Objects of the range, PGNs, CAN-IDs and UDS settings of a line, between two stores or
    /// within one; objects at the target are replaced.
    static bool copyLine(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                         quint8 targetLine, quint16 low = 0x1000, quint16 high = 0xFFFF);
    /// Replaces general and description settings by those of another store.
    bool copySettings(ObjectDataBase &source);

    // --- Settings ---------------------------------------------------------------------------

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
    /// The number of the general setting `line%1type`; 0 if it is not set.
    [[nodiscard]] int getLineType(quint8 line);

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

    bool addPGN(quint8 line, quint32 number, const PGN &data);
    bool addSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, const SPN &data);
    [[nodiscard]] bool pgnExists(quint8 line, quint32 number, quint8 direction);
    bool getPGN(quint8 line, quint32 number, quint8 direction, PGN &data);
    [[nodiscard]] QString getPGNName(quint8 line, quint32 number, quint8 direction);
    [[nodiscard]] quint16 getMappingCount(quint8 line, quint32 number, quint8 direction);
    /// Ascending; direction 0 means both. With the flag, PGNs sent as safety messages are left out.
    [[nodiscard]] QList<quint32> getPGNList(quint8 line, quint8 direction = 0,
                                            bool withoutSafe = false);
    /// In the order of their rows.
    [[nodiscard]] QList<quint32> getSPNList(quint8 line, quint32 pgn, quint8 direction);
    bool getSPN(quint8 line, quint32 pgn, quint8 direction, quint32 spn, SPN &data);
    [[nodiscard]] quint16 getSPNDataType(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    [[nodiscard]] QString getSPNName(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    void deletePGN(quint8 line, quint32 number, quint8 direction);
    void deleteSPN(quint8 line, quint32 pgn, quint32 spn, quint8 direction);
    /// Lays the SPNs out one behind the other if all of them start at bit 0, or if forced.
    void realignSPNs(quint8 line, quint8 direction, quint32 pgn, bool force = false);
    /// `implementation` 0 makes every SPN managed, 2 an application variable, else it is kept.
    static bool copyPGN(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                        quint8 targetLine, quint32 number, quint8 direction, quint8 targetDirection,
                        int implementation = -1);
    /// All PGNs of a line with numbers up to `highest`, receive first.
    static void copyPGNs(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                         quint8 targetLine, quint32 highest);
    bool loadSPNCache(quint8 line);
    void clearSPNCache();
    /// Repairs `mappingcount` of every PGN of a line.
    void repairMappingCounts(quint8 line);
    /// Folds legacy page keys (`edpDpKey`) into the PGN numbers. A PGN whose folded number is taken
    /// in its direction stays as it is, and the debug log says so.
    void foldPageKeys(quint8 line);

    // --- Raw CAN ----------------------------------------------------------------------------

    bool addCANID(quint8 line, quint32 id, const CANID &data);
    bool addDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                        const DataElement &data);
    [[nodiscard]] bool canIdExists(quint8 line, quint32 id, quint8 direction);
    bool getCANID(quint8 line, quint32 id, quint8 direction, CANID &data);
    [[nodiscard]] QString getCANIDName(quint8 line, quint32 id, quint8 direction);
    /// Ascending; direction 0 means both.
    [[nodiscard]] QList<quint32> getCANIDList(quint8 line, quint8 direction = 0);
    bool getDataElement(quint8 line, quint32 canId, quint8 direction, quint32 number,
                        DataElement &data);
    [[nodiscard]] QString getDataElementName(quint8 line, quint32 canId, quint8 direction,
                                             quint32 number);
    /// Ascending.
    [[nodiscard]] QList<quint32> getDataElementList(quint8 line, quint32 canId, quint8 direction);
    void deleteCANID(quint8 line, quint32 id, quint8 direction);
    void deleteDataElement(quint8 line, quint32 canId, quint32 number, quint8 direction);
    static bool copyCANID(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                          quint8 targetLine, quint32 id, quint8 direction, quint8 targetDirection);
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
    struct State;
    std::unique_ptr<State> d;

    // life cycle
    enum class Opened { No, WrongTool, Yes };
    bool makeEmptyProject();
    void noteCreator();
    Opened openText(const QString &path);
    Opened openSql(const QString &path);
    bool openWorkingCopyOf(const QString &path);
    void nameBackup(const QString &path);
    bool editionAllowed();
    void runSchemaSteps();
    void runContentSteps();
    bool checkExternalModification();
    void fillLineType(quint8 line);
    void completeUDSSettings(quint8 line);
    void repairSPNDirections(const QList<quint8> &lines);
    void giveSPNsDirection(quint8 line, quint32 pgn, const QSet<quint8> &pgnDirections);
    void makeNodePathsAbsolute(const QList<quint8> &lines);
    void adaptSignals(const QList<quint8> &lines);
    void layOutSignals(const QList<quint8> &lines);
    [[nodiscard]] bool mayBeReplaced();
    void fitLineLists(const QList<quint8> &lines);
    bool mayBeSaved(const QString &target);
    bool writeSaveKeys();
    bool writeProjectFile(const QString &target, const QString &hash);
    bool refuseSave(const QString &target, const QString &reason);
    bool writeText(const QString &path);
    bool textHash(const QString &trial, QString &hash);
    void notify(const ChangeSet &change) { emit updateNotify(change); }

    // objects
    [[nodiscard]] QString columnLiteral(const char *stringIds, const QString &column,
                                        const QVariant &value);
    [[nodiscard]] QVariant subIndexColumn(quint8 line, quint16 index, quint8 subindex,
                                          const char *column);
    [[nodiscard]] QList<SubIndexKey> selectKeys(const QString &statement);
    [[nodiscard]] QList<quint32> selectNumbers(const QString &statement);
    [[nodiscard]] QList<SPN> readSPNs(quint8 line, quint32 pgn, quint8 direction);
    [[nodiscard]] QList<DataElement> readDataElements(quint8 line, quint32 canId, quint8 direction);
    void appendSubIndexValues(std::string &statement, quint16 index, quint8 subindex,
                              const SUBINDEX_DATA_T &data);
    static void traceDeviceType(quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data);
    qsizetype writeBatch(const QList<SubEntry> &entries, qsizetype from, bool &done);
    qsizetype writeBatchAsText(const QList<SubEntry> &entries, qsizetype from, bool &done);
    qsizetype writeBatch(const QList<IndexEntry> &entries, qsizetype from, bool &done);
    bool writeIndex(quint8 line, quint16 index, const INDEX_DATA_T &data);
    bool writeIndexMetaData(quint8 line, quint16 index, const MetaData &metadata);
    bool writeSubMetaData(quint8 line, quint16 index, quint8 subindex, const MetaData &metadata);
    [[nodiscard]] QString sqlValueText(const QString &column, const QVariant &value);
    void tellIndexValue(quint8 line, quint16 index);
    void tellSubIndexValue(quint8 line, quint16 index, quint8 subindex);

    // lines and settings
    void inheritLineSettings(quint8 line);
    void createUDSTable(quint8 line);
    void deleteDescriptionOfLine(quint8 line);
    void cutLineFromSettings(const char *table, quint8 line);
    static void copyUDSSettings(ObjectDataBase &target, ObjectDataBase &source, quint8 sourceLine,
                                quint8 targetLine);
    bool writeSetting(const char *table, const QString &key, const QString &value,
                      const ChangeSet &change);
    bool writeLineSetting(const char *table, const QString &key, const QString &value, quint8 line,
                          const ChangeSet &change);
    template <typename Change>
    void changeUDSService(quint8 line, UDS::SID sid, const Change &change);
};

Q_DECLARE_METATYPE(ObjectDataBase::ChangeSet)

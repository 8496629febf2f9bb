#pragma once

#include "generators/base/dictionaryfactstypes.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class ObjectDataBase;

/// What decides the shape of the generated dictionary beside the objects themselves.
struct DictionaryOptions
{
    bool compactDescription = false; ///< runs of like subindices share one row
    bool limitCheck = false;         ///< limits enter the tables and rows
    bool staticSrdo = false;         ///< SRDO variables have a data specifier of their own
    bool bitwiseMapping = false;     ///< PDO mapping lengths count bits
    bool generateML = false;         ///< the per line form also for a single line
    /// Rows hold addresses instead of positions (older stack generation): a run of application
    /// variables can't be reached from the address of its first one, so it is never compacted.
    bool addressRows = false;

    /// As the project's settings say.
    [[nodiscard]] static DictionaryOptions of(ObjectDataBase &store, bool addressRows);
};

/// The object dictionaries of all CANopen lines, taken apart once for every generator that prints
/// tables, positions or counts of them, so that a count can't disagree with a table.
///
/// Positions are counted from 0. A plain value; valid without the store it was made from.
struct DictionaryFacts
{
    static constexpr quint32 noPosition = 0xFFFFFFFF;
    /// Positions are 16 bit columns in the generated tables.
    static constexpr quint32 highestPosition = 0xFFFF;
    static constexpr int noCompactRun = 255;

    enum Attribute : quint16 {
        Numeric = 0x001,
        Readable = 0x002,
        Writable = 0x004,
        MapTransmit = 0x008,
        MapReceive = 0x010,
        HasDefault = 0x020,
        HasLimits = 0x040,
        Stored = 0x080,
        Compact = 0x100 ///< stands for all higher subindices too
    };

    struct Place
    {
        quint8 line = 0;
        quint16 index = 0;
        quint8 sub = 0;
    };

    /// One slot of a table of managed variables.
    struct ManagedValue
    {
        Place place;
        quint64 value = 0; ///< start value, in the form of DictionaryTypes::parse
    };

    /// One row of a pointer table: what the application owns, and strings and domains of any
    /// class, of which the stack needs no more than address and lengths.
    struct PointerRow
    {
        Place place;
        QString varName;         ///< expanded; empty where no variable is named
        quint32 maximalSize = 0; ///< bytes, strings and domains
        quint32 actualSize = 0;  ///< bytes at start
        QByteArray content;      ///< of a constant octet string
        bool isConstant = false;
    };

    /// One subindex. Entries stand in the order line, index, subindex.
    struct Entry
    {
        Place place;
        quint16 dataType = 0; ///< TIME_OF_DAY as UNSIGNED48
        TableGroup group = TableGroup::None;
        quint8 implementation = 0;            ///< CANopen::Implementation
        const char *specifier = "";           ///< behind CO_DSPEC, as "_VAR"
        quint16 attributes = 0;               ///< of Attribute
        quint16 valueIndex = 0;               ///< value column: position, service number or index
        quint32 position = noPosition;        ///< in the table of its class
        quint32 defaultPosition = noPosition; ///< in the table of constants of its type
        quint32 lowPosition = noPosition;
        quint32 highPosition = noPosition;
        quint64 value = 0;        ///< default value without node-id
        bool addsNodeId = false;  ///< the default is relative to the node-id
        bool isReadWrite = false; ///< access "rw"
        QString varName;          ///< class 2, expanded

        [[nodiscard]] bool has(Attribute attribute) const { return attributes & attribute; }
    };

    /// One object of one line.
    struct Object
    {
        quint8 line = 0;
        quint16 index = 0;
        quint32 objectType = 0; ///< CANopen::ObjectCode
        int subCount = 0;       ///< subindices, 0 included
        quint8 highestSub = 0;
        int compactFrom = noCompactRun; ///< first subindex of the compact run
        bool isShared = false;          ///< the rows of `entryLine` serve this line too
        quint8 entryLine = 0;           ///< line of its entries
        quint32 firstEntry = 0;         ///< in `entries`, `entryCount` of them
        quint32 entryCount = 0;
        quint32 firstRow = 0; ///< in `description`
        quint32 rowCount = 0;
        quint32 firstVirtualRow = 0; ///< in `virtualDescription`
        quint32 virtualRowCount = 0;
        bool isAssigned = false; ///< has a row in od_assign
    };

    /// What a line's objects need of the stack. Ranges are those of CiA 301 and CiA 304.
    struct LineCounts
    {
        quint8 line = 0;
        int objects = 0;                 ///< 0x1000 to 0xFFFF
        int transmitPdos = 0;            ///< 0x1800 to 0x19FF
        int receivePdos = 0;             ///< 0x1400 to 0x15FF
        int transmitMappings = 0;        ///< 0x1A00 to 0x1BFF
        int receiveMappings = 0;         ///< 0x1600 to 0x17FF
        int dynamicTransmitMappings = 0; ///< of these with writable subindex 0 ("rw")
        int dynamicReceiveMappings = 0;
        int transmitMpdos = 0; ///< mapping objects with subindex 0 at 254 or above
        int receiveMpdos = 0;
        int samReceiveMpdos = 0;     ///< of these with 254
        int damReceiveMpdos = 0;     ///< of these with 255
        int sdoServers = 0;          ///< 0x1200 to 0x127F
        int sdoClients = 0;          ///< 0x1280 to 0x12FF
        int srdos = 0;               ///< 0x1301 to 0x137F
        int heartbeatConsumers = 0;  ///< entries of 0x1016, subindex 0 left out
        int emcyConsumers = 0;       ///< entries of 0x1028
        int errorHistory = 0;        ///< entries of 0x1003
        int slaveAssignments = 0;    ///< entries of 0x1F81
        int receivePdoTimers = 0;    ///< 0x1400 to 0x15FF with subindex 5
        int transmitPdoInhibits = 0; ///< 0x1800 to 0x19FF with subindex 3
        int assignRows = 0;          ///< rows of od_assign
        quint32 firstAssignRow = 0;  ///< of this line
        QList<Place> nvStorage;      ///< subindices with `nvstorage`
    };

    /// One row of a static PDO mapping table.
    struct MapSlot
    {
        quint32 mapping = 0;        ///< index, subindex and bits (CiA 301); 0 for an unused slot
        quint32 entry = noPosition; ///< in `entries`; none for dummy, missing and virtual objects
        quint32 row = noPosition;   ///< in `description`
        quint8 length = 0;          ///< bytes, or bits with bitwise mapping
        bool isNumeric = false;
    };

    /// One static PDO mapping table. Receive PDOs with like contents share one.
    struct MapTable
    {
        quint8 line = 0;
        quint16 number = 0; ///< of the first PDO that uses it, from 1
        bool isTransmit = false;
        quint8 count = 0; ///< active slots
        std::vector<MapSlot> mapSlots;
        int users = 1;
    };

    struct Pdo
    {
        quint8 line = 0;
        quint16 number = 0;         ///< from 1
        quint16 index = 0;          ///< of the communication object
        quint32 table = noPosition; ///< in `mapTables`; none for dynamic mapping and MPDOs
    };

    /// More than one line, or the per line form asked for.
    bool multiLine = false;
    bool lineForm = false;
    QList<quint8> activeLines;

    std::vector<Object> objects;
    std::vector<Entry> entries;
    std::vector<quint32> description;        ///< rows of od_description, into `entries`
    std::vector<quint32> virtualDescription; ///< rows of vod_description, into `entries`
    std::vector<quint32> assignment;         ///< rows of od_assign, into `objects`
    std::vector<quint32> virtualAssignment;  ///< rows of vod_assign, into `objects`

    std::array<std::vector<ManagedValue>, numericGroupCount> managed;
    std::array<std::vector<quint64>, numericGroupCount> constants;
    std::vector<QByteArray> visStrings;  ///< constants
    std::vector<QByteArray> utf8Strings; ///< constants
    std::array<std::vector<PointerRow>, tableGroupCount> pointers;

    std::vector<Pdo> receivePdos;
    std::vector<Pdo> transmitPdos;
    std::vector<MapTable> mapTables;

    std::vector<LineCounts> lines; ///< in the order of `activeLines`
    int maxMapEntries = 0; ///< highest number of subindices less one of all PDO mapping objects
    bool hasExtendedTypes = false; ///< a type of 24, 40, 48 or 64 bits
    bool hasUtf8Strings = false;
    std::array<int, numericGroupCount> srdoEntries{}; ///< with staticSrdo: mapped, by group
    std::array<int, tableGroupCount> virtualCounts{}; ///< class 3 subindices by group

    /// What the tables can't hold, as texts that name line and object.
    QStringList problems;

    /// Null if the line (or, for a shared object, the line whose rows it uses) has no such
    /// subindex.
    [[nodiscard]] const Entry *find(quint8 line, quint16 index, quint8 sub) const;
    [[nodiscard]] const Object *findObject(quint8 line, quint16 index) const;
    [[nodiscard]] const LineCounts *countsOf(quint8 line) const;
    /// Sum over all lines of one count, as `sum(&LineCounts::srdos)`.
    [[nodiscard]] int sum(int LineCounts::*count) const;
    /// Any line has the object.
    [[nodiscard]] bool hasObject(quint16 index) const;
    [[nodiscard]] bool hasTable(TableGroup group) const;

    /// Reads every active line; the store's caches serve it if they are filled and are filled if
    /// not. `stop` is asked between objects and ends the run with what there is.
    [[nodiscard]] static DictionaryFacts collect(ObjectDataBase &store,
                                                 const DictionaryOptions &options,
                                                 const std::function<bool()> &stop = {});

    /// The lines that the CANopen sources are written for, and whether they are several.
    static QList<quint8> selectLines(ObjectDataBase &store, bool &multiLine);

    QHash<quint32, quint32> objectIndex; ///< see `objectKey`, into `objects`

    [[nodiscard]] static constexpr quint32 subKey(quint8 line, quint16 index, quint8 sub)
    {
        return quint32(line) << 24 | quint32(index) << 8 | sub;
    }
    [[nodiscard]] static constexpr quint32 objectKey(quint8 line, quint16 index)
    {
        return quint32(line) << 24 | index;
    }
};

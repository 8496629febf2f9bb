#pragma once

#include "canopen/canopentypes.h"
#include "canopen/pdomapping.h"

#include <QHash>
#include <QMap>
#include <QString>

/// The value records of a project. Plain values: a copy costs little, and nobody owns one beyond a
/// call. Texts that users see are of any length; numbers that a user writes (defaults, limits) are
/// kept as the text that was written. How each lies in its table is told in `recordcolumns.h`.
namespace Records {

using MetaData = QMap<QString, QString>;

/// Who sends a message, as its byte is stored. Other tools' files may hold other bytes.
enum class Direction : quint8 { Transmit = 85, Receive = 119 };

/// What names a parameter group or a raw CAN message within a line.
struct MessageKey
{
    quint32 number = 0; ///< PGN, or CAN-ID with bit 29 for an extended identifier
    Direction direction = Direction::Transmit;

    bool operator==(const MessageKey &) const = default;
    auto operator<=>(const MessageKey &) const = default;
};

/// What names an SPN or a data element within a line.
struct SignalKey
{
    MessageKey message;
    quint32 number = 0;

    bool operator==(const SignalKey &) const = default;
};

[[nodiscard]] inline size_t qHash(const MessageKey &key, size_t seed = 0)
{
    return qHashMulti(seed, key.number, quint8(key.direction));
}
[[nodiscard]] inline size_t qHash(const SignalKey &key, size_t seed = 0)
{
    return qHashMulti(seed, key.message.number, quint8(key.message.direction), key.number);
}

/// One CAN line.
struct Node
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
struct Index
{
    QString name;
    quint16 datatype = 0;
    quint32 objecttype = CANopen::VAR; ///< CANopen::ObjectCode
    QString description;
    quint16 category = CANopen::Optional;
    QString deviceclass;
    bool fwsupported = false;
    MetaData metadata;

    bool operator==(const Index &) const = default;
};

/// One subindex.
struct SubIndex
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

    bool operator==(const SubIndex &) const = default;
};

/// One entry of a batch for `addIndices`.
struct IndexEntry
{
    quint8 line = 0;
    quint16 index = 0;
    Index data;
};

/// One entry of a batch for `addSubIndices`.
struct SubEntry
{
    quint8 line = 0;
    quint16 index = 0;
    quint8 subindex = 0;
    SubIndex data;
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

} // namespace Records

#pragma once

#include "canopen/canopentypes.h"
#include "canopen/pdomapping.h"

#include <QMap>
#include <QString>

/// Texts and sizes of CANopen's own vocabulary. Stateless; every function may be called from any
/// thread.
class COHelper
{
public:
    /// "UNSIGNED8" for 5; an empty text for a number without a name.
    [[nodiscard]] static QString index2DataTypeString(quint16 dataType);
    /// A short form for narrow columns: "U8", "I16", "R32", "BOOL", "VS", "OS", "US", "TOD", "TD",
    /// "DOM", "U8S" (UTF-8), "SN" and "SA" (J1939 strings); "U2" and so on for the bit-sized
    /// types. `mapDataTypeString` reads all of them.
    [[nodiscard]] static QString index2DataTypeShortString(quint16 dataType);
    /// Bits of the type; 0 for strings and domains and for unknown numbers. Knows the bit-sized
    /// signal types from 100 up as well.
    [[nodiscard]] static quint8 getDataLengthBits(quint16 dataType);
    /// Name or number to data type, as files of the field write it: any case, blanks around it,
    /// "UNSIGNED8", "UNSIGNED_8", "U8", "UINT8", "uint8_t", "0x0005", "5", IEC 61131-3 names such
    /// as "USINT"; a length behind the name, as in "STRING(20)", is passed over. 0 if nothing fits.
    [[nodiscard]] static CAN::CANopenDataType mapDataTypeString(const QString &text);
    /// All numbers and names, in number order. The types from 100 up are those of signals (124,
    /// UTF-8, also of objects), named like those of CiA 301: "UNSIGNED2" for 100.
    [[nodiscard]] static const QMap<quint16, QString> &stringDataTypeIndexMap();
    /// Natural limits as decimal text; false, and the texts untouched, for types without limits
    /// (strings, domains, times, unknown numbers). REAL types give the form "3.4028234e+38".
    static bool getDefaultLimits(quint16 dataType, QString &low, QString &high);

    /// "VAR", "ARRAY", "RECORD", "DOMAIN", "DEFTYPE", "DEFSTRUCT"; empty for other numbers.
    [[nodiscard]] static QString objectCode2String(quint32 objectCode);
    /// The same names in any case, "VARIABLE" and short forms of spreadsheets, and the numbers of
    /// EDS files in decimal or hexadecimal. `UNKNOWN_OBJECT` if nothing fits.
    [[nodiscard]] static CANopen::ObjectCode string2objectCode(const QString &text);
    /// "Managed Variable", "Managed Const", "Variable", "Virtual Object".
    [[nodiscard]] static QString implementation2String(quint8 implementation);
    /// "Forbidden", "Allowed", "Default", "RPDO", "TPDO".
    [[nodiscard]] static QString pdoMapping2String(const PDOMapping &mapping);
    /// One of "const", "ro", "wo", "rw", "rwr", "rww"; a text that is none of the spellings of the
    /// field comes back trimmed and in lower case, so that the checks can name it.
    [[nodiscard]] static QString normalizeAccessType(const QString &text);
    /// "Read Only" for "ro" and so on; the text itself if it is no access type.
    [[nodiscard]] static QString accessType2String(const QString &accessType);
    /// By the first word, in any case: "mandatory" or "m", "conditional" or "c", or a stored
    /// number. Anything else is `Optional`.
    [[nodiscard]] static CANopen::ObjectCategory convertCategory(const QString &text);
    /// "Mandatory", "Optional", "Conditional"; empty for other numbers.
    [[nodiscard]] static QString category2String(quint8 category);
    /// Display name of a profile database from its file name, as "CiA 401" for "v401.codb" and
    /// "CiA 402 V3" for "v402_v3.codb"; any other file gives its name without folder and suffix.
    [[nodiscard]] static QString convertDbNames(const QString &fileName);
    /// Data type name for a type word of the EnergyBus profile; empty if unknown.
    [[nodiscard]] static QString convertEBType(const QString &text);
};

#pragma once

#include <QtGlobal>

namespace CAN {

/// Data type numbers of CiA 301, and from 100 up the bit-sized types of J1939 and raw CAN
/// signals. The number is what the project file stores.
enum CANopenDataType : quint16 {
    UNKNOWN_TYPE = 0x00,
    BOOLEAN = 0x01,
    INTEGER8 = 0x02,
    INTEGER16 = 0x03,
    INTEGER32 = 0x04,
    UNSIGNED8 = 0x05,
    UNSIGNED16 = 0x06,
    UNSIGNED32 = 0x07,
    REAL32 = 0x08,
    VISIBLE_STRING = 0x09,
    OCTET_STRING = 0x0A,
    UNICODE_STRING = 0x0B,
    TIME_OF_DAY = 0x0C,
    TIME_DIFFERENCE = 0x0D,
    DOMAIN_TYPE = 0x0F,
    INTEGER24 = 0x10,
    REAL64 = 0x11,
    INTEGER40 = 0x12,
    INTEGER48 = 0x13,
    INTEGER56 = 0x14,
    INTEGER64 = 0x15,
    UNSIGNED24 = 0x16,
    UNSIGNED40 = 0x18,
    UNSIGNED48 = 0x19,
    UNSIGNED56 = 0x1A,
    UNSIGNED64 = 0x1B,
    BITS2 = 100,
    BITS3 = 101,
    BITS4 = 102,
    BITS5 = 103,
    BITS6 = 104,
    BITS7 = 105,
    BITS9 = 106,
    BITS10 = 107,
    BITS11 = 108,
    BITS12 = 109,
    BITS13 = 110,
    BITS14 = 111,
    BITS15 = 112,
    BITS19 = 117,
    BITS18 = 118,
    BITS21 = 119,
    STRING_NUL = 120,      ///< J1939 string terminated with NUL
    STRING_ASTERISK = 121, ///< J1939 string terminated with an asterisk
    UTF8_STRING = 124,
    BITS29 = 129
};

} // namespace CAN

namespace CANopen {

/// Object codes of CiA 301.
enum ObjectCode : quint8 {
    UNKNOWN_OBJECT = 0,
    DOMAIN_OBJECT = 2,
    DEFTYPE = 5,
    DEFSTRUCT = 6,
    VAR = 7,
    ARRAY = 8,
    RECORD = 9
};

enum ObjectCategory : quint8 { Mandatory = 0, Optional = 1, Conditional = 2 };

/// How a subindex lives in the generated stack data.
enum Implementation : quint8 {
    ManagedVariable = 0,
    ManagedConst = 1,
    Variable = 2,
    VirtualObject = 3
};

} // namespace CANopen

#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

namespace CANopen {

/// One object section of an EDS or DCF file (CiA 306), as the parser hands it out.
class CANopenIndex
{
public:
    quint16 index = 0;
    quint8 objectCode = 7; ///< CANopen::ObjectCode
    quint16 dataType = 0;  ///< CAN::CANopenDataType; of records the number of their structure
    QString name;
    QString description;  ///< comment lines of the section, one behind the other
    quint16 category = 1; ///< CANopen::ObjectCategory, from the list that names the object

    // Entries of an object in compact form, which has no sections of its own for them
    quint16 compactSubObj = 0; ///< how many behind subindex 0; 0: not compact
    QString accessType;
    bool pdoMapping = false;
    QString defaultValue;
    bool hasDefaultValue = false;
    QString lowLimit;
    QString highLimit;
    bool hasLimits = false;
};

} // namespace CANopen

Q_DECLARE_METATYPE(CANopen::CANopenIndex)

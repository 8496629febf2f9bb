#pragma once

#include <QMetaType>
#include <QString>
#include <QtGlobal>

/// One subindex section of an EDS or DCF file (CiA 306), as the parser hands it out. A missing key
/// leaves its field as it is here.
class CANopenSubindex
{
public:
    quint16 index = 0;
    quint8 subindex = 0;
    bool isMade = false; ///< subindex 0 of an object whose file has none
    QString name;
    quint16 dataType = 0; ///< CAN::CANopenDataType; 0 if the file's is none that can be used
    QString accessType;   ///< "const", "ro", "wo", "rw", "rwr", "rww"; else what the file has
    bool pdoMapping = false;
    QString defaultValue;
    bool hasDefaultValue = false; ///< a default value that is not empty was given
    QString parameterValue;       ///< DCF
    QString denotation;           ///< DCF
    QString lowLimit;
    QString highLimit;
    bool hasLimits = false;   ///< at least one limit that is not empty was given
    bool refuseWrite = false; ///< `ObjFlags` bit 0: not written on download
    bool refuseRead = false;  ///< `ObjFlags` bit 1: not read on scan
    QString uploadFile;       ///< DCF, domains
    QString downloadFile;     ///< DCF, domains
    QString description;      ///< comment lines of the section, one behind the other
};

Q_DECLARE_METATYPE(CANopenSubindex)

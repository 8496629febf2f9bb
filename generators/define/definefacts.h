#pragma once

#include "generators/base/dictionaryfacts.h"
#include "store/projectsettings.h"

#include <QList>
#include <QString>

#include <functional>

class ObjectDataBase;

/// What gen_define.h tells beyond the dictionary's own counts: the lines with their protocols, and
/// how many CAN messages and connections each of them needs. A plain value.
struct DefineFacts
{
    /// One CAN line of the project, with or without a dictionary.
    struct Line
    {
        quint8 line = 0;
        bool hasCANopen = false;
        bool hasJ1939 = false;
        bool hasRawCAN = false;
        bool hasUdsServer = false;
        bool hasUdsClient = false;
        DictionaryFacts::LineCounts counts; ///< all 0 for a line without dictionary

        quint32 profile = 0;        ///< device profile number (CiA 301, low word of 0x1000)
        quint32 receiveBuffers = 0; ///< entries of the CAN queues
        quint32 transmitBuffers = 0;
        quint32 usdoServers = 0;
        quint32 usdoClients = 0;
        quint32 activeErrorHistory = 0; ///< entries of 0x1032 (CiA 1301)
        quint32 routings = 0;           ///< remote network routes (CiA 302-7)
        quint32 maximumAssignments = 0; ///< slaves that can be assigned at one time
        quint32 storeEntries = 0;       ///< the more of those of 0x1010 and 0x1011
        quint32 isoTpClients = 0;
        quint32 isoTpServers = 0;
        quint32 udsClients = 0;
        quint32 nodeId = 0;
        QString nodeIdFunction; ///< "NULL" if there is none

        quint32 receivePgnConfigs = 0; ///< PGN configurations
        quint32 receivePgns = 0;       ///< with one for each source address of a PGN
        quint32 transmitPgns = 0;      ///< without the address claim
        quint32 safeReceivePgns = 0;
        quint32 safeTransmitPgns = 0;
        bool hasLongPgns = false; ///< more than 8 bytes (SAE J1939-21 transport protocol)
        bool hasMultiSourcePgns = false;
        QList<quint8> safetyTypes; ///< of the safe PGNs, see ObjectDataBase::PGN::safetyType
        quint32 receiveCanIds = 0;
        quint32 transmitCanIds = 0;

        quint32 cobs = 0; ///< CAN messages of all services
    };

    QList<Line> lines; ///< at least one
    DictionaryFacts dictionary;
    bool lineForm = false;   ///< functions of the stack take the line
    bool fdMode = false;     ///< CAN FD
    bool hasCANopen = false; ///< on any line
    bool hasFlyingMaster = false;
    bool isMaster = false; ///< NMT master, always or by choice at run time
    bool hasUsdoServer = false;
    bool hasUsdoClient = false;
    bool hasUds = false;
    bool hasIsoTp = false;
    QList<quint32> profiles;      ///< distinct, in the order of the lines
    quint64 virtualFunctions = 0; ///< CiA 447: 0x6000, subindex 1 low and 2 high word

    [[nodiscard]] quint64 sum(quint32 Line::*count) const;
    [[nodiscard]] quint64 sum(int DictionaryFacts::LineCounts::*count) const;
    [[nodiscard]] QList<quint32> list(quint32 Line::*count) const;
    [[nodiscard]] QList<quint32> list(int DictionaryFacts::LineCounts::*count) const;
    [[nodiscard]] bool any(bool Line::*property) const;
    /// A safe PGN of the type is on any line.
    [[nodiscard]] bool hasSafetyType(quint8 type) const;
    [[nodiscard]] bool hasObject(quint16 index) const { return dictionary.hasObject(index); }

    [[nodiscard]] static DefineFacts collect(ObjectDataBase &store, bool isV4,
                                             const std::function<bool()> &stop = {});
};

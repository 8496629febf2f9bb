#pragma once

#include "check/canopenmessages.h"
#include "check/checkpass.h"
#include "dictionary/linemodel.h"

#include <QString>
#include <QStringList>

class ObjectDataBase;

/// The pass over one CANopen line: what its checks read, and how they report. Lives for that pass.
struct CanopenLine
{
    const CheckContext &context;
    quint8 line;
    /// Set once the EMCY routing error was given; outlives the line.
    bool &emcyRoutingReported;

    LineModel model = {};
    bool limitCheckEnabled = false;
    bool autoCorrectionDisabled = false;
    bool canFd = false;
    bool bitwiseEnabled = false;
    int nmtMaster = 0;
    /// Of the device description (CiA 306): smallest mappable unit in bits.
    quint8 granularity = 8;
    /// Set by the mapping checks for those that follow.
    bool dynamicSeen = false;
    bool bitwiseSeen = false;
    int correctionCount = 0;

    /// Reads the settings that several checks use.
    void readSettings();
    [[nodiscard]] int maxPdoBits() const { return canFd ? 512 : 64; }
    [[nodiscard]] ObjectDataBase &database() const { return context.database; }
    [[nodiscard]] const ProjectSettings &settings() const { return context.settings; }

    /// `arguments` fill the markers of the text; index and subindex locate the finding.
    void report(CanopenMessage message, const QStringList &arguments = {}, int index = -1,
                int subindex = -1);
    /// A message on an object whose first marker is the object.
    void reportObject(CanopenMessage message, quint16 index, const QStringList &more = {});
    /// A message on a subindex whose first markers are object and subindex, in hexadecimal.
    void reportSub(CanopenMessage message, quint16 index, quint8 subindex,
                   const QStringList &more = {});

    /// Writes a default value, so that later checks and the generators see it. False, and nothing
    /// is different, if the store refuses.
    bool correctDefaultValue(quint16 index, quint8 subindex, const QString &value);
    bool correctImplementation(quint16 index, quint8 subindex, quint8 implementation);

private:
    void corrected(quint16 index);
};

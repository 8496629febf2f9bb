#pragma once

#include "check/checktable.h"
#include "dictionary/linemodel.h"

#include <QMap>
#include <QString>
#include <QStringList>

class ModelChecker;
class ObjectDataBase;

/// The pass over one CANopen line: what its checks read, and how they report. Lives for that pass.
struct LineCheck
{
    ModelChecker &checker;
    ObjectDataBase &database;
    quint8 line;
    /// Set when a correction has written to the store. May be null.
    bool *changed;
    /// The folder against which a relative path to the stack counts.
    QString projectPath;
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
    QString stackPath = {};
    /// Set by the mapping checks for those that follow.
    bool dynamicSeen = false;
    bool bitwiseSeen = false;
    int errorCount = 0;
    int correctionCount = 0;

    /// Reads the settings that several checks use.
    void readSettings();
    [[nodiscard]] int maxPdoBits() const { return canFd ? 512 : 64; }

    /// `arguments` fill the markers of the text; index and subindex locate the finding.
    void report(CheckId id, const QStringList &arguments = {}, int index = -1, int subindex = -1);
    /// A message on an object whose first marker is the object.
    void reportObject(CheckId id, quint16 index, const QStringList &more = {});
    /// A message on a subindex whose first markers are object and subindex, in hexadecimal.
    void reportSub(CheckId id, quint16 index, quint8 subindex, const QStringList &more = {});

    /// Writes a default value, so that later checks and the generators see it. False, and nothing
    /// is different, if the store refuses.
    bool correctDefaultValue(quint16 index, quint8 subindex, const QString &value);
    bool correctImplementation(quint16 index, quint8 subindex, quint8 implementation);

private:
    void corrected(quint16 index);
};

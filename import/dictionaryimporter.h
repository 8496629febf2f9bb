#pragma once

#include "canopen/canopenindex.h"
#include "canopen/canopensubindex.h"
#include "import/basedataimporter.h"
#include "import/dictionarycommands.h"

#include <QList>

/// What importers of objects have in common: their numbers are object indices, and each object that
/// they take is told.
class DictionaryImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    /// Subindices that a file may have; no device comes near.
    static constexpr qsizetype mostEntries = 500000;

    /// The lines of the file of the last run, ascending, if it is a project; between two runs.
    [[nodiscard]] virtual QList<quint8> sourceLines() const { return {}; }
    /// What the file of the last run copies and deletes besides; between two runs.
    [[nodiscard]] virtual DictionaryCommands commands() const { return {}; }

public slots:
    void doImport() final;

signals:
    // Line by line, as the file brings them.
    void newIndex(CANopen::CANopenIndex newInd);
    void newSubIndex(CANopenSubindex newSub);

protected:
    /// Reads the file into the store, which is there. False if the store refused a part, which is
    /// told here; what is wrong with the file, the importer tells itself.
    [[nodiscard]] virtual bool import() = 0;
    /// Tells of subindices that went since their objects have become variables.
    void noteDropped(int count);
    /// Drops what a run has collected.
    virtual void reset() = 0;
};

#pragma once

#include <QString>

#include <atomic>
#include <functional>

class BaseDataImporter;
class ObjectDataBase;
struct FileImportOptions;

/// Where an import reads to and what it changes; both stores outlive the import.
struct ImportPlace
{
    ObjectDataBase &project;
    quint8 line; ///< of the project
    /// What a file brings stands in its staging line.
    ObjectDataBase &scratch;
};

/// What an import brings into a project: the importers that read it, the list to choose from, and
/// the taking over of what was chosen. `FileImport` is the frame around it and knows of threads,
/// safety copy and undo step; it calls one operation at a time, on its own thread where nothing
/// else is said.
class ImportCargo
{
public:
    ImportCargo() = default;
    Q_DISABLE_COPY_MOVE(ImportCargo)
    virtual ~ImportCargo() = default;

    /// Makes the importer of a file, which is the cargo's and lives until the next call; null for a
    /// format that the cargo can't come from.
    [[nodiscard]] virtual BaseDataImporter *prepare(const FileImportOptions &options) = 0;
    /// Forgets what was read.
    virtual void clear() = 0;
    /// Lists what the importer has read. On a thread of its own, as large files take their time.
    virtual void list(const ImportPlace &place) = 0;
    /// The project has changed: what is listed is compared with it anew.
    virtual void compare(const ImportPlace &place) = 0;

    /// Why what was chosen can't be taken over; empty if it can.
    [[nodiscard]] virtual QString conflict() const = 0;
    /// Takes over what was chosen, on a thread of its own. False if the project refused a part or
    /// the run was cancelled; half of it may be done then. `progress` hears percent.
    [[nodiscard]] virtual bool take(const ImportPlace &place, const std::atomic<bool> &cancelled,
                                    const std::function<void(int)> &progress) = 0;

    /// What was read, in words.
    [[nodiscard]] virtual QString summary() const = 0;
    /// What was taken over, in words.
    [[nodiscard]] virtual QString resultText() const = 0;
};

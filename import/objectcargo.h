#pragma once

#include "import/fileimporttransfer.h"
#include "import/importcargo.h"

#include <QCoreApplication>
#include <QList>
#include <QSet>
#include <QString>

#include <memory>

class DictionaryImporter;

/// The objects of a file, with the data of the device and the commands for the dictionary that some
/// formats have. Not while its import is running: `choose` and everything that is asked of it.
class ObjectCargo : public ImportCargo
{
    Q_DECLARE_TR_FUNCTIONS(ObjectCargo)

public:
    /// One object of the file.
    struct Object
    {
        quint16 index = 0;
        QString name;
        bool exists = false; ///< in the project's line, where an import replaces it
    };

    ObjectCargo();
    ~ObjectCargo() override;

    [[nodiscard]] BaseDataImporter *prepare(const FileImportOptions &options) override;
    void clear() override;
    void list(const ImportPlace &place) override;
    void compare(const ImportPlace &place) override;
    [[nodiscard]] QString conflict() const override;
    [[nodiscard]] bool take(const ImportPlace &place, const std::atomic<bool> &cancelled,
                            const std::function<void(int)> &progress) override;
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString resultText() const override;

    /// What is to be taken over; the commands of the file come behind it.
    void choose(const QList<ImportedItem> &items, ImportedImplementation kind, bool deviceData);

    /// What the file has, ascending; empty until one was read.
    [[nodiscard]] const QList<Object> &objects() const { return m_objects; }
    /// The objects of the project's line, as they were at the end of the last run.
    [[nodiscard]] const QSet<quint16> &existing() const { return m_existing; }
    /// Of a project; empty for any other file.
    [[nodiscard]] QList<quint8> sourceLines() const { return m_sourceLines; }
    /// The file copies or deletes objects of the project besides.
    [[nodiscard]] bool hasCommands() const { return !m_commands.isEmpty(); }
    /// Subindices of an object of the file with their names, ascending.
    [[nodiscard]] QList<std::pair<quint8, QString>> subindices(quint16 index) const;

private:
    std::unique_ptr<DictionaryImporter> m_importer;
    ObjectDataBase *m_scratch = nullptr; ///< of the last list
    QList<Object> m_objects;
    QSet<quint16> m_existing;
    QList<quint8> m_sourceLines;
    DictionaryCommands m_commands;
    QList<ImportedItem> m_items;
    ImportedImplementation m_kind = ImportedImplementation::Original;
    bool m_deviceData = false;
    bool m_hasMendedGranularity = false;
};

#pragma once

#include "import/dictionarycommands.h"
#include "store/objectdatabase.h"

#include <QHash>
#include <QList>
#include <QString>

#include <atomic>
#include <functional>

/// What the subindices of imported objects become in the generated stack data.
enum class ImportedImplementation : quint8 {
    Managed,     ///< the stack keeps the values
    Application, ///< the application keeps those of its own objects, from 0x2000 on
    Original     ///< as the importer read them
};

/// One object that is to be taken over.
struct ImportedItem
{
    quint16 index = 0;
    quint16 target = 0;       ///< its index in the project
    QString name;             ///< its name there; empty keeps the name
    QList<quint8> subindices; ///< only these, all others of the target stay; empty means the object
};

/// Copies objects from one store into a line of another, where a whole object replaces the one that
/// is there. Two stores; the one thread that calls `run`, while all others are kept off the target.
class FileImportTransfer
{
public:
    FileImportTransfer(ObjectDataBase &target, quint8 line, ObjectDataBase &source,
                       quint8 sourceLine);

    void setItems(const QList<ImportedItem> &items) { m_items = items; }
    void setImplementation(ImportedImplementation kind) { m_kind = kind; }
    /// The description of the device comes along.
    void setDeviceData(bool on) { m_deviceData = on; }
    /// Commands that run behind the last object.
    void setCommands(const DictionaryCommands &commands) { m_commands = commands; }

    /// False if the target refused a part or the run was cancelled; half of it may be done then.
    /// `progress` hears percent, on this thread.
    bool run(const std::atomic<bool> &cancelled, const std::function<void(int)> &progress);
    /// The target denied that mappings can be changed, and some that came can; it permits it now.
    [[nodiscard]] bool hasMendedGranularity() const { return m_hasMendedGranularity; }

private:
    struct Batch
    {
        QList<ObjectDataBase::IndexEntry> objects;
        QList<ObjectDataBase::SubEntry> entries;
    };

    void readPresent();
    [[nodiscard]] bool takeObjects(const std::atomic<bool> &cancelled,
                                   const std::function<void(int)> &progress);
    [[nodiscard]] bool takeObject(const ImportedItem &item, Batch &batch);
    [[nodiscard]] QList<quint8> subindicesOf(const ImportedItem &item, bool isCompound);
    [[nodiscard]] bool takeDeviceData();
    [[nodiscard]] bool permitDynamicMapping();

    ObjectDataBase &m_target;
    ObjectDataBase &m_source;
    quint8 m_line;
    quint8 m_sourceLine;
    QList<ImportedItem> m_items;
    ImportedImplementation m_kind = ImportedImplementation::Original;
    bool m_deviceData = false;
    bool m_hasDynamicMapping = false; ///< among what was taken over
    bool m_hasMendedGranularity = false;
    QHash<quint16, QList<quint8>> m_present; ///< those objects of the target that are concerned
    DictionaryCommands m_commands;
};

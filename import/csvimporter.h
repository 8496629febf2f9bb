#pragma once

#include "import/basedataimporter.h"
#include "store/objectdatabase.h"

#include <map>
#include <optional>

class CsvReader;
class CsvRecord;
enum class CsvColumn : quint8;

/// Reads objects from a table (CSV or ICSV), as this program writes it or people do, and runs the
/// copy and delete commands in it.
///
/// Objects and subindices that exist keep what the table has no column for; new ones get what a
/// device needs. A column `line` sends a row to another line of the project, unless the import goes
/// into a scratch line. A row that can't be read is passed over with a message.
class CsvImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    /// An object, or a subindex of it.
    struct Address
    {
        quint16 index = 0;
        std::optional<quint8> subindex;
    };
    struct CopyCommand
    {
        Address target;
        Address source; ///< a subindex exactly if the target is one
    };

    CsvImporter();
    ~CsvImporter() override;

    /// Without it the commands of the file are only read, for a caller that runs them later and
    /// elsewhere. On by default.
    void setRunsCommands(bool on) { m_runsCommands = on; }
    /// The commands of the last run, in the order of the file; between two runs.
    [[nodiscard]] QList<CopyCommand> copyCommands() const { return m_copies; }
    [[nodiscard]] QList<Address> deleteCommands() const { return m_deletes; }
    /// Runs all copies, then all deletes. What doesn't exist is passed over.
    static void runCommands(ObjectDataBase &store, quint8 line, const QList<CopyCommand> &copies,
                            const QList<Address> &deletes);

public slots:
    void doImport() override;

private:
    struct Object
    {
        ObjectDataBase::INDEX_DATA_T data;
        bool isNew = false;
        bool wasCompound = false;
        bool isChanged = false;
        bool isCodeAssumed = false;
        std::map<quint8, ObjectDataBase::SUBINDEX_DATA_T> entries;
        [[nodiscard]] bool isCompound() const;
    };
    using Key = std::pair<quint8, quint16>; ///< line, index

    void read();
    bool readRows(CsvReader &reader);
    void handleCopyLine(const QStringList &fields, int lineNumber);
    void handleDeleteLine(const QStringList &fields, int lineNumber);
    [[nodiscard]] std::optional<Address> addressOf(const QString &index,
                                                   const QString &subindex) const;
    void readRow(const CsvRecord &row);
    [[nodiscard]] std::optional<quint8> lineOf(const CsvRecord &row);
    Object &objectOf(const Key &key, const CsvRecord &row);
    void readCode(Object &object, const CsvRecord &row);
    void readObject(Object &object, const CsvRecord &row);
    void readEntry(Object &object, const Key &key, quint8 subindex, const CsvRecord &row);
    void readType(ObjectDataBase::SUBINDEX_DATA_T &entry, const Object &object,
                  const CsvRecord &row, bool isNew);
    void readImplementation(ObjectDataBase::SUBINDEX_DATA_T &entry, const Key &key, quint8 subindex,
                            const CsvRecord &row, bool isNew);
    [[nodiscard]] quint16 dataTypeOf(const CsvRecord &row, quint16 fallback);
    void complete();
    void completeObject(const Key &key, Object &object);
    bool write();
    void tell(int lineNumber, const QString &text);

    bool m_runsCommands = true;
    QList<CopyCommand> m_copies;
    QList<Address> m_deletes;
    std::map<Key, Object> m_objects;
    qsizetype m_entryCount = 0;
    int m_told = 0;
    int m_droppedCount = 0; ///< subindices of records that have become variables
};

#pragma once

#include "import/dictionaryimporter.h"
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
class CsvImporter : public DictionaryImporter
{
    Q_OBJECT

public:
    CsvImporter();
    ~CsvImporter() override;

    /// Without it the commands of the file are only read, for a caller that runs them later and
    /// elsewhere. On by default.
    void setRunsCommands(bool on) { m_runsCommands = on; }
    [[nodiscard]] DictionaryCommands commands() const override { return m_commands; }

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

    bool import() override;
    void reset() override;
    bool read();
    bool readRows(CsvReader &reader);
    void handleCopyLine(const QStringList &fields, int lineNumber);
    void handleDeleteLine(const QStringList &fields, int lineNumber);
    [[nodiscard]] std::optional<DictionaryCommands::Address>
    addressOf(const QString &index, const QString &subindex) const;
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

    bool m_runsCommands = true;
    DictionaryCommands m_commands;
    std::map<Key, Object> m_objects;
    qsizetype m_entryCount = 0;
    int m_droppedCount = 0; ///< subindices of records that have become variables
};

#pragma once

#include "import/codbimporterline.h"
#include "import/dictionaryimporter.h"

#include <QMap>
#include <QSet>

#include <optional>

/// Imports profile databases (CiA 306 part 2). Objects and subindices insert or replace, so that a
/// device profile on top of the communication profile gives that profile with its changes.
///
/// The range chooses among the objects and the copies; the subindex lines are all taken, since a
/// profile may change a subindex of an object that it doesn't list itself.
class CODBImporter : public DictionaryImporter
{
    Q_OBJECT

public:
    CODBImporter();
    ~CODBImporter() override;

    /// Whether "$" lines are carried out, which repeat an object under other numbers.
    void setExpandCopies(bool expand) { m_expandCopies = expand; }
    [[nodiscard]] bool expandCopies() const { return m_expandCopies; }

private:
    /// An object as the file leaves it; what is not here is as it is in the store.
    struct Staged
    {
        std::optional<ObjectDataBase::INDEX_DATA_T> object;
        QMap<quint8, ObjectDataBase::SUBINDEX_DATA_T> entries;
        bool replaces = false; ///< nothing of the store's object stays
    };

    bool import() override;
    void reset() override;
    [[nodiscard]] std::optional<QString> readText();
    bool readLines(const QString &text);
    bool take(const CodbLine &line);
    void addObject(const CodbLine &line);
    void addEntry(const CodbLine &line);
    /// False if there is nothing to copy.
    bool copyObject(quint16 source, quint16 target);
    [[nodiscard]] std::optional<ObjectDataBase::INDEX_DATA_T> objectOf(quint16 index);
    [[nodiscard]] Staged completeObject(quint16 index);
    [[nodiscard]] bool write();

    bool m_expandCopies = false;
    QMap<quint16, Staged> m_staged;
    QSet<quint16> m_present; ///< objects that the line had before
    qsizetype m_entryCount = 0;
};

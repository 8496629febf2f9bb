#pragma once

#include "generators/base/abstractgenerator.h"
#include "store/objectdatabase.h"

#include <functional>

/// Base of the writers that put out one CANopen line object by object. It reads every record once,
/// in the order of the indices, and looks at the stop request between objects.
class DictionaryDocument : public AbstractGenerator
{
    Q_OBJECT

public:
    [[nodiscard]] bool isOutputWritable() override;

protected:
    static constexpr quint16 firstObject = 0x1000; ///< below are the data types of CiA 301

    struct Entry
    {
        quint8 subindex = 0;
        ObjectDataBase::SUBINDEX_DATA_T data; ///< the name is never empty
    };

    struct Object
    {
        quint16 index = 0;
        ObjectDataBase::INDEX_DATA_T data; ///< the name is never empty
        QList<Entry> entries;              ///< ascending

        /// An array or a record, whose entries have names of their own.
        [[nodiscard]] bool isCompound() const;
        /// The type of the object; that of its value for a variable that has none itself.
        [[nodiscard]] quint16 dataType() const;
    };

    explicit DictionaryDocument(QObject *parent = nullptr) : AbstractGenerator(parent) {}

    /// Sets the description line to that of the run and back.
    void writeContent(QIODevice &device) final;
    /// The sections of the file, in order.
    virtual void writeDocument(QIODevice &device) = 0;

    /// Calls `visit` for each object of the line, with progress that rises from `percent`; stops
    /// between two objects on request.
    void walkObjects(const std::function<void(const Object &)> &visit, int percent = 0);
    /// The walk for other kinds of items: calls `visit` with 0 to `count` - 1.
    void walk(qsizetype count, const std::function<void(qsizetype)> &visit, int percent = 0);

    /// Names with their variables replaced.
    [[nodiscard]] QString nameOf(const Object &object) const;
    [[nodiscard]] QString nameOf(const Object &object, const Entry &entry) const;
    /// Name of the C variable, likewise.
    [[nodiscard]] QString variableName(const Object &object, const Entry &entry) const;
    /// The value of an identity entry (CiA 301, 0x1018) as the device reports it.
    [[nodiscard]] QString identityValue(quint8 subindex) const;
    /// "project", or "project_line" in a project of several lines.
    [[nodiscard]] QString baseName() const;

    /// The value without the mark that tells the tool how to show it.
    [[nodiscard]] static QString plainValue(const QString &value);
    /// Name of a data type; the number if it has none.
    [[nodiscard]] static QString dataTypeText(quint16 dataType);
    /// The default value is one of the device description.
    [[nodiscard]] static bool isDefaultExported(const ObjectDataBase::SUBINDEX_DATA_T &entry);

private:
    [[nodiscard]] Object readObject(quint16 index) const;
};

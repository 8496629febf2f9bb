#pragma once

#include "dictionary/objectwalk.h"
#include "generators/base/abstractgenerator.h"
#include "generators/base/filegenerator.h"
#include "store/objectdatabase.h"

#include <functional>

/// Base of the writers that put out one CANopen line object by object. It reads every record once,
/// in the order of the indices, and looks at the stop request between objects.
class DictionaryDocument : public FileGenerator
{
    Q_OBJECT

public:
    [[nodiscard]] QString fileName() const override;

protected:
    using Entry = DictionaryEntry;
    using Object = DictionaryObject;

    /// `name.file` is what follows the base name and the suffix of its line: ".csv", "_doc.txt".
    explicit DictionaryDocument(const Name &name, QObject *parent = nullptr)
        : FileGenerator(name, parent)
    {
    }

    /// Sets the description line to that of the run and back.
    void writeContent(QIODevice &device) final;
    /// The sections of the file, in order.
    virtual void writeDocument(QIODevice &device) = 0;

    /// Calls `visit` for each object of the line, its names never empty, with progress that rises
    /// from `percent`; stops between two objects on request.
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
    [[nodiscard]] static const Object &named(Object &object);
};

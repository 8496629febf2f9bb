#pragma once

#include "documents/dictionarydocument.h"

/// Writes a flat table of one CANopen line. Names stand with their variables, as the project holds
/// them; an array or a record has a row of its own before those of its subindices.
class CSVGenerator : public DictionaryDocument
{
    Q_OBJECT

public:
    explicit CSVGenerator(QObject *parent = nullptr)
        : DictionaryDocument({".csv", "CSV documentation"}, parent)
    {
    }

protected:
    void writeDocument(QIODevice &device) override;

private:
    [[nodiscard]] static QString objectRow(const Object &object);
    [[nodiscard]] static QString entryRow(const Object &object, const Entry &entry);
};

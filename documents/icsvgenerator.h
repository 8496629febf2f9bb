#pragma once

#include "documents/dictionarydocument.h"

/// Writes one CANopen line as the table that the CSV importer reads back. Names stand with their
/// variables, as the project holds them.
class ICSVGenerator : public DictionaryDocument
{
    Q_OBJECT

public:
    explicit ICSVGenerator(QObject *parent = nullptr)
        : DictionaryDocument({".icsv", "ICSV documentation"}, parent)
    {
    }

    /// Without it the table has no column of descriptions; on by default.
    void setWithDescription(bool on) { m_withDescription = on; }

protected:
    void writeDocument(QIODevice &device) override;

private:
    [[nodiscard]] QString objectRow(const Object &object) const;
    [[nodiscard]] QString entryRow(const Object &object, const Entry &entry) const;

    bool m_withDescription = true;
};

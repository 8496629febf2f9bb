#pragma once

#include "documents/dictionarydocument.h"

class CodeWriter;

/// Writes the object dictionary of one CANopen line as plain text. Writers of the text documents of
/// other protocols derive from it and replace `writeDocument`.
class TextDocGenerator : public DictionaryDocument
{
    Q_OBJECT

public:
    explicit TextDocGenerator(QObject *parent = nullptr)
        : DictionaryDocument({"_doc.txt", "Text documentation"}, parent)
    {
    }

protected:
    void writeDocument(QIODevice &device) override;

private:
    void writeObject(CodeWriter &out, const Object &object) const;
    void writeEntry(CodeWriter &out, const Object &object, const Entry &entry) const;
};

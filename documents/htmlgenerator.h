#pragma once

#include "documents/dictionarydocument.h"

class HtmlPage;

/// Writes the object dictionary of one CANopen line as a page of HTML. Writers of the pages of
/// other protocols derive from it and replace `writeDocument`.
class HTMLGenerator : public DictionaryDocument
{
    Q_OBJECT

public:
    explicit HTMLGenerator(QObject *parent = nullptr)
        : DictionaryDocument({".html", "HTML documentation"}, parent)
    {
    }

protected:
    void writeDocument(QIODevice &device) override;

private:
    void writeObject(HtmlPage &page, const Object &object) const;
    void writeEntry(HtmlPage &page, const Object &object, const Entry &entry) const;
};

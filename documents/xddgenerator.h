#pragma once

#include "documents/dictionarydocument.h"

class QXmlStreamWriter;

/// Writes the device description of a CANopen FD device (CiA 1311, ISO 15745) for one line.
///
/// The language of its labels is the description setting `languageKey`, "en" if that is empty.
/// Characters that XML 1.0 forbids are left out; a half of a surrogate pair becomes U+FFFD.
class XDDGenerator : public DictionaryDocument
{
    Q_OBJECT

public:
    static const QString languageKey;

    explicit XDDGenerator(QObject *parent = nullptr)
        : DictionaryDocument({".xdd", "XDD file"}, parent)
    {
    }

    [[nodiscard]] QString fileName() const override;

    /// The text without what an XML 1.0 document can't hold.
    [[nodiscard]] static QString xmlText(const QString &text);

protected:
    void writeDocument(QIODevice &device) override;

private:
    void writeDeviceProfile(QXmlStreamWriter &xml) const;
    void writeDeviceIdentity(QXmlStreamWriter &xml) const;
    void writeDeviceFunction(QXmlStreamWriter &xml) const;
    void writeNetworkProfile(QXmlStreamWriter &xml);
    void beginProfile(QXmlStreamWriter &xml, const char *identification, const char *classId,
                      const char *bodyType) const;
    void writeObject(QXmlStreamWriter &xml, const Object &object) const;
    void writeEntry(QXmlStreamWriter &xml, const Object &object, const Entry &entry) const;
    [[nodiscard]] QString setting(const char *key) const;
};

#pragma once

#include "canopen/canopenindex.h"
#include "canopen/canopensubindex.h"
#include "canopen/edstext.h"
#include "canopen/importresult.h"

#include <QHash>

#include <array>
#include <optional>

/// Turns the object and subindex sections of a device description into records (CiA 306), and
/// tells of what it mended.
class EdsObjectReader
{
public:
    /// Subindices that an object can have behind subindex 0 (CiA 301; 255 is the structure).
    static constexpr quint32 mostCompactEntries = 254;

    EdsObjectReader(const EdsText &text, ImportResult &result) : m_text(text), m_result(result) {}

    struct Object
    {
        CANopen::CANopenIndex record;
        std::optional<quint32> subNumber; ///< as the file states it
        bool hasDataType = false;
        bool hasObjectType = false;
        bool looksLikeObject = false; ///< has at least one of the keys that every object has
    };

    /// Whose subindex it is that is read.
    struct Owner
    {
        quint16 index = 0;
        quint8 objectCode = 7;
        quint16 dataType = 0;
        QString name;
        QString description;
        quint8 highestSubindex = 0;
    };

    /// Whether a section is read for the first time, so that its faults are told once.
    enum class Telling { All, OfValues };

    [[nodiscard]] Object readObject(const EdsText::Section &section, quint16 index);
    /// A subindex from a section of its own, or the value of a variable from the object's.
    [[nodiscard]] CANopenSubindex readSubindex(const EdsText::Section &section, const Owner &owner,
                                               quint8 subindex, Telling telling);
    /// Subindex 0 of an object whose file has none.
    [[nodiscard]] static CANopenSubindex countEntry(const Owner &owner);
    /// Tells of the keys without a meaning that were met, each once.
    void reportUnknownKeys();

private:
    enum Key : quint8 {
        ParameterName,
        ObjectType,
        DataType,
        AccessType,
        PDOMappingKey,
        DefaultValue,
        LowLimit,
        HighLimit,
        SubNumber,
        CompactSubObj,
        ObjFlags,
        ParameterValue,
        Denotation,
        UploadFile,
        DownloadFile,
        ParamRefd,
        KeyCount
    };
    struct Field
    {
        QByteArrayView text;
        int line = 0; ///< 0: not there
    };
    struct Fields
    {
        std::array<Field, KeyCount> keys;
        QList<QByteArrayView> description;
        int line = 0; ///< of the section
    };
    /// What a message is about.
    struct Where
    {
        quint16 index = 0;
        int subindex = -1; ///< -1: the object itself

        [[nodiscard]] QString text() const;
    };
    struct UnknownKey
    {
        int firstLine = 0;
        int count = 0;
    };

    [[nodiscard]] static Key keyOf(QByteArrayView name);
    [[nodiscard]] Fields readFields(const EdsText::Section &section, Telling telling);
    void noteUnknown(const EdsText::Entry &entry);
    [[nodiscard]] QString textOf(const Field &field) const { return m_text.decoded(field.text); }
    [[nodiscard]] QString descriptionOf(const Fields &fields, bool isVariable) const;
    /// Nothing, with a message, for what is no number.
    [[nodiscard]] std::optional<quint32> numberOf(const Field &field, const char *key);
    [[nodiscard]] quint32 numberOf(const Field &field, quint32 fallback, const char *key);
    [[nodiscard]] QString nameOf(const Fields &fields, const Owner &owner, const Where &where,
                                 Telling telling);
    [[nodiscard]] quint16 compactTypeOf(const Field &field, const Where &where);
    [[nodiscard]] bool flagOf(const Field &field, const char *key);
    [[nodiscard]] quint16 dataTypeOf(const Field &field, quint16 fallback, const Where &where);
    [[nodiscard]] QString accessOf(const Field &field, const QString &fallback, int line,
                                   const Where &where);
    [[nodiscard]] QString valueOf(const Field &field, quint16 dataType, const Where &where);
    void readLimits(const Fields &fields, quint16 dataType, const Where &where, QString &low,
                    QString &high, bool &given);
    void completeCount(CANopenSubindex &record, const Owner &owner, int line, const Where &where);

    const EdsText &m_text;
    ImportResult &m_result;
    QHash<QByteArray, UnknownKey> m_unknownKeys;
};

#pragma once

#include "canopen/edstext.h"

#include <QHash>
#include <QList>

/// The sections of a device description by what they are for (CiA 306). Of sections with the same
/// purpose the first counts, as with the profile functions that most tools read these files with;
/// those that describe the device by keys are joined, and of a key the first counts.
class EdsSections
{
public:
    enum class Kind : quint8 {
        Object,     ///< [2000]
        SubObject,  ///< [2000sub1]
        Names,      ///< [2000Name], of a compact object
        Values,     ///< [2000Value]
        Denotation, ///< [2000Denotation]
        Common,     ///< one of the sections with a fixed name
        Unused,     ///< known, and nothing in it that a project keeps
        Module,     ///< of modular devices
        Unknown
    };

    struct Place
    {
        Kind kind = Kind::Unknown;
        quint16 index = 0;
        quint8 subindex = 0;
        qsizetype section = 0; ///< position in the text's list
    };

    /// Sorts the sections of a text, which must outlive this.
    explicit EdsSections(const EdsText &text);

    /// Objects and subindices in file order, each once.
    [[nodiscard]] const QList<Place> &objects() const { return m_objects; }
    /// Sections that aren't read, in file order.
    [[nodiscard]] const QList<Place> &passedOver() const { return m_passedOver; }
    /// (section that was passed over, section that counts)
    [[nodiscard]] const QList<std::pair<qsizetype, qsizetype>> &duplicates() const
    {
        return m_duplicates;
    }
    /// The section with a fixed name, written in lower case; null if there is none.
    [[nodiscard]] const EdsText::Section *common(const QByteArray &name) const;
    /// All sections with a name of those that are joined, in file order.
    [[nodiscard]] QList<const EdsText::Section *> joined(const QByteArray &name) const;
    [[nodiscard]] static bool isJoined(QByteArrayView name);
    /// `Names`, `Values` or `Denotation` of an object; null if there is none.
    [[nodiscard]] const EdsText::Section *ofObject(Kind kind, quint16 index) const;
    [[nodiscard]] const EdsText::Section &section(const Place &place) const
    {
        return m_text.sections().at(place.section);
    }

    [[nodiscard]] static Place classify(QByteArrayView name);

private:
    const EdsText &m_text;
    QList<Place> m_objects;
    QList<Place> m_passedOver;
    QList<std::pair<qsizetype, qsizetype>> m_duplicates;
    QHash<QByteArray, QList<qsizetype>> m_common;
    QHash<quint32, qsizetype> m_byNumber; ///< (kind, index, subindex) in one number
};

#pragma once

#include "store/objectdatabase.h"

#include <QString>
#include <QStringList>

/// One line of a profile database (CiA 306 part 2): plain text, and what it says as records of the
/// project. Knows no store.
class CodbLine
{
public:
    enum class Kind {
        Nothing,  ///< empty or a comment
        Copy,     ///< `index` is to become a copy of `source`
        Object,   ///< an object; a variable has its subindex 0 in the same line
        Subindex, ///< one subindex of an object
        Unused,   ///< an object of a code that projects don't have
        Faulty    ///< `fault` tells why it is none of these
    };

    /// Where the values of an object or subindex line stand. Behind each stands its rule.
    enum Field {
        Index = 0,
        Subindex = 1,
        Name = 2,
        Category = 3,
        ObjectCode = 5,
        DataType = 7,
        AccessType = 9,
        AccessRule = 10,
        LowLimit = 15,
        HighLimit = 17,
        DefaultValue = 19,
        Mapping = 21,
        MappingRule = 22
    };

    /// Reads a line without its line end.
    [[nodiscard]] static CodbLine parse(const QString &text);

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] quint16 index() const { return m_index; }
    [[nodiscard]] quint8 subindex() const { return m_subindex; }
    [[nodiscard]] quint16 source() const { return m_source; }
    [[nodiscard]] QString fault() const { return m_fault; }
    /// What a line that can be used says in words that nobody knows; empty if all is clear.
    [[nodiscard]] QString doubt() const;
    /// Empty if the line is too short for it.
    [[nodiscard]] QString field(Field field) const { return m_fields.value(field); }

    /// CANopen::VAR, ARRAY or RECORD; 0 for any other word.
    [[nodiscard]] quint32 objectCode() const;
    /// Of an object line.
    [[nodiscard]] ObjectDataBase::INDEX_DATA_T objectData() const;
    /// Of a subindex line, or of subindex 0 of a variable's object line.
    [[nodiscard]] ObjectDataBase::SUBINDEX_DATA_T entryData() const;

private:
    [[nodiscard]] static CodbLine faulty(const QString &text);
    [[nodiscard]] static CodbLine parseCopy(const QString &text);
    void takeLimits(ObjectDataBase::SUBINDEX_DATA_T &data) const;

    Kind m_kind = Kind::Nothing;
    quint16 m_index = 0;
    quint16 m_source = 0;
    quint8 m_subindex = 0;
    QStringList m_fields;
    QString m_fault;
};

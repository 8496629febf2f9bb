#pragma once

#include <QString>

/// The PDO mapping attribute of a subindex (CiA 301, CiA 306 `PDOMapping`), with the direction
/// and default variants of CiA 311. A plain value of one byte.
class PDOMapping
{
public:
    enum PDOMappingType : quint8 {
        Forbidden = 0, ///< not mappable
        Allowed = 1,   ///< mappable into RPDO and TPDO, not by default
        Default = 2,   ///< mapped by default
        RPDO = 3,      ///< mappable into RPDOs only
        TPDO = 4       ///< mappable into TPDOs only
    };

    PDOMapping() = default;
    PDOMapping(PDOMappingType value) : m_value(value) {}
    explicit PDOMapping(bool mappable) : m_value(mappable ? Allowed : Forbidden) {}

    /// The stored number back as a value; a number beyond the list reads as `Forbidden`.
    [[nodiscard]] static PDOMapping fromUInt(uint number);
    /// The inverse of `getCSVStringValue`, in any case and with blanks around it; also reads the
    /// digits 0 and 1, "yes", "no", "true", "false", the labels and the CiA 311 texts. Any other
    /// text reads as `Forbidden`.
    [[nodiscard]] static PDOMapping fromCSVString(const QString &text);

    void setValue(PDOMappingType value) { m_value = value; }
    [[nodiscard]] PDOMappingType value() const { return m_value; }
    [[nodiscard]] bool isEqualToType(PDOMappingType value) const { return m_value == value; }
    [[nodiscard]] quint8 toUInt() const { return m_value; }
    /// The EDS form (CiA 306): 0 or 1.
    [[nodiscard]] quint8 toBinary() const { return m_value == Forbidden ? 0 : 1; }
    /// The label in forms: "Forbidden", "Allowed", "Default", "RPDO", "TPDO".
    [[nodiscard]] QString label() const;
    /// "none", "allowed", "default", "rpdo", "tpdo".
    [[nodiscard]] QString getCSVStringValue() const;
    /// The CiA 311 attribute text: "no", "optional", "default", "RPDO", "TPDO".
    [[nodiscard]] QString getXDDStringValue() const;

    friend bool operator==(const PDOMapping &a, const PDOMapping &b)
    {
        return a.m_value == b.m_value;
    }
    friend bool operator!=(const PDOMapping &a, const PDOMapping &b) { return !(a == b); }

private:
    PDOMappingType m_value = Forbidden;
};

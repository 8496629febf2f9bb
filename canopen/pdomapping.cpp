#include "canopen/pdomapping.h"

#include "canopen/wordtable.h"

#include <array>

namespace {

struct Texts
{
    QString label;
    QString csv;
    QString xdd;
};

/// Indexed by the value.
const std::array<Texts, 5> &texts()
{
    static const std::array<Texts, 5> table = {{
        {QStringLiteral("Forbidden"), QStringLiteral("none"), QStringLiteral("no")},
        {QStringLiteral("Allowed"), QStringLiteral("allowed"), QStringLiteral("optional")},
        {QStringLiteral("Default"), QStringLiteral("default"), QStringLiteral("default")},
        {QStringLiteral("RPDO"), QStringLiteral("rpdo"), QStringLiteral("RPDO")},
        {QStringLiteral("TPDO"), QStringLiteral("tpdo"), QStringLiteral("TPDO")},
    }};
    return table;
}

/// A number cast from outside the list counts as `Forbidden`.
const Texts &textsOf(PDOMapping::PDOMappingType value)
{
    return texts()[value < texts().size() ? value : PDOMapping::Forbidden];
}

const WordTable<PDOMapping::PDOMappingType> &words()
{
    static const WordTable<PDOMapping::PDOMappingType> table = [] {
        std::vector<WordTable<PDOMapping::PDOMappingType>::Entry> entries = {
            {"0", PDOMapping::Forbidden}, {"false", PDOMapping::Forbidden},
            {"1", PDOMapping::Allowed},   {"true", PDOMapping::Allowed},
            {"yes", PDOMapping::Allowed}, {"both", PDOMapping::Allowed},
        };
        for (std::size_t value = 0; value < texts().size(); ++value) {
            const auto type = static_cast<PDOMapping::PDOMappingType>(value);
            entries.push_back({texts()[value].csv.toStdString(), type});
            entries.push_back({texts()[value].label.toStdString(), type});
            entries.push_back({texts()[value].xdd.toStdString(), type});
        }
        return WordTable<PDOMapping::PDOMappingType>(std::move(entries));
    }();
    return table;
}

} // namespace

PDOMapping PDOMapping::fromUInt(uint number)
{
    return number < texts().size() ? PDOMapping(static_cast<PDOMappingType>(number)) : PDOMapping();
}

PDOMapping PDOMapping::fromCSVString(const QString &text)
{
    return words().find(text).value_or(Forbidden);
}

QString PDOMapping::label() const
{
    return textsOf(m_value).label;
}

QString PDOMapping::getCSVStringValue() const
{
    return textsOf(m_value).csv;
}

QString PDOMapping::getXDDStringValue() const
{
    return textsOf(m_value).xdd;
}

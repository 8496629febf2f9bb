#include "dictionary/subzero.h"

#include "dictionary/objectwalk.h"

namespace {

constexpr quint16 errorField = 0x1003;
/// CiA 301: 254 and 255 make a PDO multiplexed; 253 is kept for scanner lists.
constexpr quint8 firstMark = 253;

bool isMark(quint16 index, const QString &value)
{
    return ObjectRanges::isPdoMapping(index) && SubZero::count(value) >= firstMark;
}

} // namespace

bool SubZero::isRuleApplicable(quint16 index, const QString &access, const QString &value)
{
    if (index == errorField)
        return false;
    const bool isDynamic = ObjectRanges::isPdoMapping(index) && access == QLatin1String("rw");
    return !isDynamic && !isMark(index, value);
}

quint8 SubZero::count(const QString &value)
{
    return static_cast<quint8>(value.trimmed().toULongLong(nullptr, 0));
}

void SubZero::keep(DictionaryObject &object)
{
    DictionaryEntry *zero = object.find(0);
    if (!object.isCompound() || zero == nullptr)
        return;
    ObjectDataBase::SUBINDEX_DATA_T &data = zero->data;
    const quint8 highest = object.highest();
    const bool mirrors = isRuleApplicable(object.index, data.accesstype, data.defaultvalue);
    const auto follow = [&](QString &value) {
        const bool isWrong = mirrors ? count(value) != highest
                                     : count(value) > highest && !isMark(object.index, value);
        if (isWrong)
            value = QString::number(highest);
    };
    follow(data.defaultvalue);
    if (!data.currentvalue.isEmpty())
        follow(data.currentvalue);
}

#include "canopen/edssections.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

using Kind = EdsSections::Kind;

constexpr qsizetype longestName = 40;

constexpr std::array commonNames = {"fileinfo",           "deviceinfo",       "dummyusage",
                                    "comments",           "mandatoryobjects", "optionalobjects",
                                    "manufacturerobjects"};
constexpr std::array joinedNames = {"fileinfo", "deviceinfo", "dummyusage", "comments"};
// "DeviceComissioning" is how CiA 306 spells it.
constexpr std::array unusedNames = {"devicecomissioning", "devicecommissioning", "tools",
                                    "dynamicchannels", "objectlinks"};
constexpr std::array moduleNames = {"supportedmodules", "connectedmodules", "modules"};

std::optional<quint32> hexNumber(QByteArrayView digits)
{
    if (digits.isEmpty() || digits.size() > 4)
        return std::nullopt;
    quint32 number = 0;
    for (const char c : digits) {
        const bool decimal = c >= '0' && c <= '9';
        if (!decimal && (c < 'a' || c > 'f'))
            return std::nullopt;
        number = number * 16 + static_cast<quint32>(decimal ? c - '0' : c - 'a' + 10);
    }
    return number;
}

/// Lower case and without the blanks that some makers set into names; empty for a name that is
/// longer than any that has a meaning.
QByteArray folded(QByteArrayView name)
{
    QByteArray result;
    if (name.size() > 2 * longestName)
        return result;
    result.reserve(name.size());
    for (const char c : name) {
        if (c == ' ' || c == '\t')
            continue;
        result.append(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
    }
    if (result.size() > longestName)
        result.clear();
    return result;
}

template <std::size_t Count>
bool isIn(const std::array<const char *, Count> &names, const QByteArray &name)
{
    return std::any_of(names.begin(), names.end(),
                       [&](const char *candidate) { return name == candidate; });
}

/// [M1ModuleInfo], [M12SubExt6000] and their like.
bool isModule(const QByteArray &name)
{
    if (isIn(moduleNames, name))
        return true;
    qsizetype at = 1;
    while (at < name.size() && name[at] >= '0' && name[at] <= '9')
        ++at;
    return name.startsWith('m') && at > 1 && at < name.size();
}

EdsSections::Place ofNumber(quint16 index, QByteArrayView rest)
{
    if (rest.isEmpty())
        return {Kind::Object, index, 0, 0};
    if (rest.startsWith("sub")) {
        const auto number = hexNumber(rest.sliced(3));
        if (number && *number <= 0xFF)
            return {Kind::SubObject, index, static_cast<quint8>(*number), 0};
        return {};
    }
    constexpr std::array<std::pair<const char *, Kind>, 5> table = {
        {{"name", Kind::Names},
         {"value", Kind::Values},
         {"denotation", Kind::Denotation},
         {"objectlinks", Kind::Unused},
         {"limits", Kind::Unused}}};
    for (const auto &[word, kind] : table) {
        if (rest == QByteArrayView(word))
            return {kind, index, 0, 0};
    }
    return {};
}

quint32 key(Kind kind, quint16 index, quint8 subindex)
{
    return (static_cast<quint32>(kind) << 24) | (quint32(index) << 8) | subindex;
}

} // namespace

EdsSections::Place EdsSections::classify(QByteArrayView sectionName)
{
    const QByteArray name = folded(sectionName);
    if (isIn(commonNames, name))
        return {Kind::Common, 0, 0, 0};
    if (isIn(unusedNames, name))
        return {Kind::Unused, 0, 0, 0};
    QByteArrayView digits(name);
    if (digits.startsWith("0x"))
        digits = digits.sliced(2);
    if (digits.size() >= 4) {
        if (const auto index = hexNumber(digits.first(4)))
            return ofNumber(static_cast<quint16>(*index), digits.sliced(4));
    }
    return {isModule(name) ? Kind::Module : Kind::Unknown, 0, 0, 0};
}

EdsSections::EdsSections(const EdsText &text) : m_text(text)
{
    const QList<EdsText::Section> &sections = text.sections();
    m_byNumber.reserve(sections.size());
    for (qsizetype i = 0; i < sections.size(); ++i) {
        Place place = classify(sections.at(i).name);
        place.section = i;
        qsizetype first = i;
        switch (place.kind) {
        case Kind::Common: {
            QList<qsizetype> &places = m_common[folded(sections.at(i).name)];
            places.append(i);
            first = places.first();
            break;
        }
        case Kind::Unused:
        case Kind::Module:
        case Kind::Unknown:
            m_passedOver.append(place);
            break;
        default:
            first = m_byNumber.value(key(place.kind, place.index, place.subindex), i);
            if (first == i)
                m_byNumber.insert(key(place.kind, place.index, place.subindex), i);
            if (first == i && (place.kind == Kind::Object || place.kind == Kind::SubObject))
                m_objects.append(place);
            break;
        }
        if (first != i)
            m_duplicates.append({i, first});
    }
}

const EdsText::Section *EdsSections::common(const QByteArray &name) const
{
    const auto found = m_common.constFind(name);
    return found == m_common.constEnd() ? nullptr : &m_text.sections().at(found->first());
}

QList<const EdsText::Section *> EdsSections::joined(const QByteArray &name) const
{
    QList<const EdsText::Section *> result;
    const QList<qsizetype> places = m_common.value(name);
    for (const qsizetype place : places)
        result.append(&m_text.sections().at(place));
    return result;
}

bool EdsSections::isJoined(QByteArrayView name)
{
    return isIn(joinedNames, folded(name));
}

const EdsText::Section *EdsSections::ofObject(Kind kind, quint16 index) const
{
    const auto found = m_byNumber.constFind(key(kind, index, 0));
    return found == m_byNumber.constEnd() ? nullptr : &m_text.sections().at(*found);
}

#include "generators/base/dictionaryfacts.h"

#include "canopen/canopentypes.h"
#include "canopen/objectranges.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <algorithm>
#include <numeric>

DictionaryOptions DictionaryOptions::of(ObjectDataBase &store, bool addressRows)
{
    const ProjectSettings settings(store);
    DictionaryOptions options;
    options.compactDescription = settings.decimal("compact_array_description") == 1;
    options.limitCheck = settings.decimal("limit_check") >= 1;
    options.staticSrdo = settings.decimal("static_srdo_data") == 1;
    options.bitwiseMapping = settings.decimal("bitwise_mapping") > 0;
    options.generateML = settings.isTrue(SettingKey::misc(QStringLiteral("generateML")));
    options.addressRows = addressRows;
    return options;
}

QList<quint8> DictionaryFacts::selectLines(ObjectDataBase &store, bool &multiLine)
{
    QList<quint8> lines = store.getLines();
    std::sort(lines.begin(), lines.end());
    multiLine = lines.contains(1) && !store.getIndices(1, ObjectRanges::device.low).isEmpty();
    QList<quint8> active;
    if (multiLine) {
        std::copy_if(lines.begin(), lines.end(), std::back_inserter(active), [&](quint8 line) {
            return line < ObjectDataBase::maximumLines &&
                   store.getIndices(line, ObjectRanges::device.low).size() > 1;
        });
    }
    if (active.isEmpty())
        active.append(0);
    return active;
}

const DictionaryFacts::Object *DictionaryFacts::findObject(quint8 line, quint16 index) const
{
    const auto found = objectIndex.constFind(objectKey(line, index));
    return found == objectIndex.constEnd() ? nullptr : &objects[*found];
}

const DictionaryFacts::Entry *DictionaryFacts::find(quint8 line, quint16 index, quint8 sub) const
{
    const Object *object = findObject(line, index);
    if (!object)
        return nullptr;
    const auto begin = entries.begin() + object->firstEntry;
    const auto end = begin + object->entryCount;
    const auto found = std::lower_bound(begin, end, sub, [](const Entry &entry, quint8 wanted) {
        return entry.place.sub < wanted;
    });
    return found == end || found->place.sub != sub ? nullptr : &*found;
}

const DictionaryFacts::LineCounts *DictionaryFacts::countsOf(quint8 line) const
{
    const auto found = std::find_if(lines.begin(), lines.end(), [line](const LineCounts &counts) {
        return counts.line == line;
    });
    return found == lines.end() ? nullptr : &*found;
}

int DictionaryFacts::sum(int LineCounts::*count) const
{
    return std::accumulate(
        lines.begin(), lines.end(), 0,
        [count](int total, const LineCounts &counts) { return total + counts.*count; });
}

bool DictionaryFacts::hasObject(quint16 index) const
{
    return std::any_of(activeLines.begin(), activeLines.end(),
                       [this, index](quint8 line) { return findObject(line, index) != nullptr; });
}

bool DictionaryFacts::hasTable(TableGroup group) const
{
    if (group == TableGroup::None)
        return false;
    const auto slot = std::size_t(group);
    const bool isNumeric = DictionaryTypes::isNumeric(group);
    return !pointers[slot].empty() ||
           (isNumeric && (!managed[slot].empty() || !constants[slot].empty())) ||
           (group == TableGroup::VisString && !visStrings.empty()) ||
           (group == TableGroup::Utf8String && !utf8Strings.empty());
}

#include "dictionary/freenumbers.h"

#include "dictionary/edittransaction.h"

#include <algorithm>

quint16 FreeNumbers::getNextFreeIndex(ObjectDataBase &store, quint8 line, quint16 index)
{
    EditTransaction look(store);
    QList<quint8> lines = {line};
    const DictionaryObject *object = look.find(line, index);
    if (object != nullptr && object->isShared())
        lines += otherLines(store, line);
    return nextFreeIndex(look, lines, index);
}

quint16 FreeNumbers::nextFreeIndex(EditTransaction &edit, const QList<quint8> &lines, quint16 index)
{
    for (int next = index + 1; next <= ObjectRanges::device.high; ++next) {
        const bool isTaken = std::ranges::any_of(
            lines, [&](quint8 line) { return edit.exists(line, quint16(next)); });
        if (!isTaken)
            return quint16(next);
    }
    return 0;
}

std::optional<quint8> FreeNumbers::nextSubindex(const DictionaryObject &object)
{
    if (object.entries.empty())
        return quint8(0);
    if (object.highest() >= highestSubindex)
        return std::nullopt;
    return quint8(object.highest() + 1);
}

std::optional<quint8> FreeNumbers::nextFreeSubindex(const DictionaryObject &object, quint8 subindex)
{
    for (int next = subindex + 1; next <= highestSubindex; ++next) {
        if (object.find(quint8(next)) == nullptr)
            return quint8(next);
    }
    return std::nullopt;
}

QList<quint8> FreeNumbers::definedSubindices(const DictionaryObject &object)
{
    constexpr quint8 firstOwnEntry = 128;
    QList<quint8> numbers;
    for (int number = 1; number < object.highest(); ++number) {
        if (object.find(quint8(number)) == nullptr)
            numbers.append(quint8(number));
    }
    if (const auto next = nextSubindex(object); next && *next > 0)
        numbers.append(*next);
    if (object.highest() < firstOwnEntry - 1)
        numbers.append(firstOwnEntry);
    return numbers;
}

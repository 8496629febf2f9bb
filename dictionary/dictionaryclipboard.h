#pragma once

#include "dictionary/objectwalk.h"

#include <QList>

#include <vector>

/// Objects that were copied: whole, so that they outlive selection, line and project. A plain
/// value, without a tie to a store.
class DictionaryClipboard
{
public:
    [[nodiscard]] bool isEmpty() const { return m_objects.empty(); }
    /// Ascending.
    [[nodiscard]] const std::vector<DictionaryObject> &objects() const { return m_objects; }
    /// From the first object to the last; 0 for one object.
    [[nodiscard]] int distanceOfLast() const
    {
        return isEmpty() ? 0 : m_objects.back().index - m_objects.front().index;
    }

    /// Takes the objects of the list that the line has. False, and the former content stays, if it
    /// has none of them or one can't be read.
    [[nodiscard]] bool copy(ObjectDataBase &store, quint8 line, QList<quint16> indices);

private:
    std::vector<DictionaryObject> m_objects;
};

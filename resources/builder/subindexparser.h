#pragma once

#include "resources/builder/datasource.h"
#include "resources/builder/sourcelexer.h"

/// Reads the words of a `sub` line into subindices of an object, and checks finished objects.
/// Stateless; every function gives an empty text or what is wrong.
class SubIndexParser
{
public:
    /// The first and last subindex of "3" or "1..8".
    [[nodiscard]] static QString parseRange(const QString &text, quint8 &first, quint8 &last);
    /// Makes or changes one subindex. Type, access and name may be left out if it exists already;
    /// the name of a variable may always be.
    [[nodiscard]] static QString apply(DataSource::Object &object, quint8 subindex,
                                       const QList<SourceWord> &words);
    /// What makes the object unfit for a file: missing subindices, types that do not go together,
    /// a count in subindex 0 that is wrong. Fills in the object's data type.
    [[nodiscard]] static QString finish(DataSource::Object &object);
    [[nodiscard]] static QString parseCategory(const QString &text, quint8 &category);
    [[nodiscard]] static QString parseYesNo(const QString &text, bool &value);
};

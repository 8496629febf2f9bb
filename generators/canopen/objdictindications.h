#pragma once

#include "generators/base/stackdialect.h"

#include <QString>

class ObjectDataBase;

/// The pointers through which the stack calls statically bound indication functions.
class ObjDictIndications
{
public:
    /// The definitions of all bound pointers under their heading; empty if none is bound.
    [[nodiscard]] static QString pointerDefinitions(ObjectDataBase &store,
                                                    const StackDialect &dialect);
};

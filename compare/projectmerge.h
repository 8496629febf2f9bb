#pragma once

#include "compare/projectdifference.h"

/// Taking differences over into the current project, without a window. All of them write through
/// the current store, which notifies of it, and leave the other one as it is. They give false, and
/// have changed nothing, if there is nothing to take over or writes are refused.
namespace ProjectMerge {

/// Properties of subindices, and the name of objects, that stay as they are here.
struct IgnoredProperties
{
    bool name = false;
    bool defaultValue = false;
    bool varName = false;
};

/// Makes the item here what it is in the other project, but for the ignored properties of what
/// exists here already. The item's line has to exist here.
[[nodiscard]] bool importItem(ObjectDataBase &current, ObjectDataBase &other, const DiffItem &item,
                              const IgnoredProperties &ignored);
/// The same with all properties.
[[nodiscard]] bool importItemDefault(ObjectDataBase &current, ObjectDataBase &other,
                                     const DiffItem &item);
[[nodiscard]] bool deleteItem(ObjectDataBase &current, const DiffItem &item);
[[nodiscard]] bool takeOverSetting(ObjectDataBase &current, ObjectDataBase &other,
                                   const SettingDifference &difference);

} // namespace ProjectMerge

#include "odeditor/objectclassfactory.h"

#include "canopen/numbertext.h"
#include "gui/baseobjectmask.h"
#include "store/projectsettings.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<ObjectClassFactory::Row, 0> masks{};

constexpr quint16 deviceType = 0x1000;

} // namespace

std::span<const ObjectClassFactory::Row> ObjectClassFactory::rows()
{
    return masks;
}

const ObjectClassFactory::Row *ObjectClassFactory::find(std::span<const Row> rows, quint16 index,
                                                        quint16 profile)
{
    const auto row = std::ranges::find_if(rows, [=](const Row &entry) {
        return entry.objects.contains(index) && entry.profile.value_or(profile) == profile;
    });
    return row != rows.end() ? &*row : nullptr;
}

quint16 ObjectClassFactory::profileOf(ObjectDataBase &store, quint8 line)
{
    const bool isFd = ProjectSettings(store).isOn("canfd_supported");
    const QString text = store.getSubIndexDefaultValue(line, deviceType, isFd ? 1 : 0);
    return static_cast<quint16>(NumberText::toUnsigned32(text).value_or(0));
}

BaseObjectMask *ObjectClassFactory::createMask(quint8 line, quint16 index, quint16 profile,
                                               QWidget *parent)
{
    const Row *row = find(rows(), index, profile);
    if (row == nullptr)
        return nullptr;
    BaseObjectMask *mask = row->make(parent);
    mask->setLine(line);
    mask->setIndex(index);
    return mask;
}

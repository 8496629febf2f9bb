#pragma once

#include "canopen/objectranges.h"
#include "store/objectdatabase.h"

#include <QObject>

#include <optional>
#include <span>

class BaseObjectMask;
class QWidget;

/// Knows which objects have a mask.
class ObjectClassFactory : public QObject
{
    Q_OBJECT

public:
    /// A mask and the objects that it is made for.
    struct Row
    {
        ObjectRange objects;
        BaseObjectMask *(*make)(QWidget *parent);
        std::optional<quint16> profile = std::nullopt; ///< only with this device profile
    };

    /// All masks; no object stands in two rows.
    [[nodiscard]] static std::span<const Row> rows();
    /// Null if none fits.
    [[nodiscard]] static const Row *find(std::span<const Row> rows, quint16 index, quint16 profile);
    /// The device profile of a line: the low 16 bits of object 0x1000, with CAN FD of its subindex
    /// 1. 0 if it can't be read.
    [[nodiscard]] static quint16 profileOf(ObjectDataBase &store, quint8 line);

    using QObject::QObject;

    /// A mask for the object, owned by `parent`; null if it has none.
    BaseObjectMask *createMask(quint8 line, quint16 index, quint16 profile, QWidget *parent);
};

#pragma once

#include "canopen/objectranges.h"
#include "canopen/pdomapping.h"

#include <QString>
#include <QtGlobal>

#include <span>
#include <vector>

class ObjectDataBase;

/// What the checks want to know of a subindex.
struct SubIndexModel
{
    quint8 subindex = 0;
    quint16 datatype = 0;
    QString name;
    QString accesstype;
    QString defaultvalue;
    QString lowlimit;
    QString uplimit;
    QString varname;
    bool hasDefault = false; ///< the 'default value' flag
    bool useLimit = false;   ///< the 'Limit Check' flag
    quint8 implementation = 0;
    quint8 defaultInEds = 0; ///< 0 no, 1 with `hasDefault`, 2 yes
    PDOMapping pdomapping;

    /// Whether the default value stands in the EDS.
    [[nodiscard]] bool isExported() const
    {
        return defaultInEds == 2 || (defaultInEds == 1 && hasDefault);
    }
};

/// An object with its subindices in ascending order.
struct ObjectModel
{
    quint16 index = 0;
    quint32 objecttype = 0;
    QString name;
    std::vector<SubIndexModel> subs;

    [[nodiscard]] const SubIndexModel *find(quint8 subindex) const;
    /// The default value; empty if there is no such subindex.
    [[nodiscard]] QString value(quint8 subindex) const;
    /// Number of subindices from 1 up.
    [[nodiscard]] int entryCount() const;
};

/// The object dictionary of one line, read once, so that no check asks the store for itself.
/// A plain copy: what is written to the store shows after `refresh` only.
class LineModel
{
public:
    /// Reads the line, from the caches of the store where they are filled (`cacheAllSubs`).
    void load(ObjectDataBase &database, quint8 line);
    /// Reads one object again. Pointers to subindices of it become invalid, the object itself
    /// stays where it is.
    void refresh(ObjectDataBase &database, quint16 index);

    /// Null if there is none.
    [[nodiscard]] const ObjectModel *find(quint16 index) const;
    [[nodiscard]] const SubIndexModel *find(quint16 index, quint8 subindex) const;
    [[nodiscard]] bool contains(quint16 index) const { return find(index) != nullptr; }
    /// The default value; empty if there is no such subindex.
    [[nodiscard]] QString value(quint16 index, quint8 subindex) const;
    /// The objects of the range, ascending.
    [[nodiscard]] std::span<const ObjectModel> range(ObjectRange range) const;
    /// Without data type definitions.
    [[nodiscard]] std::span<const ObjectModel> deviceObjects() const;

private:
    quint8 m_line = 0;
    std::vector<ObjectModel> m_objects;
};

#pragma once

#include "canopen/canopentypes.h"
#include "check/modelchecker.h"
#include "store/objectdatabase.h"

#include <QStringList>
#include <QTemporaryDir>

#include <functional>

/// A project in memory of a run that draws no message, for tests that break one thing in it.
/// Line 0 speaks classical CANopen and holds what a device needs, with one static RPDO and TPDO
/// and one SRDO; the stack folder fits.
class TestProject
{
public:
    using Sub = ObjectDataBase::SUBINDEX_DATA_T;

    TestProject();

    void general(const char *key, const char *value)
    {
        database.setGeneralSetting(QLatin1String(key), QLatin1String(value));
    }
    void misc(const char *key, const QString &value)
    {
        database.setMiscSetting(QLatin1String(key), value);
    }
    void granularity(int bits)
    {
        database.setDescriptionSetting("Granularity", QString::number(bits));
    }

    /// An object with a name.
    void object(quint16 index, quint32 type)
    {
        database.addIndex(0, index,
                          {.name = "Object " + QString::number(index, 16), .objecttype = type});
    }
    /// A subindex that no check minds: UNSIGNED8, managed, its default in the EDS.
    void sub(quint16 index, quint8 subindex, const QString &value,
             const std::function<void(Sub &)> &change = {});
    /// A variable of one subindex.
    void variable(quint16 index, const QString &value,
                  const std::function<void(Sub &)> &change = {})
    {
        object(index, CANopen::VAR);
        sub(index, 0, value, change);
    }
    /// An array of these entries, with a constant subindex 0.
    void array(quint16 index, const QStringList &entries,
               const std::function<void(Sub &)> &change = {});
    /// Changes a subindex that is there.
    void edit(quint16 index, quint8 subindex, const std::function<void(Sub &)> &change);
    void value(quint16 index, quint8 subindex, const QString &value)
    {
        edit(index, subindex, [&](Sub &data) { data.defaultvalue = value; });
    }
    void remove(quint16 index) { database.deleteIndex(0, index); }
    void remove(quint16 index, quint8 subindex) { database.deleteSubIndex(0, index, subindex); }
    void setObjectType(quint16 index, quint32 type)
    {
        editObject(index, [=](auto &data) { data.objecttype = type; });
    }
    void setObjectName(quint16 index, const QString &name)
    {
        editObject(index, [=](auto &data) { data.name = name; });
    }
    template <typename Edit>
    void editObject(quint16 index, const Edit &change)
    {
        ObjectDataBase::INDEX_DATA_T data;
        database.getIndexData(0, index, data);
        change(data);
        database.addIndex(0, index, data);
    }
    /// Another line with the content of line 0.
    void addLine(quint8 line, int type);
    /// A PDO: communication object with a COB-ID, and mapping entries.
    void pdo(quint16 communication, const QString &cobId, const QStringList &entries,
             const char *access = "const");

    /// A run over these lines: fills the caches, makes all passes and gives the sum of errors.
    int check(const QList<quint8> &lines = {0});
    /// What the last run found and did not withhold: identifier and arguments parted by blanks,
    /// findings by "; ". Their texts stand in the documentation, which a test compares.
    QString said;

    ObjectDataBase database;
    ModelChecker checker;
    QStringList messages; ///< the texts of all runs
    bool changed = false;
    QTemporaryDir folder; ///< the project's; holds the folder "stack"
};

/// One change of the project.
using Change = std::function<void(TestProject &)>;

/// Names and data types for short cases.
namespace Make {
using Sub = TestProject::Sub;
inline auto type(quint16 datatype)
{
    return [datatype](Sub &sub) { sub.datatype = datatype; };
}
inline auto access(const char *text)
{
    return [text](Sub &sub) { sub.accesstype = QLatin1String(text); };
}
inline auto implementation(quint8 kind, const char *varname = "")
{
    return [kind, varname](Sub &sub) {
        sub.implementation = kind;
        sub.varname = QLatin1String(varname);
    };
}
inline auto inEds(quint8 choice)
{
    return [choice](Sub &sub) { sub.writedefaulttoeds = choice; };
}
} // namespace Make

// Changes of several kinds of case.

inline Change settings(const QList<std::pair<const char *, const char *>> &pairs)
{
    return [=](TestProject &p) {
        for (const auto &[key, value] : pairs)
            p.general(key, value);
    };
}
inline Change removed(const QList<quint16> &indices)
{
    return [=](TestProject &p) {
        for (const quint16 index : indices)
            p.remove(index);
    };
}
inline Change values(const QList<std::tuple<quint16, quint8, const char *>> &list)
{
    return [=](TestProject &p) {
        for (const auto &[index, subindex, value] : list)
            p.value(index, subindex, QLatin1String(value));
    };
}
inline Change edited(quint16 index, quint8 subindex,
                     const std::function<void(TestProject::Sub &)> &change)
{
    return [=](TestProject &p) { p.edit(index, subindex, change); };
}
/// A new variable, entry, or list of these entries, of UNSIGNED32.
inline Change variable(quint16 index, const char *value)
{
    return [=](TestProject &p) { p.variable(index, value, Make::type(CAN::UNSIGNED32)); };
}
inline Change entry(quint16 index, quint8 subindex, const char *value)
{
    return [=](TestProject &p) { p.sub(index, subindex, value, Make::type(CAN::UNSIGNED32)); };
}
inline Change list(quint16 index, const QStringList &entries)
{
    return [=](TestProject &p) {
        p.remove(index);
        p.array(index, entries, Make::type(CAN::UNSIGNED32));
    };
}
/// Both, one after the other.
inline Change operator+(const Change &first, const Change &second)
{
    return [=](TestProject &p) {
        first(p);
        second(p);
    };
}
/// CAN FD with the device type that it wants.
inline void canFd(TestProject &p)
{
    (settings({{"canfd_supported", "1"}}) + list(0x1000, {"0x191"}))(p);
}

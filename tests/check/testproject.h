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

    void general(const char *key, const char *value);
    void misc(const char *key, const QString &value);
    void granularity(int bits);

    /// An object with a name.
    void object(quint16 index, quint32 type);
    /// A subindex that no check minds: UNSIGNED8, managed, its default in the EDS.
    void sub(quint16 index, quint8 subindex, const QString &value,
             const std::function<void(Sub &)> &change = {});
    /// A variable of one subindex.
    void variable(quint16 index, const QString &value,
                  const std::function<void(Sub &)> &change = {});
    /// An array of these entries, with a constant subindex 0.
    void array(quint16 index, const QStringList &entries,
               const std::function<void(Sub &)> &change = {});
    /// Changes a subindex that is there.
    void edit(quint16 index, quint8 subindex, const std::function<void(Sub &)> &change);
    void value(quint16 index, quint8 subindex, const QString &value);
    void remove(quint16 index);
    void remove(quint16 index, quint8 subindex);
    void setObjectType(quint16 index, quint32 type)
    {
        editObject(index, [=](auto &data) { data.objecttype = type; });
    }
    void setObjectName(quint16 index, const QString &name)
    {
        editObject(index, [=](auto &data) { data.name = name; });
    }
    void editObject(quint16 index,
                    const std::function<void(ObjectDataBase::INDEX_DATA_T &)> &change);
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

[[nodiscard]] Change settings(const QList<std::pair<const char *, const char *>> &pairs);
[[nodiscard]] Change removed(const QList<quint16> &indices);
[[nodiscard]] Change values(const QList<std::tuple<quint16, quint8, const char *>> &list);
[[nodiscard]] Change edited(quint16 index, quint8 subindex,
                            const std::function<void(TestProject::Sub &)> &change);
/// A new variable, entry, or list of these entries, of UNSIGNED32.
[[nodiscard]] Change variable(quint16 index, const char *value);
[[nodiscard]] Change entry(quint16 index, quint8 subindex, const char *value);
[[nodiscard]] Change list(quint16 index, const QStringList &entries);
/// Both, one after the other.
[[nodiscard]] Change operator+(const Change &first, const Change &second);
/// CAN FD with the device type that it wants.
void canFd(TestProject &project);

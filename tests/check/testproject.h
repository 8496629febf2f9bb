#pragma once

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

    void general(const char *key, const QString &value);
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
    void setObjectType(quint16 index, quint32 type);
    void setObjectName(quint16 index, const QString &name);
    /// Another line with the content of line 0.
    void addLine(quint8 line, int type);
    /// A PDO: communication object with a COB-ID, and mapping entries.
    void pdo(quint16 communication, const QString &cobId, const QStringList &entries,
             const char *access = "const");

    /// A run over these lines: fills the caches, makes all passes and gives the sum of errors.
    int check(const QList<quint8> &lines = {0});

    ObjectDataBase database;
    ModelChecker checker;
    QStringList messages;
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
} // namespace Make

#pragma once

#include "store/objectdatabase.h"

#include <QString>

#include <functional>
#include <vector>

/// Builds CANopen projects in a store, object by object.
class TestProject
{
public:
    using Sub = ObjectDataBase::SUBINDEX_DATA_T;

    /// A new project with the objects and settings that every CANopen device has.
    explicit TestProject(bool isV4);

    [[nodiscard]] ObjectDataBase &store() { return m_store; }

    void setting(const char *key, const QString &value);
    /// Several settings: "key=value; other=value".
    void settings(const char *text);
    void addLine(quint8 line);
    /// The objects that CiA 301 asks of every device, and SDO server 1.
    void addDevice(quint8 line);

    /// An object of one subindex.
    void variable(quint8 line, quint16 index, const QString &name, const Sub &sub);
    /// An object of `type` with subindex 0 holding the highest number.
    void object(quint8 line, quint16 index, quint32 type, const QString &name,
                const std::vector<Sub> &entries);
    /// Communication and mapping object of a PDO; `communication` is 0x1400 or 0x1800 and up.
    void pdo(quint8 line, quint16 communication, const std::vector<quint32> &mapping,
             bool isDynamic = false);

private:
    ObjectDataBase m_store;
};

/// A managed variable; change the record for anything else.
[[nodiscard]] TestProject::Sub managed(quint16 dataType, const QString &value,
                                       const QString &access = QStringLiteral("rw"));
[[nodiscard]] TestProject::Sub constant(quint16 dataType, const QString &value);
[[nodiscard]] TestProject::Sub application(quint16 dataType, const QString &value,
                                           const QString &varName, quint32 size = 0);

/// A project of the matrix and what the application has to define for it.
struct ProjectCase
{
    const char *name;
    std::function<void(TestProject &)> build;
    /// C definitions of the application's variables, one a line and without a value.
    const char *variables = "";
    /// C definitions of statically bound functions.
    const char *functions = "";
    /// Something can't be generated: an error is told, and the C is valid all the same.
    bool hasError = false;
};

[[nodiscard]] const std::vector<ProjectCase> &projectCases();

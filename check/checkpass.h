#pragma once

#include "check/checksink.h"
#include "store/projectsettings.h"

#include <QString>

#include <memory>

class ObjectDataBase;

/// What every pass works on.
struct CheckContext
{
    ObjectDataBase &database;
    ProjectSettings settings;
    CheckSink &sink;
    /// The folder against which relative paths of the project count.
    QString projectPath = {};
    /// Set when a correction has written to the store. May be null.
    bool *changed = nullptr;

    /// The lines that can be generated.
    [[nodiscard]] QList<quint8> lines() const;
};

/// The checks of one protocol. An object serves one run, so that it may keep what lasts from line
/// to line. A check reports to the sink and goes on, whatever it has found.
class CheckPass
{
public:
    CheckPass() = default;
    virtual ~CheckPass() = default;
    Q_DISABLE_COPY_MOVE(CheckPass)

    /// What holds for the whole project.
    virtual void checkProject(const CheckContext &) {}
    /// One line that speaks the protocol.
    virtual void checkLine(const CheckContext &, quint8 /*line*/) {}
};

// The passes, each in a file of its own.
[[nodiscard]] std::unique_ptr<CheckPass> makeUdsPass();
[[nodiscard]] std::unique_ptr<CheckPass> makeCommonPass();
[[nodiscard]] std::unique_ptr<CheckPass> makeCanopenPass();

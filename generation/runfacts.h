#pragma once

#include <QFlags>
#include <QList>
#include <QString>

#include <memory>

class ObjectDataBase;

/// The protocols of a line or a project.
enum class Protocol : quint8 { CANopen = 1, J1939 = 2, RawCAN = 4 };
Q_DECLARE_FLAGS(Protocols, Protocol)
Q_DECLARE_OPERATORS_FOR_FLAGS(Protocols)

/// What a generation run knows of its project before the first output, and what every condition
/// in the list of outputs asks for.
struct RunFacts
{
    std::shared_ptr<ObjectDataBase> store;
    QString outputFolder;
    QString projectName;
    QString projectFolder; ///< base of relative paths in the project
    bool generateSrdo = true;
    bool virtualObjects = false;
    bool fromNetworkTool = false; ///< the network tool counts the generations

    QList<quint8> activeLines; ///< ascending
    Protocols protocols;       ///< of all lines
    bool multiLine = false;
    bool bootLoaderOnly = false;

    /// Fills the second half from the store.
    void classify();
    /// The protocols of a line; none if its type was not set.
    [[nodiscard]] Protocols lineProtocols(quint8 line) const;
    /// Only J1939, on whatever number of lines.
    [[nodiscard]] bool isJ1939Only() const { return protocols == Protocol::J1939; }
    /// CANopen together with another protocol, or raw CAN without CANopen.
    [[nodiscard]] bool isMultiProtocol() const;
    /// The project wants code for the newer stack generation; asked of the project at each call.
    [[nodiscard]] bool isV4() const;
    /// The same as users read it: "V3" or "V4".
    [[nodiscard]] QString stackGeneration() const;
    /// A general setting as a number, 0 if it is none.
    [[nodiscard]] int general(const char *key) const;
    [[nodiscard]] int j1939(const char *key) const;
};

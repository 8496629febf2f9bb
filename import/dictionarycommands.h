#pragma once

#include <QList>

#include <optional>

class ObjectDataBase;

/// What a table of objects asks for besides its rows.
struct DictionaryCommands
{
    /// An object, or a subindex of it.
    struct Address
    {
        quint16 index = 0;
        std::optional<quint8> subindex;
    };
    struct Copy
    {
        Address target;
        Address source; ///< a subindex exactly if the target is one
    };

    QList<Copy> copies; ///< these and the deletions in the order of the file
    QList<Address> deletions;

    [[nodiscard]] bool isEmpty() const { return copies.isEmpty() && deletions.isEmpty(); }
    /// Runs all copies, then all deletions. What doesn't exist is passed over.
    void run(ObjectDataBase &store, quint8 line) const;
};

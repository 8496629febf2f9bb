#pragma once

#include <QtGlobal>

/// The stack services whose values the older and the newer generation of the stack keep
/// themselves.
struct ServiceSpecifier
{
    const char *suffix = nullptr; ///< behind CO_DSPEC; null for an object that no service owns
    quint16 value = 0;            ///< value column: the service's number, or the index
};

/// The service that owns a subindex which is not constant.
[[nodiscard]] ServiceSpecifier serviceSpecifier(quint16 index, quint8 sub);

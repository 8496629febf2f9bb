#pragma once

#include <QString>

#include <span>

class ObjectDataBase;

/// The indications through which the stack calls the application, as the generated headers need
/// them. All arrays stand in the order of the output.
namespace IndicationTable {

/// Generations of the stack.
enum class Stack : quint8 { Both, OnlyV3, OnlyV4 };

/// Protocols that a binding needs; without it the key is not looked at.
enum class Needs : quint8 { Nothing, Usdo };

/// A switch of gen_define.h, on when any of its neighbouring keys names a function.
struct StaticSwitch
{
    const char *key;
    const char *define; ///< in the words of the newer generation
    Stack stack = Stack::Both;
    Needs needs = Needs::Nothing;
};

/// A number of functions that can be registered at run time.
struct DynamicCount
{
    const char *key;
    const char *define;
    Stack stack = Stack::Both;
};

/// A prototype of gen_indication.h. Null parameters: the generation has no such indication.
struct Prototype
{
    const char *key;
    const char *returnType; ///< with the blank behind it
    const char *v3;
    const char *v4;
    Needs needs = Needs::Nothing;
};

/// A UDS callback that is bound when the project is compiled.
struct UdsBinding
{
    const char *key;
    const char *define;
    const char *returnType;
    const char *parameters;
};

[[nodiscard]] std::span<const StaticSwitch> staticSwitches();
[[nodiscard]] std::span<const DynamicCount> dynamicCounts();
[[nodiscard]] std::span<const Prototype> prototypes();
[[nodiscard]] std::span<const UdsBinding> udsBindings();

[[nodiscard]] constexpr bool isOf(Stack stack, bool isV4)
{
    return stack == Stack::Both || (stack == Stack::OnlyV4) == isV4;
}

/// The function that a key names, as a C identifier; empty if the key is not bound.
[[nodiscard]] QString functionName(ObjectDataBase &store, const char *key);
/// USDO servers or clients are in use on any line.
[[nodiscard]] bool hasUsdo(ObjectDataBase &store);
/// The stack takes USDO functions: line 0 is a CANopen line, and USDO servers are in use.
[[nodiscard]] bool hasUsdoPointers(ObjectDataBase &store);

} // namespace IndicationTable

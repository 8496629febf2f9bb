#pragma once

#include <QString>

#include <span>

/// The protocols of a CAN line, as the general setting `line%1type` stores them.
struct LineType
{
    enum Number : int {
        Unknown = 0,
        CANopen = 1,
        J1939 = 2,
        RawCan = 4,
        CANopenJ1939 = 5,
        CANopenRawCan = 6,
        J1939RawCan = 7
    };

    /// Lines that a project may have, numbered from 0; scratch lines lie behind them.
    static constexpr int maximumLines = 32;

    int number = Unknown;
    bool hasCANopen = false;
    bool hasJ1939 = false;
    bool hasRawCan = false;
    const char *label = ""; ///< what the user reads

    /// All types, in the order of their numbers.
    [[nodiscard]] static std::span<const LineType> all();
    /// The type of that number; for any other number one without protocols.
    [[nodiscard]] static const LineType &of(int number);
    /// The general setting that holds the number of a line's type, as decimal text.
    [[nodiscard]] static QString settingKey(quint8 line);
};

#pragma once

#include <QString>
#include <QStringView>

#include <optional>

/// The `$` variables of object and variable names, behind `Helper::substituteVariables`.
/// Internal to this folder.
class NameVariables
{
public:
    NameVariables(quint16 index, quint8 subindex, quint8 line)
        : m_index(index), m_subindex(subindex), m_line(line)
    {
    }

    /// The text with all variables and expressions replaced; nothing if it can't be read.
    [[nodiscard]] std::optional<QString> substitute(QStringView text) const;
    /// The number a variable stands for, by its letter; nothing if there is no such variable.
    [[nodiscard]] std::optional<qint64> value(QChar letter) const;

private:
    void appendPlain(QString &result, QStringView text) const;
    [[nodiscard]] bool appendSection(QString &result, QStringView section) const;
    [[nodiscard]] bool holdsVariable(QStringView text) const;
    [[nodiscard]] QString write(QChar letter, qint64 value) const;

    quint16 m_index;
    quint8 m_subindex;
    quint8 m_line;
};

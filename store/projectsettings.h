#pragma once

#include <QString>
#include <QStringList>

class ObjectDataBase;

/// The tables in which a project keeps values by key.
enum class SettingTable : quint8 {
    General,
    J1939,
    EnergyBus,
    Misc,
    Description ///< of the device (CiA 306); each line has a value of its own
};

/// Names a setting by where it is stored; a name alone is that of a general setting.
struct SettingKey
{
    using Table = SettingTable;

    // NOLINTBEGIN(google-explicit-constructor)
    SettingKey(const char *latin1) : name(QLatin1String(latin1)) {}
    SettingKey(QLatin1String name) : name(name) {}
    SettingKey(QString name, Table table = Table::General) : name(std::move(name)), table(table) {}
    // NOLINTEND(google-explicit-constructor)
    [[nodiscard]] static SettingKey j1939(const QString &name) { return {name, Table::J1939}; }
    [[nodiscard]] static SettingKey energyBus(const QString &name)
    {
        return {name, Table::EnergyBus};
    }
    [[nodiscard]] static SettingKey misc(const QString &name) { return {name, Table::Misc}; }
    [[nodiscard]] static SettingKey description(const QString &name)
    {
        return {name, Table::Description};
    }

    QString name;
    Table table = Table::General;
};

/// Reads the settings of a project as what they mean. Owns nothing and caches nothing: each call
/// asks the store, and a setting that is not there reads as an empty text. Threads may read
/// together, but for the description: that moves the store's description line for the time of the
/// call.
///
/// A setting may be a comma list with an item for each line. There are three ways to read a number,
/// and each key has one of them: `decimal` for choices and switches, `number` for addresses and
/// sizes that may be written in hexadecimal, `count` for what becomes a count in generated code.
class ProjectSettings
{
public:
    /// What a line beyond the end of a list has.
    enum class Beyond : quint8 { LastItem, Nothing };

    explicit ProjectSettings(ObjectDataBase &store) : m_store(&store) {}

    /// The whole value.
    [[nodiscard]] QString text(const SettingKey &key) const;
    /// The items of a comma list; at least one, which may be empty.
    [[nodiscard]] QStringList items(const SettingKey &key) const;
    /// The item of a line; of the description the line's own value.
    [[nodiscard]] QString lineText(const SettingKey &key, quint8 line,
                                   Beyond beyond = Beyond::LastItem) const;

    /// A count above 0.
    [[nodiscard]] bool isOn(const SettingKey &key) const { return count(key) > 0; }
    /// The word "true".
    [[nodiscard]] bool isTrue(const SettingKey &key) const;
    [[nodiscard]] int decimal(const SettingKey &key) const;
    [[nodiscard]] int lineDecimal(const SettingKey &key, quint8 line) const;
    [[nodiscard]] quint64 number(const SettingKey &key) const;
    [[nodiscard]] quint64 lineNumber(const SettingKey &key, quint8 line) const;
    [[nodiscard]] quint32 count(const SettingKey &key) const;
    [[nodiscard]] quint32 lineCount(const SettingKey &key, quint8 line) const;

    [[nodiscard]] ObjectDataBase &store() const { return *m_store; }

    // --- The rules behind it, for values that stand elsewhere -------------------------------

    [[nodiscard]] static QString item(const QString &list, quint8 line,
                                      Beyond beyond = Beyond::LastItem);
    /// Decimal digits, with a sign; 0 for any other text, so for a list.
    [[nodiscard]] static int toDecimal(const QString &text);
    /// As `NumberText` reads without a sign: "010" is eight; 0 for any other text, so for a list.
    [[nodiscard]] static quint64 toNumber(const QString &text);
    /// "0x" for hexadecimal, else decimal, as who types "08" into a field of numbers means no
    /// octal one. Of a list the first item counts; 0 for any other text and beyond 32 bits.
    [[nodiscard]] static quint32 toCount(const QString &text);

private:
    ObjectDataBase *m_store;
};

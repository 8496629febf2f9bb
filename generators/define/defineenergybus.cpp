#include "generators/define/definesections.h"

#include "store/objectdatabase.h"

#include <algorithm>
#include <array>

namespace {

/// A kind of EnergyBus device. Null where a kind has no such macro or key.
struct Kind
{
    const char *code;  ///< in the settings' values and keys
    const char *label; ///< as the forms show it, which old projects store
    const char *count; ///< local devices
    const char *offset;
    const char *networkCount; ///< devices that a controller knows in the network
    const char *networkOffset;
};

constexpr std::array<Kind, 9> kinds = {
    {{"ebc", "EnergyBus Controller", "EB_EBC_CNT", nullptr, nullptr, nullptr},
     {"lmd", "Load Monitoring Device", "EB_LMD_CNT", "EB_LOCAL_LMD_SUBIDX_OFFS",
      "EB_NETWORK_LOAD_MONITORING_CNT", "EB_NETWORK_LMD_SUBIDX_OFFS"},
     {"sec", "Security Device/Extension", "EB_SECURITY_CNT", "EB_LOCAL_SECURITY_SUBIDX_OFFS",
      "EB_NETWORK_SECURITY_CNT", "EB_NETWORK_SECURITY_SUBIDX_OFFS"},
     {"bat", "Battery", "EB_BATTERY_CNT", "EB_LOCAL_BATTERY_SUBIDX_OFFS", "EB_NETWORK_BATTERY_CNT",
      "EB_NETWORK_BATTERY_SUBIDX_OFFS"},
     {"hmi", "Display", "EB_HMI_CNT", "EB_LOCAL_HMI_SUBIDX_OFFS", "EB_NETWORK_HMI_CNT",
      "EB_NETWORK_HMI_SUBIDX_OFFS"},
     {"manup", "Manufacturer specific device (passive)", "EB_MANU_P_CNT",
      "EB_LOCAL_MANU_P_SUBIDX_OFFS", "EB_NETWORK_MANU_P_CNT", "EB_NETWORK_MANU_P_SUBIDX_OFFS"},
     {"manua", "Manufacturer specific device (active)", "EB_MANU_A_CNT",
      "EB_LOCAL_MANU_A_SUBIDX_OFFS", "EB_NETWORK_MANU_A_CNT", "EB_NETWORK_MANU_A_SUBIDX_OFFS"},
     {"mcu", "Motor Controller Unit", "EB_MCU_CNT", "EB_LOCAL_MCU_SUBIDX_OFFS",
      "EB_NETWORK_MCU_CNT", "EB_NETWORK_MCU_SUBIDX_OFFS"},
     {"vc", "Voltage Converter", "EB_VOLT_CONV_CNT", "EB_LOCAL_VOLT_CONV_SUBIDX_OFFS",
      "EB_NETWORK_VOLT_CONV_CNT", "EB_NETWORK_VOLT_CONV_SUBIDX_OFFS"}}};

constexpr std::size_t controller = 0;
constexpr std::size_t security = 2;

/// The kind that a value tells by code or label; `kinds.size()` if it tells none.
std::size_t kindOf(const QString &value)
{
    const QString text = value.trimmed();
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (text.compare(QLatin1String(kinds[i].code), Qt::CaseInsensitive) == 0 ||
            text.compare(QLatin1String(kinds[i].label), Qt::CaseInsensitive) == 0)
            return i;
    }
    return text.compare(QLatin1String("security"), Qt::CaseInsensitive) == 0 ? security
                                                                             : kinds.size();
}

/// The numbers of the keys `device_<number>`, ascending. Old projects number from 0 or from 1.
QList<int> deviceNumbers(ObjectDataBase &store)
{
    const QString prefix = QStringLiteral("device_");
    QList<int> numbers;
    const QStringList keys = store.getEnergyBusSettingKeys();
    for (const QString &key : keys) {
        bool isNumber = false;
        const int number = key.startsWith(prefix) ? key.mid(prefix.size()).toInt(&isNumber) : 0;
        if (isNumber)
            numbers.append(number);
    }
    std::sort(numbers.begin(), numbers.end());
    const quint32 used =
        ProjectSettings(store).count(SettingKey::energyBus(QStringLiteral("device_cnt")));
    return numbers.first(std::min<qsizetype>(numbers.size(), used));
}

/// Local devices by kind, and the security extensions that devices have.
std::array<quint32, kinds.size()> countDevices(ObjectDataBase &store)
{
    std::array<quint32, kinds.size()> counts{};
    const auto kind = [&store](const char *key, int number) {
        return kindOf(store.getEnergyBusSetting(QString::fromLatin1(key).arg(number)));
    };
    const QList<int> numbers = deviceNumbers(store);
    for (const int number : numbers) {
        const std::size_t device = kind("device_%1", number);
        if (device < kinds.size())
            ++counts[device];
        if (device != security && kind("sec_%1_kind", number) == security)
            ++counts[security];
    }
    return counts;
}

} // namespace

void DefineSections::writeEnergyBus()
{
    ObjectDataBase &store = m_settings.store();
    const auto value = [this](const QString &key) {
        return m_settings.count(SettingKey::energyBus(key));
    };
    m_out.out() << "/* EnergyBus Defines */\n";
    const std::array<quint32, kinds.size()> counts = countDevices(store);
    quint32 all = 0;
    for (const quint32 count : counts)
        all += count;
    m_out.number(QStringLiteral("EB_VIRTUAL_DEV_CNT"), all);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        m_out.count(QLatin1String(kinds[i].count), counts[i]);
        if (kinds[i].offset && counts[i] > 0)
            m_out.number(QLatin1String(kinds[i].offset),
                         value(QLatin1String("int_offset_") + QLatin1String(kinds[i].code)));
    }
    if (counts[controller] > 0) {
        m_out.number(QStringLiteral("EB_NETWORK_VIRTUAL_DEV_CNT"),
                     value(QStringLiteral("ebc_max_dev_number")));
        for (const Kind &kind : kinds) {
            if (!kind.networkCount)
                continue;
            const QLatin1String code(kind.code);
            const quint32 devices = value(QStringLiteral("ebc_max_%1_number").arg(code));
            m_out.count(QLatin1String(kind.networkCount), devices);
            if (devices > 0)
                m_out.number(QLatin1String(kind.networkOffset),
                             value(QLatin1String("ext_start_pos_") + code));
        }
        m_out.count(QStringLiteral("EB_NETWORK_PC_TOOL_CNT"),
                    value(QStringLiteral("ebc_tool_supported")));
    }
    m_out.out() << '\n';
}

#include "generators/define/definesections.h"

#include "store/objectdatabase.h"

/// One hardware target, as its settings tell it.
struct DefineSections::Target
{
    QString name;
    QString macro; ///< that selects it
    QString timer;
    QString bigEndian;
    QString filter;
    QString groupFilter;
    QString defines;
};

/// The settings of a target stand under its number; those of the active one also under keys
/// without a number, which older projects have alone.
DefineSections::Target DefineSections::target(int number, bool isActive) const
{
    const QString prefix = QStringLiteral("targetsettings_%1_").arg(number);
    const auto value = [&](const char *numbered, const char *plain) {
        const QString text = m_settings.text(prefix + QLatin1String(numbered));
        return text.isEmpty() && isActive ? m_settings.text(QLatin1String(plain)) : text;
    };
    Target target;
    target.name = m_settings.text(prefix + QLatin1String("name"));
    if (target.name.isEmpty())
        target.name = QStringLiteral("Target %1").arg(number + 1);
    target.macro = value("targetid", "target_id").trimmed();
    target.macro = target.macro.isEmpty() ? QStringLiteral("TARGET_%1").arg(number)
                                          : CodeWriter::identifier(target.macro);
    target.timer = value("timer", "co_timer_interval");
    target.bigEndian = value("endianess", "endian");
    target.filter = value("fullcan", "drv_filter");
    target.groupFilter = value("groupfilter", "drv_group_filter");
    target.defines = value("defines", "hw_defines");
    return target;
}

void DefineSections::writeTarget(const Target &target)
{
    m_out.count(QStringLiteral("CORE_TIMER_INTERVAL"), ProjectSettings::toCount(target.timer));
    const auto flag = [this](const QString &value, const char *name) {
        m_out.flagIf(ProjectSettings::toCount(value) > 0, QLatin1String(name));
    };
    flag(target.bigEndian, "CORE_BIG_ENDIAN");
    flag(target.filter, "CORE_DRV_FILTER");
    flag(target.groupFilter, "CORE_DRV_GROUP_FILTER");
    if (!target.defines.trimmed().isEmpty())
        m_out.out() << "\n/* target-specific defines */\n" << block(target.defines);
}

void DefineSections::writeHardware()
{
    m_out.out() << "/* Hardware settings */\n";
    const int targets = int(number("targetsettings_cnt"));
    const int active = m_settings.decimal("targetsettings_active");
    if (targets <= 1) {
        // The one target is what the plain keys say; its numbered keys fill what they leave open.
        Target only = target(0, true);
        const auto prefer = [this](QString &value, const char *plain) {
            const QString text = m_settings.text(QLatin1String(plain));
            if (!text.isEmpty())
                value = text;
        };
        prefer(only.timer, "co_timer_interval");
        prefer(only.bigEndian, "endian");
        prefer(only.filter, "drv_filter");
        prefer(only.groupFilter, "drv_group_filter");
        prefer(only.defines, "hw_defines");
        writeTarget(only);
    } else if (!isOn("all_targets")) {
        writeTarget(target(active, true));
    } else {
        for (int number = 0; number < targets; ++number) {
            const Target each = target(number, number == active);
            const QString name = CodeWriter::commentText(each.name);
            m_out.out() << "#ifdef " << each.macro << "\n/* " << name << " */\n";
            m_out.beginBranch();
            writeTarget(each);
            m_out.out() << "#endif /* " << name << "*/ \n\n";
        }
    }
    m_out.count(QStringLiteral("CO_SRDO_TIMER_INTERVAL"), number("co_srdo_interval"));
    m_out.out() << '\n';
}

#include "generators/define/definesections.h"

#include "generators/base/indicationtable.h"

namespace {

/// CiA profiles with a sleep mode, and the index of their entries in the form.
enum SleepMode : quint32 { CarAddOnSleep = 1, EnergySleep = 2 };

} // namespace

void DefineSections::writeIndications()
{
    writeStaticIndications();
    writeSleep();
    writeDynamicIndications();
    m_out.out() << '\n';
}

void DefineSections::writeStaticIndications()
{
    using namespace IndicationTable;

    ObjectDataBase &store = m_settings.store();
    const bool isUsdoOn = hasUsdo(store);
    for (const StaticSwitch &row : staticSwitches()) {
        const bool needsUsdo = row.needs == Needs::Usdo;
        if (!isOf(row.stack, isV4()) || (needsUsdo && !isUsdoOn) ||
            functionName(store, row.key).isEmpty())
            continue;
        m_out.number(QLatin1String(row.define), 1, needsUsdo ? ' ' : '\t');
    }
}

void DefineSections::writeSleep()
{
    quint32 mode = number("sleep_mode_selection");
    if (mode == 0)
        return;
    constexpr quint32 carProfile = 447;
    constexpr quint32 energyProfile = 454;
    m_out.flag(QStringLiteral("CO_EVENT_DYNAMIC_SLEEP"));
    m_out.flagIf(mode == CarAddOnSleep || mode == carProfile, QStringLiteral("CO_SLEEP_447"));
    m_out.flagIf(mode == EnergySleep || mode == energyProfile, QStringLiteral("CO_SLEEP_454"));
    if (isV4()) {
        m_out.flag(QStringLiteral("CORE_SLEEP_SUPPORTED"));
        m_out.flag(QStringLiteral("CO_SLEEP_SUPPORTED"));
    }
    m_out.count(QStringLiteral("CO_SLEEP_WAITTIME"), number("sleep_wait_time"));
}

void DefineSections::writeDynamicIndications()
{
    if (!isOn("enable_dynamic"))
        return;
    m_out.out() << "/* Definition of number of call-back functions for each service*/\n";
    for (const IndicationTable::DynamicCount &row : IndicationTable::dynamicCounts()) {
        if (IndicationTable::isOf(row.stack, isV4()))
            m_out.count(QLatin1String(row.define), number(row.key));
    }
}

#pragma once

#include "generators/define/definefacts.h"
#include "generators/define/definewriter.h"

/// The sections of gen_define.h, each an operation, in the order in which they stand in the file.
/// Owns nothing.
class DefineSections
{
public:
    DefineSections(DefineWriter &out, const DefineFacts &facts, const ProjectSettings &settings)
        : m_out(out), m_facts(facts), m_settings(settings)
    {
    }

    /// Versions of the init structures.
    void writeVersions();
    /// The services of CANopen.
    void writeCANopen();
    void writeEnergyBus();
    void writeIndications();
    /// CAN queues and messages of the application.
    void writeCAN();
    void writeJ1939(bool isJ1939Only);
    /// Queue sizes of a UDS boot loader, for which the lists of the settings are taken as they are.
    void writeBootLoaderBuffers();
    /// What each line has. `withBuffers`: the queue sizes too; `withCANopen`: the counts of the
    /// CANopen services.
    void writeLines(bool withBuffers, bool withCANopen);
    void writeHardware();
    void writeIsoTpAndUds();
    void writeVirtualObjects();
    void writeUserDefines();
    void writeRawCAN();

private:
    using Line = DefineFacts::Line;
    using Counts = DictionaryFacts::LineCounts;

    // CANopen
    void writePdos();
    void writeSrdos();
    void writeErrorControl();
    void writeNmt();
    void writeSdos();
    void writeUsdos();
    void writeProfiles();
    void writeDevice();
    // indications
    void writeStaticIndications();
    void writeSleep();
    void writeDynamicIndications();
    // lines
    void writeServiceCounts();
    void writeNodes();
    // hardware
    struct Target;
    [[nodiscard]] Target target(int number, bool isActive) const;
    void writeTarget(const Target &target);
    // ISO-TP and UDS
    void writeIsoTp();
    void writeUds();
    void writeUdsBindings();
    // J1939
    void writePgnCounts();
    void writeSafety();
    void writeFd();
    void writeJ1939Services();
    void writeDiagnostics();
    void writeServerCase();

    /// A user's block of defines: the text as it is, with line feeds, ended by one.
    [[nodiscard]] static QString block(const QString &text);
    [[nodiscard]] bool isV4() const { return m_out.dialect().isV4; }
    [[nodiscard]] bool isOn(const char *key) const { return m_settings.isOn(QLatin1String(key)); }
    /// Any line has the setting above 0.
    [[nodiscard]] bool isOnAnyLine(const char *key) const;
    /// The first item of a setting as a number.
    [[nodiscard]] quint32 number(const char *key) const
    {
        return m_settings.count(QLatin1String(key));
    }

    DefineWriter &m_out;
    const DefineFacts &m_facts;
    const ProjectSettings &m_settings;
};

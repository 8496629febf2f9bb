#include "canopen/edsforeign.h"

#include <QCoreApplication>

#include <array>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("EdsForeign", text);
}

struct Start
{
    const char *bytes;
    const char *text;
};

constexpr std::array starts = {
    Start{"<", QT_TRANSLATE_NOOP("EdsForeign", "This is an XML file, not the text of an EDS or "
                                               "DCF (CiA 306).")},
    Start{"#profibus", QT_TRANSLATE_NOOP("EdsForeign", "This is a device description of PROFIBUS "
                                                       "(GSD), not a CANopen EDS or DCF.")},
    Start{"gsml", QT_TRANSLATE_NOOP("EdsForeign", "This is a device description of PROFINET, not "
                                                  "a CANopen EDS or DCF.")},
    Start{"%pdf", QT_TRANSLATE_NOOP("EdsForeign", "This is a PDF document, not an EDS or DCF.")},
    Start{"{", QT_TRANSLATE_NOOP("EdsForeign", "This is a JSON file, not an EDS or DCF.")},
    Start{"pk\x03\x04", QT_TRANSLATE_NOOP("EdsForeign", "This is a ZIP archive, not an EDS or "
                                                        "DCF.")},
    Start{"version \"", QT_TRANSLATE_NOOP("EdsForeign", "This is a CAN database (DBC), not an EDS "
                                                        "or DCF.")},
};

struct Marker
{
    const char *section; ///< lower case
    const char *text;
};

constexpr std::array markers = {
    Marker{"device", QT_TRANSLATE_NOOP("EdsForeign",
                                       "This is the EDS of another fieldbus (it has a section "
                                       "[Device], as DeviceNet and EtherNet/IP have), not one of "
                                       "CANopen.")},
    Marker{"paramclass",
           QT_TRANSLATE_NOOP("EdsForeign", "This is the EDS of another fieldbus (it has a section "
                                           "[ParamClass], as DeviceNet and EtherNet/IP have), not "
                                           "one of CANopen.")},
    Marker{"topology",
           QT_TRANSLATE_NOOP("EdsForeign", "This is the list of a network's nodes (CPJ), not a "
                                           "device description.")},
    Marker{"generalsettings",
           QT_TRANSLATE_NOOP("EdsForeign", "This is a project in its text form, not an EDS "
                                           "or DCF.")},
    Marker{"actions",
           QT_TRANSLATE_NOOP("EdsForeign", "This is a list of import actions, not an EDS or DCF.")},
};

} // namespace

QString EdsForeign::byStart(QByteArrayView head)
{
    const QByteArray text = head.trimmed().toByteArray().left(64).toLower();
    for (const Start &start : starts) {
        if (text.startsWith(start.bytes))
            return tr(start.text);
    }
    return {};
}

QString EdsForeign::bySections(const EdsText &text)
{
    for (const Marker &marker : markers) {
        for (const EdsText::Section &section : text.sections()) {
            if (section.name.compare(QByteArrayView(marker.section), Qt::CaseInsensitive) == 0)
                return tr(marker.text);
        }
    }
    return {};
}

QString EdsForeign::unknown()
{
    return tr("This is no EDS or DCF: none of the sections of such a file (CiA 306) is in it.");
}

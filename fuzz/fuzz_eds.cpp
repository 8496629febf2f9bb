#include "canopen/edsparser.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    EdsParser parser;
    QObject::connect(&parser, &EdsParser::newIndex, [&](const CANopen::CANopenIndex &object) {
        if (object.compactSubObj > 254)
            __builtin_trap();
        (void)parser.getCompactSubObjNames(object.index);
        (void)parser.getCompactSubObjValues(object.index);
    });
    const QByteArray content(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const bool loaded = parser.LoadEdsContent(content, QStringLiteral("input.eds"));
    // A refusal has a reason, and nothing else has.
    if (loaded != parser.result().error().isEmpty())
        __builtin_trap();
    (void)parser.result().texts();
    (void)parser.deviceValue(QStringLiteral("DeviceInfo"), QStringLiteral("VendorName"));
    (void)parser.deviceComment();
    return 0;
}

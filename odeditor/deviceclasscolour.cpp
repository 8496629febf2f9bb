#include "odeditor/deviceclasscolour.h"

#include <algorithm>
#include <array>

namespace {

struct Row
{
    const char *deviceClass;
    int hue; ///< degrees
};

constexpr std::array rows = {
    Row{"ebc", 210}, Row{"bat", 120},   Row{"vc", 45},     Row{"sec", 0},
    Row{"act", 25},  Row{"mcu", 275},   Row{"lmd", 90},    Row{"hmi", 185},
    Row{"man", 320}, Row{"manup", 340}, Row{"manua", 300},
};
constexpr int saturation = 170;
constexpr int brightness = 200;
constexpr int opacity = 60; ///< the palette's ground shines through

} // namespace

QBrush DeviceClassColour::of(const QString &deviceClass)
{
    const auto *row = std::ranges::find_if(
        rows, [&](const Row &known) { return deviceClass == QLatin1String(known.deviceClass); });
    return row == rows.end() ? QBrush()
                             : QBrush(QColor::fromHsv(row->hue, saturation, brightness, opacity));
}

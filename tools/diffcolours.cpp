#include "tools/diffcolours.h"

#include <QPainter>
#include <QPixmap>

#include <array>
#include <cmath>

namespace {

/// In the order of `DiffState`.
constexpr std::array<QRgb, 4> stateColours{qRgb(0, 0, 0), qRgb(0, 0, 255), qRgb(205, 205, 0),
                                           qRgb(255, 0, 0)};

/// Relative luminance as WCAG 2 defines it.
double luminance(const QColor &colour)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const double first = luminance(a);
    const double second = luminance(b);
    return (qMax(first, second) + 0.05) / (qMin(first, second) + 0.05);
}

} // namespace

namespace DiffColours {

QColor of(DiffState state)
{
    return QColor::fromRgb(stateColours[std::size_t(state)]);
}

QColor ofText(DiffState state, const QPalette &palette)
{
    if (state == DiffState::Equal)
        return palette.color(QPalette::Text);
    constexpr double readable = 4.5;
    constexpr float step = 0.02F;
    const QColor base = palette.color(QPalette::Base);
    const bool darken = luminance(base) > 0.5;
    QColor colour = of(state).toHsl();
    float lightness = colour.lightnessF();
    while (contrast(colour, base) < readable && lightness > step && lightness < 1 - step) {
        lightness += darken ? -step : step;
        colour.setHslF(colour.hslHueF(), colour.hslSaturationF(), lightness);
    }
    return colour.toRgb();
}

QIcon patch(DiffState state, const QPalette &palette)
{
    if (state == DiffState::Equal)
        return {};
    constexpr int side = 32; // scaled down to the size of the list's icons
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette.color(QPalette::Text), 2));
    painter.setBrush(of(state));
    painter.drawRoundedRect(QRectF(7, 7, side - 14, side - 14), 4, 4);
    return QIcon(pixmap);
}

} // namespace DiffColours

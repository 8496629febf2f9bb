#include "gui/editionicon.h"

#include <QPainter>
#include <QPixmap>

#include <array>

namespace {

struct Look
{
    const char *word; ///< part of the application name
    const char *letters;
    QRgb colour;
};
// The last one is for every other name.
constexpr std::array looks{
    Look{"CANopen", "CO", 0xff0b5cad},
    Look{"J1939", "J", 0xff8a4a0c},
    Look{"EnergyBus", "EB", 0xff6a3fa0},
    Look{"", "CAN", 0xff2c6e49},
};

constexpr std::array sizes{16, 24, 32, 48, 64, 128, 256};
constexpr int leastWithLetters = 48;

const Look &lookOf(const QString &applicationName)
{
    for (const Look &look : looks) {
        if (applicationName.contains(QLatin1String(look.word)))
            return look;
    }
    return looks.back();
}

/// Drawn on a grid of 32 by 32.
QPixmap drawn(const Look &look, int size)
{
    constexpr int grid = 32;
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(qreal(size) / grid, qreal(size) / grid);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(look.colour));
    painter.drawRoundedRect(QRectF(1, 1, 30, 30), 6, 6);

    const bool withLetters = size >= leastWithLetters;
    const qreal bus = withLetters ? 12 : 16;
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(5, bus), QPointF(27, bus));
    painter.setBrush(Qt::white);
    for (const auto &[x, step] : {std::pair{9.0, -4.0}, {16.0, 4.0}, {23.0, -4.0}}) {
        // With letters below there is room on one side only.
        const qreal end = bus + (withLetters ? -4.0 : step);
        painter.drawLine(QPointF(x, bus), QPointF(x, end));
        painter.drawRect(QRectF(x - 1.5, end - 1.5, 3, 3));
    }
    if (withLetters) {
        QFont font = painter.font();
        font.setPixelSize(11);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(QRectF(1, 15, 30, 14), Qt::AlignCenter, QLatin1String(look.letters));
    }
    return pixmap;
}

} // namespace

QIcon EditionIcon::icon(const QString &applicationName)
{
    const Look &look = lookOf(applicationName);
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(drawn(look, size));
    return icon;
}

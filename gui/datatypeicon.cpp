#include "gui/datatypeicon.h"

#include "canopen/cohelper.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

#include <array>
#include <utility>

namespace {

/// The sign of a type by the start of its name; the first that fits counts.
constexpr std::array<std::pair<const char *, const char *>, 8> signs{{
    {"BOOL", "B"},
    {"INTEGER", "I"},
    {"UNSIGNED", "U"},
    {"REAL", "R"},
    {"TIME", "T"},
    {"DOMAIN", "D"},
    {"OCTET", "O"},
    {"", "S"}, // the other strings
}};

QString signOf(quint16 dataType)
{
    const QString name = COHelper::index2DataTypeString(dataType);
    if (name.isEmpty())
        return {};
    for (const auto &[start, sign] : signs) {
        if (name.startsWith(QLatin1String(start)))
            return QString::fromLatin1(sign);
    }
    return {};
}

class FramedLetter : public QIconEngine
{
public:
    explicit FramedLetter(const QString &letter) : m_letter(letter) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const QPalette::ColorGroup group =
            mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QPalette::ColorRole role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::Text;
        const qreal side = qMin(rect.width(), rect.height());
        QRectF square(0, 0, side, side);
        square.moveCenter(QRectF(rect).center());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(QApplication::palette().color(group, role), side / 16));
        const qreal margin = side / 16;
        painter->drawRoundedRect(square.adjusted(margin, margin, -margin, -margin), side / 6,
                                 side / 6);
        QFont font = painter->font();
        font.setPixelSize(qMax(1, qRound(side * 0.65)));
        font.setWeight(QFont::DemiBold);
        painter->setFont(font);
        painter->drawText(square, Qt::AlignCenter, m_letter);
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return new FramedLetter(m_letter); }

private:
    QString m_letter;
};

} // namespace

namespace DataTypeIcon {

QIcon icon(quint16 dataType)
{
    return QIcon(new FramedLetter(signOf(dataType))); // the icon owns its engine
}

} // namespace DataTypeIcon

#include "gui/lineicon.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

#include <array>

namespace {

/// Strokes of one icon. Commands, each followed by its numbers: M and L a point, C two control
/// points and the end, O a circle's centre and radius, Z closes the figure.
struct Drawing
{
    const char *name;
    const char *strokes;
};

constexpr std::array drawings{
    Drawing{"new", "M 6 3 L 14 3 L 19 8 L 19 21 L 6 21 Z M 14 3 L 14 8 L 19 8 "
                   "M 12.5 11.5 L 12.5 17.5 M 9.5 14.5 L 15.5 14.5"},
    Drawing{"open", "M 3 19 L 3 5 L 9 5 L 11 8 L 19 8 L 19 11 M 3 19 L 6.5 11 L 22 11 L 18.5 19 Z"},
    Drawing{"save", "M 4 4 L 17 4 L 20 7 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4 "
                    "M 7 20 L 7 13 L 17 13 L 17 20"},
    Drawing{"save-as", "M 20 10 L 20 7 L 17 4 L 4 4 L 4 20 L 10 20 M 8 4 L 8 9 L 15 9 L 15 4 "
                       "M 13 21 L 13.7 17.8 L 19.5 12 L 22 14.5 L 16.2 20.3 Z"},
    Drawing{"close", "M 6 3 L 14 3 L 19 8 L 19 21 L 6 21 Z M 14 3 L 14 8 L 19 8 "
                     "M 10 12 L 15 17 M 15 12 L 10 17"},
    Drawing{"generate", "M 4 4 L 12 4 M 4 9 L 10 9 M 4 14 L 8 14 M 4 19 L 8 19 "
                        "M 12 11 L 20 15.5 L 12 20 Z"},
    Drawing{"quit", "M 10 4 L 4 4 L 4 20 L 10 20 M 9 12 L 20 12 M 16 8 L 20 12 L 16 16"},
    Drawing{"undo",
            "M 8.5 4 L 4 8.5 L 8.5 13 M 4 8.5 L 14 8.5 C 21.5 8.5 21.5 19.5 14 19.5 L 9 19.5"},
    Drawing{"redo",
            "M 15.5 4 L 20 8.5 L 15.5 13 M 20 8.5 L 10 8.5 C 2.5 8.5 2.5 19.5 10 19.5 L 15 19.5"},
    Drawing{"about", "O 12 12 9 M 12 11 L 12 16.5 M 12 7.5 L 12 8"},
    Drawing{"warning", "M 12 3.5 L 22 20.5 L 2 20.5 Z M 12 10 L 12 15 M 12 17.7 L 12 18"},
    Drawing{"error", "O 12 12 9 M 8.5 8.5 L 15.5 15.5 M 15.5 8.5 L 8.5 15.5"},
    Drawing{"question", "O 12 12 9 M 9.3 9.5 C 9.3 5.8 14.8 5.8 14.8 9.5 C 14.8 11.8 12 11.8 12 "
                        "14 M 12 16.7 L 12 17"},
    Drawing{"output", "M 3 4 L 21 4 L 21 20 L 3 20 Z M 6.5 9 L 9.5 12 L 6.5 15 M 12 15 L 17 15"},
    Drawing{"dictionary", "M 5 3 L 5 18 L 11 18 M 5 9 L 11 9 M 11 6 L 20 6 L 20 12 L 11 12 Z "
                          "M 11 15 L 20 15 L 20 21 L 11 21 Z"},
    Drawing{"recent", "O 12 12 9 M 12 7 L 12 12 L 15.5 14"},
    Drawing{"clear", "M 4 7 L 20 7 M 9 7 L 9 4 L 15 4 L 15 7 M 6 7 L 7 20 L 17 20 L 18 7 "
                     "M 10 11 L 10 16 M 14 11 L 14 16"},
    Drawing{"manual", "M 12 6 C 9 4 6 4 3 5 L 3 19 C 6 18 9 18 12 20 C 15 18 18 18 21 19 L 21 5 "
                      "C 18 4 15 4 12 6 L 12 20"},
    Drawing{"back", "M 20 12 L 4 12 M 10 6 L 4 12 L 10 18"},
    Drawing{"forward", "M 4 12 L 20 12 M 14 6 L 20 12 L 14 18"},
    Drawing{"up", "M 5 15.5 L 12 8.5 L 19 15.5"},
    Drawing{"down", "M 5 8.5 L 12 15.5 L 19 8.5"},
    Drawing{"zoom-in", "O 10.5 10.5 6.5 M 15.5 15.5 L 21 21 M 10.5 7.5 L 10.5 13.5 "
                       "M 7.5 10.5 L 13.5 10.5"},
    Drawing{"zoom-out", "O 10.5 10.5 6.5 M 15.5 15.5 L 21 21 M 7.5 10.5 L 13.5 10.5"},
    Drawing{"zoom-reset", "O 10.5 10.5 6.5 M 15.5 15.5 L 21 21 M 9 8.5 L 10.8 7.3 L 10.8 13.7"},
    Drawing{"update", "M 12 3 L 12 14 M 7 9.5 L 12 14.5 L 17 9.5 M 4 16 L 4 20 L 20 20 L 20 16"},
    Drawing{"cut", "O 6.5 18 2.7 O 17.5 18 2.7 M 8 15.8 L 17 3.5 M 16 15.8 L 7 3.5"},
    Drawing{"paste", "M 8 5 L 5 5 L 5 21 L 19 21 L 19 5 L 16 5 M 8.5 3 L 15.5 3 L 15.5 7 L 8.5 7 Z "
                     "M 8.5 12 L 15.5 12 M 8.5 16 L 15.5 16"},
    Drawing{"duplicate", "M 9 9 L 20 9 L 20 21 L 9 21 Z M 5 15 L 4 15 L 4 3 L 15 3 L 15 5 "
                         "M 14.5 12 L 14.5 18 M 11.5 15 L 17.5 15"},
    Drawing{"examples", "M 12 3 L 21 7.5 L 12 12 L 3 7.5 Z M 3 12 L 12 16.5 L 21 12 "
                        "M 3 16.5 L 12 21 L 21 16.5"},
    Drawing{"import", "M 8 9 L 8 3 L 15 3 L 20 8 L 20 21 L 8 21 L 8 17 M 2 13 L 14 13 "
                      "M 10.5 9.5 L 14 13 L 10.5 16.5"},
    Drawing{"export", "M 15 9 L 15 8 L 10 3 L 4 3 L 4 21 L 15 21 L 15 17 M 9 13 L 21 13 "
                      "M 17.5 9.5 L 21 13 L 17.5 16.5"},
    Drawing{"library", "M 4 4 L 8 4 L 8 20 L 4 20 Z M 8 4 L 12 4 L 12 20 L 8 20 "
                       "M 13.5 5.5 L 17 4.5 L 21 19.5 L 17.5 20.5 Z"},
    Drawing{"news", "M 6 3 L 18 3 L 18 21 L 6 21 Z M 9 8 L 15 8 M 9 12 L 15 12 M 9 16 L 13 16"},
    Drawing{"copy", "M 9 9 L 20 9 L 20 21 L 9 21 Z M 5 15 L 4 15 L 4 3 L 15 3 L 15 5"},
};

QPainterPath parse(const char *strokes)
{
    QPainterPath path;
    const QStringList words = QString::fromLatin1(strokes).split(u' ', Qt::SkipEmptyParts);
    qsizetype at = 0;
    const auto number = [&] { return at < words.size() ? words[at++].toDouble() : 0.0; };
    const auto point = [&] {
        const qreal x = number();
        return QPointF(x, number());
    };
    while (at < words.size()) {
        const QString command = words[at++];
        if (command == u"M") {
            path.moveTo(point());
        } else if (command == u"L") {
            path.lineTo(point());
        } else if (command == u"C") {
            const QPointF first = point();
            const QPointF second = point();
            path.cubicTo(first, second, point());
        } else if (command == u"O") {
            const QPointF centre = point();
            const qreal radius = number();
            path.addEllipse(centre, radius, radius);
        } else if (command == u"Z") {
            path.closeSubpath();
        }
    }
    return path;
}

class LineIconEngine : public QIconEngine
{
public:
    LineIconEngine(const Drawing &drawing, const QColor &colour)
        : m_drawing(drawing), m_colour(colour)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        if (m_path.isEmpty())
            m_path = parse(m_drawing.strokes);
        const QPalette::ColorGroup group =
            mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QPalette::ColorRole role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        const QColor colour =
            m_colour.isValid() ? m_colour : QApplication::palette().color(group, role);
        const qreal scale = qMin(rect.width(), rect.height()) / 24.0;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.x() + (rect.width() - 24 * scale) / 2,
                           rect.y() + (rect.height() - 24 * scale) / 2);
        painter->scale(scale, scale);
        painter->setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPath(m_path);
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

    QIconEngine *clone() const override { return new LineIconEngine(m_drawing, m_colour); }

private:
    const Drawing &m_drawing;
    QColor m_colour;
    QPainterPath m_path;
};

} // namespace

namespace LineIcon {

QIcon icon(const QString &name, const QColor &colour)
{
    for (const Drawing &drawing : drawings) {
        if (name == QLatin1String(drawing.name))
            return QIcon(new LineIconEngine(drawing, colour)); // the icon owns its engine
    }
    return {};
}

QStringList names()
{
    QStringList result;
    for (const Drawing &drawing : drawings)
        result.append(QLatin1String(drawing.name));
    return result;
}

} // namespace LineIcon

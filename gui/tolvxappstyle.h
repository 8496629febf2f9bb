#pragma once

#include <QPalette>
#include <QProxyStyle>

class QApplication;

/// The look of all editions: Fusion with a light and a dark palette of our own, whichever of the
/// two the system is set to.
class TolvxAppStyle : public QProxyStyle
{
    Q_OBJECT

public:
    enum class Scheme { Light, Dark };

    TolvxAppStyle();

    /// Gives the application this style and the palette that fits the system, and keeps the
    /// palette in step when the user switches the system over.
    static void install(QApplication &application);
    [[nodiscard]] static QPalette palette(Scheme scheme);
    /// What the system asks for now.
    [[nodiscard]] static Scheme systemScheme();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contentsSize,
                           const QWidget *widget = nullptr) const override;
    QIcon standardIcon(StandardPixmap pixmap, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr,
                  const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void followSystem();

    bool m_following = false;
};

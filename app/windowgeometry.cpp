#include "app/windowgeometry.h"

#include "store/usersettings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace {

constexpr QPoint visiblePosition(100, 30);
const QString group = QStringLiteral("Geometry");
const QString sizeKey = QStringLiteral("size");
const QString positionKey = QStringLiteral("pos");
const QString maximizedKey = QStringLiteral("maximized");

/// The largest part of `wanted` that fits, moved as far as it has to be. The title bar, whose
/// height nobody knows before the window is shown, has its place above.
QRect fitted(const QRect &wanted, QRect available, int titleBar)
{
    available.setTop(available.top() + titleBar);
    QRect result(wanted.topLeft() + QPoint(0, titleBar), wanted.size().boundedTo(available.size()));
    result.moveRight(qMin(result.right(), available.right()));
    result.moveBottom(qMin(result.bottom(), available.bottom()));
    result.moveLeft(qMax(result.left(), available.left()));
    result.moveTop(qMax(result.top(), available.top()));
    return result.translated(0, -titleBar);
}

/// Without a position of its own the window is placed by the desktop.
void fitOntoScreen(QWidget &window, bool hasPosition)
{
    const QScreen *screen = hasPosition ? QGuiApplication::screenAt(window.pos()) : nullptr;
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    const int titleBar = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    const QRect place =
        fitted(QRect(window.pos(), window.size()), screen->availableGeometry(), titleBar);
    window.resize(place.size());
    if (hasPosition)
        window.move(place.topLeft());
}

} // namespace

void WindowGeometry::save(const QWidget &window)
{
    const bool maximized = window.isMaximized();
    const QRect normal = window.normalGeometry();
    UserSettings settings;
    settings.beginGroup(group);
    settings.setValue(sizeKey, maximized ? normal.size() : window.size());
    settings.setValue(positionKey, maximized ? normal.topLeft() : window.pos());
    settings.setValue(maximizedKey, maximized);
}

void WindowGeometry::restore(QWidget &window)
{
    UserSettings settings;
    settings.beginGroup(group);
    const QSize size = settings.value(sizeKey).toSize();
    if (size.isValid())
        window.resize(size.expandedTo(window.minimumSizeHint()));
    const QVariant position = settings.value(positionKey);
    if (position.isValid()) {
        window.move(position.toPoint());
        bringOntoScreen(window);
    }
    fitOntoScreen(window, position.isValid());
    if (settings.value(maximizedKey).toBool())
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

void WindowGeometry::bringOntoScreen(QWidget &window)
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    const bool visible = std::any_of(screens.begin(), screens.end(), [&](const QScreen *screen) {
        return screen->availableGeometry().contains(window.pos());
    });
    if (!visible)
        window.move(visiblePosition);
}

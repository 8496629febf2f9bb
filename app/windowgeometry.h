#pragma once

class QWidget;

/// Where a window was when it was closed last, in the user's settings.
namespace WindowGeometry {

void save(const QWidget &window);
/// Before the window is shown. The screen may have become smaller meanwhile: the window lies on one
/// whole.
void restore(QWidget &window);
/// Moves the window to where it can be seen if its position lies on no screen.
void bringOntoScreen(QWidget &window);

} // namespace WindowGeometry

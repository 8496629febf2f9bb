#pragma once

class VxmMainWindow;

/// What the command line asks for beyond opening a project: the late part of the start, with
/// stores and forms complete. All unattended use of the program goes through it.
namespace LateStart {

/// Runs every step that the window's options ask for, in their fixed order.
void run(VxmMainWindow &window);

} // namespace LateStart

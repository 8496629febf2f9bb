#pragma once

/// The program behind `main`: makes the application object, the two stores and the main window,
/// opens what is to be opened, and runs the event loop. All editions are this one program under
/// different application names. Gives the exit code.
int runQuillforge(int argc, char *argv[], const char *applicationName);

#pragma once

/// The mark-up in front of errors. Project-wide checks and those of the stack's version have their
/// word in red.
#define MARK_RED "<strong><font color='red'>Error: </font></strong>"
#define MARK_ERROR "<strong>Error: </strong>"

#pragma once

#include "dictionary/editcontext.h"
#include "gui/formcontext.h"

/// What an edit by the user of a form is made with; the context must outlive it. The user's setting
/// `ignoretsk` lifts what the stack and its tools keep.
[[nodiscard]] EditContext editContextOf(const FormContext &context, quint8 line, bool expert);

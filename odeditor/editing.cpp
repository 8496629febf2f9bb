#include "odeditor/editing.h"

#include "store/usersettings.h"

EditContext editContextOf(const FormContext &context, quint8 line, bool expert)
{
    const bool ignoreStack = UserSettings::general(QStringLiteral("ignoretsk"), false).toBool();
    return {.store = *context.project,
            .line = line,
            .rights = EditRights({.expert = expert, .ignoreStack = ignoreStack}),
            .library = context.library.get()};
}

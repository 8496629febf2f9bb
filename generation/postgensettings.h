#pragma once

#include <QString>
#include <QStringList>

class ObjectDataBase;

/// What is to happen to the files of a run once they are written: the project's wishes, else the
/// user's.
struct PostGenSettings
{
    QString command;   ///< a program without arguments; empty for none
    QString arguments; ///< with place holders
    bool waitForCommand = false;
    QString lineEnding; ///< empty leaves the files as they were written
    bool checksEds = false;
    QString edsCheckerPath;

    /// The user's settings are those of the application property "AppNameWithVersion"; without it
    /// only the project counts. `store` may be null.
    [[nodiscard]] static PostGenSettings read(ObjectDataBase *store);

    /// The arguments one by one, with "%P" (path of the project), "%D" (output folder) and "%N"
    /// (file name of the project) filled in. They are parted at blanks; quotes mean nothing.
    [[nodiscard]] QStringList argumentList(const QString &outputFolder,
                                           const QString &projectName) const;
};

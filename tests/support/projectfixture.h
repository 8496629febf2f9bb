#pragma once

#include "store/objectdatabase.h"

#include <QCoreApplication>

/// Small real projects for tests of the program.
namespace ProjectFixture {

struct Options
{
    int lineType = 1;
    QString savedByVersion; ///< the version of the program that is running if empty
    bool withPgn = false;
};

/// A complete little device, without a finding of the model check; false if it can't be saved.
bool save(const QString &path, const Options &options = {});
/// A setting of the file as another program would read it.
QString generalSetting(const QString &path, const QString &key);
/// Runs one statement on a database file without this program's knowledge, which may be none of
/// its own; the first value of its first row, null if there is none or it fails.
QString runOn(const QString &path, const QString &statement);

} // namespace ProjectFixture

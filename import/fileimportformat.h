#pragma once

#include "canopen/objectranges.h"

#include <QList>
#include <QString>

#include <memory>

class DictionaryImporter;

/// How a file is to be read for a choice among its objects.
struct FileImportOptions
{
    QString path;
    quint32 low = ObjectRanges::device.low; ///< first number that is read; of an object its index
    quint32 high = ObjectRanges::device.high;
    quint8 sourceLine = 0;     ///< of a project
    bool expandCopies = false; ///< the copies that a profile database asks for
};

/// One kind of file that objects can be read from.
struct FileImportFormat
{
    enum Trait : quint8 {
        Batch = 1,      ///< the command line reads it too
        Project = 2,    ///< has lines and implementation types of its own
        DeviceData = 4, ///< describes the device besides its objects
        Copies = 8      ///< can repeat objects under other numbers
    };

    const char *suffix;
    quint8 traits; ///< of `Trait`
    /// Makes the importer; with options for a choice among the objects, without for a batch.
    std::unique_ptr<DictionaryImporter> (*make)(const FileImportOptions *options);

    [[nodiscard]] bool is(Trait trait) const { return (traits & trait) != 0; }
    /// The format of a file by its name, whatever the case; null if there is none.
    [[nodiscard]] static const FileImportFormat *of(const QString &path);
};

/// A file with objects that comes with the program.
struct FileImportSource
{
    QString label;
    QString path;

    /// The profile databases, labelled with their titles, then the projects of the given folders
    /// that belong to the edition, each by the name of its file.
    [[nodiscard]] static QList<FileImportSource> shipped(const QString &applicationName,
                                                         const QStringList &dataFolders);
    /// Of the running program.
    [[nodiscard]] static QList<FileImportSource> shipped();
};

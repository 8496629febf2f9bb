#pragma once

#include "generators/base/abstractgenerator.h"

/// A generator of one file, which it names once: the file, and what the messages of a run call it.
class FileGenerator : public AbstractGenerator
{
    Q_OBJECT

public:
    [[nodiscard]] bool isOutputWritable() override { return isFileWritable(outputPath()); }
    int startGeneration() override { return start(QLatin1String(m_name.label)); }
    [[nodiscard]] QString fileName() const override { return QLatin1String(m_name.file); }

protected:
    struct Name
    {
        const char *file;         ///< or what ends the name, where the project gives the rest
        const char *label = file; ///< object name of a run
    };

    explicit FileGenerator(const Name &name, QObject *parent = nullptr)
        : AbstractGenerator(parent), m_name(name)
    {
    }

    /// The file of `Name` as it stands.
    [[nodiscard]] QLatin1String namedFile() const { return QLatin1String(m_name.file); }

private:
    Name m_name;
};

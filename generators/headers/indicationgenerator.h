#pragma once

#include "generators/base/filegenerator.h"
#include "generators/base/stackdialect.h"

class CodeWriter;

/// gen_indication.h for the older generation of the stack: the prototypes of all functions of the
/// application that are bound to indications when the project is compiled.
///
/// The class name is in lower case because it is known by it.
class indicationgenerator : public FileGenerator
{
    Q_OBJECT

public:
    explicit indicationgenerator(QObject *parent = nullptr)
        : indicationgenerator(StackDialect::v3(), parent)
    {
    }

protected:
    indicationgenerator(const StackDialect &dialect, QObject *parent);

    void writeContent(QIODevice &device) override;

private:
    /// The prototypes with their notes; empty if nothing is bound.
    [[nodiscard]] QString prototypes(bool hasLines) const;
    [[nodiscard]] QString udsPrototypes() const;
    [[nodiscard]] QString note(const char *key) const;

    const StackDialect &m_dialect;
};

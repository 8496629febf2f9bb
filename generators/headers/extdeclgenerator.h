#pragma once

#include "generators/base/filegenerator.h"
#include "generators/base/stackdialect.h"

/// gen_extern_decl.h for the older generation of the stack, the declarations of the variables that
/// the application owns and the generated tables point to, and gen_var_decl.c beside it, which
/// defines them for an application that does not do so itself.
class ExtDeclGenerator : public FileGenerator
{
    Q_OBJECT

public:
    explicit ExtDeclGenerator(QObject *parent = nullptr)
        : ExtDeclGenerator(StackDialect::v3(), parent)
    {
    }

protected:
    ExtDeclGenerator(const StackDialect &dialect, QObject *parent);

    void writeContent(QIODevice &device) override;

private:
    [[nodiscard]] QString title(const char *format) const;

    const StackDialect &m_dialect;
};

#pragma once

#include "generators/headers/extdeclgenerator.h"

/// gen_extern_decl.h and gen_var_decl.c for the newer generation of the stack.
class ExtDeclGeneratorV4 : public ExtDeclGenerator
{
    Q_OBJECT

public:
    explicit ExtDeclGeneratorV4(QObject *parent = nullptr)
        : ExtDeclGenerator(StackDialect::v4(), parent)
    {
    }
};

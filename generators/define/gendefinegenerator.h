#pragma once

#include "generators/define/codefinegenerator.h"

/// gen_define.h for the newer generation of the stack, in its words, with UDS bindings and the
/// form of a boot loader.
class GenDefineGenerator : public CoDefineGenerator
{
    Q_OBJECT

public:
    explicit GenDefineGenerator(QObject *parent = nullptr)
        : CoDefineGenerator(StackDialect::v4(), parent)
    {
    }
};

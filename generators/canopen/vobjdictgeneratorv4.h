#pragma once

#include "generators/canopen/vobjdictgenerator.h"

/// gen_vobjdict.c for the newer generation of the stack.
class VobjDictGeneratorV4 : public VobjDictGenerator
{
    Q_OBJECT

public:
    explicit VobjDictGeneratorV4(QObject *parent = nullptr)
        : VobjDictGenerator(StackDialect::v4(), parent)
    {
    }
};

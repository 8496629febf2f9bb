#pragma once

#include "generators/canopen/objdictgenerator.h"

/// gen_objdict.c for the newer generation of the stack: rows hold data specifiers and positions in
/// place of addresses.
class ObjDictGeneratorV4 : public ObjDictGenerator
{
    Q_OBJECT

public:
    explicit ObjDictGeneratorV4(bool compactDescription, QObject *parent = nullptr)
        : ObjDictGenerator(compactDescription, StackDialect::v4(), parent)
    {
    }
};

#pragma once

#include "generators/headers/indicationgenerator.h"

/// gen_indication.h for the newer generation of the stack, which binds UDS callbacks as well.
class indicationgeneratorv4 : public indicationgenerator
{
    Q_OBJECT

public:
    explicit indicationgeneratorv4(QObject *parent = nullptr)
        : indicationgenerator(StackDialect::v4(), parent)
    {
    }
};

#pragma once

#include "generators/base/dictionaryfacts.h"

/// Adds what one object means for the services of its line. The object is already in `facts`.
void countServices(DictionaryFacts &facts, DictionaryFacts::LineCounts &counts,
                   const DictionaryFacts::Object &object, const QString &subZeroAccess);

/// The PDOs of all lines and their static mapping tables; needs the rows to be there.
void collectPdos(DictionaryFacts &facts, const DictionaryOptions &options);

#pragma once

#include "dictionary/editrights.h"
#include "store/objectdatabase.h"

/// Where an edit takes place, and what its user may do there.
struct EditContext
{
    ObjectDataBase &store; ///< the project; outlives the context
    quint8 line = 0;
    EditRights rights;
    /// Its staging line holds the standard objects of the line's profile and, once a file was read
    /// in the import dialog, the file's. May be null.
    ObjectDataBase *library = nullptr;
};

#pragma once

#include "store/objectdatabase.h"

#include <QString>

#include <memory>

class UndoManager;

/// Who can show any object of the project, and has a place for short messages. Main thread.
class FormNavigator
{
public:
    virtual ~FormNavigator() = default;

    /// Shows an object on the page of object dictionaries. One that isn't there is told.
    virtual void gotoIndex(quint8 line, quint16 index) = 0;
    virtual void gotoSubIndex(quint8 line, quint16 index, quint8 subindex) = 0;
    /// Text for the status bar.
    virtual void tell(const QString &text) = 0;
};

/// What pages and panes work on. A plain value; all but the project may be missing in a test.
struct FormContext
{
    std::shared_ptr<ObjectDataBase> project;
    /// Its staging line holds standard objects or those of the last imported file.
    std::shared_ptr<ObjectDataBase> library;
    UndoManager *undo = nullptr;        ///< outlives the forms
    FormNavigator *navigator = nullptr; ///< outlives the forms

    void tell(const QString &text) const
    {
        if (navigator != nullptr)
            navigator->tell(text);
    }
};

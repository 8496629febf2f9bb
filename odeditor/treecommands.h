#pragma once

#include "dictionary/editcontext.h"
#include "odeditor/dictionarytree.h"

#include <QKeySequence>

#include <span>

class ObjectDictionaryForm;

/// What a command of the tree works on.
struct TreeSituation
{
    EditContext context;
    TreeRow current;
    QList<quint16> objects; ///< selected, ascending
    QList<DictionaryTree::Key> subindices;
    bool hasCopied = false;
};

/// One command of the object dictionary: its entry in the context menu and its keys.
struct TreeCommand
{
    enum Who : quint8 {
        Window, ///< an action of the window has the keys
        View,   ///< the tree itself
        Form
    };

    const char *text;
    TreeRow::Level level;
    int group; ///< groups of a menu have a line between them
    const char *keys = "";
    Who keyOwner = Form;
    void (ObjectDictionaryForm::*run)() = nullptr;
    /// Why it can't be done; asked of each menu and each stroke of its keys.
    EditResult (*may)(const TreeSituation &situation) = nullptr;

    [[nodiscard]] static std::span<const TreeCommand> all();
};

/// The commands of the window (`BaseMainForm::Action`).
[[nodiscard]] EditResult mayDoAction(const TreeSituation &situation, int action);

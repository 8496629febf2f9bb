#include "odeditor/treecommands.h"

#include "dictionary/freenumbers.h"
#include "dictionary/objectwalk.h"
#include "dictionary/subindexedits.h"
#include "gui/basemainform.h"
#include "odeditor/objectdictionaryform.h"

#include <QCoreApplication>

#include <array>

namespace {

using Form = ObjectDictionaryForm;
using Level = TreeRow::Level;

QString tr(const char *text)
{
    return QCoreApplication::translate("TreeCommands", text);
}

EditResult nothingSelected()
{
    return EditResult::refused(tr("No object is selected."));
}

bool isCompound(const TreeSituation &situation)
{
    ObjectDataBase::INDEX_DATA_T data;
    return situation.context.store.getIndexData(situation.context.line, situation.current.index,
                                                data) &&
           (data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD);
}

EditResult objects(const TreeSituation &situation)
{
    if (situation.objects.isEmpty())
        return nothingSelected();
    for (const quint16 index : situation.objects) {
        if (EditResult result = situation.context.rights.restructure(index); !result)
            return result;
    }
    return EditResult::done();
}

/// Of an array or record.
EditResult subindices(const TreeSituation &situation)
{
    if (situation.subindices.isEmpty())
        return EditResult::refused(tr("No subindex is selected."));
    for (const auto &[index, subindex] : situation.subindices) {
        if (EditResult result = situation.context.rights.restructure(index); !result)
            return result;
    }
    return isCompound(situation) ? EditResult::done()
                                 : EditResult::refused(tr("A variable has no further subindices."));
}

EditResult removeSub(const TreeSituation &situation)
{
    EditResult result = subindices(situation);
    for (const auto &[index, subindex] : situation.subindices) {
        if (result && subindex == 0)
            result = EditResult::refused(tr("Subindex 0 goes with its object only."));
    }
    return result;
}

EditResult rename(const TreeSituation &situation)
{
    return situation.context.rights.restructure(situation.current.index);
}

EditResult add(const TreeSituation &situation)
{
    const quint16 index = situation.current.index;
    if (EditResult result = situation.context.rights.restructure(index); !result)
        return result;
    if (!isCompound(situation))
        return EditResult::refused(tr("A variable has no further subindices."));
    return EditResult::done();
}

EditResult addNext(const TreeSituation &situation)
{
    EditResult result = add(situation);
    if (!result)
        return result;
    const QList<quint8> present =
        situation.context.store.getSubIndices(situation.context.line, situation.current.index);
    const bool isFull = !present.isEmpty() && present.last() >= FreeNumbers::highestSubindex;
    return isFull ? EditResult::refused(tr("There is no subindex behind 254."))
                  : EditResult::done();
}

EditResult paste(const TreeSituation &situation)
{
    if (!situation.hasCopied)
        return EditResult::refused(tr("No object was copied."));
    return situation.context.rights.restructure(situation.current.index);
}

/// To a place that is asked for.
EditResult pasteAt(const TreeSituation &situation)
{
    return situation.hasCopied ? EditResult::done()
                               : EditResult::refused(tr("No object was copied."));
}

EditResult increment(const TreeSituation &situation)
{
    return SubIndexEdits::mayIncrement(situation.context,
                                       {situation.current.index, situation.current.subindex});
}

EditResult decrement(const TreeSituation &situation)
{
    return SubIndexEdits::mayDecrement(situation.context,
                                       {situation.current.index, situation.current.subindex});
}

EditResult move(const TreeSituation &situation)
{
    if (situation.current.subindex == 0)
        return EditResult::refused(tr("Subindex 0 goes with its object only."));
    return add(situation);
}

constexpr std::array commands = {
    TreeCommand{"Remove Index", Level::Object, 0, "Del", TreeCommand::Form, &Form::deleteIndex,
                objects},
    TreeCommand{"Duplicate Index", Level::Object, 0, "Ctrl+D", TreeCommand::Window,
                &Form::duplicateIndex, objects},
    TreeCommand{"Rename", Level::Object, 0, "F2", TreeCommand::View, &Form::renameCurrent, rename},
    TreeCommand{"Add Sub at next free position", Level::Object, 1, "Ins", TreeCommand::Form,
                &Form::addNextSub, addNext},
    TreeCommand{"Add Sub at defined position", Level::Object, 1, "Ctrl+I", TreeCommand::Form,
                &Form::addSpecificSub, add},
    TreeCommand{"Copy Index", Level::Object, 2, "Ctrl+C", TreeCommand::Window, &Form::copyIndex,
                objects},
    TreeCommand{"Paste Index .. ", Level::Object, 2, "Ctrl+Shift+V", TreeCommand::Form,
                &Form::pasteIndexAt, pasteAt},
    TreeCommand{"Cut Index", Level::Object, 2, "Ctrl+X", TreeCommand::Window, &Form::cutIndex,
                objects},
    TreeCommand{"Remove Sub", Level::SubIndex, 0, "Del", TreeCommand::Form, &Form::deleteSub,
                removeSub},
    TreeCommand{"Duplicate Sub", Level::SubIndex, 0, "Ctrl+D", TreeCommand::Window,
                &Form::duplicateSub, subindices},
    TreeCommand{"Rename", Level::SubIndex, 0, "F2", TreeCommand::View, &Form::renameCurrent,
                rename},
    TreeCommand{"Add Sub at next free position", Level::SubIndex, 1, "Ins", TreeCommand::Form,
                &Form::addNextSub, addNext},
    TreeCommand{"Increment sub index", Level::SubIndex, 2, "Ctrl+Shift+Down", TreeCommand::Form,
                &Form::insertSubGapBefore, increment},
    TreeCommand{"Decrement sub index", Level::SubIndex, 2, "Ctrl+Shift+Up", TreeCommand::Form,
                &Form::insertSubGapAfter, decrement},
    TreeCommand{"Move sub index to ...", Level::SubIndex, 2, "Ctrl+Shift+M", TreeCommand::Form,
                &Form::moveSubTo, move},
    TreeCommand{"Paste Index .. ", Level::Segment, 0, "Ctrl+Shift+V", TreeCommand::Form,
                &Form::pasteIndexAt, pasteAt},
};

} // namespace

std::span<const TreeCommand> TreeCommand::all()
{
    return commands;
}

EditResult mayDoAction(const TreeSituation &situation, int action)
{
    const bool onSubIndex = situation.current.level == Level::SubIndex;
    if (situation.current.level != Level::Object && !onSubIndex)
        return nothingSelected();
    switch (action) {
    case BaseMainForm::Delete:
        return onSubIndex ? removeSub(situation) : objects(situation);
    case BaseMainForm::Duplicate:
        return onSubIndex ? subindices(situation) : objects(situation);
    case BaseMainForm::Copy:
    case BaseMainForm::Cut:
        return onSubIndex ? nothingSelected() : objects(situation);
    case BaseMainForm::Paste:
        return onSubIndex ? nothingSelected() : paste(situation);
    default:
        return nothingSelected();
    }
}

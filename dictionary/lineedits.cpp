#include "dictionary/lineedits.h"

#include "dictionary/edittransaction.h"
#include "dictionary/entryrules.h"

#include <algorithm>
#include <array>

namespace {

using Command = LineEdits::Command;
using Record = ObjectDataBase::SUBINDEX_DATA_T;

constexpr quint8 notInEds = 0;
constexpr quint8 asDefaultValue = 1;

struct Row
{
    Command command;
    SubIndexField field;
    void (*apply)(Record &);
};

constexpr std::array rows = {
    Row{Command::SetHasDefault, SubIndexField::HasDefault,
        [](Record &data) { data.defaultineds = true; }},
    Row{Command::ClearHasDefault, SubIndexField::HasDefault,
        [](Record &data) { data.defaultineds = false; }},
    Row{Command::SetLimitCheck, SubIndexField::LimitCheck,
        [](Record &data) {
            if (!data.limitineds)
                EntryRules::setLimitCheck(data, true);
        }},
    Row{Command::ClearLimitCheck, SubIndexField::LimitCheck,
        [](Record &data) { data.limitineds = false; }},
    Row{Command::SetDefaultInEds, SubIndexField::DefaultInEds,
        [](Record &data) { data.writedefaulttoeds = asDefaultValue; }},
    Row{Command::ClearDefaultInEds, SubIndexField::DefaultInEds,
        [](Record &data) { data.writedefaulttoeds = notInEds; }},
    Row{Command::MakeManagedVariables, SubIndexField::Implementation,
        [](Record &data) {
            if (!EntryRules::hasSize(data.datatype))
                data.implementation = CANopen::ManagedVariable;
        }},
};

} // namespace

EditResult LineEdits::run(const EditContext &context, Command command, qsizetype *changed)
{
    // A command for all objects is one for those that only experts change.
    if (EditResult allowed = context.rights.restructure(ObjectRanges::communication.low); !allowed)
        return allowed;
    const Row &row = *std::ranges::find(rows, command, &Row::command);
    EditTransaction edit(context.store);
    qsizetype count = 0;
    ObjectWalk walk = ObjectWalk::cached(context.store, context.line);
    for (qsizetype i = 0; i < walk.size(); ++i) {
        const DictionaryObject &object = walk.at(i);
        for (const DictionaryEntry &entry : object.entries) {
            Record data = entry.data;
            if (!context.rights.edit(object.index, entry.subindex, data, row.field))
                continue;
            row.apply(data);
            if (data == entry.data)
                continue;
            edit.change(context.line, object.index)->find(entry.subindex)->data = data;
            ++count;
        }
    }
    edit.spreadShared(context.line);
    EditResult result = edit.commit();
    if (result && changed != nullptr)
        *changed = count;
    return result;
}

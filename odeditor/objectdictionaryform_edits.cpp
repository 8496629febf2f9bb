#include "odeditor/objectdictionaryform.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "dictionary/freenumbers.h"
#include "dictionary/lineedits.h"
#include "dictionary/objectedits.h"
#include "dictionary/objectwalk.h"
#include "dictionary/recordedits.h"
#include "dictionary/segments.h"
#include "dictionary/subindexedits.h"
#include "gui/guihelper.h"
#include "gui/indexdestinationdialog.h"
#include "gui/subselectdialog.h"
#include "odeditor/selectsubindexdialog.h"
#include "odeditor/tolvextreewidget.h"
#include "odeditor/treecommands.h"
#include "store/undomanager.h"
#include "store/usersettings.h"

#include <QMenu>
#include <QShortcut>

#include <array>
#include <set>

namespace {

using Level = TreeRow::Level;
using Key = DictionaryTree::Key;

struct ExtraCommand
{
    const char *text;
    LineEdits::Command command;
};

constexpr std::array extraCommands = {
    ExtraCommand{"Set 'default' attribute for all objects", LineEdits::Command::SetHasDefault},
    ExtraCommand{"Clear 'default' attribute for all objects", LineEdits::Command::ClearHasDefault},
    ExtraCommand{"Set 'limit check' attribute for all objects", LineEdits::Command::SetLimitCheck},
    ExtraCommand{"Clear 'limit check' attribute for all objects",
                 LineEdits::Command::ClearLimitCheck},
    ExtraCommand{"Set 'default in EDS' attribute for all objects to 'as defaultvalue'",
                 LineEdits::Command::SetDefaultInEds},
    ExtraCommand{"Clear 'default EDS' attribute for all objects",
                 LineEdits::Command::ClearDefaultInEds},
    ExtraCommand{"Implementation type 'managed variables' for all objects",
                 LineEdits::Command::MakeManagedVariables},
};

QList<TreeRow> rowsOf(const QList<Key> &keys)
{
    QList<TreeRow> rows;
    for (const auto &[index, subindex] : keys)
        rows.append(TreeRow::ofSubIndex(index, subindex));
    return rows;
}

QList<TreeRow> rowsOf(const QList<quint16> &indices)
{
    QList<TreeRow> rows;
    for (const quint16 index : indices)
        rows.append(TreeRow::ofObject(index));
    return rows;
}

} // namespace

TreeSituation ObjectDictionaryForm::situation() const
{
    return {.context = editContext(),
            .current = m_tree->current(),
            .objects = m_tree->selectedObjects(),
            .subindices = m_tree->selectedSubIndices(),
            .hasCopied = !m_clipboard.isEmpty()};
}

// --- Menus and keys -----------------------------------------------------------------------------

void ObjectDictionaryForm::makeShortcuts()
{
    std::set<QString> made;
    for (const TreeCommand &command : TreeCommand::all()) {
        const QString keys = QString::fromLatin1(command.keys);
        if (command.keyOwner != TreeCommand::Form || !made.insert(keys).second)
            continue;
        // The keys of a command on the view's rows are none of the field in which one is renamed.
        auto *shortcut = new QShortcut(QKeySequence(keys), m_view);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, [this, keys] { runByKeys(keys); });
    }
    auto *find = new QShortcut(QKeySequence(QKeySequence::Find), this);
    find->setContext(Qt::WidgetWithChildrenShortcut);
    connect(find, &QShortcut::activated, this, &ObjectDictionaryForm::focusFilter);
}

void ObjectDictionaryForm::runByKeys(const QString &keys)
{
    if (database() == nullptr)
        return;
    const TreeSituation now = situation();
    for (const TreeCommand &command : TreeCommand::all()) {
        if (command.level != now.current.level || keys != QLatin1String(command.keys))
            continue;
        if (const EditResult possible = command.may(now); possible)
            (this->*command.run)();
        else
            context().tell(possible.reason());
        return;
    }
}

void ObjectDictionaryForm::displayContextMenu(QPoint point)
{
    QMenu menu(this);
    menu.setToolTipsVisible(true);
    if (database() != nullptr && m_view->itemAt(point) != nullptr)
        addCommands(menu);
    if (!menu.isEmpty())
        menu.addSeparator();
    m_view->addViewActions(menu);
    menu.exec(m_view->viewport()->mapToGlobal(point));
}

void ObjectDictionaryForm::addCommands(QMenu &menu)
{
    const TreeSituation now = situation();
    int group = 0;
    for (const TreeCommand &command : TreeCommand::all()) {
        if (command.level != now.current.level)
            continue;
        if (command.group != group)
            menu.addSeparator();
        group = command.group;
        const EditResult possible = command.may(now);
        QAction *action = menu.addAction(QString::fromLatin1(command.text));
        action->setShortcut(QKeySequence(QString::fromLatin1(command.keys)));
        action->setShortcutVisibleInContextMenu(true);
        action->setEnabled(possible.isDone());
        action->setToolTip(possible.reason());
        connect(action, &QAction::triggered, this, command.run);
    }
    if (now.current.level == Level::Segment && m_expert)
        addExtraCommands(menu);
}

void ObjectDictionaryForm::addExtraCommands(QMenu &menu)
{
    menu.addSeparator();
    for (const ExtraCommand &row : extraCommands) {
        QAction *action = menu.addAction(QString::fromLatin1(row.text));
        action->setData(int(row.command));
        connect(action, &QAction::triggered, this, &ObjectDictionaryForm::handleHiddenExtraCommand);
    }
    menu.addSeparator();
    if (m_tree->current().index == ObjectRanges::communication.low) {
        QAction *action = menu.addAction(QStringLiteral("Clear PDOs"));
        action->setEnabled(!ObjectEdits::pdoObjects(editContext()).isEmpty());
        connect(action, &QAction::triggered, this, &ObjectDictionaryForm::clearPDOs);
    }
    connect(menu.addAction(QStringLiteral("Clear segment (delete all objects)")),
            &QAction::triggered, this, &ObjectDictionaryForm::clearSegment);
}

bool ObjectDictionaryForm::canDoAction(int action) const
{
    return database() != nullptr && mayDoAction(situation(), action).isDone();
}

void ObjectDictionaryForm::doAction(int action)
{
    if (database() == nullptr)
        return;
    if (const EditResult possible = mayDoAction(situation(), action); !possible) {
        context().tell(possible.reason());
        return;
    }
    const bool onSubIndex = m_tree->current().level == Level::SubIndex;
    switch (action) {
    case Copy:
        copyIndex();
        break;
    case Cut:
        cutIndex();
        break;
    case Paste:
        pasteIndex();
        break;
    case Delete:
        onSubIndex ? deleteSub() : deleteIndex();
        break;
    case Duplicate:
        onSubIndex ? duplicateSub() : duplicateIndex();
        break;
    default:
        break;
    }
}

// --- The frame of every edit --------------------------------------------------------------------

/// What is being typed in the pane is an edit, and a step, of its own.
void ObjectDictionaryForm::finishInput()
{
    saveData();
    if (context().undo != nullptr)
        context().undo->handleDebounceTimeout();
}

bool ObjectDictionaryForm::run(const Edit &edit)
{
    if (database() == nullptr)
        return false;
    finishInput();
    m_view->setUpdatesEnabled(false);
    const EditResult result = edit(editContext());
    // The last change is still waited with; the rows that it makes are to be selected.
    updateTimerSlot();
    m_view->setUpdatesEnabled(true);
    if (!result)
        refuse(result.reason());
    emit actionsChanged();
    return result.isDone();
}

void ObjectDictionaryForm::refuse(const QString &reason)
{
    GuiHelper::showMessageBox(this, GuiHelper::boxTitle(), reason, QString(), QMessageBox::Ok,
                              QMessageBox::Warning);
}

bool ObjectDictionaryForm::confirmDelete(qsizetype count, bool always)
{
    const bool warns = UserSettings::general(QStringLiteral("warnbeforedeleting")).toInt() != 0;
    if (!always && (!warns || count < 2))
        return true;
    return GuiHelper::showMessageBox(
               this, {.title = GuiHelper::boxTitle(),
                      .text = QStringLiteral("Do you really want to delete %1 items?").arg(count),
                      .informativeText = {},
                      .buttons = QMessageBox::Yes | QMessageBox::No,
                      .icon = QMessageBox::Question,
                      .defaultButton = QMessageBox::No,
                      .extraButtons = {}}) == QMessageBox::Yes;
}

// --- Objects ------------------------------------------------------------------------------------

/// The cursor goes on to the row behind, before the rows go one by one.
bool ObjectDictionaryForm::runRemoval(const QList<TreeRow> &rows, const Edit &edit)
{
    const TreeRow next = m_tree->neighbourOf(rows);
    finishInput();
    m_tree->select({next});
    const bool done = run(edit);
    if (!done)
        m_tree->select(rows);
    showRow(m_tree->current());
    return done;
}

void ObjectDictionaryForm::deleteIndex()
{
    const QList<quint16> indices = m_tree->selectedObjects();
    if (indices.isEmpty() || database() == nullptr ||
        !confirmDelete(ObjectEdits::removedCount(editContext(), indices)))
        return;
    runRemoval(rowsOf(indices),
               [&](const EditContext &where) { return ObjectEdits::remove(where, indices); });
}

void ObjectDictionaryForm::duplicateIndex()
{
    const QList<quint16> indices = m_tree->selectedObjects();
    QList<quint16> made;
    if (!indices.isEmpty() && run([&](const EditContext &where) {
            return ObjectEdits::duplicate(where, indices, &made);
        }))
        showRows(rowsOf(made));
}

void ObjectDictionaryForm::copyIndex()
{
    const QList<quint16> indices = m_tree->selectedObjects();
    if (indices.isEmpty() || database() == nullptr)
        return;
    finishInput();
    if (!m_clipboard.copy(*database(), line(), indices))
        refuse(tr("The objects could not be read."));
    else if (indices.size() == 1)
        context().tell(tr("Object %1 was copied.").arg(IndexText::hex(indices.first())));
    else
        context().tell(tr("%1 objects were copied.").arg(indices.size()));
    emit actionsChanged();
}

void ObjectDictionaryForm::cutIndex()
{
    const QList<quint16> indices = m_tree->selectedObjects();
    if (indices.isEmpty() || database() == nullptr ||
        !confirmDelete(ObjectEdits::removedCount(editContext(), indices)))
        return;
    runRemoval(rowsOf(indices), [&](const EditContext &where) {
        return ObjectEdits::cut(where, indices, m_clipboard);
    });
}

void ObjectDictionaryForm::pasteIndex()
{
    const TreeRow current = m_tree->current();
    QList<quint16> made;
    if (current.level != Level::None && run([&](const EditContext &where) {
            return ObjectEdits::paste(where, m_clipboard, current.index, &made);
        }))
        showRows(rowsOf(made));
}

void ObjectDictionaryForm::pasteIndexAt()
{
    if (m_clipboard.isEmpty() || database() == nullptr)
        return;
    const ObjectRange targets = editContext().rights.targets();
    const DictionaryObject &first = m_clipboard.objects().front();
    const quint16 wanted = std::clamp(m_tree->current().index, targets.low, targets.high);
    IndexDestinationDialog dialog(*database(), line(), wanted, first.data.name, this);
    dialog.setAllowedRange(targets.low, targets.high);
    dialog.setFollowers(int(m_clipboard.objects().size()) - 1, m_clipboard.distanceOfLast());
    if (GuiHelper::execDialog(dialog) != QDialog::Accepted)
        return;
    const quint16 index = dialog.targetIndex();
    if (!run([&](const EditContext &where) {
            return ObjectEdits::pasteAt(where, m_clipboard, index, dialog.name());
        }))
        return;
    QList<TreeRow> rows;
    for (const DictionaryObject &object : m_clipboard.objects())
        rows.append(TreeRow::ofObject(quint16(index + object.index - first.index)));
    showRows(rows);
}

void ObjectDictionaryForm::clearSegment()
{
    const DictionarySegment *segment = segmentOf(m_tree->current().index);
    if (segment != nullptr && database() != nullptr)
        clear(ObjectEdits::objectsIn(editContext(), segment->objects));
}

void ObjectDictionaryForm::clearPDOs()
{
    if (database() != nullptr)
        clear(ObjectEdits::pdoObjects(editContext()));
}

void ObjectDictionaryForm::clear(const QList<quint16> &indices)
{
    if (indices.isEmpty()) {
        context().tell(tr("There is nothing to delete."));
        return;
    }
    if (!confirmDelete(ObjectEdits::removedCount(editContext(), indices), true))
        return;
    const DictionarySegment *segment = segmentOf(indices.first());
    finishInput();
    m_tree->select({TreeRow::ofSegment(segment->objects.low)});
    run([&](const EditContext &where) { return ObjectEdits::remove(where, indices); });
    showRow(m_tree->current());
}

void ObjectDictionaryForm::handleHiddenExtraCommand()
{
    const auto *action = qobject_cast<const QAction *>(sender());
    if (action == nullptr || !action->data().isValid())
        return;
    const auto command = LineEdits::Command(action->data().toInt());
    qsizetype changed = 0;
    if (run([&](const EditContext &where) { return LineEdits::run(where, command, &changed); }))
        context().tell(tr("%1 subindices were changed.").arg(changed));
}

// --- New objects --------------------------------------------------------------------------------

bool ObjectDictionaryForm::confirmReplace(quint16 index, QMessageBox::StandardButton byDefault)
{
    if (!database()->indexExists(line(), index))
        return true;
    return GuiHelper::showMessageBox(
               this, {.title = QCoreApplication::applicationName(),
                      .text = QStringLiteral("The existing index %1 must be overwritten. Proceed?")
                                  .arg(IndexText::hex(index)),
                      .informativeText = {},
                      .buttons = QMessageBox::Yes | QMessageBox::No,
                      .icon = QMessageBox::Warning,
                      .defaultButton = byDefault,
                      .extraButtons = {}}) == QMessageBox::Yes;
}

void ObjectDictionaryForm::addObject(quint32 index, const QString &objectType)
{
    if (database() == nullptr)
        return;
    if (const EditResult allowed = editContext().rights.addByHand(index); !allowed) {
        refuse(allowed.reason());
        return;
    }
    const auto number = quint16(index);
    if (!confirmReplace(number, QMessageBox::No) || !run([&](const EditContext &where) {
            return ObjectEdits::add(where, index, COHelper::string2objectCode(objectType),
                                    ObjectEdits::Existing::Replace);
        }))
        return;
    showRows({TreeRow::ofObject(number)});
    renameCurrent();
}

void ObjectDictionaryForm::addImported(quint16 index)
{
    if (database() == nullptr)
        return;
    if (const EditResult allowed = editContext().rights.restructure(index); !allowed) {
        refuse(allowed.reason());
        return;
    }
    if (confirmReplace(index, QMessageBox::Yes) && run([&](const EditContext &where) {
            return ObjectEdits::addImported(where, {index}, ObjectEdits::Existing::Replace);
        }))
        showRows({TreeRow::ofObject(index)});
}

// --- Subindices ---------------------------------------------------------------------------------

void ObjectDictionaryForm::deleteSub()
{
    const QList<Key> keys = m_tree->selectedSubIndices();
    if (keys.isEmpty() || database() == nullptr ||
        !confirmDelete(SubIndexEdits::removedCount(editContext(), keys)))
        return;
    runRemoval(rowsOf(keys),
               [&](const EditContext &where) { return SubIndexEdits::remove(where, keys); });
}

void ObjectDictionaryForm::duplicateSub()
{
    const QList<Key> keys = m_tree->selectedSubIndices();
    QList<Key> made;
    if (!keys.isEmpty() &&
        run([&](const EditContext &where) { return SubIndexEdits::duplicate(where, keys, &made); }))
        showRows(rowsOf(made));
}

void ObjectDictionaryForm::addNextSub()
{
    const quint16 index = m_tree->current().index;
    quint8 made = 0;
    if (run([&](const EditContext &where) { return SubIndexEdits::addNext(where, index, &made); }))
        showRows({TreeRow::ofSubIndex(index, made)});
}

void ObjectDictionaryForm::addSpecificSub()
{
    if (database() == nullptr)
        return;
    finishInput();
    const quint16 index = m_tree->current().index;
    const QList<quint8> numbers =
        FreeNumbers::definedSubindices(readDictionaryObject(*database(), line(), index));
    if (numbers.isEmpty()) {
        refuse(tr("Object %1 has no free subindex.").arg(IndexText::hex(index)));
        return;
    }
    SelectSubindexDialog dialog(numbers, this);
    if (GuiHelper::execDialog(dialog) == QDialog::Accepted && run([&](const EditContext &where) {
            return SubIndexEdits::add(where, index, dialog.subindex());
        }))
        showRows({TreeRow::ofSubIndex(index, dialog.subindex())});
}

void ObjectDictionaryForm::insertSubGapBefore()
{
    const TreeRow row = m_tree->current();
    if (run([&](const EditContext &where) {
            return SubIndexEdits::increment(where, {row.index, row.subindex});
        }))
        showRows({TreeRow::ofSubIndex(row.index, quint8(row.subindex + 1))});
}

void ObjectDictionaryForm::insertSubGapAfter()
{
    const TreeRow row = m_tree->current();
    if (run([&](const EditContext &where) {
            return SubIndexEdits::decrement(where, {row.index, row.subindex});
        }))
        showRows({TreeRow::ofSubIndex(row.index, quint8(row.subindex - 1))});
}

void ObjectDictionaryForm::moveSubTo()
{
    const TreeRow row = m_tree->current();
    if (row.level != Level::SubIndex || database() == nullptr)
        return;
    finishInput();
    SubSelectDialog dialog(*database(), line(), row.index, this);
    if (GuiHelper::execDialog(dialog) != QDialog::Accepted)
        return;
    const Key to(dialog.targetIndex(), dialog.targetSubindex());
    if (!run([&](const EditContext &where) {
            return SubIndexEdits::move(where, {row.index, row.subindex}, dialog.targetLine(), to);
        }))
        return;
    if (dialog.targetLine() == line())
        showRows({TreeRow::ofSubIndex(to.first, to.second)});
    else if (context().navigator != nullptr)
        context().navigator->gotoSubIndex(dialog.targetLine(), to.first, to.second);
}

// --- Names --------------------------------------------------------------------------------------

void ObjectDictionaryForm::renameCurrent()
{
    if (m_view->currentItem() == nullptr)
        return;
    finishInput();
    m_view->editItem(m_view->currentItem());
}

/// Null if the user may not change it.
QString ObjectDictionaryForm::storedName(const TreeRow &row) const
{
    if (database() == nullptr)
        return {};
    const EditRights rights = editContext().rights;
    QString name;
    if (row.level == Level::Object) {
        if (!rights.edit(row.index, ObjectField::Name))
            return {};
        name = database()->getIndexName(line(), row.index);
    } else {
        ObjectDataBase::SUBINDEX_DATA_T data;
        if (!database()->getSubIndexData(line(), row.index, row.subindex, data) ||
            !rights.edit(row.index, row.subindex, data, SubIndexField::Name))
            return {};
        name = data.name;
    }
    return name.isNull() ? QString(QLatin1String("")) : name;
}

void ObjectDictionaryForm::rename(const TreeRow &row, const QString &name)
{
    if (database() == nullptr || name == storedName(row))
        return;
    run([&](const EditContext &where) {
        if (row.level == Level::Object) {
            ObjectDataBase::INDEX_DATA_T data;
            if (!where.store.getIndexData(where.line, row.index, data))
                return EditResult::refused(
                    tr("There is no object %1.").arg(IndexText::hex(row.index)));
            data.name = name;
            return RecordEdits::saveObject(where, row.index, data);
        }
        ObjectDataBase::SUBINDEX_DATA_T data;
        if (!where.store.getSubIndexData(where.line, row.index, row.subindex, data))
            return EditResult::refused(tr("There is no subindex %1.").arg(row.subindex));
        data.name = name;
        return RecordEdits::saveEntries(where, row.index, {{row.subindex, data}});
    });
}

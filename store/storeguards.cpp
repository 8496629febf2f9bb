#include "store/storeguards.h"

#include "store/objectdatabase_p.h"

#include <utility>

namespace {

/// Both as one; kind 14 where they have too little in common.
ObjectDataBase::ChangeSet merged(const ObjectDataBase::ChangeSet &one,
                                 const ObjectDataBase::ChangeSet &other)
{
    const auto isOfSameObject = [&] {
        return one.kind == other.kind && one.index == other.index && one.line == other.line &&
               one.pgn == other.pgn && one.canid == other.canid && one.direction == other.direction;
    };
    if (!isOfSameObject())
        return {.kind = ObjectDataBase::ProjectReplaced};
    ObjectDataBase::ChangeSet both = one;
    if (one.subindex != other.subindex)
        both.subindex = 0;
    if (one.spn != other.spn)
        both.spn = 0;
    if (one.element != other.element)
        both.element = 0;
    return both;
}

} // namespace

// --- block --------------------------------------------------------------------------------------

StoreBlock::StoreBlock(ObjectDataBase &store, Holds holds)
    : m_store(store), m_isFirstOfThread(store.d->runner.enterBlock()),
      m_refusedWrites(store.d->writesBlocked)
{
    if (holds == Holds::Writes)
        m_store.d->writesBlocked = true;
    if (m_isFirstOfThread)
        emit m_store.blockStateChanged(true);
}

StoreBlock::~StoreBlock()
{
    m_store.d->writesBlocked = m_refusedWrites;
    if (m_isFirstOfThread && m_store.d->runner.leaveBlock())
        emit m_store.blockStateChanged(false);
}

// --- generation ---------------------------------------------------------------------------------

StoreGeneration::StoreGeneration(ObjectDataBase &store)
    : m_store(store), m_wasGenerating(store.isGenerating())
{
    m_store.setGenerating(true);
}

StoreGeneration::~StoreGeneration()
{
    m_store.setGenerating(m_wasGenerating);
}

// --- silence ------------------------------------------------------------------------------------

StoreSilence::StoreSilence(ObjectDataBase &store, As as)
    : m_store(&store), m_as(as), m_wasSilent(store.signalsBlocked())
{
    if (m_as == As::Block)
        emit m_store->blockStateChanged(true);
    m_store->blockSignals(true);
}

void StoreSilence::end()
{
    if (m_store == nullptr)
        return;
    ObjectDataBase &store = *std::exchange(m_store, nullptr);
    // Somebody may have ended all silence meanwhile.
    store.blockSignals(m_wasSilent && store.signalsBlocked());
    if (m_as == As::Block)
        emit store.blockStateChanged(false);
}

void StoreSilence::endAndTell()
{
    if (m_store == nullptr)
        return;
    ObjectDataBase &store = *m_store;
    end();
    emit store.databaseWriteExecuted();
    emit store.updateNotify({.kind = ObjectDataBase::ProjectReplaced});
}

// --- bulk change --------------------------------------------------------------------------------

StoreBulkChange::StoreBulkChange(ObjectDataBase &store)
    : m_store(store), m_isOpen(store.d->beginBulk())
{
    if (m_isOpen)
        m_before = m_store.d->bulk.change;
}

StoreBulkChange::~StoreBulkChange()
{
    if (m_isOpen)
        m_store.d->endBulk(false);
}

bool StoreBulkChange::commit()
{
    if (!std::exchange(m_isOpen, false))
        return false;
    std::optional<ObjectDataBase::ChangeSet> &change = m_store.d->bulk.change;
    if (m_told)
        change = m_before ? merged(*m_before, *m_told) : *m_told;
    return m_store.d->endBulk(true);
}

bool ObjectDataBase::State::beginBulk()
{
    if (refusesWrites())
        return false;
    bulk.mutex.lock();
    if (bulk.depth++ > 0)
        return true;
    bulk.block = std::make_unique<StoreBlock>(face);
    // The working copy has no journal otherwise, and so no way back.
    if (!runner.exec(QStringLiteral("PRAGMA journal_mode = MEMORY"), Q_FUNC_INFO) ||
        !runner.exec(QStringLiteral("BEGIN"), Q_FUNC_INFO)) {
        bulk.depth = 0;
        bulk.block.reset();
        bulk.mutex.unlock();
        return false;
    }
    bulk.isFailed = false;
    bulk.hasWritten = false;
    bulk.change.reset();
    bulk.thread = QThread::currentThreadId();
    return true;
}

bool ObjectDataBase::State::endBulk(bool keep)
{
    bulk.isFailed |= !keep;
    if (--bulk.depth > 0) {
        bulk.mutex.unlock();
        return keep;
    }
    const bool kept = !bulk.isFailed && runner.exec(QStringLiteral("COMMIT"), Q_FUNC_INFO);
    if (!kept) {
        runner.exec(QStringLiteral("ROLLBACK"), Q_FUNC_INFO);
        clearCaches();
        strings.rebuild();
    }
    runner.exec(QStringLiteral("PRAGMA journal_mode = OFF"), Q_FUNC_INFO);
    const bool tellWrite = kept && bulk.hasWritten;
    const std::optional<ChangeSet> change = kept ? bulk.change : std::nullopt;
    bulk.thread = nullptr;
    std::unique_ptr<StoreBlock> block = std::move(bulk.block);
    bulk.mutex.unlock();
    block.reset();
    if (tellWrite)
        emit face.databaseWriteExecuted();
    if (change)
        emit face.updateNotify(*change);
    return kept;
}

void ObjectDataBase::State::notify(const ChangeSet &change)
{
    if (bulk.thread.load() != QThread::currentThreadId())
        emit face.updateNotify(change);
    else
        bulk.change = bulk.change ? merged(*bulk.change, change) : change;
}

void ObjectDataBase::State::tellWrite()
{
    if (bulk.thread.load() != QThread::currentThreadId())
        emit face.databaseWriteExecuted();
    else
        bulk.hasWritten = true;
}

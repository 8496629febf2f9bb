#pragma once

#include "store/objectdatabase.h"

#include <optional>

/// Guards hold a mode of a store for as long as they live; their end brings back what was before.
/// They belong to the thread that makes them, and end there; the store outlives them.

/// Only threads with a block run statements, all others wait and keep their events going. Blocks
/// nest. The first one and the end of the last one are told by `blockStateChanged`.
class StoreBlock
{
public:
    enum class Holds {
        Statements, ///< those of other threads
        Writes      ///< of everybody, which are refused; and statements of other threads
    };

    explicit StoreBlock(ObjectDataBase &store, Holds holds = Holds::Statements);
    ~StoreBlock();
    StoreBlock(const StoreBlock &) = delete;
    StoreBlock &operator=(const StoreBlock &) = delete;

private:
    ObjectDataBase &m_store;
    bool m_isFirstOfThread;
    bool m_refusedWrites;
};

/// Generation mode: writes are refused, reads come from the caches where they are filled. Its end
/// ends what `loadSPNCache` has kept.
class StoreGeneration
{
public:
    explicit StoreGeneration(ObjectDataBase &store);
    ~StoreGeneration();
    StoreGeneration(const StoreGeneration &) = delete;
    StoreGeneration &operator=(const StoreGeneration &) = delete;

private:
    ObjectDataBase &m_store;
    bool m_wasGenerating;
};

/// The store sends no signal, whatever happens to it: for work that nobody is to follow. Who makes
/// it sees to it that what is shown afterwards is right.
class StoreSilence
{
public:
    enum class As {
        Nothing,
        Block ///< who waits for the ends of blocks takes the silence for one
    };

    explicit StoreSilence(ObjectDataBase &store, As as = As::Nothing);
    ~StoreSilence() { end(); }
    StoreSilence(const StoreSilence &) = delete;
    StoreSilence &operator=(const StoreSilence &) = delete;

    /// Before the guard's own end.
    void end();
    /// The same, and tells that the project has changed as a whole: kind 14, once, and one write.
    void endAndTell();

private:
    ObjectDataBase *m_store;
    As m_as;
    bool m_wasSilent;
};

/// Many changes as one. What they tell is told once, behind `commit`: as it is if it is about one
/// subindex or signal, without their number if about several of one object or message, else as
/// kind 14. They are one undo step. Without `commit`, nothing of them stays: on a failure the
/// project is as it was.
///
/// Other threads' statements wait. Bulk changes nest: the outermost one counts, and fails if one
/// inside of it was not committed. Within one, no project is opened and no snapshot taken.
class StoreBulkChange
{
public:
    explicit StoreBulkChange(ObjectDataBase &store);
    ~StoreBulkChange();
    StoreBulkChange(const StoreBulkChange &) = delete;
    StoreBulkChange &operator=(const StoreBulkChange &) = delete;

    /// What is told instead of the changes themselves.
    void tellAs(const ObjectDataBase::ChangeSet &change) { m_told = change; }
    /// False if writes are refused, or if the changes can't be kept; then they are taken back.
    [[nodiscard]] bool commit();

private:
    ObjectDataBase &m_store;
    bool m_isOpen;
    std::optional<ObjectDataBase::ChangeSet> m_before; ///< what a bulk change around it has to tell
    std::optional<ObjectDataBase::ChangeSet> m_told;
};

#include "store/objectcache.h"

#include <algorithm>
#include <functional>
#include <mutex>

void ObjectCache::Subs::reserve(qsizetype count)
{
    m_places.reserve(count);
    m_keys.reserve(count);
    m_records.reserve(size_t(count));
}

void ObjectCache::Subs::insert(quint32 key, SUBINDEX_DATA_T &&data)
{
    m_keys.append(key);
    m_places.insert(key, qsizetype(m_records.size()));
    m_records.push_back(std::move(data));
}

const ObjectCache::SUBINDEX_DATA_T *ObjectCache::Subs::find(quint32 key) const
{
    const auto found = m_places.constFind(key);
    return found == m_places.constEnd() ? nullptr : &m_records[size_t(*found)];
}

ObjectCache::SUBINDEX_DATA_T *ObjectCache::Subs::find(quint32 key)
{
    const auto found = m_places.constFind(key);
    return found == m_places.constEnd() ? nullptr : &m_records[size_t(*found)];
}

QList<quint32> ObjectCache::Subs::sortedKeys() const
{
    // Rows mostly lie in the order of their keys; then the list is right as it is.
    if (m_keys.size() == m_places.size() &&
        std::is_sorted(m_keys.begin(), m_keys.end(), std::less_equal<>()))
        return m_keys;
    QList<quint32> keys = m_places.keys();
    std::sort(keys.begin(), keys.end());
    return keys;
}

void ObjectCache::setLine(quint8 line, Subs subs, Walk walk)
{
    const std::unique_lock lock(m_mutex);
    // Field by field, since inserting a record would copy both.
    LineCache &cache = m_lines[line];
    cache.subs = std::move(subs);
    cache.walk = std::move(walk);
    cache.walkValid = true;
}

void ObjectCache::setIndex(quint8 line, quint16 index, Subs &subs)
{
    const std::unique_lock lock(m_mutex);
    LineCache &cache = m_lines[line];
    for (int subindex = 0; subindex <= 0xFF; ++subindex)
        cache.subs.remove(key(index, quint8(subindex)));
    for (const quint32 key : subs.sortedKeys())
        cache.subs.insert(key, std::move(*subs.find(key)));
}

void ObjectCache::clear(quint8 line)
{
    const std::unique_lock lock(m_mutex);
    m_lines.remove(line);
}

void ObjectCache::clear()
{
    const std::unique_lock lock(m_mutex);
    m_lines.clear();
}

void ObjectCache::dropWalk(quint8 line)
{
    const std::unique_lock lock(m_mutex);
    if (const auto found = m_lines.find(line); found != m_lines.end() && found->walkValid) {
        found->walk.clear();
        found->walkValid = false;
    }
}

std::optional<ObjectCache::SUBINDEX_DATA_T> ObjectCache::sub(quint8 line, quint16 index,
                                                             quint8 subindex) const
{
    const std::shared_lock lock(m_mutex);
    const auto cache = m_lines.constFind(line);
    if (cache == m_lines.constEnd())
        return std::nullopt;
    const SUBINDEX_DATA_T *found = cache->subs.find(key(index, subindex));
    return found == nullptr ? std::nullopt : std::make_optional(*found);
}

bool ObjectCache::replaceSub(quint8 line, quint16 index, quint8 subindex,
                             const SUBINDEX_DATA_T &data)
{
    const std::unique_lock lock(m_mutex);
    const auto cache = m_lines.find(line);
    if (cache == m_lines.end())
        return false;
    SUBINDEX_DATA_T *found = cache->subs.find(key(index, subindex));
    if (found == nullptr)
        return false;
    *found = data;
    return true;
}

void ObjectCache::removeSub(quint8 line, quint16 index, quint8 subindex)
{
    const std::unique_lock lock(m_mutex);
    if (const auto cache = m_lines.find(line); cache != m_lines.end())
        cache->subs.remove(key(index, subindex));
}

void ObjectCache::removeIndex(quint8 line, quint16 index)
{
    const std::unique_lock lock(m_mutex);
    const auto cache = m_lines.find(line);
    if (cache == m_lines.end() || cache->subs.isEmpty())
        return;
    for (int subindex = 0; subindex <= 0xFF; ++subindex)
        cache->subs.remove(key(index, quint8(subindex)));
}

bool ObjectCache::hasWalk(quint8 line) const
{
    const std::shared_lock lock(m_mutex);
    const auto cache = m_lines.constFind(line);
    return cache != m_lines.constEnd() && cache->walkValid;
}

std::optional<QList<quint16>> ObjectCache::indices(quint8 line, int low, int high) const
{
    const std::shared_lock lock(m_mutex);
    const auto cache = m_lines.constFind(line);
    if (cache == m_lines.constEnd() || !cache->walkValid)
        return std::nullopt;
    QList<quint16> result;
    if (low > 0xFFFF)
        return result;
    for (auto it = cache->walk.lowerBound(quint16(qMax(low, 0))); it != cache->walk.cend(); ++it) {
        if (high >= 0 && it.key() > high)
            break;
        if (it->hasObject)
            result.append(it.key());
    }
    return result;
}

std::optional<QList<quint8>> ObjectCache::subindices(quint8 line, quint16 index) const
{
    const std::shared_lock lock(m_mutex);
    const auto cache = m_lines.constFind(line);
    if (cache == m_lines.constEnd() || !cache->walkValid)
        return std::nullopt;
    const auto found = cache->walk.constFind(index);
    return found == cache->walk.constEnd() ? QList<quint8>() : found->subindices;
}

std::optional<ObjectCache::WalkEntry> ObjectCache::entry(quint8 line, quint16 index) const
{
    const std::shared_lock lock(m_mutex);
    const auto cache = m_lines.constFind(line);
    if (cache == m_lines.constEnd() || !cache->walkValid)
        return std::nullopt;
    return cache->walk.value(index);
}

#include "registers/combined_map.h"

#include <algorithm>
#include <cassert>
#include <exception>
#include <memory>
#include <new>
#include <utility>

namespace quillmere {
namespace {

std::size_t LinearBytes(u32 capacity) {
    return sizeof(TLinearElements) + capacity * sizeof(TRegisterElement);
}

TRegisterElement*
FindInArray(TRegisterElement* elements, u32 count, const TChessboardRegisterItem& item) {
    for (u32 i = 0; i < count; ++i) {
        if (elements[i].item == item)
            return elements + i;
    }
    return nullptr;
}

TRegisterElement* PlaceOf(CSortedElements& elements, const TChessboardRegisterItem& item) {
    return std::lower_bound(
        elements.data(),
        elements.data() + elements.size(),
        item,
        [](const TRegisterElement& element, const TChessboardRegisterItem& wanted) {
            return element.item < wanted;
        });
}

}  // namespace

TRegisterCombinedMap::TRegisterCombinedMap(CRegisterMemory& memory, u32 firstLinearCapacity)
    : m_memory(&memory), m_firstLinearCapacity(firstLinearCapacity) {
    assert(firstLinearCapacity >= 1 && firstLinearCapacity <= kLinearCapacity);
}

TRegisterCombinedMap::~TRegisterCombinedMap() {
    Clear(true);
}

// Containers

TLinearElements* TRegisterCombinedMap::NewLinear(u32 capacity) {
    return new (m_memory->Allocate(LinearBytes(capacity))) TLinearElements{0, capacity};
}

void TRegisterCombinedMap::FreeLinear(TLinearElements* elements) noexcept {
    m_memory->Free(elements, LinearBytes(elements->capacity));
}

CSortedElements* TRegisterCombinedMap::NewSorted(std::size_t capacity) {
    void* block = m_memory->Allocate(sizeof(CSortedElements));
    auto* elements = new (block) CSortedElements(CRegisterAllocator<TRegisterElement>(*m_memory));
    try {
        elements->reserve(capacity);
    } catch (...) {
        FreeSorted(elements);
        throw;
    }
    return elements;
}

void TRegisterCombinedMap::FreeSorted(CSortedElements* elements) noexcept {
    elements->~CSortedElements();
    m_memory->Free(elements, sizeof(CSortedElements));
}

// Look-up and insert

TRegisterElement* TRegisterCombinedMap::Find(const TChessboardRegisterItem& item, u32 hash) const {
    if (m_buckets == nullptr)
        return nullptr;
    const TRegisterBucket bucket = m_buckets[hash & (m_nBuckets - 1)];
    if (bucket.IsVoid())
        return nullptr;
    if (!bucket.IsSorted())
        return FindInArray(bucket.Linear()->Elements(), bucket.Linear()->count, item);
    CSortedElements& elements = *bucket.Sorted();
    TRegisterElement* place = PlaceOf(elements, item);
    return place != elements.data() + elements.size() && place->item == item ? place : nullptr;
}

void TRegisterCombinedMap::Add(const TRegisterElement& element, u32 hash) {
    assert(m_buckets != nullptr && Find(element.item, hash) == nullptr);
    TRegisterBucket& bucket = m_buckets[hash & (m_nBuckets - 1)];
    if (!bucket.IsSorted() && (bucket.IsVoid() || bucket.Linear()->count < kLinearCapacity)) {
        AddLinear(bucket, element);
    } else {
        // The converted bucket has room for the ninth element, so that nothing can fail behind it.
        if (!bucket.IsSorted())
            ConvertToSorted(bucket);
        AddSorted(*bucket.Sorted(), element);
    }
    NoteDepths(element);
}

void TRegisterCombinedMap::AddLinear(TRegisterBucket& bucket, const TRegisterElement& element) {
    TLinearElements* elements = bucket.Linear();
    if (elements == nullptr) {
        elements = NewLinear(m_firstLinearCapacity);
        bucket.SetLinear(elements);
    } else if (elements->count == elements->capacity) {
        TLinearElements* larger = NewLinear(std::min(2 * elements->capacity, kLinearCapacity));
        std::copy_n(elements->Elements(), elements->count, larger->Elements());
        larger->count = elements->count;
        FreeLinear(elements);
        bucket.SetLinear(larger);
        elements = larger;
    }
    elements->Elements()[elements->count++] = element;
}

void TRegisterCombinedMap::AddSorted(CSortedElements& elements, const TRegisterElement& element) {
    const auto index = PlaceOf(elements, element.item) - elements.data();
    elements.insert(elements.begin() + index, element);
}

void TRegisterCombinedMap::ConvertToSorted(TRegisterBucket& bucket) {
    TLinearElements* linear = bucket.Linear();
    CSortedElements* sorted = NewSorted(kFirstSortedCapacity);
    for (u32 i = 0; i < linear->count; ++i)
        AddSorted(*sorted, linear->Elements()[i]);
    FreeLinear(linear);
    bucket.SetSorted(sorted);
}

// Removal

u32 TRegisterCombinedMap::RemoveElements(u16 mateLimit, u16 noMateLimit) {
    if (m_buckets == nullptr)
        return 0;
    const u32 first = m_sweepCursor;
    m_sweepCursor = (m_sweepCursor + 1) & (m_nBuckets - 1);
    // Nothing is so shallow. A register that is full of deep verdicts, or short of memory for a cause
    // of its own, is swept for every depth there is, and must not be read through each time.
    if (std::max(mateLimit, noMateLimit) < m_leastDepth)
        return 0;
    const CRegisterMemory::CReserve reserve(*m_memory);
    const auto match = [=](const TRegisterElement& element) {
        return element.nMovesMate <= mateLimit && element.nMovesNoMate <= noMateLimit;
    };
    m_leastDepth = kNoDepth;
    u32 removed = 0;
    for (u32 i = 0; i < m_nBuckets; ++i)
        removed += RemoveFromBucket((first + i) & (m_nBuckets - 1), match);
    return removed;
}

template <class FMatch>
u32 TRegisterCombinedMap::RemoveFromBucket(u32 bucket, FMatch match) {
    TRegisterBucket& one = m_buckets[bucket];
    if (one.IsVoid())
        return 0;
    const u32 removed =
        one.IsSorted() ? RemoveFromSorted(*one.Sorted(), match) : RemoveFromLinear(one, match);
    const TView left = View(bucket);
    std::for_each_n(left.elements, left.count, [&](const auto& element) { NoteDepths(element); });
    return removed;
}

template <class FMatch>
u32 TRegisterCombinedMap::RemoveFromLinear(TRegisterBucket& bucket, FMatch match) {
    TLinearElements& linear = *bucket.Linear();
    TRegisterElement* elements = linear.Elements();
    const u32 before = linear.count;
    // The index advances behind a removal too: the sweep stays one pass, and the element that slid
    // into the gap waits for the next one.
    for (u32 i = 0; i < linear.count; ++i) {
        if (match(elements[i])) {
            std::copy(elements + i + 1, elements + linear.count, elements + i);
            --linear.count;
        }
    }
    const u32 removed = before - linear.count;
    if (linear.count == 0) {
        FreeLinear(&linear);
        bucket.SetLinear(nullptr);
    }
    return removed;
}

template <class FMatch>
u32 TRegisterCombinedMap::RemoveFromSorted(CSortedElements& elements, FMatch match) {
    constexpr u32 kFewMatches = 2;
    const auto matches = static_cast<u32>(std::count_if(elements.begin(), elements.end(), match));
    if (matches == 0)
        return 0;
    const std::size_t survivors = elements.size() - matches;
    if (matches > kFewMatches && RebuildWithout(elements, survivors, match))
        return matches;
    elements.erase(std::remove_if(elements.begin(), elements.end(), match), elements.end());
    // An empty sorted bucket stays sorted, but its array is freed.
    if (elements.empty())
        CSortedElements(elements.get_stored_allocator()).swap(elements);
    return matches;
}

// Puts the survivors into a smaller buffer. False, with nothing changed, if there is no memory.
template <class FMatch>
bool TRegisterCombinedMap::RebuildWithout(CSortedElements& elements,
                                          std::size_t survivors,
                                          FMatch match) {
    CSortedElements rebuilt(elements.get_stored_allocator());
    try {
        rebuilt.reserve(std::min(elements.capacity(), survivors * 3 / 2));
    } catch (const std::exception&) {
        return false;
    }
    for (const TRegisterElement& element : elements) {
        if (!match(element))
            rebuilt.push_back(element);
    }
    rebuilt.swap(elements);
    return true;
}

u32 TRegisterCombinedMap::EmptyBucket(TRegisterBucket& bucket) noexcept {
    if (bucket.IsVoid())
        return 0;
    u32 count = 0;
    if (bucket.IsSorted()) {
        count = static_cast<u32>(bucket.Sorted()->size());
        FreeSorted(bucket.Sorted());
    } else {
        count = bucket.Linear()->count;
        FreeLinear(bucket.Linear());
    }
    bucket.SetLinear(nullptr);
    return count;
}

// The whole table

void TRegisterCombinedMap::Clear(bool bReleaseArray, const TClearProgress& progress) {
    if (m_buckets == nullptr)
        return;
    u32 freed = 0;
    for (u32 i = 0; i < m_nBuckets; ++i) {
        freed += EmptyBucket(m_buckets[i]);
        if (progress && (i + 1) % kClearProgressBuckets == 0)
            progress(freed);
    }
    m_leastDepth = kNoDepth;
    if (bReleaseArray) {
        m_sweepCursor = 0;
        m_memory->Free(m_buckets, m_nBuckets * sizeof(TRegisterBucket));
        m_buckets = nullptr;
        m_nBuckets = 0;
    }
}

bool TRegisterCombinedMap::Resize(u32 nBuckets, bool bKeepIfSameSize) {
    assert(std::has_single_bit(nBuckets));
    if (m_buckets != nullptr && m_nBuckets == nBuckets) {
        if (!bKeepIfSameSize)
            Clear(false);
        return true;
    }
    // First freed and then allocated: the limit need not hold two arrays.
    Clear(true);
    try {
        void* block = m_memory->Allocate(nBuckets * sizeof(TRegisterBucket));
        m_buckets = static_cast<TRegisterBucket*>(block);
    } catch (const std::bad_alloc&) {
        return false;
    }
    std::uninitialized_default_construct_n(m_buckets, nBuckets);
    m_nBuckets = nBuckets;
    return true;
}

void TRegisterCombinedMap::Swap(TRegisterCombinedMap& other) noexcept {
    std::swap(m_memory, other.m_memory);
    std::swap(m_firstLinearCapacity, other.m_firstLinearCapacity);
    std::swap(m_buckets, other.m_buckets);
    std::swap(m_nBuckets, other.m_nBuckets);
    std::swap(m_sweepCursor, other.m_sweepCursor);
    std::swap(m_leastDepth, other.m_leastDepth);
}

TRegisterCombinedMap::TView TRegisterCombinedMap::View(u32 bucket) const {
    const TRegisterBucket& one = m_buckets[bucket];
    if (one.IsSorted()) {
        const CSortedElements& sorted = *one.Sorted();
        return {true,
                static_cast<u32>(sorted.size()),
                static_cast<u32>(sorted.capacity()),
                sorted.data()};
    }
    if (one.IsVoid())
        return {false, 0, 0, nullptr};
    return {false, one.Linear()->count, one.Linear()->capacity, one.Linear()->Elements()};
}

}  // namespace quillmere

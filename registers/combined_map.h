// The hash table of a register: an array of buckets, each with one container of elements.
//
// A bucket has one of two forms. The linear form is a plain array in the order of insertion, which
// the common bucket of up to eight elements is searched through in one go. The sorted form, a flat
// array in the order of the items, bounds the bad case. A linear bucket becomes sorted when a ninth
// element comes, and linear again only by being cleared.
//
// Memory: everything is taken from the account given at construction. An operation that throws for
// want of memory (std::bad_alloc, or std::length_error of a container) leaves the table as it was.
// What is emptied is freed: a bucket whose last element a sweep removes gives its array back.
//
// Threads: none of its own; the owner's lock guards it. Look-ups may run side by side.
#pragma once

#include "registers/register_item.h"
#include "registers/register_memory.h"

#include <boost/container/vector.hpp>

#include <algorithm>
#include <functional>

namespace quillmere {

//    0  item          the position
//   64  nMovesMate    half-moves; smallest depth with a known mate, 0 none. In a table of doubtful
//                     verdicts: greatest depth at which the position was found not doubtful
//   66  nMovesNoMate  half-moves; greatest depth without a mate, 0 none. In a table of doubtful
//                     verdicts: greatest depth at which it was found doubtful
struct TRegisterElement {
    TChessboardRegisterItem item;
    u16 nMovesMate;
    u16 nMovesNoMate;
};
static_assert(sizeof(TRegisterElement) == 68);
static_assert(std::is_trivially_copyable_v<TRegisterElement>);

constexpr u32 kLinearCapacity = 8;
constexpr u32 kFirstSortedCapacity = 12;

// Grows by 60 %: to 8/5 of the old capacity, or to what is needed if that is more.
using CSortedElements =
    boost::container::vector<TRegisterElement,
                             CRegisterAllocator<TRegisterElement>,
                             boost::container::vector_options_t<boost::container::growth_factor<
                                 boost::container::growth_factor_60>>>;

// The container of a linear bucket: this head, and behind it room for `capacity` elements.
struct TLinearElements {
    u32 count;
    u32 capacity;

    TRegisterElement* Elements() { return reinterpret_cast<TRegisterElement*>(this + 1); }
};

// One bucket in 64 bits: the low 48 are the address of its container, 0 for none; bit 63 is the
// form. A bucket owns nothing by itself, the table does.
class TRegisterBucket {
public:
    bool IsSorted() const { return (m_word & kSortedBit) != 0; }
    bool IsVoid() const { return m_word == 0; }
    // Of a linear bucket; null if nothing was ever put in.
    TLinearElements* Linear() const { return static_cast<TLinearElements*>(Address()); }
    // Of a sorted bucket; never null.
    CSortedElements* Sorted() const { return static_cast<CSortedElements*>(Address()); }

    void SetLinear(TLinearElements* elements) { m_word = Low48(elements); }
    void SetSorted(CSortedElements* elements) { m_word = Low48(elements) | kSortedBit; }

private:
    static constexpr u64 kSortedBit = u64{1} << 63;
    static constexpr int kSpareBits = 16;

    static u64 Low48(const void* address) {
        return reinterpret_cast<u64>(address) << kSpareBits >> kSpareBits;
    }
    // Addresses are sign-extended from bit 47.
    void* Address() const {
        return reinterpret_cast<void*>(static_cast<i64>(m_word << kSpareBits) >> kSpareBits);
    }

    u64 m_word = 0;
};
static_assert(sizeof(TRegisterBucket) == 8);

class TRegisterCombinedMap {
public:
    // Told now and then while the table is cleared: how many elements are freed so far.
    using TClearProgress = std::function<void(u32 freedElements)>;
    static constexpr u32 kClearProgressBuckets = 1024;
    static constexpr u16 kNoDepth = 0xffff;

    // The account must outlive the table. A table starts without a bucket array: nothing is found
    // in it and nothing may be added.
    TRegisterCombinedMap(CRegisterMemory& memory, u32 firstLinearCapacity);
    ~TRegisterCombinedMap();
    TRegisterCombinedMap(const TRegisterCombinedMap&) = delete;
    TRegisterCombinedMap& operator=(const TRegisterCombinedMap&) = delete;

    bool HasArray() const { return m_buckets != nullptr; }
    u32 BucketCount() const { return m_nBuckets; }
    // The bucket at which the next sweep begins.
    u32 SweepCursor() const { return m_sweepCursor; }

    // Null if the item is absent. `hash` is Hash(item). The element stays where it is until the
    // table changes.
    TRegisterElement* Find(const TChessboardRegisterItem& item, u32 hash) const;
    // Adds an element whose item is absent. Needs a bucket array. May throw, see above.
    void Add(const TRegisterElement& element, u32 hash);

    // Visits every bucket once and removes the elements with nMovesMate <= mateLimit and
    // nMovesNoMate <= noMateLimit; returns their number. In a linear bucket the element behind a
    // removed one is not looked at and waits for the next sweep. Costs nothing where both limits are
    // below LeastDepth().
    u32 RemoveElements(u16 mateLimit, u16 noMateLimit);
    // No element has both depths below this; kNoDepth in an empty table. A sweep sets it anew.
    u16 LeastDepth() const { return m_leastDepth; }
    // To be told behind each change of a depth through the pointer of Find.
    void NoteDepths(const TRegisterElement& element) {
        m_leastDepth = std::min(m_leastDepth, std::max(element.nMovesMate, element.nMovesNoMate));
    }

    // Empties every bucket; with bReleaseArray the array goes too.
    void Clear(bool bReleaseArray, const TClearProgress& progress = {});
    // Makes an array of nBuckets (a power of two) empty buckets. If there is one of that size, it
    // stays, with its elements if bKeepIfSameSize. False if there is no memory for the array; the
    // table is then without one.
    bool Resize(u32 nBuckets, bool bKeepIfSameSize);

    void Swap(TRegisterCombinedMap& other) noexcept;

    // One bucket as it stands, for files, checks and statistics.
    struct TView {
        bool isSorted;
        u32 count;
        u32 capacity;
        const TRegisterElement* elements;
    };
    TView View(u32 bucket) const;
    // Calls visit(const TRegisterElement&) in the order of the buckets.
    template <class FVisit>
    void ForEach(FVisit visit) const {
        for (u32 i = 0; i < m_nBuckets; ++i) {
            const TView view = View(i);
            for (u32 k = 0; k < view.count; ++k)
                visit(view.elements[k]);
        }
    }

private:
    TLinearElements* NewLinear(u32 capacity);
    void FreeLinear(TLinearElements* elements) noexcept;
    CSortedElements* NewSorted(std::size_t capacity);
    void FreeSorted(CSortedElements* elements) noexcept;

    void AddLinear(TRegisterBucket& bucket, const TRegisterElement& element);
    static void AddSorted(CSortedElements& elements, const TRegisterElement& element);
    void ConvertToSorted(TRegisterBucket& bucket);

    template <class FMatch>
    u32 RemoveFromLinear(TRegisterBucket& bucket, FMatch match);
    template <class FMatch>
    u32 RemoveFromSorted(CSortedElements& elements, FMatch match);
    template <class FMatch>
    bool RebuildWithout(CSortedElements& elements, std::size_t survivors, FMatch match);
    template <class FMatch>
    u32 RemoveFromBucket(u32 bucket, FMatch match);
    u32 EmptyBucket(TRegisterBucket& bucket) noexcept;

    CRegisterMemory* m_memory;
    u32 m_firstLinearCapacity;
    TRegisterBucket* m_buckets = nullptr;
    u32 m_nBuckets = 0;
    u32 m_sweepCursor = 0;
    u16 m_leastDepth = kNoDepth;
};

}  // namespace quillmere

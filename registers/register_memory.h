// The account of the memory that one register may use, in true bytes.
//
// Every block of a register comes from here: bucket arrays, the containers of the buckets with all
// that they have reserved, and the nodes of the maps. A block counts with kBlockOverheadBytes for
// what the heap itself needs. While a container moves to a larger block, both blocks count.
//
// A block that would pass the limit is refused with CMemoryRefused, a std::bad_alloc, as if the
// system had none. A small part of the limit, the reserve, is kept back from inserts: a removal
// sweep makes smaller copies of containers before it frees the old ones, and must be able to do so
// when nothing else fits any more.
//
// Threads: any thread may allocate, free and read the figures; the counters are atomics without an
// order of their own, since the blocks are guarded by the locks of their owners.
#pragma once

#include "core/types.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <new>
#include <type_traits>

namespace quillmere {

class CMemoryRefused : public std::bad_alloc {
public:
    const char* what() const noexcept override { return "register memory refused"; }
};

constexpr std::size_t kBlockOverheadBytes = 16;

class CRegisterMemory {
public:
    // Asked before every block; false refuses it. For tests; must be callable by any thread.
    using TMayAllocate = std::function<bool(std::size_t bytes)>;

    explicit CRegisterMemory(u64 limitBytes, TMayAllocate mayAllocate = {});
    CRegisterMemory(const CRegisterMemory&) = delete;
    CRegisterMemory& operator=(const CRegisterMemory&) = delete;

    // Never null. Throws CMemoryRefused at the limit, std::bad_alloc if the system has no more; the
    // account is then unchanged.
    void* Allocate(std::size_t bytes);
    void Free(void* block, std::size_t bytes) noexcept;
    // A block of that size could be had at this moment.
    bool CanAllocate(std::size_t bytes) noexcept;

    u64 UsedBytes() const { return m_used.load(std::memory_order_relaxed); }
    u64 LimitBytes() const { return m_limitBytes; }
    // What inserts may still take, the reserve not counted.
    u64 FreeBytes() const;
    // Not even a first container fits any more.
    bool IsFull() const { return FreeBytes() < kLeastUsefulBytes; }

    // Opens the reserve to the end of the scope. While it is open, inserts of other threads may take
    // from it too; that only makes the next sweep less thorough.
    class CReserve {
    public:
        explicit CReserve(CRegisterMemory& memory) : m_memory(memory) {
            m_memory.m_openReserves.fetch_add(1, std::memory_order_relaxed);
        }
        ~CReserve() { m_memory.m_openReserves.fetch_sub(1, std::memory_order_relaxed); }
        CReserve(const CReserve&) = delete;
        CReserve& operator=(const CReserve&) = delete;

    private:
        CRegisterMemory& m_memory;
    };

    // Counts an object that is not allocated here, to the end of its life.
    class CCharge {
    public:
        CCharge(CRegisterMemory& memory, std::size_t bytes);
        ~CCharge() { m_memory.Discharge(m_bytes); }
        CCharge(const CCharge&) = delete;
        CCharge& operator=(const CCharge&) = delete;

    private:
        CRegisterMemory& m_memory;
        std::size_t m_bytes;
    };

private:
    static constexpr u64 kLeastUsefulBytes = 1024;

    void Charge(std::size_t bytes);
    void Discharge(std::size_t bytes) noexcept;

    const u64 m_limitBytes;
    const u64 m_reserveBytes;
    const TMayAllocate m_mayAllocate;
    std::atomic<u64> m_used{0};
    std::atomic<u32> m_openReserves{0};
};

// Allocator of the containers of a register.
template <class T>
class CRegisterAllocator {
public:
    using value_type = T;
    // Containers are swapped and moved together with the account that their blocks belong to.
    using propagate_on_container_copy_assignment = std::true_type;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;
    using is_always_equal = std::false_type;

    // NOLINTNEXTLINE(google-explicit-constructor): containers are made from their account
    CRegisterAllocator(CRegisterMemory& memory) : m_memory(&memory) {}
    template <class U>
    // NOLINTNEXTLINE(google-explicit-constructor): rebinding, as allocators must
    CRegisterAllocator(const CRegisterAllocator<U>& other) : m_memory(other.Memory()) {}

    T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T))
            throw CMemoryRefused();
        return static_cast<T*>(m_memory->Allocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept {
        m_memory->Free(block, count * sizeof(T));
    }
    CRegisterMemory* Memory() const { return m_memory; }

    template <class U>
    friend bool operator==(const CRegisterAllocator& a, const CRegisterAllocator<U>& b) {
        return a.Memory() == b.Memory();
    }

private:
    CRegisterMemory* m_memory;
};

}  // namespace quillmere

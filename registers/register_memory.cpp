#include "registers/register_memory.h"

#include <algorithm>
#include <utility>

namespace quillmere {
namespace {

// The reserve is this part of the limit: room for the copies of a few containers, whose size falls
// with the limit too.
constexpr u64 kReserveDivisor = 32;

}  // namespace

CRegisterMemory::CRegisterMemory(u64 limitBytes, TMayAllocate mayAllocate)
    : m_limitBytes(limitBytes),
      m_reserveBytes(limitBytes / kReserveDivisor),
      m_mayAllocate(std::move(mayAllocate)) {}

u64 CRegisterMemory::FreeBytes() const {
    const u64 limit = m_limitBytes - m_reserveBytes;
    return limit - std::min(limit, UsedBytes());
}

void CRegisterMemory::Charge(std::size_t bytes) {
    if (m_mayAllocate && !m_mayAllocate(bytes))
        throw CMemoryRefused();
    const bool isReserveOpen = m_openReserves.load(std::memory_order_relaxed) != 0;
    const u64 limit = isReserveOpen ? m_limitBytes : m_limitBytes - m_reserveBytes;
    const u64 charge = bytes + kBlockOverheadBytes;
    u64 used = m_used.load(std::memory_order_relaxed);
    do {
        if (charge > limit || used > limit - charge)
            throw CMemoryRefused();
    } while (!m_used.compare_exchange_weak(used, used + charge, std::memory_order_relaxed));
}

void CRegisterMemory::Discharge(std::size_t bytes) noexcept {
    m_used.fetch_sub(bytes + kBlockOverheadBytes, std::memory_order_relaxed);
}

void* CRegisterMemory::Allocate(std::size_t bytes) {
    Charge(bytes);
    void* block = ::operator new(bytes, std::nothrow);
    if (block == nullptr) {
        Discharge(bytes);
        throw CMemoryRefused();
    }
    return block;
}

void CRegisterMemory::Free(void* block, std::size_t bytes) noexcept {
    ::operator delete(block);
    Discharge(bytes);
}

bool CRegisterMemory::CanAllocate(std::size_t bytes) noexcept {
    try {
        Free(Allocate(bytes), bytes);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

CRegisterMemory::CCharge::CCharge(CRegisterMemory& memory, std::size_t bytes)
    : m_memory(memory), m_bytes(bytes) {
    m_memory.Charge(bytes);
}

}  // namespace quillmere

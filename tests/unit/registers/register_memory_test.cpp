#include "registers/register_memory.h"

#include <boost/container/vector.hpp>

#include <gtest/gtest.h>
#include <map>

namespace quillmere {
namespace {

constexpr u64 kLimit = 32 * 1024;
constexpr u64 kInserts = kLimit - kLimit / 32;  // less the reserve

TEST(RegisterMemory, Blocks_CountWithTheirOverheadUntilFreed) {
    CRegisterMemory memory(kLimit);
    EXPECT_EQ(memory.UsedBytes(), 0U);
    EXPECT_EQ(memory.FreeBytes(), kInserts);
    void* block = memory.Allocate(1000);
    EXPECT_EQ(memory.UsedBytes(), 1000 + kBlockOverheadBytes);
    EXPECT_EQ(memory.FreeBytes(), kInserts - 1000 - kBlockOverheadBytes);
    memory.Free(block, 1000);
    EXPECT_EQ(memory.UsedBytes(), 0U);
}

TEST(RegisterMemory, Limit_HoldsToTheByte) {
    CRegisterMemory memory(kLimit);
    EXPECT_THROW(memory.Allocate(kInserts - kBlockOverheadBytes + 1), std::bad_alloc);
    EXPECT_EQ(memory.UsedBytes(), 0U);
    void* block = memory.Allocate(kInserts - kBlockOverheadBytes);
    EXPECT_EQ(memory.FreeBytes(), 0U);
    EXPECT_TRUE(memory.IsFull());
    EXPECT_FALSE(memory.CanAllocate(1));
    EXPECT_THROW(memory.Allocate(0), CMemoryRefused);
    memory.Free(block, kInserts - kBlockOverheadBytes);
    EXPECT_FALSE(memory.IsFull());
    EXPECT_TRUE(memory.CanAllocate(1));
    EXPECT_EQ(memory.UsedBytes(), 0U);
}

TEST(RegisterMemory, HugeBlock_DoesNotWrapTheAccount) {
    CRegisterMemory memory(kLimit);
    EXPECT_THROW(memory.Allocate(static_cast<std::size_t>(-1) - kBlockOverheadBytes),
                 std::bad_alloc);
    EXPECT_THROW(CRegisterAllocator<u64>(memory).allocate(static_cast<std::size_t>(-1) / 4),
                 std::bad_alloc);
    EXPECT_EQ(memory.UsedBytes(), 0U);
}

TEST(RegisterMemory, LimitOfNothing_RefusesEverything) {
    CRegisterMemory memory(0);
    EXPECT_TRUE(memory.IsFull());
    EXPECT_THROW(memory.Allocate(1), std::bad_alloc);
    const CRegisterMemory::CReserve reserve(memory);
    EXPECT_THROW(memory.Allocate(1), std::bad_alloc);
}

TEST(RegisterMemory, Reserve_OpensForItsScopeOnly) {
    CRegisterMemory memory(kLimit);
    void* block = memory.Allocate(kInserts - kBlockOverheadBytes);
    EXPECT_FALSE(memory.CanAllocate(100));
    {
        const CRegisterMemory::CReserve outer(memory);
        {
            const CRegisterMemory::CReserve inner(memory);
            EXPECT_TRUE(memory.CanAllocate(100));
        }
        EXPECT_TRUE(memory.CanAllocate(kLimit / 32 - kBlockOverheadBytes));
        EXPECT_FALSE(memory.CanAllocate(kLimit / 32 - kBlockOverheadBytes + 1));
    }
    EXPECT_FALSE(memory.CanAllocate(100));
    memory.Free(block, kInserts - kBlockOverheadBytes);
}

TEST(RegisterMemory, Hook_IsAskedForEveryBlockAndMayRefuse) {
    int asked = 0;
    CRegisterMemory memory(kLimit, [&](std::size_t bytes) { return bytes == 10 && ++asked < 3; });
    void* first = memory.Allocate(10);
    void* second = memory.Allocate(10);
    EXPECT_THROW(memory.Allocate(10), CMemoryRefused);
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(memory.UsedBytes(), 2 * (10 + kBlockOverheadBytes));
    memory.Free(first, 10);
    memory.Free(second, 10);
}

TEST(RegisterMemory, Charge_CountsForItsLife) {
    CRegisterMemory memory(kLimit);
    {
        const CRegisterMemory::CCharge charge(memory, 500);
        EXPECT_EQ(memory.UsedBytes(), 500 + kBlockOverheadBytes);
    }
    EXPECT_EQ(memory.UsedBytes(), 0U);
    EXPECT_THROW(CRegisterMemory::CCharge(memory, kLimit), std::bad_alloc);
}

TEST(RegisterAllocator, Containers_CountOnTheirAccount) {
    CRegisterMemory memory(kLimit);
    {
        std::map<int, int, std::less<>, CRegisterAllocator<std::pair<const int, int>>> map(memory);
        map.try_emplace(1, 1);
        const u64 node = memory.UsedBytes();
        EXPECT_GT(node, sizeof(std::pair<const int, int>) + kBlockOverheadBytes);
        map.try_emplace(2, 2);
        EXPECT_EQ(memory.UsedBytes(), 2 * node);
        map.erase(1);
        EXPECT_EQ(memory.UsedBytes(), node);
    }
    EXPECT_EQ(memory.UsedBytes(), 0U);
}

// While a container moves to a larger block, both stand there.
TEST(RegisterAllocator, GrowingContainer_NeedsRoomForBothBlocks) {
    CRegisterMemory memory(kLimit);
    boost::container::vector<u8, CRegisterAllocator<u8>> bytes{CRegisterAllocator<u8>(memory)};
    bytes.resize(kInserts * 2 / 5);
    const u64 used = memory.UsedBytes();
    EXPECT_THROW(bytes.reserve(kInserts * 4 / 5), std::bad_alloc);
    EXPECT_EQ(memory.UsedBytes(), used);
    bytes.reserve(kInserts / 2);
    EXPECT_EQ(bytes.size(), kInserts * 2 / 5);
}

}  // namespace
}  // namespace quillmere

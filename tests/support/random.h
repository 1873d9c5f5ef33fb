// The random numbers of the tests: splitmix64, the same on every compiler and machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillmere::test {

class CRandom {
public:
    explicit CRandom(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t Next() {
        m_state += 0x9e3779b97f4a7c15u;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
        return z ^ (z >> 31);
    }
    // 0 .. bound - 1, for a bound from 1 up.
    // The unevenness of the remainder is harmless at these sizes.
    int Below(int bound) { return static_cast<int>(Next() % static_cast<std::uint64_t>(bound)); }
    int Between(int low, int high) { return low + Below(high - low + 1); }
    char Letter(std::string_view letters) {
        return letters[static_cast<std::size_t>(Below(static_cast<int>(letters.size())))];
    }
    bool Chance(int percent) { return Below(100) < percent; }

private:
    std::uint64_t m_state;
};

}  // namespace quillmere::test

#ifndef BREVAN_Q7COMMON_SECRET_H
#define BREVAN_Q7COMMON_SECRET_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace brevan {

/// Wipes memory before it goes back, so that a password does not stay behind in freed blocks, outgrown ones included.
/// `Memory` is where it comes from.
template <typename T, typename Memory = std::allocator<T>>
struct CleansingAllocator {
    using value_type = T;

    T* allocate(std::size_t count) { return Memory().allocate(count); }

    void deallocate(T* place, std::size_t count) noexcept
    {
        explicit_bzero(place, count * sizeof(T));
        Memory().deallocate(place, count);
    }

    friend bool operator==(const CleansingAllocator&, const CleansingAllocator&) noexcept { return true; }
    friend bool operator!=(const CleansingAllocator&, const CleansingAllocator&) noexcept { return false; }
};

/// Bytes that may hold a secret. A vector, because a short std::string keeps its text inside the object, where no
/// allocator can wipe it.
using SecretBytes = std::vector<char, CleansingAllocator<char>>;

inline void append(SecretBytes& bytes, std::string_view text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

inline std::string_view viewOf(const SecretBytes& bytes)
{
    return {bytes.data(), bytes.size()};
}

/// Empties `bytes` and keeps its room for the next use.
inline void wipe(SecretBytes& bytes) noexcept
{
    if (!bytes.empty()) {
        explicit_bzero(bytes.data(), bytes.size());
    }
    bytes.clear();
}

}  // namespace brevan

#endif

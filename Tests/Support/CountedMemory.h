#pragma once

// What a test program allocates is counted. For one source of a program: it replaces `new`.

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace Kovalt::Testing::CountedMemory {

inline std::atomic<std::size_t> heldBytes = 0;
inline std::atomic<std::size_t> mostBytes = 0;

/// From now on `mostBytes` tells the most that is held at a time.
inline void beginAgain()
{
    mostBytes = heldBytes.load();
}

inline void* take(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (!memory)
        std::abort();
    const std::size_t now = heldBytes += malloc_usable_size(memory);
    std::size_t most = mostBytes;
    while (most < now && !mostBytes.compare_exchange_weak(most, now)) {
    }
    return memory;
}

inline void giveBack(void* memory)
{
    if (memory)
        heldBytes -= malloc_usable_size(memory);
    std::free(memory);
}

} // namespace Kovalt::Testing::CountedMemory

void* operator new(std::size_t size)
{
    return Kovalt::Testing::CountedMemory::take(size);
}
void* operator new[](std::size_t size)
{
    return Kovalt::Testing::CountedMemory::take(size);
}
void operator delete(void* memory) noexcept
{
    Kovalt::Testing::CountedMemory::giveBack(memory);
}
void operator delete[](void* memory) noexcept
{
    Kovalt::Testing::CountedMemory::giveBack(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    Kovalt::Testing::CountedMemory::giveBack(memory);
}
void operator delete[](void* memory, std::size_t) noexcept
{
    Kovalt::Testing::CountedMemory::giveBack(memory);
}

#include "MMPagePopulator.h"
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23
#endif

namespace {
// Cleared once the kernel does not know the request, so that later calls
// cost nothing.
std::atomic<bool> supported{ true };
}

bool MMPagePopulator::populate(const void *begin, size_t bytes)
{
    if (bytes == 0 || !supported.load(std::memory_order_relaxed))
        return false;
    static const uintptr_t page = uintptr_t(sysconf(_SC_PAGESIZE));
    // Whole pages around the range: the pages it touches are mapped already,
    // and mapping in never changes what they hold.
    const uintptr_t first = uintptr_t(begin) & ~(page - 1);
    const uintptr_t end = (uintptr_t(begin) + bytes + page - 1) & ~(page - 1);
    if (madvise(reinterpret_cast<void *>(first), end - first, MADV_POPULATE_WRITE) == 0)
        return true;
    if (errno == EINVAL)
        supported.store(false, std::memory_order_relaxed);
    return false;
}

void MMPagePopulator::populateOrClear(void *begin, size_t bytes)
{
    if (!populate(begin, bytes))
        std::memset(begin, 0, bytes);
}

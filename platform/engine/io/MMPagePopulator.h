#pragma once
#include <cstddef>

// Maps memory in before its first write, so that the thread that fills it
// later takes no page faults: the kernel does it for a whole range at once,
// without writing the memory, so it is safe beside a thread already writing
// there. Kernels before 5.14 cannot; the calls then do nothing and say so.
class MMPagePopulator
{
public:
    // False when this kernel cannot map pages in without writing them.
    static bool populate(const void *begin, size_t bytes);

    // The same, else writes zeros over the range: only for memory no other
    // thread uses yet.
    static void populateOrClear(void *begin, size_t bytes);
};

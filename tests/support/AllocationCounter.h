// AllocationCounter: counts the calls of the global operator new (all but the over-aligned forms)
// made while any counter is alive. Read count() before asserting: an assertion may allocate.
#pragma once

#include <cstddef>

namespace dunx::test {

class AllocationCounter {
public:
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    long count() const; ///< allocations since this counter was made
    /// True when the counters see the allocations made inside DUNXBase too. Windows gives every
    /// DLL the operator new it was linked with, so a shared DUNXBase allocates unseen there.
    static bool SeesLibraryAllocations();
    /// Bytes of the largest single allocation since the newest live counter was made.
    std::size_t largest() const;

private:
    long m_Start;
};

} // namespace dunx::test

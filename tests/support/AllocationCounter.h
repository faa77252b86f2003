// AllocationCounter: counts heap allocations made through the global operator new.
#pragma once

namespace dunx::test {

/// Counts the calls to the global `operator new` and `operator new[]` (plain and
/// nothrow; the over-aligned forms are left to the runtime) made while at least
/// one counter is alive. The replacement operators live in AllocationCounter.cpp
/// and forward to malloc/free, so AddressSanitizer still sees every block.
///
///     long allocations;
///     {
///         dunx::test::AllocationCounter counter;
///         text.hashCode();
///         allocations = counter.count();  // read before any assertion allocates
///     }
///     EXPECT_EQ(allocations, 0);
class AllocationCounter {
public:
    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    /// Allocations since this counter was made.
    long count() const;

private:
    long m_Start;
};

} // namespace dunx::test

#include "support/AllocationCounter.h"

#include <dunx/DUNXString.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Constant-initialised, so they are ready for allocations made before main.
std::atomic<int> g_ActiveCounters{0};
std::atomic<long> g_Allocations{0};
std::atomic<std::size_t> g_Largest{0};

void* allocate(std::size_t size, bool throwOnFailure) {
    if (g_ActiveCounters > 0) {
        ++g_Allocations;
        if (size > g_Largest)
            g_Largest = size;
    }
    void* block = std::malloc(size == 0 ? 1 : size);
    if (!block && throwOnFailure)
        throw std::bad_alloc();
    return block;
}

} // namespace

dunx::test::AllocationCounter::AllocationCounter() : m_Start(g_Allocations) {
    g_Largest = 0;
    ++g_ActiveCounters;
}

dunx::test::AllocationCounter::~AllocationCounter() {
    --g_ActiveCounters;
}

long dunx::test::AllocationCounter::count() const {
    return g_Allocations - m_Start;
}

std::size_t dunx::test::AllocationCounter::largest() const {
    return g_Largest;
}

bool dunx::test::AllocationCounter::SeesLibraryAllocations() {
    static const bool sees = [] {
        AllocationCounter counter;
        const DUNXString made("a text the library allocates"); // one block, in the library
        return counter.count() > 0;
    }();
    return sees;
}

// Every plain form is replaced, one per line, so that no block is freed by a runtime (or by
// AddressSanitizer) that did not allocate it.
// clang-format off
void* operator new(std::size_t n) { return allocate(n, true); }
void* operator new[](std::size_t n) { return allocate(n, true); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, false); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocate(n, false); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
// clang-format on

#include "support/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// Constant-initialised, so they are ready for allocations made before main.
std::atomic<int> g_ActiveCounters{0};
std::atomic<long> g_Allocations{0};

void* allocate(std::size_t size) noexcept {
    if (g_ActiveCounters.load(std::memory_order_relaxed) > 0)
        g_Allocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size) {
    if (void* block = allocate(size))
        return block;
    throw std::bad_alloc();
}

} // namespace

namespace dunx::test {

AllocationCounter::AllocationCounter() : m_Start(g_Allocations.load()) {
    ++g_ActiveCounters;
}

AllocationCounter::~AllocationCounter() {
    --g_ActiveCounters;
}

long AllocationCounter::count() const {
    return g_Allocations.load() - m_Start;
}

} // namespace dunx::test

// Every plain form is replaced together: mixing a replaced new with the
// runtime's delete (or AddressSanitizer's) would pair malloc with a foreign free.
void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}

void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

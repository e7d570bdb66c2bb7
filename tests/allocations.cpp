#include "allocations.h"

#include <cstdlib>
#include <new>

namespace
{

constexpr int never = -1;
int successesLeft = never;

}  // namespace

namespace ZVTest
{

FailingAllocation::FailingAllocation(int successes)
{
    successesLeft = successes;
}

FailingAllocation::~FailingAllocation()
{
    successesLeft = never;
}

}  // namespace ZVTest

void* operator new(size_t size)
{
    if (successesLeft != never && successesLeft-- == 0)
        throw std::bad_alloc();
    if (void* memory = std::malloc(size > 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void* operator new[](size_t size)
{
    return operator new(size);
}

void* operator new[](size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, size_t) noexcept
{
    std::free(memory);
}

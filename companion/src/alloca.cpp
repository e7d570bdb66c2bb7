#include "zvplatform/alloca.h"

#include <atomic>

namespace ZVPlatform
{

namespace
{

std::atomic<size_t> threshold{65536};

}  // namespace

size_t ZVGetAllocaThreshold()
{
    return threshold.load(std::memory_order_relaxed);
}

size_t ZVSetAllocaThreshold(size_t bytes)
{
    return threshold.exchange(bytes, std::memory_order_relaxed);
}

}  // namespace ZVPlatform

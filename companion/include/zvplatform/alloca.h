#pragma once

#include "zvsystem/export.h"

#include <cstddef>

namespace ZVPlatform
{

/// The size in bytes up to which the toolkit's functions take a scratch array from the stack; a
/// larger one comes from the heap. 64 KiB unless it was set. A function may hold a few such arrays
/// at once: on threads with small stacks set it lower; 0 keeps everything on the heap.
ZVCOMPANION_EXPORT size_t ZVGetAllocaThreshold();

/// Sets the threshold for the whole process and returns the one in force so far. Any thread may
/// call it at any time; calls that are under way keep the one they have read.
ZVCOMPANION_EXPORT size_t ZVSetAllocaThreshold(size_t bytes);

}  // namespace ZVPlatform

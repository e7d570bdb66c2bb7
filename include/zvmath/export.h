#pragma once

/// Marks what a program may link against; everything else in the library is hidden.
#define ZVMATH_EXPORT __attribute__((visibility("default")))

/// For private members of a class so marked that only the library itself calls.
#define ZVMATH_HIDDEN __attribute__((visibility("hidden")))

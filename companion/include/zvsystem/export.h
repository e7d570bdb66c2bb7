#pragma once

/// Marks what a program may link against; everything else in the library is hidden.
#define ZVCOMPANION_EXPORT __attribute__((visibility("default")))

#pragma once

#include "zvsystem/export.h"

#include <mutex>

namespace ZVSystem
{

/// Where warnings go: `write` gets the finished message, without prefix or line end, and `context`.
///
/// A `write` of nullptr stands for standard error. A plain function and a pointer rather than a
/// callable object: the global handler then needs no construction, so that warnings work in the
/// constructors and destructors of other globals too.
struct ZVWarningSink
{
    /// Takes a message.
    void (*write)(void* context, const char* message) = nullptr;
    /// Handed to `write`.
    void* context = nullptr;
};

/// The toolkit's error handler. Programs use the one global object `ZVThrow`.
class ZVCOMPANION_EXPORT ZVErrorHandler
{
public:
    constexpr ZVErrorHandler() noexcept = default;
    ZVErrorHandler(const ZVErrorHandler&) = delete;
    ZVErrorHandler& operator=(const ZVErrorHandler&) = delete;

    /// Formats a message as `printf` does and hands it to the sink; without a sink it writes
    /// "Warning: <message>" and a line end to standard error in one call.
    ///
    /// Any thread may warn at any time; the sink runs on the thread that warns, and may itself warn
    /// or change the sink. What it throws reaches the caller of the library. A message that can't
    /// be formatted, or finds no memory, is cut short at 511 bytes rather than lost.
    void Warning(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Sends later warnings to `sink` and returns the one in force so far, for putting it back.
    /// That one may still be running on another thread: its context must outlive what that thread
    /// does.
    ZVWarningSink SetWarningSink(ZVWarningSink sink);

private:
    std::mutex guard;
    ZVWarningSink sink;
};

/// The error handler that the whole toolkit reports to.
extern ZVCOMPANION_EXPORT ZVErrorHandler ZVThrow;

}  // namespace ZVSystem

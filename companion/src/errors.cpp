#include "zvsystem/errors.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <new>

namespace ZVSystem
{

namespace
{

void WriteToStandardError(const char* message)
{
    std::fprintf(stderr, "Warning: %s\n", message);
}

}  // namespace

ZVErrorHandler ZVThrow;

void ZVErrorHandler::Warning(const char* format, ...)
{
    char shortMessage[512] = "";
    const char* message = shortMessage;
    std::unique_ptr<char[]> longMessage;

    va_list arguments;
    va_list again;
    va_start(arguments, format);
    va_copy(again, arguments);
    const int length = std::vsnprintf(shortMessage, sizeof shortMessage, format, arguments);
    va_end(arguments);
    if (length >= static_cast<int>(sizeof shortMessage)) {
        const size_t size = static_cast<size_t>(length) + 1;
        longMessage.reset(new (std::nothrow) char[size]);
        if (longMessage) {
            std::vsnprintf(longMessage.get(), size, format, again);
            message = longMessage.get();
        }
    }
    va_end(again);

    // The sink is copied so that it runs without the lock: it may warn, or set another sink.
    ZVWarningSink current;
    {
        const std::lock_guard<std::mutex> lock(guard);
        current = sink;
    }
    if (current.write)
        current.write(current.context, message);
    else
        WriteToStandardError(message);
}

ZVWarningSink ZVErrorHandler::SetWarningSink(ZVWarningSink newSink)
{
    const std::lock_guard<std::mutex> lock(guard);
    const ZVWarningSink former = sink;
    sink = newSink;
    return former;
}

}  // namespace ZVSystem

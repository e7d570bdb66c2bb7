#include "zvplatform/streams.h"

#include "shortest.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <istream>
#include <ostream>
#include <type_traits>

namespace ZVPlatform
{

namespace
{

template <class Number> zvostream& WriteNumber(zvostream& stream, Number value)
{
    char text[40];
    const char* end = nullptr;
    if constexpr (std::is_integral_v<Number>)
        end = std::to_chars(text, text + sizeof text, value).ptr;
    else
        end = WriteShortest(text, value);
    return stream << std::string_view(text, static_cast<size_t>(end - text));
}

/// Of the standard streams' sizes, which are signed.
constexpr size_t longestTransfer = size_t{1} << 62;

}  // namespace

zvostream::~zvostream() = default;
zvistream::~zvistream() = default;

zvostream& zvostream::operator<<(double value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(float value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(int value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(unsigned int value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(long value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(unsigned long value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(long long value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(unsigned long long value)
{
    return WriteNumber(*this, value);
}

zvostream& zvostream::operator<<(char character)
{
    return *this << std::string_view(&character, 1);
}

zvostream& zvostream::operator<<(std::string_view text)
{
    if (!failed && !text.empty())
        failed =
            write(reinterpret_cast<const unsigned char*>(text.data()), text.size()) != text.size();
    return *this;
}

zvostream& zvendl(zvostream& stream)
{
    return stream << '\n';
}

char* ZVFormatDouble(char* text, double value)
{
    return WriteShortest(text, value);
}

size_t zvomemorystream::write(const unsigned char* bytes, size_t count)
{
    memory.insert(memory.end(), bytes, bytes + count);
    return count;
}

std::string zvomemorystream::text() const
{
    return {memory.begin(), memory.end()};
}

zvimemorystream::zvimemorystream(const void* memory, size_t size)
    : next(static_cast<const unsigned char*>(memory)), left(size)
{
}

size_t zvimemorystream::read(unsigned char* bytes, size_t count)
{
    count = std::min(count, left);
    if (count > 0)
        std::memcpy(bytes, next, count);
    next += count;
    left -= count;
    return count;
}

size_t zvostdstream::write(const unsigned char* bytes, size_t count)
{
    // Through the buffer, which tells how much it took; the stream itself only tells that all went.
    const std::ostream::sentry ready(*target);
    if (!ready)
        return 0;
    const auto asked = static_cast<std::streamsize>(std::min(count, longestTransfer));
    const std::streamsize written =
        target->rdbuf()->sputn(reinterpret_cast<const char*>(bytes), asked);
    if (written < asked)
        target->setstate(std::ios::badbit);
    return static_cast<size_t>(std::max<std::streamsize>(written, 0));
}

size_t zvistdstream::read(unsigned char* bytes, size_t count)
{
    const auto asked = static_cast<std::streamsize>(std::min(count, longestTransfer));
    source->read(reinterpret_cast<char*>(bytes), asked);
    return static_cast<size_t>(source->gcount());
}

}  // namespace ZVPlatform

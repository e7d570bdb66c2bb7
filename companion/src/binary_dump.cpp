#include "zvplatform/binary_dump.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace ZVPlatform::ZVBinaryDump
{

namespace
{

enum Status : unsigned int {
    wrongVersion = 1,
    shortTransfer = 4,
    noBudgetToRead = 5,
    noBudgetToWrite = 6
};

template <class Field> Field Reversed(Field field)
{
    unsigned char bytes[sizeof field];
    std::memcpy(bytes, &field, sizeof field);
    std::reverse(bytes, bytes + sizeof field);
    std::memcpy(&field, bytes, sizeof field);
    return field;
}

/// Takes one field's size off the budget, if the budget has it.
bool Spend(unsigned int size, unsigned int& status, unsigned int& remaining, Status otherwise)
{
    if (status != 0)
        return false;
    if (remaining < size) {
        status = otherwise;
        return false;
    }
    remaining -= size;
    return true;
}

size_t Transfer(unsigned char*& buffer, const unsigned char* bytes, size_t count)
{
    std::memcpy(buffer, bytes, count);
    buffer += count;
    return count;
}

/// More than was asked for is no number of bytes: a size_t made of -1, for example.
size_t Checked(size_t transferred, size_t asked)
{
    return transferred <= asked ? transferred : 0;
}

size_t Transfer(zvostream& stream, const unsigned char* bytes, size_t count)
{
    return Checked(stream.write(bytes, count), count);
}

size_t Transfer(const unsigned char*& buffer, unsigned char* bytes, size_t count)
{
    std::memcpy(bytes, buffer, count);
    buffer += count;
    return count;
}

size_t Transfer(zvistream& stream, unsigned char* bytes, size_t count)
{
    return Checked(stream.read(bytes, count), count);
}

template <class Target, class Field>
unsigned int WriteField(Target& target, const Field& field, unsigned int& status,
                        unsigned int& remaining)
{
    if (!Spend(sizeof field, status, remaining, noBudgetToWrite))
        return 0;
    unsigned char bytes[sizeof field];
    std::memcpy(bytes, &field, sizeof field);
    const size_t written = Transfer(target, bytes, sizeof field);
    if (written < sizeof field)
        status = shortTransfer;
    return static_cast<unsigned int>(written);
}

template <class Source, class Field>
unsigned int ReadField(Source& source, bool reverse, Field& field, unsigned int& status,
                       unsigned int& remaining)
{
    if (!Spend(sizeof field, status, remaining, noBudgetToRead))
        return 0;
    unsigned char bytes[sizeof field];
    const size_t read = Transfer(source, bytes, sizeof field);
    if (read < sizeof field) {
        status = shortTransfer;
    } else {
        std::memcpy(&field, bytes, sizeof field);
        if (reverse)
            field = Reversed(field);
    }
    return static_cast<unsigned int>(read);
}

template <class Source, class Field>
unsigned int ReadVersioned(Source& source, bool reverse, unsigned int version, Field& field,
                           unsigned int& status, unsigned int& remaining)
{
    if (status == 0 && version != 1)
        status = wrongVersion;
    return ReadField(source, reverse, field, status, remaining);
}

constexpr size_t elementSize = sizeof(double);

/// Transfers `size` bytes of elements, up to the first call that falls short: at most `most` bytes
/// a call, and no more than an element where the stream doesn't take them in bulk. `step(offset,
/// count)` returns how many of `count` bytes from `offset` on it transferred. Returns the bytes
/// that went.
template <class Peer, class Step>
size_t TransferElements(const Peer& peer, size_t size, size_t most, Step step)
{
    size_t atOnce = most;
    if constexpr (!std::is_pointer_v<Peer>)
        atOnce = peer.bulk() ? most : elementSize;
    size_t done = 0;
    while (done < size) {
        const size_t asked = std::min(atOnce, size - done);
        const size_t now = step(done, asked);
        done += now;
        if (now < asked)
            break;
    }
    return done;
}

/// The budget and the status after `done` of `size` bytes: a field that was begun is paid for.
void Settle(size_t done, size_t size, unsigned int& status, unsigned int& remaining)
{
    const size_t begun = done < size ? (done / elementSize + 1) * elementSize : size;
    remaining -= static_cast<unsigned int>(begun);
    if (done < size)
        status = shortTransfer;
}

template <class Target>
unsigned int WriteVector(Target& target, const std::vector<double>& values, unsigned int& status,
                         unsigned int& remaining)
{
    const auto count = static_cast<unsigned int>(values.size());
    unsigned int total = WriteField(target, count, status, remaining);
    if (status != 0)
        return total;
    const size_t covered = std::min<size_t>(count, remaining / elementSize);
    const auto* bytes = reinterpret_cast<const unsigned char*>(values.data());
    const size_t size = covered * elementSize;
    const size_t done = TransferElements(target, size, size, [&](size_t offset, size_t asked) {
        return Transfer(target, bytes + offset, asked);
    });
    Settle(done, size, status, remaining);
    if (status == 0 && covered < count)
        status = noBudgetToWrite;
    return total + static_cast<unsigned int>(done);
}

/// Bytes that are surely there: for a buffer, the caller has said so by the budget.
size_t Available(const unsigned char* /*buffer*/)
{
    return static_cast<size_t>(-1);
}

size_t Available(const zvistream& stream)
{
    return stream.available();
}

template <class Source>
unsigned int ReadVector(Source& source, bool reverse8, bool reverse4, unsigned int version,
                        std::vector<double>& values, unsigned int& status, unsigned int& remaining)
{
    if (status != 0)
        return 0;
    if (version != 1) {
        status = wrongVersion;
        return 0;
    }
    values.clear();
    unsigned int count = 0;
    unsigned int total = ReadField(source, reverse4, count, status, remaining);
    if (status != 0)
        return total;

    const size_t covered = std::min<size_t>(count, remaining / elementSize);
    const size_t size = covered * elementSize;
    values.reserve(std::min(covered, Available(source) / elementSize));
    // Through a small buffer: what arrives is appended while it is in the cache.
    double chunk[2048];
    const size_t done =
        TransferElements(source, size, sizeof chunk, [&](size_t /*offset*/, size_t asked) {
            const size_t read = Transfer(source, reinterpret_cast<unsigned char*>(chunk), asked);
            const size_t whole = read / elementSize;
            if (reverse8)
                std::transform(chunk, chunk + whole, chunk, Reversed<double>);
            values.insert(values.end(), chunk, chunk + whole);
            return read;
        });
    Settle(done, size, status, remaining);
    if (status == 0 && covered < count)
        status = noBudgetToRead;
    return total + static_cast<unsigned int>(done);
}

}  // namespace

void ZVImpl<double>::Name(std::string& name) const
{
    name += "double";
}

unsigned int ZVImpl<double>::Size(const double& value, const unsigned int& /*status*/,
                                  bool /*reverse*/) const
{
    return sizeof value;
}

unsigned int ZVImpl<double>::Write(unsigned char* buffer, bool /*reverse*/, const double& value,
                                   unsigned int& status, unsigned int& remaining) const
{
    return WriteField(buffer, value, status, remaining);
}

unsigned int ZVImpl<double>::Write(zvostream& stream, bool /*reverse*/, const double& value,
                                   unsigned int& status, unsigned int& remaining) const
{
    return WriteField(stream, value, status, remaining);
}

unsigned int ZVImpl<double>::Read(const unsigned char* buffer, bool reverse8, bool /*reverse4*/,
                                  bool /*reverse2*/, unsigned int version, double& value,
                                  unsigned int& status, unsigned int& remaining) const
{
    return ReadVersioned(buffer, reverse8, version, value, status, remaining);
}

unsigned int ZVImpl<double>::Read(zvistream& stream, bool reverse8, bool /*reverse4*/,
                                  bool /*reverse2*/, unsigned int version, double& value,
                                  unsigned int& status, unsigned int& remaining) const
{
    return ReadVersioned(stream, reverse8, version, value, status, remaining);
}

void ZVImpl<unsigned int>::Name(std::string& name) const
{
    name += "uint32";
}

unsigned int ZVImpl<unsigned int>::Size(const unsigned int& value, const unsigned int& /*status*/,
                                        bool /*reverse*/) const
{
    return sizeof value;
}

unsigned int ZVImpl<unsigned int>::Write(unsigned char* buffer, bool /*reverse*/,
                                         const unsigned int& value, unsigned int& status,
                                         unsigned int& remaining) const
{
    return WriteField(buffer, value, status, remaining);
}

unsigned int ZVImpl<unsigned int>::Write(zvostream& stream, bool /*reverse*/,
                                         const unsigned int& value, unsigned int& status,
                                         unsigned int& remaining) const
{
    return WriteField(stream, value, status, remaining);
}

unsigned int ZVImpl<unsigned int>::Read(const unsigned char* buffer, bool /*reverse8*/,
                                        bool reverse4, bool /*reverse2*/, unsigned int version,
                                        unsigned int& value, unsigned int& status,
                                        unsigned int& remaining) const
{
    return ReadVersioned(buffer, reverse4, version, value, status, remaining);
}

unsigned int ZVImpl<unsigned int>::Read(zvistream& stream, bool /*reverse8*/, bool reverse4,
                                        bool /*reverse2*/, unsigned int version,
                                        unsigned int& value, unsigned int& status,
                                        unsigned int& remaining) const
{
    return ReadVersioned(stream, reverse4, version, value, status, remaining);
}

unsigned int ZVSTLWrite(unsigned char* buffer, bool /*reverse*/, const std::vector<double>& values,
                        unsigned int& status, unsigned int& remaining)
{
    return WriteVector(buffer, values, status, remaining);
}

unsigned int ZVSTLWrite(zvostream& stream, bool /*reverse*/, const std::vector<double>& values,
                        unsigned int& status, unsigned int& remaining)
{
    return WriteVector(stream, values, status, remaining);
}

unsigned int ZVPushBackSTLRead(const unsigned char* buffer, bool reverse8, bool reverse4,
                               bool /*reverse2*/, unsigned int version, std::vector<double>& values,
                               unsigned int& status, unsigned int& remaining)
{
    return ReadVector(buffer, reverse8, reverse4, version, values, status, remaining);
}

unsigned int ZVPushBackSTLRead(zvistream& stream, bool reverse8, bool reverse4, bool /*reverse2*/,
                               unsigned int version, std::vector<double>& values,
                               unsigned int& status, unsigned int& remaining)
{
    return ReadVector(stream, reverse8, reverse4, version, values, status, remaining);
}

}  // namespace ZVPlatform::ZVBinaryDump

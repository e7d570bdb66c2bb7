#pragma once

#include "zvsystem/export.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace ZVPlatform
{

/// A stream that bytes are written to. Text is the same whatever the locale: numbers as
/// `std::to_chars` writes them, a double or float in the shortest form that reads back to the same
/// value ("0.1", "1e+05", "-0", "inf"), any NaN as "nan".
class ZVCOMPANION_EXPORT zvostream
{
public:
    virtual ~zvostream();

    /// Writes `count` bytes and returns how many: fewer when no more can be.
    virtual size_t write(const unsigned char* bytes, size_t count) = 0;

    /// Whether one call for many bytes writes as many as calls for parts of them, one after another
    /// up to the first that falls short. Records are then written in bulk, or else by fields.
    virtual bool bulk() const { return false; }

    /// Writes a value as text.
    zvostream& operator<<(double value);
    zvostream& operator<<(float value);
    zvostream& operator<<(int value);
    zvostream& operator<<(unsigned int value);
    zvostream& operator<<(long value);
    zvostream& operator<<(unsigned long value);
    zvostream& operator<<(long long value);
    zvostream& operator<<(unsigned long long value);
    zvostream& operator<<(char character);
    zvostream& operator<<(std::string_view text);
    zvostream& operator<<(const char* text) { return *this << std::string_view(text); }
    zvostream& operator<<(zvostream& (*manipulator)(zvostream&)) { return manipulator(*this); }

    /// False once a number or text was not written in full; from then on none is.
    bool good() const { return !failed; }

private:
    bool failed = false;
};

/// Ends the line: "\n" on every system. Nothing is flushed.
ZVCOMPANION_EXPORT zvostream& zvendl(zvostream& stream);

/// The characters of a double as streams write it, at most 24, without a null. `text` must have
/// room for 40; the result is the end.
ZVCOMPANION_EXPORT char* ZVFormatDouble(char* text, double value);

/// A stream that bytes are read from.
class ZVCOMPANION_EXPORT zvistream
{
public:
    virtual ~zvistream();

    /// Reads `count` bytes and returns how many: fewer when no more are to be had.
    virtual size_t read(unsigned char* bytes, size_t count) = 0;

    /// Whether one call for many bytes reads as many as calls for parts of them, one after another
    /// up to the first that falls short. Records are then read in bulk, or else by fields.
    virtual bool bulk() const { return false; }

    /// A number of bytes that can surely be read: readers take memory for so many at once, and for
    /// more only as they arrive.
    virtual size_t available() const { return 0; }
};

/// Writes into memory of its own, as much as there is (`std::bad_alloc`).
class ZVCOMPANION_EXPORT zvomemorystream : public zvostream
{
public:
    size_t write(const unsigned char* bytes, size_t count) override;
    bool bulk() const override { return true; }

    /// What was written, as bytes and as text.
    const std::vector<unsigned char>& contents() const { return memory; }
    std::string text() const;
    /// Forgets it.
    void clear() { memory.clear(); }

private:
    std::vector<unsigned char> memory;
};

/// Reads from memory of the caller's, which must outlive it.
class ZVCOMPANION_EXPORT zvimemorystream : public zvistream
{
public:
    /// Over `size` bytes.
    zvimemorystream(const void* memory, size_t size);
    size_t read(unsigned char* bytes, size_t count) override;
    bool bulk() const override { return true; }
    size_t available() const override { return left; }

private:
    const unsigned char* next;
    size_t left;
};

/// Writes to a standard stream, which must outlive it. What that is set to throw passes through.
class ZVCOMPANION_EXPORT zvostdstream : public zvostream
{
public:
    /// Onto `standard`.
    explicit zvostdstream(std::ostream& standard) : target(&standard) {}
    size_t write(const unsigned char* bytes, size_t count) override;
    bool bulk() const override { return true; }

private:
    std::ostream* target;
};

/// Reads from a standard stream, which must outlive it. What that is set to throw passes through.
class ZVCOMPANION_EXPORT zvistdstream : public zvistream
{
public:
    /// From `standard`.
    explicit zvistdstream(std::istream& standard) : source(&standard) {}
    size_t read(unsigned char* bytes, size_t count) override;
    bool bulk() const override { return true; }

private:
    std::istream* source;
};

}  // namespace ZVPlatform

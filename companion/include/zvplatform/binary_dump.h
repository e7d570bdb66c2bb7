#pragma once

#include "zvplatform/streams.h"
#include "zvsystem/export.h"

#include <string>
#include <vector>

/// Binary records of values, written to and read from buffers and streams.
///
/// `ZVImpl<T>` knows the record of a type. Its functions share:
/// - `status`: 0 while all went well; with any other value on entry nothing is done. Set to
///   1 when the version is not 1; 4 when a stream transferred fewer bytes than a field has; 5 or 6
///   when the budget did not suffice for the next field on reading or writing; 7 when a record's
///   parts do not fit each other.
/// - `remaining`: the byte budget, less the size of every field that is read or written. A
///   buffer must have so many bytes.
/// - the result: the bytes written or consumed, those of an unfinished field on a stream included.
///
/// Fields have the byte order of the machine that wrote them. `reverse8` and `reverse4` reverse the
/// bytes of fields of 8 and 4 bytes on reading; `reverse2` and `reverse` on writing have no effect.
namespace ZVPlatform::ZVBinaryDump
{

template <class T> class ZVImpl;

/// 8 bytes.
template <> class ZVCOMPANION_EXPORT ZVImpl<double>
{
public:
    /// Appends "double".
    void Name(std::string& name) const;

    /// The size of the record, and writing and reading it: see above.
    unsigned int Size(const double& value, const unsigned int& status, bool reverse) const;
    unsigned int Write(unsigned char* buffer, bool reverse, const double& value,
                       unsigned int& status, unsigned int& remaining) const;
    unsigned int Write(zvostream& stream, bool reverse, const double& value, unsigned int& status,
                       unsigned int& remaining) const;
    unsigned int Read(const unsigned char* buffer, bool reverse8, bool reverse4, bool reverse2,
                      unsigned int version, double& value, unsigned int& status,
                      unsigned int& remaining) const;
    unsigned int Read(zvistream& stream, bool reverse8, bool reverse4, bool reverse2,
                      unsigned int version, double& value, unsigned int& status,
                      unsigned int& remaining) const;
};

/// 4 bytes.
template <> class ZVCOMPANION_EXPORT ZVImpl<unsigned int>
{
public:
    /// Appends "uint32".
    void Name(std::string& name) const;

    /// The size of the record, and writing and reading it: see above.
    unsigned int Size(const unsigned int& value, const unsigned int& status, bool reverse) const;
    unsigned int Write(unsigned char* buffer, bool reverse, const unsigned int& value,
                       unsigned int& status, unsigned int& remaining) const;
    unsigned int Write(zvostream& stream, bool reverse, const unsigned int& value,
                       unsigned int& status, unsigned int& remaining) const;
    unsigned int Read(const unsigned char* buffer, bool reverse8, bool reverse4, bool reverse2,
                      unsigned int version, unsigned int& value, unsigned int& status,
                      unsigned int& remaining) const;
    unsigned int Read(zvistream& stream, bool reverse8, bool reverse4, bool reverse2,
                      unsigned int version, unsigned int& value, unsigned int& status,
                      unsigned int& remaining) const;
};

/// The record of a vector: the number of elements, below 2^32, in 4 bytes, then the elements, 8
/// bytes each. As many elements are written as the budget allows.
ZVCOMPANION_EXPORT unsigned int ZVSTLWrite(unsigned char* buffer, bool reverse,
                                           const std::vector<double>& values, unsigned int& status,
                                           unsigned int& remaining);
ZVCOMPANION_EXPORT unsigned int ZVSTLWrite(zvostream& stream, bool reverse,
                                           const std::vector<double>& values, unsigned int& status,
                                           unsigned int& remaining);

/// Replaces `values` by those of a vector's record, or by the first ones when it ends early.
///
/// Memory is taken for elements that the budget covers and the source holds, not for what the
/// record claims: from a stream it grows as they arrive. (`std::bad_alloc` leaves `values` with
/// some of the elements.)
ZVCOMPANION_EXPORT unsigned int ZVPushBackSTLRead(const unsigned char* buffer, bool reverse8,
                                                  bool reverse4, bool reverse2,
                                                  unsigned int version, std::vector<double>& values,
                                                  unsigned int& status, unsigned int& remaining);
ZVCOMPANION_EXPORT unsigned int ZVPushBackSTLRead(zvistream& stream, bool reverse8, bool reverse4,
                                                  bool reverse2, unsigned int version,
                                                  std::vector<double>& values, unsigned int& status,
                                                  unsigned int& remaining);

}  // namespace ZVPlatform::ZVBinaryDump

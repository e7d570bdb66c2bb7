#include "zvmath/mult_prec_int.h"

#include "mult_prec_int_impl.h"

namespace ZVMath
{

ZVMultPrecInt::ZVMultPrecInt() : impl(std::make_unique<ZVMultPrecIntImpl>())
{
}

ZVMultPrecInt::ZVMultPrecInt(int value) : impl(std::make_unique<ZVMultPrecIntImpl>(value))
{
}

ZVMultPrecInt::ZVMultPrecInt(const ZVMultPrecInt& other)
    : impl(other.impl ? other.impl->CreateCopy() : nullptr)
{
}

ZVMultPrecInt& ZVMultPrecInt::operator=(const ZVMultPrecInt& other)
{
    if (this != &other)
        ZVMultPrecInt(other).impl.swap(impl);  // what may fail comes first
    return *this;
}

ZVMultPrecInt& ZVMultPrecInt::operator=(int value)
{
    impl = std::make_unique<ZVMultPrecIntImpl>(value);
    return *this;
}

ZVMultPrecInt::~ZVMultPrecInt() = default;

ZVMultPrecInt& ZVMultPrecInt::operator+=(const ZVMultPrecInt& right)
{
    impl->IncrementByRHS(*right.impl);
    return *this;
}

ZVMultPrecInt& ZVMultPrecInt::operator-=(const ZVMultPrecInt& right)
{
    impl->DecrementByRHS(*right.impl);
    return *this;
}

ZVMultPrecInt operator+(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    ZVMultPrecInt sum(left);
    sum += right;
    return sum;
}

ZVMultPrecInt operator-(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    ZVMultPrecInt difference(left);
    difference -= right;
    return difference;
}

ZVMultPrecInt MpAbsVal(const ZVMultPrecInt& number)
{
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): what it points to is changed.
    ZVMultPrecInt magnitude(number);
    magnitude.GetImpl()->SetSignPositive();
    return magnitude;
}

bool operator<(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    return left.GetImpl()->Compare(*right.GetImpl()) < 0;
}

bool operator<=(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    return left.GetImpl()->Compare(*right.GetImpl()) <= 0;
}

bool operator==(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    return left.GetImpl()->Compare(*right.GetImpl()) == 0;
}

bool operator>=(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    return left.GetImpl()->Compare(*right.GetImpl()) >= 0;
}

bool operator>(const ZVMultPrecInt& left, const ZVMultPrecInt& right)
{
    return left.GetImpl()->Compare(*right.GetImpl()) > 0;
}

}  // namespace ZVMath

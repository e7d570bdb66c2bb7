#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZVSystem
{

/// What an iterator over elements of type T can do. Programs hold it in a `ZVIter<T>`.
template <class T> class ZVIterBase
{
public:
    virtual ~ZVIterBase() = default;

    /// Whether there is no element left.
    virtual bool AtEnd() const = 0;

    /// The element; not to be called at the end.
    virtual T& Get() const = 0;

    /// To the next element; at the end, nothing.
    virtual void Next() = 0;

    /// To the element before, from the end to the last one; at the first element, nothing.
    virtual void Previous() = 0;

    /// An iterator of its own, at the same element.
    virtual std::unique_ptr<ZVIterBase> Clone() const = 0;
};

/// An iterator handle: owns an iterator of any kind over elements of type T.
///
/// Loop by the handle itself, by a range-for, or hand it to what takes input iterators:
///
///     for (auto i = series.GetPoints(); !i.AtEnd(); ++i) Use(i->x);
///     for (const ZVDataPoint& point : series.GetPoints()) Use(point.x);
///     auto points = series.GetPoints();
///     std::vector<ZVDataPoint> copy(points.begin(), points.end());
///
/// A copy steps by itself. A moved-from handle is at the end, as is a new one.
template <class T> class ZVIter
{
public:
    /// What the standard library asks of an input iterator.
    using iterator_category = std::input_iterator_tag;
    using value_type = std::remove_cv_t<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;

    /// At the end, or where `owned` is.
    ZVIter() = default;
    explicit ZVIter(std::unique_ptr<ZVIterBase<T>> owned) : iter(std::move(owned)) {}
    ZVIter(const ZVIter& other) : iter(other.iter ? other.iter->Clone() : nullptr) {}
    ZVIter(ZVIter&&) noexcept = default;
    ZVIter& operator=(ZVIter other) noexcept
    {
        iter = std::move(other.iter);
        return *this;
    }

    /// Whether no element is left.
    bool AtEnd() const { return !iter || iter->AtEnd(); }

    /// Not to be called at the end.
    T& operator*() const { return iter->Get(); }
    T* operator->() const { return &iter->Get(); }

    /// To the next element; at the end, nothing.
    ZVIter& operator++()
    {
        if (iter)
            iter->Next();
        return *this;
    }
    ZVIter operator++(int)
    {
        ZVIter before(*this);
        ++*this;
        return before;
    }

    /// One element back, from the end to the last; at the first element, nothing.
    ZVIter& operator--()
    {
        if (iter)
            iter->Previous();
        return *this;
    }
    ZVIter operator--(int)
    {
        ZVIter before(*this);
        --*this;
        return before;
    }

    /// Whether both are at the end, or at the same element in memory.
    friend bool operator==(const ZVIter& a, const ZVIter& b)
    {
        if (a.AtEnd() || b.AtEnd())
            return a.AtEnd() == b.AtEnd();
        return &*a == &*b;
    }
    friend bool operator!=(const ZVIter& a, const ZVIter& b) { return !(a == b); }

    /// From where the handle is to the end.
    ZVIter begin() const { return *this; }
    ZVIter end() const { return {}; }

private:
    std::unique_ptr<ZVIterBase<T>> iter;
};

/// Adapts a pair of bidirectional iterators, whose elements must outlive it.
template <class Iterator>
class ZVAdaptorIter
    : public ZVIterBase<std::remove_reference_t<typename std::iterator_traits<Iterator>::reference>>
{
public:
    /// The elements' type.
    using T = std::remove_reference_t<typename std::iterator_traits<Iterator>::reference>;

    /// At `begin`.
    ZVAdaptorIter(Iterator begin, Iterator end) : first(begin), current(begin), last(end) {}

    bool AtEnd() const override { return current == last; }
    T& Get() const override { return *current; }
    void Next() override
    {
        if (current != last)
            ++current;
    }
    void Previous() override
    {
        if (current != first)
            --current;
    }
    std::unique_ptr<ZVIterBase<T>> Clone() const override
    {
        return std::make_unique<ZVAdaptorIter>(*this);
    }

private:
    Iterator first;
    Iterator current;
    Iterator last;
};

/// Iterates over elements of its own, which nobody can change. Copies share them.
template <class T> class ZVCachingIter : public ZVIterBase<const T>
{
public:
    /// At the first of `elements`.
    explicit ZVCachingIter(std::vector<T> elements)
        : cache(std::make_shared<const std::vector<T>>(std::move(elements)))
    {
    }

    bool AtEnd() const override { return index == cache->size(); }
    const T& Get() const override { return (*cache)[index]; }
    void Next() override { index += index < cache->size() ? 1 : 0; }
    void Previous() override { index -= index > 0 ? 1 : 0; }
    std::unique_ptr<ZVIterBase<const T>> Clone() const override
    {
        return std::make_unique<ZVCachingIter>(*this);
    }

private:
    std::shared_ptr<const std::vector<T>> cache;
    size_t index = 0;
};

/// A handle over [first, last).
template <class Iterator> auto MakeAdaptorIter(Iterator first, Iterator last)
{
    using Adaptor = ZVAdaptorIter<Iterator>;
    return ZVIter<typename Adaptor::T>(std::make_unique<Adaptor>(first, last));
}

/// A handle over elements of its own.
template <class T> ZVIter<const T> MakeCachingIter(std::vector<T> elements)
{
    return ZVIter<const T>(std::make_unique<ZVCachingIter<T>>(std::move(elements)));
}

}  // namespace ZVSystem

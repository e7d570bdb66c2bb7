#include "zvmath/simple_shapes.h"

#include "multiversion.h"

#include <cstddef>

namespace ZVMath
{

namespace
{

/// What is left when `value` comes after `most`; a NaN changes nothing, and is not changed.
ZVMATH_INLINE void Raise(float& most, float value)
{
    most = most < value ? value : most;
}

ZVMATH_INLINE void Lower(float& least, float value)
{
    least = value < least ? value : least;
}

/// The largest and the smallest coordinates of `count` > 0 points, but that a zero may have the
/// wrong sign.
ZVMATH_CLONES void FindExtremes(float* most, float* least, const float* coords, size_t count)
{
    for (size_t axis = 0; axis < 3; ++axis)
        most[axis] = least[axis] = coords[axis];
    // Eight points are three times eight floats, and the same axis is always in the same place.
    constexpr size_t group = 8;
    constexpr size_t floats = 3 * group;
    size_t i = 0;
    if (count >= 4 * group) {  // few points are faster one by one
        Vec8 mosts[3];
        for (size_t k = 0; k < floats; ++k)
            mosts[k / 8][k % 8] = coords[k % 3];
        Vec8 leasts[3] = {mosts[0], mosts[1], mosts[2]};
        for (; i + group <= count; i += group)
            for (size_t k = 0; k < 3; ++k) {
                const Vec8 v = Eight(coords + 3 * i + 8 * k).v;
                mosts[k] = v > mosts[k] ? v : mosts[k];
                leasts[k] = v < leasts[k] ? v : leasts[k];
            }
        for (size_t k = 0; k < floats; ++k) {
            Raise(most[k % 3], mosts[k / 8][k % 8]);
            Lower(least[k % 3], leasts[k / 8][k % 8]);
        }
    }
    for (; i < count; ++i)
        for (size_t axis = 0; axis < 3; ++axis) {
            Raise(most[axis], coords[3 * i + axis]);
            Lower(least[axis], coords[3 * i + axis]);
        }
}

/// Zeros are equal, so the first one to come stays.
float FirstZero(const float* coords, size_t count, size_t axis)
{
    for (size_t i = 0; i < count; ++i)
        if (coords[3 * i + axis] == 0.0f)
            return coords[3 * i + axis];
    return 0.0f;
}

}  // namespace

float ZVBox::GetXMid() const
{
    return (xmin + xmax) * 0.5f;
}

float ZVBox::GetYMid() const
{
    return (ymin + ymax) * 0.5f;
}

float ZVBox::GetZMid() const
{
    return (zmin + zmax) * 0.5f;
}

float ZVBox::GetXDim() const
{
    return xmax - xmin;
}

float ZVBox::GetYDim() const
{
    return ymax - ymin;
}

float ZVBox::GetZDim() const
{
    return zmax - zmin;
}

bool ZVBox::Setup(float x1, float y1, float z1, float x2, float y2, float z2)
{
    const auto order = [](float a, float b, float& most, float& least) {
        most = a < b ? b : a;
        least = b < a ? b : a;
    };
    order(x1, x2, xmax, xmin);
    order(y1, y2, ymax, ymin);
    order(z1, z2, zmax, zmin);
    return true;
}

bool ZVBox::Setup(const float* coords, unsigned int count, float pad)
{
    if (count == 0)
        return false;
    float most[3];
    float least[3];
    FindExtremes(most, least, coords, count);
    for (size_t axis = 0; axis < 3; ++axis) {
        if (most[axis] == 0.0f)
            most[axis] = FirstZero(coords, count, axis);
        if (least[axis] == 0.0f)
            least[axis] = FirstZero(coords, count, axis);
    }
    Setup(most[0], most[1], most[2], least[0], least[1], least[2]);
    return Extend(pad);
}

bool ZVBox::Setup(const float* center, const float* extents)
{
    return Setup(center[0] + extents[0], center[1] + extents[1], center[2] + extents[2],
                 center[0] - extents[0], center[1] - extents[1], center[2] - extents[2]);
}

bool ZVBox::Extend(float d)
{
    return Extend(d, d, d);
}

bool ZVBox::Extend(float dx, float dy, float dz)
{
    xmax += dx;
    ymax += dy;
    zmax += dz;
    xmin -= dx;
    ymin -= dy;
    zmin -= dz;
    return true;
}

bool ZVBox::Translate(float dx, float dy, float dz)
{
    xmax += dx;
    ymax += dy;
    zmax += dz;
    xmin += dx;
    ymin += dy;
    zmin += dz;
    return true;
}

float ZVBox::GetVolume() const
{
    return GetXDim() * GetYDim() * GetZDim();
}

float ZVBox::GetArea() const
{
    const float half = GetZDim() * GetYDim() + (GetYDim() + GetZDim()) * GetXDim();
    return half + half;
}

bool ZVBox::IsInside(float x, float y, float z) const
{
    return !(x > xmax || xmin > x || y > ymax || ymin > y || z > zmax || zmin > z);
}

bool ZVSphere::SetRad(float radius)
{
    rad = radius;
    return true;
}

bool ZVSphere::SetCenter(float centerX, float centerY, float centerZ)
{
    x = centerX;
    y = centerY;
    z = centerZ;
    return true;
}

float ZVSphere::GetVolume() const
{
    const double r = rad;
    return static_cast<float>(r * r * 4.1887902047863905 * r);  // 4 pi / 3
}

float ZVSphere::GetArea() const
{
    const double r = rad;
    return static_cast<float>(r * r * 12.566370614359172);  // 4 pi
}

bool ZVSphere::IsInside(float px, float py, float pz) const
{
    const float dx = px - x;
    const float dy = py - y;
    const float dz = pz - z;
    return rad * rad >= dz * dz + (dx * dx + dy * dy);
}

bool ZVBoxExtend(ZVBox& box, float dx, float dy, float dz)
{
    return box.Extend(dx, dy, dz);
}

bool ZVBoxExtend(ZVBox& box, float d)
{
    return box.Extend(d);
}

bool ZVBoxTranslate(ZVBox& box, float dx, float dy, float dz)
{
    return box.Translate(dx, dy, dz);
}

float ZVBoxVolume(const ZVBox& box)
{
    return box.GetVolume();
}

float ZVBoxArea(const ZVBox& box)
{
    return box.GetArea();
}

bool ZVInBox(const ZVBox& box, float x, float y, float z)
{
    return box.IsInside(x, y, z);
}

float ZVBoxXMid(const ZVBox& box)
{
    return box.GetXMid();
}

float ZVBoxYMid(const ZVBox& box)
{
    return box.GetYMid();
}

float ZVBoxZMid(const ZVBox& box)
{
    return box.GetZMid();
}

float ZVBoxXDim(const ZVBox& box)
{
    return box.GetXDim();
}

float ZVBoxYDim(const ZVBox& box)
{
    return box.GetYDim();
}

float ZVBoxZDim(const ZVBox& box)
{
    return box.GetZDim();
}

bool ZVSetupBox(ZVBox& box, const float* coords, unsigned int count, float pad)
{
    return box.Setup(coords, count, pad);
}

bool ZVSetupBoxCenterAndExtents(ZVBox& box, const float* center, const float* extents)
{
    return box.Setup(center, extents);
}

float ZVSphereVolume(const ZVSphere& sphere)
{
    return sphere.GetVolume();
}

float ZVSphereArea(const ZVSphere& sphere)
{
    return sphere.GetArea();
}

bool ZVInSphere(const ZVSphere& sphere, float x, float y, float z)
{
    return sphere.IsInside(x, y, z);
}

}  // namespace ZVMath

#pragma once

#include "zvmath/export.h"

/// Boxes along the axes and spheres, in single precision: every operation is rounded to float.
///
/// Points are three floats, point sets arrays of x, y, z triples one after the other. The objects
/// are plain values without state, and only the search for the smallest box may allocate memory.
namespace ZVMath
{

/// A box along the axes: its maximum and its minimum corner. A new one is all zeros.
class ZVMATH_EXPORT ZVBox
{
public:
    /// The faces.
    float GetXMax() const { return xmax; }
    float GetYMax() const { return ymax; }
    float GetZMax() const { return zmax; }
    float GetXMin() const { return xmin; }
    float GetYMin() const { return ymin; }
    float GetZMin() const { return zmin; }

    /// The middle on each axis: (min + max) * 0.5.
    float GetXMid() const;
    float GetYMid() const;
    float GetZMid() const;

    /// The length along each axis: max - min.
    float GetXDim() const;
    float GetYDim() const;
    float GetZDim() const;

    /// The box with two opposite corners, in any order. On an axis where either is NaN, both become
    /// the first one's. Returns true.
    bool Setup(float x1, float y1, float z1, float x2, float y2, float z2);

    /// The bounding box of `count` points, each face moved outwards by `pad` (inwards, if that is
    /// negative). A NaN coordinate is ignored; in the first point it stays, on both sides. False,
    /// and the box stays as it is, if `count` is 0. Cost: one read of the points.
    bool Setup(const float* coords, unsigned int count, float pad);

    /// The box from center - extents to center + extents; a negative extent counts as a positive
    /// one. Returns true.
    bool Setup(const float* center, const float* extents);

    /// Moves the faces outwards: by d, or by an amount for each axis. With negative amounts maximum
    /// and minimum may change places. Returns true.
    bool Extend(float d);
    bool Extend(float dx, float dy, float dz);

    /// Moves the box. Returns true.
    bool Translate(float dx, float dy, float dz);

    /// (x * y) * z of the lengths x, y, z.
    float GetVolume() const;

    /// The surface area: s + s with s = z * y + (y + z) * x of the lengths x, y, z.
    float GetArea() const;

    /// Whether the point is in the box or on a face. A NaN coordinate counts as inside.
    bool IsInside(float x, float y, float z) const;

private:
    float xmax = 0.0f;
    float ymax = 0.0f;
    float zmax = 0.0f;
    float xmin = 0.0f;
    float ymin = 0.0f;
    float zmin = 0.0f;
};

/// A sphere: centre and radius. A new one is all zeros.
class ZVMATH_EXPORT ZVSphere
{
public:
    ZVSphere() = default;
    /// A sphere with this centre and radius.
    ZVSphere(float centerX, float centerY, float centerZ, float radius)
        : x(centerX), y(centerY), z(centerZ), rad(radius)
    {
    }

    /// The centre and the radius.
    float GetX() const { return x; }
    float GetY() const { return y; }
    float GetZ() const { return z; }
    float GetRad() const { return rad; }

    /// Returns true.
    bool SetRad(float radius);
    /// Returns true.
    bool SetCenter(float centerX, float centerY, float centerZ);

    /// ((rad * rad) * 4 pi / 3) * rad, in double, then rounded to float.
    float GetVolume() const;

    /// (rad * rad) * 4 pi, in double, then rounded to float.
    float GetArea() const;

    /// Whether the point is in the sphere or on it: rad^2 >= dz^2 + (dx^2 + dy^2) of the distances
    /// from the centre. With a NaN: false.
    bool IsInside(float px, float py, float pz) const;

private:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float rad = 0.0f;
};

/// The members of that name, as functions.
ZVMATH_EXPORT bool ZVBoxExtend(ZVBox& box, float dx, float dy, float dz);
ZVMATH_EXPORT bool ZVBoxExtend(ZVBox& box, float d);
ZVMATH_EXPORT bool ZVBoxTranslate(ZVBox& box, float dx, float dy, float dz);
ZVMATH_EXPORT float ZVBoxVolume(const ZVBox& box);
ZVMATH_EXPORT float ZVBoxArea(const ZVBox& box);
ZVMATH_EXPORT bool ZVInBox(const ZVBox& box, float x, float y, float z);
ZVMATH_EXPORT float ZVBoxXMid(const ZVBox& box);
ZVMATH_EXPORT float ZVBoxYMid(const ZVBox& box);
ZVMATH_EXPORT float ZVBoxZMid(const ZVBox& box);
ZVMATH_EXPORT float ZVBoxXDim(const ZVBox& box);
ZVMATH_EXPORT float ZVBoxYDim(const ZVBox& box);
ZVMATH_EXPORT float ZVBoxZDim(const ZVBox& box);
ZVMATH_EXPORT bool ZVSetupBox(ZVBox& box, const float* coords, unsigned int count, float pad);
ZVMATH_EXPORT bool ZVSetupBoxCenterAndExtents(ZVBox& box, const float* center,
                                              const float* extents);
ZVMATH_EXPORT float ZVSphereVolume(const ZVSphere& sphere);
ZVMATH_EXPORT float ZVSphereArea(const ZVSphere& sphere);
ZVMATH_EXPORT bool ZVInSphere(const ZVSphere& sphere, float x, float y, float z);

/// The orientation in which the points' bounding box is smallest, among numSteps^3 of them.
///
/// Each of three angles takes the numSteps values from 0 to pi/2, evenly, ends included: angle k is
/// k * (pi/2) * (1 / (numSteps - 1)) in double, rounded to float. The points are turned about z by
/// the first angle t, then about x by the second, then about z by the third, with sin and cos in
/// single precision:
///
///     about z:  x' = cos t * x - sin t * y    y' = y * cos t + x * sin t    z' = z
///     about x:  x' = x    y' = cos t * y - sin t * z    z' = z * cos t + y * sin t
///
/// and the volume is (dx * dy) * dz of the turned points' extents, everything in float.
/// `rotation` receives the three angles, in radians, of the first orientation, in the order of the
/// loops over first, second and third angle, that no other one's volume is below.
///
/// `coords` are `count` x, y, z triples. A NaN coordinate of a turned point is passed over; in the
/// first point it spoils the volume, and such a volume never wins. True if some orientation had a
/// volume below the largest float; otherwise `rotation` is (0, 0, 0), as it is with `count` 0 or
/// numSteps < 2.
///
/// These angles reach three quarters of the orientations that a box can have: the others are their
/// mirror images. Search once more with every x negated and keep the smaller box, to reach all.
///
/// Every orientation is accounted for, but most of them by a lower bound only: the volume of some
/// of the points. For clouds and solids the cost is that of reading the points some ten or a
/// hundred times and 5 to 10 ns per orientation; for points that all lie on a sphere, where bounds
/// say little, up to count * numSteps^3 steps. Scratch: 12 bytes a point and 8 a step, on the stack
/// up to ZVPlatform::ZVGetAllocaThreshold() bytes, else on the heap (std::bad_alloc).
ZVMATH_EXPORT bool ZVGetSmallestEnclosingBoxRotation(float* rotation, const float* coords,
                                                     unsigned int count, unsigned int numSteps);

}  // namespace ZVMath

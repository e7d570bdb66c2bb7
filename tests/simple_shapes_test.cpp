#include "zvmath/simple_shapes.h"

#include "check.h"

using namespace ZVMath;
using namespace ZVTest;

namespace
{

std::vector<double> Corners(const ZVBox& box)
{
    return {box.GetXMax(), box.GetYMax(), box.GetZMax(),
            box.GetXMin(), box.GetYMin(), box.GetZMin()};
}

/// Point after point, in the order that decides which of two zeros stays.
std::vector<double> PlainCorners(const std::vector<float>& coords, float pad)
{
    float most[3] = {}, least[3] = {};
    for (size_t i = 0; i < coords.size(); ++i) {
        float &high = most[i % 3], &low = least[i % 3];
        if (i < 3)
            high = low = coords[i];
        if (high < coords[i])
            high = coords[i];
        if (coords[i] < low)
            low = coords[i];
    }
    std::vector<double> corners;
    for (const float value : most)
        corners.push_back(value + pad);
    for (const float value : least)
        corners.push_back(value - pad);
    return corners;
}

TEST(Box, BoundsPoints)
{
    std::mt19937 random(1);
    const float special[] = {0.0f,       -0.0f,  float(inf), -float(inf),
                             float(NaN), 1e-44f, 3e38f,      -1.0f};
    for (unsigned int trial = 0; trial < 20000; ++trial) {
        const size_t count = 1 + random() % 80, kinds = trial % 9;
        std::vector<float> coords(3 * count);
        for (float& value : coords)
            value = random() % 9 < kinds ? special[random() % 8] : float(Uniform(random));
        if (trial % 3 == 0)  // the extremes are zeros
            for (float& value : coords)
                value = random() % 3 ? -0.0f : trial % 2 ? std::fabs(value) : 0.0f;
        const float pad = trial % 5 == 0 ? -0.25f : trial % 2 ? 0.0f : -0.0f;
        ZVBox box;
        EXPECT_FALSE(box.Setup(coords.data(), 0, 1.0f));
        EXPECT_EQ(Corners(box), std::vector<double>(6));
        EXPECT_TRUE(box.Setup(coords.data(), static_cast<unsigned int>(count), pad));
        ASSERT_TRUE(SameBits(Corners(box), PlainCorners(coords, pad))) << trial;
    }
}

TEST(Box, DefinedCases)
{
    ZVBox box;
    EXPECT_TRUE(box.Setup(1, 5, 3, 4, 2, 6));
    EXPECT_EQ(Corners(box), (std::vector<double>{4, 5, 6, 1, 2, 3}));
    EXPECT_TRUE(box.Setup(1, float(NaN), 0.0f, float(NaN), 2, -0.0f));
    EXPECT_TRUE(SameBits(Corners(box), {1, NaN, 0.0, 1, NaN, 0.0}));
    const float center[] = {0, 1, 2}, extents[] = {-1, 2, 3};
    EXPECT_TRUE(ZVSetupBoxCenterAndExtents(box, center, extents));
    EXPECT_EQ(Corners(box), (std::vector<double>{1, 3, 5, -1, -1, -1}));
    EXPECT_TRUE(ZVBoxTranslate(box, 1, 2, 3) && ZVBoxExtend(box, 0.5f, 0, -4) &&
                ZVBoxExtend(box, 1));
    EXPECT_EQ(Corners(box), (std::vector<double>{3.5, 6, 5, -1.5, 0, 5}));
    EXPECT_EQ(ZVBoxXMid(box), 1.0f);
    EXPECT_EQ(ZVBoxYMid(box), 3.0f);
    EXPECT_EQ(ZVBoxZMid(box), 5.0f);
    ZVBoxExtend(box, 0, 0, -1);
    EXPECT_EQ(ZVBoxXDim(box), 5.0f);
    EXPECT_EQ(ZVBoxYDim(box), 6.0f);
    EXPECT_EQ(ZVBoxZDim(box), -2.0f);
    EXPECT_EQ(ZVBoxVolume(box), -60.0f);
    EXPECT_EQ(ZVBoxArea(box), 2 * (30.0f - 12.0f - 10.0f));
    // Where the order of roundings shows.
    const float corner[] = {0.1f, 0.7f, 3.3f};
    box.Setup(corner[0], corner[1], corner[2], 0, 0, 0);
    const float area = corner[2] * corner[1] + (corner[1] + corner[2]) * corner[0];
    EXPECT_EQ(box.GetArea(), area + area);
    EXPECT_EQ(box.GetVolume(), corner[0] * corner[1] * corner[2]);
}

TEST(Shapes, Containment)
{
    ZVBox box;
    const float one = 1.0f, above = std::nextafter(one, 2.0f), nan = float(NaN);
    box.Setup(one, one, one, -one, -one, -one);
    const ZVSphere sphere(1, 2, 3, 2);
    const struct
    {
        float x, y, z;
        bool inBox, inSphere;  // the latter measured from the centre, in halves of the radius
    } cases[] = {{0, 0, 0, true, true},          {one, -one, one, true, false},
                 {one, 0, 0, true, true},        {above, 0, 0, false, false},
                 {0, -above, 0, false, false},   {0, 0, above, false, false},
                 {-above, nan, 0, false, false}, {nan, nan, nan, true, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(ZVInBox(box, c.x, c.y, c.z), c.inBox) << c.x << ' ' << c.y << ' ' << c.z;
        ZVSphere unit(0, 0, 0, 1);
        EXPECT_EQ(ZVInSphere(unit, c.x, c.y, c.z), c.inSphere) << c.x << ' ' << c.y << ' ' << c.z;
    }
    EXPECT_EQ(ZVSphereVolume(sphere), 33.5103216f);
    EXPECT_EQ(ZVSphereArea(sphere), 50.2654824f);
    EXPECT_TRUE(sphere.IsInside(3, 2, 3));
    EXPECT_FALSE(sphere.IsInside(3.0001f, 2, 3));
    ZVSphere moved;
    EXPECT_FALSE(moved.GetX() != 0 || moved.GetY() != 0 || moved.GetZ() != 0 ||
                 moved.GetRad() != 0);
    EXPECT_TRUE(moved.SetCenter(1, 2, 3) && moved.SetRad(1e30f));
    EXPECT_EQ(moved.GetVolume(), float(inf));
    EXPECT_EQ(moved.GetArea(), float(inf));
    EXPECT_FALSE(moved.IsInside(float(NaN), 2, 3));
}

}  // namespace

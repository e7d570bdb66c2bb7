// A hill, surveyed on a level grid, comes in coordinates that are turned against it, as a scanner
// that stands askew would give them. Finds the smallest box around the points.

#include "table.h"

#include "zvmath/simple_shapes.h"

#include <algorithm>
#include <array>

namespace
{

constexpr double degree = 0.017453292519943295;  // pi / 180
constexpr unsigned int numSteps = 61;            // one angle every 1.5 degrees

/// Three coordinates in m for each point, one point after the other.
using Points = std::vector<float>;

/// Turns or mirrors: x' = M x. Its transpose undoes that.
using Matrix = std::array<std::array<double, 3>, 3>;

Matrix Product(const Matrix& a, const Matrix& b)
{
    Matrix product{};
    for (size_t i = 0; i < 3; ++i)
        for (size_t j = 0; j < 3; ++j)
            product[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
    return product;
}

Matrix Transpose(const Matrix& m)
{
    Matrix transpose{};
    for (size_t i = 0; i < 3; ++i)
        for (size_t j = 0; j < 3; ++j)
            transpose[i][j] = m[j][i];
    return transpose;
}

/// The turn by `angle`, in radians, that takes axis `from` towards axis `to`.
Matrix Turn(size_t from, size_t to, double angle)
{
    Matrix turn = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    turn[from][from] = turn[to][to] = std::cos(angle);
    turn[to][from] = std::sin(angle);
    turn[from][to] = -turn[to][from];
    return turn;
}

Matrix AboutX(double angle)
{
    return Turn(1, 2, angle);
}

Matrix AboutY(double angle)
{
    return Turn(2, 0, angle);
}

Matrix AboutZ(double angle)
{
    return Turn(0, 1, angle);
}

Points Turned(const Points& points, const Matrix& m)
{
    Points turned;
    turned.reserve(points.size());
    for (size_t p = 0; p < points.size(); p += 3)
        for (const std::array<double, 3>& row : m)
            turned.push_back(static_cast<float>(row[0] * points[p] + row[1] * points[p + 1] +
                                                row[2] * points[p + 2]));
    return turned;
}

unsigned int Count(const Points& points)
{
    return static_cast<unsigned int>(points.size() / 3);
}

ZVMath::ZVBox BoundingBox(const Points& points)
{
    ZVMath::ZVBox box;
    box.Setup(points.data(), Count(points), 0.0f);
    return box;
}

/// The hill's points, measured from the middle of the lowest level.
Points Survey(const std::string& path)
{
    Table table = ReadTable(path);
    // The columns of this file have no names: its first line holds heights, too.
    std::vector<double> first;
    for (const std::string& height : table.names)
        first.push_back(std::stod(height));
    table.rows.insert(table.rows.begin(), first);

    Points points;
    for (size_t row = 0; row < table.rows.size(); ++row)
        for (size_t column = 0; column < first.size(); ++column) {
            points.push_back(10.0f * static_cast<float>(row));
            points.push_back(10.0f * static_cast<float>(column));
            points.push_back(static_cast<float>(table.rows[row][column]));
        }
    ZVMath::ZVBox box = BoundingBox(points);
    for (size_t p = 0; p < points.size(); p += 3) {
        points[p] -= box.GetXMid();
        points[p + 1] -= box.GetYMid();
        points[p + 2] -= box.GetZMin();
    }
    return points;
}

struct Found
{
    float angles[3];
    Matrix intoBox;  // what brings the points into the box's own axes
};

/// The smallest box whose axes the angles reach, without a mirror or in one.
Found Search(const Points& points, bool mirrored)
{
    const Matrix mirror = {{{mirrored ? -1.0 : 1.0, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    const Points seen = Turned(points, mirror);
    Found found{};
    if (!ZVMath::ZVGetSmallestEnclosingBoxRotation(found.angles, seen.data(), Count(seen),
                                                   numSteps))
        throw std::runtime_error("no box has a volume");
    const Matrix firstTwo = Product(AboutX(found.angles[1]), AboutZ(found.angles[0]));
    found.intoBox = Product(Product(AboutZ(found.angles[2]), firstTwo), mirror);
    return found;
}

/// The largest angle, in degrees, between an axis and the one that `m` brings nearest to it.
double LargestAngle(const Matrix& m)
{
    double smallestCosine = 1.0;
    for (const std::array<double, 3>& row : m)
        smallestCosine = std::min(smallestCosine,
                                  std::max({std::abs(row[0]), std::abs(row[1]), std::abs(row[2])}));
    return std::acos(smallestCosine) / degree;
}

void PrintBox(const char* name, const float* angles, const ZVMath::ZVBox& box, float unit)
{
    std::printf("%-26s", name);
    if (angles)
        std::printf("%6.1f %5.1f %5.1f", angles[0] / degree, angles[1] / degree,
                    angles[2] / degree);
    else
        std::printf("%6s %5s %5s", "-", "-", "-");
    std::printf("   %7.1f %7.1f %7.1f %8.2f %9.3f\n", box.GetXDim(), box.GetYDim(), box.GetZDim(),
                box.GetVolume() * 1e-6, box.GetVolume() / unit);
}

/// The twelve edges of a box, turned back out of the axes that it lies along.
void WriteEdges(std::ofstream& file, const ZVMath::ZVBox& box, const Matrix& intoBox)
{
    Points corners;
    for (unsigned int corner = 0; corner < 8; ++corner) {
        corners.push_back(corner & 1u ? box.GetXMax() : box.GetXMin());
        corners.push_back(corner & 2u ? box.GetYMax() : box.GetYMin());
        corners.push_back(corner & 4u ? box.GetZMax() : box.GetZMin());
    }
    corners = Turned(corners, Transpose(intoBox));
    file << "\n\n# edges: x, y, z of one end, and from there to the other, all in m\n";
    for (size_t corner = 0; corner < 8; ++corner)
        for (const size_t side : {1u, 2u, 4u})
            if (!(corner & side)) {
                const float* const from = &corners[3 * corner];
                const float* const to = &corners[3 * (corner | side)];
                file << from[0] << ' ' << from[1] << ' ' << from[2] << ' ' << to[0] - from[0] << ' '
                     << to[1] - from[1] << ' ' << to[2] - from[2] << '\n';
            }
}

void Run(const std::string& data, const std::string& output)
{
    const Points survey = Survey(data + "/volcano.tsv");
    const Matrix known =
        Product(Product(AboutZ(50 * degree), AboutY(20 * degree)), AboutX(-30 * degree));
    const Points given = Turned(survey, known);

    const ZVMath::ZVBox level = BoundingBox(survey);
    const ZVMath::ZVBox along = BoundingBox(given);
    const Found plain = Search(given, false);
    const Found mirrored = Search(given, true);
    const ZVMath::ZVBox plainBox = BoundingBox(Turned(given, plain.intoBox));
    const ZVMath::ZVBox mirroredBox = BoundingBox(Turned(given, mirrored.intoBox));
    const bool isMirrored = mirroredBox.GetVolume() < plainBox.GetVolume();
    const Found& found = isMirrored ? mirrored : plain;
    const ZVMath::ZVBox& box = isMirrored ? mirroredBox : plainBox;

    std::printf("%u points of a hill, turned by -30 degrees about x, 20 about y and 50 about z\n\n",
                Count(survey));
    std::printf(
        "                                                                        volume\n"
        "                          angles (degrees)       lengths (m)       10^6 m^3    / level\n");
    const float unit = level.GetVolume();
    PrintBox("level, as surveyed", nullptr, level, unit);
    PrintBox("turned, along the axes", nullptr, along, unit);
    PrintBox("smallest found", plain.angles, plainBox, unit);
    PrintBox("smallest found, mirrored", mirrored.angles, mirroredBox, unit);
    std::printf("\nThe smallest box is askew against the survey's grid by %.1f degrees.\n",
                LargestAngle(Product(found.intoBox, known)));

    std::ofstream file = OpenForWriting(output + "/enclosing_box.dat");
    file << "# x, y, z as given, height above the lowest point: all in m\n";
    for (size_t p = 0; p < given.size(); p += 3)
        file << given[p] << ' ' << given[p + 1] << ' ' << given[p + 2] << ' ' << survey[p + 2]
             << '\n';
    WriteEdges(file, along, Turn(0, 1, 0.0));
    WriteEdges(file, box, found.intoBox);
    file << "\n\n# volumes in 10^6 m^3: along the axes, found\n"
         << along.GetVolume() * 1e-6 << ' ' << box.GetVolume() * 1e-6 << '\n';
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}

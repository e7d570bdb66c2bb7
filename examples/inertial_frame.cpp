// Where the Pacific plate sinks under Tonga, earthquakes mark the sinking slab down to 700 km.
// Finds the plane they lie along, and how steeply it dips, from the inertia tensor of the events.

#include "table.h"

#include "zvmath/tensor2mat.h"

#include <algorithm>
#include <array>

namespace
{

constexpr double degree = 0.017453292519943295;  // pi / 180
constexpr double earthRadius = 6371.0;           // km

/// East, north and up, in km.
using Vector = std::array<double, 3>;

double Dot(const Vector& a, const Vector& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

struct Event
{
    Vector place;
    bool inSlab;
};

/// The events, in km along the Earth's surface, as if that were level, and above it.
std::vector<Event> Events(const Table& quakes)
{
    constexpr double kmPerDegree = earthRadius * degree;
    constexpr double meridian = 182.0;  // through the slab: far from it directions are wrong
    std::vector<Event> events;
    for (const std::vector<double>& row : quakes.rows) {
        const double east = (row[1] - meridian) * kmPerDegree * std::cos(row[0] * degree);
        // The slab of Vanuatu, which dips the other way, lies to the west.
        events.push_back({{east, row[0] * kmPerDegree, -row[2]}, row[1] > 177.0});
    }
    return events;
}

double CountInSlab(const std::vector<Event>& events)
{
    const auto inSlab = [](const Event& event) { return event.inSlab; };
    return static_cast<double>(std::count_if(events.begin(), events.end(), inSlab));
}

/// The centroid of the slab's events.
Vector Centroid(const std::vector<Event>& events)
{
    Vector centroid{};
    for (const Event& event : events)
        if (event.inSlab)
            for (size_t k = 0; k < 3; ++k)
                centroid[k] += event.place[k];
    for (double& component : centroid)
        component /= CountInSlab(events);
    return centroid;
}

/// Of the slab's events, each of mass 1, about the origin.
std::array<double, 9> InertiaTensor(const std::vector<Event>& events)
{
    std::array<double, 9> tensor{};
    for (const Event& event : events)
        if (event.inSlab)
            for (size_t i = 0; i < 3; ++i) {
                tensor[4 * i] += Dot(event.place, event.place);
                for (size_t j = 0; j < 3; ++j)
                    tensor[3 * i + j] -= event.place[i] * event.place[j];
            }
    return tensor;
}

/// The axes of largest, middle and least moment: across the slab, down along it, and level.
struct Frame
{
    std::array<double, 3> moments;
    std::array<Vector, 3> axes;

    Vector Coordinates(const Vector& place) const
    {
        return {Dot(axes[0], place), Dot(axes[1], place), Dot(axes[2], place)};
    }
};

/// The tensor in square kilometres has entries of some 1e8, well above the library's thresholds.
Frame PrincipalFrame(const std::array<double, 9>& tensor)
{
    Frame frame{};
    double rotation[9];
    if (ZVMath::ZVMakeRotationMatrix(frame.moments.data(), rotation, tensor.data()) != 0)
        throw std::runtime_error("no principal axes");
    for (size_t i = 0; i < 3; ++i)
        std::copy_n(rotation + 3 * i, 3, frame.axes[i].begin());

    // An axis may as well point the other way, as long as another does too: the first is made to
    // point up and the second down.
    const double signs[] = {frame.axes[0][2] < 0.0 ? -1.0 : 1.0,
                            frame.axes[1][2] > 0.0 ? -1.0 : 1.0};
    for (double& component : frame.axes[0])
        component *= signs[0];
    for (double& component : frame.axes[1])
        component *= signs[1];
    for (double& component : frame.axes[2])
        component *= signs[0] * signs[1];
    return frame;
}

void Run(const std::string& data, const std::string& output)
{
    std::vector<Event> events = Events(ReadTable(data + "/quakes.tsv"));
    const Vector centroid = Centroid(events);
    for (Event& event : events)
        for (size_t k = 0; k < 3; ++k)
            event.place[k] -= centroid[k];
    const Frame frame = PrincipalFrame(InertiaTensor(events));
    const double count = CountInSlab(events);

    std::printf("%zu earthquakes, %.0f of them in the slab under Tonga; centroid %.0f km deep\n\n",
                events.size(), count, -centroid[2]);
    std::printf("     moment       spread            axis\n");
    std::printf("(10^6 events km^2)  (km)     east   north      up\n");
    // The squares of the coordinates along an axis make up half of all moments, less its own.
    const double sum = frame.moments[0] + frame.moments[1] + frame.moments[2];
    Vector spreads{};
    for (size_t i = 0; i < 3; ++i) {
        const Vector& axis = frame.axes[i];
        spreads[i] = std::sqrt((0.5 * sum - frame.moments[i]) / count);
        std::printf("%12.1f %11.1f   %6.3f  %6.3f  %6.3f\n", frame.moments[i] * 1e-6, spreads[i],
                    axis[0], axis[1], axis[2]);
    }
    // A plane's normal leans from the vertical as the plane does from the horizontal, and the same
    // way.
    const Vector& normal = frame.axes[0];
    const double dip = std::acos(normal[2]) / degree;
    const double azimuth = std::fmod(std::atan2(normal[0], normal[1]) / degree + 360.0, 360.0);
    std::printf("\nThe slab dips by %.1f degrees, towards azimuth %.0f degrees.\n", dip, azimuth);

    std::ofstream file = OpenForWriting(output + "/inertial_frame.dat");
    file << "# km east, north, deep, in the slab?, coordinates in the slab's frame (km)\n";
    for (const Event& event : events) {
        const Vector own = frame.Coordinates(event.place);
        file << event.place[0] << ' ' << event.place[1] << ' ' << -centroid[2] - event.place[2]
             << ' ' << event.inSlab << ' ' << own[0] << ' ' << own[1] << ' ' << own[2] << '\n';
    }
    file << "\n\n# axes, of twice the spread, seen from above: km east, north\n";
    for (size_t i = 0; i < 3; ++i)
        file << 2.0 * spreads[i] * frame.axes[i][0] << ' ' << 2.0 * spreads[i] * frame.axes[i][1]
             << '\n';
    const Vector up = frame.Coordinates({0.0, 0.0, 1.0});
    file << "\n\n# up in the slab's frame, depth of the centroid (km), dip and azimuth (degrees)\n"
         << up[0] << ' ' << up[1] << ' ' << up[2] << ' ' << -centroid[2] << ' ' << dip << ' '
         << azimuth << '\n';
}

}  // namespace

int main(int argc, char** argv)
{
    return RunExample(argc, argv, Run);
}

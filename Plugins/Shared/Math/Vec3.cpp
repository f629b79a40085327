#include "Plugins/Shared/Math/Vec3.h"

namespace Ombrique::GaussianBlur {

double Vec3::angleBetween(const Vec3& other) const { return std::acos(dot(other) / (length() * other.length())); }

void Vec3::ortho(const Vec3& other) {
    const int largest = largestAbsComponent();
    Vec3 axis;
    axis.set(largest == 0 ? 2 : largest - 1, 1.0);
    *this = other.cross(axis);
    normalize();
}

int Vec3::largestAbsComponent() const {
    const double a = std::fabs(x);
    const double b = std::fabs(y);
    const double c = std::fabs(z);
    if (a > b)
        return a > c ? 0 : 2;
    return b > c ? 1 : 2;
}

Vec3 Vec3::floor() { return Vec3(std::floor(x), std::floor(y), std::floor(z)); }

double cyclicDifference(double a, double b, double period) {
    const double difference = a - b;
    const double half = 0.5 * period;
    if (difference > half)
        return difference - period;
    if (-half > difference)
        return difference + period;
    return difference;
}

} // namespace Ombrique::GaussianBlur

// The members that Vec2, Vec3 and Vec4 have in common. Each of the three includes this file inside its class, where
// `Self` names the class, `forEach(step, others...)` calls step(own, other...) on each component in turn, and `dot` and
// `isZero` stand: so the types stay plain structs without a base, and a debugger steps through real lines.

// Arithmetic, component by component; a number counts for every component. The verbs and the compound operators work in
// place and return nothing, the plain operators give a new value. Division by zero gives what IEEE arithmetic gives.

constexpr void add(const Self& other) noexcept {
    forEach([](double& own, double o) { own += o; }, other);
}
constexpr void sub(const Self& other) noexcept {
    forEach([](double& own, double o) { own -= o; }, other);
}
constexpr void mult(const Self& other) noexcept {
    forEach([](double& own, double o) { own *= o; }, other);
}
constexpr void divide(const Self& other) noexcept {
    forEach([](double& own, double o) { own /= o; }, other);
}
constexpr void add(double v) noexcept {
    forEach([v](double& own) { own += v; });
}
constexpr void sub(double v) noexcept {
    forEach([v](double& own) { own -= v; });
}
constexpr void mult(double v) noexcept {
    forEach([v](double& own) { own *= v; });
}
constexpr void divide(double v) noexcept {
    forEach([v](double& own) { own /= v; });
}

constexpr void operator+=(const Self& other) noexcept { add(other); }
constexpr void operator-=(const Self& other) noexcept { sub(other); }
constexpr void operator*=(const Self& other) noexcept { mult(other); }
constexpr void operator/=(const Self& other) noexcept { divide(other); }
constexpr void operator+=(double v) noexcept { add(v); }
constexpr void operator-=(double v) noexcept { sub(v); }
constexpr void operator*=(double v) noexcept { mult(v); }
constexpr void operator/=(double v) noexcept { divide(v); }

constexpr Self operator+(const Self& other) const noexcept {
    Self result = *this;
    result.add(other);
    return result;
}
constexpr Self operator-(const Self& other) const noexcept {
    Self result = *this;
    result.sub(other);
    return result;
}
constexpr Self operator*(const Self& other) const noexcept {
    Self result = *this;
    result.mult(other);
    return result;
}
constexpr Self operator/(const Self& other) const noexcept {
    Self result = *this;
    result.divide(other);
    return result;
}
constexpr Self operator+(double v) const noexcept {
    Self result = *this;
    result.add(v);
    return result;
}
constexpr Self operator-(double v) const noexcept {
    Self result = *this;
    result.sub(v);
    return result;
}
constexpr Self operator*(double v) const noexcept {
    Self result = *this;
    result.mult(v);
    return result;
}
constexpr Self operator/(double v) const noexcept {
    Self result = *this;
    result.divide(v);
    return result;
}

constexpr void setZero() noexcept { *this = Self(); }

/// The vector with every sign turned.
constexpr Self negate() const noexcept {
    Self result = *this;
    result.forEach([](double& own) { own = -own; });
    return result;
}

/// Euclidean length over all components, and its square.
double length() const { return std::sqrt(lengthSquare()); }
constexpr double lengthSquare() const noexcept { return dot(*this); }

/// Euclidean distance between two points.
double distance(const Self& other) const { return (*this - other).length(); }

/// Keeps the direction and sets the length; a negative length turns the vector round. The exact zero vector is taken to
/// point along x and becomes (n, 0, ...). Where the squared length overflows the result is zero, and where it
/// underflows infinities and NaN: nothing guards either.
void setLength(double n) {
    // Without a jump, so that loops over arrays vectorise: a zero vector's division is made and not used.
    const bool zero = isZero();
    const double factor = n / length();
    mult(zero ? 1.0 : factor);
    x = zero ? n : x;
}

/// setLength(1): a zero vector becomes (1, 0, ...).
void normalize() { setLength(1.0); }

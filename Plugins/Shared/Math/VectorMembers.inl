// The members that Vec2, Vec3 and Vec4 have in common. Each of the three includes this file inside its class, where
// `Self` names the class, `forEach(step, others...)` calls step(own, other...) on each component in turn, and `dot` and
// `isZero` stand: so the types stay plain structs without a base, and a debugger steps through real lines.

// Arithmetic, component by component; a number counts for every component. The verbs and the compound operators work in
// place and return nothing, the plain operators give a new value. Division by zero gives what IEEE arithmetic gives.

void add(const Self& other) {
    forEach([](double& own, double o) { own += o; }, other);
}
void sub(const Self& other) {
    forEach([](double& own, double o) { own -= o; }, other);
}
void mult(const Self& other) {
    forEach([](double& own, double o) { own *= o; }, other);
}
void divide(const Self& other) {
    forEach([](double& own, double o) { own /= o; }, other);
}
void add(double v) {
    forEach([v](double& own) { own += v; });
}
void sub(double v) {
    forEach([v](double& own) { own -= v; });
}
void mult(double v) {
    forEach([v](double& own) { own *= v; });
}
void divide(double v) {
    forEach([v](double& own) { own /= v; });
}

void operator+=(const Self& other) { add(other); }
void operator-=(const Self& other) { sub(other); }
void operator*=(const Self& other) { mult(other); }
void operator/=(const Self& other) { divide(other); }
void operator+=(double v) { add(v); }
void operator-=(double v) { sub(v); }
void operator*=(double v) { mult(v); }
void operator/=(double v) { divide(v); }

Self operator+(const Self& other) const {
    Self result = *this;
    result.add(other);
    return result;
}
Self operator-(const Self& other) const {
    Self result = *this;
    result.sub(other);
    return result;
}
Self operator*(const Self& other) const {
    Self result = *this;
    result.mult(other);
    return result;
}
Self operator/(const Self& other) const {
    Self result = *this;
    result.divide(other);
    return result;
}
Self operator+(double v) const {
    Self result = *this;
    result.add(v);
    return result;
}
Self operator-(double v) const {
    Self result = *this;
    result.sub(v);
    return result;
}
Self operator*(double v) const {
    Self result = *this;
    result.mult(v);
    return result;
}
Self operator/(double v) const {
    Self result = *this;
    result.divide(v);
    return result;
}

void setZero() { *this = Self(); }

/// The vector with every sign turned.
Self negate() const {
    Self result = *this;
    result.forEach([](double& own) { own = -own; });
    return result;
}

/// Euclidean length over all components, and its square.
double length() const { return std::sqrt(lengthSquare()); }
double lengthSquare() const { return dot(*this); }

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

#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

#include <map>
#include <memory>

namespace Ombrique::GaussianBlur {

/// What all PerContext objects have in common, whatever their values are: the table, and the list of the living
/// objects.
class PerContextTable {
public:
    PerContextTable(const PerContextTable&) = delete;
    PerContextTable& operator=(const PerContextTable&) = delete;

    /// Forgets a context's values in every living object. The owner of a context calls it right before the context
    /// ends, since the driver may give the next context the same handle, and names from the old one mean nothing there.
    static void dropContext(const CGLContextObj& context);

protected:
    PerContextTable();
    ~PerContextTable();

    /// The value for the calling thread's current context, made by `make` when there is none yet.
    void* current(std::shared_ptr<void> (*make)());
    /// The same, null when there is none yet.
    void* find() const;

private:
    std::map<CGLContextObj, std::shared_ptr<void>> mValues;
};

/// A value for each OpenGL context: the place for the names of objects that live only in the context that made them,
/// frame buffer objects and vertex arrays. Objects that the share group shares are kept once, without this.
///
/// Any thread may ask, at any time, and threads with different contexts don't disturb each other. Nothing is deleted in
/// OpenGL when values go: the objects end with their context.
template <typename T> class PerContext : private PerContextTable {
public:
    /// The value for the context that is current on the calling thread, which must have one. Value-initialised when
    /// first asked for. The reference is good until the context or this object is gone.
    T& current() {
        return *static_cast<T*>(
            PerContextTable::current([]() -> std::shared_ptr<void> { return std::make_shared<T>(); }));
    }
    /// The same value where it has been asked for before, else null, as it is without a current context. It allocates
    /// nothing, so that clean-up can't fail.
    T* find() const { return static_cast<T*>(PerContextTable::find()); }
};

} // namespace Ombrique::GaussianBlur

#include "Platform/OpenGL/NSObject.h"

void NSObject::retain() { mReferences.fetch_add(1, std::memory_order_relaxed); }

void NSObject::release() {
    if (mReferences.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

bool NSObject::retainIfAlive() {
    int references = mReferences.load(std::memory_order_relaxed);
    while (references > 0)
        if (mReferences.compare_exchange_weak(references, references + 1, std::memory_order_acq_rel))
            return true;
    return false;
}

#include "Platform/OpenGL/NSAutoreleasePool.h"

#include "Platform/OpenGL/NSObject.h"

#include <cassert>

namespace {

thread_local NSAutoreleasePool* tInnermost = nullptr;
}

NSAutoreleasePool::NSAutoreleasePool() : mOuter(tInnermost) { tInnermost = this; }

NSAutoreleasePool::~NSAutoreleasePool() {
    drain();
    tInnermost = mOuter;
}

void NSAutoreleasePool::drain() noexcept {
    // The destructor of an object may add further objects.
    while (!mObjects.empty()) {
        NSObject* object = mObjects.back();
        mObjects.pop_back();
        object->release();
    }
}

void NSAutoreleasePool::addObject(NSObject* object) {
    assert(tInnermost && "addObject on a thread that has no pool");
    tInnermost->mObjects.push_back(object);
}

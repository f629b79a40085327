#include "Plugins/Shared/GL/PerContext.h"

#include "Platform/OpenGL/CGLCurrent.h"

#include <cassert>
#include <mutex>
#include <set>

namespace Ombrique::GaussianBlur {

namespace {

struct LivingTables {
    std::mutex mutex;
    std::set<PerContextTable*> tables;
};

// Made by the first table, which may be a static of another source, and so gone after it.
LivingTables& livingTables() {
    static LivingTables living;
    return living;
}

} // namespace

PerContextTable::PerContextTable() {
    LivingTables& living = livingTables();
    const std::lock_guard lock(living.mutex);
    living.tables.insert(this);
}

PerContextTable::~PerContextTable() {
    LivingTables& living = livingTables();
    const std::lock_guard lock(living.mutex);
    living.tables.erase(this);
}

void PerContextTable::dropContext(const CGLContextObj& context) {
    LivingTables& living = livingTables();
    const std::lock_guard lock(living.mutex);
    for (PerContextTable* table : living.tables)
        table->mValues.erase(context);
}

void* PerContextTable::current(std::shared_ptr<void> (*make)()) {
    const CGLContextObj context = CGLGetCurrentContext();
    assert(context != nullptr && "a value for the current context where none is current");
    const std::lock_guard lock(livingTables().mutex);
    std::shared_ptr<void>& value = mValues[context];
    if (!value)
        value = make();
    return value.get();
}

void* PerContextTable::find() const {
    const std::lock_guard lock(livingTables().mutex);
    const auto value = mValues.find(CGLGetCurrentContext());
    return value == mValues.end() ? nullptr : value->second.get();
}

} // namespace Ombrique::GaussianBlur

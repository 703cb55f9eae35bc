#pragma once

#include <atomic>

#include <boost/intrusive_ptr.hpp>

namespace krocore::utility {

// Base of objects with shared ownership, held by boost::intrusive_ptr. The count starts at 0; the first intrusive_ptr
// takes the first reference, and the object is destroyed when the last one goes. Counting is safe from any thread;
// everything else about a derived object follows that object's own rules.
class RefCountedObject {
public:
    RefCountedObject(const RefCountedObject&) = delete;
    RefCountedObject& operator=(const RefCountedObject&) = delete;

    void AddReference() const noexcept { fReferences.fetch_add(1, std::memory_order_relaxed); }
    void ReleaseReference() const noexcept {
        if (fReferences.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    long ReferenceCount() const noexcept { return fReferences.load(std::memory_order_relaxed); }

protected:
    RefCountedObject() = default;
    virtual ~RefCountedObject() = default;

private:
    mutable std::atomic<long> fReferences{0};
};

inline void intrusive_ptr_add_ref(const RefCountedObject* object) noexcept {
    object->AddReference();
}
inline void intrusive_ptr_release(const RefCountedObject* object) noexcept {
    object->ReleaseReference();
}

} // namespace krocore::utility

// IdentityMap: one wrapper per wrapped object, so that a library object has
// one COM adapter and a Python host object one library object, and identity
// survives every round trip.
//
// The map only points at its wrappers; a wrapper removes itself when it is
// destroyed.  Between the wrapper's last release and that removal the entry
// still names it, so Find hands a wrapper out only when `acquire` manages to
// add a reference to it ("unless it is being destroyed"); otherwise the
// caller makes a new wrapper, which takes the entry over.
#pragma once

#include <mutex>
#include <unordered_map>

namespace TessarkAO {

template <class Key, class Wrapper>
class IdentityMap {
 public:
  // The live wrapper of `key` with one reference added for the caller, or
  // nullptr.  `acquire(wrapper)` adds a reference unless the wrapper is on
  // its way out, and says whether it did.
  template <class Acquire>
  Wrapper* Find(const Key* key, Acquire&& acquire) {
    std::lock_guard lock(mutex_);
    auto it = map_.find(key);
    return it != map_.end() && acquire(it->second) ? it->second : nullptr;
  }

  // Finds the wrapper of `key` or makes one with `make()` and records it.
  template <class Acquire, class Make>
  Wrapper* FindOrAdd(const Key* key, Acquire&& acquire, Make&& make) {
    std::lock_guard lock(mutex_);
    auto it = map_.find(key);
    if (it != map_.end() && acquire(it->second)) return it->second;
    Wrapper* w = make();
    map_[key] = w;
    return w;
  }

  // Forgets `wrapper`, unless a newer wrapper of `key` has taken its place.
  void Erase(const Key* key, const Wrapper* wrapper) {
    std::lock_guard lock(mutex_);
    auto it = map_.find(key);
    if (it != map_.end() && it->second == wrapper) map_.erase(it);
  }

 private:
  std::mutex mutex_;
  std::unordered_map<const Key*, Wrapper*> map_;
};

}  // namespace TessarkAO

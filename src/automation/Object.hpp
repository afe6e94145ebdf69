// Object: the reference-counted base of every automation object, ours and the
// host's, and Ref<T>, the intrusive smart pointer that holds them.
//
// Lifetimes follow COM rules: an object lives while its count is above zero
// and is destroyed when the last reference is released.  Several documented
// lifecycles depend on exactly that moment (the shared localizer, helper
// objects handed out by a class, parent and child nodes of a tree).
//
// Every call into an object, native or foreign, goes through Invoke by name or
// InvokeId by dispatch id.  Arguments are passed as a mutable span in natural
// order (first argument first); a member that has by-reference outputs writes
// them back into that span.  For a property let or set the new value is the
// last argument.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace TessarkAO {

class Variant;
class ClassInfo;

// Call kinds, with the values of the classic DISPATCH_* flags.
enum class CallKind : std::uint8_t { Method = 1, Get = 2, Let = 4, Set = 8 };

std::string_view CallKindName(CallKind kind) noexcept;

using DispId = std::int32_t;
inline constexpr DispId DispIdUnknown = -1;  // no member of that name
inline constexpr DispId DispIdValue = 0;     // the default member

class Object {
 public:
  Object() noexcept = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object();

  void AddRef() const noexcept { refs_.fetch_add(1, std::memory_order_relaxed); }
  void Release() const noexcept {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  std::uint32_t RefCount() const noexcept { return refs_.load(std::memory_order_relaxed); }
  // Adds a reference unless the object is already on its way out (its count
  // reached 0 and its destructor runs or is about to): what an identity map
  // needs before handing out an object it only points at.
  bool TryAddRef() const noexcept {
    std::uint32_t n = refs_.load(std::memory_order_relaxed);
    while (n != 0)
      if (refs_.compare_exchange_weak(n, n + 1, std::memory_order_acq_rel)) return true;
    return false;
  }

  // The member table of a native class; nullptr for objects that resolve
  // their members some other way (host objects written in Python, say).
  virtual const ClassInfo* Class() const noexcept { return nullptr; }

  // Case-insensitive name lookup; DispIdUnknown when there is no such member.
  virtual DispId GetDispId(std::string_view name) const;

  // Calls member `id`.  Raises 438 for an unknown id or a kind the member
  // lacks, 449 / 450 for missing or surplus arguments, 13 for arguments
  // that do not convert.
  virtual Variant InvokeId(DispId id, CallKind kind, std::span<Variant> args);

  // Calls a member by name; 438 when the object has no such member.
  virtual Variant Invoke(std::string_view name, CallKind kind, std::span<Variant> args);

  // The class name, as a scripting runtime's TypeName reports it.
  virtual std::string TypeName() const;

 private:
  mutable std::atomic<std::uint32_t> refs_{0};
};

// Intrusive reference to an Object (or a class derived from it).  An empty Ref
// is the automation "Nothing".
template <class T>
class Ref {
 public:
  Ref() noexcept = default;
  Ref(std::nullptr_t) noexcept {}
  explicit Ref(T* p) noexcept : p_(p) {
    if (p_) p_->AddRef();
  }
  Ref(const Ref& o) noexcept : p_(o.p_) {
    if (p_) p_->AddRef();
  }
  Ref(Ref&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ref(const Ref<U>& o) noexcept : p_(o.get()) {
    if (p_) p_->AddRef();
  }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ref(Ref<U>&& o) noexcept : p_(o.detach()) {}
  ~Ref() {
    if (p_) p_->Release();
  }
  Ref& operator=(Ref o) noexcept {
    std::swap(p_, o.p_);
    return *this;
  }

  T* get() const noexcept { return p_; }
  T* operator->() const noexcept { return p_; }
  T& operator*() const noexcept { return *p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  T* detach() noexcept { return std::exchange(p_, nullptr); }
  void reset() noexcept { Ref().swap(*this); }
  void swap(Ref& o) noexcept { std::swap(p_, o.p_); }

  friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.p_ == b.p_; }
  friend bool operator==(const Ref& a, std::nullptr_t) noexcept { return a.p_ == nullptr; }

 private:
  T* p_ = nullptr;
};

template <class T, class... A>
Ref<T> MakeRef(A&&... a) {
  return Ref<T>(new T(std::forward<A>(a)...));
}

// A checked down-cast of a reference; empty when the object is not a T.
template <class T, class U>
Ref<T> RefCast(const Ref<U>& r) noexcept {
  return Ref<T>(dynamic_cast<T*>(r.get()));
}

}  // namespace TessarkAO

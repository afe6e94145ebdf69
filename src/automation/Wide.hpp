// A 128-bit unsigned integer for the decimal conversions: the compiler's own
// where it has one, else (32-bit targets, such as the x86 server) a pair of
// 64-bit halves with the few operations those conversions use.
#pragma once

#include <cstdint>

namespace TessarkAO {

#if defined(__SIZEOF_INT128__) && !defined(TK_WITHOUT_INT128)
using UInt128 = unsigned __int128;
#else
class UInt128 {
 public:
  constexpr UInt128(std::uint64_t v = 0) noexcept : hi_(0), lo_(v) {}  // NOLINT: converts like the built-in type

  template <typename T>
  constexpr explicit operator T() const noexcept {
    return static_cast<T>(lo_);
  }
  constexpr explicit operator bool() const noexcept { return hi_ != 0 || lo_ != 0; }

  friend constexpr bool operator==(const UInt128& a, const UInt128& b) noexcept {
    return a.hi_ == b.hi_ && a.lo_ == b.lo_;
  }
  friend constexpr bool operator<(const UInt128& a, const UInt128& b) noexcept {
    return a.hi_ != b.hi_ ? a.hi_ < b.hi_ : a.lo_ < b.lo_;
  }
  friend constexpr bool operator>(const UInt128& a, const UInt128& b) noexcept { return b < a; }

  friend constexpr UInt128 operator|(const UInt128& a, const UInt128& b) noexcept {
    return Make(a.hi_ | b.hi_, a.lo_ | b.lo_);
  }
  friend constexpr UInt128 operator<<(const UInt128& a, int n) noexcept {
    if (n <= 0) return a;
    if (n >= 128) return UInt128();
    if (n >= 64) return Make(a.lo_ << (n - 64), 0);
    return Make((a.hi_ << n) | (a.lo_ >> (64 - n)), a.lo_ << n);
  }
  friend constexpr UInt128 operator>>(const UInt128& a, int n) noexcept {
    if (n <= 0) return a;
    if (n >= 128) return UInt128();
    if (n >= 64) return Make(0, a.hi_ >> (n - 64));
    return Make(a.hi_ >> n, (a.lo_ >> n) | (a.hi_ << (64 - n)));
  }
  friend constexpr UInt128 operator+(const UInt128& a, const UInt128& b) noexcept {
    const std::uint64_t lo = a.lo_ + b.lo_;
    return Make(a.hi_ + b.hi_ + (lo < a.lo_ ? 1 : 0), lo);
  }
  // Multiplication and division by a 32-bit number, limb by limb.
  friend constexpr UInt128 operator*(const UInt128& a, std::uint32_t k) noexcept {
    std::uint32_t limbs[4] = {static_cast<std::uint32_t>(a.lo_), static_cast<std::uint32_t>(a.lo_ >> 32),
                              static_cast<std::uint32_t>(a.hi_), static_cast<std::uint32_t>(a.hi_ >> 32)};
    std::uint64_t carry = 0;
    for (std::uint32_t& limb : limbs) {
      const std::uint64_t p = static_cast<std::uint64_t>(limb) * k + carry;
      limb = static_cast<std::uint32_t>(p);
      carry = p >> 32;
    }
    return FromLimbs(limbs);
  }
  friend constexpr UInt128 operator/(const UInt128& a, std::uint32_t k) noexcept {
    std::uint32_t rest = 0;
    return a.DivMod(k, rest);
  }
  friend constexpr std::uint32_t operator%(const UInt128& a, std::uint32_t k) noexcept {
    std::uint32_t rest = 0;
    a.DivMod(k, rest);
    return rest;
  }
  constexpr UInt128& operator/=(std::uint32_t k) noexcept { return *this = *this / k; }

 private:
  static constexpr UInt128 Make(std::uint64_t hi, std::uint64_t lo) noexcept {
    UInt128 r(lo);
    r.hi_ = hi;
    return r;
  }
  static constexpr UInt128 FromLimbs(const std::uint32_t (&limbs)[4]) noexcept {
    return Make((static_cast<std::uint64_t>(limbs[3]) << 32) | limbs[2],
                (static_cast<std::uint64_t>(limbs[1]) << 32) | limbs[0]);
  }
  // The quotient, with the remainder in `rest`.
  constexpr UInt128 DivMod(std::uint32_t k, std::uint32_t& rest) const noexcept {
    std::uint32_t limbs[4] = {static_cast<std::uint32_t>(lo_), static_cast<std::uint32_t>(lo_ >> 32),
                              static_cast<std::uint32_t>(hi_), static_cast<std::uint32_t>(hi_ >> 32)};
    std::uint64_t r = 0;
    for (int i = 3; i >= 0; --i) {
      const std::uint64_t cur = (r << 32) | limbs[i];
      limbs[i] = static_cast<std::uint32_t>(cur / k);
      r = cur % k;
    }
    rest = static_cast<std::uint32_t>(r);
    return FromLimbs(limbs);
  }

  std::uint64_t hi_;
  std::uint64_t lo_;
};
#endif

// The magnitude of a signed 64-bit number (INT64_MIN included).
constexpr std::uint64_t Magnitude64(std::int64_t v) noexcept {
  return v < 0 ? 0 - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
}

}  // namespace TessarkAO

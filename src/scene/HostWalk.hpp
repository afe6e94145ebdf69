// HostWalk: the bound on every walk of the host's shape graph.
//
// The host's Parent, Shapes and Item answers are not trusted to form a tree:
// a misbehaving host may lead a walk back to a shape it has already passed,
// or hand out a fresh object at every step of an endless chain.  Each walk
// (the tree view and viewer's walk down, the position walks up and down, the
// path and parent searches) steps through a HostWalk, which ends a runaway
// walk with error 28, "Out of stack space", as the classic runtime reports
// runaway recursion, instead of looping until memory runs out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "automation/Variant.hpp"

namespace TessarkAO::Scene {

// Far deeper than any real scene, and far below what the walks' own stacks
// and lists can hold.
inline constexpr std::int32_t kMaxWalkDepth = 10000;

class HostWalk {
 public:
  // Records `shape` as passed; raises 28 when this walk passed the same host
  // object before, or when `depth` exceeds kMaxWalkDepth.
  void Step(const Variant& shape, std::int64_t depth);
  // The same for a walk along a chain, where the depth is the number of steps.
  void Step(const Variant& shape) { Step(shape, static_cast<std::int64_t>(held_.size())); }

 private:
  std::unordered_set<const Object*> seen_;
  std::vector<Ref<Object>> held_;  // keeps the addresses in seen_ from being reused
};

}  // namespace TessarkAO::Scene

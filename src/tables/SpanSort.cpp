#include "tables/SpanSort.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>
#include <unordered_map>

#include "automation/Convert.hpp"
#include "tables/TKColumn.hpp"

namespace TessarkAO::Tables {

std::int32_t RoundSpanValue(double v) { return RoundToLong(v); }

std::int32_t SpanStep(double first, double last) {
  const std::int32_t step = RoundToLong(last - first + 1.0);
  // A step of 0 (a first row that rounds up past a fractional last row)
  // would emit the same span for ever; the table could never be built.
  if (step < 1) Raise(Err::OutOfMemory);
  return step;
}

namespace {

// Order-preserving code of a Double: equal Doubles (0.0 and -0.0 included)
// get equal codes and a > b exactly when code(a) > code(b).  NaN is handled
// apart by the callers.
std::uint64_t DoubleCode(double d) noexcept {
  if (d == 0.0) d = 0.0;
  const auto bits = std::bit_cast<std::uint64_t>(d);
  return (bits >> 63) ? ~bits : bits | (std::uint64_t{1} << 63);
}

// Fenwick tree over 0..n-1 counting marked positions.
class Fenwick {
 public:
  explicit Fenwick(std::size_t n) : tree_(n + 1, 0) {}
  void Fill() {  // every position marked once
    for (std::size_t i = 1; i < tree_.size(); ++i) {
      tree_[i] += 1;
      const std::size_t j = i + (i & (~i + 1));
      if (j < tree_.size()) tree_[j] += tree_[i];
    }
  }
  void Add(std::size_t i, std::int32_t delta) {
    for (++i; i < tree_.size(); i += i & (~i + 1)) tree_[i] += delta;
  }
  // Marks below position i.
  std::int32_t Below(std::size_t i) const {
    std::int32_t s = 0;
    for (; i > 0; i -= i & (~i + 1)) s += tree_[i];
    return s;
  }
  // Position of the k-th mark (k from 1).
  std::size_t Kth(std::int32_t k) const {
    std::size_t pos = 0;
    for (std::size_t step = std::bit_floor(tree_.size()); step > 0; step >>= 1) {
      if (pos + step < tree_.size() && tree_[pos + step] < k) {
        pos += step;
        k -= tree_[pos];
      }
    }
    return pos;
  }

 private:
  std::vector<std::int32_t> tree_;
};

// The order in which one group of tied rows leaves the descending bubble
// sort.  members: the group's rows in their order before the sort; joins:
// for each, the number of rows before it with a smaller key, non-decreasing.
// A member joins the back of the group's front run after that many passes;
// every pass with a non-empty run moves the run's first member to its back.
// The run is kept as a list with a front index: a pass advances the front,
// a join inserts before the front.  The insert positions are worked out
// first, then placed by filling free slots from the last insert backwards.
void ReplayGroup(const std::int32_t* members, const std::int64_t* joins, std::size_t count,
                 std::int64_t passes, std::int32_t* out) {
  std::vector<std::int64_t> insertAt(count);
  std::int64_t size = 0, front = 0, now = 0;
  for (std::size_t j = 0; j < count; ++j) {
    if (joins[j] != now) {
      if (size > 0) front = (front + (joins[j] - now)) % size;
      now = joins[j];
    }
    insertAt[j] = front;
    ++front;
    ++size;
  }
  front = (front + (passes - now)) % size;
  Fenwick free(count);
  free.Fill();
  std::vector<std::int32_t> slots(count);
  for (std::size_t j = count; j-- > 0;) {
    const std::size_t slot = free.Kth(static_cast<std::int32_t>(insertAt[j] + 1));
    free.Add(slot, -1);
    slots[slot] = members[j];
  }
  const auto f = static_cast<std::size_t>(front);
  std::copy(slots.begin() + static_cast<std::ptrdiff_t>(f), slots.end(), out);
  std::copy(slots.begin(), slots.begin() + static_cast<std::ptrdiff_t>(f),
            out + static_cast<std::ptrdiff_t>(count - f));
}

// The descending bubble sort of `keys` (in their current order) over
// `passes` passes, passes >= keys.size() - 1: fills `order` with the final
// arrangement as indices into keys, and tells whether any pass, and the
// last pass, attempted an exchange.
void DescendingOrder(const std::vector<std::uint64_t>& keys, std::int64_t passes,
                     std::vector<std::int32_t>& order, bool& attemptedAny, bool& attemptedLast) {
  const std::size_t n = keys.size();
  order.resize(n);
  for (std::size_t i = 0; i < n; ++i) order[i] = static_cast<std::int32_t>(i);
  attemptedAny = attemptedLast = false;
  if (n < 2) return;
  std::vector<std::pair<std::uint64_t, std::int32_t>> sorted(n);
  for (std::size_t i = 0; i < n; ++i) sorted[i] = {keys[i], static_cast<std::int32_t>(i)};
  std::sort(sorted.begin(), sorted.end());
  // Dense ranks, ascending by key.
  std::vector<std::int32_t> rank(n);
  std::int32_t groups = 0;
  for (std::size_t j = 0; j < n; ++j) {
    if (j > 0 && sorted[j].first != sorted[j - 1].first) ++groups;
    rank[static_cast<std::size_t>(sorted[j].second)] = groups;
  }
  ++groups;
  const bool ties = static_cast<std::size_t>(groups) < n;
  // Join times: rows before each row with a smaller key.
  std::vector<std::int64_t> joins(n);
  std::int64_t mostBefore = 0;
  Fenwick seen(static_cast<std::size_t>(groups));
  for (std::size_t i = 0; i < n; ++i) {
    joins[i] = seen.Below(static_cast<std::size_t>(rank[i]));
    mostBefore = std::max(mostBefore, joins[i]);
    seen.Add(static_cast<std::size_t>(rank[i]), 1);
  }
  // A pass attempts an exchange unless the keys are strictly decreasing when
  // it starts; they are after `mostBefore` passes when no two are equal.
  attemptedAny = ties || mostBefore >= 1;
  attemptedLast = ties || mostBefore >= passes;
  if (!attemptedAny) return;
  // Groups from the largest key down; members of a group are in `sorted`
  // in their original order.
  std::vector<std::int32_t> members;
  std::vector<std::int64_t> memberJoins;
  std::size_t out = 0;
  for (std::size_t end = n; end > 0;) {
    std::size_t begin = end - 1;
    while (begin > 0 && sorted[begin - 1].first == sorted[end - 1].first) --begin;
    const std::size_t count = end - begin;
    if (count == 1) {
      order[out++] = sorted[begin].second;
    } else {
      members.resize(count);
      memberJoins.resize(count);
      for (std::size_t j = 0; j < count; ++j) {
        members[j] = sorted[begin + j].second;
        memberJoins[j] = joins[static_cast<std::size_t>(members[j])];
      }
      ReplayGroup(members.data(), memberJoins.data(), count, passes, order.data() + out);
      out += count;
    }
    end = begin;
  }
}

}  // namespace

// ---- Keys --------------------------------------------------------------------

struct SortEngine::Key {
  std::int32_t type = TKColumnType_None;
  std::vector<std::uint64_t> code;  // order code by original row
  const std::vector<double>* doubles = nullptr;
  const std::vector<Ref<Object>>* objects = nullptr;
  bool hasNaN = false;
  bool IsNaN(std::int32_t row) const {
    return hasNaN && std::isnan((*doubles)[static_cast<std::size_t>(row)]);
  }
};

SortEngine::SortEngine(std::vector<TKColumn*> columns, std::int32_t rows)
    : columns_(std::move(columns)), rows_(rows), keys_(columns_.size()) {
  perm_.resize(static_cast<std::size_t>(std::max(rows, 0)));
  for (std::size_t i = 0; i < perm_.size(); ++i) perm_[i] = static_cast<std::int32_t>(i);
}

SortEngine::~SortEngine() = default;

bool SortEngine::ValidColumn(std::int32_t column) const noexcept {
  return column >= 1 && static_cast<std::size_t>(column) <= columns_.size();
}

const SortEngine::Key& SortEngine::KeyOf(std::int32_t column) {
  std::unique_ptr<Key>& slot = keys_[static_cast<std::size_t>(column - 1)];
  if (slot) return *slot;
  auto key = std::make_unique<Key>();
  const TKColumn& col = *columns_[static_cast<std::size_t>(column - 1)];
  const std::size_t n = perm_.size();
  key->type = col.ColumnType();
  key->code.assign(n, 0);  // a column without values: every row ties
  switch (key->type) {
    case TKColumnType_Double: {
      key->doubles = &col.DoubleStore();
      for (std::size_t i = 0; i < n; ++i) {
        const double d = (*key->doubles)[i];
        if (std::isnan(d)) key->hasNaN = true;
        key->code[i] = DoubleCode(d);
      }
      break;
    }
    case TKColumnType_Object: {
      key->objects = &col.ObjectStore();
      for (std::size_t i = 0; i < n; ++i) {
        const auto k = static_cast<std::uint32_t>(TKColumn::ObjectOrderKey((*key->objects)[i].get()));
        key->code[i] = k ^ 0x80000000u;  // signed order
      }
      break;
    }
    case TKColumnType_String: {
      // Rank the distinct lower-cased texts by code units; equal texts
      // (after lower-casing) share a rank, which is also their equality.
      const auto& texts = col.StringStore();
      std::vector<std::string> lower(n);
      std::unordered_map<std::string_view, std::uint32_t> ids;
      std::vector<std::uint32_t> idOf(n);
      std::vector<std::string_view> distinct;
      for (std::size_t i = 0; i < n; ++i) lower[i] = LowerCase(texts[i]);
      ids.reserve(n / 4 + 16);
      for (std::size_t i = 0; i < n; ++i) {
        auto [it, fresh] = ids.try_emplace(lower[i], static_cast<std::uint32_t>(distinct.size()));
        if (fresh) distinct.push_back(lower[i]);
        idOf[i] = it->second;
      }
      std::vector<std::uint32_t> byText(distinct.size());
      for (std::size_t i = 0; i < byText.size(); ++i) byText[i] = static_cast<std::uint32_t>(i);
      std::sort(byText.begin(), byText.end(), [&](std::uint32_t a, std::uint32_t b) {
        return CompareCodeUnits(distinct[a], distinct[b]) < 0;
      });
      std::vector<std::uint64_t> rankOf(distinct.size());
      for (std::size_t r = 0; r < byText.size(); ++r) rankOf[byText[r]] = r;
      for (std::size_t i = 0; i < n; ++i) key->code[i] = rankOf[idOf[i]];
      break;
    }
    default: break;
  }
  slot = std::move(key);
  return *slot;
}

bool SortEngine::Equal(const Key& key, std::int32_t rowA, std::int32_t rowB) const {
  const auto a = static_cast<std::size_t>(rowA), b = static_cast<std::size_t>(rowB);
  switch (key.type) {
    case TKColumnType_Double: return TKColumn::AreDoublesEqual((*key.doubles)[a], (*key.doubles)[b]);
    case TKColumnType_Object: return (*key.objects)[a] == (*key.objects)[b];
    case TKColumnType_String: return key.code[a] == key.code[b];
    default: return false;
  }
}

// ---- Spans -------------------------------------------------------------------

SpanTable SortEngine::Refine(std::int32_t column, const SpanTable& table) {
  if (!ValidColumn(column)) return {};
  const Key& key = KeyOf(column);
  auto runLength = [&](std::int64_t p, std::int64_t cap) {
    const std::int32_t first = perm_[static_cast<std::size_t>(p - 1)];
    std::int64_t length = 1;
    for (std::int64_t j = p + 1; length < cap && j <= rows_; ++j, ++length)
      if (!Equal(key, first, perm_[static_cast<std::size_t>(j - 1)])) break;
    return length;
  };
  return RefineSpans(table, rows_, runLength, true);
}

// ---- Sorting -------------------------------------------------------------------

void SortEngine::SortSpan(std::int32_t column, std::int64_t start, std::int64_t end, bool descending,
                          bool& result) {
  const Key& key = KeyOf(column);
  // Only rows 1..rows_ take part; comparisons with rows outside are never
  // "greater", and an exchange with such a row moves nothing and fails.
  const std::int64_t lo = std::max<std::int64_t>(start, 1);
  const std::int64_t hi = std::min<std::int64_t>(end, rows_);
  const bool inner = hi - lo >= 1;
  if (!descending) {
    if (inner && Ascend(key, lo, hi)) result = true;
    return;
  }
  bool attemptedAny = false, attemptedLast = false;
  if (inner) Descend(key, lo, hi, end - start, attemptedAny, attemptedLast);
  // The result is that of the last exchange attempted.  Every pass ends with
  // the comparison of rows end - 1 and end.
  if (end > rows_ || end <= 1)
    result = false;  // that comparison involves a row outside the set
  else if (attemptedLast)
    result = true;
  else if (start < 1)
    result = false;  // the last pass only attempted exchanges with row 0 and below
  else if (attemptedAny)
    result = true;
}

bool SortEngine::Ascend(const Key& key, std::int64_t lo, std::int64_t hi) {
  // A stable sort of each stretch between NaN rows (a NaN never moves).
  bool moved = false;
  std::vector<std::pair<std::uint64_t, std::int32_t>> run;
  std::int64_t i = lo - 1;
  const std::int64_t last = hi - 1;
  while (i <= last) {
    while (i <= last && key.IsNaN(perm_[static_cast<std::size_t>(i)])) ++i;
    std::int64_t j = i;
    while (j <= last && !key.IsNaN(perm_[static_cast<std::size_t>(j)])) ++j;
    // Stretch i..j-1.
    bool sorted = true;
    for (std::int64_t m = i; m + 1 < j; ++m) {
      if (key.code[static_cast<std::size_t>(perm_[static_cast<std::size_t>(m)])] >
          key.code[static_cast<std::size_t>(perm_[static_cast<std::size_t>(m + 1)])]) {
        sorted = false;
        break;
      }
    }
    if (!sorted) {
      run.resize(static_cast<std::size_t>(j - i));
      for (std::int64_t m = i; m < j; ++m) {
        const std::int32_t row = perm_[static_cast<std::size_t>(m)];
        run[static_cast<std::size_t>(m - i)] = {key.code[static_cast<std::size_t>(row)], row};
      }
      // Ties keep their order: compare the code, then the position (the
      // stretch is copied in position order, so stable_sort on the code).
      std::stable_sort(run.begin(), run.end(),
                       [](const auto& a, const auto& b) { return a.first < b.first; });
      for (std::int64_t m = i; m < j; ++m) perm_[static_cast<std::size_t>(m)] = run[static_cast<std::size_t>(m - i)].second;
      moved = moved_ = true;
    }
    i = j;
  }
  return moved;
}

void SortEngine::Descend(const Key& key, std::int64_t lo, std::int64_t hi, std::int64_t passes,
                         bool& attemptedAny, bool& attemptedLast) {
  const auto base = static_cast<std::size_t>(lo - 1);
  const auto n = static_cast<std::size_t>(hi - lo + 1);
  std::vector<std::int32_t> rows(perm_.begin() + static_cast<std::ptrdiff_t>(base),
                                 perm_.begin() + static_cast<std::ptrdiff_t>(base + n));
  // NaN rows rotate up one row per pass (from the first row to the last);
  // the other rows lose one pass for every pass that starts with a NaN.
  std::vector<std::size_t> nanAt;
  if (key.hasNaN)
    for (std::size_t i = 0; i < n; ++i)
      if (key.IsNaN(rows[i])) nanAt.push_back(i);
  std::vector<std::uint64_t> codes;
  std::vector<std::int32_t> others;
  codes.reserve(n - nanAt.size());
  others.reserve(n - nanAt.size());
  for (std::size_t i = 0, q = 0; i < n; ++i) {
    if (q < nanAt.size() && nanAt[q] == i) {
      ++q;
      continue;
    }
    others.push_back(rows[i]);
    codes.push_back(key.code[static_cast<std::size_t>(rows[i])]);
  }
  std::int64_t otherPasses = passes;
  const auto len = static_cast<std::int64_t>(n);
  for (std::size_t q : nanAt) {
    const auto at = static_cast<std::int64_t>(q);  // starts passes at - 1 + 1, at + len + 1, ...
    if (at <= passes - 1) otherPasses -= (passes - 1 - at) / len + 1;
  }
  std::vector<std::int32_t> order;
  DescendingOrder(codes, otherPasses, order, attemptedAny, attemptedLast);
  if (!nanAt.empty()) {
    // Every comparison with a NaN attempts an exchange.
    attemptedAny = attemptedLast = true;
    std::vector<std::int32_t> placed(n, -1);
    for (std::size_t q : nanAt) {
      const auto to = static_cast<std::size_t>(((static_cast<std::int64_t>(q) - passes) % len + len) % len);
      placed[to] = rows[q];
    }
    for (std::size_t i = 0, j = 0; i < n; ++i)
      if (placed[i] < 0) placed[i] = others[static_cast<std::size_t>(order[j++])];
    std::copy(placed.begin(), placed.end(), perm_.begin() + static_cast<std::ptrdiff_t>(base));
    moved_ = true;
    return;
  }
  if (!attemptedAny) return;
  for (std::size_t i = 0; i < n; ++i) perm_[base + i] = others[static_cast<std::size_t>(order[i])];
  moved_ = true;
}

void SortEngine::Apply() {
  if (!moved_) return;
  for (TKColumn* c : columns_) c->Permute(perm_);
  for (std::size_t i = 0; i < perm_.size(); ++i) perm_[i] = static_cast<std::int32_t>(i);
  moved_ = false;
  // Keys are by original row: they no longer match the rows.
  for (auto& k : keys_) k.reset();
}

}  // namespace TessarkAO::Tables

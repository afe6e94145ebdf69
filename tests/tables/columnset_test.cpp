// TKColumnSet: the sort and the span tables against their step-by-step
// definitions on many seeded random tables, and the cases callers rely on.

#include "LiteralModels.hpp"
#include "TableTestUtil.hpp"

using namespace TessarkAO;
using namespace TessarkAO::TestUtil;

namespace {

Ref<TKColumnSet> LettersAndNumbers(const std::vector<std::pair<std::string, double>>& rows) {
  auto set = MakeRef<TKColumnSet>();
  set->LetNumberOfRows(static_cast<std::int32_t>(rows.size()));
  Ref<TKColumn> letters = set->AddColumn(TKColumnType_String), numbers = set->AddColumn(TKColumnType_Double);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    letters->SetAt(static_cast<std::int32_t>(i + 1), Variant(rows[i].first));
    numbers->SetAt(static_cast<std::int32_t>(i + 1), Variant(rows[i].second));
  }
  return set;
}

std::string Letters(const TKColumnSet& set) {
  std::string s;
  for (std::int32_t r = 1; r <= set.NumberOfRows(); ++r) s += set.GetElementAt(1, r).AsString();
  return s;
}

struct Outcome {
  int error = 0;
  bool result = false;
};

// A random span context: one to three spans, reaching before row 1 and past
// the last row at times, now and then with values that are not whole rows.
Ref<TK2DArray> RandomContext(std::mt19937& rng, std::int32_t rows) {
  const std::int32_t n = 1 + static_cast<std::int32_t>(rng() % 3);
  std::vector<std::array<double, 2>> spans;
  for (std::int32_t i = 0; i < n; ++i) {
    double start = static_cast<double>(static_cast<std::int32_t>(rng() % static_cast<unsigned>(rows + 4)) - 2);
    double end = start + static_cast<double>(static_cast<std::int32_t>(rng() % static_cast<unsigned>(rows + 6)) - 1);
    if (rng() % 10 == 0) start += 0.5;
    if (rng() % 10 == 0) end -= 0.5;
    spans.push_back({start, end});
  }
  return Spans(spans);
}

// Sorts `fast` and a clone of it step by step with the same arguments (the
// whole table when `context` is null) and checks that rows, result and error
// agree.
Outcome CheckSort(const Ref<TKColumnSet>& fast, const Ref<TK2DArray>& context, std::int32_t sortType,
                  const std::vector<std::int32_t>& keys, const std::string& where) {
  Ref<TKColumnSet> model = Clone(*fast);
  const Ref<TK2DArray> spans = context ? context : Spans({{1.0, static_cast<double>(fast->NumberOfRows())}});
  Outcome a, b;
  a.error = ErrorOf([&] {
    a.result = context ? fast->SortWithSpanContext(context, sortType, List(keys)) : fast->Sort(sortType, List(keys));
  });
  b.error = ErrorOf([&] { b.result = Literal::Sort(*model, spans, sortType, keys); });
  SCOPED_TRACE(where);
  EXPECT_EQ(a.error, b.error);
  EXPECT_EQ(a.result, b.result);  // left false by an error
  EXPECT_TRUE(SameCells(*fast, *model));
  return a;
}

// A random sort of a random table: keys that now and then name no column,
// sort types 1, 2 and 3, the whole table or a random context.
Outcome CheckRandomSort(std::mt19937& rng, const Values& values, std::int32_t rows, std::int32_t cols,
                        const std::string& where) {
  Ref<TKColumnSet> fast = RandomSet(rng, values, rows, cols);
  std::vector<std::int32_t> keys(1 + rng() % 4);
  for (auto& k : keys) k = rng() % 12 == 0 ? static_cast<std::int32_t>(rng() % 2) * (cols + 1)
                                            : 1 + static_cast<std::int32_t>(rng() % static_cast<unsigned>(cols));
  const std::uint32_t pick = rng() % 20;
  const std::int32_t sortType = pick == 0 ? 3 : (pick < 10 ? 1 : 2);
  const bool whole = rng() % 2 == 0;
  return CheckSort(fast, whole ? Ref<TK2DArray>() : RandomContext(rng, rows), sortType, keys, where);
}

}  // namespace

TEST(ColumnSetSort, MatchesTheBubbleSortOnRandomTables) {
  int exchanged = 0, failed = 0;
  // Many small tables, then larger ones with NaN among the numbers.
  const Values values, withNaN(true);
  for (std::uint32_t seed = 0; seed < 5300; ++seed) {
    const bool large = seed >= 5000;
    std::mt19937 rng(large ? 1000003 + seed - 5000 : seed);
    const auto rows = large ? 10 + static_cast<std::int32_t>(rng() % 30) : static_cast<std::int32_t>(rng() % 10);
    const auto cols = 1 + static_cast<std::int32_t>(rng() % (large ? 3 : 4));
    const Outcome o = CheckRandomSort(rng, large ? withNaN : values, rows, cols, "seed " + std::to_string(seed));
    if (HasFailure()) return;
    if (!large) exchanged += o.result, failed += o.error != 0;
  }
  // The small tables are varied enough to exercise both results and the errors.
  EXPECT_GT(exchanged, 1500);
  EXPECT_GT(failed, 100);
}

TEST(ColumnSetSort, DescendingTiesAndResizedColumnsStepByStep) {
  // One key with only two values, spans reaching far past the last row: the
  // tied rows keep rotating on every extra pass.
  std::mt19937 rng(7);
  for (int round = 0; round < 200; ++round) {
    const auto rows = 2 + static_cast<std::int32_t>(rng() % 9);
    auto fast = MakeRef<TKColumnSet>();
    fast->LetNumberOfRows(rows);
    Ref<TKColumn> key = fast->AddColumn(TKColumnType_Double), id = fast->AddColumn(TKColumnType_Double);
    for (std::int32_t r = 1; r <= rows; ++r) {
      key->SetAt(r, Variant(static_cast<double>(rng() % 2)));
      id->SetAt(r, Variant(static_cast<double>(r)));
    }
    const double start = static_cast<double>(static_cast<std::int32_t>(rng() % 4) - 2);
    CheckSort(fast, Spans({{start, rows + static_cast<double>(rng() % 40)}}), TKColumnSetSort_Descending, {1},
              "ties " + std::to_string(round));
    if (HasFailure()) return;
  }
  // A column resized behind the set's back: comparisons see its own length.
  rng.seed(99);
  const Values values;
  for (int round = 0; round < 200; ++round) {
    Ref<TKColumnSet> fast = RandomSet(rng, values, 6, 3);
    fast->Item(1 + static_cast<std::int32_t>(rng() % 3))->LetNumberOfElements(static_cast<std::int32_t>(rng() % 9));
    const std::int32_t type = 1 + static_cast<std::int32_t>(rng() % 2);
    const std::vector<std::int32_t> keys = {1 + static_cast<std::int32_t>(rng() % 3),
                                            1 + static_cast<std::int32_t>(rng() % 3)};
    CheckSort(fast, RandomContext(rng, 6), type, keys, "resized " + std::to_string(round));
    if (HasFailure()) return;
  }
}

TEST(ColumnSetSort, ColumnOrderThroughLateBoundCalls) {
  auto set = LettersAndNumbers({{"a", 2}, {"b", 1}, {"a", 1}});
  Ref<Object> o = set;
  // An array as the single argument is the same as the numbers one by one.
  SafeArray order = SafeArray::Vector(VarType::Variant, 0, 1);
  order.Data() = {Variant(2), Variant(1)};
  EXPECT_TRUE(Invoke(o, "Sort", CallKind::Method, {Variant(1), Variant(order)}).AsBoolean());
  EXPECT_EQ(Letters(*set), "aba");
  // A Long array handed straight to SortWithSpanContext is unwrapped too.
  SafeArray longs = SafeArray::Vector(VarType::Long, 1, 1);
  longs.Data()[0] = Variant(1);
  EXPECT_TRUE(Invoke(o, "SortWithSpanContext", CallKind::Method,
                     {Variant(Spans({{1, 3}})), Variant(1), Variant(longs)})
                  .AsBoolean());
  EXPECT_EQ(Letters(*set), "aab");
  // GetSpanInformationForColumns takes numbers only.
  EXPECT_EQ(ErrorOf([&] { Invoke(o, "GetSpanInformationForColumns", CallKind::Method, {Variant(order)}); }), 13);
  EXPECT_TRUE(Invoke(o, "GetSpanInformationForColumns", CallKind::Method).IsNothing());
  // No column numbers at all: nothing to do.
  EXPECT_FALSE(Invoke(o, "Sort", CallKind::Method, {Variant(1)}).AsBoolean());
}

TEST(ColumnSetSort, ArgumentErrors) {
  // (Keys naming no column are compared against the step-by-step sort above.)
  auto set = LettersAndNumbers({{"b", 1}, {"a", 2}, {"a", 3}});
  EXPECT_EQ(ErrorOf([&] { set->SortWithSpanContext(Ref<TK2DArray>(), 1, List({1})); }), 91);
  EXPECT_EQ(ErrorOf([&] { set->SortWithSpanContext(MakeRef<TK2DArray>(), 1, List({1})); }), 9);
  // A context value that is not a Long raises 6.
  EXPECT_EQ(ErrorOf([&] { set->SortWithSpanContext(Spans({{1, 3e10}}), 1, List({1})); }), 6);
  // Text that is not a number in the column order: 13.
  ParamArray bad{SafeArray::Vector(VarType::Variant, 0, 0)};
  bad.items.Data() = {Variant("first")};
  EXPECT_EQ(ErrorOf([&] { set->Sort(1, bad); }), 13);
  EXPECT_EQ(Letters(*set), "baa");
}

TEST(ColumnSetSpans, MatchTheirDefinitionsOnRandomTables) {
  const Values values(true);
  for (std::uint32_t seed = 0; seed < 1500; ++seed) {
    std::mt19937 rng(seed);
    const auto rows = static_cast<std::int32_t>(rng() % 12);
    Ref<TKColumnSet> set = RandomSet(rng, values, rows, 3);
    const auto column = static_cast<std::int32_t>(rng() % 5);  // 0 and 4 are no columns
    ASSERT_EQ(RowsOf(*set->GetSpanInformation(column)), RowsOf(*Literal::SpanInformation(*set, column))) << seed;
    Ref<TK2DArray> context = RandomContext(rng, rows);
    Table fast, model;
    const int ea = ErrorOf([&] { fast = RowsOf(*set->GetSpanInformationWithSpanContext(column, context)); });
    const int eb = ErrorOf([&] { model = RowsOf(*Literal::SpanInformationWithContext(*set, column, *context)); });
    ASSERT_EQ(ea, eb) << seed;
    ASSERT_EQ(fast, model) << seed;
    // Several columns: the first column's spans refined by each further one.
    Ref<TK2DArray> chained = Literal::SpanInformation(*set, 1);
    for (std::int32_t c = 2; c <= 3; ++c) chained = Literal::SpanInformationWithContext(*set, c, *chained);
    ASSERT_EQ(RowsOf(*set->GetSpanInformationForColumns(List({1, 2, 3}))), RowsOf(*chained)) << seed;
  }
}

TEST(ColumnSetSpans, FollowTheRowsAfterASortAndNeedAContext) {
  auto mixed = LettersAndNumbers({{"b", 0}, {"a", 0}, {"B", 0}, {"a", 0}});
  EXPECT_EQ(ErrorOf([&] { mixed->GetSpanInformationWithSpanContext(1, Ref<TK2DArray>()); }), 91);
  mixed->Sort(TKColumnSetSort_Ascending, List({1}));
  EXPECT_EQ(RowsOf(*mixed->GetSpanInformation(1)), (Table{{1, 2}, {3, 4}}));
}

TEST(ColumnSet, RowsColumnsCopiesAndMerges) {
  auto set = LettersAndNumbers({{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"e", 5}, {"f", 6}});
  EXPECT_TRUE(set->Item(0) == nullptr);
  EXPECT_TRUE(set->GetElementAt(3, 1).IsEmpty());
  set->AddRow();
  EXPECT_EQ(set->Item(1)->NumberOfElements(), 7);
  EXPECT_EQ(set->GetElementAt(1, 7).AsString(), "");
  set->LetNumberOfRows(6);
  Ref<TKColumn> added = set->AddColumn(TKColumnType_Object);
  EXPECT_EQ(added->NumberOfElements(), 6);

  // Rows 2..4, and rows outside the set keep the defaults.
  Ref<TKColumnSet> part = set->CreateColumnSetFromRows(2, 4);
  EXPECT_EQ(Letters(*part), "bcd");  // one letter per row
  Ref<TKColumnSet> edge = set->CreateColumnSetFromRows(5, 8);
  EXPECT_EQ(Letters(*edge), "ef");
  EXPECT_EQ(edge->GetElementAt(2, 4).AsDouble(), 0.0);

  // A three-row set merges into the six-row one from row 4, not from row 5.
  auto three = LettersAndNumbers({{"x", 7}, {"y", 8}, {"z", 9}});
  EXPECT_FALSE(set->MergeColumnSet(three, 5));
  EXPECT_FALSE(set->MergeColumnSet(three, 0));
  EXPECT_EQ(Letters(*set), "abcdef");
  // It has fewer columns: the first two are merged, then the third fails.
  EXPECT_EQ(ErrorOf([&] { set->MergeColumnSet(three, 4); }), 91);
  EXPECT_EQ(Letters(*set), "abcxyz");
  set->LetNumberOfRows(6);
  auto wide = LettersAndNumbers({{"p", 1}, {"q", 2}, {"r", 3}});
  wide->AddColumn(TKColumnType_String);  // a String column onto the Object column: refused cell by cell
  EXPECT_TRUE(set->MergeColumnSet(wide, 4));
  EXPECT_EQ(Letters(*set), "abcpqr");
  EXPECT_TRUE(set->GetElementAt(3, 4).IsNothing());
  EXPECT_EQ(ErrorOf([&] { set->MergeColumnSet(Ref<TKColumnSet>(), 1); }), 91);
}

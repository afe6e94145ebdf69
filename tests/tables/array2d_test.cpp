// TK2DArray: growth, re-dimensioning and copies against a plain model that
// copies the whole table on every change, and the stated cases.

#include "TableTestUtil.hpp"

using namespace TessarkAO;
using namespace TessarkAO::TestUtil;

namespace {

// The array as defined, keeping rows x columns values in nested vectors.
struct PlainArray {
  std::int32_t rows = 0, cols = 0;
  std::vector<std::vector<double>> store;  // store[r][c], absent when empty

  bool Inside(std::int32_t r, std::int32_t c) const { return r >= 1 && r <= rows && c >= 1 && c <= cols; }
  double Get(std::int32_t r, std::int32_t c) const { return Inside(r, c) ? store[r - 1][c - 1] : 0.0; }
  void Set(std::int32_t r, std::int32_t c, double v) {
    if (Inside(r, c)) store[r - 1][c - 1] = v;
  }
  void Dimension(std::int32_t r, std::int32_t c, bool preserve) {
    if (r < 1 || c < 1) Raise(Err::SubscriptOutOfRange);
    if (preserve && !store.empty()) {
      if (static_cast<std::size_t>(r) != store.size()) Raise(Err::SubscriptOutOfRange);
      for (auto& row : store) row.resize(static_cast<std::size_t>(c), 0.0);
    } else {
      store.assign(static_cast<std::size_t>(r), std::vector<double>(static_cast<std::size_t>(c), 0.0));
    }
    rows = r;
    cols = c;
  }
  void LetRows(std::int32_t n) {
    if (n >= 1 && cols >= 1) Dimension(n, cols, true); else rows = n;
  }
  void LetColumns(std::int32_t n) {
    if (n >= 1 && rows >= 1) Dimension(rows, n, true); else cols = n;
  }
  // AddRow / AddColumn: save, grow without preserving, copy back.
  void Grow(bool row) {
    PlainArray saved;
    if (rows >= 1 && cols > 0) saved = *this;
    std::int32_t r = rows, c = cols;
    if (row) {
      ++r;
      if (c == 0) c = 1;
    } else {
      ++c;
      if (r == 0) r = 1;
    }
    Dimension(r, c, false);
    for (std::int32_t i = 1; i <= saved.rows; ++i)
      for (std::int32_t j = 1; j <= saved.cols; ++j) Set(i, j, saved.Get(i, j));
  }
};

::testing::AssertionResult Same(const TK2DArray& a, const PlainArray& b) {
  if (a.Rows() != b.rows || a.Columns() != b.cols)
    return ::testing::AssertionFailure() << "counts " << a.Rows() << "x" << a.Columns() << " vs " << b.rows << "x" << b.cols;
  for (std::int32_t r = 0; r <= std::max(b.rows, 0) + 1; ++r)
    for (std::int32_t c = 0; c <= std::max(b.cols, 0) + 1; ++c)
      if (a.GetValue(r, c) != b.Get(r, c)) return ::testing::AssertionFailure() << "cell " << r << "," << c;
  return ::testing::AssertionSuccess();
}

}  // namespace

TEST(Array2D, GrowthAndDimensionsMatchThePlainModel) {
  for (std::uint32_t seed = 0; seed < 300; ++seed) {
    std::mt19937 rng(seed);
    auto a = MakeRef<TK2DArray>();
    PlainArray m;
    for (int step = 0; step < 60; ++step) {
      const auto r = static_cast<std::int32_t>(rng() % 7) - 1, c = static_cast<std::int32_t>(rng() % 6) - 1;
      int ea = 0, em = 0;
      const auto op = rng() % 8;
      switch (op) {
        case 0: {
          const bool keep = rng() % 2;
          ea = ErrorOf([&] { a->SetDimensions(r, c, keep); });
          em = ErrorOf([&] { m.Dimension(r, c, keep); });
          break;
        }
        case 1: ea = ErrorOf([&] { a->LetRows(r); }); em = ErrorOf([&] { m.LetRows(r); }); break;
        case 2: ea = ErrorOf([&] { a->LetColumns(c); }); em = ErrorOf([&] { m.LetColumns(c); }); break;
        case 3:
        case 4:
        case 5: {
          const bool row = op != 5;
          std::int32_t n = 0;
          ea = ErrorOf([&] { n = row ? a->AddRow() : a->AddColumn().AsLong(); });
          em = ErrorOf([&] { m.Grow(row); });
          ASSERT_TRUE(ea != 0 || n == (row ? m.rows : m.cols)) << n;
          break;
        }
        default: {
          const double v = static_cast<double>(rng() % 100);
          a->SetValue(r + 1, c + 1, v);
          m.Set(r + 1, c + 1, v);
        }
      }
      ASSERT_EQ(ea, em) << seed << " step " << step;
      ASSERT_TRUE(Same(*a, m)) << seed << " step " << step;
    }
  }
}

TEST(Array2D, Copies) {
  // From numeric arrays of one and two dimensions, with any lower bounds.
  auto a = MakeRef<TK2DArray>();
  SafeArray m = SafeArray::Matrix(VarType::Double, 0, 2, 5, 6);
  for (std::int32_t i = 0; i <= 2; ++i)
    for (std::int32_t j = 5; j <= 6; ++j) m.Put(i, j, Variant(i * 10.0 + j));
  EXPECT_TRUE(a->CopyFromNumericArray(Variant(m)));
  EXPECT_EQ(RowsOf(*a), (Table{{5, 6}, {15, 16}, {25, 26}}));
  SafeArray v = SafeArray::Vector(VarType::Variant, -1, 1);
  v.Data() = {Variant(1), Variant(2.5), Variant("3")};
  EXPECT_TRUE(a->CopyFromNumericArray(Variant(v)));
  EXPECT_EQ(RowsOf(*a), (Table{{1}, {2.5}, {3}}));
  SafeArray cube(VarType::Double, {ArrayBound{1, 2}, ArrayBound{1, 2}, ArrayBound{1, 2}});
  EXPECT_FALSE(a->CopyFromNumericArray(Variant(cube)));
  v.Data()[1] = Variant("x");
  EXPECT_EQ(ErrorOf([&] { a->CopyFromNumericArray(Variant(v)); }), 13);
  EXPECT_EQ(ErrorOf([&] { a->CopyFromNumericArray(Variant(1.0)); }), 13);
  EXPECT_EQ(RowsOf(*a), (Table{{1}, {2.5}, {3}}));  // unchanged by the failures

  // Copy: only the cells both arrays have.
  auto small = MakeRef<TK2DArray>();
  small->SetDimensions(2, 1, false);
  small->Copy(a);
  EXPECT_EQ(RowsOf(*small), (Table{{1}, {2.5}}));
  EXPECT_EQ(ErrorOf([&] { small->Copy(Ref<TK2DArray>()); }), 91);

  // From any object offering Rows, Columns and GetValue; errors give False.
  // A foreign table: two rows, three columns, failing at a chosen cell of row 2.
  std::int32_t failAt = 0;
  auto foreign = MakeRef<Testing::FakeObject>();
  foreign->Value("Rows", 2).Value("Columns", 3).On("GetValue", [&](CallKind, std::span<Variant> rc) {
    if (ToLong(rc[0]) == 2 && ToLong(rc[1]) == failAt) Raise(Err::DivisionByZero);
    return Variant(std::to_string(ToLong(rc[0]) * 10 + ToLong(rc[1])));  // text that converts to Double
  });
  EXPECT_TRUE(small->CopyFromIUnknown(foreign));
  EXPECT_EQ(RowsOf(*small), (Table{{11, 12, 13}, {21, 22, 23}}));
  failAt = 2;
  EXPECT_FALSE(small->CopyFromIUnknown(foreign));
  EXPECT_EQ(RowsOf(*small), (Table{{11, 12, 13}, {21, 0, 0}}));  // copied up to the failure
  EXPECT_FALSE(small->CopyFromIUnknown(Ref<Object>()));
  EXPECT_FALSE(small->CopyFromIUnknown(MakeRef<TKColumn>()));  // no Rows member
  EXPECT_TRUE(small->CopyFromIUnknown(a));
  EXPECT_EQ(RowsOf(*small), (Table{{1}, {2.5}, {3}}));
  EXPECT_TRUE(small->CopyFromIUnknown(small));  // its own values are reset first
  EXPECT_EQ(RowsOf(*small), (Table{{0}, {0}, {0}}));
  EXPECT_EQ(Invoke(small, "AddColumn", CallKind::Method).Type(), VarType::Long);
}

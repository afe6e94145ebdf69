// TK2DArray: growth, re-dimensioning and copies against a plain model that
// copies the whole table on every change, and the stated cases.
#include <gtest/gtest.h>

#include "TableTestUtil.hpp"

using namespace TessarkAO;
using namespace TessarkAO::TestUtil;

namespace {

// The array as defined, keeping rows x columns values in nested vectors.
struct PlainArray {
  std::int32_t rows = 0, cols = 0;
  std::vector<std::vector<double>> store;  // store[r][c], absent when empty

  double Get(std::int32_t r, std::int32_t c) const {
    if (r < 1 || r > rows || c < 1 || c > cols) return 0.0;
    return store[static_cast<std::size_t>(r - 1)][static_cast<std::size_t>(c - 1)];
  }
  void Set(std::int32_t r, std::int32_t c, double v) {
    if (r < 1 || r > rows || c < 1 || c > cols) return;
    store[static_cast<std::size_t>(r - 1)][static_cast<std::size_t>(c - 1)] = v;
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

// A foreign table: Rows, Columns and GetValue by name, failing on request.
class ForeignTable final : public Dispatch<ForeignTable> {
 public:
  static constexpr std::string_view kClassName = "ForeignTable";
  static void Describe(ClassBuilder<ForeignTable>& b) {
    b.Get<&ForeignTable::Rows>("Rows").Get<&ForeignTable::Columns>("Columns").Method<&ForeignTable::GetValue>("GetValue", Out<1, 2>{});
  }
  std::int32_t Rows() const { return 2; }
  std::int32_t Columns() const { return 3; }
  Variant GetValue(std::int32_t& r, std::int32_t& c) const {
    if (r == 2 && c == failAt) Raise(Err::DivisionByZero);
    return Variant(std::to_string(r * 10 + c));  // text that converts to Double
  }
  std::int32_t failAt = 0;
};

}  // namespace

TEST(Array2D, GrowthAndDimensionsMatchThePlainModel) {
  for (std::uint32_t seed = 0; seed < 300; ++seed) {
    std::mt19937 rng(seed);
    auto a = MakeRef<TK2DArray>();
    PlainArray m;
    for (int step = 0; step < 60; ++step) {
      const auto r = static_cast<std::int32_t>(rng() % 7) - 1, c = static_cast<std::int32_t>(rng() % 6) - 1;
      int ea = 0, em = 0;
      switch (rng() % 8) {
        case 0: {
          const bool keep = rng() % 2;
          ea = ErrorOf([&] { a->SetDimensions(r, c, keep); });
          em = ErrorOf([&] { m.Dimension(r, c, keep); });
          break;
        }
        case 1: ea = ErrorOf([&] { a->LetRows(r); }); em = ErrorOf([&] { m.LetRows(r); }); break;
        case 2: ea = ErrorOf([&] { a->LetColumns(c); }); em = ErrorOf([&] { m.LetColumns(c); }); break;
        case 3: case 4: {
          std::int32_t n = 0;
          ea = ErrorOf([&] { n = a->AddRow(); });
          em = ErrorOf([&] { m.Grow(true); });
          if (ea == 0) {
            ASSERT_EQ(n, m.rows);
          }
          break;
        }
        case 5: {
          Variant n;
          ea = ErrorOf([&] { n = a->AddColumn(); });
          em = ErrorOf([&] { m.Grow(false); });
          if (ea == 0) {
            ASSERT_EQ(n.AsLong(), m.cols);
          }
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
  EXPECT_EQ(a->Rows(), 3);
  EXPECT_EQ(a->Columns(), 2);
  EXPECT_EQ(a->GetValue(3, 2), 26.0);
  SafeArray v = SafeArray::Vector(VarType::Variant, -1, 1);
  v.Data() = {Variant(1), Variant(2.5), Variant("3")};
  EXPECT_TRUE(a->CopyFromNumericArray(Variant(v)));
  EXPECT_EQ(a->Columns(), 1);
  EXPECT_EQ(a->GetValue(3, 1), 3.0);
  SafeArray cube(VarType::Double, {ArrayBound{1, 2}, ArrayBound{1, 2}, ArrayBound{1, 2}});
  EXPECT_FALSE(a->CopyFromNumericArray(Variant(cube)));
  v.Data()[1] = Variant("x");
  EXPECT_EQ(ErrorOf([&] { a->CopyFromNumericArray(Variant(v)); }), 13);
  EXPECT_EQ(ErrorOf([&] { a->CopyFromNumericArray(Variant(1.0)); }), 13);
  EXPECT_EQ(a->GetValue(3, 1), 3.0);  // unchanged by the failures

  // Copy: only the cells both arrays have.
  auto small = MakeRef<TK2DArray>();
  small->SetDimensions(2, 1, false);
  small->Copy(a);
  EXPECT_EQ(small->GetValue(2, 1), 2.5);
  EXPECT_EQ(ErrorOf([&] { small->Copy(Ref<TK2DArray>()); }), 91);

  // From any object offering Rows, Columns and GetValue; errors give False.
  auto foreign = MakeRef<ForeignTable>();
  EXPECT_TRUE(small->CopyFromIUnknown(foreign));
  EXPECT_EQ(small->Columns(), 3);
  EXPECT_EQ(small->GetValue(2, 3), 23.0);
  foreign->failAt = 2;
  EXPECT_FALSE(small->CopyFromIUnknown(foreign));
  EXPECT_EQ(small->GetValue(2, 1), 21.0);  // copied before the failure
  EXPECT_EQ(small->GetValue(2, 3), 0.0);
  EXPECT_FALSE(small->CopyFromIUnknown(Ref<Object>()));
  EXPECT_FALSE(small->CopyFromIUnknown(MakeRef<TKColumn>()));  // no Rows member
  EXPECT_TRUE(small->CopyFromIUnknown(a));
  EXPECT_EQ(small->GetValue(1, 1), 1.0);
  EXPECT_TRUE(small->CopyFromIUnknown(small));  // its own values are reset first
  EXPECT_EQ(small->GetValue(1, 1), 0.0);
  EXPECT_EQ(Invoke(small, "AddColumn", CallKind::Method).Type(), VarType::Long);
}

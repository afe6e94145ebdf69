// TKColumn: what each type accepts, the two relations (equal and ordered
// after), span queries against their definitions after mutations, and the
// deliberate oddities callers rely on.

#include "LiteralModels.hpp"
#include "TableTestUtil.hpp"

using namespace TessarkAO;
using namespace TessarkAO::TestUtil;

namespace {

Ref<TKColumn> Column(std::int32_t type, const std::vector<Variant>& values) {
  auto c = MakeRef<TKColumn>();
  c->LetColumnType(type);
  for (const Variant& v : values) c->Add(v);
  return c;
}

std::vector<std::string> Texts(const TKColumn& c) {
  std::vector<std::string> out;
  for (std::int32_t i = 1; i <= c.NumberOfElements(); ++i) out.push_back(ToString(c.GetAt(i)));
  return out;
}

}  // namespace

TEST(Column, SetAtTakesExactlyTheTypesOfTheColumn) {
  auto d = Column(TKColumnType_Double, {Variant(0.0)});
  EXPECT_FALSE(d->SetAt(1, Variant("3.5")));
  EXPECT_EQ(d->GetAt(1).AsDouble(), 0.0);
  EXPECT_TRUE(d->SetAt(1, Variant(std::int16_t{3})));
  EXPECT_TRUE(SameValue(d->GetAt(1), Variant(3.0)));  // stored as a Double
  for (const Variant& v : {Variant(2), Variant(2.5f), Variant(std::uint8_t{7}), Variant(DecimalFromDouble(1.25))})
    EXPECT_TRUE(d->SetAt(1, v)) << v.TypeName();
  for (const Variant& v : {Variant(Currency{10000}), Variant(true), Variant(Date{1.0}), Variant(), Variant::Null(),
                           Variant::Nothing(), Variant(SafeArray::Vector(VarType::Double, 1, 1))})
    EXPECT_FALSE(d->SetAt(1, v)) << v.TypeName();
  Variant target(4.5);
  EXPECT_TRUE(d->SetAt(1, Variant::ByRef(target)));  // by reference counts as its value
  EXPECT_EQ(d->GetAt(1).AsDouble(), 4.5);

  auto o = Column(TKColumnType_Object, {Variant::Nothing()});
  EXPECT_EQ((std::array{o->SetAt(1, Variant(d)), o->SetAt(1, Variant::Nothing()), o->SetAt(1, Variant()),
                        o->SetAt(2, Variant::Nothing())}),
            (std::array{true, true, false, false}));
  auto s = Column(TKColumnType_String, {Variant("x")});
  EXPECT_FALSE(s->SetAt(1, Variant(1.0)));
  EXPECT_EQ(s->GetAt(1).AsString(), "x");
  EXPECT_TRUE(s->GetAt(0).IsEmpty());
}

TEST(Column, TypeIsSetOnceAndNoneColumnsStoreNothing) {
  auto c = MakeRef<TKColumn>();
  c->LetColumnType(0);
  c->LetColumnType(9);  // not a column type: ignored
  EXPECT_EQ(c->ColumnType(), TKColumnType_None);
  EXPECT_EQ((std::array{c->Add(Variant(1.0)), c->Add(Variant(1.0))}), (std::array{false, false}));
  EXPECT_EQ(c->NumberOfElements(), 2);
  EXPECT_TRUE(c->GetAt(1).IsEmpty());
  EXPECT_FALSE(c->Swap(1, 2));
  EXPECT_EQ(c->Spans(), 2);
  c->LetColumnType(TKColumnType_Double);  // the count given before gets values
  c->LetColumnType(TKColumnType_String);
  EXPECT_EQ(c->ColumnType(), TKColumnType_Double);
  EXPECT_EQ(c->GetAt(2).AsDouble(), 0.0);
  EXPECT_FALSE(c->SetAtGrow(5, Variant("text")));
  EXPECT_EQ(c->NumberOfElements(), 5);  // grown even though the element was refused
  c->LetNumberOfElements(-3);
  EXPECT_EQ(std::make_pair(c->NumberOfElements(), c->Spans()), std::make_pair(-3, 0));
  EXPECT_FALSE(c->Add(Variant(1.0)));  // count + 1 is still no valid index
  EXPECT_EQ(c->NumberOfElements(), -2);
}

// Find compares within the tolerance, ignoring case and (Find alone) the
// blanks around a text.  (The order, and runs and span lengths, are compared
// with their definitions by the sorts and the span queries.)
TEST(Column, FindComparesWithinTheTolerance) {
  auto d = Column(TKColumnType_Double, {Variant(1.0), Variant(1.0 + 6e-11), Variant(1.0 + 1.2e-10)});
  EXPECT_EQ(d->Find(Variant(1.0 + 5e-11)), 1);
  EXPECT_EQ(d->Find(Variant("1.00000000012"), 3), 3);  // text converts
  auto s = Column(TKColumnType_String, {Variant("Abc"), Variant("abc"), Variant(" abc"), Variant("b")});
  EXPECT_EQ(std::make_pair(s->Find(Variant("ABC "), 2), s->Find(Variant("abc"), 3)), std::make_pair(2, 3));
  auto a = MakeRef<TKColumn>(), b = MakeRef<TKColumn>();
  EXPECT_EQ(Column(TKColumnType_Object, {Variant(a), Variant(a), Variant(b)})->Find(Variant(b)), 3);
}

TEST(Column, SpanQueriesMatchTheirDefinitionsAfterMutations) {
  const Values values;
  for (std::uint32_t seed = 0; seed < 150; ++seed) {
    std::mt19937 rng(seed);
    auto c = MakeRef<TKColumn>();
    c->LetColumnType(Values::RandomType(rng));
    for (int step = 0; step < 25; ++step) {
      const auto n = c->NumberOfElements();
      switch (rng() % 6) {
        case 0: c->Add(values.Of(c->ColumnType(), rng)); break;
        case 1: c->SetAt(1 + static_cast<std::int32_t>(rng() % static_cast<unsigned>(n + 1)), values.Of(c->ColumnType(), rng)); break;
        case 2: c->Swap(static_cast<std::int32_t>(rng() % static_cast<unsigned>(n + 2)), static_cast<std::int32_t>(rng() % static_cast<unsigned>(n + 2))); break;
        case 3:
          if (c->ColumnType() != TKColumnType_Double) c->RemoveAt(1 + static_cast<std::int32_t>(rng() % static_cast<unsigned>(n + 1)));
          break;
        case 4: c->LetNumberOfElements(static_cast<std::int32_t>(rng() % 12)); break;
        default: c->SetAtGrow(static_cast<std::int32_t>(rng() % 12), values.Of(c->ColumnType(), rng)); break;
      }
      const std::int32_t spans = Literal::Spans(*c);
      ASSERT_EQ(c->Spans(), spans) << seed;
      for (std::int32_t s = -1; s <= spans + 1; ++s) {
        ASSERT_EQ(c->SpanIndex(s), Literal::SpanIndex(*c, s)) << seed;
        ASSERT_TRUE(SameCell(c->SpanValue(s), s >= 1 && s <= spans ? c->GetAt(Literal::SpanIndex(*c, s)) : Variant()));
      }
      for (std::int32_t i = -1; i <= c->NumberOfElements() + 1; ++i) {
        ASSERT_EQ(c->IndexSpan(i), Literal::IndexSpan(*c, i)) << seed << " " << i;
        ASSERT_EQ(c->GetSpanLength(i, true), Literal::SpanLength(*c, i, true)) << seed;
        ASSERT_EQ(c->GetSpanLength(i, false), Literal::SpanLength(*c, i, false)) << seed;
      }
    }
  }
}

TEST(Column, SwapAndRemoveAtKeepTheirOddities) {
  auto s = Column(TKColumnType_String, {Variant("x"), Variant("y"), Variant("z")});
  EXPECT_TRUE(s->Swap(0, 1));  // invalid index: True, nothing changes
  EXPECT_EQ(Texts(*s), (std::vector<std::string>{"x", "y", "z"}));
  EXPECT_TRUE(s->Swap(1, 3));
  EXPECT_EQ(Texts(*s), (std::vector<std::string>{"z", "y", "x"}));
  EXPECT_FALSE(s->RemoveAt(2));  // False even though it removed
  EXPECT_EQ(Texts(*s), (std::vector<std::string>{"z", "x"}));

  auto d = Column(TKColumnType_Double, {Variant(1.0), Variant(2.0), Variant(3.0)});
  EXPECT_EQ(ErrorOf([&] { d->RemoveAt(2); }), 9);  // any but the last: 9, unchanged
  EXPECT_EQ(Texts(*d), (std::vector<std::string>{"1", "2", "3"}));
  EXPECT_FALSE(d->RemoveAt(3));  // the last: the rest become 0.0
  EXPECT_EQ(Texts(*d), (std::vector<std::string>{"0", "0"}));
  EXPECT_FALSE(d->RemoveAt(7));
  auto one = Column(TKColumnType_Object, {Variant(d)});
  EXPECT_FALSE(one->RemoveAt(1));
  EXPECT_EQ(one->NumberOfElements(), 0);
  EXPECT_EQ(d->RefCount(), 1u);  // the column let its reference go
}

TEST(Column, WholeColumnTransfers) {
  auto d = Column(TKColumnType_Double, {Variant(1.0), Variant(2.0), Variant(3.0), Variant(4.0)});
  // A 0-based array of four values: positions 0 and 1 are lost, 2 and 3 go
  // to indices 1 and 2.
  SafeArray zero = SafeArray::Vector(VarType::Double, 0, 3);
  for (std::int32_t p = 0; p <= 3; ++p) zero.Put(p, Variant(10.0 + p));
  d->SetDoubleValues(Variant(zero));
  Variant out;
  EXPECT_EQ(d->GetDoubleValues(out), 4);
  EXPECT_EQ(out.AsArray().LBound(), 1);
  EXPECT_EQ(out.AsArray().Get(1).AsDouble(), 12.0);
  EXPECT_EQ(out.AsArray().Get(2).AsDouble(), 13.0);
  EXPECT_EQ(out.AsArray().Get(3).AsDouble(), 3.0);
  // A base of 2 shifts the other way: position 2 goes to index 3.
  SafeArray two = SafeArray::Vector(VarType::Double, 2, 3);
  two.Put(2, Variant(20.0));
  two.Put(3, Variant(21.0));
  d->SetDoubleValues(Variant(two));
  EXPECT_EQ(Texts(*d), (std::vector<std::string>{"12", "13", "20", "21"}));
  // The method names the store it reads.
  Variant untouched("keep");
  EXPECT_EQ(ErrorOf([&] { d->GetStringValues(untouched); }), 9);
  EXPECT_EQ(untouched.AsString(), "keep");
  EXPECT_EQ(MakeRef<TKColumn>()->GetStringValues(untouched), 0);
  auto s = Column(TKColumnType_String, {Variant("p")});
  s->SetStringValues(Variant(SafeArray::Vector(VarType::String, 1, 3)));  // past the count: dropped
  EXPECT_EQ(s->NumberOfElements(), 1);
  EXPECT_EQ(s->GetAt(1).AsString(), "");
  EXPECT_EQ(ErrorOf([&] { s->SetStringValues(Variant("p")); }), 13);
}

TEST(Column, BadInputRaisesTheClassicErrors) {
  auto d = Column(TKColumnType_Double, {Variant(1.0)});
  EXPECT_EQ(ErrorOf([&] { d->Find(Variant(1.0), 0); }), 9);
  EXPECT_EQ(ErrorOf([&] { d->Find(Variant("abc")); }), 13);
  EXPECT_EQ(d->Find(Variant("abc"), 2), 0);  // nothing visited, nothing converted
  auto o = Column(TKColumnType_Object, {Variant::Nothing()});
  EXPECT_EQ(ErrorOf([&] { o->Find(Variant(1.0)); }), 13);
  EXPECT_EQ(o->Find(Variant::Nothing()), 1);
  EXPECT_EQ(ErrorOf([&] { d->LetNumberOfElements(2000000000); }), 7);
  EXPECT_EQ(d->NumberOfElements(), 1);
  // A None column grows without a store; its span table would not fit.
  auto none = MakeRef<TKColumn>();
  EXPECT_FALSE(none->SetAtGrow(2147483647, Variant(1.0)));
  EXPECT_EQ(ErrorOf([&] { none->Spans(); }), 7);
  EXPECT_EQ(ErrorOf([&] { none->IndexSpan(5); }), 7);
  none->LetNumberOfElements(3);
  EXPECT_EQ(none->Spans(), 3);
}

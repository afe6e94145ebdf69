// TK2DProjectedThreads answers every query with "nothing available" and
// leaves the caller's outputs as they were.
#include <gtest/gtest.h>

#include "ProfilesTestSupport.hpp"
#include "profiles/TK2DProjectedThreads.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

TEST(ProjectedThreads, EveryQueryIsFalseAndEveryOutputUntouched) {
  Scene scene;
  Variant threads(CreateObject("TessarkAO.TK2DProjectedThreads"));
  int methods = 0;
  const auto journal = Journaled([&] {
    for (const MemberInfo& m : TK2DProjectedThreads::StaticClass().Members()) {
      if (!m.isMethod) continue;
      ++methods;
      for (const Variant& shapeArg : {scene.shape, Variant::Nothing()}) {
        // Each caller variable gets a value of its own; outputs go by reference.
        std::vector<Variant> values, args;
        for (std::size_t i = 0; i < m.get.params.size(); ++i) {
          const VarType t = m.get.params[i].type;
          values.push_back(t == VarType::Object    ? shapeArg
                           : t == VarType::Boolean ? Variant(i % 2 == 0)
                                                   : Variant(5.0 + static_cast<double>(i)));
        }
        const std::vector<Variant> before = values;
        for (Variant& v : values) args.push_back(Variant::ByRef(v));
        const Variant result = threads.Invoke(m.name, CallKind::Method, args);
        EXPECT_TRUE(SameValue(result, Variant(false))) << m.name;
        EXPECT_EQ(result.Type(), VarType::Boolean) << m.name;
        for (std::size_t i = 0; i < values.size(); ++i)
          EXPECT_TRUE(values[i].IsObject() || SameValue(values[i], before[i])) << m.name << " argument " << i;
      }
    }
  });
  EXPECT_EQ(methods, 9);
  EXPECT_TRUE(journal.empty());  // the shape is never examined

  EXPECT_EQ(threads.Get("Callout").AsString(), "");
  EXPECT_EQ(Numbers(threads, {"ProjectionFlags", "HoleInformationFlags"}), (std::vector<double>{0, 0}));
}

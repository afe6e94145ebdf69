// TK2DProjectedThreads answers every query with "nothing available" and
// leaves the caller's outputs as they were.
#include <gtest/gtest.h>

#include "ProfilesTestSupport.hpp"
#include "automation/Catalogue.hpp"
#include "frame/Globals.hpp"
#include "profiles/TK2DProjectedThreads.hpp"

using namespace TessarkAO;
using namespace TessarkAO::Testing;

TEST(ProjectedThreads, EveryQueryIsFalseAndEveryOutputUntouched) {
  Scene scene;
  RefHost::ClearJournal();
  RefHost::StartJournal();
  const std::int32_t before = Globals::InstanceCount();
  Variant threads(CreateObject("TessarkAO.TK2DProjectedThreads"));
  EXPECT_EQ(Globals::InstanceCount(), before);  // stays out of the count

  int methods = 0;
  for (const MemberInfo& m : TK2DProjectedThreads::StaticClass().Members()) {
    if (!m.isMethod) continue;
    ++methods;
    for (const Variant& shapeArg : {scene.shape, Variant::Nothing()}) {
      // Each caller variable gets a value of its own; outputs go by reference.
      std::vector<Variant> values, args;
      values.reserve(m.get.params.size());
      for (std::size_t i = 0; i < m.get.params.size(); ++i) {
        const ParamInfo& p = m.get.params[i];
        if (p.type == VarType::Object)
          values.push_back(shapeArg);
        else if (p.type == VarType::Boolean)
          values.push_back(Variant(i % 2 == 0));
        else
          values.push_back(Variant(5.0 + static_cast<double>(i)));
      }
      for (Variant& v : values) args.push_back(Variant::ByRef(v));
      const Variant result = threads.Invoke(m.name, CallKind::Method, args);
      EXPECT_EQ(result.Type(), VarType::Boolean) << m.name;
      EXPECT_FALSE(result.AsBoolean()) << m.name;
      for (std::size_t i = 0; i < values.size(); ++i) {
        const ParamInfo& p = m.get.params[i];
        if (p.type == VarType::Object) continue;
        const Variant expected =
            p.type == VarType::Boolean ? Variant(i % 2 == 0) : Variant(5.0 + static_cast<double>(i));
        EXPECT_TRUE(SameValue(values[i], expected)) << m.name << " argument " << p.name;
      }
    }
  }
  EXPECT_EQ(methods, 9);
  RefHost::StopJournal();
  EXPECT_TRUE(RefHost::Journal().empty());  // the shape is never examined

  EXPECT_EQ(threads.Get("Callout").AsString(), "");
  EXPECT_EQ(threads.Get("ProjectionFlags").AsLong(), 0);
  EXPECT_EQ(threads.Get("HoleInformationFlags").AsLong(), 0);

  EXPECT_EQ(ErrorNumber([&] { threads.Call("GetDiameters", 1.0); }), Err::ArgumentNotOptional);
}

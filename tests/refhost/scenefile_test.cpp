// Scene files: a saved scene loads back into the same scene (as every member
// the library can call sees it), and malformed or inconsistent files raise
// 321 naming the place, loading nothing.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "RefHostTestSupport.hpp"

using namespace TessarkAO;
using namespace TessarkAO::RefHostTest;

namespace {

std::string Text(const Variant& v) {
  if (v.Type() == VarType::Double) return RefHost::FormatJournalValue(v);  // exact
  return ToString(v) + ":" + std::string(TypeName(v.Type()));
}

// Everything a caller can read through the host's members, as text.
void DumpShape(const Variant& shape, std::string& out, const std::string& indent) {
  out += indent + ToString(shape.Get("Name")) + " type " + ToString(shape.Get("Type")) + " id " +
         ToString(shape.Get("SystemID")) + "\n";
  for (int type = 1; type <= 68; ++type) {
    Variant list = shape.Get("Components", type);
    for (std::int32_t i = 1; i <= ToLong(list.Get("Count")); ++i) {
      Variant c = list.Call("Item", i);
      out += indent + " [" + std::to_string(type) + "] " + ToString(c.Get("Name")) + "\n";
      if (type == 3) {
        Variant curves = c.Get("Curves");
        out += indent + "  path closed " + ToString(c.Get("Closed")) + " construction " +
               ToString(c.Get("Construction")) + " start " + Text(c.Call("Variable", 0, 1).Get("Value")) +
               "\n";
        for (std::int32_t j = 1; j <= ToLong(curves.Get("Count")); ++j) {
          Variant k = curves.Call("Item", j);
          out += indent + "   curve " + ToString(k.Get("Type"));
          for (int n = 1; n <= 10; ++n) {
            try {
              Variant v = c.Call("Variable", j, n);
              out += " " + Text(v.Get("Value")) + "|" + ToString(v.Get("Expression"));
            } catch (const AutomationError&) {
            }
          }
          if (ToLong(k.Get("Type")) == 5) {
            out += " deg " + ToString(k.Get("Degree")) + " cp " + ToString(k.Get("ControlPoints")) + " fit " +
                   ToString(k.Get("FitPoints")) + " knots " + ToString(k.Get("Knots"));
            for (std::int32_t n = 1; n <= ToLong(k.Get("Knots")); ++n)
              out += " " + Text(k.Call("GetKnot", n));
          }
          out += "\n";
        }
        continue;
      }
      Variant vars = c.Get("Variables");
      for (std::int32_t n = 1; n <= ToLong(vars.Get("Count")); ++n) {
        Variant v = vars.Call("Item", n);
        out += indent + "  " + ToString(v.Get("Name")) + "/" + ToString(v.Get("Type")) + " = " +
               Text(v.Get("Value")) + " " + ToString(v.Get("Expression")) + "\n";
      }
      if (type == 10) out += indent + "  faces " + ToString(c.Get("Faces").Get("Count")) + "\n";
      if (type == 15) {
        Variant paths = c.Get("Profile").Get("Components", 3);
        out += indent + "  paths " + ToString(paths.Get("Count")) + "\n";
      }
      if (type == 2 || type == 23) {
        Variant shapes = c.Get("Shapes");
        for (std::int32_t n = 1; n <= ToLong(shapes.Get("Count")); ++n)
          DumpShape(shapes.Call("Item", n), out, indent + "    ");
      }
    }
  }
}

std::string Dump(const Variant& app) {
  std::string out = "active " + ToString(app.Get("ActivePage").Get("Name")) + "\n";
  Variant pages = app.Get("Pages");
  for (std::int32_t i = 1; i <= ToLong(pages.Get("Count")); ++i) {
    Variant p = pages.Call("Item", i);
    out += "page " + ToString(p.Get("Name")) + " " + Text(p.Get("UnitsScale", 2)) + " " +
           Text(p.Get("UnitsScale", 1)) + " selected";
    Variant sel = p.Get("SelectedItems");
    for (std::int32_t k = 1; k <= ToLong(sel.Get("Count")); ++k)
      out += " " + ToString(sel.Call("Item", k).Get("SystemID"));
    out += "\n";
    DumpShape(p.Get("Shape"), out, "");
  }
  return out;
}

// A scene using every kind of content a file can hold.
Variant RichScene(unsigned seed, int shapes = 25) {
  std::mt19937 rng(seed);
  RandomScene s = MakeRandomScene(rng, shapes);
  Variant app = s.app;
  std::uniform_real_distribution<double> d(-10.0, 10.0);
  for (const Variant& shape : s.shapes) {
    const int type = ToLong(shape.Get("Type"));
    if (type == 5 || type == 11 || type == 9) {
      Variant p = ProfileOf(shape).Get("Components", 3).Call("Add");
      p.Call("SetStartPoint", d(rng), d(rng));
      p.Call("AddLineTo", d(rng), d(rng));
      p.Call("AddArcTo", d(rng), d(rng), 0.5);
      p.Call("AddSplineTo", d(rng), d(rng), 1.0, 2.0, 3.0, 4.0);
      p.Call("AddEllipse", 1.0, 2.0, 3.0);
      p.Call("AddEllipse", 1.0, 2.0, 3.0, 4.0, 5.0);
      Variant b = p.Call("AddBSplineTo", 1.0, 1.0);
      SafeArray fit = SafeArray::Matrix(VarType::Double, 1, 4, 1, 2);
      for (int i = 1; i <= 4; ++i) fit.Put(i, 1, Variant(i * 1.5)), fit.Put(i, 2, Variant(d(rng)));
      b.Call("SetDefinitionByFitPoints", 3, false, true, fit);
      p.Call("AddFilletAt", 2, 0.25);
      p.Let("Closed", true);
      p.Let("Construction", 1);
      p.Call("Variable", 1, 2).Let("Expression", "Sizebox\\Width / 3");
      shape.Call("ResetSizeBox");
    }
    if (type == 3) {
      Comp(shape, 62);
      Comp(shape, 43).Call("Variable", 1).Let("Value", "TessarkAORib.ExtrudeRib");
      Comp(shape, 7).Get("SurfaceFinish").Let("SurfaceColor", std::int32_t{255});
      Comp(shape, 5).Call("Variable", 2).Let("Expression", "(Sizebox\\Width * 0.25)");
      shape.Get("Components", 3).Call("Add").Call("AddLineTo", 2.0, 3.0);
    }
    if (type == 2) {
      Comp(shape, 10).Get("Faces").Call("Add");
      Comp(shape, 10).Get("Faces").Call("Add");
    }
    if (type == 1) Comp(AddShape(shape, 14), 66).Call("SetExtrudeDistance", 1, 2.5);
  }
  Variant page2 = app.Get("Pages").Call("Add", "Second");
  page2.Let("UnitsScale", 2, 0.0254);
  page2.Let("UnitsScale", 1, 1.0);
  Variant extra = AddShape(page2.Get("Shape"), 1);
  app.Get("ActivePage").Get("SelectedItems").Call("Add", s.shapes[3]);
  app.Get("ActivePage").Get("SelectedItems").Call("Add", s.shapes[1]);
  page2.Get("SelectedItems").Call("Add", extra);
  app.Set("ActivePage", page2);
  return app;
}

// The first line where two dumps differ, or "" when they are equal.
std::string FirstDifference(const std::string& a, const std::string& b) {
  std::size_t line = 1, i = 0;
  for (; i < a.size() && i < b.size() && a[i] == b[i]; ++i) line += a[i] == '\n';
  if (i == a.size() && i == b.size()) return "";
  const std::size_t start = a.rfind('\n', i == 0 ? 0 : i - 1);
  const std::size_t from = start == std::string::npos ? 0 : start + 1;
  return "line " + std::to_string(line) + ": \"" + a.substr(from, a.find('\n', from) - from) + "\" vs \"" +
         b.substr(from, b.find('\n', from) - from) + "\"";
}

// A scene of one page whose root carries, after its studio, the given components.
std::string InRoot(const std::string& components) {
  return R"({"pages": [{"name": "P", "root": {"type": 1, "components": [{"type": 18}, )" + components + "]}}]}";
}

std::string LoadError(const std::string& json) {
  try {
    RefHost::LoadSceneFromString(json);
  } catch (const AutomationError& e) {
    return std::to_string(e.Number()) + " " + e.Description();
  }
  return "loaded";
}

const char* kMinimal =
    R"({"pages": [{"name": "P", "root": {"type": 1, "components": [{"type": 18}, {"type": 2, "shapes": [
  {"name": "A", "type": 3, "systemID": 7, "components": [{"type": 4, "variables": {"1": 2.5, "9": 1}}]}]}]}}]})";

}  // namespace

TEST(SceneFile, SavedScenesLoadBackAsTheSameScene) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    Variant app = RichScene(seed);
    if (seed == 2) Root(app).Let("Name", "Top");  // a renamed root loads back too
    const std::string text = RefHost::SaveSceneToString(app.AsObject());
    Variant back(RefHost::LoadSceneFromString(text));
    EXPECT_EQ(FirstDifference(Dump(back), Dump(app)), "") << "seed " << seed;
    EXPECT_EQ(RefHost::SaveSceneToString(back.AsObject()), text) << "seed " << seed;
    // Identifiers go on from where they were.
    Variant next = AddShape(Root(back), 3);
    Variant nextOriginal = AddShape(Root(app), 3);
    EXPECT_EQ(ToLong(next.Get("SystemID")), ToLong(nextOriginal.Get("SystemID")));
  }
}

TEST(SceneFile, FilesOnDisk) {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() / "tk_refhost_scene_test";
  std::filesystem::create_directories(dir);
  const std::string file = (dir / "scene.json").string();
  Variant app = RichScene(9);
  RefHost::SaveScene(app.AsObject(), file);
  Variant back(RefHost::LoadScene(file));
  EXPECT_EQ(FirstDifference(Dump(back), Dump(app)), "");
  EXPECT_EQ(ErrorOf([&] { RefHost::LoadScene((dir / "missing.json").string()); }), 53);
  EXPECT_EQ(ErrorOf([&] { RefHost::LoadScene(dir.string()); }), 75);
  EXPECT_EQ(ErrorOf([&] { RefHost::SaveScene(app.AsObject(), (dir / "no" / "such" / "x.json").string()); }),
            75);
  EXPECT_EQ(ErrorOf([&] { RefHost::SaveScene(Ref<Object>(), file); }), 91);
  EXPECT_EQ(ErrorOf([&] { RefHost::SaveScene(app.Get("ActivePage").AsObject(), file); }), 13);
  std::ofstream(file) << "{\n  \"pages\": [\n    {\"name\": 5}\n  ]\n}\n";
  std::string message;
  EXPECT_EQ(ErrorOf([&] { RefHost::LoadScene(file); }, &message), 321);
  EXPECT_EQ(message, file + ": /pages/0/name: a text is expected here");
  std::filesystem::remove_all(dir);
}

TEST(SceneFile, WhatAHandWrittenFileMeans) {
  Variant app(RefHost::LoadSceneFromString(kMinimal));
  Variant a = Root(app).Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 1);
  EXPECT_EQ(ToLong(a.Get("SystemID")), 7);
  EXPECT_EQ(GetVar(a, 4, 1), 2.5);
  EXPECT_EQ(Comp(a, 4).Call("Variable", 9).Get("Value").Type(), VarType::Long);
  EXPECT_EQ(GetVar(a, 4, 2), 0.0);                            // not listed: the host's initial value
  EXPECT_EQ(ToLong(a.Get("Components", 5).Get("Count")), 0);  // only what the file lists
  EXPECT_EQ(ToLong(Root(app).Get("SystemID")), 8);            // unnumbered shapes follow the highest
  // A formula without a value is evaluated when the scene stands; declared
  // variables of a type the host gives none take their type from the file.
  Variant b(RefHost::LoadSceneFromString(R"({"pages": [{"name": "P", "root": {"type": 1, "components": [
    {"type": 18}, {"type": 1, "variables": {"1": 8}},
    {"type": 5, "variables": {"1": {"expression": "Sizebox\\Length / 4"}}},
    {"type": 34, "variables": {"3": 2, "4": 2.0, "5": {"value": true, "name": "Flag"}, "6": "t"}}]}}]})"));
  Variant root = Root(b);
  EXPECT_EQ(GetVar(root, 5, 1), 2.0);
  Variant user = root.Get("Components", 34).Call("Item", 1);
  EXPECT_EQ(user.Call("Variable", 3).Get("Value").Type(), VarType::Long);
  EXPECT_EQ(user.Call("Variable", 4).Get("Value").Type(), VarType::Double);
  EXPECT_EQ(ToString(user.Call("Variable", 5).Get("Name")), "Flag");
  EXPECT_EQ(ToLong(user.Call("Variable", 5).Get("Type")), 34);
  EXPECT_EQ(ToString(user.Call("Variable", 6)), "t");
  // The file reads back as written, with the variables the host adds to its
  // own components (curved stock's Width) saved with their names.
  Variant stock = AddShape(root, 11);
  stock.Call("Initialize", 2);
  ASSERT_EQ(ToString(Comp(stock, 63).Call("Variable", 57).Get("Name")), "Width");
  const std::string text = RefHost::SaveSceneToString(b.AsObject());
  EXPECT_EQ(RefHost::SaveSceneToString(RefHost::LoadSceneFromString(text)), text);
}

TEST(SceneFile, MalformedFilesNameThePlace) {
  struct Row {
    std::string json;
    std::string message;
  } rows[] = {
      {"{\"pages\": [\n  {\"name\": \"P\",,}\n]}", "321 scene:2:16: syntax error"},
      {"{\"pages\": [],\n \"version\": 1e999}", "321 scene:2:13: number overflow parsing '1e999'"},
      {"", "321 scene:1:1: syntax error"},
      {"[1]", "321 scene: /: an object is expected here"},
      {"{}", "321 scene: /: the key \"pages\" is missing"},
      {R"({"pages": [], "colour": 1})", "321 scene: /colour: unknown key \"colour\""},
      {R"({"pages": [], "version": 2})", "321 scene: /version: this host reads scene files of version 1"},
      {R"({"pages": [{"name": "P"}]})", "321 scene: /pages/0: the key \"root\" is missing"},
      {R"({"pages": [{"name": "P", "root": {"type": 1}}]})",
       "321 scene: /pages/0/root: a page's root shape carries the studio component (18)"},
      {R"({"pages": [{"name": "P", "root": {"type": 3, "components": [{"type": 18}]}}]})",
       "321 scene: /pages/0/root/type: a page's root shape has type 1"},
      {InRoot(R"({"type": 2, "shapes": [{"type": 3, "components": [{"type": 18}]}]})"),
       "321 scene: /pages/0/root/components/1/shapes/0/components/0/type: only a page's root shape carries"},
      {InRoot(R"({"type": 2, "shapes": [{"type": 3, "systemID": 4}, {"type": 3, "systemID": 4}]})"),
       "321 scene: /pages/0/root/components/1/shapes/1/systemID: system identifier 4 is used twice"},
      {InRoot(R"({"type": 4, "variables": {"12": 1}})"),
       "321 scene: /pages/0/root/components/1/variables/12: the host has no variable 12 here"},
      {InRoot(R"({"type": 4, "variables": {"9": 1.5}})"),
       "321 scene: /pages/0/root/components/1/variables/9: a whole number is expected here"},
      {InRoot(R"({"type": 4, "variables": {"01": 1}})"),
       "321 scene: /pages/0/root/components/1/variables/01: a variable's key is its number, from 1"},
      {InRoot(R"({"type": 4, "variables": {"1": {"value": 1, "expression": "2 *"}}})"),
       "321 scene: /pages/0/root/components/1/variables/1/expression: Invalid expression"},
      {InRoot(R"({"type": 4, "variables": {"1": {"expression": "Sizebox\\Length"}}})"),
       "321 scene: /pages/0/root/components/1/variables/1/expression: Invalid expression"},
      {InRoot(R"({"type": 99})"),
       "321 scene: /pages/0/root/components/1/type: the host has no component type 99"},
      {InRoot(R"({"type": 4, "shapes": []})"),
       "321 scene: /pages/0/root/components/1/shapes: unknown key \"shapes\""},
      {R"({"pages": [{"name": "P", "selection": [3], "root": {"type": 1, "components": [{"type": 18}]}}]})",
       "321 scene: /pages/0/selection/0: no shape on this page has system identifier 3"},
      {InRoot(R"({"type": 15, "paths": [{"curves": [{"type": 1, "degree": 3}]}]})"),
       "321 scene: /pages/0/root/components/1/paths/0/curves/0/degree: unknown key \"degree\""},
      {InRoot(R"({"type": 15, "paths": [{"curves": [{"type": 5, "controlPoints": [[1, 2], [3]]}]}]})"),
       "321 scene: /pages/0/root/components/1/paths/0/curves/0/controlPoints/1: a point is an array of two"},
      {R"({"pages": [{"name": "P", "unitsScale": {"length": 0}, "root": {"type": 1, "components": [{"type": 18}]}}]})",
       "321 scene: /pages/0/unitsScale/length: a units scale must be above 0"},
      {R"({"pages": [{"name": "P", "root": {"type": 1, "components": [{"type": 18}]}}], "activePage": 2})",
       "321 scene: /activePage: the number must lie from 1 to 1"},
  };
  for (const Row& r : rows) {
    const std::string got = LoadError(r.json);
    EXPECT_EQ(got.substr(0, r.message.size()), r.message) << r.json;
  }
  // Nesting deeper than the host allows is refused, not followed.
  std::string deep =
      R"({"pages": [{"name": "P", "root": {"type": 1, "components": [{"type": 18}, {"type": 2, "shapes": [)";
  for (int i = 0; i < 1100; ++i) deep += R"({"type": 1, "components": [{"type": 2, "shapes": [)";
  for (int i = 0; i < 1100; ++i) deep += "]}]}";
  deep += "]}]}}]}";
  EXPECT_NE(LoadError(deep).find("nested deeper than 1000 levels"), std::string::npos);
}

TEST(SceneFile, NamesThatAreNotUtf8LoadBackAsTheSameBytes) {
  Variant app(RefHost::NewApplication());
  // A lone surrogate as a caller's string carries it, and a stray byte.
  const std::string name = std::string("Bad\xed\xa0\x80 \xff");
  AddShape(Root(app), 3).Let("Name", name);
  const std::string text = RefHost::SaveSceneToString(app.AsObject());
  Variant back(RefHost::LoadSceneFromString(text));
  EXPECT_EQ(
      ToString(Root(back).Get("Components", 2).Call("Item", 1).Get("Shapes").Call("Item", 1).Get("Name")), name);
  EXPECT_EQ(RefHost::SaveSceneToString(back.AsObject()), text);
  EXPECT_EQ(ErrorOf([&] { RefHost::LoadSceneFromString(std::string(text).replace(text.find("\"bytes\": \"") + 10, 1, "g")); }), 321);
}

// Scene files: JSON in, JSON out (schema in refhost/README.md).
//
// Loading builds a complete new application or raises 321 naming the place
// of the first problem; nothing of a half-read file is ever visible.
#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <unordered_map>

#include "automation/Convert.hpp"
#include "refhost/Expression.hpp"
#include "refhost/HostModel.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::RefHost {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::int32_t kInvalidFileFormat = 321;
constexpr int kFormatVersion = 1;
constexpr const char* kFormatName = "tessarkao-scene";
constexpr std::size_t kMaxDepth = 1000;
constexpr std::int64_t kMaxFaces = 1000000;

// ---------------------------------------------------------------------------
// Loading

class Loader {
 public:
  explicit Loader(std::string source) : source_(std::move(source)) {}

  Ref<HostApplication> Load(const Json& doc);

 private:
  // The JSON path of the value being read, as a JSON pointer.
  class At {
   public:
    At(Loader& l, std::string segment) : l_(l) { l_.path_.push_back(std::move(segment)); }
    At(Loader& l, std::size_t index) : At(l, std::to_string(index)) {}
    ~At() { l_.path_.pop_back(); }
    At(const At&) = delete;
    At& operator=(const At&) = delete;

   private:
    Loader& l_;
  };

  std::string Pointer() const {
    std::string p;
    for (const std::string& s : path_) {
      p += '/';
      for (char c : s) {
        if (c == '~') {
          p += "~0";
        } else if (c == '/') {
          p += "~1";
        } else {
          p += c;
        }
      }
    }
    return p.empty() ? "/" : p;
  }

  [[noreturn]] void Fail(const std::string& what) const {
    Raise(kInvalidFileFormat, source_ + ": " + Pointer() + ": " + what);
  }

  void CheckKeys(const Json& obj, std::initializer_list<std::string_view> allowed) {
    if (!obj.is_object()) Fail("an object is expected here");
    for (auto it = obj.begin(); it != obj.end(); ++it) {
      bool ok = false;
      for (std::string_view a : allowed) ok = ok || it.key() == a;
      if (!ok) {
        At at(*this, it.key());
        Fail("unknown key \"" + it.key() + "\"");
      }
    }
  }

  const Json* Member(const Json& obj, const char* key) {
    auto it = obj.find(key);
    return it == obj.end() ? nullptr : &*it;
  }

  std::int64_t Integer(const Json& v, std::int64_t lo, std::int64_t hi) {
    std::int64_t x = 0;
    if (v.is_number_integer()) {
      x = v.is_number_unsigned() && v.get<std::uint64_t>() > static_cast<std::uint64_t>(hi)
              ? hi + 1
              : v.get<std::int64_t>();
    } else if (v.is_number_float() && std::trunc(v.get<double>()) == v.get<double>() &&
               std::abs(v.get<double>()) < 9e18) {
      x = static_cast<std::int64_t>(v.get<double>());
    } else {
      Fail("a whole number is expected here");
    }
    if (x < lo || x > hi)
      Fail("the number must lie from " + std::to_string(lo) + " to " + std::to_string(hi));
    return x;
  }

  double Number(const Json& v) {
    if (!v.is_number()) Fail("a number is expected here");
    const double d = v.get<double>();
    if (!std::isfinite(d)) Fail("the number is out of range");
    return d;
  }

  bool Boolean(const Json& v) {
    if (!v.is_boolean()) Fail("true or false is expected here");
    return v.get<bool>();
  }

  // A text: a JSON string, or {"bytes": "<hex>"} for one that is not valid
  // UTF-8 (a lone surrogate that a caller's string held, say).
  static bool IsText(const Json& v) { return v.is_string() || (v.is_object() && v.contains("bytes")); }
  std::string String(const Json& v) {
    if (v.is_string()) return v.get<std::string>();
    if (!IsText(v) || v.size() != 1 || !v["bytes"].is_string()) Fail("a text is expected here");
    const std::string& hex = v["bytes"].get_ref<const std::string&>();
    auto digit = [&](char c) -> int {
      if (c >= '0' && c <= '9') return c - '0';
      if (c >= 'a' && c <= 'f') return c - 'a' + 10;
      Fail("\"bytes\" holds two lower-case hexadecimal digits a byte");
    };
    if (hex.size() % 2 != 0) Fail("\"bytes\" holds two lower-case hexadecimal digits a byte");
    std::string out;
    for (std::size_t i = 0; i < hex.size(); i += 2)
      out.push_back(static_cast<char>(digit(hex[i]) * 16 + digit(hex[i + 1])));
    return out;
  }

  const Json& Array(const Json& v) {
    if (!v.is_array()) Fail("an array is expected here");
    return v;
  }

  Ref<HostShape> ReadShape(const Json& j, bool root, std::size_t depth);
  void ReadComponent(const Json& j, HostShape& shape, bool root, std::size_t depth);
  void ReadPath(const Json& j, HostPath& path);
  void ReadVariables(const Json& j, VarTable& table, bool declare);
  void ReadVariable(const Json& v, VarTable& table, std::int32_t number, bool declare);
  std::vector<Point2> ReadPoints(const Json& j);
  std::vector<double> ReadNumbers(const Json& j);

  std::string source_;
  std::vector<std::string> path_;
  std::unordered_map<std::int32_t, HostShape*> ids_;
  std::vector<HostShape*> unnumbered_;
  std::int32_t maxId_ = 0;
  struct Pending {
    VarTable* table;
    std::int32_t number;
    HostShape* shape;
    std::string where;
  };
  std::vector<Pending> pending_;  // formulas without a stored value
  HostShape* shapeContext_ = nullptr;
};

Ref<HostApplication> Loader::Load(const Json& doc) {
  CheckKeys(doc, {"format", "version", "activePage", "nextSystemID", "pages"});
  if (const Json* f = Member(doc, "format")) {
    At at(*this, "format");
    if (String(*f) != kFormatName) Fail("the format must be \"" + std::string(kFormatName) + "\"");
  }
  if (const Json* v = Member(doc, "version")) {
    At at(*this, "version");
    if (Integer(*v, 0, 1000000) != kFormatVersion) Fail("this host reads scene files of version 1");
  }
  const Json* pages = Member(doc, "pages");
  if (!pages) Fail("the key \"pages\" is missing");
  auto app = MakeRef<HostApplication>();
  std::vector<std::vector<std::int32_t>> selections;
  {
    At at(*this, "pages");
    Array(*pages);
    for (std::size_t i = 0; i < pages->size(); ++i) {
      At atPage(*this, i);
      const Json& pj = (*pages)[i];
      CheckKeys(pj, {"name", "unitsScale", "selection", "root"});
      const Json* name = Member(pj, "name");
      if (!name) Fail("the key \"name\" is missing");
      std::string pageName;
      {
        At a(*this, "name");
        pageName = String(*name);
      }
      auto page = MakeRef<HostPage>(app.get(), pageName);
      if (const Json* us = Member(pj, "unitsScale")) {
        At a(*this, "unitsScale");
        CheckKeys(*us, {"length", "angle"});
        for (const char* key : {"length", "angle"}) {
          if (const Json* v = Member(*us, key)) {
            At k(*this, key);
            const double s = Number(*v);
            if (!(s > 0.0)) Fail("a units scale must be above 0");
            page->LetUnitsScale(key[0] == 'l' ? 2 : 1, s);
          }
        }
      }
      const Json* root = Member(pj, "root");
      if (!root) Fail("the key \"root\" is missing");
      {
        At a(*this, "root");
        page->SetRoot(ReadShape(*root, true, 0));
      }
      std::vector<std::int32_t> sel;
      if (const Json* s = Member(pj, "selection")) {
        At a(*this, "selection");
        Array(*s);
        for (std::size_t k = 0; k < s->size(); ++k) {
          At e(*this, k);
          sel.push_back(static_cast<std::int32_t>(Integer((*s)[k], 1, 0x7fffffff)));
        }
      }
      selections.push_back(std::move(sel));
      app->PageList().push_back(page);
    }
  }

  // Shapes without an identifier get the next free ones, in file order.
  for (HostShape* s : unnumbered_) {
    if (maxId_ == 0x7fffffff) Fail("no system identifiers are left");
    s->SetSystemID(++maxId_);
    ids_[maxId_] = s;
  }
  std::int64_t next = static_cast<std::int64_t>(maxId_) + 1;
  if (const Json* n = Member(doc, "nextSystemID")) {
    At at(*this, "nextSystemID");
    const std::int64_t given = Integer(*n, 1, 0x7fffffff);
    if (given <= maxId_ && maxId_ < 0x7fffffff)
      Fail("the next system identifier must lie above every shape's (" + std::to_string(maxId_) + ")");
    next = given;
  }
  app->SetNextSystemID(static_cast<std::int32_t>(std::min<std::int64_t>(next, 0x7fffffff)));

  for (std::size_t i = 0; i < selections.size(); ++i) {
    HostPage* page = app->PageList()[i].get();
    for (std::size_t k = 0; k < selections[i].size(); ++k) {
      At a(*this, "pages"), b(*this, i), c(*this, "selection"), d(*this, k);
      auto it = ids_.find(selections[i][k]);
      if (it == ids_.end() || it->second->OwningPage() != page)
        Fail("no shape on this page has system identifier " + std::to_string(selections[i][k]));
      for (const Ref<HostShape>& s : page->Selection())
        if (s.get() == it->second) Fail("the shape is selected twice");
      page->Selection().push_back(Ref<HostShape>(it->second));
    }
  }

  // Formulas given without a value are evaluated once the whole scene stands.
  for (const Pending& p : pending_) {
    try {
      VarSlot& slot = p.table->At(p.number);
      const std::string text = slot.Expression();
      AssignSlotExpression(slot, *p.table, p.shape, text);
    } catch (const AutomationError& e) {
      Raise(kInvalidFileFormat, source_ + ": " + p.where + ": " + e.Description());
    }
  }

  if (!app->PageList().empty()) app->SetActive(app->PageList().front().get());
  if (const Json* a = Member(doc, "activePage")) {
    At at(*this, "activePage");
    if (app->PageList().empty()) Fail("there is no page to make active");
    const std::int64_t i = Integer(*a, 1, static_cast<std::int64_t>(app->PageList().size()));
    app->SetActive(app->PageList()[static_cast<std::size_t>(i - 1)].get());
  }
  return app;
}

Ref<HostShape> Loader::ReadShape(const Json& j, bool root, std::size_t depth) {
  if (depth > kMaxDepth) Fail("shapes are nested deeper than " + std::to_string(kMaxDepth) + " levels");
  CheckKeys(j, {"name", "type", "systemID", "components"});
  const Json* type = Member(j, "type");
  if (!type) Fail("the key \"type\" is missing");
  std::int32_t kind = 0;
  {
    At at(*this, "type");
    kind = static_cast<std::int32_t>(Integer(*type, 1, 0x7fffffff));
    if (ShapeKindName(kind).empty()) Fail("the host has no shape kind " + std::to_string(kind));
    if (root && kind != ShapeType::Assembly) Fail("a page's root shape has type 1");
  }
  std::string name = root ? std::string() : std::string(ShapeKindName(kind));
  if (const Json* n = Member(j, "name")) {
    At at(*this, "name");
    // A root's name may have been set through Name like any other shape's,
    // and what was saved must load back.
    name = String(*n);
  }
  std::int32_t id = 0;
  if (const Json* s = Member(j, "systemID")) {
    At at(*this, "systemID");
    id = static_cast<std::int32_t>(Integer(*s, 1, 0x7fffffff));
    if (ids_.count(id)) Fail("system identifier " + std::to_string(id) + " is used twice");
  }
  auto shape = MakeRef<HostShape>(kind, id, std::move(name));
  if (id) {
    ids_[id] = shape.get();
    maxId_ = std::max(maxId_, id);
  } else {
    unnumbered_.push_back(shape.get());
  }
  HostShape* outer = shapeContext_;
  shapeContext_ = shape.get();
  if (const Json* comps = Member(j, "components")) {
    At at(*this, "components");
    Array(*comps);
    for (std::size_t i = 0; i < comps->size(); ++i) {
      At c(*this, i);
      ReadComponent((*comps)[i], *shape, root, depth);
    }
  }
  shapeContext_ = outer;
  if (root && !shape->First(ComponentType::Studio))
    Fail("a page's root shape carries the studio component (18)");
  return shape;
}

void Loader::ReadComponent(const Json& j, HostShape& shape, bool root, std::size_t depth) {
  if (!j.is_object()) Fail("an object is expected here");
  const Json* type = Member(j, "type");
  if (!type) Fail("the key \"type\" is missing");
  std::int32_t t = 0;
  {
    At at(*this, "type");
    t = static_cast<std::int32_t>(Integer(*type, 1, 0x7fffffff));
    if (ComponentTypeName(t).empty()) Fail("the host has no component type " + std::to_string(t));
    if (t == ComponentType::Studio && !root)
      Fail("only a page's root shape carries the studio component (18)");
  }
  if (t == ComponentType::Path) {
    CheckKeys(j, {"type", "name", "closed", "construction", "start", "curves"});
  } else if (t == ComponentType::Group || t == ComponentType::History) {
    CheckKeys(j, {"type", "name", "variables", "shapes"});
  } else if (t == ComponentType::Profile) {
    CheckKeys(j, {"type", "name", "variables", "paths"});
  } else if (t == ComponentType::Facet) {
    CheckKeys(j, {"type", "name", "variables", "faces"});
  } else {
    CheckKeys(j, {"type", "name", "variables"});
  }
  Ref<HostComponent> c = shape.AddComponent(t);
  if (const Json* n = Member(j, "name")) {
    At at(*this, "name");
    c->LetName(String(*n));
  }
  if (const Json* v = Member(j, "variables")) {
    At at(*this, "variables");
    ReadVariables(*v, c->Vars(), ComponentVarDefs(t).empty());
  }
  if (auto* path = dynamic_cast<HostPath*>(c.get())) ReadPath(j, *path);
  if (const Json* shapes = Member(j, "shapes")) {
    At at(*this, "shapes");
    Array(*shapes);
    auto* container = static_cast<HostContainerComponent*>(c.get());
    for (std::size_t i = 0; i < shapes->size(); ++i) {
      At s(*this, i);
      container->Adopt(ReadShape((*shapes)[i], false, depth + 1));
    }
  }
  if (const Json* paths = Member(j, "paths")) {
    At at(*this, "paths");
    Array(*paths);
    auto& profile = static_cast<HostProfileComponent*>(c.get())->ProfileObject();
    for (std::size_t i = 0; i < paths->size(); ++i) {
      At p(*this, i);
      const Json& pj = (*paths)[i];
      if (!pj.is_object()) Fail("an object is expected here");
      const Json* pt = Member(pj, "type");
      if (pt && !(pt->is_number_integer() && pt->get<std::int64_t>() == ComponentType::Path)) {
        At a(*this, "type");
        Fail("a profile holds paths (component type 3) only");
      }
      Ref<HostComponent> k = profile.AddComponent(ComponentType::Path);
      auto* path = static_cast<HostPath*>(k.get());
      CheckKeys(pj, {"type", "name", "closed", "construction", "start", "curves"});
      if (const Json* n = Member(pj, "name")) {
        At a(*this, "name");
        k->LetName(String(*n));
      }
      ReadPath(pj, *path);
    }
  }
  if (const Json* faces = Member(j, "faces")) {
    At at(*this, "faces");
    const std::int64_t n = Integer(*faces, 0, kMaxFaces);
    auto* facet = static_cast<HostFacetComponent*>(c.get());
    for (std::int64_t i = 0; i < n; ++i) facet->AddFace();
  }
}

void Loader::ReadPath(const Json& j, HostPath& path) {
  if (const Json* v = Member(j, "closed")) {
    At at(*this, "closed");
    path.LetClosed(Boolean(*v));
  }
  if (const Json* v = Member(j, "construction")) {
    At at(*this, "construction");
    path.LetConstruction(static_cast<std::int32_t>(Integer(*v, -0x7fffffffLL - 1, 0x7fffffff)));
  }
  if (const Json* v = Member(j, "start")) {
    At at(*this, "start");
    ReadVariables(*v, path.Start(), false);
  }
  const Json* curves = Member(j, "curves");
  if (!curves) return;
  At at(*this, "curves");
  Array(*curves);
  for (std::size_t i = 0; i < curves->size(); ++i) {
    At c(*this, i);
    const Json& cj = (*curves)[i];
    if (!cj.is_object()) Fail("an object is expected here");
    const Json* type = Member(cj, "type");
    if (!type) Fail("the key \"type\" is missing");
    std::int32_t t = 0;
    {
      At a(*this, "type");
      t = static_cast<std::int32_t>(Integer(*type, 0, CurveType::BSpline));
    }
    if (t == CurveType::BSpline) {
      CheckKeys(cj, {"type", "variables", "degree", "periodic", "closed", "controlPoints", "weights", "knots",
                     "fitPoints"});
    } else {
      CheckKeys(cj, {"type", "variables"});
    }
    Ref<HostCurve> curve = path.AppendCurve(t);
    if (const Json* v = Member(cj, "variables")) {
      At a(*this, "variables");
      ReadVariables(*v, curve->Vars(), false);
    }
    if (t != CurveType::BSpline) continue;
    BSplineData& s = curve->Spline();
    if (const Json* v = Member(cj, "degree")) {
      At a(*this, "degree");
      s.degree = static_cast<std::int32_t>(Integer(*v, 1, 25));
    }
    if (const Json* v = Member(cj, "periodic")) {
      At a(*this, "periodic");
      s.periodic = Boolean(*v);
    }
    if (const Json* v = Member(cj, "closed")) {
      At a(*this, "closed");
      s.closed = Boolean(*v);
    }
    if (const Json* v = Member(cj, "controlPoints")) {
      At a(*this, "controlPoints");
      s.control = ReadPoints(*v);
    }
    if (const Json* v = Member(cj, "fitPoints")) {
      At a(*this, "fitPoints");
      s.fit = ReadPoints(*v);
    }
    if (const Json* v = Member(cj, "weights")) {
      At a(*this, "weights");
      s.weights = ReadNumbers(*v);
    }
    if (const Json* v = Member(cj, "knots")) {
      At a(*this, "knots");
      s.knots = ReadNumbers(*v);
    }
  }
}

std::vector<Point2> Loader::ReadPoints(const Json& j) {
  Array(j);
  std::vector<Point2> out;
  out.reserve(j.size());
  for (std::size_t i = 0; i < j.size(); ++i) {
    At a(*this, i);
    if (!j[i].is_array() || j[i].size() != 2) Fail("a point is an array of two numbers [x, y]");
    const double px = Number(j[i][0]);
    const double py = Number(j[i][1]);
    out.push_back({px, py});
  }
  return out;
}

std::vector<double> Loader::ReadNumbers(const Json& j) {
  Array(j);
  std::vector<double> out;
  out.reserve(j.size());
  for (std::size_t i = 0; i < j.size(); ++i) {
    At a(*this, i);
    out.push_back(Number(j[i]));
  }
  return out;
}

void Loader::ReadVariables(const Json& j, VarTable& table, bool declare) {
  if (!j.is_object()) Fail("an object of variables by number is expected here");
  for (auto it = j.begin(); it != j.end(); ++it) {
    At at(*this, it.key());
    const std::string& key = it.key();
    std::int64_t number = 0;
    bool ok = !key.empty() && key.size() <= 10 && key[0] != '0';
    for (char ch : key) ok = ok && ch >= '0' && ch <= '9';
    if (ok) number = std::stoll(key);
    if (!ok || number < 1 || number > 0x7fffffff) Fail("a variable's key is its number, from 1");
    ReadVariable(it.value(), table, static_cast<std::int32_t>(number), declare);
  }
}

void Loader::ReadVariable(const Json& v, VarTable& table, std::int32_t number, bool declare) {
  const Json* value = &v;
  const Json* expression = nullptr;
  std::string name;
  const Json* vartype = nullptr;
  if (v.is_object()) {
    CheckKeys(v, {"value", "expression", "name", "vartype"});
    value = Member(v, "value");
    expression = Member(v, "expression");
    vartype = Member(v, "vartype");
    // A named variable beyond the host's own is one the host added to the
    // component (the stock forms of a sheet-metal extrude): declared as well.
    const Json* n = Member(v, "name");
    if (n && !table.Find(number)) declare = true;
    if (n) {
      At at(*this, "name");
      if (!declare) Fail("the host names this variable itself");
      name = String(*n);
    }
    if (vartype && !declare) {
      At at(*this, "vartype");
      Fail("the host defines this variable's type itself");
    }
    if (!value && !expression) Fail("a variable needs a \"value\" or an \"expression\"");
  }
  if (declare) {
    VarType type = VarType::Double;
    if (vartype) {
      At at(*this, "vartype");
      const std::string& t = String(*vartype);
      if (!ParseTypeName(t, type) || (type != VarType::Double && type != VarType::Long &&
                                      type != VarType::Boolean && type != VarType::String))
        Fail("a variable's type is Double, Long, Boolean or String");
    } else if (value) {
      if (value->is_boolean()) {
        type = VarType::Boolean;
      } else if (IsText(*value)) {
        type = VarType::String;
      } else if (value->is_number_integer()) {
        type = VarType::Long;
      }
    }
    table.Declare(number, type, std::move(name));
  }
  VarSlot* slot = table.Find(number);
  if (!slot) Fail("the host has no variable " + std::to_string(number) + " here");
  if (value) {
    std::unique_ptr<At> at;
    if (value != &v) at = std::make_unique<At>(*this, "value");
    switch (slot->type) {
      case VarType::Long:
        slot->num = static_cast<double>(Integer(*value, -0x7fffffffLL - 1, 0x7fffffff));
        break;
      case VarType::Boolean: slot->num = Boolean(*value) ? 1.0 : 0.0; break;
      case VarType::String: slot->Ext().text = String(*value); break;
      default: slot->num = Number(*value); break;
    }
  }
  if (expression) {
    At at(*this, "expression");
    const std::string& text = String(*expression);
    try {
      CheckExpressionSyntax(text);
    } catch (const AutomationError& e) {
      Fail(e.Description());
    }
    if (!TrimBlanks(text).empty()) {
      slot->Ext().expression = text;
      if (!value) pending_.push_back({&table, number, shapeContext_, Pointer()});
    }
  }
}

std::pair<std::size_t, std::size_t> LineAndColumn(const std::string& text, std::size_t byte) {
  const std::size_t pos = std::min(byte == 0 ? 0 : byte - 1, text.size());
  std::size_t line = 1, lineStart = 0;
  for (std::size_t i = 0; i < pos; ++i) {
    if (text[i] == '\n') {
      ++line;
      lineStart = i + 1;
    }
  }
  return {line, pos - lineStart + 1};
}

Ref<Object> LoadText(const std::string& text, const std::string& source) {
  Json doc;
  try {
    doc = Json::parse(text);
  } catch (const Json::parse_error& e) {
    std::string what = e.what();
    const std::size_t col = what.find("column ");
    if (col != std::string::npos) {
      const std::size_t colon = what.find(": ", col);
      if (colon != std::string::npos) what = what.substr(colon + 2);
    } else if (const std::size_t bracket = what.find("] "); bracket != std::string::npos) {
      what = what.substr(bracket + 2);
    }
    const auto [line, column] = LineAndColumn(text, e.byte);
    Raise(kInvalidFileFormat,
          source + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + what);
  } catch (const Json::exception& e) {
    // A number too large for a double: the message quotes it, which places it.
    std::string what = e.what();
    if (const std::size_t bracket = what.find("] "); bracket != std::string::npos)
      what = what.substr(bracket + 2);
    std::string place = source;
    const std::size_t q1 = what.find('\'');
    const std::size_t q2 = q1 == std::string::npos ? q1 : what.find('\'', q1 + 1);
    if (q2 != std::string::npos) {
      const std::size_t at = text.find(what.substr(q1 + 1, q2 - q1 - 1));
      if (at != std::string::npos) {
        const auto [line, column] = LineAndColumn(text, at + 1);
        place += ":" + std::to_string(line) + ":" + std::to_string(column);
      }
    }
    Raise(kInvalidFileFormat, place + ": " + what);
  }
  Loader loader(source);
  return loader.Load(doc);
}

// ---------------------------------------------------------------------------
// Saving

Json VariableJson(const VarSlot& s, bool declared) {
  Json value;
  switch (s.type) {
    case VarType::Long: value = static_cast<std::int64_t>(s.num); break;
    case VarType::Boolean: value = s.num != 0.0; break;
    case VarType::String: value = s.extra ? s.extra->text : std::string(); break;
    default: value = s.num; break;
  }
  const bool named = declared && !s.Name().empty();
  // A declared Double holding a whole number would read back as a Long.
  const bool typed = declared && s.type == VarType::Double;
  if (s.Expression().empty() && !named && !typed) return value;
  Json o = Json::object();
  o["value"] = std::move(value);
  if (!s.Expression().empty()) o["expression"] = s.Expression();
  if (named) o["name"] = std::string(s.Name());
  if (typed) o["vartype"] = "Double";
  return o;
}

Json VariablesJson(const VarTable& t, bool all) {
  Json o = Json::object();
  for (const VarSlot& s : t.Slots()) {
    if (!all && s.def && s.IsInitial()) continue;
    o[std::to_string(s.number)] = VariableJson(s, s.def == nullptr);
  }
  return o;
}

Json PointsJson(const std::vector<Point2>& pts) {
  Json a = Json::array();
  for (const Point2& p : pts) a.push_back(Json::array({p.x, p.y}));
  return a;
}

void PathJson(Json& o, HostPath& path) {
  if (path.Closed()) o["closed"] = true;
  if (path.Construction() != 0) o["construction"] = path.Construction();
  Json start = VariablesJson(path.Start(), false);
  if (!start.empty()) o["start"] = std::move(start);
  Json curves = Json::array();
  for (const Ref<HostCurve>& c : path.CurveList()) {
    Json cj = Json::object();
    cj["type"] = c->Type();
    Json vars = VariablesJson(c->Vars(), false);
    if (!vars.empty()) cj["variables"] = std::move(vars);
    if (c->Type() == CurveType::BSpline) {
      const BSplineData& s = c->Spline();
      cj["degree"] = s.degree;
      if (s.periodic) cj["periodic"] = true;
      if (s.closed) cj["closed"] = true;
      if (!s.control.empty()) cj["controlPoints"] = PointsJson(s.control);
      if (!s.weights.empty()) cj["weights"] = s.weights;
      if (!s.knots.empty()) cj["knots"] = s.knots;
      if (!s.fit.empty()) cj["fitPoints"] = PointsJson(s.fit);
    }
    curves.push_back(std::move(cj));
  }
  if (!curves.empty()) o["curves"] = std::move(curves);
}

Json ShapeJson(HostShape& shape);

Json ComponentJson(HostComponent& c) {
  Json o = Json::object();
  o["type"] = c.Type();
  if (!c.CustomName().empty()) o["name"] = c.CustomName();
  if (auto* path = dynamic_cast<HostPath*>(&c)) {
    PathJson(o, *path);
    return o;
  }
  Json vars = VariablesJson(c.Vars(), false);
  if (!vars.empty()) o["variables"] = std::move(vars);
  if (auto* k = dynamic_cast<HostContainerComponent*>(&c)) {
    Json shapes = Json::array();
    for (const Ref<HostShape>& s : k->Children()) shapes.push_back(ShapeJson(*s));
    o["shapes"] = std::move(shapes);
  } else if (auto* p = dynamic_cast<HostProfileComponent*>(&c)) {
    Json paths = Json::array();
    for (const Ref<HostComponent>& k : p->ProfileObject().ComponentList()) {
      Json pj = Json::object();
      if (!k->CustomName().empty()) pj["name"] = k->CustomName();
      PathJson(pj, static_cast<HostPath&>(*k));
      paths.push_back(std::move(pj));
    }
    o["paths"] = std::move(paths);
  } else if (auto* f = dynamic_cast<HostFacetComponent*>(&c)) {
    o["faces"] = f->FaceList().size();
  }
  return o;
}

Json ShapeJson(HostShape& shape) {
  Json o = Json::object();
  o["name"] = shape.Name();
  o["type"] = shape.Type();
  o["systemID"] = shape.SystemID();
  if (!shape.ComponentList().empty()) {
    Json comps = Json::array();
    for (const Ref<HostComponent>& c : shape.ComponentList()) comps.push_back(ComponentJson(*c));
    o["components"] = std::move(comps);
  }
  return o;
}

HostApplication& RequireApplication(const Ref<Object>& application) {
  HostApplication* app = AsApplication(application.get());
  if (!app) Raise(application ? Err::TypeMismatch : Err::ObjectNotSet);
  return *app;
}

// Writes every string of `j` that is not valid UTF-8 as {"bytes": "<hex>"},
// which the loader reads back to the same bytes: JSON text cannot carry
// them, and a saved scene must load back equal.
void EncodeNonUtf8(Json& j) {
  if (j.is_string()) {
    const std::string& text = j.get_ref<const std::string&>();
    if (ValidUtf8(text) == text) return;
    static constexpr char kHex[] = "0123456789abcdef";
    std::string hex;
    for (const char c : text) {
      hex.push_back(kHex[static_cast<unsigned char>(c) >> 4]);
      hex.push_back(kHex[static_cast<unsigned char>(c) & 15]);
    }
    j = Json::object({{"bytes", std::move(hex)}});
  } else if (j.is_structured()) {
    for (Json& item : j) EncodeNonUtf8(item);
  }
}

}  // namespace

Ref<Object> LoadSceneFromString(const std::string& json) { return LoadText(json, "scene"); }

Ref<Object> LoadScene(const std::string& path) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) Raise(Err::FileNotFound, "File not found: " + path);
    Raise(Err::PathFileAccess, "Path/File access error: " + path);
  }
  if (S_ISDIR(st.st_mode)) Raise(Err::PathFileAccess, "Path/File access error: " + path + " is a folder");
  std::ifstream in(path, std::ios::binary);
  if (!in) Raise(Err::PathFileAccess, "Path/File access error: " + path);
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) Raise(Err::PathFileAccess, "Path/File access error: " + path);
  return LoadText(text.str(), path);
}

std::string SaveSceneToString(const Ref<Object>& application) {
  HostApplication& app = RequireApplication(application);
  Json doc = Json::object();
  doc["format"] = kFormatName;
  doc["version"] = kFormatVersion;
  std::size_t active = 0;
  for (std::size_t i = 0; i < app.PageList().size(); ++i)
    if (app.PageList()[i].get() == app.Active()) active = i + 1;
  if (active) doc["activePage"] = active;
  doc["nextSystemID"] = app.PeekSystemID();
  Json pages = Json::array();
  for (const Ref<HostPage>& page : app.PageList()) {
    Json pj = Json::object();
    pj["name"] = page->Name();
    pj["unitsScale"] = Json::object({{"length", page->LengthScale()}, {"angle", page->AngleScale()}});
    if (!page->Selection().empty()) {
      Json sel = Json::array();
      for (const Ref<HostShape>& s : page->Selection()) sel.push_back(s->SystemID());
      pj["selection"] = std::move(sel);
    }
    pj["root"] = ShapeJson(*page->Root());
    pages.push_back(std::move(pj));
  }
  doc["pages"] = std::move(pages);
  EncodeNonUtf8(doc);
  return doc.dump(1, ' ', false, Json::error_handler_t::strict) + "\n";
}

void SaveScene(const Ref<Object>& application, const std::string& path) {
  const std::string text = SaveSceneToString(application);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  if (!out) Raise(Err::PathFileAccess, "Path/File access error: " + path);
  out << text;
  out.close();
  if (!out) Raise(Err::PathFileAccess, "Path/File access error: " + path);
}

}  // namespace TessarkAO::RefHost

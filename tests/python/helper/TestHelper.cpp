// tk_testhelper: a test-only class, "TkTest.Sample", declared with a member
// table the way every library class is, so the module's tests can reach each
// kind of member and each parameter type, and call host objects from the
// library's side.
#include <pybind11/pybind11.h>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"
#include "platform/UserInterface.hpp"
#include "../../calls/CallProbe.hpp"

namespace TessarkAO {

int g_liveSamples = 0;

class Sample final : public Dispatch<Sample> {
 public:
  static constexpr std::string_view kClassName = "Sample";
  static void Describe(ClassBuilder<Sample>& b) {
    b.Property<&Sample::GetX, &Sample::LetX>("X")
        .Method<&Sample::SetPosition>("SetPosition", Names{"dblX", "dblY", "dblZ"}, Opt{0.0, 0.0})
        .Method<&Sample::GetPosition>("GetPosition", Names{"X", "Y", "Z"}, Out<1, 2, 3>{})
        .Get<&Sample::Value>("Value", Names{"lngIndex"})
        .Let<&Sample::LetValue>("Value", Names{"lngIndex", "dblValue"})
        .Get<&Sample::Cell>("Cell", Names{"lngRow", "lngCol"})
        .PropertyRef<&Sample::GetChild, &Sample::SetChild>("Child")
        .Method<&Sample::Echo>("Echo", Names{"varValue"})
        .Method<&Sample::TypeOf>("TypeOf", Names{"varValue"})
        .Method<&Sample::Omitted>("Omitted", Names{"varValue"}, Opt{Variant::Missing()})
        .Method<&Sample::Fill>("Fill", Names{"varArray", "lngLower"}, Out<1>{})
        .Method<&Sample::Fail>("Fail", Names{"lngNumber"})
        .Method<&Sample::HostGet>("HostGet", Names{"objHost", "strName"})
        .Method<&Sample::HostLet>("HostLet", Names{"objHost", "strName", "varValue"})
        .Method<&Sample::HostCall>("HostCall", Names{"objHost", "strName", "varArg"}, Opt{Variant::Missing()})
        .Method<&Sample::HostPosition>("HostPosition", Names{"objHost"})
        .Method<&Sample::SameObject>("SameObject", Names{"objA", "objB"})
        .Method<&Sample::Integer>("Integer", Names{"intValue"})
        .Method<&Sample::Join>("Join", Names{"strSeparator", "varItems"})
        .Method<&Sample::ShowMessage>("ShowMessage", Names{"strText", "strTitle", "lngStyle"})
        .Method<&Sample::AskFile>("AskFile", Names{"strTitle"})
        .Get<&Sample::Name>("Name")
        .Default();
  }

  Sample() { ++g_liveSamples; }
  ~Sample() override { --g_liveSamples; }

  double GetX() const { return x_; }
  void LetX(double v) { x_ = v; }
  void SetPosition(double x, double y, double z) {
    x_ = x;
    y_ = y;
    z_ = z;
  }
  void GetPosition(double& x, double& y, double& z) const {
    x = x_;
    y = y_;
    z = z_;
  }
  double Value(std::int32_t i) const {
    if (i < 0 || i > 3) Raise(Err::SubscriptOutOfRange);
    return v_[static_cast<std::size_t>(i)];
  }
  void LetValue(std::int32_t i, double v) {
    if (i < 0 || i > 3) Raise(Err::SubscriptOutOfRange);
    v_[static_cast<std::size_t>(i)] = v;
  }
  double Cell(std::int32_t r, std::int32_t c) const { return r * 10.0 + c; }
  Ref<Object> GetChild() const { return child_; }
  void SetChild(Ref<Object> c) { child_ = std::move(c); }
  Variant Echo(const Variant& v) const { return v; }
  std::string TypeOf(const Variant& v) const { return v.TypeName(); }
  bool Omitted(const Variant& v) const { return v.IsMissing(); }
  // Fills the caller's variable with a 1-dimensional array of three Longs.
  void Fill(Variant& a, std::int32_t lower) {
    SafeArray arr = SafeArray::Vector(VarType::Long, lower, lower + 2);
    for (std::int32_t i = 0; i < 3; ++i) arr.Put(lower + i, Variant(std::int32_t{(i + 1) * 10}));
    a = Variant(std::move(arr));
  }
  void Fail(std::int32_t n) { Raise(n); }
  // Late-bound calls into an object, as the library's host-facing classes make them.
  Variant HostGet(Ref<Object> host, std::string name) { return Variant(host).Get(name); }
  void HostLet(Ref<Object> host, std::string name, const Variant& v) { Variant(host).Let(name, v); }
  Variant HostCall(Ref<Object> host, std::string name, const Variant& arg) {
    if (arg.IsMissing()) return Variant(host).Call(name);
    return Variant(host).Call(name, arg);
  }
  // Calls host.GetPosition(x, y, z) with by-reference outputs and sums them.
  double HostPosition(Ref<Object> host) {
    Variant x(0.0), y(0.0), z(0.0);
    Variant args[] = {Variant::ByRef(x), Variant::ByRef(y), Variant::ByRef(z)};
    Variant(host).Invoke("GetPosition", CallKind::Method, args);
    return ToDouble(x) * 100 + ToDouble(y) * 10 + ToDouble(z);
  }
  bool SameObject(Ref<Object> a, Ref<Object> b) { return a == b; }
  std::int16_t Integer(std::int16_t v) { return v; }
  std::string Join(std::string separator, const ParamArray& items) {
    std::string out;
    for (const Variant& v : items.items.Data()) out += (out.empty() ? "" : separator) + ToString(v);
    return out;
  }
  std::int32_t ShowMessage(std::string text, std::string title, std::int32_t style) {
    return GetUserInterface().MessageBox(text, title, style);
  }
  std::string AskFile(std::string title) {
    return GetUserInterface().OpenFile(title, "Text files (*.txt)|*.txt", "txt");
  }
  std::string Name() const { return "sample"; }

 private:
  double x_ = 1.5, y_ = 0.0, z_ = 0.0;
  double v_[4] = {};
  Ref<Object> child_;
};

}  // namespace TessarkAO

PYBIND11_MODULE(tk_testhelper, m) {
  using namespace TessarkAO;
  RegisterForeignProgId("TkTest.Sample", [] { return Ref<Object>(new Sample()); });
  Testing::CallProbe::Register();
  m.def("live_samples", [] { return g_liveSamples; }, "How many Sample objects exist.");
}

// CallProbe: the test class behind the call-behaviour rows (rows.inc).  It
// has one member of each shape a member table can declare (properties with
// and without arguments, a read-only one, optional and omitted arguments, a
// ParamArray, by-reference outputs, a default member) and members that fail
// the ways a call can fail: an automation error, a standard exception from
// the fast path of a plain get and from the checked path, and std::bad_alloc;
// members that call an object of the caller's late-bound; and defaults the
// type library must state or leave out.  Every front end's test creates it as
// "TkTest.CallProbe".
#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include "automation/Catalogue.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"

namespace TessarkAO::Testing {

class CallProbe final : public Dispatch<CallProbe> {
 public:
  static constexpr std::string_view kClassName = "CallProbe";
  static constexpr std::string_view kProgId = "TkTest.CallProbe";
  static void Describe(ClassBuilder<CallProbe>& b) {
    b.Property<&CallProbe::GetX, &CallProbe::LetX>("X")
        .Get<&CallProbe::Count>("Count")
        .Method<&CallProbe::Sum>("Sum", Names{"a", "b"}, Opt{Variant(std::int32_t{10})})
        .Method<&CallProbe::Seen>("Seen", Names{"v"}, Opt{Variant::Missing()})
        .Method<&CallProbe::List>("List", Names{"prefix", "items"})
        .Method<&CallProbe::GetPair>("GetPair", Names{"a", "b"}, Out<1, 2>{})
        .Get<&CallProbe::Item>("Item", Names{"index"})
        .Let<&CallProbe::LetItem>("Item", Names{"index", "value"})
        .Default()
        .Get<&CallProbe::Fails>("Fails")
        .Get<&CallProbe::Exhausted>("Exhausted")
        .Method<&CallProbe::Raises>("Raises")
        .PropertyRef<&CallProbe::GetChild, &CallProbe::SetChild>("Child")
        .Method<&CallProbe::Fill>("Fill", Names{"array"}, Out<1>{})
        .Method<&CallProbe::Echo>("Echo", Names{"v"})
        .Method<&CallProbe::CallByName>("CallByName", Names{"obj", "name"})
        .Method<&CallProbe::CallTwice>("CallTwice", Names{"obj", "x"}, Out<2>{})
        .Method<&CallProbe::Scale>("Scale", Names{"double"}, Opt{Variant(0.5)})
        .Method<&CallProbe::Label>("Label", Names{"text", "upper"}, Opt{Variant("a\"b"), Variant(true)});
  }

  double GetX() const { return x_; }
  void LetX(double x) { x_ = x; }
  std::int32_t Count() const { return 4; }
  std::int32_t Sum(std::int32_t a, std::int32_t b) const { return a + b; }
  bool Seen(const Variant& v) const { return v.IsMissing(); }
  // "<prefix>:<lower>..<upper>:<type name>,...": what the ParamArray received.
  std::string List(std::string prefix, const ParamArray& items) const {
    std::string s = prefix + ":" + std::to_string(items.items.LBound()) + ".." +
                    std::to_string(items.items.UBound()) + ":";
    for (const Variant& v : items.items.Data()) s += v.TypeName() + ",";
    return s;
  }
  void GetPair(std::int32_t& a, double& b) const { a = 7, b = 2.5; }
  std::int32_t Item(std::int32_t index) const {
    if (index < 1 || index > 9) throw std::out_of_range("no item " + std::to_string(index));
    return index * 2;
  }
  void LetItem(std::int32_t index, std::int32_t) { Item(index); }
  double Fails() const { throw std::runtime_error("probe failure"); }
  double Exhausted() const { throw std::bad_alloc(); }
  void Raises() const { Raise(Err::InvalidCall); }
  Ref<Object> GetChild() const { return child_; }
  void SetChild(Ref<Object> c) { child_ = std::move(c); }
  // Fills the caller's variable with the Doubles 0.5, 1, 1.5 at indices 1 to 3.
  void Fill(Variant& a) {
    SafeArray arr = SafeArray::Vector(VarType::Double, 1, 3);
    for (std::int32_t i = 1; i <= 3; ++i) arr.Put(i, Variant(i * 0.5));
    a = Variant(std::move(arr));
  }
  Variant Echo(const Variant& v) const { return v; }
  Variant CallByName(Ref<Object> obj, std::string name) const { return Variant(obj).Get(name); }
  // obj.Twice(x) with x by reference, and what it left there back to the caller.
  void CallTwice(Ref<Object> obj, double& x) const {
    Variant args[] = {Variant(x)};
    obj->Invoke("Twice", CallKind::Method, args);
    x = ToDouble(args[0]);
  }
  double Scale(double f) const { return f; }
  std::string Label(std::string text, bool) const { return text; }

  static void Register() {
    RegisterForeignProgId(kProgId, [] { return Ref<Object>(new CallProbe()); });
  }

 private:
  double x_ = 1.5;
  Ref<Object> child_;
};

}  // namespace TessarkAO::Testing

#include "system/FormFont.hpp"

#include "automation/Convert.hpp"
#include "automation/Members.hpp"
#include "system/SystemFont.hpp"
#include "system/TKSystemUtils.hpp"

namespace TessarkAO {

namespace {

class FormControl final : public Dispatch<FormControl> {
 public:
  static constexpr std::string_view kClassName = "Control";
  static void Describe(ClassBuilder<FormControl>& b) {
    b.Get<&FormControl::Name>("Name").Get<&FormControl::Font>("Font");
  }
  explicit FormControl(std::string name) : name_(std::move(name)), font_(MakeRef<SystemFont>()) {}
  std::string Name() const { return name_; }
  Ref<Object> Font() const { return font_; }
  const SystemFont& FontOf() const { return *font_; }

 private:
  std::string name_;
  Ref<SystemFont> font_;
};

// The form and its Controls collection in one object (Controls returns it).
class Form final : public Dispatch<Form> {
 public:
  static constexpr std::string_view kClassName = "Form";
  static void Describe(ClassBuilder<Form>& b) {
    b.Get<&Form::Controls>("Controls").Get<&Form::Count>("Count").Method<&Form::Item>("Item", Names{"Index"});
  }
  Ref<Object> Controls() { return Ref<Object>(this); }
  std::int32_t Count() const { return static_cast<std::int32_t>(controls_.size()); }
  // A form's Controls collection counts from 0.
  Ref<Object> Item(std::int32_t index) const {
    if (index < 0 || index >= Count()) Raise(9, "Subscript out of range");
    return controls_[static_cast<std::size_t>(index)];
  }
  void Add(std::string name) { controls_.push_back(MakeRef<FormControl>(std::move(name))); }
  const FormControl& First() const { return *controls_.front(); }

 private:
  std::vector<Ref<FormControl>> controls_;
};

}  // namespace

FormFont ApplyDefaultSystemFont(const std::vector<std::string>& controls) {
  Ref<Form> form = MakeRef<Form>();
  for (const std::string& name : controls) form->Add(name);
  if (controls.empty()) form->Add("Form");
  MakeRef<TKSystemUtils>()->SetDefaultSystemFont(Ref<Object>(form), true);
  const SystemFont& font = form->First().FontOf();
  FormFont result;
  result.name = font.GetName();
  result.points = static_cast<double>(font.GetSize().scaled) / 10000.0;
  result.charset = font.GetCharset();
  result.weight = font.GetWeight();
  result.italic = font.GetItalic();
  result.underline = font.GetUnderline();
  result.strikethrough = font.GetStrikethrough();
  return result;
}

}  // namespace TessarkAO

// The font object that TKSystemUtils.DefaultSystemFont hands out: the
// properties a form's font has, so that callers can copy it onto their
// controls' fonts member by member.
#pragma once

#include <cstdint>
#include <string>

#include "automation/Members.hpp"

namespace TessarkAO {

class SystemFont final : public Dispatch<SystemFont> {
 public:
  static constexpr std::string_view kClassName = "StdFont";
  static void Describe(ClassBuilder<SystemFont>& b);

  std::string GetName() const { return name_; }
  void LetName(std::string name) { name_ = std::move(name); }
  // Points, kept to four decimals as a font size is.
  Currency GetSize() const { return size_; }
  // 380 (invalid property value) for a size that is not above 0.
  void LetSize(Currency size);
  std::int16_t GetCharset() const { return charset_; }
  void LetCharset(std::int16_t charset) { charset_ = charset; }
  // 0 to 1000; 400 regular, 700 bold.  Bold follows the weight.
  std::int16_t GetWeight() const { return weight_; }
  void LetWeight(std::int16_t weight);
  bool GetBold() const { return weight_ > 550; }
  void LetBold(bool bold) { weight_ = bold ? 700 : 400; }
  bool GetItalic() const { return italic_; }
  void LetItalic(bool v) { italic_ = v; }
  bool GetUnderline() const { return underline_; }
  void LetUnderline(bool v) { underline_ = v; }
  bool GetStrikethrough() const { return strikethrough_; }
  void LetStrikethrough(bool v) { strikethrough_ = v; }

 private:
  std::string name_;
  Currency size_{80000};  // 8 points until told otherwise
  std::int16_t charset_ = 0;
  std::int16_t weight_ = 400;
  bool italic_ = false;
  bool underline_ = false;
  bool strikethrough_ = false;
};

}  // namespace TessarkAO

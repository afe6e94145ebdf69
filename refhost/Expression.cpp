#include "refhost/Expression.hpp"

#include <string>

#include "automation/AutomationError.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::RefHost {

namespace {

constexpr int kMaxDepth = 100;
constexpr std::int32_t kExpressionTooComplex = 16;

bool IsNameStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool IsNameChar(char c) { return IsNameStart(c) || (c >= '0' && c <= '9') || c == '.'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Recursive-descent parser; with a null resolver it only checks the syntax.
class Parser {
 public:
  Parser(std::string_view text, const ReferenceResolver* resolve)
      : text_(text), resolve_(resolve), decimal_(GetNumberLocale().decimal) {}

  double Run() {
    const double v = Expression();
    SkipBlanks();
    if (pos_ < text_.size()) Fail("unexpected '" + std::string(1, text_[pos_]) + "'");
    return v;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    Raise(Err::InvalidCall, "Invalid expression \"" + std::string(text_) + "\" at character " +
                                std::to_string(pos_ + 1) + ": " + what);
  }

  void SkipBlanks() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t')) ++pos_;
  }

  bool Accept(char c) {
    SkipBlanks();
    if (pos_ < text_.size() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }

  struct Depth {
    explicit Depth(int& d) : d_(d) {
      if (++d_ > kMaxDepth) Raise(kExpressionTooComplex);
    }
    ~Depth() { --d_; }
    int& d_;
  };

  double Expression() {
    Depth guard(depth_);
    double v = Term();
    for (;;) {
      if (Accept('+')) {
        v = Checked::Add(v, Term());
      } else if (Accept('-')) {
        v = Checked::Sub(v, Term());
      } else {
        return v;
      }
    }
  }

  double Term() {
    double v = Unary();
    for (;;) {
      if (Accept('*')) {
        v = Checked::Mul(v, Unary());
      } else if (Accept('/')) {
        const double d = Unary();
        v = resolve_ ? Checked::Div(v, d) : v;
      } else {
        return v;
      }
    }
  }

  double Unary() {
    Depth guard(depth_);
    if (Accept('-')) return -Unary();
    if (Accept('+')) return Unary();
    return Power();
  }

  // Left-associative, and binding tighter than a sign in front: -2^2 is -4
  // and 2^3^2 is 64, as in the host's scripting language.  The exponent may
  // carry its own sign (2^-1).
  double Power() {
    double v = Primary();
    while (Accept('^')) {
      Depth guard(depth_);
      double sign = 1.0;
      for (;;) {
        if (Accept('-')) {
          sign = -sign;
        } else if (!Accept('+')) {
          break;
        }
      }
      const double exponent = sign * Primary();
      v = resolve_ ? Checked::Pow(v, exponent) : v;
    }
    return v;
  }

  double Primary() {
    SkipBlanks();
    if (pos_ >= text_.size()) Fail("a value is missing");
    const char c = text_[pos_];
    if (c == '(') {
      ++pos_;
      const double v = Expression();
      if (!Accept(')')) Fail("')' expected");
      return v;
    }
    if (IsDigit(c) || c == '.' || c == decimal_) return Number();
    if (IsNameStart(c)) return Reference();
    Fail("unexpected '" + std::string(1, c) + "'");
  }

  double Number() {
    std::string digits;
    bool point = false;
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (IsDigit(c)) {
        digits += c;
      } else if ((c == '.' || c == decimal_) && !point) {
        digits += '.';
        point = true;
      } else {
        break;
      }
      ++pos_;
    }
    if (digits == ".") Fail("a digit is missing");
    if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
      std::size_t p = pos_ + 1;
      std::string exponent = "e";
      if (p < text_.size() && (text_[p] == '+' || text_[p] == '-')) exponent += text_[p++];
      if (p < text_.size() && IsDigit(text_[p])) {
        while (p < text_.size() && IsDigit(text_[p])) exponent += text_[p++];
        digits += exponent;
        pos_ = p;
      } else {
        Fail("the exponent has no digits");
      }
    }
    double v = 0.0;
    const int rc = ParseNumber(digits, NumberLocale{'.', '\0'}, v);
    if (rc == Err::Overflow) Raise(Err::Overflow);
    if (rc != 0) Fail("not a number");
    return v;
  }

  std::string Name() {
    const std::size_t start = pos_;
    while (pos_ < text_.size() && (IsNameChar(text_[pos_]) || text_[pos_] == ' ')) ++pos_;
    std::size_t end = pos_;
    while (end > start && text_[end - 1] == ' ') --end;
    return std::string(text_.substr(start, end - start));
  }

  double Reference() {
    const std::size_t at = pos_;
    std::string first = Name();
    std::string component;
    std::string variable = first;
    SkipBlanks();
    if (pos_ < text_.size() && text_[pos_] == '\\') {
      ++pos_;
      SkipBlanks();
      if (pos_ >= text_.size() || !(IsNameChar(text_[pos_]))) Fail("a variable name is missing after '\\'");
      component = std::move(first);
      variable = Name();
    }
    if (!resolve_) return 0.0;
    try {
      return (*resolve_)(component, variable);
    } catch (const AutomationError& e) {
      pos_ = at;
      Fail(e.Description());
    }
  }

  std::string_view text_;
  const ReferenceResolver* resolve_;
  char decimal_;
  std::size_t pos_ = 0;
  int depth_ = 0;
};

}  // namespace

double EvaluateExpression(std::string_view text, const ReferenceResolver& resolve) {
  return Parser(text, &resolve).Run();
}

void CheckExpressionSyntax(std::string_view text) { Parser(text, nullptr).Run(); }

}  // namespace TessarkAO::RefHost

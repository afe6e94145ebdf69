#include "automation/Checked.hpp"

#include <cmath>

#include "automation/AutomationError.hpp"

namespace TessarkAO::Checked {

double Finite(double x) {
  if (!std::isfinite(x)) Raise(Err::Overflow);
  return x;
}

double Add(double a, double b) { return Finite(a + b); }
double Sub(double a, double b) { return Finite(a - b); }
double Mul(double a, double b) { return Finite(a * b); }

double Div(double a, double b) {
  if (b == 0.0) Raise(a == 0.0 || std::isnan(a) ? Err::Overflow : Err::DivisionByZero);
  return Finite(a / b);
}

double Pow(double base, double exponent) {
  if (base < 0.0 && exponent != std::floor(exponent)) Raise(Err::InvalidCall);
  if (base == 0.0 && exponent < 0.0) Raise(Err::InvalidCall);
  return Finite(std::pow(base, exponent));
}

double Sqrt(double x) {
  if (x < 0.0) Raise(Err::InvalidCall);
  return std::sqrt(x);
}

double Log(double x) {
  if (!(x > 0.0)) Raise(Err::InvalidCall);
  return std::log(x);
}

double Exp(double x) { return Finite(std::exp(x)); }

}  // namespace TessarkAO::Checked

// Checked floating arithmetic with the classic runtime's errors.
//
// The classic runtime never produces an infinity or a NaN: it raises.
//  - x / 0 raises 11 (Division by zero), but 0 / 0 raises 6 (Overflow);
//  - a result too large for a Double raises 6;
//  - a fractional power or a square root of a negative number, and the
//    logarithm of a number not above 0, raise 5 (Invalid procedure call).
// Every class uses these where the documented algorithm divides, multiplies
// or takes roots of values a caller controls.
#pragma once

namespace TessarkAO::Checked {

double Add(double a, double b);
double Sub(double a, double b);
double Mul(double a, double b);
double Div(double a, double b);
double Pow(double base, double exponent);
double Sqrt(double x);
double Log(double x);
double Exp(double x);
// Raises 6 when x is not finite; returns x otherwise.
double Finite(double x);

}  // namespace TessarkAO::Checked

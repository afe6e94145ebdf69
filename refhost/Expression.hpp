// The host's formula language for variable expressions.
//
//     expression := term { ("+" | "-") term }
//     term       := unary { ("*" | "/") unary }
//     unary      := ("+" | "-") unary | power
//     power      := primary { "^" [sign] primary } (left-associative)
//     primary    := number | reference | "(" expression ")"
//     reference  := name [ "\" name ]             (Sizebox\Length, Anchor\3, Height)
//
// Numbers take "." or the locale's decimal separator and an exponent.  A
// reference names a component of the same shape by its display name and one
// of its variables by name or number; a bare name is a variable of the
// variable's own component.  Names are case-insensitive and may hold inner
// blanks ("SM Part\Thickness").  Arithmetic raises as the classic runtime
// does (11 division by zero, 6 overflow, 5 a fractional power of a negative
// number); a malformed formula raises 5 with the position, nesting deeper
// than 100 levels raises 16.
#pragma once

#include <functional>
#include <string_view>

namespace TessarkAO::RefHost {

// Answers a reference: the component's name ("" for a bare name) and the
// variable's name or number.  Raises when there is no such variable.
using ReferenceResolver = std::function<double(std::string_view component, std::string_view variable)>;

double EvaluateExpression(std::string_view text, const ReferenceResolver& resolve);

// Parses without evaluating; raises as EvaluateExpression does for syntax.
void CheckExpressionSyntax(std::string_view text);

}  // namespace TessarkAO::RefHost

// Value mapping between Python and variants: conversions both ways, the
// typed wrappers, tk.Array, tk.Variant, tk.Ref and the Empty / Null / Missing
// singletons.
//
// Division map:
//   1. module state (the Python types the conversions test against)
//   2. Date, Currency and Decimal to and from their Python counterparts
//   3. ToVariant / FromVariant
//   4. tk.Array from nested lists and back
//   5. registration of the Python classes
#include "Values.hpp"

#include <datetime.h>
#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "HostObject.hpp"
#include "Proxy.hpp"
#include "automation/Convert.hpp"

namespace TessarkAO::Python {

namespace {

// ----- 1. Module state ----------------------------------------------------------

// Borrowed for the life of the process: the module is never unloaded, and
// keeping them avoids destruction at interpreter shutdown.
struct EmptyType {};
struct NullType {};
struct MissingType {};

template <VarType T>
struct Typed : TypedValue {};

struct State {
  PyObject* empty = nullptr;
  PyObject* null = nullptr;
  PyObject* missing = nullptr;
  PyTypeObject* typedBase = nullptr;
  PyTypeObject* arrayType = nullptr;
  PyTypeObject* rawType = nullptr;
  PyTypeObject* refType = nullptr;
  PyObject* decimalType = nullptr;      // decimal.Decimal
  PyObject* typedClasses = nullptr;     // dict: wrapper class -> VarType code
  // The numeric typed values, int and float subclasses, by their variant
  // type (filled by RegisterNumber).
  std::vector<std::pair<VarType, PyTypeObject*>> numbers;
};
State g;

PyTypeObject* NumberClass(VarType type) {
  for (const auto& [t, cls] : g.numbers)
    if (t == type) return cls;
  return nullptr;
}

// ----- 2. Date, Currency, Decimal -------------------------------------------------

using u128 = unsigned __int128;
constexpr u128 kDecimalMax = (static_cast<u128>(0xFFFFFFFFu) << 64) | 0xFFFFFFFFFFFFFFFFull;

// A date serial counts whole days from 1899-12-30; its fraction is the time
// of day, also for negative serials (-1.25 is 1899-12-29 06:00).
py::object DateToPython(Date date) {
  const double serial = date.serial;
  if (!std::isfinite(serial) || std::fabs(serial) > 3.0e6) Raise(Err::Overflow);
  double whole = std::trunc(serial);
  std::int64_t micros = std::llround(std::fabs(serial - whole) * 86400e6);
  std::int64_t days = static_cast<std::int64_t>(whole);
  if (micros >= 86400LL * 1000000) {  // rounded up to midnight: the next calendar day
    micros = 0;
    days += 1;
  }
  const CivilDay c = CivilDayOfSerial(days);
  if (c.year < 1 || c.year > 9999) Raise(Err::Overflow);
  const int y = static_cast<int>(c.year), m = c.month, d = c.day;
  const int us = static_cast<int>(micros % 1000000);
  const std::int64_t secs = micros / 1000000;
  PyObject* r = PyDateTime_FromDateAndTime(y, m, d, static_cast<int>(secs / 3600),
                                           static_cast<int>(secs / 60 % 60), static_cast<int>(secs % 60), us);
  if (!r) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(r);
}

Date DateFromPython(PyObject* o) {
  const std::int64_t days =
      SerialOfCivilDay(PyDateTime_GET_YEAR(o), PyDateTime_GET_MONTH(o), PyDateTime_GET_DAY(o));
  double frac = 0.0;
  if (PyDateTime_Check(o)) {
    const double secs = PyDateTime_DATE_GET_HOUR(o) * 3600.0 + PyDateTime_DATE_GET_MINUTE(o) * 60.0 +
                        PyDateTime_DATE_GET_SECOND(o) + PyDateTime_DATE_GET_MICROSECOND(o) / 1e6;
    frac = secs / 86400.0;
  }
  const double serial = days >= 0 ? static_cast<double>(days) + frac : static_cast<double>(days) - frac;
  return ToDate(Variant(Date{serial}));  // range check
}

std::string DigitsOf(u128 m) {
  if (m == 0) return "0";
  std::string s;
  while (m) {
    s.insert(s.begin(), static_cast<char>('0' + static_cast<int>(m % 10)));
    m /= 10;
  }
  return s;
}

// "-123.4500": the digits of a magnitude with `scale` decimals.
std::string ScaledText(u128 magnitude, int scale, bool negative) {
  std::string digits = DigitsOf(magnitude);
  if (static_cast<int>(digits.size()) <= scale) digits.insert(0, static_cast<std::size_t>(scale) - digits.size() + 1, '0');
  if (scale > 0) digits.insert(digits.size() - static_cast<std::size_t>(scale), ".");
  return (negative ? "-" : "") + digits;
}

py::object PythonDecimal(const std::string& text) {
  return py::reinterpret_borrow<py::object>(g.decimalType)(py::str(text));
}

py::object CurrencyToPython(Currency c) {
  const bool negative = c.scaled < 0;
  const u128 m = negative ? static_cast<u128>(-static_cast<__int128>(c.scaled)) : static_cast<u128>(c.scaled);
  return PythonDecimal(ScaledText(m, 4, negative));
}

py::object DecimalToPython(const Decimal& d) {
  const u128 m = (static_cast<u128>(d.hi) << 64) | d.lo;
  return PythonDecimal(ScaledText(m, d.scale, d.negative));
}

// decimal.Decimal to Currency exactly, rounding half to even at 4 decimals
// (the general conversion would pass through a Double); 6 out of range.
Currency CurrencyFromPython(py::handle o) {
  py::module_ decimal = py::module_::import("decimal");
  try {
    py::object scaled = o.attr("scaleb")(4).attr("to_integral_value")(py::arg("rounding") = decimal.attr("ROUND_HALF_EVEN"));
    const py::int_ n(scaled);
    int overflow = 0;
    const long long v = PyLong_AsLongLongAndOverflow(n.ptr(), &overflow);
    if (overflow) Raise(Err::Overflow);
    return Currency{v};
  } catch (py::error_already_set& e) {
    if (e.matches(PyExc_ArithmeticError) || e.matches(PyExc_ValueError)) Raise(Err::Overflow);  // NaN, infinity
    throw;
  }
}

// decimal.Decimal to Decimal: exact when it fits; beyond 28 decimals, or
// beyond 96 bits with decimals to spare, it is rounded half to even one
// digit at a time; a value that still does not fit raises 6.
Decimal DecimalFromPython(py::handle o) {
  py::tuple t = o.attr("as_tuple")();
  const int sign = t[0].cast<int>();
  if (!py::isinstance<py::int_>(t[2])) Raise(Err::Overflow);  // NaN or infinity
  int exp10 = t[2].cast<int>();
  py::tuple digitsTuple = t[1];
  std::vector<int> digits;
  digits.reserve(digitsTuple.size());
  for (py::handle dg : digitsTuple) digits.push_back(dg.cast<int>());
  while (exp10 > 0) {
    digits.push_back(0);
    --exp10;
  }
  int scale = -exp10;
  auto fits = [](const std::vector<int>& ds) {
    if (ds.size() > 40) {
      std::size_t lead = 0;
      while (lead < ds.size() && ds[lead] == 0) ++lead;
      if (ds.size() - lead > 29) return false;
    }
    u128 m = 0;
    for (int x : ds) {
      if (m > (kDecimalMax - static_cast<unsigned>(x)) / 10) return false;
      m = m * 10 + static_cast<unsigned>(x);
    }
    return true;
  };
  while (scale > 28 || (scale > 0 && !fits(digits))) {
    const int last = digits.back();
    digits.pop_back();
    --scale;
    if (digits.empty()) digits.push_back(0);
    const bool prevOdd = (digits.back() & 1) != 0;
    if (last > 5 || (last == 5 && prevOdd)) {
      std::size_t k = digits.size();
      while (k > 0 && digits[k - 1] == 9) digits[--k] = 0;
      if (k == 0)
        digits.insert(digits.begin(), 1);
      else
        ++digits[k - 1];
    }
  }
  if (!fits(digits)) Raise(Err::Overflow);
  u128 m = 0;
  for (int x : digits) m = m * 10 + static_cast<unsigned>(x);
  Decimal d;
  d.hi = static_cast<std::uint32_t>(m >> 64);
  d.lo = static_cast<std::uint64_t>(m);
  d.scale = static_cast<std::uint8_t>(scale);
  d.negative = sign != 0 && m != 0;
  return d;
}

// ----- 3. Conversions --------------------------------------------------------------

Variant IntToVariant(PyObject* o) {
  int overflow = 0;
  const long long v = PyLong_AsLongLongAndOverflow(o, &overflow);
  if (v == -1 && PyErr_Occurred()) throw py::error_already_set();
  if (!overflow && v >= std::numeric_limits<std::int32_t>::min() && v <= std::numeric_limits<std::int32_t>::max())
    return Variant(static_cast<std::int32_t>(v));
  const double d = PyLong_AsDouble(o);
  if (d == -1.0 && PyErr_Occurred()) {
    PyErr_Clear();
    Raise(Err::Overflow);
  }
  return Variant(d);
}

SafeArray ArrayFromNested(py::handle data, VarType element, py::handle lbounds);

template <VarType T>
py::object MakeTyped(const Variant& v) {
  Typed<T> t;
  t.value = v;
  return py::cast(std::move(t));
}

// tk.Currency's instances: a float (the nearest double) that also carries the
// exact scaled value, which is what goes back into the library.
struct CurrencyObject {
  PyFloatObject number;
  std::int64_t scaled;
};

// A numeric typed value of class `cls` holding the scalar `v` of its type.
py::object MakeNumber(PyTypeObject* cls, const Variant& v) {
  const bool integral = v.Type() == VarType::Integer || v.Type() == VarType::Long || v.Type() == VarType::Byte;
  py::object plain = integral ? PlainValue(v) : py::float_(ToDouble(v));
  py::tuple args = py::make_tuple(plain);
  PyObject* r = (integral ? PyLong_Type : PyFloat_Type).tp_new(cls, args.ptr(), nullptr);
  if (!r) throw py::error_already_set();
  if (v.Type() == VarType::Currency) reinterpret_cast<CurrencyObject*>(r)->scaled = v.AsCurrency().scaled;
  return py::reinterpret_steal<py::object>(r);
}

// An int or float subclass to a variant: the numeric typed values keep their
// type (checked again, a subclass may have bypassed the constructor), every
// other subclass (IntEnum constants, other libraries' numbers) is a plain
// number.
Variant NumberSubclassToVariant(PyObject* o) {
  if (PyObject_TypeCheck(o, NumberClass(VarType::Currency)))
    return Variant(Currency{reinterpret_cast<CurrencyObject*>(o)->scaled});
  const Variant plain = PyLong_Check(o) ? IntToVariant(o) : Variant(PyFloat_AsDouble(o));
  for (const auto& [type, cls] : g.numbers)
    if (PyObject_TypeCheck(o, cls)) return ChangeType(plain, type);
  return plain;
}

// ----- 4. Arrays ----------------------------------------------------------------------

bool IsSequence(PyObject* o) { return PyList_Check(o) || PyTuple_Check(o); }

void FillNested(SafeArray& a, py::handle level, std::size_t depth, std::vector<std::int32_t>& index) {
  const auto& bounds = a.Bounds();
  if (depth == bounds.size()) {
    if (IsSequence(level.ptr()))
      throw py::value_error("tk.Array: the nested lists are not rectangular");
    a.Put(index, ToVariant(level));
    return;
  }
  if (!IsSequence(level.ptr()) || py::len(level) != static_cast<std::size_t>(bounds[depth].count))
    throw py::value_error("tk.Array: the nested lists are not rectangular");
  py::sequence seq = py::reinterpret_borrow<py::sequence>(level);
  for (std::int32_t i = 0; i < bounds[depth].count; ++i) {
    index[depth] = bounds[depth].lower + i;
    FillNested(a, seq[static_cast<std::size_t>(i)], depth + 1, index);
  }
}

std::vector<std::int32_t> LowerBounds(py::handle lbounds, std::size_t dims) {
  std::vector<std::int32_t> lower(dims, 0);
  if (lbounds.is_none()) return lower;
  if (PyLong_Check(lbounds.ptr())) {
    lower.assign(dims, lbounds.cast<std::int32_t>());
    return lower;
  }
  py::sequence seq = py::reinterpret_borrow<py::sequence>(lbounds);
  if (seq.size() != dims)
    throw py::value_error("tk.Array: lbounds needs one lower bound per dimension (" + std::to_string(dims) + ")");
  for (std::size_t d = 0; d < dims; ++d) lower[d] = seq[d].cast<std::int32_t>();
  return lower;
}

SafeArray ArrayFromNested(py::handle data, VarType element, py::handle lbounds) {
  if (element == VarType::Empty || element == VarType::Null)
    throw py::value_error("tk.Array: an array cannot hold elements of type " + std::string(TypeName(element)));
  if (!IsSequence(data.ptr())) throw py::type_error("tk.Array takes a (nested) list or tuple of elements");
  std::vector<std::int32_t> counts;
  for (py::handle x = data; IsSequence(x.ptr());) {
    const std::size_t n = py::len(x);
    if (n > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
      throw py::value_error("tk.Array: too many elements");
    counts.push_back(static_cast<std::int32_t>(n));
    if (n == 0 || counts.size() > 60) break;
    x = PySequence_Fast_GET_ITEM(x.ptr(), 0);
  }
  if (counts.size() > 60) throw py::value_error("tk.Array: more than 60 dimensions");
  const std::vector<std::int32_t> lower = LowerBounds(lbounds, counts.size());
  std::vector<ArrayBound> bounds;
  for (std::size_t d = 0; d < counts.size(); ++d) bounds.push_back(ArrayBound{lower[d], counts[d]});
  SafeArray a(element, std::move(bounds));
  std::vector<std::int32_t> index(counts.size(), 0);
  FillNested(a, data, 0, index);
  return a;
}

std::vector<std::int32_t> IndexOf(py::handle key) {
  std::vector<std::int32_t> index;
  auto one = [&](py::handle k) {
    if (!PyIndex_Check(k.ptr())) throw py::type_error("array indices must be integers");
    const long long v = py::cast<long long>(py::reinterpret_steal<py::object>(PyNumber_Index(k.ptr())));
    if (v < std::numeric_limits<std::int32_t>::min() || v > std::numeric_limits<std::int32_t>::max())
      Raise(Err::SubscriptOutOfRange);
    index.push_back(static_cast<std::int32_t>(v));
  };
  if (PyTuple_Check(key.ptr()))
    for (py::handle k : key) one(k);
  else
    one(key);
  return index;
}

// Nested lists, first index outermost.  Storage has the first index varying
// fastest, so one step at level `depth` skips the counts of the levels before it.
py::object ToListLevel(const SafeArray& a, std::size_t depth, std::size_t offset) {
  const auto& b = a.Bounds();
  std::size_t stride = 1;
  for (std::size_t d = 0; d < depth; ++d) stride *= static_cast<std::size_t>(b[d].count);
  py::list out(static_cast<std::size_t>(b[depth].count));
  for (std::int32_t i = 0; i < b[depth].count; ++i) {
    const std::size_t at = offset + static_cast<std::size_t>(i) * stride;
    out[static_cast<std::size_t>(i)] =
        depth + 1 == b.size() ? FromVariant(a.Data()[at]) : ToListLevel(a, depth + 1, at);
  }
  return out;
}

py::object ToList(const SafeArray& a) { return ToListLevel(a, 0, 0); }

py::tuple BoundsTuple(const SafeArray& a, bool upper) {
  py::tuple t(a.Bounds().size());
  for (std::size_t d = 0; d < a.Bounds().size(); ++d)
    t[d] = py::int_(upper ? a.UBound(static_cast<int>(d) + 1) : a.Bounds()[d].lower);
  return t;
}

std::string ReprOf(py::handle h) { return py::repr(h).cast<std::string>(); }

std::string VariantTypeText(const Variant& v) {
  const Variant& d = v.Deref();
  if (d.IsArray()) return std::string(TypeName(d.Type())) + "()";
  return std::string(TypeName(d.Type()));
}

// Operands of the wrappers' arithmetic and comparisons: wrappers by value.
py::object Operand(py::handle h) {
  if (PyObject_TypeCheck(h.ptr(), g.typedBase)) return PlainValue(h.cast<const TypedValue&>().value);
  return py::reinterpret_borrow<py::object>(h);
}

template <VarType T>
void RegisterTyped(py::module_& m, const char* name, const char* doc) {
  py::class_<Typed<T>, TypedValue> cls(m, name, doc);
  cls.def(py::init([] {
        Typed<T> t;
        t.value = SafeArray::DefaultElement(T);
        return t;
      }))
      .def(py::init([](py::handle x) {
             Typed<T> t;
             t.value = ChangeType(ToVariant(x), T);
             return t;
           }),
           py::arg("value"));
  PyObject_SetItem(g.typedClasses, cls.ptr(), py::int_(static_cast<int>(T)).ptr());
}

// ----- The numeric typed values ----------------------------------------------------------
//
// tk.Integer, tk.Long and tk.Byte are int subclasses, tk.Single, tk.Double and
// tk.Currency float subclasses: a host object receives numbers it can use as
// numbers (isinstance, arithmetic, json), while the class keeps the variant
// type for the way back into the library.  Arithmetic gives plain numbers.

template <VarType T>
PyObject* NumberNew(PyTypeObject* cls, PyObject* args, PyObject* kwargs) {
  try {
    static const char* names[] = {"value", nullptr};
    PyObject* x = nullptr;
    if (!PyArg_ParseTupleAndKeywords(args, kwargs, "|O", const_cast<char**>(names), &x)) return nullptr;
    Variant v;
    if (!x)
      v = SafeArray::DefaultElement(T);
    else if (T == VarType::Currency && PyObject_IsInstance(x, g.decimalType) == 1)
      v = Variant(CurrencyFromPython(x));
    else
      v = ChangeType(ToVariant(x), T);
    return MakeNumber(cls, v).release().ptr();
  } catch (...) {
    return TranslateException();
  }
}

void NumberDealloc(PyObject* self) {
  PyTypeObject* cls = Py_TYPE(self);
  cls->tp_free(self);
  Py_DECREF(cls);
}

// The body of a slot of the number types: its result, or on failure the
// Python exception set and NULL.
template <class F>
PyObject* SlotResult(F&& body) noexcept {
  try {
    return body().release().ptr();
  } catch (...) {
    return TranslateException();
  }
}

PyObject* NumberValue(PyObject* self, void*) {
  return SlotResult([&] { return PlainValue(ToVariant(self)); });
}

PyObject* NumberVt(PyObject* self, void*) {
  return SlotResult([&] { return py::str(VariantTypeText(ToVariant(self))); });
}

// str() is the runtime's text of the value (tk.Single(0.1) is "0.1"); repr()
// names the type: tk.Integer(5), tk.Currency('1.5000').
PyObject* NumberStr(PyObject* self) {
  return SlotResult([&] { return TextToPython(ToString(ToVariant(self))); });
}

PyObject* NumberRepr(PyObject* self) {
  return SlotResult([&] {
    const Variant v = ToVariant(self);
    py::object plain = PlainValue(v);
    const std::string inner = v.Type() == VarType::Currency ? ReprOf(py::str(plain)) : ReprOf(plain);
    return py::str("tk." + VariantTypeText(v) + "(" + inner + ")");
  });
}

// Copies and pickles rebuild a Currency from its exact value, not the float.
PyObject* CurrencyNewArgs(PyObject* self, PyObject*) {
  return SlotResult([&] { return py::make_tuple(PlainValue(ToVariant(self))); });
}

template <VarType T>
void RegisterNumber(py::module_& m, const char* name, const char* doc) {
  static PyGetSetDef getset[] = {
      {"value", NumberValue, nullptr,
       "The value as a plain Python number (decimal.Decimal, exact, for a Currency).", nullptr},
      {"vt", NumberVt, nullptr, "The variant type's name.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr}};
  static PyMethodDef currencyMethods[] = {{"__getnewargs__", CurrencyNewArgs, METH_NOARGS, nullptr},
                                          {nullptr, nullptr, 0, nullptr}};
  static const std::string qualified = std::string("tessarkao._core.") + name;
  static const std::string text = std::string(name) + "(value=0)\n--\n\n" + doc;
  constexpr bool integral = T == VarType::Integer || T == VarType::Long || T == VarType::Byte;
  static PyType_Slot slots[] = {
      {Py_tp_new, reinterpret_cast<void*>(NumberNew<T>)},
      {Py_tp_dealloc, reinterpret_cast<void*>(NumberDealloc)},
      {Py_tp_repr, reinterpret_cast<void*>(NumberRepr)},
      {Py_tp_str, reinterpret_cast<void*>(NumberStr)},
      {Py_tp_getset, getset},
      {Py_tp_doc, const_cast<char*>(text.c_str())},
      {T == VarType::Currency ? Py_tp_methods : 0, T == VarType::Currency ? currencyMethods : nullptr},
      {0, nullptr}};
  static PyType_Spec typeDef = {qualified.c_str(), T == VarType::Currency ? static_cast<int>(sizeof(CurrencyObject)) : 0,
                             0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
  py::tuple bases = py::make_tuple(py::handle(reinterpret_cast<PyObject*>(integral ? &PyLong_Type : &PyFloat_Type)));
  PyObject* cls = PyType_FromSpecWithBases(&typeDef, bases.ptr());
  if (!cls) throw py::error_already_set();
  m.attr(name) = py::reinterpret_steal<py::object>(cls);
  PyObject_SetItem(g.typedClasses, cls, py::int_(static_cast<int>(T)).ptr());
  g.numbers.emplace_back(T, reinterpret_cast<PyTypeObject*>(cls));
}

}  // namespace

// ----- 3. Conversions (public) ----------------------------------------------------------

std::string TextFromPython(PyObject* str) {
  Py_ssize_t n = 0;
  if (const char* s = PyUnicode_AsUTF8AndSize(str, &n)) return std::string(s, static_cast<std::size_t>(n));
  if (!PyErr_ExceptionMatches(PyExc_UnicodeEncodeError)) throw py::error_already_set();
  PyErr_Clear();
  PyObject* bytes = PyUnicode_AsEncodedString(str, "utf-8", "surrogatepass");
  if (!bytes) throw py::error_already_set();
  std::string out(PyBytes_AS_STRING(bytes), static_cast<std::size_t>(PyBytes_GET_SIZE(bytes)));
  Py_DECREF(bytes);
  return out;
}

py::str TextToPython(std::string_view text) {
  const auto n = static_cast<Py_ssize_t>(text.size());
  PyObject* r = PyUnicode_DecodeUTF8(text.data(), n, "surrogatepass");
  if (!r) {
    PyErr_Clear();
    r = PyUnicode_DecodeUTF8(text.data(), n, "surrogateescape");
  }
  if (!r) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(r);
}

Variant ToVariant(py::handle h) {
  PyObject* o = h.ptr();
  if (PyFloat_CheckExact(o)) return Variant(PyFloat_AS_DOUBLE(o));
  if (PyBool_Check(o)) return Variant(o == Py_True);
  if (PyLong_CheckExact(o)) return IntToVariant(o);
  if (PyUnicode_Check(o)) return Variant(TextFromPython(o));
  if (o == Py_None) return Variant::Nothing();
  if (IsProxy(o)) return Variant(Ref<Object>(ProxyTarget(o)));
  if (o == g.empty) return Variant();
  if (o == g.null) return Variant::Null();
  if (o == g.missing) return Variant::Missing();
  if (PyObject_TypeCheck(o, g.typedBase)) return h.cast<const TypedValue&>().value;
  if (PyObject_TypeCheck(o, g.arrayType)) return Variant(h.cast<const ArrayValue&>().array);
  if (PyObject_TypeCheck(o, g.rawType)) return h.cast<const RawVariant&>().value;
  if (PyObject_TypeCheck(o, g.refType))
    throw py::type_error("tk.Ref passes an argument by reference; it cannot be a value itself");
  if (PyLong_Check(o) || PyFloat_Check(o)) return NumberSubclassToVariant(o);
  if (PyDate_Check(o)) return Variant(DateFromPython(o));
  if (PyObject_IsInstance(o, g.decimalType) == 1) return Variant(DecimalFromPython(h));
  if (IsSequence(o)) return Variant(ArrayFromNested(h, VarType::Variant, py::none()));
  if (!PyType_Check(o) && PyIndex_Check(o)) {  // integer-like numbers of other libraries
    py::object i = py::reinterpret_steal<py::object>(PyNumber_Index(o));
    if (!i) throw py::error_already_set();
    return IntToVariant(i.ptr());
  }
  return Variant(WrapHostObject(h));
}

py::object PlainValue(const Variant& value) {
  const Variant& v = value.Deref();
  if (v.IsArray()) return FromVariant(v);
  switch (v.Type()) {
    case VarType::Empty: return py::reinterpret_borrow<py::object>(g.empty);
    case VarType::Null: return py::reinterpret_borrow<py::object>(g.null);
    case VarType::Integer: return py::int_(v.AsInteger());
    case VarType::Long: return py::int_(v.AsLong());
    case VarType::Byte: return py::int_(v.AsByte());
    case VarType::Single: return py::float_(static_cast<double>(v.AsSingle()));
    case VarType::Double: return py::float_(v.AsDouble());
    case VarType::Boolean: return py::bool_(v.AsBoolean());
    case VarType::String: return TextToPython(v.AsString());
    case VarType::Currency: return CurrencyToPython(v.AsCurrency());
    case VarType::Decimal: return DecimalToPython(v.AsDecimal());
    case VarType::Date: return DateToPython(v.AsDate());
    case VarType::Error:
      if (v.IsMissing()) return py::reinterpret_borrow<py::object>(g.missing);
      return py::int_(v.AsError().scode);
    default: return FromVariant(v);
  }
}

py::object FromVariant(const Variant& value) {
  const Variant& v = value.Deref();
  switch (v.Index()) {
    case Variant::kDouble: return py::reinterpret_steal<py::object>(PyFloat_FromDouble(v.AsDouble()));
    case Variant::kLong: return py::reinterpret_steal<py::object>(PyLong_FromLong(v.AsLong()));
    case Variant::kBoolean: return py::bool_(v.AsBoolean());
    case Variant::kString: return TextToPython(v.AsString());
    case Variant::kEmpty: return py::reinterpret_borrow<py::object>(g.empty);
    case Variant::kNull: return py::reinterpret_borrow<py::object>(g.null);
    case Variant::kObject: {
      const Ref<Object>& o = v.AsObject();
      if (!o) return py::none();
      if (PyObject* host = HostTarget(o.get())) return py::reinterpret_borrow<py::object>(host);
      return NewProxy(o);
    }
    case Variant::kArray: return py::cast(ArrayValue{v.AsArray()});
    case Variant::kError:
      if (v.IsMissing()) return py::reinterpret_borrow<py::object>(g.missing);
      return py::cast(RawVariant{v});
    case Variant::kInteger: return MakeNumber(NumberClass(VarType::Integer), v);
    case Variant::kSingle: return MakeNumber(NumberClass(VarType::Single), v);
    case Variant::kCurrency: return MakeNumber(NumberClass(VarType::Currency), v);
    case Variant::kDate: return MakeTyped<VarType::Date>(v);
    case Variant::kDecimal: return MakeTyped<VarType::Decimal>(v);
    case Variant::kByte: return MakeNumber(NumberClass(VarType::Byte), v);
    default: return py::reinterpret_borrow<py::object>(g.empty);
  }
}

PyObject* MissingObject() noexcept { return g.missing; }

py::object NewRef(py::object value) { return py::cast(RefBox{std::move(value)}); }

RefBox* AsRef(py::handle h) {
  if (!PyObject_TypeCheck(h.ptr(), g.refType)) return nullptr;
  return &h.cast<RefBox&>();
}

VarType VarTypeOf(py::handle h) {
  VarType t{};
  if (PyUnicode_Check(h.ptr())) {
    if (ParseTypeName(h.cast<std::string>(), t)) return t;
  } else if (PyType_Check(h.ptr())) {
    PyObject* code = PyDict_GetItem(g.typedClasses, h.ptr());
    if (code) return static_cast<VarType>(PyLong_AsLong(code));
  } else if (PyLong_Check(h.ptr())) {
    const int code = h.cast<int>();
    if (code >= 0 && code <= 17) {
      t = static_cast<VarType>(code);
      if (TypeName(t) != "Unknown") return t;
    }
  }
  throw py::value_error("not a variant type: " + ReprOf(h) + " (use a name such as \"Double\")");
}

// ----- 5. Registration --------------------------------------------------------------------

void RegisterValues(py::module_& m) {
  PyDateTime_IMPORT;
  if (!PyDateTimeAPI) throw py::error_already_set();
  g.decimalType = py::object(py::module_::import("decimal").attr("Decimal")).release().ptr();
  g.typedClasses = PyDict_New();

  py::class_<EmptyType>(m, "EmptyType", "The type of tk.Empty, the Empty variant.")
      .def("__repr__", [](const EmptyType&) { return "tk.Empty"; })
      .def("__bool__", [](const EmptyType&) { return false; });
  py::class_<NullType>(m, "NullType", "The type of tk.Null, the Null variant.")
      .def("__repr__", [](const NullType&) { return "tk.Null"; })
      .def("__bool__", [](const NullType&) { return false; });
  py::class_<MissingType>(m, "MissingType", "The type of tk.Missing, an omitted optional argument.")
      .def("__repr__", [](const MissingType&) { return "tk.Missing"; })
      .def("__bool__", [](const MissingType&) { return false; });
  g.empty = py::cast(EmptyType{}).release().ptr();
  g.null = py::cast(NullType{}).release().ptr();
  g.missing = py::cast(MissingType{}).release().ptr();
  m.attr("Empty") = py::handle(g.empty);
  m.attr("Null") = py::handle(g.null);
  m.attr("Missing") = py::handle(g.missing);

  // The typed wrappers share one base that behaves as the value it holds.
  py::class_<TypedValue> base(m, "TypedValue",
                              "Base of the typed wrappers: a value of exactly one variant type.");
  auto binary = [&base](const char* name, auto op) {
    base.def(name, [op](const TypedValue& self, py::handle other) -> py::object {
      py::object a = PlainValue(self.value), b = Operand(other);
      PyObject* r = op(a.ptr(), b.ptr());
      if (!r) throw py::error_already_set();
      return py::reinterpret_steal<py::object>(r);
    });
  };
  auto reflected = [&base](const char* name, auto op) {
    base.def(name, [op](const TypedValue& self, py::handle other) -> py::object {
      py::object a = Operand(other), b = PlainValue(self.value);
      PyObject* r = op(a.ptr(), b.ptr());
      if (!r) throw py::error_already_set();
      return py::reinterpret_steal<py::object>(r);
    });
  };
  binary("__add__", PyNumber_Add);
  reflected("__radd__", PyNumber_Add);
  binary("__sub__", PyNumber_Subtract);
  reflected("__rsub__", PyNumber_Subtract);
  binary("__mul__", PyNumber_Multiply);
  reflected("__rmul__", PyNumber_Multiply);
  binary("__truediv__", PyNumber_TrueDivide);
  reflected("__rtruediv__", PyNumber_TrueDivide);
  auto compare = [&base](const char* name, int op) {
    base.def(name, [op](const TypedValue& self, py::handle other) -> py::object {
      py::object a = PlainValue(self.value), b = Operand(other);
      PyObject* r = PyObject_RichCompare(a.ptr(), b.ptr(), op);
      if (!r) throw py::error_already_set();
      return py::reinterpret_steal<py::object>(r);
    });
  };
  compare("__eq__", Py_EQ);
  compare("__ne__", Py_NE);
  compare("__lt__", Py_LT);
  compare("__le__", Py_LE);
  compare("__gt__", Py_GT);
  compare("__ge__", Py_GE);
  base.def_property_readonly("value", [](const TypedValue& t) { return PlainValue(t.value); },
                             "The value as a plain Python value (int, float, bool, str, "
                             "decimal.Decimal or datetime.datetime).")
      .def_property_readonly("vt", [](const TypedValue& t) { return VariantTypeText(t.value); })
      .def("__hash__", [](const TypedValue& t) { return py::hash(PlainValue(t.value)); })
      .def("__bool__", [](const TypedValue& t) { return ToBoolean(t.value); })
      .def("__float__", [](const TypedValue& t) { return ToDouble(t.value); })
      .def("__int__", [](const TypedValue& t) { return py::int_(PlainValue(ChangeType(t.value, VarType::Double))); })
      .def("__neg__", [](const TypedValue& t) { return PlainValue(t.value).attr("__neg__")(); })
      .def("__abs__", [](const TypedValue& t) { return PlainValue(t.value).attr("__abs__")(); })
      .def("__str__", [](const TypedValue& t) { return ToString(t.value); })
      .def("__repr__", [](const TypedValue& t) {
        const Variant& v = t.value;
        std::string inner;
        if (v.Type() == VarType::Date)
          inner = ReprOf(py::float_(v.AsDate().serial));
        else if (v.Type() == VarType::Currency || v.Type() == VarType::Decimal)
          inner = ReprOf(py::str(PlainValue(v)));
        else
          inner = ReprOf(PlainValue(v));
        return "tk." + VariantTypeText(v) + "(" + inner + ")";
      });
  g.typedBase = reinterpret_cast<PyTypeObject*>(base.ptr());

  g.numbers.clear();
  RegisterNumber<VarType::Integer>(m, "Integer", "A 16-bit signed Integer (converted as CInt does).");
  RegisterNumber<VarType::Long>(m, "Long", "A 32-bit signed Long.");
  RegisterNumber<VarType::Single>(m, "Single", "An IEEE single-precision Single.");
  RegisterNumber<VarType::Double>(m, "Double", "An IEEE double-precision Double.");
  RegisterNumber<VarType::Currency>(m, "Currency",
                                    "A Currency: 64-bit fixed point with 4 decimals; the float is its nearest double.");
  RegisterNumber<VarType::Byte>(m, "Byte", "An unsigned 8-bit Byte.");
  RegisterTyped<VarType::Date>(m, "Date",
                                      "A Date: days since 1899-12-30 with the time as the fraction; "
                                      "built from a serial number, a datetime or a date text.");
  RegisterTyped<VarType::Decimal>(m, "Decimal", "A Decimal: 96-bit integer with a scale of 0 to 28.");
  RegisterTyped<VarType::Boolean>(m, "Boolean", "A Boolean (True is -1 as a number).");
  RegisterTyped<VarType::String>(m, "String", "A String.");
  py::class_<Typed<VarType::Date>, TypedValue> dateClass =
      py::reinterpret_borrow<py::class_<Typed<VarType::Date>, TypedValue>>(m.attr("Date"));
  dateClass.def_property_readonly("serial", [](const TypedValue& t) { return t.value.AsDate().serial; },
                                  "The date serial number.");

  py::class_<ArrayValue>(m, "Array",
                         "An array variant: element type, 1 to 60 dimensions, each with its own "
                         "lower bound.  Elements are indexed by their real indices, a[i, j].")
      .def(py::init([](py::handle data, py::handle vartype, py::handle lbounds) {
             if (PyObject_TypeCheck(data.ptr(), g.arrayType)) {
               const SafeArray& src = data.cast<const ArrayValue&>().array;
               py::object list = ToList(src);
               py::object lower = lbounds.is_none() ? py::object(BoundsTuple(src, false))
                                                    : py::reinterpret_borrow<py::object>(lbounds);
               const VarType vt = vartype.is_none() ? src.ElementType() : VarTypeOf(vartype);
               return ArrayValue{ArrayFromNested(list, vt, lower)};
             }
             const VarType vt = vartype.is_none() ? VarType::Variant : VarTypeOf(vartype);
             return ArrayValue{ArrayFromNested(data, vt, lbounds)};
           }),
           py::arg("data"), py::arg("vartype") = py::none(), py::arg("lbounds") = py::none())
      .def_property_readonly("lbounds", [](const ArrayValue& a) { return BoundsTuple(a.array, false); })
      .def_property_readonly("ubounds", [](const ArrayValue& a) { return BoundsTuple(a.array, true); })
      .def_property_readonly("dims", [](const ArrayValue& a) { return a.array.Dims(); })
      .def_property_readonly("vartype", [](const ArrayValue& a) { return std::string(TypeName(a.array.ElementType())); })
      .def("__getitem__", [](const ArrayValue& a, py::handle key) { return FromVariant(a.array.Get(IndexOf(key))); })
      .def("__setitem__",
           [](ArrayValue& a, py::handle key, py::handle value) { a.array.Put(IndexOf(key), ToVariant(value)); })
      .def("__len__", [](const ArrayValue& a) { return a.array.Bounds()[0].count; })
      .def("__iter__", [](const ArrayValue& a) { return py::iter(ToList(a.array)); })
      .def("tolist", [](const ArrayValue& a) { return ToList(a.array); },
           "The elements as nested lists, first index outermost.")
      .def("__eq__",
           [](const ArrayValue& a, py::handle other) -> py::object {
             if (PyObject_TypeCheck(other.ptr(), g.arrayType))
               return py::bool_(a.array == other.cast<const ArrayValue&>().array);
             if (IsSequence(other.ptr())) return ToList(a.array).attr("__eq__")(py::list(py::reinterpret_borrow<py::object>(other)));
             return py::reinterpret_borrow<py::object>(Py_NotImplemented);
           })
      .def("__hash__", [](const ArrayValue&) -> py::object { throw py::type_error("unhashable type: 'Array'"); })
      .def("__repr__", [](const ArrayValue& a) {
        return "tk.Array(" + ReprOf(ToList(a.array)) + ", vartype='" + std::string(TypeName(a.array.ElementType())) +
               "', lbounds=" + ReprOf(BoundsTuple(a.array, false)) + ")";
      });
  g.arrayType = reinterpret_cast<PyTypeObject*>(m.attr("Array").ptr());

  py::class_<RawVariant>(m, "Variant",
                         "A raw variant: .vt names its type (\"Long\", \"Double\", \"Empty\", "
                         "\"Object\", \"Double()\" for an array), .value is its Python value.")
      .def(py::init([](py::handle value, py::handle vt) {
             Variant v = ToVariant(value);
             if (!vt.is_none()) v = ChangeType(v, VarTypeOf(vt));
             return RawVariant{std::move(v)};
           }),
           py::arg("value") = py::none(), py::arg("vt") = py::none())
      .def_property_readonly("vt", [](const RawVariant& r) { return VariantTypeText(r.value); })
      .def_property_readonly("value", [](const RawVariant& r) { return PlainValue(r.value); })
      .def_property_readonly("typename", [](const RawVariant& r) { return r.value.TypeName(); },
                             "The type name a scripting runtime's TypeName reports (the class name "
                             "for an object, \"Nothing\" for an empty reference).")
      .def("__eq__",
           [](const RawVariant& a, py::handle other) -> py::object {
             if (!PyObject_TypeCheck(other.ptr(), g.rawType))
               return py::reinterpret_borrow<py::object>(Py_NotImplemented);
             return py::bool_(SameValue(a.value, other.cast<const RawVariant&>().value));
           })
      .def("__hash__", [](const RawVariant& r) { return py::hash(py::str(VariantTypeText(r.value))); })
      .def("__repr__", [](const RawVariant& r) {
        return "tk.Variant(vt='" + VariantTypeText(r.value) + "', value=" + ReprOf(PlainValue(r.value)) + ")";
      });
  g.rawType = reinterpret_cast<PyTypeObject*>(m.attr("Variant").ptr());

  py::class_<RefBox>(m, "Ref",
                     "A by-reference argument: pass tk.Ref(initial) and read .value after the "
                     "call for what the callee wrote.")
      .def(py::init([](py::object value) { return RefBox{std::move(value)}; }),
           py::arg("value") = py::reinterpret_borrow<py::object>(g.empty))
      .def_readwrite("value", &RefBox::value)
      .def("__repr__", [](const RefBox& r) { return "tk.Ref(" + ReprOf(r.value) + ")"; });
  g.refType = reinterpret_cast<PyTypeObject*>(m.attr("Ref").ptr());
}

}  // namespace TessarkAO::Python

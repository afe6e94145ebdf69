// Property reads from Python: TKVector4d.X through the tessarkao module
// (late-bound, via the member table) against a plain pybind11-bound C++
// getter, in one run.  Both read a double member of a C++ object; the ratio
// is what the late binding costs a script.  Each is timed twice: as the attribute read alone
// (PyObject_GetAttr, what the interpreter's attribute load does) and inside
// a Python loop.
#include <benchmark/benchmark.h>
#include <pybind11/embed.h>

#include <string>

#include "RatioReporter.hpp"

namespace py = pybind11;

namespace {

// The baseline: the same getter bound directly with pybind11.
struct Plain {
  double x = 1.5;
  double y = 2.5;
  double GetX() const { return x; }
  void SetPosition(double a, double b, double) {
    x = a;
    y = b;
  }
};

}  // namespace

PYBIND11_EMBEDDED_MODULE(tk_bench_plain, m) {
  py::class_<Plain>(m, "Plain")
      .def(py::init<>())
      .def_property_readonly("X", &Plain::GetX)
      .def("SetPosition", &Plain::SetPosition);
}

namespace {

py::object MakeObject(bool late) {
  if (late) return py::module_::import("tessarkao").attr("CreateObject")("TessarkAO.TKVector4d");
  return py::module_::import("tk_bench_plain").attr("Plain")();
}

void AttributeRead(benchmark::State& state, bool late) {
  py::object obj = MakeObject(late);
  py::object name = py::reinterpret_steal<py::object>(PyUnicode_InternFromString("X"));
  for (auto _ : state) {
    PyObject* r = PyObject_GetAttr(obj.ptr(), name.ptr());
    if (!r) throw py::error_already_set();
    benchmark::DoNotOptimize(r);
    Py_DECREF(r);
  }
}

constexpr int kLoop = 1000;

// Runs `statement` kLoop times per iteration inside Python.
void PythonLoop(benchmark::State& state, bool late, const char* statement) {
  py::dict ns;
  ns["o"] = MakeObject(late);
  ns["r"] = py::module_::import("builtins").attr("range")(kLoop);
  std::string code = std::string("def run(o=o, r=r):\n    for _ in r:\n        ") + statement + "\n";
  py::exec(code, ns);
  py::object run = ns["run"];
  for (auto _ : state) run();
  state.SetItemsProcessed(state.iterations() * kLoop);
}

void BM_GetAttr_Module(benchmark::State& s) { AttributeRead(s, true); }
void BM_GetAttr_Pybind11(benchmark::State& s) { AttributeRead(s, false); }
void BM_LoopGet_Module(benchmark::State& s) { PythonLoop(s, true, "o.X"); }
void BM_LoopGet_Pybind11(benchmark::State& s) { PythonLoop(s, false, "o.X"); }
void BM_LoopCall_Module(benchmark::State& s) { PythonLoop(s, true, "o.SetPosition(1.0, 2.0, 3.0)"); }
void BM_LoopCall_Pybind11(benchmark::State& s) { PythonLoop(s, false, "o.SetPosition(1.0, 2.0, 3.0)"); }

BENCHMARK(BM_GetAttr_Module);
BENCHMARK(BM_GetAttr_Pybind11);
BENCHMARK(BM_LoopGet_Module);
BENCHMARK(BM_LoopGet_Pybind11);
BENCHMARK(BM_LoopCall_Module);
BENCHMARK(BM_LoopCall_Pybind11);

}  // namespace

int main(int argc, char** argv) {
  py::scoped_interpreter python;
  py::module_::import("sys").attr("path").attr("insert")(0, TK_PYTHON_PACKAGE_DIR);
  return TessarkAO::Bench::RunWithRatios(argc, argv, [](const TessarkAO::Bench::RatioReporter& r) {
    r.PrintRatio("property get (attribute read) module/pybind11", "BM_GetAttr_Module", "BM_GetAttr_Pybind11",
                 "<= 2");
    r.PrintRatio("property get (Python loop) module/pybind11", "BM_LoopGet_Module", "BM_LoopGet_Pybind11",
                 "<= 2");
    r.PrintRatio("method call, 3 arguments (Python loop)", "BM_LoopCall_Module", "BM_LoopCall_Pybind11");
  });
}

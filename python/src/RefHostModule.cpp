// tk.refhost: the reference host (new application, scene files, the call
// journal) for scripts and tests.
#include <pybind11/stl.h>

#include "Proxy.hpp"
#include "Values.hpp"
#include "automation/Convert.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::Python {

namespace {

Ref<Object> ApplicationOf(py::handle app) {
  Ref<Object> o = ToObject(ToVariant(app));
  if (!o) Raise(Err::ObjectNotSet);
  return o;
}

py::object ArgsOf(const RefHost::JournalEntry& e) {
  py::list args;
  for (const Variant& v : e.args) args.append(FromVariant(v));
  return py::tuple(args);
}

}  // namespace

void RegisterRefHost(py::module_& m) {
  py::module_ rh = m.def_submodule(
      "refhost",
      "The reference host: an in-memory model of the host application's scene, loaded from "
      "and saved to JSON scene files, with a journal of the member calls made on it.");

  py::class_<RefHost::JournalEntry>(rh, "JournalEntry", "One member call made on a host object.")
      .def_readonly("object", &RefHost::JournalEntry::object, "The callee's journal name.")
      .def_readonly("member", &RefHost::JournalEntry::member, "The member as the host declares it.")
      .def_property_readonly("kind", [](const RefHost::JournalEntry& e) { return static_cast<int>(e.kind); },
                             "tk.GET, tk.LET, tk.SET or tk.METHOD.")
      .def_property_readonly("args", &ArgsOf, "The arguments as they were passed.")
      .def("__str__", [](const RefHost::JournalEntry& e) { return RefHost::FormatJournal({e}); })
      .def("__repr__", [](const RefHost::JournalEntry& e) {
        std::string line = RefHost::FormatJournal({e});
        while (!line.empty() && line.back() == '\n') line.pop_back();
        return "<JournalEntry " + line + ">";
      });

  rh.def(
      "new_application", [] { return NewProxy(RefHost::NewApplication()); },
      "An application with one empty page, \"Scene1\".");
  rh.def(
      "load", [](const std::string& path) { return NewProxy(RefHost::LoadScene(path)); }, py::arg("path"),
      "An application holding the scene of a JSON scene file (53 not found, 75 unreadable, 321 malformed).");
  rh.def(
      "loads", [](const std::string& text) { return NewProxy(RefHost::LoadSceneFromString(text)); },
      py::arg("text"), "An application holding the scene of a JSON text.");
  rh.def(
      "save", [](py::handle app, const std::string& path) { RefHost::SaveScene(ApplicationOf(app), path); },
      py::arg("app"), py::arg("path"), "Writes the application's scene to a JSON scene file.");
  rh.def(
      "dumps", [](py::handle app) { return RefHost::SaveSceneToString(ApplicationOf(app)); }, py::arg("app"),
      "The application's scene as JSON text.");
  rh.def("journal_start", &RefHost::StartJournal, "Records member calls on host objects from now on.");
  rh.def("journal_stop", &RefHost::StopJournal, "Stops recording (the journal is kept).");
  rh.def("journal_clear", &RefHost::ClearJournal, "Empties the journal.");
  rh.def("journal_on", &RefHost::JournalIsOn, "Whether calls are being recorded.");
  rh.def("journal", &RefHost::Journal, "The calls recorded, oldest first.");
  rh.def(
      "journal_text",
      [](py::object entries) {
        if (entries.is_none()) return RefHost::FormatJournal(RefHost::Journal());
        return RefHost::FormatJournal(entries.cast<std::vector<RefHost::JournalEntry>>());
      },
      py::arg("entries") = py::none(), "The journal (or the given entries) as text, one call per line.");
  rh.def(
      "name_of", [](py::handle obj) { return RefHost::DescribeObject(ToObject(ToVariant(obj))); },
      py::arg("obj"), "The journal name of a host object (\"Scene1//Part\").");
}

}  // namespace TessarkAO::Python

// tk.ui: drives the headless user-interface service from scripts and tests.
#include <pybind11/stl.h>

#include "Values.hpp"
#include "platform/UserInterface.hpp"

namespace TessarkAO::Python {

namespace {

struct UiDriver {};

HeadlessUserInterface& Headless() {
  HeadlessUserInterface* ui = GetHeadlessUserInterface();
  if (!ui) throw std::runtime_error("the user-interface service in force is not the headless one");
  return *ui;
}

}  // namespace

void RegisterUi(py::module_& m) {
  py::class_<MessageRecord>(m, "Message", "A message box that was shown.")
      .def_readonly("text", &MessageRecord::text)
      .def_readonly("title", &MessageRecord::title)
      .def_property_readonly("icon", [](const MessageRecord& r) { return std::string(MessageIconName(r.icon)); },
                             "\"exclamation\", \"information\", \"critical\", \"question\" or \"none\".")
      .def("__repr__", [](const MessageRecord& r) {
        return "<Message " + py::repr(py::str(r.title)).cast<std::string>() + ": " +
               py::repr(py::str(r.text)).cast<std::string>() + " (" + std::string(MessageIconName(r.icon)) + ")>";
      });
  py::class_<DialogRecord>(m, "Dialog", "A modal dialog that was shown.")
      .def_readonly("name", &DialogRecord::name)
      .def_readonly("text", &DialogRecord::text, "Its captions and content as text.")
      .def("__repr__", [](const DialogRecord& r) { return "<Dialog " + r.name + ">"; });

  py::class_<UiDriver>(m, "UserInterface",
                       "The headless user-interface service: what dialogs will answer, and what was shown.")
      .def("queue_file", [](UiDriver&, std::string name) { Headless().QueueFile(std::move(name)); },
           py::arg("name"), "The next file-open dialog returns `name` (\"\" answers it as cancelled).")
      .def("queue_button", [](UiDriver&, std::string name) { Headless().QueueButton(std::move(name)); },
           py::arg("name"),
           "The next modal dialog is closed with this button (\"Import\", \"Cancel\", or \"Close\" "
           "for the title-bar control).")
      .def("queue_answer", [](UiDriver&, std::int32_t answer) { Headless().QueueAnswer(answer); },
           py::arg("answer"), "The answer of the next message box (1 OK, 2 Cancel, 6 Yes, 7 No).")
      .def("clear", [](UiDriver&) { Headless().Clear(); },
           "Empties the messages, the dialogs shown and every queue.")
      .def_property_readonly("messages", [](UiDriver&) { return Headless().Messages(); },
                             "The message boxes shown, oldest first.")
      .def_property_readonly("shown", [](UiDriver&) { return Headless().Shown(); },
                             "The modal dialogs shown, oldest first.")
      .def_property_readonly("last_file_request", [](UiDriver&) { return Headless().LastFileRequest(); },
                             "Title, filter and default extension of the last file dialog.")
      .def_property(
          "screen", [](UiDriver&) { return Headless().ScreenSize(); },
          [](UiDriver&, std::pair<std::int32_t, std::int32_t> size) {
            Headless().SetScreenSize(size.first, size.second);
          },
          "(width, height) of the screen in the units of stored dialog positions.")
      .def("set_echo", [](UiDriver&, bool echo) { Headless().SetEcho(echo); }, py::arg("echo"),
           "Whether message boxes are also written to stderr (on by default).");
  m.attr("ui") = py::cast(UiDriver{});
}

}  // namespace TessarkAO::Python

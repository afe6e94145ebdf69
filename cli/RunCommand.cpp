// tktools run: runs a Python script with the library and a reference-host
// application.  The script sees `tk` (the tessarkao module) and `app` (the
// application: a new scene, or the one loaded with --scene) as globals, and
// sys.argv as [SCRIPT, arguments after --].  With --save, the scene of the
// global `app` (the script may replace it) is written after the script ends.
#include <pybind11/embed.h>

#include <climits>
#include <cstdlib>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <sstream>
#include <sys/stat.h>

#include "Command.hpp"
#include "Streams.hpp"

namespace py = pybind11;

namespace TessarkAO::Cli {

namespace {

bool IsFile(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string ReadScript(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in || !IsFile(path))
    throw CommandError("cannot read the script " + path + ": " +
                       (errno ? std::strerror(errno) : "not a regular file"));
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Where the tessarkao package is: installed beside this program, or in the
// build tree it was built in.
std::string PackageParentDir() {
  const std::string installed = ExecutableDir() + "/" TK_PYTHON_INSTALL_REL;
  if (IsFile(installed + "/tessarkao/__init__.py")) {
    char resolved[PATH_MAX];
    return ::realpath(installed.c_str(), resolved) ? std::string(resolved) : installed;
  }
  if (IsFile(std::string(TK_PYTHON_BUILD_DIR) + "/tessarkao/__init__.py")) return TK_PYTHON_BUILD_DIR;
  throw CommandError("the tessarkao Python package is not installed beside " + ExecutableDir());
}

// "AutomationError: Object required (error 424)" for the one-line report.
std::string OneLine(py::error_already_set& e) {
  std::string type = e.type() ? py::str(e.type().attr("__name__")).cast<std::string>() : "error";
  std::string text = e.value() ? py::str(e.value()).cast<std::string>() : std::string();
  for (char& c : text)
    if (c == '\n') c = ' ';
  return text.empty() ? type : type + ": " + text;
}

int ExitStatusOf(py::error_already_set& e) {
  py::object code = e.value() ? py::object(e.value().attr("code")) : py::none();
  if (code.is_none()) return 0;
  if (PyLong_Check(code.ptr())) return code.cast<int>();
  py::print(code, py::arg("file") = py::module_::import("sys").attr("stderr"));
  return 1;
}

}  // namespace

int RunScript(const std::vector<std::string>& args) {
  const Arguments a(args, {"--scene", "--save"});
  if (a.Positionals().empty()) throw UsageError("which script? give SCRIPT.py");
  if (a.Positionals().size() > 1)
    throw UsageError("unexpected argument '" + a.Positionals()[1] + "' (script arguments go after --)");
  const std::string script = a.Positionals()[0];
  const std::string scene = a.Value("--scene");
  const std::string save = a.Value("--save");
  if (script == "-" && scene == "-") throw UsageError("only one of SCRIPT.py and --scene can be standard input");
  errno = 0;
  const InputFile scriptFile(script, ".py");
  const std::string source = ReadScript(scriptFile.Path());
  const InputFile sceneFile(scene, ".json");
  if (!scene.empty() && !IsFile(sceneFile.Path())) throw CommandError("no scene file " + scene);

  py::scoped_interpreter python;
  int status = 0;
  std::string failure;
  {
    py::module_ sys = py::module_::import("sys");
    py::list argv;
    argv.append(script);
    for (const std::string& s : a.Rest()) argv.append(s);
    sys.attr("argv") = argv;
    py::list path = sys.attr("path");
    path.insert(0, PackageParentDir());
    const std::size_t slash = script == "-" ? std::string::npos : script.rfind('/');
    path.insert(0, slash == std::string::npos ? std::string(".") : script.substr(0, slash));

    py::module_ tk = py::module_::import("tessarkao");
    py::dict globals;
    globals["__name__"] = "__main__";
    globals["__file__"] = script;
    globals["__builtins__"] = py::module_::import("builtins");
    globals["tk"] = tk;
    try {
      py::object refhost = tk.attr("refhost");
      globals["app"] = scene.empty() ? refhost.attr("new_application")() : refhost.attr("load")(sceneFile.Path());
    } catch (py::error_already_set& e) {
      throw CommandError("cannot load the scene " + scene + ": " + OneLine(e));
    }
    try {
      py::module_ builtins = py::module_::import("builtins");
      py::object code = builtins.attr("compile")(py::bytes(source), script, "exec");
      builtins.attr("exec")(code, globals);
    } catch (py::error_already_set& e) {
      if (e.matches(PyExc_SystemExit)) {
        status = ExitStatusOf(e);
      } else {
        failure = script + " raised " + OneLine(e);
        e.restore();
        PyErr_Print();  // the traceback, for the person reading it
        status = 1;
      }
    }
    if (status == 0 && !save.empty()) {
      std::optional<OutputFile> made;
      try {
        made.emplace(save, ".json");
      } catch (const CommandError& e) {
        throw CommandError(std::string("cannot save the scene: ") + e.what());
      }
      OutputFile& out = *made;
      try {
        tk.attr("refhost").attr("save")(globals["app"], out.Path());
      } catch (py::error_already_set& e) {
        throw CommandError("cannot save the scene to " + save + ": " + OneLine(e));
      }
      std::fflush(stdout);  // what the script printed comes before the scene
      out.Commit();
    }
  }
  if (!failure.empty()) throw CommandError(failure);
  return status;
}

}  // namespace TessarkAO::Cli

// Chooses the user-interface service a POSIX process starts with, and loads
// the windowed one (a separate library built on Qt, which the core never
// links) only when a person can see its windows.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "platform/UserInterface.hpp"

namespace TessarkAO {

namespace {

constexpr const char* kLibraryName = "libtessarkao_qt.so";
// The factory the windowed library exports: a new service, or nullptr when
// it cannot open the display.
constexpr const char* kFactoryName = "tessarkao_create_windowed_ui";
using Factory = UserInterface* (*)();

bool WantsWindows() {
  const char* mode = std::getenv("TESSARKAO_UI");
  if (mode && std::string_view(mode) == "headless") return false;
  auto set = [](const char* name) {
    const char* v = std::getenv(name);
    return v && *v;
  };
  return set("DISPLAY") || set("WAYLAND_DISPLAY");
}

// The windowed library sits beside the library that holds this code (build
// tree and installation alike); else the loader's search path finds it.
std::string LibraryPath() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&StartupUserInterface), &info) && info.dli_fname) {
    std::string path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    if (slash != std::string::npos) return path.substr(0, slash + 1) + kLibraryName;
  }
  return kLibraryName;
}

std::unique_ptr<UserInterface> LoadWindowed() {
  std::string path = LibraryPath();
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library && path != kLibraryName) library = dlopen(kLibraryName, RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    const char* why = dlerror();
    std::fprintf(stderr, "tessarkao: no windows, using the headless user interface (%s)\n",
                 why ? why : kLibraryName);
    return nullptr;
  }
  // The library stays loaded for the life of the process: its service may
  // be in force until the very end.
  auto factory = reinterpret_cast<Factory>(dlsym(library, kFactoryName));
  UserInterface* ui = factory ? factory() : nullptr;
  if (!ui) std::fprintf(stderr, "tessarkao: no windows, using the headless user interface (the display cannot be opened)\n");
  return std::unique_ptr<UserInterface>(ui);
}

}  // namespace

std::unique_ptr<UserInterface> StartupUserInterface() {
  if (WantsWindows())
    if (std::unique_ptr<UserInterface> ui = LoadWindowed()) return ui;
  return std::make_unique<HeadlessUserInterface>();
}

}  // namespace TessarkAO

// Shared helpers of the tools tests: temporary files and the headless UI.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>

#include "automation/AutomationError.hpp"
#include "platform/UserInterface.hpp"

namespace ToolsTest {

inline std::filesystem::path TempDir() {
  static const std::filesystem::path dir = [] {
    std::string tmpl = (std::filesystem::temp_directory_path() / "tktools-XXXXXX").string();
    const char* made = ::mkdtemp(tmpl.data());
    return std::filesystem::path(made ? made : tmpl);
  }();
  return dir;
}

inline std::string WriteFile(const std::string& name, const std::string& content) {
  const std::filesystem::path p = TempDir() / name;
  std::ofstream(p, std::ios::binary) << content;
  return p.string();
}

// The number of the automation error `f` raises (0 for none), and its text.
inline int ErrorOf(const std::function<void()>& f, std::string* description = nullptr) {
  try {
    f();
  } catch (const TessarkAO::AutomationError& e) {
    if (description) *description = e.Description();
    return e.Number();
  }
  return 0;
}

inline TessarkAO::HeadlessUserInterface& Ui() {
  TessarkAO::HeadlessUserInterface* ui = TessarkAO::GetHeadlessUserInterface();
  ui->SetEcho(false);
  return *ui;
}

}  // namespace ToolsTest

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
#include "TestSupport.hpp"

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

using TessarkAO::Testing::ErrorOf;

inline TessarkAO::HeadlessUserInterface& Ui() {
  TessarkAO::HeadlessUserInterface* ui = TessarkAO::GetHeadlessUserInterface();
  ui->SetEcho(false);
  return *ui;
}

}  // namespace ToolsTest

// The process's registry store and the .reg file helpers shared by every
// implementation.
#include "platform/Registry.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "platform/SystemInfo.hpp"

namespace TessarkAO {

namespace {

struct Current {
  std::mutex mutex;
  std::unique_ptr<RegistryStore> store;
};

Current& TheCurrent() {
  static Current* c = new Current();  // outlives every static destructor that may still read it
  return *c;
}

}  // namespace

std::string DefaultRegistryPath() {
  if (auto explicitPath = GetEnvironment("TESSARKAO_REGISTRY"); explicitPath && !explicitPath->empty())
    return *explicitPath;
  std::string config;
  if (auto xdg = GetEnvironment("XDG_CONFIG_HOME"); xdg && !xdg->empty() && xdg->front() == '/')
    config = *xdg;
  else if (GetSpecialFolder(SpecialFolder::AppData, config) != 0)
    config = ".config";
  return config + "/tessarkao/registry.sqlite3";
}

RegistryStore& GetRegistry() {
  Current& c = TheCurrent();
  std::lock_guard lock(c.mutex);
  if (!c.store) c.store = OpenRegistryStore(DefaultRegistryPath());
  return *c.store;
}

void SetRegistry(std::unique_ptr<RegistryStore> store) {
  Current& c = TheCurrent();
  std::lock_guard lock(c.mutex);
  c.store = std::move(store);
}

RegStatus RegistryStore::ImportRegFile(const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) {
    const int err = errno;
    lastError_ = "cannot read " + path + ": " + std::strerror(err);
    return err == ENOENT ? WinError::FileNotFound : err == ENOTDIR ? WinError::PathNotFound : WinError::AccessDenied;
  }
  std::string text;
  char buf[65536];
  std::size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) text.append(buf, n);
  const bool failed = std::ferror(f) != 0;
  std::fclose(f);
  if (failed) {
    lastError_ = "cannot read " + path;
    return WinError::RegistryIoFailed;
  }
  const RegStatus status = ImportRegText(text);
  if (status != WinError::Success && !lastError_.empty()) lastError_ = path + ": " + lastError_;
  return status;
}

RegStatus RegistryStore::ExportRegFile(const std::string& path, RegHandle root, std::string_view subKey) {
  std::string text;
  const RegStatus status = ExportRegText(root, subKey, text);
  if (status != WinError::Success) return status;
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) {
    const int err = errno;
    lastError_ = "cannot write " + path + ": " + std::strerror(err);
    return err == ENOENT || err == ENOTDIR ? WinError::PathNotFound : WinError::AccessDenied;
  }
  const bool ok = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  if (std::fclose(f) != 0 || !ok) {
    lastError_ = "cannot write " + path;
    return WinError::RegistryIoFailed;
  }
  return WinError::Success;
}

}  // namespace TessarkAO

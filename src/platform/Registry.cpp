// The process's registry store and the .reg file helpers shared by every
// implementation.
#include "platform/Registry.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#ifndef _WIN32
#include <unistd.h>
#endif
#include <cstring>
#include <mutex>

#include "platform/RegFile.hpp"
#include "platform/SystemInfo.hpp"

namespace TessarkAO {

namespace {

struct Current {
  std::mutex mutex;
  std::unique_ptr<RegistryStore> store;
#ifndef _WIN32
  pid_t owner = 0;  // the process that opened the store
#endif
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
  if (!c.store) {
    // The store outlives static destruction, so nothing else would close it:
    // without this, committed values could stay in the write-ahead log
    // beside the file after the process ends.
    static const bool flushAtExit = std::atexit(&FlushRegistry) == 0;
    (void)flushAtExit;
    c.store = OpenRegistryStore(DefaultRegistryPath());
#ifndef _WIN32
    c.owner = ::getpid();
#endif
  }
  return *c.store;
}

void FlushRegistry() noexcept {
  Current& c = TheCurrent();
  std::lock_guard lock(c.mutex);
#ifndef _WIN32
  // A forked child must not touch the connection its parent opened.
  if (c.owner != ::getpid()) return;
#endif
  if (c.store) c.store->Flush();
}

void SetRegistry(std::unique_ptr<RegistryStore> store) {
  Current& c = TheCurrent();
  std::lock_guard lock(c.mutex);
  c.store = std::move(store);
#ifndef _WIN32
  c.owner = ::getpid();
#endif
}

RegStatus RegistryStore::ImportRegText(std::string_view file, unsigned codePage) {
  std::vector<RegFileKey> keys;
  std::string error;
  if (!ParseRegFile(file, keys, error, codePage)) {
    lastError_ = error;
    return WinError::InvalidData;
  }
  return ImportRegKeys(keys);
}

RegStatus RegistryStore::ExportRegText(RegHandle root, std::string_view subKey, std::string& file,
                                       RegFileFormat format, unsigned codePage) {
  std::vector<RegFileKey> keys;
  file.clear();
  if (RegStatus s = ExportRegKeys(root, subKey, keys); s != WinError::Success) return s;
  std::string error;
  if (!WriteRegFile(keys, format, codePage, file, error)) {
    file.clear();
    lastError_ = error;
    return WinError::NoUnicodeTranslation;
  }
  return WinError::Success;
}

RegStatus RegistryStore::ImportRegFile(const std::string& path, unsigned codePage) {
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
  const RegStatus status = ImportRegText(text, codePage);
  if (status != WinError::Success && !lastError_.empty()) lastError_ = path + ": " + lastError_;
  return status;
}

RegStatus RegistryStore::ExportRegFile(const std::string& path, RegHandle root, std::string_view subKey,
                                       RegFileFormat format, unsigned codePage) {
  std::string text;
  const RegStatus status = ExportRegText(root, subKey, text, format, codePage);
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

// The registry service on Windows: the system registry through advapi32's
// ANSI functions, so that value data is exactly the bytes the Win32 calls
// named in the library's contract read and write.
//
// The service's handles are 32-bit numbers while the system's keys are
// pointer-sized, so opened keys are numbered in a table of their own; the
// three predefined roots keep their Win32 values.  Any other number is not
// a handle (6).
#ifdef _WIN32

#include <map>
#include <mutex>

#include "platform/RegFile.hpp"
#include "platform/Registry.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO {

namespace {

class Win32RegistryStore final : public RegistryStore {
 public:
  ~Win32RegistryStore() override {
    for (auto& [id, key] : open_) RegCloseKey(key);
  }

  RegStatus OpenKey(RegHandle key, std::string_view subKey, std::uint32_t access, RegHandle& result) override {
    HKEY parent = nullptr;
    if (!Lookup(key, parent)) return WinError::InvalidHandle;
    HKEY opened = nullptr;
    const std::string path(subKey);
    const LONG status = RegOpenKeyExA(parent, path.c_str(), 0, access, &opened);
    if (status == ERROR_SUCCESS) result = Keep(opened);
    return status;
  }

  RegStatus CreateKey(RegHandle key, std::string_view subKey, RegHandle& result) override {
    HKEY parent = nullptr;
    if (!Lookup(key, parent)) return WinError::InvalidHandle;
    HKEY created = nullptr;
    const std::string path(subKey);
    const LONG status = RegCreateKeyA(parent, path.c_str(), &created);
    if (status == ERROR_SUCCESS) result = Keep(created);
    return status;
  }

  RegStatus CloseKey(RegHandle key) override {
    if (IsRoot(key)) return WinError::Success;
    std::lock_guard lock(mutex_);
    auto it = open_.find(key);
    if (it == open_.end()) return WinError::InvalidHandle;
    const LONG status = RegCloseKey(it->second);
    open_.erase(it);
    return status;
  }

  RegStatus QueryValue(RegHandle key, std::string_view name, std::uint32_t* type, std::uint8_t* data,
                       std::uint32_t* size) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    const std::string n(name);
    DWORD t = 0, s = size ? *size : 0;
    const LONG status = RegQueryValueExA(k, n.c_str(), nullptr, &t, data, size ? &s : nullptr);
    if (type) *type = t;
    if (size) *size = s;
    return status;
  }

  RegStatus SetValue(RegHandle key, std::string_view name, std::uint32_t type, const std::uint8_t* data,
                     std::uint32_t size) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    const std::string n(name);
    return RegSetValueExA(k, n.c_str(), 0, type, data, size);
  }

  RegStatus SetKeyDefault(RegHandle key, std::string_view subKey, std::string_view text) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    const std::string path(subKey), value(text);
    return RegSetValueA(k, path.c_str(), REG_SZ, value.c_str(), static_cast<DWORD>(value.size()));
  }

  RegStatus DeleteValue(RegHandle key, std::string_view name) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    const std::string n(name);
    return RegDeleteValueA(k, n.c_str());
  }

  RegStatus DeleteKey(RegHandle key, std::string_view subKey) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    const std::string path(subKey);
    return RegDeleteKeyA(k, path.c_str());
  }

  RegStatus DeleteTree(RegHandle key, std::string_view subKey) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    const std::string path(subKey);
    return RegDeleteTreeA(k, path.empty() ? nullptr : path.c_str());
  }

  RegStatus EnumKey(RegHandle key, std::uint32_t index, std::string& name) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    char buffer[256];
    DWORD length = sizeof buffer;
    const LONG status = RegEnumKeyExA(k, index, buffer, &length, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_SUCCESS) name.assign(buffer, length);
    return status;
  }

  RegStatus EnumValue(RegHandle key, std::uint32_t index, std::string& name, std::uint32_t* type,
                      std::vector<std::uint8_t>* data) override {
    HKEY k = nullptr;
    if (!Lookup(key, k)) return WinError::InvalidHandle;
    DWORD nameMax = 0, dataMax = 0;
    LONG status = RegQueryInfoKeyA(k, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &nameMax,
                                   &dataMax, nullptr, nullptr);
    if (status != ERROR_SUCCESS) return status;
    std::string n(nameMax + 1, '\0');
    std::vector<std::uint8_t> d(dataMax + 1);
    DWORD nameLength = static_cast<DWORD>(n.size()), dataLength = static_cast<DWORD>(d.size()), t = 0;
    status = RegEnumValueA(k, index, n.data(), &nameLength, nullptr, &t, d.data(), &dataLength);
    if (status != ERROR_SUCCESS) return status;
    name.assign(n.data(), nameLength);
    if (type) *type = t;
    if (data) {
      d.resize(dataLength);
      *data = std::move(d);
    }
    return status;
  }

  RegStatus ImportRegKeys(const std::vector<RegFileKey>& keys) override {
    lastError_.clear();
    // The system registry has no transaction here: sections apply in order,
    // and the first failing one stops the import with its status.
    for (const RegFileKey& k : keys) {
      if (k.remove) {
        const RegStatus s = DeleteTree(k.root, k.path);
        if (s != WinError::Success && s != WinError::FileNotFound) return s;
        continue;
      }
      RegHandle h = 0;
      RegStatus s = CreateKey(k.root, k.path, h);
      if (s != WinError::Success) return s;
      for (const RegFileValue& v : k.values) {
        // The system looks at the byte after string data (a NUL there would
        // be stored too): a byte that is not NUL keeps the data as the file
        // gives it.
        std::vector<std::uint8_t> guarded(v.data);
        guarded.push_back(1);
        s = v.remove ? DeleteValue(h, v.name)
                     : SetValue(h, v.name, v.type, guarded.data(), static_cast<std::uint32_t>(v.data.size()));
        if (s != WinError::Success && !(v.remove && s == WinError::FileNotFound)) {
          CloseKey(h);
          return s;
        }
      }
      CloseKey(h);
    }
    return WinError::Success;
  }

  RegStatus ExportRegKeys(RegHandle root, std::string_view subKey, std::vector<RegFileKey>& keys) override {
    keys.clear();
    const RegHandle roots[] = {kHkeyClassesRoot, kHkeyCurrentUser, kHkeyLocalMachine};
    for (RegHandle r : roots) {
      if (root != 0 && root != r) continue;
      const RegStatus s = ExportKey(r, std::string(subKey), keys);
      if (s != WinError::Success && root != 0) return s;
    }
    return WinError::Success;
  }

  std::string Location() const override { return {}; }

 private:
  static bool IsRoot(RegHandle key) noexcept {
    return key == kHkeyClassesRoot || key == kHkeyCurrentUser || key == kHkeyLocalMachine;
  }

  bool Lookup(RegHandle key, HKEY& out) {
    switch (key) {
      case kHkeyClassesRoot: out = HKEY_CLASSES_ROOT; return true;
      case kHkeyCurrentUser: out = HKEY_CURRENT_USER; return true;
      case kHkeyLocalMachine: out = HKEY_LOCAL_MACHINE; return true;
      default: break;
    }
    std::lock_guard lock(mutex_);
    auto it = open_.find(key);
    if (it == open_.end()) return false;
    out = it->second;
    return true;
  }

  RegHandle Keep(HKEY key) {
    std::lock_guard lock(mutex_);
    const RegHandle id = next_;
    next_ += 4;
    open_[id] = key;
    return id;
  }

  // Appends `path` below `root` and every key under it, values included.
  RegStatus ExportKey(RegHandle root, const std::string& path, std::vector<RegFileKey>& keys) {
    RegHandle h = 0;
    RegStatus s = OpenKey(root, path, RegAccess::Read, h);
    if (s != WinError::Success) return s;
    RegFileKey section;
    section.root = root;
    section.path = path;
    std::string name;
    std::uint32_t type = 0;
    std::vector<std::uint8_t> data;
    for (std::uint32_t i = 0; EnumValue(h, i, name, &type, &data) == WinError::Success; ++i)
      section.values.push_back({name, false, type, data});
    if (!path.empty() || !section.values.empty()) keys.push_back(std::move(section));
    std::vector<std::string> children;
    for (std::uint32_t i = 0; EnumKey(h, i, name) == WinError::Success; ++i) children.push_back(name);
    CloseKey(h);
    for (const std::string& child : children) ExportKey(root, path.empty() ? child : path + "\\" + child, keys);
    return WinError::Success;
  }

  std::mutex mutex_;
  std::map<RegHandle, HKEY> open_;
  RegHandle next_ = 0x100;
};

}  // namespace

// The path is where the store lives off Windows; here it is the system's.
std::unique_ptr<RegistryStore> OpenRegistryStore(std::string) { return std::make_unique<Win32RegistryStore>(); }

}  // namespace TessarkAO

#endif  // _WIN32

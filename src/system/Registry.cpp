#include "system/Registry.hpp"

#include <vector>

#include "automation/Convert.hpp"
#include "platform/Registry.hpp"

namespace TessarkAO::Registry {

std::int32_t MapRegistryRoot(std::int32_t key) noexcept {
  switch (key) {
    case TKRegistry_HKEY_CLASSES_ROOT: return static_cast<std::int32_t>(kHkeyClassesRoot);
    case TKRegistry_HKEY_LOCAL_MACHINE: return static_cast<std::int32_t>(kHkeyLocalMachine);
    case TKRegistry_HKEY_CURRENT_USER: return static_cast<std::int32_t>(kHkeyCurrentUser);
    default: return 0;
  }
}

std::string ReadRegistryEntry(std::int32_t hRoot, std::string_view subKey, std::string_view valueName,
                              std::int32_t& status) {
  RegistryStore& reg = GetRegistry();
  std::string result;
  status = 0;
  RegHandle key = 0;
  if (RegStatus rc = reg.OpenKey(static_cast<RegHandle>(hRoot), subKey, RegAccess::QueryValue, key); rc != 0) {
    status = rc;
    return result;
  }
  std::uint32_t type = 0, size = 0;
  if (RegStatus rc = reg.QueryValue(key, valueName, &type, nullptr, &size); rc != 0) {
    status = rc;
  } else if (type == RegType::String) {
    // The text is read into a buffer of size - 1 characters (the reported
    // size counts a terminating NUL).  A string that was stored without its
    // NUL, as WriteRegistryEntry stores them, therefore comes back without
    // its last character; that is how the library has always read them and
    // callers rely on the exact text.  The buffer's own terminator slot
    // makes room for size bytes, so the read itself succeeds.
    if (size >= 1) {
      std::vector<std::uint8_t> buffer(size, 0);
      std::uint32_t length = size;
      status = reg.QueryValue(key, valueName, &type, buffer.data(), &length);
      result = std::string(TrimBlanks(std::string_view(reinterpret_cast<const char*>(buffer.data()), size - 1)));
    }
  } else if (type == RegType::Dword) {
    std::uint8_t bytes[4] = {};
    std::uint32_t length = sizeof bytes;
    status = reg.QueryValue(key, valueName, &type, bytes, &length);
    const std::uint32_t n = bytes[0] | (bytes[1] << 8) | (bytes[2] << 16) | (static_cast<std::uint32_t>(bytes[3]) << 24);
    result = std::to_string(static_cast<std::int32_t>(n));
  } else {
    status = -1;
  }
  const RegStatus closed = reg.CloseKey(key);
  if (status == 0) status = closed;
  return result;
}

void WriteRegistryEntry(std::int32_t hRoot, std::string_view subKey, std::int32_t valueType,
                        std::string_view valueName, const Variant& value) {
  RegistryStore& reg = GetRegistry();
  RegHandle key = 0;
  if (reg.CreateKey(static_cast<RegHandle>(hRoot), subKey, key) != 0) return;
  struct Closer {
    RegistryStore& reg;
    RegHandle key;
    ~Closer() { reg.CloseKey(key); }
  } closer{reg, key};
  if (valueType == static_cast<std::int32_t>(RegType::String)) {
    const std::string text = ToString(value);
    reg.SetValue(key, valueName, RegType::String, reinterpret_cast<const std::uint8_t*>(text.data()),
                 static_cast<std::uint32_t>(text.size()));
  } else if (valueType == static_cast<std::int32_t>(RegType::Dword)) {
    const std::uint32_t n = static_cast<std::uint32_t>(ToLong(Variant(ToString(value))));
    const std::uint8_t bytes[4] = {static_cast<std::uint8_t>(n), static_cast<std::uint8_t>(n >> 8),
                                   static_cast<std::uint8_t>(n >> 16), static_cast<std::uint8_t>(n >> 24)};
    reg.SetValue(key, valueName, RegType::Dword, bytes, sizeof bytes);
  }
}

}  // namespace TessarkAO::Registry

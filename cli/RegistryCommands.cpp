// tktools reg: the library's registry store from the shell.
//
// Every change goes through the store's .reg import, so a `set` is one
// durable transaction with the same checks as a .reg file.
#include <cinttypes>
#include <cstdio>
#include <memory>

#include "Command.hpp"
#include "platform/RegFile.hpp"
#include "platform/Registry.hpp"

namespace TessarkAO::Cli {

namespace {

struct KeyName {
  RegHandle root = 0;
  std::string path;
};

KeyName ParseKey(const std::string& text) {
  const std::size_t slash = text.find('\\');
  KeyName key;
  key.root = RegistryRootFromName(std::string_view(text).substr(0, slash));
  if (key.root == 0)
    throw UsageError("'" + text + "' does not start with a root key (HKEY_CURRENT_USER, HKCU, ...)");
  if (slash != std::string::npos) key.path = text.substr(slash + 1);
  while (!key.path.empty() && key.path.back() == '\\') key.path.pop_back();
  return key;
}

std::string ValueName(const std::string& text) { return text == "@" ? std::string() : text; }

std::string StoreFailure(const RegistryStore& store, RegStatus status) {
  std::string reason = "the registry store answered " + std::to_string(status);
  if (!store.LastError().empty()) reason += ": " + store.LastError();
  return reason;
}

class Store {
 public:
  explicit Store(const Arguments& args) {
    if (args.Has("--registry")) {
      own_ = OpenRegistryStore(args.Value("--registry"));
      store_ = own_.get();
    } else {
      store_ = &GetRegistry();
    }
  }
  RegistryStore& operator*() const { return *store_; }
  RegistryStore* operator->() const { return store_; }

 private:
  std::unique_ptr<RegistryStore> own_;
  RegistryStore* store_ = nullptr;
};

// The data of one value as `get` prints it.
std::string FormatData(std::uint32_t type, const std::vector<std::uint8_t>& data) {
  auto little = [&](std::size_t n) {
    std::uint64_t v = 0;
    for (std::size_t i = n; i-- > 0;) v = (v << 8) | (i < data.size() ? data[i] : 0);
    return v;
  };
  switch (type) {
    case RegType::String:
    case RegType::ExpandString: {
      std::string text(data.begin(), data.end());
      if (!text.empty() && text.back() == '\0') text.pop_back();
      return text;
    }
    case RegType::MultiString: {
      std::string text;
      for (std::uint8_t b : data) text.push_back(b == 0 ? '\n' : static_cast<char>(b));
      while (!text.empty() && text.back() == '\n') text.pop_back();
      return text;
    }
    case RegType::Dword:
      if (data.size() == 4) return std::to_string(little(4));
      break;
    case RegType::Qword:
      if (data.size() == 8) return std::to_string(little(8));
      break;
    default:
      break;
  }
  std::string hex;
  char buf[4];
  for (std::size_t i = 0; i < data.size(); ++i) {
    std::snprintf(buf, sizeof buf, i ? ",%02x" : "%02x", data[i]);
    hex += buf;
  }
  return hex;
}

// The value for `set`: DATA as a string, a dword, or in .reg notation.
RegFileValue MakeValue(const Arguments& args, const std::string& name, const std::string& data) {
  RegFileValue value;
  value.name = name;
  if (args.Has("--dword") && args.Has("--reg-data")) throw UsageError("--dword and --reg-data exclude each other");
  if (args.Has("--reg-data")) {
    // The notation is checked by the .reg parser itself, on a one-value file.
    std::vector<RegFileKey> keys;
    std::string error;
    // Command-line text is UTF-8.
    if (!ParseRegFile("REGEDIT4\n[HKEY_CURRENT_USER\\x]\n\"v\"=" + data + "\n", keys, error, kCodePageUtf8) ||
        keys.size() != 1 || keys[0].values.size() != 1 || keys[0].values[0].remove)
      throw UsageError("'" + data + "' is not value data of a .reg file (dword:0000000c, hex:01,02, \"text\")");
    value.type = keys[0].values[0].type;
    value.data = keys[0].values[0].data;
  } else if (args.Has("--dword")) {
    const bool hex = data.size() > 2 && data[0] == '0' && (data[1] == 'x' || data[1] == 'X');
    const std::string digits = hex ? data.substr(2) : data;
    std::uint64_t n = 0;
    bool ok = !digits.empty() && digits.size() <= 10;
    for (char c : digits) {
      int d = c >= '0' && c <= '9' ? c - '0' : hex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                                             : hex && c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
      if (d < 0) ok = false;
      n = n * (hex ? 16 : 10) + static_cast<std::uint64_t>(d < 0 ? 0 : d);
    }
    if (!ok || n > 0xFFFFFFFFull) throw UsageError("'" + data + "' is not a dword (0 to 4294967295, or 0x0 to 0xffffffff)");
    value.type = RegType::Dword;
    for (int i = 0; i < 4; ++i) value.data.push_back(static_cast<std::uint8_t>(n >> (8 * i)));
  } else {
    value.type = RegType::String;
    value.data.assign(data.begin(), data.end());
    value.data.push_back(0);
  }
  return value;
}

unsigned CodePage(const Arguments& args) {
  if (!args.Has("--codepage")) return kRegFileCodePage;
  const std::string text = args.Value("--codepage");
  unsigned long n = 0;
  for (char c : text) {
    if (c < '0' || c > '9' || n > 99999) throw UsageError("--codepage takes a code page number (1252, 65001, ...)");
    n = n * 10 + static_cast<unsigned>(c - '0');
  }
  if (!RegFileCodePageSupported(static_cast<unsigned>(n)))
    throw UsageError("code page " + text + " is not known here");
  return static_cast<unsigned>(n);
}

// The whole of FILE, or of standard input for "-".
std::string ReadInput(const std::string& path) {
  std::FILE* f = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
  if (!f) throw CommandError("cannot read " + path);
  std::string text;
  char buf[65536];
  std::size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) text.append(buf, n);
  const bool failed = std::ferror(f) != 0;
  if (f != stdin) std::fclose(f);
  if (failed) throw CommandError("cannot read " + path);
  return text;
}

int RegImport(const Arguments& args) {
  if (args.Positionals().size() != 2) throw UsageError("reg import needs one FILE.reg (- for standard input)");
  if (args.Has("--format")) throw UsageError("--format goes with export (import reads either format)");
  const unsigned codePage = CodePage(args);
  const std::string& path = args.Positionals()[1];
  Store store(args);
  const RegStatus status =
      path == "-" ? store->ImportRegText(ReadInput(path), codePage) : store->ImportRegFile(path, codePage);
  if (status != WinError::Success) throw CommandError(StoreFailure(*store, status));
  return 0;
}

int RegExport(const Arguments& args) {
  if (args.Positionals().size() > 2) throw UsageError("reg export takes at most one KEY");
  KeyName key;
  if (args.Positionals().size() == 2) key = ParseKey(args.Positionals()[1]);
  RegFileFormat format = RegFileFormat::Version5;
  if (args.Has("--format")) {
    const std::string f = args.Value("--format");
    if (f != "4" && f != "5") throw UsageError("--format is 4 (REGEDIT4) or 5 (version 5.00)");
    format = f == "4" ? RegFileFormat::Regedit4 : RegFileFormat::Version5;
  }
  if (args.Has("--codepage") && format != RegFileFormat::Regedit4)
    throw UsageError("--codepage goes with --format 4 (version 5.00 files are UTF-16LE)");
  const unsigned codePage = CodePage(args);
  Store store(args);
  std::string text;
  const RegStatus status = store->ExportRegText(key.root, key.path, text, format, codePage);
  if (status == WinError::FileNotFound) throw CommandError("no key " + args.Positionals()[1]);
  if (status != WinError::Success) throw CommandError(StoreFailure(*store, status));
  std::fwrite(text.data(), 1, text.size(), stdout);
  return 0;
}

int RegGet(const Arguments& args) {
  if (args.Positionals().size() != 3) throw UsageError("reg get needs KEY and VALUE");
  const KeyName key = ParseKey(args.Positionals()[1]);
  const std::string name = ValueName(args.Positionals()[2]);
  Store store(args);
  RegHandle handle = 0;
  RegStatus status = store->OpenKey(key.root, key.path, RegAccess::Read, handle);
  if (status == WinError::FileNotFound) throw CommandError("no key " + args.Positionals()[1]);
  if (status != WinError::Success) throw CommandError(StoreFailure(*store, status));
  std::uint32_t type = 0, size = 0;
  status = store->QueryValue(handle, name, &type, nullptr, &size);
  std::vector<std::uint8_t> data(size);
  if (status == WinError::Success && size > 0) status = store->QueryValue(handle, name, &type, data.data(), &size);
  store->CloseKey(handle);
  if (status == WinError::FileNotFound)
    throw CommandError("no value '" + args.Positionals()[2] + "' in " + args.Positionals()[1]);
  if (status != WinError::Success) throw CommandError(StoreFailure(*store, status));
  data.resize(size);
  std::printf("%s\n", FormatData(type, data).c_str());
  return 0;
}

int RegSet(const Arguments& args) {
  if (args.Positionals().size() != 4) throw UsageError("reg set needs KEY, VALUE and DATA");
  RegFileKey section;
  const KeyName key = ParseKey(args.Positionals()[1]);
  if (key.path.empty()) throw UsageError("values are not written straight below a root key");
  section.root = key.root;
  section.path = key.path;
  section.values.push_back(MakeValue(args, ValueName(args.Positionals()[2]), args.Positionals()[3]));
  std::string text, error;
  if (!WriteRegFile({section}, RegFileFormat::Version5, kRegFileCodePage, text, error)) throw UsageError(error);
  Store store(args);
  const RegStatus status = store->ImportRegText(text);
  if (status != WinError::Success) throw CommandError(StoreFailure(*store, status));
  return 0;
}

}  // namespace

int RegRun(const std::vector<std::string>& raw) {
  const Arguments args(raw, {"--registry", "--format", "--codepage"}, {"--dword", "--reg-data"});
  if (args.Positionals().empty()) throw UsageError("which action: import, export, get or set?");
  const std::string& action = args.Positionals().front();
  if ((args.Has("--dword") || args.Has("--reg-data")) && action != "set")
    throw UsageError("--dword and --reg-data go with set");
  if ((args.Has("--format") || args.Has("--codepage")) && action != "import" && action != "export")
    throw UsageError("--format and --codepage go with import and export");
  if (action == "import") return RegImport(args);
  if (action == "export") return RegExport(args);
  if (action == "get") return RegGet(args);
  if (action == "set") return RegSet(args);
  throw UsageError("unknown action '" + action + "' (import, export, get or set)");
}

}  // namespace TessarkAO::Cli

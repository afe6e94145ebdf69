// System information off Windows: the POSIX locale, the passwd database,
// stat, fontconfig and the XDG directories, each standing in for the Win32
// call named in SystemInfo.hpp.
#if !defined(_WIN32)

#include "platform/SystemInfo.hpp"

#include <fcntl.h>
#include <fontconfig/fontconfig.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <vector>

#include "platform/posix/Syscalls.hpp"

namespace TessarkAO {

namespace {

std::string EnvOrEmpty(const char* name) {
  const char* v = PosixCalls().getenv(name);
  return v ? std::string(v) : std::string();
}

std::string HomeFolder() {
  std::string home = EnvOrEmpty("HOME");
  if (!home.empty()) return home;
  struct passwd pwd;
  struct passwd* found = nullptr;
  std::vector<char> buf(16384);
  if (PosixCalls().getpwuid_r(PosixCalls().geteuid(), &pwd, buf.data(), buf.size(), &found) == 0 && found &&
      found->pw_dir)
    return found->pw_dir;
  return {};
}

// An XDG directory variable: only absolute paths count; otherwise the
// fallback below the home folder.
std::string XdgDirectory(const char* variable, const char* fallbackBelowHome) {
  std::string v = EnvOrEmpty(variable);
  if (!v.empty() && v.front() == '/') return v;
  std::string home = HomeFolder();
  if (home.empty()) return {};
  return home + "/" + fallbackBelowHome;
}

// XDG_DOCUMENTS_DIR from $XDG_CONFIG_HOME/user-dirs.dirs (lines of the form
// XDG_DOCUMENTS_DIR="$HOME/Documents"); the home folder when it is not set,
// as xdg-user-dir answers.
std::string DocumentsFolder() {
  const std::string home = HomeFolder();
  const std::string config = XdgDirectory("XDG_CONFIG_HOME", ".config");
  std::string result = home;
  if (config.empty()) return result;
  const std::string file = config + "/user-dirs.dirs";
  const int fd = PosixCalls().open(file.c_str(), O_RDONLY | O_CLOEXEC, 0);
  if (fd < 0) return result;
  std::string text;
  char buf[4096];
  for (;;) {
    const ssize_t n = PosixCalls().read(fd, buf, sizeof buf);
    if (n <= 0 || text.size() > (1u << 20)) break;
    text.append(buf, static_cast<std::size_t>(n));
  }
  PosixCalls().close(fd);
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + pos, end - pos);
    pos = end + 1;
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
    constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=";
    if (line.substr(0, kKey.size()) != kKey) continue;
    std::string_view value = line.substr(kKey.size());
    while (!value.empty() && (value.back() == ' ' || value.back() == '\r')) value.remove_suffix(1);
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
    std::string path;
    if (value.substr(0, 5) == "$HOME") {
      path = home + std::string(value.substr(5));
    } else if (!value.empty() && value.front() == '/') {
      path = std::string(value);
    } else {
      continue;  // neither absolute nor below $HOME: not valid in this file
    }
    result = path;
  }
  return result;
}

}  // namespace

bool GetOsVersion(OsVersionRecord&) { return false; }

bool GetLoginName(char* buffer, std::uint32_t capacity, std::uint32_t& length) {
  std::string name;
  struct passwd pwd;
  struct passwd* found = nullptr;
  std::vector<char> buf(16384);
  if (PosixCalls().getpwuid_r(PosixCalls().geteuid(), &pwd, buf.data(), buf.size(), &found) == 0 && found &&
      found->pw_name)
    name = found->pw_name;
  // A uid without a passwd entry (common in containers): the login
  // environment's name, when it has one.
  if (name.empty()) name = EnvOrEmpty("LOGNAME");
  if (name.empty()) name = EnvOrEmpty("USER");
  if (name.empty()) {
    length = 0;
    return false;
  }
  const std::uint32_t needed = static_cast<std::uint32_t>(name.size()) + 1;
  if (buffer == nullptr || capacity < needed) {
    length = needed;
    return false;
  }
  std::memcpy(buffer, name.c_str(), needed);
  length = needed;
  return true;
}

std::uint32_t GetSystemDefaultLcid() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const std::string value = EnvOrEmpty(variable);
    if (!value.empty()) return LcidFromLocaleName(value);
  }
  return LcidFromLocaleName("C");
}

std::int32_t FileExistenceError(std::string_view path) {
  if (path.empty()) return 2;
  std::string p(path.substr(0, path.find('\0')));
  for (char& c : p)
    if (c == '\\') c = '/';
  struct ::stat st;
  if (PosixCalls().stat(p.c_str(), &st) != 0) {
    switch (errno) {
      case ENOTDIR: return 3;
      case EACCES:
      case EPERM: return 5;
      case ENOENT: {
        // No such file: 3 when the folder it would be in is missing too.
        const std::size_t slash = p.find_last_of('/');
        if (slash == std::string::npos || slash == 0) return 2;
        struct ::stat dir;
        return PosixCalls().stat(p.substr(0, slash).c_str(), &dir) == 0 ? 2 : 3;
      }
      case ENAMETOOLONG: return 206;
      default: return 2;
    }
  }
  // The existence test opens the file; a folder cannot be opened so.
  return S_ISDIR(st.st_mode) ? 5 : 0;
}

namespace {

// Fontconfig's answer for the default sans-serif face, asked once per
// process with a private configuration that is freed at once (the global
// one would live until exit).
struct FontconfigAnswer {
  bool found = false;
  std::string family;
  double pixels = 0;
  double dpi = 0;
  int weight = FC_WEIGHT_REGULAR;
  int slant = FC_SLANT_ROMAN;
};

FontconfigAnswer AskFontconfig() {
  FontconfigAnswer answer;
  FcConfig* config = FcInitLoadConfigAndFonts();
  if (!config) return answer;
  if (FcPattern* pattern = FcNameParse(reinterpret_cast<const FcChar8*>("sans-serif"))) {
    FcConfigSubstitute(config, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    if (FcPattern* match = FcFontMatch(config, pattern, &result)) {
      FcChar8* family = nullptr;
      if (FcPatternGetString(match, FC_FAMILY, 0, &family) == FcResultMatch && family) {
        answer.family = reinterpret_cast<const char*>(family);
        answer.found = true;
      }
      double size = 0;
      if (FcPatternGetDouble(pattern, FC_DPI, 0, &answer.dpi) != FcResultMatch || answer.dpi <= 0) answer.dpi = 96;
      if (FcPatternGetDouble(match, FC_PIXEL_SIZE, 0, &answer.pixels) != FcResultMatch || answer.pixels <= 0) {
        if (FcPatternGetDouble(match, FC_SIZE, 0, &size) != FcResultMatch || size <= 0) size = 10;
        answer.pixels = size * answer.dpi / 72.0;
      }
      FcPatternGetInteger(match, FC_WEIGHT, 0, &answer.weight);
      FcPatternGetInteger(match, FC_SLANT, 0, &answer.slant);
      FcPatternDestroy(match);
    }
    FcPatternDestroy(pattern);
  }
  FcConfigDestroy(config);
  return answer;
}

}  // namespace

bool GetDefaultGuiFont(GuiFontMetrics& font) {
  static const FontconfigAnswer answer = AskFontconfig();
  if (!answer.found) return false;
  font.faceName = answer.family;
  font.pixelsPerInch = static_cast<std::int32_t>(std::lround(answer.dpi));
  // The metrics' height is in whole pixels, as a device context reports it.
  font.height = static_cast<std::int32_t>(std::lround(answer.pixels));
  font.weight = FcWeightToOpenType(answer.weight);
  if (font.weight <= 0) font.weight = 400;
  font.italic = answer.slant != FC_SLANT_ROMAN;
  font.underline = false;
  font.strikeOut = false;
  // A Japanese system's interface font carries the Shift-JIS set.
  font.charset = GetSystemDefaultLcid() == 1041 ? 128 : 0;
  return true;
}

std::int32_t GetSpecialFolder(std::int32_t folder, std::string& path) {
  constexpr std::int32_t kInvalidArg = static_cast<std::int32_t>(0x80070057u);
  constexpr std::int32_t kFail = static_cast<std::int32_t>(0x80004005u);
  path.clear();
  std::string p;
  switch (folder) {
    case SpecialFolder::AppData:
      p = XdgDirectory("XDG_CONFIG_HOME", ".config");
      break;
    case SpecialFolder::CommonAppData: {
      // The first absolute entry of XDG_DATA_DIRS, else its default.
      const std::string dirs = EnvOrEmpty("XDG_DATA_DIRS");
      std::size_t pos = 0;
      while (pos <= dirs.size() && p.empty()) {
        std::size_t end = dirs.find(':', pos);
        if (end == std::string::npos) end = dirs.size();
        if (end > pos && dirs[pos] == '/') p = dirs.substr(pos, end - pos);
        pos = end + 1;
      }
      if (p.empty()) p = "/usr/local/share";
      break;
    }
    case SpecialFolder::Personal:
      p = DocumentsFolder();
      break;
    default:
      return kInvalidArg;
  }
  while (p.size() > 1 && p.back() == '/') p.pop_back();
  if (p.empty() || p.size() >= 260) return kFail;
  path = std::move(p);
  return 0;
}

std::optional<std::string> GetEnvironment(std::string_view name) {
  if (name.empty() || name.find('=') != std::string_view::npos || name.find('\0') != std::string_view::npos)
    return std::nullopt;
  const char* v = PosixCalls().getenv(std::string(name).c_str());
  if (!v) return std::nullopt;
  return std::string(v);
}

}  // namespace TessarkAO

#endif

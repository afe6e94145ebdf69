#include "Streams.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Command.hpp"

namespace TessarkAO::Cli {

namespace {

// Makes an empty temporary file from `pattern` (ending in XXXXXX + suffix);
// `what` names the file for the error.
std::string MakeTemporary(std::string pattern, const std::string& suffix, const std::string& what) {
  pattern += "XXXXXX" + suffix;
  const int fd = ::mkstemps(pattern.data(), static_cast<int>(suffix.size()));
  if (fd < 0) throw CommandError("cannot write " + what + ": " + std::strerror(errno));
  ::close(fd);
  return pattern;
}

std::string TemporaryFolder() {
  const char* dir = std::getenv("TMPDIR");
  return dir && *dir ? dir : "/tmp";
}

bool Copy(std::FILE* from, std::FILE* to) {
  char buf[65536];
  std::size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, from)) > 0)
    if (std::fwrite(buf, 1, n, to) != n) return false;
  return std::ferror(from) == 0;
}

}  // namespace

InputFile::InputFile(const std::string& arg, const std::string& suffix) : path_(arg) {
  if (arg != "-") return;
  path_ = MakeTemporary(TemporaryFolder() + "/tktools-stdin-", suffix, "a temporary file");
  temporary_ = true;
  std::FILE* out = std::fopen(path_.c_str(), "wb");
  const bool ok = out && Copy(stdin, out);
  if (!out || std::fclose(out) != 0 || !ok) throw CommandError("cannot read standard input");
}

InputFile::~InputFile() {
  if (temporary_) ::unlink(path_.c_str());
}

OutputFile::OutputFile(std::string arg, const std::string& suffix) : target_(std::move(arg)) {
  if (target_ == "-") {
    path_ = MakeTemporary(TemporaryFolder() + "/tktools-stdout-", suffix, "a temporary file");
  } else {
    const std::size_t slash = target_.rfind('/');
    const std::string dir = slash == std::string::npos ? "." : target_.substr(0, slash);
    path_ = MakeTemporary(dir + "/.tktools-", suffix, target_);
  }
}

OutputFile::~OutputFile() {
  if (!committed_) ::unlink(path_.c_str());
}

void OutputFile::Commit() {
  if (target_ != "-") {
    // A temporary file is private; the result gets the usual permissions.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::chmod(path_.c_str(), 0666 & ~mask);
    if (std::rename(path_.c_str(), target_.c_str()) != 0)
      throw CommandError("cannot write " + target_ + ": " + std::strerror(errno));
    committed_ = true;
    return;
  }
  std::FILE* in = std::fopen(path_.c_str(), "rb");
  const bool ok = in && Copy(in, stdout);
  if (in) std::fclose(in);
  if (!ok || std::fflush(stdout) != 0) throw CommandError("cannot write standard output");
}

}  // namespace TessarkAO::Cli

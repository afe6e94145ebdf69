// "-" for standard input or output wherever a command reads or writes a
// file.  The library's tools read and write files by name, so standard
// input is first copied into a temporary file, and a result meant for
// standard output is written to a temporary file and copied out afterwards.
#pragma once

#include <string>

namespace TessarkAO::Cli {

// A file name for `arg`: `arg` itself, or for "-" a temporary file holding
// all of standard input (removed when the object goes).  `suffix` is the
// temporary file's extension, for tools that look at it.
class InputFile {
 public:
  explicit InputFile(const std::string& arg, const std::string& suffix = "");
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;
  const std::string& Path() const noexcept { return path_; }

 private:
  std::string path_;
  bool temporary_ = false;
};

// A file name to write the result of `arg` to: for a name, a temporary file
// beside it (so that a tool that adds an extension or fails half-way never
// leaves a wrong file behind); for "-", one in the temporary folder.
// Commit() moves it to the exact name given, or copies it to standard output.
class OutputFile {
 public:
  explicit OutputFile(std::string arg, const std::string& suffix = "");
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  const std::string& Path() const noexcept { return path_; }
  void Commit();

 private:
  std::string target_;
  std::string path_;
  bool committed_ = false;
};

}  // namespace TessarkAO::Cli

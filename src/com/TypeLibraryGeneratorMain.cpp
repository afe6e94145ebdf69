// The build's type-library generator: writes the IDL of the served classes,
// the string-table resource script and the list of served ProgIDs (which the
// Windows tests read), from the same member tables and string table that the
// server DLL is linked from.
//
//     tk_typelib_generator <out.idl> <out.rc> <served.txt>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "com/TypeLibraryWriter.hpp"
#include "frame/StringTable.hpp"

namespace {

bool WriteFile(const char* path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  out.close();
  if (!out) {
    std::cerr << "tk_typelib_generator: cannot write " << path << "\n";
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace TessarkAO;
  if (argc != 4) {
    std::cerr << "usage: tk_typelib_generator <out.idl> <out.rc> <served.txt>\n";
    return 2;
  }
  std::vector<std::string> failures;
  const std::vector<Com::ServedClass> classes = Com::ServedClasses(&failures);
  if (!failures.empty()) {
    // A class with a factory that cannot be created would silently drop out
    // of the server: the build stops and says which.
    for (const std::string& f : failures) std::cerr << "tk_typelib_generator: cannot create " << f << "\n";
    return 1;
  }
  if (!WriteFile(argv[1], Com::WriteIdl(Com::ServerTypeLibrary(), classes))) return 1;
  if (!WriteFile(argv[2], Com::WriteStringTableScript(StringTableEntries()))) return 1;
  std::string served;
  for (const Com::ServedClass& c : classes) served += std::string(c.record->progId) + "\n";
  if (!WriteFile(argv[3], served)) return 1;
  std::cout << "tk_typelib_generator: " << classes.size() << " of " << Catalogue().size()
            << " classes served\n";
  return 0;
}

// The call-behaviour rows (rows.inc) parsed for the C++ front ends: the
// native runtime's test and the Windows adapter's test under Wine.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace TessarkAO::Testing {

inline constexpr const char* kCallRows =
#include "rows.inc"
    ;

struct CallRow {
  std::string text;  // the line, for messages
  std::string kind;
  std::string member;
  std::vector<std::string> args;
  std::string expect;                                 // "=L5", "!13", "!440:text"
  std::vector<std::pair<int, std::string>> outputs;   // (1-based argument, value)
  int ErrorNumber() const { return expect[0] == '!' ? std::stoi(expect.substr(1)) : 0; }
  std::string ErrorText() const {
    const auto colon = expect.find(':');
    return colon == std::string::npos ? std::string() : expect.substr(colon + 1);
  }
};

inline std::vector<CallRow> CallRows() {
  std::vector<CallRow> rows;
  std::istringstream in(kCallRows);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    CallRow r;
    r.text = line;
    const auto arrow = line.find(" -> ");
    std::istringstream call(line.substr(0, arrow)), result(line.substr(arrow + 4));
    call >> r.kind >> r.member;
    for (std::string a; call >> a;) r.args.push_back(a);
    result >> r.expect;
    std::string after = line.substr(arrow + 4 + r.expect.size());
    // The error text runs to the end of the line.
    if (r.expect[0] == '!' && r.expect.find(':') != std::string::npos) r.expect += after, after.clear();
    std::istringstream outs(after);
    for (std::string o; outs >> o;) r.outputs.emplace_back(std::stoi(o.substr(3)), o.substr(o.find('=') + 1));
    rows.push_back(r);
  }
  return rows;
}

}  // namespace TessarkAO::Testing

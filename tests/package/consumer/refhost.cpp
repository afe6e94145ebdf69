// The reference host from the installed package: a new application's page.
#include <refhost/RefHost.hpp>

#include <cstdio>

int main() {
  using namespace TessarkAO;
  Variant app(RefHost::NewApplication());
  std::printf("%s\n", app.Get("ActivePage").Get("Name").AsString().c_str());
  return 0;
}

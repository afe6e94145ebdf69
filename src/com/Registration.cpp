#include "com/Registration.hpp"

namespace TessarkAO::Com {

namespace {

std::string Version(const TypeLibraryInfo& lib) {
  return std::to_string(lib.major) + "." + std::to_string(lib.minor);
}

// The folder part of a Windows path, without the trailing separator.
std::string Folder(std::string_view path) {
  const std::size_t slash = path.find_last_of("\\/");
  return slash == std::string_view::npos ? std::string() : std::string(path.substr(0, slash));
}

void AddInterface(std::vector<RegistryValue>& out, std::string_view iid, std::string_view className,
                  const TypeLibraryInfo& lib) {
  const std::string key = "Interface\\" + std::string(iid);
  out.push_back({key, "", "_" + std::string(className)});
  out.push_back({key + "\\ProxyStubClsid", "", std::string(kDispatchProxyStub)});
  out.push_back({key + "\\ProxyStubClsid32", "", std::string(kDispatchProxyStub)});
  out.push_back({key + "\\TypeLib", "", std::string(lib.libid)});
  out.push_back({key + "\\TypeLib", "Version", Version(lib)});
}

}  // namespace

std::vector<RegistryValue> RegistrationValues(std::span<const ServedClass> classes,
                                              std::string_view modulePath, const TypeLibraryInfo& lib) {
  std::vector<RegistryValue> out;
  const std::string path(modulePath);
  for (const ServedClass& c : classes) {
    const ClassRecord& r = *c.record;
    const std::string progId(r.progId);
    const std::string clsidKey = "CLSID\\" + std::string(r.clsid);
    out.push_back({clsidKey, "", progId});
    out.push_back({clsidKey + "\\InprocServer32", "", path});
    out.push_back({clsidKey + "\\InprocServer32", "ThreadingModel", "Apartment"});
    out.push_back({clsidKey + "\\ProgID", "", progId});
    out.push_back({clsidKey + "\\VERSION", "", Version(lib)});
    out.push_back({clsidKey + "\\TypeLib", "", std::string(lib.libid)});
    out.push_back({clsidKey + "\\Programmable", "", ""});
    out.push_back({progId, "", progId});
    out.push_back({progId + "\\Clsid", "", std::string(r.clsid)});
    AddInterface(out, r.iid, r.name, lib);
    for (std::string_view earlier : r.earlierIids) AddInterface(out, earlier, r.name, lib);
  }
  const std::string libKey = "TypeLib\\" + std::string(lib.libid) + "\\" + Version(lib);
  out.push_back({libKey, "", std::string(lib.helpString)});
  out.push_back({libKey + "\\0\\" + std::string(kTypeLibraryPlatform), "", path});
  out.push_back({libKey + "\\FLAGS", "", "0"});
  out.push_back({libKey + "\\HELPDIR", "", Folder(path)});
  return out;
}

std::string TypeLibraryPlatformKey(const TypeLibraryInfo& lib, std::string_view platform) {
  return "TypeLib\\" + std::string(lib.libid) + "\\" + Version(lib) + "\\0\\" + std::string(platform);
}

std::vector<std::string> RegistrationTrees(std::span<const ClassRecord> catalogue, const TypeLibraryInfo& lib) {
  std::vector<std::string> out;
  for (const ClassRecord& r : catalogue) {
    out.push_back("CLSID\\" + std::string(r.clsid));
    out.push_back(std::string(r.progId));
    out.push_back("Interface\\" + std::string(r.iid));
    for (std::string_view earlier : r.earlierIids) out.push_back("Interface\\" + std::string(earlier));
  }
  out.push_back("TypeLib\\" + std::string(lib.libid));
  return out;
}

}  // namespace TessarkAO::Com

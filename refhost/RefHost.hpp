// The reference host: an in-memory model of the host CAD application's scene
// object model, called late-bound by member name exactly as the real host is.
//
// Every host object (application, page, shape, component, variable, path,
// curve, collection) is an automation Object with a member table; an unknown
// member raises 438, and wrong arguments raise what the host raises (13 for a
// value of the wrong type, 9 for an index out of range, 5 for a value the host
// does not accept).  Scenes load from and save to JSON files (the schema is in
// refhost/README.md), and a call journal records every member call made on a
// host object while it is switched on.
//
//     Ref<Object> app = RefHost::NewApplication();
//     Variant root = Variant(app).Get("ActivePage").Get("Shape");
//     Variant part = root.Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
//     RefHost::StartJournal();
//     ... drive the library ...
//     std::printf("%s", RefHost::FormatJournal(RefHost::Journal()).c_str());
#pragma once

#include <string>
#include <vector>

#include "automation/Object.hpp"
#include "automation/Variant.hpp"

namespace TessarkAO::RefHost {

// An application with one empty page named "Scene1".  The page's root shape
// has an empty name, shape type 1, the studio marker (component 18) and an
// empty group component (2) that receives the scene's top-level shapes.
Ref<Object> NewApplication();

// An application holding the pages of a scene file.  A file that cannot be
// read raises 53 (not found) or 75 (access); a malformed or inconsistent file
// raises 321 with a description that names the place (file, line and column
// for syntax errors, the JSON path for content errors) and loads nothing.
Ref<Object> LoadScene(const std::string& path);
Ref<Object> LoadSceneFromString(const std::string& json);

// Writes the application's pages as a scene file; 13 when `application` is
// not a reference-host application, 75 when the file cannot be written.
void SaveScene(const Ref<Object>& application, const std::string& path);
std::string SaveSceneToString(const Ref<Object>& application);

// One member call made on a host object while the journal was on.
struct JournalEntry {
  std::string object;  // the callee, e.g. "Scene1//Assembly//Part.Components(4).Item(1)"
  std::string member;  // the member's name as the host declares it ("Variable")
  CallKind kind;
  std::vector<Variant> args;  // the arguments as passed (by-reference ones as they were on entry)
};

// The journal is process-wide and off at start.  Starting it does not clear it.
void StartJournal();
void StopJournal();
void ClearJournal();
bool JournalIsOn();
std::vector<JournalEntry> Journal();

// One line per call, "kind object.Member(args) = value", for failure messages
// and the command line.
std::string FormatJournal(const std::vector<JournalEntry>& entries);
// One argument as FormatJournal writes it: 2.5 (Double), 3& (Long), 3% (Integer),
// True, "text", Nothing, Empty, Missing, an object by its journal name.
std::string FormatJournalValue(const Variant& value);

// The journal name of a host object ("Scene1//Part"); its type name for
// other objects.
std::string DescribeObject(const Ref<Object>& object);

}  // namespace TessarkAO::RefHost

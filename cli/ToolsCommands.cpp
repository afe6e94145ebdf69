// tktools import-bspline and export-bom: the import and export tools of the
// library on files, with the headless user interface answering the dialogs.
#include <cstdio>
#include <fstream>
#include <sstream>

#include "Command.hpp"
#include "Streams.hpp"
#include "automation/Call.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "platform/UserInterface.hpp"
#include "refhost/BomData.hpp"
#include "refhost/RefHost.hpp"
#include "scene/Functions.hpp"
#include "scene/Scene.hpp"

namespace TessarkAO::Cli {

namespace {

// The messages shown since `from`, as one line for an error.
std::string ExclamationsSince(std::size_t from) {
  std::string text;
  const std::vector<MessageRecord> messages = GetHeadlessUserInterface()->Messages();
  for (std::size_t i = from; i < messages.size(); ++i)
    if (messages[i].icon != MessageIcon::Information) {
      std::string t = messages[i].text;
      for (char& c : t)
        if (c == '\r' || c == '\n') c = ' ';
      text += (text.empty() ? "" : "; ") + t;
    }
  return text;
}

// The import changes only the scene in memory: without --save nothing
// would be kept.  At most one of the files is standard input.
void CheckImportStreams(const Arguments& args) {
  if (!args.Has("--save")) throw UsageError("--save OUT.json is needed (nothing is kept otherwise)");
  if (args.Value("--scene") == "-" && args.Positionals().front() == "-")
    throw UsageError("only one of POINTS.txt and --scene can be standard input");
}

void SaveImportedScene(const Ref<Object>& app, const std::string& target) {
  OutputFile out(target, ".json");
  RefHost::SaveScene(app, out.Path());
  out.Commit();
}

}  // namespace

// Makes the one shape of `page` called `name` (its name, or its path and
// name) the page's only selected item; none or several is a command error.
void SelectOnlyShapeNamed(const Variant& page, const std::string& name) {
  class Finder final : public Scene::ShapeVisitor {
   public:
    explicit Finder(const std::string& wanted) : wanted_(wanted) {}
    void Visit(const Variant& shape, std::int32_t depth, std::int32_t) override {
      if (depth == 0) return;
      const std::string n = ToString(shape.Get("Name"));
      if (n == wanted_ || Functions::ShapePathOf(shape) + n == wanted_) found.push_back(shape);
    }
    std::vector<Variant> found;

   private:
    const std::string& wanted_;
  } finder(name);
  Scene::WalkShapes(page.Get("Shape"), finder);
  if (finder.found.empty()) throw CommandError("no shape '" + name + "' in the active page");
  if (finder.found.size() > 1) throw CommandError("several shapes are named '" + name + "': give the full path");
  const Variant selection = page.Get("SelectedItems");
  selection.Call("Clear");
  selection.Call("Add", finder.found.front());
}

int ImportBSplineByDialog(const std::string& scene, const std::string& select, const std::string& save);

namespace {

int ImportBSplineCommand(const std::vector<std::string>& raw) {
  const Arguments args(raw, {"--scene", "--select", "--save"});
  // Without a points file the import dialog asks for one (WindowCommands.cpp).
  if (args.Positionals().empty()) {
    const int status = ImportBSplineByDialog(args.Value("--scene"), args.Value("--select"), args.Value("--save"));
    if (!args.Has("--save")) std::fprintf(stderr, "tktools import-bspline: nothing was saved (--save OUT.json keeps the scene)\n");
    return status;
  }
  if (args.Positionals().size() != 1) throw UsageError("one POINTS.txt file is needed");
  if (!args.Has("--scene")) throw UsageError("--scene is needed");
  if (!args.Has("--select")) throw UsageError("--select is needed");
  CheckImportStreams(args);
  HeadlessUserInterface* ui = GetHeadlessUserInterface();
  if (!ui) throw CommandError("the user interface is not the headless one");

  const InputFile sceneFile(args.Value("--scene"), ".json");
  const InputFile pointsFile(args.Positionals().front(), ".txt");
  const Ref<Object> app = LoadSceneOrFail(sceneFile.Path());
  const Variant page = Variant(app).Get("ActivePage");
  SelectOnlyShapeNamed(page, args.Value("--select"));

  const std::size_t before = ui->Messages().size();
  ui->QueueFile(pointsFile.Path());
  ui->QueueButton("Import");
  Ref<Object> imports = CreateObject("TessarkAO.TKImports");
  Variant call[] = {Variant(app)};
  Call(*imports, "ImportBSpline", CallKind::Method, call);
  const std::string problems = ExclamationsSince(before);
  if (!problems.empty()) throw CommandError(problems);
  if (ui->Messages().size() == before) throw CommandError("the file cannot be opened or holds no valid points");

  SaveImportedScene(app, args.Value("--save"));
  return 0;
}

// The rows of a CSV text (RFC 4180 quoting).
std::vector<std::vector<std::string>> ReadCsv(const std::string& text) {
  std::vector<std::vector<std::string>> rows(1);
  std::string field;
  bool quoted = false, any = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quoted) {
      if (c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
        field += '"';
        ++i;
      } else if (c == '"') {
        quoted = false;
      } else {
        field += c;
      }
    } else if (c == '"') {
      quoted = any = true;
    } else if (c == ',') {
      rows.back().push_back(std::move(field));
      field.clear();
      any = true;
    } else if (c == '\n' || c == '\r') {
      if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      rows.back().push_back(std::move(field));
      field.clear();
      rows.emplace_back();
      any = false;
    } else {
      field += c;
      any = true;
    }
  }
  if (quoted) throw CommandError("the CSV file ends inside a quoted field");
  if (any || !field.empty()) rows.back().push_back(std::move(field));
  while (!rows.empty() && rows.back().empty()) rows.pop_back();
  return rows;
}

// -?(0|[1-9][0-9]*)(.[0-9]+)?([eE][+-]?[0-9]+)?: the way a number is
// written, so that codes such as 007 or +1 keep their text.
bool WrittenAsNumber(std::string_view f) {
  std::size_t i = 0;
  auto digits = [&] {
    const std::size_t start = i;
    while (i < f.size() && f[i] >= '0' && f[i] <= '9') ++i;
    return i - start;
  };
  if (i < f.size() && f[i] == '-') ++i;
  const std::size_t intStart = i;
  const std::size_t intDigits = digits();
  if (intDigits == 0 || (intDigits > 1 && f[intStart] == '0')) return false;
  if (i < f.size() && f[i] == '.') {
    ++i;
    if (digits() == 0) return false;
  }
  if (i < f.size() && (f[i] == 'e' || f[i] == 'E')) {
    ++i;
    if (i < f.size() && (f[i] == '+' || f[i] == '-')) ++i;
    if (digits() == 0) return false;
  }
  return i == f.size();
}

// A bill-of-materials table over the cells of a CSV file: a field written
// as a number is a number, anything else is text; the first row is bold.
Ref<RefHost::BomData> CsvTable(std::vector<std::vector<std::string>> rows, std::string file) {
  RefHost::BomData::Source source;
  source.filename = std::move(file);
  source.rows = static_cast<std::int32_t>(rows.size());
  for (const auto& r : rows) source.columns = std::max(source.columns, static_cast<std::int32_t>(r.size()));
  source.cell = [rows = std::move(rows)](std::int32_t r, std::int32_t c) {
    const auto& row = rows.at(static_cast<std::size_t>(r - 1));
    if (c < 1 || static_cast<std::size_t>(c) > row.size()) return Variant();
    const std::string& f = row[static_cast<std::size_t>(c - 1)];
    double v;
    if (WrittenAsNumber(f) && ParseNumber(f, NumberLocale{}, v) == 0) return Variant(v);
    return Variant(f);
  };
  source.fontFormat = [](std::int32_t r, std::int32_t) { return r == 1 ? 1 : 0; };
  return MakeRef<RefHost::BomData>(std::move(source));
}

int ExportBomCommand(const std::vector<std::string>& raw) {
  const Arguments args(raw, {});
  if (args.Positionals().size() != 2) throw UsageError("BOM.csv and OUT.xlsx are needed");
  const InputFile csv(args.Positionals()[0]);
  std::ifstream in(csv.Path(), std::ios::binary);
  if (!in) throw CommandError("cannot open '" + args.Positionals()[0] + "'");
  std::ostringstream text;
  text << in.rdbuf();
  // The workbook is saved under a name of the spreadsheet's liking (with
  // its extension) and then given exactly the name asked for.
  OutputFile out(args.Positionals()[1], ".xlsx");
  Ref<RefHost::BomData> table = CsvTable(ReadCsv(text.str()), out.Path());
  if (table->Columns() > 26) throw CommandError("the exporter writes at most 26 columns (A to Z)");

  HeadlessUserInterface* ui = GetHeadlessUserInterface();
  const std::size_t before = ui ? ui->Messages().size() : 0;
  Ref<Object> exports = CreateObject("TessarkAO.TKExports");
  Variant call[] = {Variant(table)};
  Call(*exports, "ExportBOMToExcel", CallKind::Method, call);
  if (ui) {
    const std::string problems = ExclamationsSince(before);
    if (!problems.empty()) throw CommandError(problems);
  }
  out.Commit();
  return 0;
}

}  // namespace

int ImportBSplineRun(const std::vector<std::string>& args) { return ImportBSplineCommand(args); }
int ExportBomRun(const std::vector<std::string>& args) { return ExportBomCommand(args); }

}  // namespace TessarkAO::Cli

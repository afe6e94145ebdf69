// tktools view, and tktools import-bspline without a points file: the
// library's dialogs in front of a person, on a reference-host scene.  With a
// display they are windows; headless (TESSARKAO_UI=headless, or no display)
// they close at once through the title-bar control, as scripts expect.
#include <cstdio>

#include "Command.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Members.hpp"
#include "platform/UserInterface.hpp"
#include "refhost/RefHost.hpp"
#include "scene/Functions.hpp"
#include "scene/Scene.hpp"

namespace TessarkAO::Cli {

namespace {

Variant PageNamed(const Ref<Object>& app, const std::string& name) {
  const Variant application(app);
  if (name.empty()) return application.Get("ActivePage");
  const Variant pages = application.Get("Pages");
  const std::int32_t count = ToLong(pages.Get("Count"));
  for (std::int32_t i = 1; i <= count; ++i) {
    Variant page = pages.Call("Item", i);
    if (ToString(page.Get("Name")) == name) return page;
  }
  throw CommandError("the scene has no page '" + name + "'");
}

}  // namespace

int ViewRun(const std::vector<std::string>& raw) {
  const Arguments args(raw, {"--page"});
  if (args.Positionals().size() != 1) throw UsageError("one SCENE.json file is needed");
  const Ref<Object> app = LoadSceneOrFail(args.Positionals().front());
  const Variant page = PageNamed(app, args.Value("--page"));
  Ref<Object> utils = CreateObject("TessarkAO.DialogUtils");
  Variant pageArg[] = {page};
  utils->Invoke("Page", CallKind::Set, pageArg);
  Variant call[] = {Variant(std::int32_t{707}), Variant(std::int32_t{808})};
  utils->Invoke("GetCLSID", CallKind::Method, call);
  if (HeadlessUserInterface* ui = GetHeadlessUserInterface()) {
    const std::vector<DialogRecord> shown = ui->Shown();
    if (!shown.empty()) std::fputs(shown.back().text.c_str(), stdout);
  }
  return 0;
}

// import-bspline SCENE.json-less form: the dialog asks for the file.
// In ToolsCommands.cpp.
void SelectOnlyShapeNamed(const Variant& page, const std::string& name);

int ImportBSplineByDialog(const std::string& scene, const std::string& select, const std::string& save) {
  if (scene.empty()) throw UsageError("--scene is needed");
  if (select.empty()) throw UsageError("--select is needed");
  const Ref<Object> app = LoadSceneOrFail(scene);
  const Variant page = Variant(app).Get("ActivePage");
  SelectOnlyShapeNamed(page, select);
  Ref<Object> imports = CreateObject("TessarkAO.TKImports");
  Variant call[] = {Variant(app)};
  imports->Invoke("ImportBSpline", CallKind::Method, call);
  if (!save.empty()) RefHost::SaveScene(app, save);
  return 0;
}

}  // namespace TessarkAO::Cli

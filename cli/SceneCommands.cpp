// tktools tree: the scene viewer's text tree of a scene file.
#include <cstdio>

#include "Command.hpp"
#include "Streams.hpp"
#include "automation/AutomationError.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"
#include "refhost/RefHost.hpp"
#include "scene/SceneViewer.hpp"

namespace TessarkAO::Cli {

namespace {

int TreeCommand(const std::vector<std::string>& raw) {
  const Arguments args(raw, {"--page"});
  if (args.Positionals().size() != 1) throw UsageError("one scene file is needed");
  const InputFile scene(args.Positionals().front(), ".json");
  const Ref<Object> app = LoadSceneOrFail(scene.Path());
  const Variant application(app);
  const std::string wanted = args.Value("--page");
  std::string text;
  if (wanted == "all") {
    const Variant pages = application.Get("Pages");
    const std::int32_t count = ToLong(pages.Get("Count"));
    for (std::int32_t i = 1; i <= count; ++i) {
      const Variant page = pages.Call("Item", i);
      text += "== page " + ToString(page.Get("Name")) + "\n";
      text += SceneViewer(page).Text();
    }
  } else {
    Variant page;
    if (wanted.empty()) {
      page = application.Get("ActivePage");
    } else {
      try {
        page = application.Get("Pages").Call("Item", wanted);
      } catch (const AutomationError&) {
        throw CommandError("the scene has no page '" + wanted + "'");
      }
    }
    text = SceneViewer(page).Text();
  }
  std::fwrite(text.data(), 1, text.size(), stdout);
  return 0;
}

}  // namespace

int TreeRun(const std::vector<std::string>& args) {
  try {
    return TreeCommand(args);
  } catch (const AutomationError& e) {
    // The viewer reads what the scene holds; a part it cannot read is named.
    throw CommandError("cannot show the scene: " + e.Description());
  }
}

}  // namespace TessarkAO::Cli

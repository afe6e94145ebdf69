#include <gtest/gtest.h>

#include "automation/Catalogue.hpp"
#include "refhost/RefHost.hpp"

using namespace TessarkAO;

TEST(Dump, Journal) {
  Ref<Object> app = RefHost::NewApplication();
  Variant page = Variant(app).Get("ActivePage");
  Variant root = page.Get("Shape");
  Variant b(CreateObject("TessarkAO.TKSMFormingShape"));
  b.Get("Position").Let("PosX", 10.0);
  RefHost::ClearJournal();
  RefHost::StartJournal();
  b.Call("Create", root);
  b.Call("Finish");
  RefHost::StopJournal();
  std::printf("%s", RefHost::FormatJournal(RefHost::Journal()).c_str());
  RefHost::ClearJournal();
}

// The application, its pages and each page's selection.
#include <cmath>

#include "automation/Convert.hpp"
#include "refhost/HostModel.hpp"
#include "refhost/RefHost.hpp"

namespace TessarkAO::RefHost {

HostApplication* AsApplication(Object* o) { return dynamic_cast<HostApplication*>(o); }

// ---------------------------------------------------------------------------

void HostApplication::Describe(ClassBuilder<HostApplication>& b) {
  b.Get<&HostApplication::Pages>("Pages")
      .PropertyRef<&HostApplication::ActivePage, &HostApplication::SetActivePage>("ActivePage")
      .Get<&HostApplication::Name>("Name");
}

HostApplication::~HostApplication() {
  for (Ref<HostPage>& p : pages_) p->Detach();
}

Ref<Object> HostApplication::Pages() { return MakeRef<HostPageList>(Ref<HostApplication>(this)); }

Ref<Object> HostApplication::ActivePage() const { return Ref<Object>(active_); }

void HostApplication::SetActivePage(Ref<Object> page) {
  auto* p = dynamic_cast<HostPage*>(page.get());
  if (!p || p->App() != this) Raise(Err::InvalidCall, "The page does not belong to this application");
  active_ = p;
}

std::int32_t HostApplication::NextSystemID() {
  if (nextId_ == 0x7fffffff) Raise(Err::Overflow);
  return nextId_++;
}

Ref<HostPage> HostApplication::AddPage(std::string name) {
  auto page = MakeRef<HostPage>(this, std::move(name));
  auto root = MakeRef<HostShape>(ShapeType::Assembly, NextSystemID(), std::string());
  root->AddComponent(ComponentType::Studio);
  root->AddComponent(ComponentType::Group);
  page->SetRoot(root);
  pages_.push_back(page);
  if (!active_) active_ = page.get();
  return page;
}

// ---------------------------------------------------------------------------

void HostPageList::Describe(ClassBuilder<HostPageList>& b) {
  b.Get<&HostPageList::Count>("Count")
      .Method<&HostPageList::Item>("Item", Names{"Index"})
      .Default()
      .Method<&HostPageList::Add>("Add", Names{"Name"}, Opt{Variant::Missing()});
}

Ref<Object> HostPageList::Item(const Variant& indexOrName) const {
  auto& pages = app_->PageList();
  if (indexOrName.Type() == VarType::String) {
    for (const Ref<HostPage>& p : pages)
      if (EqualsNoCase(p->Name(), indexOrName.AsString())) return p;
    Raise(Err::SubscriptOutOfRange);
  }
  const std::int32_t i = ToLong(indexOrName);
  if (i < 1 || i > Count()) Raise(Err::SubscriptOutOfRange);
  return pages[static_cast<std::size_t>(i - 1)];
}

Ref<Object> HostPageList::Add(const Variant& name) {
  std::string n;
  if (name.IsMissing()) {
    for (int k = Count() + 1;; ++k) {
      n = "Scene" + std::to_string(k);
      bool taken = false;
      for (const Ref<HostPage>& p : app_->PageList()) taken = taken || EqualsNoCase(p->Name(), n);
      if (!taken) break;
    }
  } else {
    n = ToString(name);
  }
  return app_->AddPage(std::move(n));
}

// ---------------------------------------------------------------------------

void HostPage::Describe(ClassBuilder<HostPage>& b) {
  b.Property<&HostPage::Name, &HostPage::LetName>("Name")
      .Get<&HostPage::Shape>("Shape")
      .Get<&HostPage::UnitsScale>("UnitsScale", Names{"Kind"})
      .Let<&HostPage::LetUnitsScale>("UnitsScale")
      .Get<&HostPage::SelectedItems>("SelectedItems")
      .Method<&HostPage::Update>("Update")
      .Get<&HostPage::Application>("Application");
}

HostPage::HostPage(HostApplication* app, std::string name) : app_(app), name_(std::move(name)) {}

HostPage::~HostPage() {
  if (root_) root_->SetPage(nullptr);
}

void HostPage::SetRoot(Ref<HostShape> root) {
  if (root_) root_->SetPage(nullptr);
  root_ = std::move(root);
  root_->SetPage(this);
}

Ref<Object> HostPage::Shape() const { return root_; }

// Kind 2 is the length scale (one page unit in metres), kind 1 the angle
// scale (one page angle unit in radians).
double HostPage::UnitsScale(std::int32_t kind) const {
  if (kind == 2) return lengthScale_;
  if (kind == 1) return angleScale_;
  Raise(Err::InvalidCall, "UnitsScale takes 1 (angle) or 2 (length)");
}

void HostPage::LetUnitsScale(std::int32_t kind, double scale) {
  if (!(scale > 0.0) || !std::isfinite(scale)) Raise(Err::InvalidCall, "A units scale must be above 0");
  if (kind == 2) {
    lengthScale_ = scale;
  } else if (kind == 1) {
    angleScale_ = scale;
  } else {
    Raise(Err::InvalidCall, "UnitsScale takes 1 (angle) or 2 (length)");
  }
}

Ref<Object> HostPage::SelectedItems() { return MakeRef<HostSelection>(Ref<HostPage>(this)); }

// Regenerates the page: every formula of every shape is evaluated again.
void HostPage::Update() {
  ++updates_;
  if (!root_) return;
  std::vector<HostShape*> stack{root_.get()};
  while (!stack.empty()) {
    HostShape* s = stack.back();
    stack.pop_back();
    s->Reevaluate();
    for (const Ref<HostComponent>& c : s->ComponentList()) {
      if (auto* k = dynamic_cast<HostContainerComponent*>(c.get()))
        for (const Ref<HostShape>& child : k->Children()) stack.push_back(child.get());
    }
  }
}

Ref<Object> HostPage::Application() const { return Ref<Object>(app_); }

void HostPage::Unselect(const HostShape* shape) {
  std::erase_if(selection_, [&](const Ref<HostShape>& s) { return shape->Contains(s.get()); });
}

// ---------------------------------------------------------------------------

void HostSelection::Describe(ClassBuilder<HostSelection>& b) {
  b.Get<&HostSelection::Count>("Count")
      .Method<&HostSelection::Item>("Item", Names{"Index"})
      .Default()
      .Method<&HostSelection::Add>("Add", Names{"Shape"})
      .Method<&HostSelection::Remove>("Remove", Names{"Index"})
      .Method<&HostSelection::Clear>("Clear");
}

Ref<Object> HostSelection::Item(std::int32_t index) const {
  if (index < 1 || index > Count()) Raise(Err::SubscriptOutOfRange);
  return page_->Selection()[static_cast<std::size_t>(index - 1)];
}

void HostSelection::Add(Ref<Object> shape) {
  auto* s = dynamic_cast<HostShape*>(shape.get());
  if (!s) Raise(shape ? Err::TypeMismatch : Err::InvalidCall);
  if (s->OwningPage() != page_.get()) Raise(Err::InvalidCall, "The shape is not on this page");
  for (const Ref<HostShape>& t : page_->Selection())
    if (t.get() == s) return;
  page_->Selection().push_back(Ref<HostShape>(s));
}

void HostSelection::Remove(std::int32_t index) {
  if (index < 1 || index > Count()) Raise(Err::SubscriptOutOfRange);
  page_->Selection().erase(page_->Selection().begin() + (index - 1));
}

void HostSelection::Clear() { page_->Selection().clear(); }

// ---------------------------------------------------------------------------

Ref<Object> NewApplication() {
  auto app = MakeRef<HostApplication>();
  app->AddPage("Scene1");
  return app;
}

}  // namespace TessarkAO::RefHost

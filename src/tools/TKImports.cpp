#include "tools/TKImports.hpp"

#include <cmath>

#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "frame/StringTable.hpp"
#include "platform/UserInterface.hpp"
#include "tools/ImportBSplineDialog.hpp"
#include "tools/PointFile.hpp"

namespace TessarkAO {

namespace {

constexpr std::int32_t kPathComponents = 3;
constexpr std::int16_t kSplineDegree = 3;
constexpr std::int32_t kLengthUnits = 2;

}  // namespace

void TKImports::Describe(ClassBuilder<TKImports>& b) {
  b.Method<&TKImports::ImportBSpline>(
      "ImportBSpline", Names{"objApplication"},
      Doc{"Asks for a file of fit points (the import dialog) and adds a B-spline path through them to the "
          "selected shape of objApplication's active scene; failures are told to the user in message "
          "boxes."});
}

void TKImports::Message(std::string_view text, std::int32_t style) {
  GetUserInterface().MessageBox(text, Globals::LoadString(StringId::ImportMessageTitle), style);
}

void TKImports::ImportBSpline(Ref<Object> objApplication) {
  const Variant app(objApplication);
  if (ToLong(app.Get("Pages").Get("Count")) == 0) {
    Message(Globals::LoadString(StringId::NoSceneOpen), MessageStyle::Exclamation);
    return;
  }

  ImportBSplineDialog dialog([this](std::string& fileName) { return CheckPointFile(fileName); });
  GetUserInterface().RunModal(dialog);
  if (!dialog.Accepted()) return;

  // The file is read a second time; it was valid when chosen.  Should it
  // have gone or changed since, the user hears so instead of a host error.
  Ref<TK2DArray> table = PointFile::ReadPointFile(dialog.FileName());
  if (!table) Raise(Err::FileNotFound, "The fit-point file \"" + dialog.FileName() + "\" cannot be opened");
  if (table->Rows() < 2 || table->Columns() < 2) {
    Message(Globals::LoadString(StringId::InvalidPointData), MessageStyle::Exclamation);
    return;
  }

  const double scale = ToDouble(app.Get("ActivePage").Get("UnitsScale", kLengthUnits));
  if (!WithinLimits(*table, scale)) {
    Message(Globals::LoadString(StringId::CoordinatesTooLarge) + "\r\n" +
                Globals::LoadString(StringId::ImportCancelled),
            MessageStyle::Exclamation);
    return;
  }

  // Nothing selected: nothing is created and nothing is said, deliberately.
  const Variant selection = app.Get("ActivePage").Get("SelectedItems");
  if (ToLong(selection.Get("Count")) > 0) CreateBSplinePath(selection.Call("Item", 1), *table);
}

bool TKImports::CheckPointFile(std::string& fileName) {
  Ref<TK2DArray> table = PointFile::ReadPointFile(fileName);
  if (!table) return false;
  if (table->Rows() < 2 || table->Columns() < 2) {
    Message(Globals::LoadString(StringId::InvalidPointData), MessageStyle::Exclamation);
    return false;
  }
  return true;
}

bool TKImports::WithinLimits(const TK2DArray& table, double scale) {
  for (std::int32_t i = 1; i <= table.Rows(); ++i) {
    // The scale serves only this test: the host receives the file's values.
    const double x = Checked::Mul(table.GetValue(i, 1), scale);
    const double y = Checked::Mul(table.GetValue(i, 2), scale);
    if (!(std::fabs(x) <= kCoordinateLimit && std::fabs(y) <= kCoordinateLimit)) return false;
  }
  return true;
}

void TKImports::CreateBSplinePath(const Variant& item, const TK2DArray& table) {
  const std::int32_t n = table.Rows();
  const Variant path = item.Get("Components", kPathComponents).Call("Add");

  Variant x(table.GetValue(1, 1)), y(table.GetValue(1, 2));
  Variant startArgs[] = {Variant::ByRef(x), Variant::ByRef(y)};
  path.Invoke("SetStartPoint", CallKind::Method, startArgs);

  Variant endX(table.GetValue(n, 1)), endY(table.GetValue(n, 2));
  Variant endArgs[] = {Variant::ByRef(endX), Variant::ByRef(endY)};
  const Variant curve = path.Invoke("AddBSplineTo", CallKind::Method, endArgs);

  // Closed only when the first and last points are exactly equal.
  Variant closed(table.GetValue(1, 1) == table.GetValue(n, 1) &&
                 table.GetValue(1, 2) == table.GetValue(n, 2));

  // The host takes the first two columns as an n x 2 table, rows and columns from 1.
  SafeArray points = SafeArray::Matrix(VarType::Double, 1, n, 1, 2);
  std::vector<Variant>& data = points.Data();
  for (std::int32_t r = 1; r <= n; ++r) {
    data[static_cast<std::size_t>(r - 1)] = Variant(table.GetValue(r, 1));
    data[static_cast<std::size_t>(n + r - 1)] = Variant(table.GetValue(r, 2));
  }
  Variant fitPoints(std::move(points));
  Variant defineArgs[] = {Variant(kSplineDegree),    Variant(false),     Variant::ByRef(closed),
                          Variant::ByRef(fitPoints), Variant::Nothing(), Variant::Nothing()};
  curve.Invoke("SetDefinitionByFitPoints", CallKind::Method, defineArgs);

  path.Let("Closed", closed.AsBoolean());
  item.Get("Application").Get("ActivePage").Call("Update");
  Message(Globals::LoadString(StringId::ImportCompleted), MessageStyle::Information);
}

}  // namespace TessarkAO

TK_REGISTER_CLASS(TessarkAO::TKImports)

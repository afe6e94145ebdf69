// TKImports: imports a B-spline from a text file of fit points into the item
// selected in the host's active scene.
//
// ImportBSpline shows the import dialog (frmImportBSpline); each file chosen
// there is read and checked (CheckPointFile, the dialog's ValidateFile
// handler).  After Import the file is read again, every point is checked
// against the size limit (|coordinate x the page's length scale| <= 1000),
// and one B-spline path through the points is added to the first selected
// item.  Every outcome is told to the user in a message box titled
// "B-Spline Import"; a failing host call is raised to the caller.
#pragma once

#include <string>

#include "automation/Members.hpp"
#include "frame/Globals.hpp"
#include "tables/TK2DArray.hpp"

namespace TessarkAO {

class TKImports final : public Dispatch<TKImports> {
 public:
  static constexpr std::string_view kClassName = "TKImports";
  static void Describe(ClassBuilder<TKImports>& b);

  // The largest magnitude a scaled coordinate may have (inclusive).
  static constexpr double kCoordinateLimit = 1000.0;

  // objApplication: the host application.  No result.
  void ImportBSpline(Ref<Object> objApplication);

  // The dialog's validation of a chosen file: false without a message when
  // the file cannot be opened; text 120 and false when it has fewer than 2
  // rows or 2 columns of numbers.
  bool CheckPointFile(std::string& fileName);

  // True when every row's X and Y (columns 1 and 2) times `scale` lie within
  // the limit; rows are tested in order up to the first that fails.
  static bool WithinLimits(const TK2DArray& table, double scale);

  // Adds the path with its B-spline through the table's points to `item`,
  // updates the scene and reports success.
  static void CreateBSplinePath(const Variant& item, const TK2DArray& table);

 private:
  static void Message(std::string_view text, std::int32_t style);

  InstanceRegistration registration_;
};

}  // namespace TessarkAO

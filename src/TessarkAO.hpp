// TessarkAO: the one header a program includes to use the library from C++.
//
//     #include <tessarkao/TessarkAO.hpp>
//     TessarkAO::Variant v(TessarkAO::CreateObject("TessarkAO.TKVector4d"));
//     v.Call("SetPosition", 3.0, 4.0, 0.0);
//     double length = TessarkAO::ToDouble(v.Get("Length"));   // 5
//
// Classes are created by ProgID or CLSID and called late-bound by member
// name, exactly as from a script; the class headers below also give direct
// C++ access to each class.  Build with find_package(TessarkAO) and the target
// TessarkAO::tessarkao, or with `pkg-config --cflags --libs tessarkao`.
#pragma once

#include <tessarkao/Version.hpp>

#include "automation/AutomationError.hpp"
#include "automation/Catalogue.hpp"
#include "automation/Checked.hpp"
#include "automation/Convert.hpp"
#include "automation/Members.hpp"
#include "automation/Object.hpp"
#include "automation/VarType.hpp"
#include "automation/Variant.hpp"
#include "builders/TKExtrudeShape.hpp"
#include "builders/TKSMBendShape.hpp"
#include "builders/TKSMConicShape.hpp"
#include "builders/TKSMCurvedStockShape.hpp"
#include "builders/TKSMExtrudeShape.hpp"
#include "builders/TKSMFormingShape.hpp"
#include "frame/ClassCatalogue.hpp"
#include "frame/Localizer.hpp"
#include "geometry/TK2DLine.hpp"
#include "geometry/TKMatrix4d.hpp"
#include "geometry/TKTransform.hpp"
#include "geometry/TKVector4d.hpp"
#include "profiles/TK2DProjectedThreads.hpp"
#include "profiles/TKCurve.hpp"
#include "profiles/TKInvoluteCurve.hpp"
#include "profiles/TKOutline.hpp"
#include "profiles/TKProfile.hpp"
#include "scene/SceneUtils.hpp"
#include "scene/TKPosition.hpp"
#include "scene/TKShape.hpp"
#include "scene/TKSurfaceFinish.hpp"
#include "scene/TKTreeView.hpp"
#include "system/AppUtils.hpp"
#include "system/TKSystemUtils.hpp"
#include "system/UnitUtils.hpp"
#include "tables/TK2DArray.hpp"
#include "tables/TKColumn.hpp"
#include "tables/TKColumnSet.hpp"
#include "tables/TKTreeNode.hpp"
#include "tools/DialogUtils.hpp"
#include "tools/TKExports.hpp"
#include "tools/TKImports.hpp"

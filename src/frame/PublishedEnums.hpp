// The enumerations the library publishes, grouped by the class or module
// they belong to.  Each is registered beside its class, and the type
// library's and the Python stubs' enums are made from those registrations.
// Their names and values are part of the published interfaces and never
// change.
#pragma once

#include <cstdint>

namespace TessarkAO {

// The Registry module
// Root keys as callers of the library name them.
enum TKRegistryKeys : std::int32_t {
  TKRegistry_HKEY_CLASSES_ROOT = 1,
  TKRegistry_HKEY_LOCAL_MACHINE = 2,
  TKRegistry_HKEY_CURRENT_USER = 3,
};

// TKSystemUtils
enum TKOperatingSystems : std::int32_t {
  TKOS_Unknown = 0,
  TKOS_Windows31 = 1,
  TKOS_Windows95 = 2,
  TKOS_Windows98 = 3,
  TKOS_WindowsNT4 = 4,
};
enum TKSystemLCIDs : std::int32_t {
  LCID_English = 1033,
  LCID_Japanese = 1041,
};

// UnitUtils
// Unit codes (TKUnit), as UnitUtils.ConvertUnits and the unit-aware reads
// of profiles take them.
enum TKUnit : std::int32_t {
  UNIT_MILLIMETERS = 1,
  UNIT_CENTIMETERS = 2,
  UNIT_METERS = 3,
  UNIT_INCHES = 4,
  UNIT_FEET = 5,
  UNIT_YARDS = 6,
  UNIT_PAGEUNITS = 7,
  UNIT_PAGEANGLEUNITS = 8,
  UNIT_DEGREES = 9,
  UNIT_RADIANS = 10,
  UNIT_SYSTEM_LENGTH_UNITS = 11,
  UNIT_SYSTEM_ANGLE_UNITS = 12,
};

// TKVector4d
enum TKColinearStatus : std::int32_t {
  TKColinearStatus_NotColinear = 0,
  TKColinearStatus_SameDirection = 1,
  TKColinearStatus_OppositeDirection = 2,
};

// TKColumn
enum TKColumnTypes : std::int32_t {
  TKColumnType_None = 0,
  TKColumnType_Double = 1,
  TKColumnType_Object = 2,
  TKColumnType_String = 3,
};

// TKColumnSet
enum TKColumnSetSort : std::int32_t {
  TKColumnSetSort_Ascending = 1,
  TKColumnSetSort_Descending = 2,
};

// TKCurve: the host's curve codes, as TKCurve.CurveType holds them (not
// registered: they are the host's).
enum TKCurveType : std::int32_t {
  TKCurveType_Fillet = 0,
  TKCurveType_Line = 1,
  TKCurveType_Arc = 2,
  TKCurveType_Bezier = 3,
  TKCurveType_Ellipse = 4,
  TKCurveType_BSpline = 5,
};

// TKProfile
enum TKDeparameterizeOptions : std::int32_t {
  TKDeparameterizeAll = 0,
  TKDeparameterizeXAxis = 1,
  TKDeparameterizeYAxis = 2,
};

// TK2DProjectedThreads
enum EProjectionFlags : std::int32_t {
  DisplayCosmeticThread = 1,
  DisplayCallout = 2,
  DisplayHoleInformation = 4,
};
enum EHoleInformationFlags : std::int32_t {
  DisplayInfoExtent = 1,
  DisplayInfoDepth = 2,
  DisplayInfoCounterboreDepth = 4,
  DisplayInfoCounterboreDiameter = 8,
  DisplayInfoCountersinkDiameter = 16,
  DisplayInfoCountersinkAngle = 32,
  DisplayInfoBottomAngle = 64,
};

// TKShape
enum class TKBoundingBoxIndices : std::int32_t {
  TKMinX = 1,
  TKMinY = 2,
  TKMinZ = 3,
  TKMaxX = 4,
  TKMaxY = 5,
  TKMaxZ = 6,
  TKLength = 7,
  TKWidth = 8,
  TKHeight = 9
};

// TKPosition
// Which fields Zero clears.
enum class TKZeroParameters : std::int32_t { ZeroPosition = 1, ZeroRotation = 2, ZeroAll = 3 };

// TKSurfaceFinish
enum class TKSurfaceFinishes : std::int32_t {
  Aluminum = 1,
  Brass = 2,
  Bronze = 3,
  Copper = 4,
  Gold = 5,
  Nylon = 6
};

// TKTreeView
enum class RefreshSettings : std::int32_t { OnDemand = 0, OnNumberOfShapes = 1, OnSetScene = 2 };

// TKExtrudeShape
enum TKExtrudeDirection : std::int32_t { TKExtrude_Up = 1, TKExtrude_Down = 2 };

// TKSMExtrudeShape
enum ESheetMetalTypes : std::int32_t { SheetMetalType_FlatStock = 1, SheetMetalType_Punch = 2 };

// TKSMBendShape
enum ESheetMetalBendDirections : std::int32_t {
  SheetMetalBendDirection_Up = 1,
  SheetMetalBendDirection_Down = 2,
};
enum ESheetMetalBendDropFlags : std::int32_t {
  SheetMetalBendDropFlag_None = 0,
  SheetMetalBendDropFlag_Autosize = 1,
  SheetMetalBendDropFlag_AlignInside = 2,
  SheetMetalBendDropFlag_AlignOutside = 4,
  SheetMetalBendDropFlag_RadiusSeam = 8,
  SheetMetalBendDropFlag_RadiusFromPreferences = 16,
  SheetMetalBendDropFlag_AddFlatStock = 32,
  SheetMetalBendDropFlag_SegmentOneHandleDisplayed = 64,
  SheetMetalBendDropFlag_SegmentTwoHandleDisplayed = 128,
};
enum ESheetMetalBendReliefTypes : std::int32_t {
  SheetMetalBendRelief_None = 0,
  SheetMetalBendRelief_Rectangular = 1,
  SheetMetalBendRelief_Circular = 2,
};
enum ESheetMetalReliefs : std::int32_t {
  SheetMetalRelief_None = 0,
  SheetMetalRelief_SegmentOneBelow = 1,
  SheetMetalRelief_SegmentOneAbove = 2,
  SheetMetalRelief_SegmentTwoBelow = 4,
  SheetMetalRelief_SegmentTwoAbove = 8,
  SheetMetalRelief_All = 15,
};

// TKSMFormingShape
// Which side of the sheet the form stands out of.
enum ESheetMetalFormDirections : std::int32_t {
  SheetMetalFormDirection_Up = 1,
  SheetMetalFormDirection_Down = 2,
};

// DialogUtils
// The tools, as dialog arguments (DLG_...) and results (TKTOOL_...).
enum TKToolDialogs : std::int32_t {
  DLG_ASSEMBLY = 1,
  DLG_ASSEMBLYTREE = 2,
  DLG_CUSTOM_HOLE = 3,
  DLG_PATTERN = 4,
  DLG_FASTENERS = 5,
  DLG_SPURGEAR = 6,
  DLG_HELIX = 7,
  DLG_EXTRUDE = 8,
  DLG_RIB = 9,
  DLG_HOT_FORMED_STEEL = 10,
  DLG_COLD_FORMED_STEEL = 11,
  DLG_BEARINGS = 12,
};
enum TKTools : std::int32_t {
  TKTOOL_NULL = 0,
  TKTOOL_ASSEMBLY = 1,
  TKTOOL_ASSEMBLYTREE = 2,
  TKTOOL_CUSTOM_HOLE = 3,
  TKTOOL_PATTERN = 4,
  TKTOOL_FASTENERS = 5,
  TKTOOL_SPURGEAR = 6,
  TKTOOL_HELIX = 7,
  TKTOOL_EXTRUDE = 8,
  TKTOOL_RIB = 9,
  TKTOOL_HOT_FORMED_STEEL = 10,
  TKTOOL_COLD_FORMED_STEEL = 11,
  TKTOOL_BEARINGS = 12,
};

}  // namespace TessarkAO

// The control identifiers of the library's dialogs on Windows.  The windows
// carry the captions of their models; programs that drive them (tests, a
// tool's automation) find a dialog by its caption and its controls by these
// identifiers.
#pragma once

namespace TessarkAO::Win32::DialogControls {

// frmImportBSpline
constexpr int cmdOK = 1;  // Import (IDOK)
constexpr int cmdCancel = 1001;
constexpr int cmdBrowse = 1002;
constexpr int txtFilename = 1003;
constexpr int fraFilename = 1004;
constexpr int lblDescription = 1005;

// frmScene (its OK button is cmdOK too)
constexpr int TreeView = 1101;
constexpr int lstComponents = 1102;
constexpr int lstVariables = 1103;
constexpr int lblComponents = 1104;
constexpr int lblVariables = 1105;
constexpr int lblStatus = 1106;

}  // namespace TessarkAO::Win32::DialogControls

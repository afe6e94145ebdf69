// The user-interface service on Windows: real message boxes and the
// system's file-open dialog.
//
// With TESSARKAO_UI=headless in the environment the headless service stays
// in force instead (scripts and tests with no person at the screen).
#pragma once

namespace TessarkAO::Win32 {

// Puts the Windows service in force unless TESSARKAO_UI is "headless".
void InstallUserInterface();

}  // namespace TessarkAO::Win32

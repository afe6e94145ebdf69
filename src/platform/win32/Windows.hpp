// The Windows headers, included one way everywhere in the Windows build.
//
// The system headers define macros such as MessageBox, LoadString and
// GetUserName that would silently rename members of the library's classes
// (UserInterface::MessageBox, Localizer::LoadString) in the translation units
// that see them.  Every Windows translation unit includes the system headers
// through this file, which removes those macros again; code here calls the
// explicit A or W functions.  (GetClassInfo stays: the system's interface
// IProvideClassInfo was declared through it.)
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601
#endif

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>

#undef MessageBox
#undef LoadString
#undef GetUserName
#undef CreateWindow
#undef GetObject
#undef GetClassName
#undef RegisterClass
#undef DrawText
#undef CreateFont
#undef DeleteFile
#undef CopyFile
#undef MoveFile
#undef FindText
#undef GetMessage
#undef SendMessage
#undef PostMessage
#undef OpenFile
#undef GetCurrentDirectory
#undef SetCurrentDirectory
#undef GetTempPath
#undef GetModuleFileName
#undef CreateFile
#undef GetEnvironmentVariable
#undef SetEnvironmentVariable
#undef GetVersionEx
#undef IGNORE

#include <string>
#include <string_view>

namespace TessarkAO::Win32 {

// UTF-8 <-> UTF-16, the library's text and the system's.
std::wstring Widen(std::string_view text);
std::string Narrow(const wchar_t* text, std::size_t length);
inline std::string Narrow(std::wstring_view text) { return Narrow(text.data(), text.size()); }

// The module (DLL or program) that holds this code.
HMODULE ThisModule() noexcept;
// The full path of a module.
std::wstring ModulePath(HMODULE module);

}  // namespace TessarkAO::Win32

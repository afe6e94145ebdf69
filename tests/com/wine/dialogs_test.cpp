// The dialogs of the registered tktools.dll as a person meets them, under
// Wine on a virtual display: B-spline import on a reference-host stand-in
// (the host lives in this program and reaches the server through IDispatch)
// and the scene viewer through DialogUtils.GetCLSID(707, 808).  While the
// server waits in its modal dialog, a second thread finds the window by its
// caption and drives it with window messages only; the outcome is read from
// the host's journal afterwards.  With an output folder as argument each
// dialog is captured there as a BMP.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cwchar>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "DispatchCall.hpp"
#include "WineTest.hpp"
#include "automation/Convert.hpp"
#include "com/DispatchAdapter.hpp"
#include "platform/win32/DialogControls.hpp"
#include "refhost/RefHost.hpp"

#include <commctrl.h>

using namespace TessarkAO;
using namespace WineTest;
namespace C = TessarkAO::Win32::DialogControls;

namespace {

std::string g_screens;        // where captures go; empty for none
std::string g_data;           // examples/data, as a Windows path
std::wstring g_camTrack;      // the fit-point file to choose

// Waits up to ten seconds for `find` to give a window.
HWND WaitFor(const std::function<HWND()>& find) {
  for (int i = 0; i < 400; ++i) {
    if (HWND h = find()) return h;
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
  }
  return nullptr;
}

bool WaitUntil(const std::function<bool()>& done) {
  return WaitFor([&] { return done() ? HWND(1) : HWND(nullptr); }) != nullptr;
}

std::wstring TextOf(HWND h) {
  wchar_t buffer[1024] = L"";
  GetWindowTextW(h, buffer, 1024);
  return buffer;
}

// Whether a control's text starts with `prefix` (no string temporaries:
// GCC 12 at -O2 misreads them as freeing a literal).
bool TextStarts(HWND h, const wchar_t* prefix) {
  wchar_t buffer[1024] = L"";
  GetWindowTextW(h, buffer, 1024);
  return std::wcsncmp(buffer, prefix, std::wcslen(prefix)) == 0;
}

// The first window `match` accepts: among the top-level windows, or with a
// parent among its controls.
HWND FindWhere(HWND parent, const std::function<bool(HWND)>& match) {
  struct Search {
    const std::function<bool(HWND)>* match;
    HWND found;
  } s{&match, nullptr};
  struct Each {
    static BOOL CALLBACK Window(HWND h, LPARAM p) {
      auto& s = *reinterpret_cast<Search*>(p);
      if (!(*s.match)(h)) return TRUE;
      s.found = h;
      return FALSE;
    }
  };
  if (parent)
    EnumChildWindows(parent, &Each::Window, reinterpret_cast<LPARAM>(&s));
  else
    EnumWindows(&Each::Window, reinterpret_cast<LPARAM>(&s));
  return s.found;
}

bool ClassIs(HWND h, const wchar_t* name) {
  wchar_t windowClass[32] = L"";
  GetClassNameW(h, windowClass, 32);
  return std::wcscmp(windowClass, name) == 0;
}

// A visible top-level window of this process with this caption and, when
// `control` is given, a control of that identifier.
HWND TopLevel(const std::wstring& caption, int control) {
  return FindWhere(nullptr, [&](HWND h) {
    DWORD pid = 0;
    GetWindowThreadProcessId(h, &pid);
    return pid == GetCurrentProcessId() && IsWindowVisible(h) && TextOf(h) == caption &&
           (!control || GetDlgItem(h, control));
  });
}

// The file-open dialog: a dialog window owned by `owner`, with an OK button.
HWND OwnedBy(HWND owner) {
  return FindWhere(nullptr, [&](HWND h) {
    return GetWindow(h, GW_OWNER) == owner && IsWindowVisible(h) && ClassIs(h, L"#32770") &&
           GetDlgItem(h, IDOK);
  });
}

void Click(HWND dialog, int id) { PostMessageW(GetDlgItem(dialog, id), BM_CLICK, 0, 0); }

// Captures a window as a person sees it on the display, as a 24-bit BMP.
void Capture(HWND window, const std::string& name) {
  if (g_screens.empty()) return;
  SetForegroundWindow(window);
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  RECT r{};
  GetWindowRect(window, &r);
  const int w = r.right - r.left, h = r.bottom - r.top;
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), w, h, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ old = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, w, h, screen, r.left, r.top, SRCCOPY);
  GdiFlush();
  const DWORD stride = static_cast<DWORD>((w * 3 + 3) & ~3), size = stride * static_cast<DWORD>(h);
  BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER) + size), 0, 0,
                        sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER)};
  std::ofstream out(g_screens + "\\" + name + ".bmp", std::ios::binary);
  out.write(reinterpret_cast<const char*>(&file), sizeof file);
  out.write(reinterpret_cast<const char*>(&info.bmiHeader), sizeof info.bmiHeader);
  out.write(static_cast<const char*>(bits), size);
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  CHECK(out.good());
}

// Chooses the cam track in the file-open dialog: the name typed into its
// file-name box character by character, then its OK button.
void ChooseFile(HWND fileDialog) {
  // The file-name box: the edit field inside its combo box.
  HWND edit = FindWhere(fileDialog, [](HWND h) { return ClassIs(h, L"Edit"); });
  CHECK(edit != nullptr);
  if (!edit) return;
  SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
  for (wchar_t c : g_camTrack) SendMessageW(edit, WM_CHAR, c, 0);
  CHECK(TextOf(edit) == g_camTrack);
  PostMessageW(fileDialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(fileDialog, IDOK)));
}

// The message box of the import (title 119), its text, answered with OK.
std::wstring AnswerMessage() {
  HWND box = WaitFor([] { return TopLevel(L"B-Spline Import", 0xFFFF); });
  if (!box) return L"";
  const std::wstring text = TextOf(GetDlgItem(box, 0xFFFF));
  PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
  return text;
}

// A reference-host application with a part selected on its active page.
struct Host {
  Ref<Object> app = RefHost::NewApplication();
  Variant part;
  Host() {
    const Variant page = Variant(app).Get("ActivePage");
    part = page.Get("Shape").Get("Components", 2).Call("Item", 1).Get("Shapes", 3).Call("Add");
    page.Get("SelectedItems").Call("Add", part);
  }
  std::int32_t Paths() const { return ToLong(part.Get("Components", 3).Get("Count")); }
};

IDispatch* CreateServed(const wchar_t* progId) {
  CLSID clsid{};
  if (FAILED(CLSIDFromProgID(progId, &clsid))) return nullptr;
  IDispatch* d = nullptr;
  CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&d));
  return d;
}

// Runs TKImports.ImportBSpline on the host while `drive` works the windows
// from a second thread; returns the journal of the host's calls.
std::vector<RefHost::JournalEntry> Import(Host& host, const std::function<void(HWND)>& drive) {
  IDispatch* imports = CreateServed(L"TessarkAO.TKImports");
  CHECK(imports != nullptr);
  if (!imports) return {};
  RefHost::ClearJournal();
  RefHost::StartJournal();
  std::thread driver([&] {
    HWND dialog = WaitFor([] { return TopLevel(L"B-Spline Import", C::cmdBrowse); });
    CHECK(dialog != nullptr);
    if (!dialog) return;
    drive(dialog);
    // A dialog the drive left open would keep the server waiting.
    if (!WaitUntil([&] { return !IsWindow(dialog); })) {
      CHECK(!"the import dialog is still open");
      PostMessageW(dialog, WM_CLOSE, 0, 0);
    }
  });
  IDispatch* app = Com::AdapterOf(host.app);
  CallResult r;
  Call(imports, L"ImportBSpline", DISPATCH_METHOD, {Disp(app)}, r);
  driver.join();
  RefHost::StopJournal();
  CHECK_HR(r.hr, S_OK);
  app->Release();
  imports->Release();
  return RefHost::Journal();
}

bool Created(const std::vector<RefHost::JournalEntry>& journal, const char* member) {
  for (const auto& e : journal)
    if (e.member == member) return true;
  return false;
}

// Browse, the file typed into the file dialog and confirmed; afterwards the
// chosen name is in the box and Import is enabled.
void BrowseForCamTrack(HWND dialog) {
  Click(dialog, C::cmdBrowse);
  HWND files = WaitFor([&] { return OwnedBy(dialog); });
  CHECK(files != nullptr);
  if (!files) return;
  ChooseFile(files);
  CHECK(WaitUntil([&] { return IsWindowEnabled(GetDlgItem(dialog, C::cmdOK)) != FALSE; }));
  CHECK(TextOf(GetDlgItem(dialog, C::txtFilename)) == g_camTrack);
}

}  // namespace

TEST_CASE("import dialog: Browse, the cam track, Import creates the path") {
  Host host;
  std::wstring message;
  const auto journal = Import(host, [&](HWND dialog) {
    CHECK(IsWindowEnabled(GetDlgItem(dialog, C::cmdOK)) == FALSE);
    CHECK(TextOf(GetDlgItem(dialog, C::cmdOK)) == L"Import");
    CHECK(TextOf(GetDlgItem(dialog, C::cmdCancel)) == L"Cancel");
    CHECK(TextOf(GetDlgItem(dialog, C::fraFilename)) == L"File");
    CHECK(TextStarts(GetDlgItem(dialog, C::lblDescription), L"Specify the file"));
    Capture(dialog, "windows-import-dialog");
    BrowseForCamTrack(dialog);
    Capture(dialog, "windows-import-dialog-file-chosen");
    Click(dialog, C::cmdOK);
    message = AnswerMessage();
  });
  CHECK(message == L"Import of B-Spline completed successfully.");
  CHECK(Created(journal, "SetStartPoint") && Created(journal, "AddBSplineTo") &&
        Created(journal, "SetDefinitionByFitPoints"));
  CHECK_EQ(host.Paths(), 1);
}

TEST_CASE("import dialog: Cancel and the close control create nothing") {
  for (int how = 0; how < 2; ++how) {
    Host host;
    const auto journal = Import(host, [&](HWND dialog) {
      BrowseForCamTrack(dialog);
      if (how == 0) Click(dialog, C::cmdCancel);
      else PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);  // the title-bar close control
    });
    CHECK(!Created(journal, "SetStartPoint") && !Created(journal, "AddBSplineTo"));
    CHECK_EQ(host.Paths(), 0);
    CHECK(TopLevel(L"B-Spline Import", 0xFFFF) == nullptr);  // and no message
  }
}

TEST_CASE("scene viewer: GetCLSID(707, 808) shows the page; the lists follow the selection") {
  Ref<Object> scene = RefHost::LoadScene(g_data + "\\profiled_scene.json");
  IDispatch* utils = CreateServed(L"TessarkAO.DialogUtils");
  CHECK(utils != nullptr);
  if (!utils) return;
  IDispatch* page = Com::AdapterOf(Variant(scene).Get("ActivePage").AsObject());
  CallResult set;
  Call(utils, L"Page", DISPATCH_PROPERTYPUTREF, {Disp(page)}, set);
  CHECK_HR(set.hr, S_OK);

  std::thread driver([&] {
    HWND dialog = WaitFor([] { return TopLevel(L"Scene Viewer", C::TreeView); });
    CHECK(dialog != nullptr);
    if (!dialog) return;
    HWND tree = GetDlgItem(dialog, C::TreeView);
    HWND parts = GetDlgItem(dialog, C::lstComponents), details = GetDlgItem(dialog, C::lstVariables);
    // Depth first through the tree for the first item whose label starts so.
    auto next = [&](HTREEITEM item, WPARAM which) {
      return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, which, reinterpret_cast<LPARAM>(item)));
    };
    auto find = [&](const wchar_t* prefix) {
      std::vector<HTREEITEM> stack{next(nullptr, TVGN_ROOT)};
      while (!stack.empty()) {
        HTREEITEM item = stack.back();
        stack.pop_back();
        if (!item) continue;
        wchar_t text[256] = L"";
        TVITEMW tv{};
        tv.mask = TVIF_TEXT;
        tv.hItem = item;
        tv.pszText = text;
        tv.cchTextMax = 256;
        SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&tv));
        if (std::wcsncmp(text, prefix, std::wcslen(prefix)) == 0) return item;
        stack.push_back(next(item, TVGN_NEXT));
        stack.push_back(next(item, TVGN_CHILD));
      }
      return HTREEITEM(nullptr);
    };
    auto rowText = [](HWND list, int row) {
      wchar_t text[512] = L"";
      if (SendMessageW(list, LB_GETTEXTLEN, row, 0) < 512) SendMessageW(list, LB_GETTEXT, row, reinterpret_cast<LPARAM>(text));
      return std::wstring(text);
    };
    HTREEITEM curve = find(L"Loop Curve (B-Spline)");
    CHECK(curve != nullptr);
    SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(curve));
    CHECK(rowText(details, 0) == L"Curve Data");
    CHECK(SendMessageW(details, LB_GETCOUNT, 0, 0) > 10);
    Capture(dialog, "windows-scene-viewer");

    HTREEITEM plate = find(L"Base plate");
    CHECK(plate != nullptr);
    SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(plate));
    CHECK(SendMessageW(parts, LB_GETCOUNT, 0, 0) >= 3);
    SendMessageW(parts, LB_SETCURSEL, 0, 0);
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(C::lstComponents, LBN_SELCHANGE), reinterpret_cast<LPARAM>(parts));
    CHECK(TextStarts(GetDlgItem(dialog, C::lblStatus), L"Active Component : "));

    // A larger window gives the tree and the lists the room.
    RECT before{}, after{}, outer{};
    GetWindowRect(tree, &before);
    GetWindowRect(dialog, &outer);
    SetWindowPos(dialog, nullptr, 0, 0, outer.right - outer.left + 200, outer.bottom - outer.top + 100,
                 SWP_NOMOVE | SWP_NOZORDER);
    GetWindowRect(tree, &after);
    CHECK(after.right - after.left > before.right - before.left);
    CHECK(after.bottom - after.top == before.bottom - before.top + 100);
    Click(dialog, C::cmdOK);
  });
  VARIANT error = I4(808);
  CallResult r;
  Call(utils, L"GetCLSID", DISPATCH_METHOD, {I4(707), RefVar(&error)}, r);
  driver.join();
  CHECK_HR(r.hr, S_OK);
  CHECK(V_VT(&r.result.v) == VT_BSTR && SysStringLen(V_BSTR(&r.result.v)) == 0);
  page->Release();
  utils->Release();
}

int main(int argc, char** argv) {
  CoInitialize(nullptr);
  // com_dialogs_test EXAMPLES_DATA [SCREENS_FOLDER [case filter]]
  if (argc < 2) {
    std::printf("usage: com_dialogs_test EXAMPLES_DATA_FOLDER [SCREENS_FOLDER [CASE]]\n");
    return 2;
  }
  // Should a dialog never close, the server would wait for ever: the run
  // ends with a failure instead.
  std::thread([] {
    std::this_thread::sleep_for(std::chrono::seconds(90));
    std::printf("FAIL the dialogs did not close within 90 seconds\n");
    std::fflush(stdout);
    ExitProcess(3);
  }).detach();
  g_data = argv[1];
  g_camTrack = Win32::Widen(g_data + "\\cam_track.txt");
  if (argc > 2) g_screens = argv[2];
  char* filter[] = {argv[0], argc > 3 ? argv[3] : nullptr};
  const int rc = RunAll(argc > 3 ? 2 : 1, filter);
  CoUninitialize();
  return rc;
}

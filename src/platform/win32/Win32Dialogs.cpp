#ifdef _WIN32

#include "platform/win32/Win32Dialogs.hpp"

#include <commctrl.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <string>
#include <vector>

#include "platform/win32/DialogControls.hpp"

namespace TessarkAO::Win32 {

namespace {

namespace C = DialogControls;

// An extended dialog template without controls (they are made when the
// dialog starts), carrying the caption and the form's font: the dialog
// manager creates that font and measures dialog units with it.
std::vector<WORD> Template(const std::wstring& caption, const FormFont& font, short cx, short cy, DWORD style) {
  std::vector<WORD> t;
  auto push32 = [&](DWORD v) {
    t.push_back(LOWORD(v));
    t.push_back(HIWORD(v));
  };
  auto text = [&](const std::wstring& s) {
    t.insert(t.end(), s.begin(), s.end());
    t.push_back(0);
  };
  t.push_back(1);       // version
  t.push_back(0xFFFF);  // extended template
  push32(0);            // help id
  push32(0);            // extended style
  push32(style | DS_SETFONT);
  t.push_back(0);  // no items
  t.push_back(0);
  t.push_back(0);
  t.push_back(static_cast<WORD>(cx));
  t.push_back(static_cast<WORD>(cy));
  t.push_back(0);  // no menu
  t.push_back(0);  // the dialog class
  text(caption);
  t.push_back(static_cast<WORD>(std::clamp(std::lround(font.points > 0 ? font.points : 8.0), 1L, 72L)));
  t.push_back(static_cast<WORD>(std::clamp(font.weight, 0, 1000)));
  t.push_back(MAKEWORD(font.italic ? 1 : 0, static_cast<BYTE>(font.charset)));
  text(font.name.empty() ? std::wstring(L"MS Shell Dlg") : Widen(font.name));
  return t;
}

// Per-monitor DPI awareness (version 2) for the windows made while it lives,
// where the system has it: the dialog manager then scales the dialog, its
// font and its controls when it moves to a monitor of another density.
class PerMonitorDpi {
 public:
  PerMonitorDpi() {
    if (HMODULE user = GetModuleHandleW(L"user32.dll"))
      set_ = reinterpret_cast<Set>(reinterpret_cast<void*>(GetProcAddress(user, "SetThreadDpiAwarenessContext")));
    if (set_) old_ = set_(reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-4)));
  }
  ~PerMonitorDpi() {
    if (set_ && old_) set_(old_);
  }
  PerMonitorDpi(const PerMonitorDpi&) = delete;
  PerMonitorDpi& operator=(const PerMonitorDpi&) = delete;

 private:
  using Set = HANDLE(WINAPI*)(HANDLE);
  Set set_ = nullptr;
  HANDLE old_ = nullptr;
};

// The base of both dialogs: the modal run, the dispatch of messages to the
// handlers, and failures of the model shown instead of crossing the system.
class DialogWindow {
 public:
  virtual ~DialogWindow() = default;

  void Run(HWND owner, const std::wstring& caption, const FormFont& font, short cx, short cy, DWORD style) {
    const std::vector<WORD> t = Template(caption, font, cx, cy, style);
    PerMonitorDpi dpi;
    DialogBoxIndirectParamW(ThisModule(), reinterpret_cast<LPCDLGTEMPLATEW>(t.data()), owner, &Proc,
                            reinterpret_cast<LPARAM>(this));
  }

 protected:
  virtual void OnInit() = 0;
  virtual void OnCommand(int id, int code) = 0;
  virtual void OnNotify(const NMHDR&) {}
  virtual void OnSize() {}
  virtual void OnClose() = 0;
  // The smallest size a resizable dialog may be dragged to, in dialog units.
  virtual SIZE MinimumSize() const { return SIZE{0, 0}; }

  HWND Item(int id) const { return GetDlgItem(dialog_, id); }

  // A control at a place given in dialog units, with the dialog's font.
  HWND Add(const wchar_t* windowClass, const std::string& text, DWORD style, int id, int x, int y, int w, int h,
           DWORD exStyle = 0) {
    RECT r{x, y, x + w, y + h};
    MapDialogRect(dialog_, &r);
    HWND control = CreateWindowExW(exStyle, windowClass, Widen(text).c_str(), WS_CHILD | WS_VISIBLE | style,
                                   r.left, r.top, r.right - r.left, r.bottom - r.top, dialog_,
                                   reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ThisModule(), nullptr);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(dialog_, WM_GETFONT, 0, 0)), FALSE);
    return control;
  }

  // Dialog units to pixels.
  int Px(int units, bool horizontal) const {
    RECT r{0, 0, units, units};
    MapDialogRect(dialog_, &r);
    return horizontal ? r.right : r.bottom;
  }

  void Place(int id, int x, int y, int w, int h) const {
    SetWindowPos(Item(id), nullptr, x, y, std::max(w, 0), std::max(h, 0), SWP_NOZORDER | SWP_NOACTIVATE);
  }

  template <class F>
  void Guarded(F&& call) {
    try {
      call();
    } catch (const std::exception& e) {
      wchar_t caption[256] = L"";
      GetWindowTextW(dialog_, caption, 256);
      MessageBoxW(dialog_, Widen(e.what()).c_str(), caption, MB_OK | MB_ICONERROR);
    }
  }

  void Close(INT_PTR result) { EndDialog(dialog_, result); }

  HWND dialog_ = nullptr;

 private:
  static INT_PTR CALLBACK Proc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    auto* self = reinterpret_cast<DialogWindow*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!self) return FALSE;
    try {
      switch (message) {
        case WM_INITDIALOG:
          self->dialog_ = dialog;
          self->OnInit();
          return TRUE;
        case WM_COMMAND: self->OnCommand(LOWORD(wParam), HIWORD(wParam)); return TRUE;
        case WM_NOTIFY: self->OnNotify(*reinterpret_cast<const NMHDR*>(lParam)); return FALSE;
        case WM_SIZE: self->OnSize(); return FALSE;
        case WM_GETMINMAXINFO:
          if (self->dialog_ && self->MinimumSize().cx > 0) {
            auto* info = reinterpret_cast<MINMAXINFO*>(lParam);
            info->ptMinTrackSize = POINT{self->Px(self->MinimumSize().cx, true), self->Px(self->MinimumSize().cy, false)};
          }
          return FALSE;
        case WM_CLOSE: self->OnClose(); return TRUE;
        default: return FALSE;
      }
    } catch (const std::exception&) {
      // Only the model's own calls can fail, and those are guarded; a
      // failure in the window code itself closes the dialog unaccepted.
      self->OnClose();
      return TRUE;
    }
  }
};

// --- frmImportBSpline -------------------------------------------------------

class FileChoiceWindow final : public DialogWindow {
 public:
  FileChoiceWindow(ModalDialog& model, FileChoiceForm& form) : model_(model), form_(form) {}

  void Run(HWND owner) {
    DialogWindow::Run(owner, Widen(form_.Caption("")), form_.Font(), 262, 112,
                      DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_CENTER);
  }

 private:
  void OnInit() override {
    Add(L"BUTTON", form_.Caption("fraFilename"), BS_GROUPBOX, C::fraFilename, 7, 5, 248, 78);
    Add(L"STATIC", form_.Caption("lblDescription"), SS_LEFT, C::lblDescription, 15, 18, 232, 34);
    Add(L"EDIT", form_.ChosenFile(), ES_AUTOHSCROLL | ES_READONLY | WS_TABSTOP, C::txtFilename, 15, 58, 176, 14,
        WS_EX_CLIENTEDGE);
    Add(L"BUTTON", form_.Caption("cmdBrowse"), BS_PUSHBUTTON | WS_TABSTOP, C::cmdBrowse, 196, 57, 50, 16);
    Add(L"BUTTON", form_.Caption("cmdOK"), BS_DEFPUSHBUTTON | WS_TABSTOP, C::cmdOK, 148, 90, 52, 16);
    Add(L"BUTTON", form_.Caption("cmdCancel"), BS_PUSHBUTTON | WS_TABSTOP, C::cmdCancel, 204, 90, 52, 16);
    Refresh();
  }

  void OnCommand(int id, int code) override {
    if (code != BN_CLICKED) return;
    switch (id) {
      case C::cmdBrowse:
        Guarded([&] { model_.Press("Browse"); });
        Refresh();
        SendMessageW(dialog_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(C::txtFilename)), TRUE);
        break;
      case C::cmdOK: Press("Import", IDOK); break;
      case C::cmdCancel: Press("Cancel", IDCANCEL); break;
      case IDCANCEL: OnClose(); break;  // Escape: as the title-bar control
      default: break;
    }
  }

  void OnClose() override {
    model_.CloseByControl();
    Close(IDCANCEL);
  }

  void Press(const char* button, INT_PTR result) {
    bool closes = false;
    Guarded([&] { closes = model_.IsEnabled(button) && model_.Press(button); });
    if (closes) Close(result);
  }

  void Refresh() {
    SetWindowTextW(Item(C::txtFilename), Widen(form_.ChosenFile()).c_str());
    EnableWindow(Item(C::cmdOK), model_.IsEnabled("Import") ? TRUE : FALSE);
  }

  ModalDialog& model_;
  FileChoiceForm& form_;
};

// --- frmScene ---------------------------------------------------------------

class TreeBrowserWindow final : public DialogWindow {
 public:
  TreeBrowserWindow(ModalDialog& model, TreeBrowserForm& form) : model_(model), form_(form) {}

  void Run(HWND owner) {
    DialogWindow::Run(owner, Widen(form_.Caption("")), form_.Font(), 400, 260,
                      WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MAXIMIZEBOX | DS_CENTER);
  }

 private:
  void OnInit() override {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_TREEVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    Add(WC_TREEVIEWW, "", TVS_HASLINES | TVS_LINESATROOT | TVS_HASBUTTONS | TVS_SHOWSELALWAYS | WS_TABSTOP,
        C::TreeView, 0, 0, 10, 10, WS_EX_CLIENTEDGE);
    Add(L"STATIC", form_.Caption("lblComponents"), SS_LEFT, C::lblComponents, 0, 0, 10, 10);
    const DWORD list = LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_HSCROLL | WS_TABSTOP;
    Add(L"LISTBOX", "", list, C::lstComponents, 0, 0, 10, 10, WS_EX_CLIENTEDGE);
    Add(L"STATIC", form_.Caption("lblVariables"), SS_LEFT, C::lblVariables, 0, 0, 10, 10);
    Add(L"LISTBOX", "", list, C::lstVariables, 0, 0, 10, 10, WS_EX_CLIENTEDGE);
    Add(L"STATIC", "", SS_LEFTNOWORDWRAP | SS_ENDELLIPSIS, C::lblStatus, 0, 0, 10, 10);
    Add(L"BUTTON", form_.Caption("cmdOK"), BS_DEFPUSHBUTTON | WS_TABSTOP, C::cmdOK, 0, 0, 10, 10);
    FillTree();
    OnSize();
  }

  void FillTree() {
    items_ = form_.TreeItems();
    std::vector<HTREEITEM> path;  // the items from the root to the last one
    for (std::size_t i = 0; i < items_.size(); ++i) {
      const std::size_t depth = static_cast<std::size_t>(std::max(items_[i].depth, 0));
      path.resize(std::min(depth, path.size()));
      std::wstring label = Widen(items_[i].label);
      TVINSERTSTRUCTW insert{};
      insert.hParent = path.empty() ? TVI_ROOT : path.back();
      insert.hInsertAfter = TVI_LAST;
      insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_STATE;
      insert.item.pszText = label.data();
      insert.item.lParam = static_cast<LPARAM>(i);
      insert.item.state = insert.item.stateMask = TVIS_EXPANDED;
      path.push_back(reinterpret_cast<HTREEITEM>(
          SendMessageW(Item(C::TreeView), TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert))));
    }
  }

  // The tree on the left; the two lists, one above the other, on the right;
  // the status line and OK along the bottom.  Everything follows the size.
  void OnSize() override {
    RECT client{};
    GetClientRect(dialog_, &client);
    const int m = Px(7, true), gap = Px(4, false), label = Px(10, false);
    const int buttonW = Px(52, true), buttonH = Px(16, false);
    const int w = client.right - 2 * m, bottom = client.bottom - m - buttonH;
    const int treeW = w * 11 / 20, rightX = m + treeW + m, rightW = client.right - m - rightX;
    const int top = m, listsH = bottom - gap - top;
    Place(C::TreeView, m, top, treeW, listsH);
    const int partsH = (listsH - 2 * label) * 2 / 5;
    Place(C::lblComponents, rightX, top, rightW, label);
    Place(C::lstComponents, rightX, top + label, rightW, partsH);
    const int varY = top + label + partsH + gap;
    Place(C::lblVariables, rightX, varY, rightW, label);
    Place(C::lstVariables, rightX, varY + label, rightW, bottom - gap - varY - label);
    Place(C::lblStatus, m, bottom + (buttonH - label) / 2, client.right - 3 * m - buttonW, label);
    Place(C::cmdOK, client.right - m - buttonW, bottom, buttonW, buttonH);
    InvalidateRect(dialog_, nullptr, TRUE);
  }

  SIZE MinimumSize() const override { return SIZE{240, 160}; }

  void OnNotify(const NMHDR& header) override {
    if (header.idFrom != static_cast<UINT_PTR>(C::TreeView) || header.code != TVN_SELCHANGEDW) return;
    const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
    const auto index = static_cast<std::size_t>(change.itemNew.lParam);
    if (index >= items_.size()) return;
    Guarded([&] { form_.SelectItem(items_[index].key); });
    Fill(C::lstComponents, form_.Parts());
    Fill(C::lstVariables, form_.Details());
    Status();
  }

  void OnCommand(int id, int code) override {
    if (id == C::lstComponents && code == LBN_SELCHANGE) {
      const LRESULT row = SendMessageW(Item(id), LB_GETCURSEL, 0, 0);
      if (row < 0) return;
      Guarded([&] { form_.SelectPart(static_cast<std::int32_t>(row) + 1); });
      Fill(C::lstVariables, form_.Details());
      Status();
    } else if (id == C::lstVariables && code == LBN_SELCHANGE) {
      const LRESULT row = SendMessageW(Item(id), LB_GETCURSEL, 0, 0);
      if (row < 0) return;
      Guarded([&] { form_.SelectDetail(static_cast<std::int32_t>(row) + 1); });
      Status();
    } else if (id == C::cmdOK && code == BN_CLICKED) {
      bool closes = false;
      Guarded([&] { closes = model_.Press("OK"); });
      if (closes) Close(IDOK);
    } else if (id == IDCANCEL) {
      OnClose();
    }
  }

  void OnClose() override {
    model_.CloseByControl();
    Close(IDCANCEL);
  }

  void Fill(int id, const std::vector<std::string>& rows) {
    HWND list = Item(id);
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    int widest = 0;
    HDC dc = GetDC(list);
    HGDIOBJ old = SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(list, WM_GETFONT, 0, 0)));
    for (const std::string& row : rows) {
      const std::wstring text = Widen(row);
      SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
      SIZE size{};
      GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
      widest = std::max(widest, static_cast<int>(size.cx));
    }
    SelectObject(dc, old);
    ReleaseDC(list, dc);
    // Long rows scroll sideways instead of being cut.
    SendMessageW(list, LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest + Px(4, true)), 0);
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
  }

  void Status() { SetWindowTextW(Item(C::lblStatus), Widen(form_.Status()).c_str()); }

  ModalDialog& model_;
  TreeBrowserForm& form_;
  std::vector<TreeBrowserForm::TreeItem> items_;
};

}  // namespace

void RunFileChoiceDialog(ModalDialog& model, FileChoiceForm& form, HWND owner) {
  FileChoiceWindow(model, form).Run(owner);
}

void RunTreeBrowserDialog(ModalDialog& model, TreeBrowserForm& form, HWND owner) {
  TreeBrowserWindow(model, form).Run(owner);
}

}  // namespace TessarkAO::Win32

#endif  // _WIN32

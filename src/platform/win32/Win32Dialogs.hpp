// The library's two modal dialogs as Win32 windows over their models (see
// platform/DialogForms.hpp): each runs modally, owned by `owner`, and
// forwards every press and selection to the model.
#pragma once

#include "platform/UserInterface.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO::Win32 {

void RunFileChoiceDialog(ModalDialog& model, FileChoiceForm& form, HWND owner);
void RunTreeBrowserDialog(ModalDialog& model, TreeBrowserForm& form, HWND owner);

}  // namespace TessarkAO::Win32

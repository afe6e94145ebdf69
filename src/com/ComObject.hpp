// ComObject: an object of the library's caller (a host object, a script's
// object, the spreadsheet application) as the runtime sees it.
//
// The library calls it late-bound by name, as it calls every foreign object:
// names are resolved once per object through GetIDsOfNames and kept.  Gets
// and method calls are made with DISPATCH_METHOD | DISPATCH_PROPERTYGET and
// every argument by reference (VT_BYREF | VT_VARIANT), so that members which
// write their arguments (a transform filled into an array, say) reach the
// library's variants; a put passes its value by value.
//
// Errors: DISP_E_EXCEPTION arrives with the callee's HRESULT, description and
// source unchanged; the dispatch failures become their classic numbers (438
// unknown member, 450 wrong argument count, 449 argument not optional, 13
// type mismatch, 6 overflow, 9 bad index); any other failure keeps its HRESULT.
#pragma once

#ifdef _WIN32

#include <string>
#include <utility>
#include <vector>

#include "automation/Object.hpp"
#include "platform/win32/Windows.hpp"

namespace TessarkAO::Com {

class ComObject final : public Object {
 public:
  explicit ComObject(IDispatch* dispatch, IUnknown* identity);
  ~ComObject() override;

  IDispatch* Dispatch() const noexcept { return dispatch_; }

  DispId GetDispId(std::string_view name) const override;
  Variant InvokeId(DispId id, CallKind kind, std::span<Variant> args) override;
  std::string TypeName() const override;

 private:
  IDispatch* dispatch_;
  IUnknown* identity_;  // the object's IUnknown, its identity in the map
  mutable std::vector<std::pair<std::string, DISPID>> names_;
};

// The ComObject of an IDispatch, the same one while it lives.
Ref<Object> ForeignObject(IDispatch* dispatch);

// The classic error of a failed IDispatch::Invoke.
[[noreturn]] void RaiseDispatchFailure(HRESULT hr, const EXCEPINFO& info);

}  // namespace TessarkAO::Com

#endif  // _WIN32

#ifdef _WIN32

#include "com/ClassFactory.hpp"

#include <atomic>
#include <new>

#include "automation/AutomationError.hpp"
#include "com/ComServer.hpp"
#include "com/VariantBridge.hpp"

namespace TessarkAO::Com {

namespace {

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const ClassRecord& record) : record_(record) { ObjectCreated(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (riid != IID_IUnknown && riid != IID_IClassFactory) return E_NOINTERFACE;
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG n = --refs_;
    if (n == 0) delete this;
    return n;
  }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    try {
      IDispatch* dispatch = ToDispatch(CreateObject(record_.progId));
      if (!dispatch) return E_UNEXPECTED;
      const HRESULT hr = dispatch->QueryInterface(riid, out);
      dispatch->Release();
      return hr;
    } catch (...) {
      return static_cast<HRESULT>(CurrentError().HResult());
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    Com::LockServer(lock != FALSE);
    return S_OK;
  }

 private:
  ~ClassFactory() { ObjectDestroyed(); }

  std::atomic<ULONG> refs_{1};
  const ClassRecord& record_;
};

}  // namespace

IClassFactory* NewClassFactory(const ClassRecord& record) { return new ClassFactory(record); }

}  // namespace TessarkAO::Com

#endif  // _WIN32

#include "ui/win32/accessible.hpp"

#include <windows.h>
// after windows.h, which they build on
#include <oleacc.h>

#include <atomic>
#include <utility>

#include "ui/win32/system_library.hpp"
#include "ui/win32/unique_com.hpp"

namespace ui::win32 {
namespace {

bool IsSelf(const VARIANT& child) { return child.vt == VT_I4 && child.lVal == CHILDID_SELF; }

HRESULT Give(const std::wstring& text, BSTR* out) {
  *out = text.empty() ? nullptr : SysAllocString(text.c_str());
  return text.empty() ? S_FALSE : S_OK;
}

HRESULT Give(LONG number, VARIANT* out) {
  out->vt = VT_I4;
  out->lVal = number;
  return S_OK;
}

// What the system says of a window, with role, name, state and value put right. Outlives its window, of which
// it then tells what the system does.
class Accessible final : public IAccessible {
 public:
  Accessible(HWND window, UniqueCom<IAccessible> standard, FindSpeaker find)
      : window_(window), standard_(std::move(standard)), find_(find) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    const bool known = id == IID_IUnknown || id == IID_IDispatch || id == IID_IAccessible;
    *out = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++count_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --count_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* out) override {
    const auto spoken = Of(child);
    return spoken ? Give(spoken->name, out) : standard_->get_accName(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* out) override {
    const auto spoken = Of(child);
    return spoken ? Give(spoken->value, out) : standard_->get_accValue(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* out) override {
    const auto spoken = Of(child);
    return spoken ? Give(spoken->role, out) : standard_->get_accRole(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* out) override {
    const HRESULT result = standard_->get_accState(child, out);
    const auto spoken = Of(child);
    if (!spoken) return result;
    return Give(spoken->state | (SUCCEEDED(result) && out->vt == VT_I4 ? out->lVal : 0), out);
  }
  HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* out) override {
    const auto spoken = Of(child);
    return spoken ? Give(spoken->action, out) : standard_->get_accDefaultAction(child, out);
  }
  HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
    const auto spoken = Of(child);
    if (!spoken) return standard_->accDoDefaultAction(child);
    if (spoken->action.empty()) return DISP_E_MEMBERNOTFOUND;
    PostMessageW(window_, BM_CLICK, 0, 0);  // the reader does not wait for what the press starts
    return S_OK;
  }

  // The system's word.
  HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** out) override { return standard_->get_accParent(out); }
  HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* out) override {
    return standard_->get_accChildCount(out);
  }
  HRESULT STDMETHODCALLTYPE get_accChild(VARIANT child, IDispatch** out) override {
    return standard_->get_accChild(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* out) override {
    return standard_->get_accDescription(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* out) override {
    return standard_->get_accHelp(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override {
    return standard_->get_accHelpTopic(file, child, topic);
  }
  HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* out) override {
    return standard_->get_accKeyboardShortcut(child, out);
  }
  HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* out) override { return standard_->get_accFocus(out); }
  HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* out) override {
    return standard_->get_accSelection(out);
  }
  HRESULT STDMETHODCALLTYPE accSelect(LONG how, VARIANT child) override {
    return standard_->accSelect(how, child);
  }
  HRESULT STDMETHODCALLTYPE accLocation(LONG* x, LONG* y, LONG* width, LONG* height, VARIANT child) override {
    return standard_->accLocation(x, y, width, height, child);
  }
  HRESULT STDMETHODCALLTYPE accNavigate(LONG where, VARIANT from, VARIANT* out) override {
    return standard_->accNavigate(where, from, out);
  }
  HRESULT STDMETHODCALLTYPE accHitTest(LONG x, LONG y, VARIANT* out) override {
    return standard_->accHitTest(x, y, out);
  }
  HRESULT STDMETHODCALLTYPE put_accName(VARIANT child, BSTR name) override {
    return standard_->put_accName(child, name);
  }
  HRESULT STDMETHODCALLTYPE put_accValue(VARIANT child, BSTR value) override {
    return standard_->put_accValue(child, value);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* out) override { return standard_->GetTypeInfoCount(out); }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT which, LCID locale, ITypeInfo** out) override {
    return standard_->GetTypeInfo(which, locale, out);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* out) override {
    return standard_->GetIDsOfNames(id, names, count, locale, out);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO* exception, UINT* wrong) override {
    return standard_->Invoke(member, id, locale, flags, arguments, result, exception, wrong);
  }

 private:
  ~Accessible() = default;

  std::optional<Spoken> Of(const VARIANT& child) const {
    const Speaker* speaker = IsSelf(child) ? find_(window_) : nullptr;
    return speaker ? speaker->Speak() : std::nullopt;
  }

  HWND window_;
  UniqueCom<IAccessible> standard_;
  FindSpeaker find_;
  std::atomic<ULONG> count_{1};
};

}  // namespace

std::optional<LRESULT> AnswerGetObject(HWND window, WPARAM wParam, LPARAM lParam, FindSpeaker find) {
  if (static_cast<DWORD>(lParam) != static_cast<DWORD>(OBJID_CLIENT)) return std::nullopt;
  const Speaker* speaker = find(window);
  if (!speaker || !speaker->Speak()) return std::nullopt;
  // Loaded when the first reader asks: most players never need it.
  using Create = HRESULT(WINAPI*)(HWND, LONG, REFIID, void**);
  using ToResult = LRESULT(WINAPI*)(REFIID, WPARAM, IUnknown*);
  static const auto create = SystemFunction<Create>(L"oleacc.dll", "CreateStdAccessibleObject");
  static const auto toResult = SystemFunction<ToResult>(L"oleacc.dll", "LresultFromObject");
  if (!create || !toResult) return std::nullopt;
  auto standard = Made<IAccessible>([&](IAccessible** made) {
    return create(window, OBJID_CLIENT, IID_IAccessible, reinterpret_cast<void**>(made));
  });
  if (!standard) return std::nullopt;
  const UniqueCom<IAccessible> accessible(new Accessible(window, std::move(standard), find));
  return toResult(IID_IAccessible, wParam, accessible.get());
}

}  // namespace ui::win32

/// What every COM object of the layer is made of: a reference count and a place in the live counts.
///
/// An object is created with one reference, which its creator hands out. The last Release deletes it. Derived classes
/// are final and are used by several threads at once.
#pragma once

#include <atomic>

#include "platform/standin/interface_rest.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/wmi_api.h"

namespace platform {

inline constexpr IID kIidUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// `Derived::kIid` is the id of `Interface`.
template <typename Derived, typename Interface>
class ComObject : public WithRest<Interface> {
 public:
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT QueryInterface(REFIID iid, void** object) final {
    Empty(object);
    return Pass(WithObject(ComCall("IUnknown::QueryInterface", E_NOINTERFACE)), Asked(), [&] {
      if (object == nullptr) return E_POINTER;
      if (iid != kIidUnknown && iid != Derived::kIid) return QueryOther(iid, object);
      ++references_;
      *object = static_cast<Interface*>(this);
      return S_OK;
    });
  }

  ULONG AddRef() final {
    return Pass(SureCall<ULONG>("IUnknown::AddRef"), Asked(), [this] { return ++references_; });
  }

  ULONG Release() final {
    return Pass(SureCall<ULONG>("IUnknown::Release"), Asked(), [this] {
      const ULONG left = --references_;
      if (left == 0) delete static_cast<Derived*>(this);
      return left;
    });
  }

 protected:
  ComObject() { ++g_live.com_objects; }
  ~ComObject() { --g_live.com_objects; }

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace platform

/// The operations of the management service's interfaces that the layer does not offer. Here its objects implement the
/// platform's real interfaces, which have all of them.
#pragma once

#include "platform/wmi.h"

namespace platform {

/// `Interface`, whose operations answer E_NOTIMPL unless the layer has them.
template <typename Interface>
class WithRest : public Interface {};

// NOLINTBEGIN(cppcoreguidelines-macro-usage): dozens of operations of which only the signatures differ
#define ZARN_NOT_IMPLEMENTED(name, ...) \
  HRESULT STDMETHODCALLTYPE name(__VA_ARGS__) final { return E_NOTIMPL; }
// NOLINTEND(cppcoreguidelines-macro-usage)

template <>
class WithRest<IWbemServices> : public IWbemServices {
 public:
  using Context = IWbemContext*;
  using Result = IWbemCallResult**;
  using Sink = IWbemObjectSink*;

  ZARN_NOT_IMPLEMENTED(OpenNamespace, BSTR, LONG, Context, IWbemServices**, Result)
  ZARN_NOT_IMPLEMENTED(CancelAsyncCall, Sink)
  ZARN_NOT_IMPLEMENTED(QueryObjectSink, LONG, IWbemObjectSink**)
  ZARN_NOT_IMPLEMENTED(GetObjectAsync, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(PutClass, IWbemClassObject*, LONG, Context, Result)
  ZARN_NOT_IMPLEMENTED(PutClassAsync, IWbemClassObject*, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(DeleteClass, BSTR, LONG, Context, Result)
  ZARN_NOT_IMPLEMENTED(DeleteClassAsync, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(CreateClassEnum, BSTR, LONG, Context, IEnumWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(CreateClassEnumAsync, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(PutInstance, IWbemClassObject*, LONG, Context, Result)
  ZARN_NOT_IMPLEMENTED(PutInstanceAsync, IWbemClassObject*, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(DeleteInstance, BSTR, LONG, Context, Result)
  ZARN_NOT_IMPLEMENTED(DeleteInstanceAsync, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(CreateInstanceEnumAsync, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(ExecQueryAsync, BSTR, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(ExecNotificationQuery, BSTR, BSTR, LONG, Context, IEnumWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(ExecNotificationQueryAsync, BSTR, BSTR, LONG, Context, Sink)
  ZARN_NOT_IMPLEMENTED(ExecMethodAsync, BSTR, BSTR, LONG, Context, IWbemClassObject*, Sink)
};

template <>
class WithRest<IWbemClassObject> : public IWbemClassObject {
 public:
  ZARN_NOT_IMPLEMENTED(GetQualifierSet, IWbemQualifierSet**)
  ZARN_NOT_IMPLEMENTED(Delete, LPCWSTR)
  ZARN_NOT_IMPLEMENTED(GetNames, LPCWSTR, LONG, VARIANT*, SAFEARRAY**)
  ZARN_NOT_IMPLEMENTED(BeginEnumeration, LONG)
  ZARN_NOT_IMPLEMENTED(Next, LONG, BSTR*, VARIANT*, CIMTYPE*, LONG*)
  ZARN_NOT_IMPLEMENTED(EndEnumeration)
  ZARN_NOT_IMPLEMENTED(GetPropertyQualifierSet, LPCWSTR, IWbemQualifierSet**)
  ZARN_NOT_IMPLEMENTED(Clone, IWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(GetObjectText, LONG, BSTR*)
  ZARN_NOT_IMPLEMENTED(SpawnDerivedClass, LONG, IWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(SpawnInstance, LONG, IWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(CompareTo, LONG, IWbemClassObject*)
  ZARN_NOT_IMPLEMENTED(GetPropertyOrigin, LPCWSTR, BSTR*)
  ZARN_NOT_IMPLEMENTED(InheritsFrom, LPCWSTR)
  ZARN_NOT_IMPLEMENTED(PutMethod, LPCWSTR, LONG, IWbemClassObject*, IWbemClassObject*)
  ZARN_NOT_IMPLEMENTED(DeleteMethod, LPCWSTR)
  ZARN_NOT_IMPLEMENTED(BeginMethodEnumeration, LONG)
  ZARN_NOT_IMPLEMENTED(NextMethod, LONG, BSTR*, IWbemClassObject**, IWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(EndMethodEnumeration)
  ZARN_NOT_IMPLEMENTED(GetMethodQualifierSet, LPCWSTR, IWbemQualifierSet**)
  ZARN_NOT_IMPLEMENTED(GetMethodOrigin, LPCWSTR, BSTR*)
};

template <>
class WithRest<IEnumWbemClassObject> : public IEnumWbemClassObject {
 public:
  ZARN_NOT_IMPLEMENTED(Reset)
  ZARN_NOT_IMPLEMENTED(NextAsync, ULONG, IWbemObjectSink*)
  ZARN_NOT_IMPLEMENTED(Clone, IEnumWbemClassObject**)
  ZARN_NOT_IMPLEMENTED(Skip, LONG, ULONG)
};

template <>
class WithRest<IClientSecurity> : public IClientSecurity {
 public:
  ZARN_NOT_IMPLEMENTED(QueryBlanket, IUnknown*, DWORD*, DWORD*, OLECHAR**, DWORD*, DWORD*, void**, DWORD*)
  ZARN_NOT_IMPLEMENTED(CopyProxy, IUnknown*, IUnknown**)
};

#undef ZARN_NOT_IMPLEMENTED

/// The system's CoSetProxyBlanket asks the object for IClientSecurity.
HRESULT QueryOther(REFIID iid, void** object);

}  // namespace platform

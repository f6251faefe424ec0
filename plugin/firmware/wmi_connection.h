/// One connection to the management service, and the two things that are done over it: running a firmware method and
/// reading an instance's properties.
///
/// A connection belongs to the operation that opened it and to its thread; nothing is shared or cached. All operations
/// answer 1 for success and 0 for failure; `status` keeps the code of the most recent step. Nothing is thrown: memory
/// comes from the platform alone, which answers by a code when it runs out.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "firmware/com_resources.h"

inline constexpr wchar_t kFirmwareClass[] = L"ZarnGamingFunction";
inline constexpr wchar_t kFirmwareInstances[] = L"SELECT * FROM ZarnGamingFunction";

struct WmiConnection {
  HRESULT status = S_OK;
  std::int32_t may_uninitialize = 1;  // 0 on a thread whose COM belongs to somebody else
  std::int32_t com_initialized = 0;   // 1 once it was tried, even in vain
  ComPtr<IWbemServices> services;
  ComPtr<IWbemLocator> locator;

  WmiConnection() = default;
  WmiConnection(const WmiConnection&) = delete;
  WmiConnection& operator=(const WmiConnection&) = delete;
  ~WmiConnection();  // closes
};

/// A value under its name, to be sent or received.
struct NamedVariant {
  const wchar_t* name;
  Variant& value;
};

/// Connects to "ROOT\WMI". After a failure the connection holds nothing.
std::int32_t OpenWmiConnection(WmiConnection& connection);

/// Gives back what the connection holds; may be called again.
void CloseWmiConnection(WmiConnection& connection);

/// The object path of an instance, with its terminator.
using InstancePath = std::array<wchar_t, 260>;

/// Finds the first of the queried instances that has a name, and writes its object path; the path is empty when there
/// is none. Answers the query's result code, or a failure when the path does not fit.
HRESULT FindInstancePath(WmiConnection& connection, const wchar_t* class_name, const wchar_t* query,
                         InstancePath& path);

/// Runs `method` once on the instance that `query` finds: sends the values of `in`, copies those of `out` back. 1 when
/// all of that worked and at least one value was asked for.
std::int32_t ExecFirmwareMethod(WmiConnection& connection, const wchar_t* class_name, const wchar_t* method,
                                const wchar_t* query, std::span<const NamedVariant> in,
                                std::span<const NamedVariant> out);

/// Copies properties of the first instance of a class. 1 when all were there and at least one was asked for.
std::int32_t ReadInstanceProperties(WmiConnection& connection, const wchar_t* class_name,
                                    std::span<const NamedVariant> properties);

#include "host/library.h"

#include <dlfcn.h>

namespace zarn::host {

Library::Library(const std::filesystem::path& path) : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

Library::~Library() {
  if (library_ != nullptr && !kept_) dlclose(library_);
}

void* Library::Find(const std::string& name) const { return dlsym(library_, name.c_str()); }

std::string Library::LoadError(const std::filesystem::path& /*path*/) {
  const char* const why = dlerror();
  return why != nullptr ? why : "unknown error";
}

}  // namespace zarn::host

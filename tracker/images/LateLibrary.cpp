#include "tracker/images/LateLibrary.h"

#include <dlfcn.h>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// Where this code lies: the plugin, when it was linked into one, else the program.
fs::path ownFolder() {
  Dl_info self{};
  const bool isKnown =
      dladdr(reinterpret_cast<const void*>(&ownFolder), &self) != 0 && self.dli_fname != nullptr;
  std::error_code unknown;
  const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
  // A program is known by what it was called, which need not be where it is.
  const fs::path own = isKnown ? fs::path(self.dli_fname) : fs::path();
  return own.extension() == ".so" ? fs::absolute(own, unknown).parent_path()
                                  : program.parent_path();
}

/// In the folder of the program or plugin, or where those look for each other.
std::string placeOf(const std::string& library) {
  const fs::path own = ownFolder();
  std::error_code unknown;
  for (const fs::path& folder : {own, own / "..", own / "../lib/grouptracker"}) {
    if (fs::exists(folder / library, unknown)) {
      return (folder / library).string();
    }
  }
  return library;  // where the system's libraries are
}

}  // namespace

const void* lateInterface(const std::string& library, const char* function) {
  void* const handle = dlopen(placeOf(library).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw std::runtime_error(std::string("cannot be loaded: ") + dlerror());
  }
  using Function = const void* (*)();
  const auto interface = reinterpret_cast<Function>(dlsym(handle, function));
  if (interface == nullptr) {
    throw std::runtime_error(library + " is not of this version");
  }
  return interface();
}

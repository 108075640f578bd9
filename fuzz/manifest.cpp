#include "fuzz/FuzzedInput.h"
#include "host/batch/ManifestReader.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace grouptracker {

namespace {

/// A manifest is read by its name, which tells the format; the files go with the program.
class ManifestPlace {
 public:
  ManifestPlace()
      : m_folder(std::filesystem::temp_directory_path() /
                 ("grouptracker-fuzz-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(m_folder);
  }
  ManifestPlace(const ManifestPlace&) = delete;
  ManifestPlace& operator=(const ManifestPlace&) = delete;
  ~ManifestPlace() { std::filesystem::remove_all(m_folder); }

  std::string write(const char* name, std::istream& in) const {
    std::ofstream(m_folder / name, std::ios::binary) << in.rdbuf();
    return m_folder / name;
  }

 private:
  std::filesystem::path m_folder;
};

}  // namespace

// As TOML when it begins like that, so that the corpus is what people write.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ManifestPlace place;
  const bool isToml = size > 0 && (data[0] == '[' || data[0] == '#');
  return readFuzzed(data, size, [isToml](std::istream& in) {
    const auto reader = ManifestReader::open(
        place.write(isToml ? "manifest.toml" : "manifest.csv", in), [](const InputError&) {});
    for (ManifestEntry entry; reader->next(entry);) {
    }
  });
}

}  // namespace grouptracker

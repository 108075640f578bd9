#include "host/input/MobileArchive.h"

#include "host/base/OutputError.h"
#include "host/base/SystemProblem.h"
#include "host/base/TemporaryFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <unistd.h>

namespace grouptracker {

namespace {

constexpr std::size_t slotSize = 64;       // bytes
constexpr std::size_t shortTypeSize = 28;  // characters kept within the slot

/// One id's place in the file; all zeros, as in the file's holes, when nothing was stored.
struct Slot {
  std::uint32_t isUsed;
  std::uint32_t typeSize;  ///< characters
  BoundingBox3D box3D;
  union {
    std::array<char, shortTypeSize> shortType;
    std::uint64_t longTypePlace;  ///< bytes from the start of the file
  };
};
static_assert(sizeof(Slot) == slotSize);

// Type names that do not fit into a slot follow behind the slots of all ids.
constexpr std::uint64_t textBegin =
    (std::uint64_t{std::numeric_limits<std::uint32_t>::max()} + 1) * slotSize;

off_t place(std::uint32_t id) {
  return static_cast<off_t>(std::uint64_t{id} * slotSize);
}

}  // namespace

void MobileArchive::store(std::uint32_t id, const ArchivedMobile& mobile) {
  open();
  Slot slot{};
  slot.isUsed = 1;
  slot.typeSize = static_cast<std::uint32_t>(mobile.type.size());
  slot.box3D = mobile.box3D;
  if (mobile.type.size() <= shortTypeSize) {
    std::copy(mobile.type.begin(), mobile.type.end(), slot.shortType.begin());
  } else {
    slot.longTypePlace = appendText(mobile.type);
  }
  if (::pwrite(m_file.get(), &slot, sizeof slot, place(id)) != sizeof slot) {
    fail("the temporary file cannot be written");
  }
}

std::optional<ArchivedMobile> MobileArchive::load(std::uint32_t id) const {
  Slot slot{};
  if (m_file.isOpen() && ::pread(m_file.get(), &slot, sizeof slot, place(id)) < 0) {
    fail("the temporary file cannot be read");
  }
  if (slot.isUsed == 0) {
    return std::nullopt;
  }
  ArchivedMobile mobile{std::string(slot.typeSize, '\0'), slot.box3D};
  if (slot.typeSize <= shortTypeSize) {
    std::copy_n(slot.shortType.begin(), slot.typeSize, mobile.type.begin());
  } else if (::pread(m_file.get(), mobile.type.data(), slot.typeSize,
                     static_cast<off_t>(slot.longTypePlace)) != ssize_t{slot.typeSize}) {
    fail("the temporary file cannot be read");
  }
  return mobile;
}

void MobileArchive::open() {
  if (m_file.isOpen()) {
    return;
  }
  m_file = openTemporaryFile(m_folder);
  m_textEnd = textBegin;
}

std::uint64_t MobileArchive::appendText(const std::string& text) {
  const std::uint64_t begin = m_textEnd;
  if (::pwrite(m_file.get(), text.data(), text.size(), static_cast<off_t>(begin)) !=
      static_cast<ssize_t>(text.size())) {
    fail("the temporary file cannot be written");
  }
  m_textEnd += text.size();
  return begin;
}

void MobileArchive::fail(const char* what) const {
  throw OutputError(m_folder, systemProblem(what));
}

}  // namespace grouptracker

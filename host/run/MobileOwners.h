#pragma once

#include "host/people/InputFrame.h"

#include <QWeakPointer>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>

namespace grouptracker {

/// Remembers which actor had a mobile as its current one. Asked by observation, not by id, since an
/// id may be declared again. Forgets a mobile once nobody else holds it, so that memory follows
/// what the tracker keeps.
class MobileOwners {
 public:
  /// Notes the actors' current mobiles; of several actors with one mobile the last counts.
  void note(const InputFrame& frame);
  /// The actor that had the mobile as its current one; none when no actor had.
  std::optional<std::uint32_t> ownerOf(const MobilePointer& mobile) const;
  /// The number of mobiles that are remembered.
  std::size_t size() const { return m_owners.size(); }

 private:
  struct Owner {
    QWeakPointer<kelDataLinkedPhysicalObject> mobile;
    std::uint32_t actor = 0;
  };

  void forgetTheGone();

  std::unordered_map<const kelDataLinkedPhysicalObject*, Owner> m_owners;
  std::size_t m_cleanUpAt = 1024;  ///< entries at which the gone ones are looked for
};

}  // namespace grouptracker

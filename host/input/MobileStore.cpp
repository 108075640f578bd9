#include "host/input/MobileStore.h"

#include <opencv2/core/types.hpp>

#include <cstring>
#include <span>
#include <utility>

namespace grouptracker {

std::unique_ptr<MobileArchive::Table> MobileArchive::makeTable() {
  auto database = Database::temporary();
  database->execute("CREATE TABLE mobiles (id INTEGER PRIMARY KEY, type BLOB, box BLOB)");
  const Database& made = *database;
  return std::make_unique<Table>(
      Table{std::move(database), Statement(made, "INSERT OR REPLACE INTO mobiles VALUES (?, ?, ?)"),
            Statement(made, "SELECT type, box FROM mobiles WHERE id = ?")});
}

void MobileArchive::store(std::uint32_t id, const ArchivedMobile& mobile) {
  if (m_most && m_stored >= *m_most) {
    m_older = std::move(m_table);
    m_stored = 0;
  }
  if (!m_table) {
    m_table = makeTable();
  }
  m_table->insertion.row(std::int64_t{id}, std::as_bytes(std::span(mobile.type)),
                         std::as_bytes(std::span(&mobile.box3D, 1)));
  ++m_stored;
}

std::optional<ArchivedMobile> MobileArchive::load(std::uint32_t id) {
  const auto mobile = loadFrom(m_table.get(), id);
  return mobile ? mobile : loadFrom(m_older.get(), id);
}

std::optional<ArchivedMobile> MobileArchive::loadFrom(Table* table, std::uint32_t id) {
  if (table == nullptr) {
    return std::nullopt;
  }
  table->query.start(std::int64_t{id});
  if (!table->query.next()) {
    return std::nullopt;
  }
  ArchivedMobile mobile;
  const auto type = table->query.bytes(0);
  mobile.type.assign(reinterpret_cast<const char*>(type.data()), type.size());
  std::memcpy(&mobile.box3D, table->query.bytes(1).data(), sizeof mobile.box3D);
  return mobile;
}

void MobileStore::beginFrame() {
  ++m_frame;
  m_idsByFrame.emplace_back();
  if (m_idsByFrame.size() > m_window) {
    archiveOldest();
  }
}

bool MobileStore::declare(const MobilePointer& mobile) {
  if (isOfThisFrame(mobile->getIdent())) {
    return false;
  }
  m_recent[mobile->getIdent()] = {mobile, m_frame};
  m_idsByFrame.back().push_back(mobile->getIdent());
  return true;
}

const MobilePointer& MobileStore::find(std::uint32_t id) {
  const auto recent = m_recent.find(id);
  if (recent != m_recent.end()) {
    return recent->second.mobile;
  }
  const auto archived = m_archive.load(id);
  m_revived = archived ? MobilePointer::create(
                             id, QSharedPointer<kelDataPhysicalObject>::create(
                                     archived->type, cv::Rect(), archived->box3D, cv::Point3f()))
                       : MobilePointer();
  return m_revived;
}

bool MobileStore::isOfThisFrame(std::uint32_t id) const {
  const auto recent = m_recent.find(id);
  return recent != m_recent.end() && recent->second.frame == m_frame;
}

void MobileStore::archiveOldest() {
  const std::uint64_t oldestFrame = m_frame + 1 - m_idsByFrame.size();
  for (const std::uint32_t id : m_idsByFrame.front()) {
    const auto recent = m_recent.find(id);
    if (recent->second.frame == oldestFrame) {  // else it was declared again since
      if (m_archives) {
        const auto& object = recent->second.mobile->getPhysicalObject();
        m_archive.store(id, {object->getType(), object->getBoundingBox3D()});
      }
      m_recent.erase(recent);
    }
  }
  m_idsByFrame.pop_front();
}

}  // namespace grouptracker

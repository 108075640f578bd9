#include "host/input/MobileArchive.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace grouptracker {

namespace {

constexpr std::uint32_t idsOfBlock = 32;

/// Before the letters of its type, a mobile in a row of the database.
struct Head {
  std::uint32_t id = 0;
  std::uint32_t letters = 0;
  BoundingBox3D box3D;
};

}  // namespace

std::unique_ptr<MobileArchive::Table> MobileArchive::makeTable() {
  auto database = Database::temporary();
  database->execute("CREATE TABLE blocks (number INTEGER PRIMARY KEY, mobiles BLOB)");
  const Database& made = *database;
  return std::make_unique<Table>(
      Table{std::move(database), Statement(made, "INSERT OR REPLACE INTO blocks VALUES (?, ?)"),
            Statement(made, "SELECT mobiles FROM blocks WHERE number = ?")});
}

void MobileArchive::store(std::uint32_t id, const ArchivedMobile& mobile) {
  if (m_most && m_stored >= *m_most) {
    writeWaiting();
    m_older = std::move(m_table);
    m_stored = 0;
  }
  m_waiting.insert_or_assign(id, mobile);
  ++m_stored;
  if (m_waiting.size() >= m_mostWaiting) {
    writeWaiting();
  }
}

void MobileArchive::writeWaiting() {
  if (!m_table) {
    m_table = makeTable();
  }
  std::map<std::uint32_t, Block> blocks;
  for (auto& [id, mobile] : m_waiting) {
    blocks[id / idsOfBlock].emplace(id, std::move(mobile));
  }
  m_waiting.clear();
  for (auto& [number, block] : blocks) {
    block.merge(m_table->read(number));  // which adds the ids that are not there
    m_table->write(number, block);
  }
}

std::optional<ArchivedMobile> MobileArchive::load(std::uint32_t id) {
  if (const auto waiting = m_waiting.find(id); waiting != m_waiting.end()) {
    return waiting->second;
  }
  const auto mobile = loadFrom(m_table.get(), id);
  return mobile ? mobile : loadFrom(m_older.get(), id);
}

std::optional<ArchivedMobile> MobileArchive::loadFrom(Table* table, std::uint32_t id) {
  if (table == nullptr) {
    return std::nullopt;
  }
  Block block = table->read(id / idsOfBlock);
  const auto mobile = block.find(id);
  return mobile == block.end() ? std::nullopt : std::optional(std::move(mobile->second));
}

MobileArchive::Block MobileArchive::Table::read(std::uint32_t number) {
  Block block;
  query.start(std::int64_t{number});
  if (!query.next()) {
    return block;
  }
  auto bytes = query.bytes(0);
  while (!bytes.empty()) {
    Head head;
    std::memcpy(&head, bytes.data(), sizeof head);
    const auto* const letters = reinterpret_cast<const char*>(bytes.data() + sizeof head);
    block.emplace(head.id, ArchivedMobile{std::string(letters, head.letters), head.box3D});
    bytes = bytes.subspan(sizeof head + head.letters);
  }
  query.reset();
  return block;
}

void MobileArchive::Table::write(std::uint32_t number, const Block& block) {
  std::vector<std::byte> bytes;
  for (const auto& [id, mobile] : block) {
    const Head head{id, static_cast<std::uint32_t>(mobile.type.size()), mobile.box3D};
    const auto first = std::as_bytes(std::span(&head, 1));
    const auto letters = std::as_bytes(std::span(mobile.type));
    bytes.insert(bytes.end(), first.begin(), first.end());
    bytes.insert(bytes.end(), letters.begin(), letters.end());
  }
  insertion.row(std::int64_t{number}, Statement::Bytes(bytes));
}

}  // namespace grouptracker

#include "tests/support/host/GroupsSchema.h"

#include "tests/support/base/Texts.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <set>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>
#include <vector>

namespace grouptracker {

namespace {

using Json = nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

template <typename Item>
bool isAscending(const std::vector<Item>& items) {
  return std::adjacent_find(items.begin(), items.end(), std::greater_equal<>()) == items.end();
}

class GroupsCheck {
 public:
  GroupsCheck() {
    const Json source = Json::parse(textOf(GROUPTRACKER_GROUPS_SCHEMA));
    valijson::SchemaParser(valijson::SchemaParser::kDraft7)
        .populateSchema(Adapter(source), m_schema);
  }

  std::string faultIn(const std::string& text) {
    const Json line = Json::parse(text, nullptr, false);
    if (line.is_discarded() || !valijson::Validator().validate(m_schema, Adapter(line), nullptr)) {
      return "not of the schema";
    }
    return line.contains("header") ? "" : faultInFrame(line);
  }

 private:
  std::string faultInFrame(const Json& line) {
    std::vector<std::int64_t> groups;
    auto everybody = line["alone"].get<std::vector<Json>>();  // numbers before texts
    if (!isAscending(everybody)) {
      return "alone is not ascending";
    }
    for (const Json& group : line["groups"]) {
      const auto members = group["members"].get<std::vector<Json>>();
      everybody.insert(everybody.end(), members.begin(), members.end());
      const std::int64_t id = group["id"];
      groups.push_back(id);
      const auto since = m_since.try_emplace(id, line["frame"]).first->second;
      const auto from = group.value("from", std::vector<std::int64_t>());
      if (!isAscending(members) || since != group["since"] ||
          !std::includes(m_before.begin(), m_before.end(), from.begin(), from.end())) {
        return "members, since or from of group " + std::to_string(id);
      }
    }
    if (!isAscending(groups)) {
      return "groups are not ascending";
    }
    m_before = groups;
    const std::set<Json> different(everybody.begin(), everybody.end());
    return different.size() == everybody.size() ? "" : "somebody is there twice";
  }

  valijson::Schema m_schema;
  std::map<std::int64_t, std::int64_t> m_since;
  std::vector<std::int64_t> m_before;  ///< groups of the line before, ascending
};

}  // namespace

std::string groupsFault(const std::string& text) {
  GroupsCheck check;
  for (const std::string& line : linesOf(text)) {
    const std::string fault = check.faultIn(line);
    if (!fault.empty()) {
      return fault + ": " + line;
    }
  }
  return "";
}

}  // namespace grouptracker

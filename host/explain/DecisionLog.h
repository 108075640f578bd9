#pragma once

#include "host/explain/MobileDump.h"
#include "host/run/Decision.h"
#include "host/run/RunStep.h"

#include <cstdint>
#include <istream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace grouptracker {

/// A group as the tracker's list at the end of each frame shows it:
///
///     - 4, mobiles: 155 156 startFrame=30, endFrame=-1, isUpdated=true, merged with 9 at frame 41
struct GroupLine {
  using Ties = std::vector<std::pair<int, int>>;  ///< other group and frame

  int id = 0;
  std::vector<std::int64_t> mobiles;  ///< of all remembered frames
  int endFrame = none;                ///< `none` while the group lives
  Ties merges;
  Ties splits;

  /// None for any other line.
  static std::optional<GroupLine> parse(const std::string& line);
};

/// Reads the tracker's diagnostics and keeps its decisions about groups. What the lines say is
/// taken as it stands; who joined and left follows from the lists of groups of consecutive frames.
/// Links, sons and ancestors are not in the diagnostics: they come from the mobile dump, if there
/// is one. Diagnostics without any frame are an `InputError`.
class DecisionLog {
 public:
  /// `name` is the file's name in messages; `dump` may be null and is only read.
  static DecisionLog read(std::istream& in, const std::string& name, MobileDump* dump);

  /// In order of the frames at which they were made.
  const std::vector<Decision>& decisions() const { return m_decisions; }
  /// The steps at which something was decided, with their decisions and nothing else.
  RunSteps steps() const;
  /// The parameter file that the diagnostics name.
  const std::string& parameterFile() const { return m_parameterFile; }
  /// The persons in a group at a processed frame; empty when there is no such group.
  std::set<std::int64_t> membersAt(int group, std::int32_t processedFrame) const;

 private:
  using Ids = std::set<std::int64_t>;
  struct Listed {
    GroupLine line;
    Ids members;  ///< the mobiles of the processed frame
    Ids persons;
  };

  void take(const std::string& line);
  void takeInput(const std::string& line);
  void takeProcessedMobiles(const std::string& line);
  void takeCoherence(const std::string& line);
  void takeCreation(const std::string& line);
  void takeGroup(const GroupLine& line);
  void findJoins(const Listed& now, const Listed* before);
  std::string linkOf(std::int64_t mobile, int group) const;
  std::string sharedSon(const Listed& group, int other) const;
  std::string ancestorOf(const Listed& group, int other) const;
  Decision& add(DecisionKind kind, std::optional<int> group, std::vector<std::int64_t> mobiles);
  std::vector<std::int64_t> personsOf(const std::vector<std::int64_t>& mobiles) const;

  std::string m_parameterFile;
  std::vector<Decision> m_decisions;
  std::map<int, std::map<std::int32_t, Ids>> m_membersAt;  ///< persons by group and frame

  MobileDump* m_dump = nullptr;
  const MobileDump::Mobiles* m_dumped = nullptr;  ///< of the frame in work; null without dump
  std::uint32_t m_frame = 0;
  std::int32_t m_processedFrame = 0;
  std::int64_t m_person = none;                               ///< whose mobiles are listed
  std::unordered_map<std::int64_t, std::int64_t> m_personOf;  ///< by mobile
  Ids m_processed;                                            ///< mobiles of the processed frame
  std::map<int, Listed> m_before;                             ///< the latest list of groups
  std::map<int, Listed> m_now;                                ///< the one in work
};

}  // namespace grouptracker

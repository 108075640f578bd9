#pragma once

#include <string>
#include <string_view>

/// What a mobile is: a person, a group of persons, noise or unknown, classified from the upstream
/// tracker's free text by how the text begins. Texts that begin otherwise are unknown, no error.
class ObjectType {
 public:
  /// An unknown type.
  ObjectType() = default;
  /// Classifies the text, case-sensitively: "PERSON_3" is a person, "A_PERSON" unknown.
  explicit ObjectType(const std::string& type);
  ObjectType(const ObjectType&) = default;
  ObjectType& operator=(const ObjectType&) = default;
  virtual ~ObjectType() = default;

  /// "PERSON", "GROUP_OF_PERSONS", "NOISE" or "UNKNOWN".
  std::string_view nameOf() const;

  bool isGroup() const { return m_code == groupCode; }
  bool isPerson() const { return m_code == personCode; }
  /// Never true: crowds are classified as unknown.
  bool isCrowd() const { return false; }
  bool isNoise() const { return m_code == noiseCode; }
  /// True for noise and for unknown mobiles.
  bool isNotPerson() const { return !isPerson() && !isGroup(); }

 private:
  // Rows in the table of names.
  static constexpr int personCode = 0;
  static constexpr int groupCode = 1;
  static constexpr int noiseCode = 2;
  static constexpr int unknownCode = 3;

  int m_code = unknownCode;
};

/// Whether the upstream tracker saw several people in the mobile.
inline bool isGroupOrCrowd(const ObjectType& type) {
  return type.isGroup() || type.isCrowd();
}

/// How many people a mobile brings to a group for good: noise brings nobody.
inline int headCount(const ObjectType& type) {
  if (isGroupOrCrowd(type)) {
    return 2;
  }
  return type.isPerson() ? 1 : 0;
}

/// How many people stand for a mobile at one frame: here noise counts, it may hide a member.
inline int presence(const ObjectType& type) {
  return isGroupOrCrowd(type) ? 2 : 1;
}

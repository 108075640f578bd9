#pragma once

#include "host/base/InputError.h"

#include <QString>
#include <QXmlStreamReader>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>

namespace grouptracker {

/// Goes through the elements of an XML text from a stream, in bounded memory. Broken XML and an
/// element longer than `longestElement` or nested deeper than `deepestElement` are an `InputError`.
class XmlElements {
 public:
  static constexpr std::size_t longestElement = 1024 * 1024;  // bytes from one mark to the next
  static constexpr int deepestElement = 64;                   // elements around it, and itself

  /// `name` is the file's name in messages. The stream must outlive the reader.
  XmlElements(std::istream& in, std::string name) : m_in(in), m_name(std::move(name)) {}

  /// Goes to the next start or end of an element; false at the end of the document.
  bool next();
  /// Whether the current mark is the start or the end of an element of that name.
  bool starts(const char* element) const;
  bool ends(const char* element) const;
  /// The number in an attribute of the current element. One that is missing or no finite number
  /// throws `ValueProblem`.
  double number(const char* attribute) const;

  std::uint64_t line() const { return static_cast<std::uint64_t>(m_xml.lineNumber()); }
  /// The error for a problem at the current mark.
  InputError error(const std::string& problem) const { return {m_name, line(), problem}; }

 private:
  bool feed();

  std::istream& m_in;
  std::string m_name;
  QXmlStreamReader m_xml;
  std::size_t m_fedSinceMark = 0;  ///< bytes
  int m_depth = 0;                 ///< elements that are open
};

}  // namespace grouptracker

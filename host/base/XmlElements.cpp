#include "host/base/XmlElements.h"

#include "host/base/InputError.h"
#include "host/base/TextNumbers.h"

#include <QByteArray>

#include <array>
#include <stdexcept>
#include <system_error>

namespace grouptracker {

namespace {

constexpr std::size_t parsedAtOnce = 16 * 1024;  // bytes

}  // namespace

bool XmlElements::next() {
  m_fedSinceMark = 0;
  for (;;) {
    const auto token = m_xml.readNext();
    if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::EndElement) {
      m_depth += token == QXmlStreamReader::StartElement ? 1 : -1;
      if (m_depth > deepestElement) {
        throw error("elements are nested too deep");
      }
      return true;
    }
    if (token == QXmlStreamReader::EndDocument) {
      return false;
    }
    if (token == QXmlStreamReader::Invalid) {
      const bool wantsMore = m_xml.error() == QXmlStreamReader::PrematureEndOfDocumentError;
      if (!wantsMore || !feed()) {
        throw error("not valid XML: " + m_xml.errorString().toStdString());
      }
    }
  }
}

bool XmlElements::starts(const char* element) const {
  return m_xml.isStartElement() && m_xml.name() == QLatin1String(element);
}

bool XmlElements::ends(const char* element) const {
  return m_xml.isEndElement() && m_xml.name() == QLatin1String(element);
}

double XmlElements::number(const char* attribute) const {
  const auto attributes = m_xml.attributes();
  const QStringRef value = attributes.value(QLatin1String(attribute));
  if (value.isNull()) {
    throw ValueProblem("the attribute " + std::string(attribute) + " is missing");
  }
  const QByteArray text = value.trimmed().toUtf8();
  try {
    return parseNumber({text.constData(), static_cast<std::size_t>(text.size())});
  } catch (const ValueProblem& problem) {
    throw ValueProblem(std::string(attribute) + ": " + problem.what());
  }
}

bool XmlElements::feed() {
  std::array<char, parsedAtOnce> chunk;
  try {
    m_in.read(chunk.data(), chunk.size());
  } catch (const std::system_error& failure) {
    throw error("cannot be read: " + failure.code().message());
  }
  m_fedSinceMark += static_cast<std::size_t>(m_in.gcount());
  if (m_fedSinceMark > longestElement) {
    throw error("an element is longer than " + std::to_string(longestElement) + " bytes");
  }
  m_xml.addData(QByteArray(chunk.data(), static_cast<int>(m_in.gcount())));
  return m_in.gcount() > 0;
}

}  // namespace grouptracker

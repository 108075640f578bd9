#include "host/report/ReportPage.h"

#include "host/base/PersonNames.h"
#include "host/pictures/GroupPalette.h"

#include <QFile>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <vector>

// Has to stand outside of any namespace: resources of a static library are not found without it.
static void initializeResources() {
  Q_INIT_RESOURCE(report);
}

namespace grouptracker {

namespace {

QByteArray pageTemplate() {
  initializeResources();
  QFile file(":/report/report.html");
  file.open(QIODevice::ReadOnly);
  return file.readAll();
}

/// JSON that cannot end the script element in which it stands; damaged UTF-8 is replaced.
QByteArray toScript(const nlohmann::json& value) {
  const std::string text = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  return QByteArray::fromStdString(text).replace('<', "\\u003c");
}

QByteArray element(const QByteArray& id, const QByteArray& type, const QByteArray& content) {
  return "<script id=\"" + id + "\" type=\"" + type + "\">" + content + "</script>\n";
}

std::vector<std::string> palette() {
  std::vector<std::string> colours;
  for (std::size_t i = 0; i < paletteSize; ++i) {
    colours.push_back(paletteText(i));
  }
  return colours;
}

}  // namespace

QByteArray makeReportPage(const ReportTitle& title, ReportData& data, const ImageStrip& images,
                          const Explanations& explanations) {
  ReportBody body;
  data.fill(body);
  const ImageStrip::Images strip = images.load(body);
  const cv::Matx22f turn = data.turn();
  nlohmann::json head{{"input", title.input},     {"groups", title.groups},
                      {"frames", data.frames()},  {"fps", title.framesPerSecond},
                      {"title", title.title},     {"date", title.date},
                      {"program", title.program}, {"parameters", title.parameters},
                      {"palette", palette()},     {"turn", turn.val},
                      {"arrays", body.list()}};
  for (const auto& [group, text] : explanations) {
    head["explanations"][std::to_string(group)] = text;
  }
  for (const std::uint32_t person : data.namedPersons()) {
    head["names"][std::to_string(person)] = PersonNames::ofProgram().textOf(person);
  }
  if (images.every() > 0) {
    head["images"] = {{"every", images.every()}, {"width", strip.width}};
  }
  QByteArray elements = element("head", "application/json", toScript(head)) +
                        element("body", "text/plain", body.packed());
  int number = 0;
  for (const QByteArray& image : strip.files) {
    elements += element("image-" + QByteArray::number(number++), "text/plain", image);
  }
  return pageTemplate().replace("<!--DATA-->", elements);
}

}  // namespace grouptracker

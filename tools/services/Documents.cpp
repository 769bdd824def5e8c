#include "services/Documents.h"

#include <QDateTime>
#include <QSet>
#include <QXmlStreamReader>
#include <vector>

namespace wattlark {

namespace {

const QString kAtom = QStringLiteral("http://www.w3.org/2005/Atom");
const QString kEeml = QStringLiteral("http://www.eeml.org/xsd/005");
const QString kRow = QStringLiteral("http://schemas.google.com/spreadsheets/2006/extended");
const QString kMeasurement = QStringLiteral("http://schemas.google.com/meter/2008");

struct Element {
  QString path;  ///< "/eeml/environment/data"
  QString space;
  QString text;
  QXmlStreamAttributes attributes;
};

struct Document {
  std::vector<Element> elements;  ///< in order of their start tags
  std::string problem;
};

Document Parse(const std::string& text) {
  Document document;
  std::vector<std::size_t> open;
  QXmlStreamReader reader(QByteArray::fromStdString(text));
  while (!reader.atEnd()) {
    reader.readNext();
    if (reader.isStartElement()) {
      const QString parent = open.empty() ? QString() : document.elements[open.back()].path;
      open.push_back(document.elements.size());
      document.elements.push_back({parent + '/' + reader.name().toString(),
                                   reader.namespaceUri().toString(), QString(),
                                   reader.attributes()});
    } else if (reader.isCharacters() && !open.empty()) {
      document.elements[open.back()].text += reader.text();
    } else if (reader.isEndElement()) {
      open.pop_back();
    }
  }
  if (reader.hasError()) document.problem = "no XML: " + reader.errorString().toStdString();
  return document;
}

bool IsNumber(const QString& text) {
  bool isNumber = false;
  text.toDouble(&isNumber);
  return isNumber;
}

std::string Unexpected(const Element& element) {
  return "unexpected: " + element.path.toStdString() + " \"" + element.text.toStdString() + "\"";
}

}  // namespace

std::string FeedProblem(const std::string& text) {
  const Document document = Parse(text);
  if (!document.problem.empty()) return document.problem;
  QSet<QString> identifiers;
  std::size_t streams = 0;
  std::size_t parts = 0;
  for (const Element& element : document.elements) {
    const auto attribute = [&](const char* name) {
      return element.attributes.value(QLatin1String(name));
    };
    bool isRight = element.space == kEeml;
    const QString path = element.path.mid(QStringLiteral("/eeml/environment").size());
    if (path == "/data") {
      ++streams;
      identifiers.insert(attribute("id").toString());
      isRight = isRight && IsNumber(attribute("id").toString());
    } else if (path == "/data/tag") {
      ++parts;
      isRight = isRight && element.text == "demand";
    } else if (path == "/data/value") {
      ++parts;
      isRight = isRight && IsNumber(element.text) && attribute("minValue") == QLatin1String("0") &&
                attribute("maxValue") == QLatin1String("1500");
    } else if (path == "/data/unit") {
      ++parts;
      isRight = isRight && attribute("symbol") == QLatin1String("W") && element.text == "Watts";
    } else {
      isRight = isRight && (element.path == "/eeml" || path.isEmpty());
    }
    if (!isRight) return Unexpected(element);
  }
  if (document.elements.size() < 2) return "no environment";
  const bool isComplete =
      static_cast<std::size_t>(identifiers.size()) == streams && parts == 3 * streams;
  return isComplete ? "" : "streams are incomplete or have the same name";
}

std::string RowProblem(const std::string& text) {
  const Document document = Parse(text);
  if (!document.problem.empty()) return document.problem;
  const std::vector<Element>& elements = document.elements;
  if (elements[0].path != "/entry" || elements[0].space != kAtom) return Unexpected(elements[0]);
  if (elements.size() < 2 || elements[1].path != "/entry/timestamp" || elements[1].text.isEmpty()) {
    return "no time stamp";
  }
  for (std::size_t i = 1; i < elements.size(); ++i) {
    const bool isValue = i == 1 || elements[i].text.isEmpty() || IsNumber(elements[i].text);
    if (elements[i].space != kRow || !isValue) return Unexpected(elements[i]);
  }
  return "";
}

std::string MeasurementProblem(const std::string& text) {
  const Document document = Parse(text);
  if (!document.problem.empty()) return document.problem;
  const std::vector<Element>& elements = document.elements;
  const char* const paths[] = {"/entry", "/entry/startTime", "/entry/endTime", "/entry/quantity"};
  if (elements.size() != std::size(paths)) return "not the elements of a measurement";
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const bool isRight =
        elements[i].path == paths[i] && elements[i].space == (i ? kMeasurement : kAtom);
    if (!isRight) return Unexpected(elements[i]);
  }
  const auto time = [&](std::size_t i) {
    return QDateTime::fromString(elements[i].text, QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzzZ"));
  };
  const qint64 seconds = time(1).secsTo(time(2));
  if (!time(1).isValid() || seconds < 600 || seconds > 3600) return "not the times of an interval";
  const bool isEnergy = IsNumber(elements[3].text) &&
                        elements[3].attributes.value(kMeasurement, "unit") == QLatin1String("kW h");
  return isEnergy ? "" : Unexpected(elements[3]);
}

}  // namespace wattlark

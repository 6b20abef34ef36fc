#include "reconstruct/ReconstructionReport.h"

#include "kernel/KernelTypes.h"
#include "reconstruct/Categories.h"
#include <cstdio>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tvx {

namespace {

double mm(double storeUnits) { return storeUnits / StoreUnitsPerMm; }

int32_t countOf(const ReconstructionReport& report, int32_t number) {
  return size_t(number - 1) < report.Counts.size() ? report.Counts[size_t(number - 1)].second : 0;
}

std::string mmText(double storeUnits) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", mm(storeUnits));
  return text;
}

}  // namespace

std::string reportSummary(const ReconstructionReport& report) {
  std::string line = "Pads: " + std::to_string(countOf(report, category::ThruPads)) + " through, " +
                     std::to_string(countOf(report, category::ViaPads)) + " vias, " +
                     std::to_string(countOf(report, category::SmdPadsTop)) + " SMD top, " +
                     std::to_string(countOf(report, category::SmdPadsBottom)) + " SMD bottom";
  if (report.Holes > 0)
    line += "; holes on a pad: " + std::to_string(report.HolesMatched) + " of " +
            std::to_string(report.Holes);
  return line;
}

std::string reportText(const ReconstructionReport& report) {
  std::string text;
  for (const auto& [caption, count] : report.Counts)
    text += caption + ": " + std::to_string(count) + "\n";
  const int32_t without = report.Holes - report.HolesMatched;
  text += "Holes: " + std::to_string(report.Holes) + ", on a pad " +
          std::to_string(report.HolesMatched) + ", without a pad " + std::to_string(without) +
          " (matched within " + mmText(report.Tolerance) + " mm)\n";
  for (const UnmatchedHole& hole : report.HolesWithoutPad)
    text += "  hole without a pad at " + mmText(hole.X) + ", " + mmText(hole.Y) + " mm" +
            (hole.NearestPad < 0 ? std::string(", no pad at all")
                                 : ", nearest pad " + mmText(hole.NearestPad) + " mm away") +
            "\n";
  if (size_t(without) > report.HolesWithoutPad.size())
    text += "  (" + std::to_string(size_t(without) - report.HolesWithoutPad.size()) +
            " more not listed)\n";
  return text;
}

std::string reportJson(const ReconstructionReport& report, int32_t viaCode) {
  QJsonObject categories;
  for (const auto& [caption, count] : report.Counts)
    categories.insert(QString::fromStdString(caption), count);
  QJsonArray unmatched;
  for (const UnmatchedHole& hole : report.HolesWithoutPad)
    unmatched.append(QJsonObject{
        {"x", mm(hole.X)},
        {"y", mm(hole.Y)},
        {"nearestPadMm", hole.NearestPad < 0 ? QJsonValue() : QJsonValue(mm(hole.NearestPad))}});
  const QJsonObject holes{{"total", report.Holes},
                          {"matched", report.HolesMatched},
                          {"withoutPad", report.Holes - report.HolesMatched},
                          {"toleranceMm", mm(report.Tolerance)},
                          {"unmatched", unmatched}};
  const QJsonObject root{{"categories", categories}, {"holes", holes}, {"viaCode", viaCode}};
  return QJsonDocument(root).toJson(QJsonDocument::Indented).toStdString();
}

}  // namespace tvx

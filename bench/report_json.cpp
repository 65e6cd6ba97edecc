// Reports as JSON, written and read back.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "bench_table.h"
#include "report.h"

namespace qnv::bench {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kProgram = "qnvbench";
constexpr int kFormat = 1;  // changes when old reports can no longer be read

// Fields without a value are left out.
Json RowToJson(const RowResult& row) {
  Json json = {{"name", row.name},
               {"shape", row.shape},
               {"best_ns", row.bestNs},
               {"median_ns", row.medianNs},
               {"calls", row.calls}};
  if (row.bytes > 0) json["bytes"] = row.bytes;
  if (row.sourceBytes > 0) json["source_bytes"] = row.sourceBytes;
  if (row.items > 0) json["items"] = row.items;
  if (row.bytes > 0) json["gb_per_s"] = row.Rate();
  if (row.sourceBytes > 0) json["source_gb_per_s"] = row.SourceRate();
  if (!row.limit.empty()) {
    json["limit"] = row.limit;
    json["limit_gb_per_s"] = row.limitRate;
    json["share"] = row.Share();
  }
  if (row.combineRate > 0) json["combine_gb_per_s"] = row.combineRate;
  if (row.plainNs > 0) {
    json["plain_ns"] = row.plainNs;
    json["gain"] = row.Gain();
  }
  for (const auto& [name, ns] : row.levels) json["levels_ns"][name] = ns;
  if (!row.rival.empty()) {
    json["rival"] = row.rival;
    json["rival_ns"] = row.rivalNs;
    json["rival_ratio"] = row.RivalRatio();
    json["rival_same_picture"] = row.rivalSame;
  }
  if (!row.note.empty()) json["note"] = row.note;
  return json;
}

// Takes a member over if it is there. Numbers that JSON does not have, such as infinite ones, are written as null.
template <class T>
void Read(const Json& json, const char* name, T& value) {
  const auto found = json.find(name);
  if (found != json.end() && !found->is_null()) found->get_to(value);
}

void ReadFigures(const Json& json, const char* name, std::vector<std::pair<std::string, double>>& figures) {
  const auto found = json.find(name);
  if (found == json.end()) return;
  for (const auto& [figure, value] : found->items()) {
    figures.push_back({figure, value.is_null() ? 0 : value.get<double>()});
  }
}

// False when the name is no row name or the time is missing.
bool RowFromJson(const Json& json, RowResult& row) {
  Read(json, "name", row.name);
  Read(json, "shape", row.shape);
  Read(json, "best_ns", row.bestNs);
  Read(json, "median_ns", row.medianNs);
  Read(json, "calls", row.calls);
  Read(json, "bytes", row.bytes);
  Read(json, "source_bytes", row.sourceBytes);
  Read(json, "items", row.items);
  Read(json, "limit", row.limit);
  Read(json, "limit_gb_per_s", row.limitRate);
  Read(json, "combine_gb_per_s", row.combineRate);
  Read(json, "plain_ns", row.plainNs);
  Read(json, "rival", row.rival);
  Read(json, "rival_ns", row.rivalNs);
  Read(json, "rival_same_picture", row.rivalSame);
  Read(json, "note", row.note);
  ReadFigures(json, "levels_ns", row.levels);
  RowName parts;
  return ParseRowName(row.name, parts) && row.bestNs > 0;
}

bool ReadReport(const Json& json, Report& report, std::string& error) {
  std::string program;
  int format = 0;
  Read(json, "program", program);
  Read(json, "format", format);
  if (program != kProgram) {
    error = "not a report of this program";
    return false;
  }
  if (format != kFormat) {
    error = "a report of another format";
    return false;
  }
  Read(json, "platform", report.platform);
  Read(json, "cpu", report.cpu);
  Read(json, "compiler", report.compiler);
  Read(json, "library", report.library);
  Read(json, "baseline", report.baseline);
  Read(json, "quick", report.quick);
  for (const Json& item : json.value("limits", Json::array())) {
    LimitResult limit;
    Read(item, "shape", limit.shape);
    Read(item, "bytes_per_pixel", limit.bytesPerPixel);
    Read(item, "kind", limit.kind);
    Read(item, "loop", limit.loop);
    Read(item, "gb_per_s", limit.rate);
    Read(item, "gb_per_s_at_end", limit.rateAtEnd);
    report.limits.push_back(std::move(limit));
  }
  std::vector<std::pair<std::string, double>> derived;
  ReadFigures(json, "derived", derived);
  for (auto& [name, value] : derived) report.derived.push_back({std::move(name), value});
  for (const Json& item : json.value("rows", Json::array())) {
    RowResult row;
    if (!RowFromJson(item, row)) {
      error = "a row that cannot be understood: '" + row.name + "'";
      return false;
    }
    report.rows.push_back(std::move(row));
  }
  return true;
}

}  // namespace

std::string ReportToJson(const Report& report) {
  Json json = {{"program", kProgram},         {"format", kFormat},           {"platform", report.platform},
               {"cpu", report.cpu},           {"compiler", report.compiler}, {"library", report.library},
               {"baseline", report.baseline}, {"quick", report.quick}};
  Json& limits = json["limits"] = Json::array();
  for (const LimitResult& limit : report.limits) {
    limits.push_back({{"shape", limit.shape},
                      {"bytes_per_pixel", limit.bytesPerPixel},
                      {"kind", limit.kind},
                      {"loop", limit.loop},
                      {"gb_per_s", limit.rate},
                      {"gb_per_s_at_end", limit.rateAtEnd}});
  }
  Json& rows = json["rows"] = Json::array();
  for (const RowResult& row : report.rows) rows.push_back(RowToJson(row));
  Json& derived = json["derived"] = Json::object();
  for (const DerivedResult& figure : report.derived) derived[figure.name] = figure.value;
  // Paths may hold bytes that are no UTF-8.
  return json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

bool ReportFromJson(const std::string& text, Report& report, std::string& error) {
  try {
    return ReadReport(Json::parse(text), report, error);
  } catch (const Json::exception& mistake) {
    error = mistake.what();
    return false;
  }
}

bool WriteTextFile(const std::string& path, const std::string& text) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return (std::fclose(file) == 0) && written;
}

bool ReadTextFile(const std::string& path, std::string& text) {
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  char buffer[65536];
  for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;) text.append(buffer, count);
  const bool good = std::ferror(file) == 0;
  std::fclose(file);
  return good;
}

}  // namespace qnv::bench

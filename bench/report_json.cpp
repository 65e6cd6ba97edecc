// Reports as JSON, written and read back.
#include "bench_table.h"
#include "report.h"

namespace qnv::bench {
namespace {

constexpr const char* kProgram = "qnvbench";
constexpr int kFormat = 1;  // changes when old reports can no longer be read

// Fields without a value are left out.
Json RowToJson(const RowResult& row) {
  Json json = Json::Object();
  json.Set("name", row.name);
  json.Set("shape", row.shape);
  json.Set("best_ns", row.bestNs);
  json.Set("median_ns", row.medianNs);
  json.Set("calls", row.calls);
  if (row.bytes > 0) json.Set("bytes", row.bytes);
  if (row.sourceBytes > 0) json.Set("source_bytes", row.sourceBytes);
  if (row.items > 0) json.Set("items", row.items);
  if (row.bytes > 0) json.Set("gb_per_s", row.Rate());
  if (row.sourceBytes > 0) json.Set("source_gb_per_s", row.SourceRate());
  if (!row.limit.empty()) {
    json.Set("limit", row.limit);
    json.Set("limit_gb_per_s", row.limitRate);
    json.Set("share", row.Share());
  }
  if (row.combineRate > 0) json.Set("combine_gb_per_s", row.combineRate);
  if (row.plainNs > 0) {
    json.Set("plain_ns", row.plainNs);
    json.Set("gain", row.Gain());
  }
  if (!row.levels.empty()) {
    Json levels = Json::Object();
    for (const auto& [name, ns] : row.levels) levels.Set(name, ns);
    json.Set("levels_ns", std::move(levels));
  }
  if (!row.rival.empty()) {
    json.Set("rival", row.rival);
    json.Set("rival_ns", row.rivalNs);
    json.Set("rival_ratio", row.RivalRatio());
    json.Set("rival_same_picture", row.rivalSame);
  }
  if (!row.note.empty()) json.Set("note", row.note);
  return json;
}

// False when the name is no row name or the time is missing.
bool RowFromJson(const Json& json, RowResult& row) {
  row.name = json["name"].text();
  row.shape = json["shape"].text();
  row.bestNs = json["best_ns"].number();
  row.medianNs = json["median_ns"].number();
  row.calls = json["calls"].number(1);
  row.bytes = json["bytes"].number();
  row.sourceBytes = json["source_bytes"].number();
  row.items = json["items"].number();
  row.limit = json["limit"].text();
  row.limitRate = json["limit_gb_per_s"].number();
  row.combineRate = json["combine_gb_per_s"].number();
  row.plainNs = json["plain_ns"].number();
  row.rival = json["rival"].text();
  row.rivalNs = json["rival_ns"].number();
  row.rivalSame = json["rival_same_picture"].boolean();
  row.note = json["note"].text();
  const Json& levels = json["levels_ns"];
  for (std::size_t i = 0; i < levels.names().size(); ++i) {
    row.levels.push_back({levels.names()[i], levels.items()[i].number()});
  }
  RowName parts;
  return ParseRowName(row.name, parts) && row.bestNs > 0;
}

}  // namespace

Json ReportToJson(const Report& report) {
  Json json = Json::Object();
  json.Set("program", kProgram);
  json.Set("format", static_cast<double>(kFormat));
  json.Set("platform", report.platform);
  json.Set("cpu", report.cpu);
  json.Set("compiler", report.compiler);
  json.Set("library", report.library);
  json.Set("baseline", report.baseline);
  json.Set("quick", report.quick);
  Json limits = Json::Array();
  for (const LimitResult& limit : report.limits) {
    Json item = Json::Object();
    item.Set("shape", limit.shape);
    item.Set("bytes_per_pixel", static_cast<double>(limit.bytesPerPixel));
    item.Set("kind", limit.kind);
    item.Set("loop", limit.loop);
    item.Set("gb_per_s", limit.rate);
    item.Set("gb_per_s_at_end", limit.rateAtEnd);
    limits.Add(std::move(item));
  }
  json.Set("limits", std::move(limits));
  Json rows = Json::Array();
  for (const RowResult& row : report.rows) rows.Add(RowToJson(row));
  json.Set("rows", std::move(rows));
  Json derived = Json::Object();
  for (const DerivedResult& figure : report.derived) derived.Set(figure.name, figure.value);
  json.Set("derived", std::move(derived));
  return json;
}

bool ReportFromJson(const Json& json, Report& report, std::string& error) {
  if (json["program"].text() != kProgram) {
    error = "not a report of this program";
    return false;
  }
  if (json["format"].number() != kFormat) {
    error = "a report of another format";
    return false;
  }
  report.platform = json["platform"].text();
  report.cpu = json["cpu"].text();
  report.compiler = json["compiler"].text();
  report.library = json["library"].text();
  report.baseline = json["baseline"].text();
  report.quick = json["quick"].boolean();
  for (const Json& item : json["limits"].items()) {
    LimitResult limit;
    limit.shape = item["shape"].text();
    limit.bytesPerPixel = static_cast<int>(item["bytes_per_pixel"].number());
    limit.kind = item["kind"].text();
    limit.loop = item["loop"].text();
    limit.rate = item["gb_per_s"].number();
    limit.rateAtEnd = item["gb_per_s_at_end"].number();
    report.limits.push_back(std::move(limit));
  }
  const Json& derived = json["derived"];
  for (std::size_t i = 0; i < derived.names().size(); ++i) {
    report.derived.push_back({derived.names()[i], derived.items()[i].number()});
  }
  for (const Json& item : json["rows"].items()) {
    RowResult row;
    if (!RowFromJson(item, row)) {
      error = "a row that cannot be understood: '" + item["name"].text() + "'";
      return false;
    }
    report.rows.push_back(std::move(row));
  }
  return true;
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

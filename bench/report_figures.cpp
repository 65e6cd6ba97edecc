// Computes the figures that combine several rows, and finds the names of processor, compiler and platform.
#include <cpuid.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

#include "bench_table.h"
#include "report.h"

namespace qnv::bench {
namespace {

using Times = std::map<std::string, double>;  // "name shape" to best nanoseconds

// The time of a row, 0 when it was not measured.
double Find(const Times& times, const std::string& key) {
  const auto found = times.find(key);
  return found == times.end() ? 0 : found->second;
}

// The name of the same row on another band.
std::string WithBand(const std::string& name, Band band) {
  RowName parts;
  if (!ParseRowName(name, parts)) return {};
  parts.band = band;
  return ComposeRowName(parts);
}

// The band that a row name names.
Band BandOf(const RowResult& row) {
  RowName parts;
  ParseRowName(row.name, parts);
  return parts.band;
}

// How much longer calls take on the dual-plane device than the same calls on a color band alone.
void AddTagCosts(const std::vector<RowResult>& rows, const Times& times, std::vector<DerivedResult>& figures) {
  std::vector<double> uniform;
  for (const RowResult& row : rows) {
    const Band band = BandOf(row);
    if (!IsDual(band) || row.shape == "page") continue;
    const double alone = Find(times, WithBand(row.name, Band::kBgr24) + " " + row.shape);
    if (alone <= 0) continue;
    if (band == Band::kDual && row.name.rfind("stretch_", 0) != 0) uniform.push_back(row.bestNs / alone);
    if (band == Band::kDualMarked && row.name.rfind("fill_solid_", 0) == 0) {
      const double bytes = Find(times, WithBand(row.name, Band::kGray8) + " " + row.shape);
      if (bytes > 0) {
        figures.push_back({"cost of marking, in 8-bit fills: fill_solid " + row.shape, (row.bestNs - alone) / bytes});
      }
    }
  }
  if (!uniform.empty()) {
    figures.push_back({"uniform tag plane against none, geometric mean of time", GeometricMean(uniform)});
    figures.push_back({"uniform tag plane against none, worst", *std::max_element(uniform.begin(), uniform.end())});
  }
}

// Geometric means of shares, gains and ratios.
void AddMeans(const std::vector<RowResult>& rows, std::vector<DerivedResult>& figures) {
  std::map<std::string, std::vector<double>> shares;
  std::vector<double> gains;
  std::map<std::string, std::vector<const RowResult*>> rivals;
  for (const RowResult& row : rows) {
    if (row.Share() > 0) shares[row.limit + ", " + row.shape].push_back(row.Share());
    if (row.Gain() > 0) gains.push_back(row.Gain());
    if (row.RivalRatio() > 0) rivals[row.rival].push_back(&row);
  }
  for (const auto& [name, values] : shares) {
    figures.push_back({"geometric mean of shares: " + name, GeometricMean(values)});
  }
  if (!gains.empty()) figures.push_back({"geometric mean of gains over plain", GeometricMean(gains)});
  for (const auto& [name, measured] : rivals) {
    std::vector<double> ratios;
    for (const RowResult* row : measured) ratios.push_back(row->RivalRatio());
    figures.push_back({name + ": geometric mean, times faster", GeometricMean(ratios)});
    const auto worst = static_cast<std::size_t>(std::min_element(ratios.begin(), ratios.end()) - ratios.begin());
    figures.push_back({name + ": least, " + measured[worst]->name + " " + measured[worst]->shape, ratios[worst]});
  }
}

}  // namespace

double GeometricMean(const std::vector<double>& values) {
  double sum = 0;
  for (const double value : values) sum += std::log(value);
  return values.empty() ? 0 : std::exp(sum / static_cast<double>(values.size()));
}

std::vector<DerivedResult> DeriveFigures(const std::vector<RowResult>& rows) {
  std::vector<DerivedResult> figures;
  Times times;
  for (const RowResult& row : rows) times[row.name + " " + row.shape] = row.bestNs;
  for (const Band band : {Band::kBgr24, Band::kGray8, Band::kDual}) {
    const double one = Find(times, std::string("page_1_band_") + BandName(band) + " page");
    const double fifty = Find(times, std::string("page_50_bands_") + BandName(band) + " page");
    if (one > 0 && fifty > 0) {
      figures.push_back({std::string("page in 50 bands against 1, ") + BandName(band), fifty / one});
    }
  }
  AddTagCosts(rows, times, figures);
  AddMeans(rows, figures);
  return figures;
}

std::string CpuName() {
  unsigned words[12] = {};
  unsigned highest = 0, b = 0, c = 0, d = 0;
  if (__get_cpuid(0x80000000u, &highest, &b, &c, &d) == 0 || highest < 0x80000004u) return "unknown";
  for (unsigned i = 0; i < 3; ++i) {
    unsigned* const w = words + 4 * i;
    __get_cpuid(0x80000002u + i, w, w + 1, w + 2, w + 3);
  }
  char name[sizeof words + 1] = {};
  std::memcpy(name, words, sizeof words);
  std::string text = name;
  text.erase(0, text.find_first_not_of(' '));
  text.erase(text.find_last_not_of(' ') + 1);
  return text.empty() ? "unknown" : text;
}

std::string CompilerName() {
#if defined(__clang__)
  return "Clang " __VERSION__;
#elif defined(__GNUC__)
  return "GCC " __VERSION__;
#else
  return "unknown";
#endif
}

std::string PlatformName() {
#if defined(_WIN32)
  return "win32";
#else
  return sizeof(void*) == 4 ? "linux-x86" : "linux-x64";
#endif
}

}  // namespace qnv::bench

// Splits a line of a figure file into words and parses values of all kinds.
#include "qnvtool/layout/figure_line.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// The word in quotes that begins at `at`, which moves behind it; a quote that belongs to it is doubled.
std::string QuotedWord(const std::string& line, std::size_t& at, const FigureLine& where) {
  std::string word;
  for (++at; at < line.size(); ++at) {
    if (line[at] == '"') {
      ++at;
      if (at == line.size() || line[at] != '"') return word;
    }
    word += line[at];
  }
  where.Fail("a quote is not closed");
}

// Words are separated by blanks; one in double quotes may hold blanks.
std::vector<std::string> SplitWords(const std::string& line, const FigureLine& where) {
  std::vector<std::string> words;
  std::size_t at = 0;
  while ((at = line.find_first_not_of(" \t\r", at)) != std::string::npos) {
    if (line[at] == '"') {
      // The quote marks it as text, so that it is never taken for an option.
      words.push_back('"' + QuotedWord(line, at, where));
      continue;
    }
    const std::size_t end = std::min(line.find_first_of(" \t\r", at), line.size());
    words.push_back(line.substr(at, end - at));
    at = end;
  }
  return words;
}

// The parts of a value between colons.
std::vector<std::string> SplitParts(const std::string& text) {
  std::vector<std::string> parts(1);
  for (const char c : text) {
    if (c == ':') {
      parts.emplace_back();
    } else {
      parts.back().push_back(c);
    }
  }
  return parts;
}

// HS_... by name.
int HatchKind(const std::string& name, const FigureLine& line) {
  constexpr std::array<const char*, 6> kNames{"horizontal", "vertical", "fdiagonal", "bdiagonal", "cross", "diagcross"};
  const auto found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end()) line.Fail(fmt::format("fill: \"{}\" is no kind of hatch", name));
  return static_cast<int>(found - kNames.begin());
}

// A hexadecimal number; `field` names it in messages.
uint32_t ParseHex(const std::string& digits, const char* field, const FigureLine& line) {
  if (digits.empty() || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
    line.Fail(fmt::format("{}: \"{}\" is no hexadecimal number", field, digits));
  }
  return static_cast<uint32_t>(std::strtoul(digits.c_str(), nullptr, 16));
}

}  // namespace

FigureLine::FigureLine(const std::string& line, std::string where) : where_(std::move(where)) {
  const std::vector<std::string> all = SplitWords(line, *this);
  if (all.empty()) return;
  verb_ = all.front();
  for (std::size_t i = 1; i < all.size(); ++i) {
    const std::size_t equals = all[i].find('=');
    if (all[i].front() == '"') {
      words_.push_back(all[i].substr(1));
    } else if (equals != std::string::npos) {
      options_[all[i].substr(0, equals)] = all[i].substr(equals + 1);
    } else {
      words_.push_back(all[i]);
    }
  }
}

void FigureLine::Fail(const std::string& message) const {
  throw ToolError(ExitCode::kBadInput, where_ + ": " + message);
}

const std::string& FigureLine::Word(std::size_t i, const char* field) const {
  if (i >= words_.size()) Fail(fmt::format("{}: {} is missing", verb_, field));
  return words_[i];
}

// Also refuses infinity and values that are not numbers.
double FigureLine::ToNumber(const std::string& text, const char* field) const {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(std::abs(value) <= 10000)) {
    Fail(fmt::format("{}: \"{}\" is no number from -10000 to 10000", field, text));
  }
  return value;
}

double FigureLine::Number(std::size_t i, const char* field) const { return ToNumber(Word(i, field), field); }

Point FigureLine::PointAt(std::size_t i) const {
  const std::string& text = Word(i, "X,Y");
  const std::size_t comma = text.find(',');
  if (comma == std::string::npos) Fail(fmt::format("{}: \"{}\" is no point X,Y", verb_, text));
  return {ToNumber(text.substr(0, comma), "X"), ToNumber(text.substr(comma + 1), "Y")};
}

std::string FigureLine::Option(const std::string& name, const std::string& otherwise) const {
  const auto found = options_.find(name);
  return found == options_.end() ? otherwise : found->second;
}

double FigureLine::NumberOption(const std::string& name, double otherwise) const {
  const auto found = options_.find(name);
  return found == options_.end() ? otherwise : ToNumber(found->second, name.c_str());
}

void FigureLine::Expect(std::size_t count, const std::vector<std::string>& options) const {
  if (words_.size() != count) Fail(fmt::format("{}: takes {} values, not {}", verb_, count, words_.size()));
  ExpectOptions(options);
}

void FigureLine::ExpectOptions(const std::vector<std::string>& options) const {
  for (const auto& [name, value] : options_) {
    if (std::find(options.begin(), options.end(), name) == options.end()) {
      Fail(fmt::format("{}: has no option \"{}\"", verb_, name));
    }
  }
}

Color ParseColor(const std::string& text, const FigureLine& line) {
  if (text.size() != 7 || text[0] != '#') line.Fail(fmt::format("\"{}\" is no color #rrggbb", text));
  const uint32_t rgb = ParseHex(text.substr(1), "color", line);
  return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

Fill ParseFill(const std::string& text, const FigureLine& line) {
  const std::vector<std::string> parts = SplitParts(text);
  Fill fill;
  if (parts.size() == 1) {
    fill.color = ParseColor(parts[0], line);
  } else if (parts[0] == "hatch" && (parts.size() == 3 || parts.size() == 4)) {
    fill.kind = Fill::Kind::kHatch;
    fill.hatch = HatchKind(parts[1], line);
    fill.color = ParseColor(parts[2], line);
    fill.opaque = parts.size() == 4;
    if (fill.opaque) fill.background = ParseColor(parts[3], line);
  } else if (parts[0] == "bits" && parts.size() == 4 && parts[1].size() == 16) {
    fill.kind = Fill::Kind::kBits;
    for (std::size_t row = 0; row < 8; ++row) {
      fill.bits[row] = static_cast<uint8_t>(ParseHex(parts[1].substr(row * 2, 2), "fill", line));
    }
    fill.color = ParseColor(parts[2], line);
    fill.background = ParseColor(parts[3], line);
  } else if (parts[0] == "weave" && parts.size() == 3) {
    fill.kind = Fill::Kind::kWeave;
    fill.color = ParseColor(parts[1], line);
    fill.background = ParseColor(parts[2], line);
  } else {
    line.Fail(
        fmt::format("fill: \"{}\" is none of #rrggbb, hatch:KIND:#line[:#gaps], bits:HEX16:#clear:#set, "
                    "weave:#a:#b",
                    text));
  }
  return fill;
}

LineStyle ParseLineStyle(const std::string& text, const FigureLine& line) {
  const std::vector<std::string> parts = SplitParts(text);
  char* end = nullptr;
  const double width = parts.size() == 2 ? std::strtod(parts[1].c_str(), &end) : 0;
  if (end == nullptr || end == parts[1].c_str() || *end != '\0' || !(width > 0 && width <= 100)) {
    line.Fail(fmt::format("line: \"{}\" is no #rrggbb:WIDTH with a width above 0, up to 100", text));
  }
  return {ParseColor(parts[0], line), width};
}

}  // namespace qnv::tool

// Parses the command line, prints the help, and filters rows.
#include "options.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace qnv::bench {
namespace {

std::vector<std::string> SplitAtCommas(const std::string& list) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t comma = std::min(list.find(',', start), list.size());
    if (comma > start) parts.push_back(list.substr(start, comma - start));
    start = comma + 1;
  }
  return parts;
}

// Whether a shape has this name.
bool IsShapeName(const std::string& name) {
  for (int i = 0; i < kShapeCount; ++i) {
    if (name == Info(static_cast<Shape>(i)).name) return true;
  }
  return false;
}

// Names of shapes, separated by commas.
bool TakeShapes(const std::string& value, Options& options, std::string& error) {
  for (std::string& name : SplitAtCommas(value)) {
    if (!IsShapeName(name)) {
      error = "no shape is called '" + name + "'";
      return false;
    }
    options.shapes.push_back(std::move(name));
  }
  return true;
}

// "NAME=PATH".
bool TakeLevel(const std::string& value, Options& options, std::string& error) {
  const std::size_t equals = value.find('=');
  if (equals == std::string::npos || equals == 0 || equals + 1 == value.size()) {
    error = "--level takes NAME=PATH";
    return false;
  }
  options.levels.push_back({value.substr(0, equals), value.substr(equals + 1)});
  return true;
}

bool TakeSamples(const std::string& value, Options& options, std::string& error) {
  char* end = nullptr;
  const long samples = std::strtol(value.c_str(), &end, 10);
  if (*end != '\0' || samples < 3 || samples > 10000) {
    error = "--samples takes a number from 3 to 10000";
    return false;
  }
  options.samples = static_cast<int>(samples);
  return true;
}

}  // namespace

bool ParseOptions(int count, const char* const* arguments, Options& options, std::string& error) {
  struct Flag {
    const char* name;
    bool Options::*field;
    bool value;
  };
  struct Value {
    const char* name;
    std::string Options::*field;
  };
  static constexpr Flag kFlags[] = {
      {"--quick", &Options::quick, true},     {"--detail", &Options::detail, true},
      {"--no-rival", &Options::rival, false}, {"--list", &Options::list, true},
      {"--help", &Options::help, true},       {"--self-test", &Options::selfTest, true},
  };
  static constexpr Value kValues[] = {
      {"--library", &Options::library}, {"--baseline", &Options::baseline}, {"--json", &Options::json},
      {"--csv", &Options::csv},         {"--compare", &Options::compare},
  };
  for (int i = 1; i < count; ++i) {
    std::string name = arguments[i];
    const auto flag = std::find_if(std::begin(kFlags), std::end(kFlags), [&](const Flag& f) { return name == f.name; });
    if (flag != std::end(kFlags)) {
      options.*flag->field = flag->value;
      continue;
    }
    // A value follows as the next argument or behind an equals sign.
    std::string value;
    const std::size_t equals = name.find('=');
    if (equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    } else if (i + 1 < count) {
      value = arguments[++i];
    } else {
      error = "'" + name + "' is unknown or lacks its value";
      return false;
    }
    const auto field =
        std::find_if(std::begin(kValues), std::end(kValues), [&](const Value& v) { return name == v.name; });
    if (field != std::end(kValues)) {
      options.*field->field = value;
    } else if (name == "--filter") {
      options.filters.push_back(value);
    } else if (name == "--table") {
      options.tables.push_back(value);
    } else if (name == "--shape") {
      if (!TakeShapes(value, options, error)) return false;
    } else if (name == "--level") {
      if (!TakeLevel(value, options, error)) return false;
    } else if (name == "--samples") {
      if (!TakeSamples(value, options, error)) return false;
    } else {
      error = "unknown option '" + name + "'";
      return false;
    }
  }
  return true;
}

void PrintHelp() {
  std::printf(
      "qnvbench measures a built library through its exported functions.\n"
      "\n"
      "  --library PATH      the library to measure (default: the one beside this program)\n"
      "  --baseline PATH     a build with plain kernels; adds the gain over it\n"
      "  --level NAME=PATH   a further build, for instance one that stops at SSE2; may be repeated\n"
      "  --filter REGEX      only rows in whose name it is found; may be repeated\n"
      "  --shape NAME[,..]   only these shapes: tile, band1200, band4960, call, page\n"
      "  --detail            also the rows of all 256 ternary codes one by one\n"
      "  --quick             few short samples\n"
      "  --samples N         samples of each row (default 21, quick 5)\n"
      "  --no-rival          leave out the platform's own functions\n"
      "  --json FILE         write the results\n"
      "  --csv FILE          write them as a table\n"
      "  --compare OLD.json  print the change against an earlier run\n"
      "  --table FILE.json   measure nothing, print an earlier run in Markdown; repeated: side by side\n"
      "  --list              print the rows and measure nothing\n"
      "  --self-test         check row names, filter and report files, measure nothing\n"
      "\n"
      "Rows are named operation_source_band. Exit code: 0 measured, 1 failed, 2 wrong arguments.\n");
}

bool RowFilter::Set(const Options& options, std::string& error) {
  for (const std::string& filter : options.filters) {
    try {
      patterns_.emplace_back(filter, std::regex::extended);
    } catch (const std::regex_error&) {
      error = "'" + filter + "' is no regular expression";
      return false;
    }
  }
  shapes_ = options.shapes;
  detail_ = options.detail;
  return true;
}

bool RowFilter::Takes(const Row& row) const {
  if (row.spec.detail && !detail_) return false;
  if (patterns_.empty()) return true;
  return std::any_of(patterns_.begin(), patterns_.end(),
                     [&](const std::regex& pattern) { return std::regex_search(row.name, pattern); });
}

bool RowFilter::Takes(Shape shape) const {
  return shapes_.empty() || std::find(shapes_.begin(), shapes_.end(), Info(shape).name) != shapes_.end();
}

}  // namespace qnv::bench

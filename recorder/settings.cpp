// Reads the environment and the .ini file.
#include "recorder/settings.h"

#include <cstdio>
#include <cstdlib>
#include <map>

#include "qnvdrv10.h"
#include "recorder/platform.h"

namespace qnv::recorder {
namespace {

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Lines "key = value"; others are comments.
std::map<std::string, std::string> ReadIni(const std::string& path) {
  std::map<std::string, std::string> values;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return values;
  std::string text;
  char buffer[4096];
  for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, file)) != 0;) text.append(buffer, read);
  std::fclose(file);
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    const std::string line = Trimmed(text.substr(at, end - at));
    at = end + 1;
    const std::size_t equals = line.find('=');
    if (line.empty() || line[0] == ';' || line[0] == '#' || equals == std::string::npos) continue;
    values[Trimmed(line.substr(0, equals))] = Trimmed(line.substr(equals + 1));
  }
  return values;
}

}  // namespace

Settings ReadSettings() {
  const std::string own = OwnPath();
  const std::size_t slash = own.find_last_of("/\\");
  const std::string folder = slash == std::string::npos ? "" : own.substr(0, slash + 1);
  const std::size_t dot = own.find_last_of('.');
  const bool hasEnding = dot != std::string::npos && (slash == std::string::npos || dot > slash);
  const auto ini = ReadIni((hasEnding ? own.substr(0, dot) : own) + ".ini");
  const auto value = [&](const char* variable, const char* key) -> std::string {
    std::string set = EnvironmentOf(variable);
    if (!set.empty()) return set;
    const auto found = ini.find(key);
    return found == ini.end() ? "" : found->second;
  };
  Settings settings;
  const std::string library = value("QNVREC_LIBRARY", "library");
  if (!library.empty()) {
    settings.libraries = {library};
  } else {
#ifdef _WIN32
    settings.libraries = {folder + "QNVDRV10_REAL.dll", folder + "QNVDRV10.dll"};
#else
    settings.libraries = {folder + "libqnvdrv10_real.so", folder + "libqnvdrv10.so",
                          folder + "libqnvdrv10.so." + std::to_string(QNVDRV10_VERSION_MAJOR)};
#endif
  }
  settings.file = value("QNVREC_FILE", "file");
  for (std::size_t at; (at = settings.file.find("%p")) != std::string::npos;) {
    settings.file.replace(at, 2, std::to_string(ProcessNumber()));
  }
  settings.hashEveryCall = value("QNVREC_HASH", "hash") == "call";
  settings.flushEveryCall = value("QNVREC_FLUSH", "flush") == "call";
  settings.check = value("QNVREC_CHECK", "check") == "1";
  settings.compress = value("QNVREC_COMPRESS", "compress") != "0";
  return settings;
}

}  // namespace qnv::recorder

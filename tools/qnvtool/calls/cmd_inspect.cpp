// `qnvtool inspect`: a page that shows the calls of a file, or of two, in a browser.
#include <fmt/core.h>

#include <cstdio>
#include <memory>

#include "calls/base64.h"
#include "calls/file_bytes.h"
#include "calls/stored_copy.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"
#include "qnvtool/calls/inspector_files.h"

namespace qnv::tool {
namespace {

struct InspectArguments {
  std::string file, second, out;
  bool serve = false;
  int port = 0;
};

// The name of a file without its folder, as the value of an attribute.
std::string NameInPage(const std::string& path) {
  std::string name;
  for (const char c : path.substr(path.find_last_of("/\\") + 1)) {
    switch (c) {
      case '&': name += "&amp;"; break;
      case '<': name += "&lt;"; break;
      case '>': name += "&gt;"; break;
      case '"': name += "&quot;"; break;
      default: name += c;
    }
  }
  return name;
}

// The file with stored blocks: the page reads no others.
std::vector<uint8_t> StoredFile(const std::string& path) {
  ReadCallFile(path);  // says what is wrong with the file
  calls::FileBytes file(path);
  const uint8_t* const bytes = file.At(0, static_cast<std::size_t>(file.Size()));
  calls::Bytes stored;
  if (bytes == nullptr || !calls::CopyStored(bytes, static_cast<std::size_t>(file.Size()), &stored)) {
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: the file cannot be read", path));
  }
  return stored;
}

std::string MakePage(const InspectArguments& a, const CallParts& parts) {
  std::string page(InspectorPage());
  const std::size_t end = page.rfind("</body>");
  if (end == std::string::npos) throw ToolError(ExitCode::kLibrary, "the page of the inspector is damaged");
  const auto element = [&](const std::string& attributes, const void* bytes, std::size_t count) {
    const std::vector<uint8_t> packed = parts.gzip(bytes, count);
    std::string text = fmt::format("<script type=\"application/octet-stream\" {}>", attributes);
    calls::AppendBase64(text, packed.data(), packed.size());
    return text + "</script>\n";
  };
  std::string elements = element("id=\"qnv-engine\"", InspectorEngine().data(), InspectorEngine().size());
  for (const std::string* path : {&a.file, &a.second}) {
    if (path->empty()) continue;
    const std::vector<uint8_t> file = StoredFile(*path);
    elements +=
        element(fmt::format("class=\"qnv-file\" data-name=\"{}\"", NameInPage(*path)), file.data(), file.size());
  }
  page.insert(end, elements);
  return page;
}

void Inspect(const InspectArguments& a, const CallParts& parts) {
  if (a.serve == !a.out.empty()) {
    throw ToolError(ExitCode::kUsage, "either -o names the page to write, or --serve shows it");
  }
  if (a.serve && parts.servePage == nullptr) {
    throw ToolError(ExitCode::kUsage, "--serve works on Linux; write a page with -o and open it");
  }
  const std::string page = MakePage(a, parts);
  if (a.serve) {
    parts.servePage(page, static_cast<uint16_t>(a.port), [](const std::string& url) {
      fmt::print("{}\n", url);
      std::fflush(stdout);
    });
    return;
  }
  OutputFile out(a.out);
  out.Write(page.data(), page.size());
  out.Close();
}

}  // namespace

Command InspectCommand(const CallParts& parts) {
  auto arguments = std::make_shared<InspectArguments>();
  InspectArguments& a = *arguments;
  Command command{.name = "inspect",
                  .summary = "Make a page that shows the calls of a call file, or of two, in a browser",
                  .footer = "docs/inspector.md shows what one sees. The page needs no network.\n",
                  .options = {},
                  .run = {}};
  Option second = CallFileArgument(&a.second, "second");
  second.required = false;
  second.help = "Call file to compare with";
  command.options = {CallFileArgument(&a.file),
                     second,
                     {.names = "-o,--out",
                      .placeholder = "FILE.html",
                      .help = "Page to write",
                      .value = Text{&a.out},
                      .fileTypes = "html"},
                     {.names = "--serve",
                      .placeholder = "",
                      .help = "Serve the page to browsers on this machine, until Ctrl-C",
                      .value = Flag{&a.serve}},
                     {.names = "--port",
                      .placeholder = "N",
                      .help = "Port of --serve (default: a free one)",
                      .value = WholeNumber{&a.port, 0, 65535}}};
  command.run = [arguments, parts] { Inspect(*arguments, parts); };
  return command;
}

}  // namespace qnv::tool

// The requests to a printer: what it takes, a new job, its document, how the job stands, and cancelling it.
#include "qnvtool/ipp/ipp_printer.h"

#include <cups/cups.h>
#include <cups/pwg.h>
#include <fmt/core.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <set>
#include <thread>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

constexpr int kConnectMilliseconds = 10000;
constexpr double kAnswerSeconds = 60;
constexpr auto kPollInterval = std::chrono::milliseconds(250);
constexpr std::size_t kPiece = 65536;  // bytes of the document sent at a time

struct DeleteIpp {
  void operator()(ipp_t* message) const { ippDelete(message); }
};
using Message = std::unique_ptr<ipp_t, DeleteIpp>;

struct CloseHttp {
  void operator()(http_t* connection) const { httpClose(connection); }
};
using Connection = std::unique_ptr<http_t, CloseHttp>;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// The values of an attribute as texts.
std::vector<std::string> TextsOf(ipp_t* answer, const char* name) {
  std::vector<std::string> result;
  ipp_attribute_t* const attribute = ippFindAttribute(answer, name, IPP_TAG_ZERO);
  for (int i = 0; i < ippGetCount(attribute); ++i) {
    const char* const text = ippGetString(attribute, i, nullptr);
    if (text != nullptr) result.emplace_back(text);
  }
  return result;
}

std::string TextOf(ipp_t* answer, const char* name) {
  const std::vector<std::string> texts = TextsOf(answer, name);
  return texts.empty() ? "" : texts.front();
}

// The resolutions that are the same in both directions, in dots per inch.
std::vector<int> ResolutionsOf(ipp_t* answer, const char* name) {
  std::vector<int> result;
  ipp_attribute_t* const attribute = ippFindAttribute(answer, name, IPP_TAG_RESOLUTION);
  for (int i = 0; i < ippGetCount(attribute); ++i) {
    int y = 0;
    ipp_res_t units = IPP_RES_PER_INCH;
    const int x = ippGetResolution(attribute, i, &y, &units);
    if (x == y) result.push_back(units == IPP_RES_PER_CM ? static_cast<int>(std::lround(x * 2.54)) : x);
  }
  return result;
}

Medium MediumOf(const pwg_media_t& media) {
  return {media.pwg != nullptr ? media.pwg : "", media.width / 100.0, media.length / 100.0};
}

// Reasons of a state that say something.
std::string ReasonsOf(ipp_t* answer, const char* name) {
  std::vector<std::string> reasons;
  for (const std::string& reason : TextsOf(answer, name)) {
    if (reason != "none") reasons.push_back(reason);
  }
  return fmt::format("{}", fmt::join(reasons, ", "));
}

class IppPrinter final : public Printer {
 public:
  explicit IppPrinter(const std::string& address) : address_(address) {
    std::array<char, 32> scheme{};
    std::array<char, 256> user{}, host{};
    std::array<char, 1024> path{};
    int port = 0;
    const http_uri_status_t status =
        httpSeparateURI(HTTP_URI_CODING_ALL, address.c_str(), scheme.data(), scheme.size(), user.data(), user.size(),
                        host.data(), host.size(), &port, path.data(), path.size());
    const std::string name = scheme.data();
    if (status < HTTP_URI_STATUS_OK || (name != "ipp" && name != "ipps") || host[0] == '\0') {
      throw ToolError(ExitCode::kUsage,
                      fmt::format("--printer {}: use ipp://HOST[:PORT]/PATH or ipps://HOST[:PORT]/PATH", address));
    }
    host_ = host.data();
    path_ = path[0] == '\0' ? "/" : path.data();
    port_ = port;
    encrypted_ = name == "ipps";
  }

  PrinterTraits Ask() override;
  void Print(const PrinterJob& job, const std::function<void(const std::string&)>& note,
             const std::function<void(double, const std::string&)>& done) override;

  Medium Name(double widthMm, double heightMm) const override {
    const auto hundredths = [](double mm) { return static_cast<int>(std::lround(mm * 100)); };
    const pwg_media_t* const media = pwgMediaForSize(hundredths(widthMm), hundredths(heightMm));
    return {media != nullptr && media->pwg != nullptr ? media->pwg : "", widthMm, heightMm};
  }

 private:
  [[noreturn]] void Fail(const std::string& why) const {
    throw ToolError(ExitCode::kCannotWrite, fmt::format("printer {}: {}", address_, why));
  }

  // Opens a connection; done again after one is broken off in the middle of a document.
  void Connect() {
    connection_.reset(httpConnect2(host_.c_str(), port_, nullptr, AF_UNSPEC,
                                   encrypted_ ? HTTP_ENCRYPTION_ALWAYS : HTTP_ENCRYPTION_IF_REQUESTED, 1,
                                   kConnectMilliseconds, nullptr));
    if (connection_ == nullptr) Fail(fmt::format("cannot be reached: {}", cupsLastErrorString()));
    httpSetTimeout(
        connection_.get(), kAnswerSeconds, [](http_t*, void*) { return 0; }, nullptr);
  }

  Message Request(ipp_op_t operation, int job = 0) const {
    Message request(ippNewRequest(operation));
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, address_.c_str());
    if (job != 0) ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", job);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    return request;
  }

  // Sends a request without a document. Throws ToolError when the printer refuses; `what` says what was asked.
  Message Do(Message request, const char* what) {
    if (connection_ == nullptr) Connect();
    Message answer(cupsDoRequest(connection_.get(), request.release(), path_.c_str()));
    Check(answer.get(), what);
    return answer;
  }

  void Check(ipp_t* answer, const char* what) const {
    if (answer == nullptr) Fail(fmt::format("{}: {}", what, cupsLastErrorString()));
    const ipp_status_t status = ippGetStatusCode(answer);
    if (status <= IPP_STATUS_OK_CONFLICTING) return;
    const std::string text = TextOf(answer, "status-message");
    Fail(fmt::format("{}: {}{}{}", what, ippErrorString(status), text.empty() ? "" : ": ", text));
  }

  void AddTicket(ipp_t* request, const PrinterJob& job) const;
  void AddDocument(ipp_t* request, const PrinterJob& job) const;
  Message SendFile(Message request, const PrinterJob& job, const std::function<void(double)>& sent);
  void Follow(int id, const std::function<void(const std::string&)>& note,
              const std::function<void(double, const std::string&)>& done);
  void Cancel(int id) noexcept;

  const std::string address_;
  std::string host_;
  std::string path_;
  int port_ = 0;
  bool encrypted_ = false;
  bool createsJobs_ = true;
  std::vector<int> resolutions_;  // what the printer takes as values of the job
  std::vector<std::string> colorModes_;
  Connection connection_;
};

PrinterTraits IppPrinter::Ask() {
  Message request = Request(IPP_OP_GET_PRINTER_ATTRIBUTES);
  static const char* const wanted[] = {"printer-description", "job-template"};
  ippAddStrings(request.get(), IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", 2, nullptr, wanted);
  const Message answer = Do(std::move(request), "the printer does not describe itself");
  ipp_t* const traits = answer.get();
  PrinterTraits result;
  result.name = TextOf(traits, "printer-name");
  if (result.name.empty()) result.name = address_;
  const auto boolean = [&](const char* name, bool otherwise) {
    ipp_attribute_t* const attribute = ippFindAttribute(traits, name, IPP_TAG_BOOLEAN);
    return attribute == nullptr ? otherwise : ippGetBoolean(attribute, 0) != 0;
  };
  if (!boolean("printer-is-accepting-jobs", true)) {
    const std::string reasons = ReasonsOf(traits, "printer-state-reasons");
    Fail(fmt::format("accepts no jobs{}{}", reasons.empty() ? "" : ": ", reasons));
  }
  result.color = boolean("color-supported", false);
  ipp_attribute_t* const operations = ippFindAttribute(traits, "operations-supported", IPP_TAG_ENUM);
  createsJobs_ = ippContainsInteger(operations, IPP_OP_CREATE_JOB) != 0 &&
                 ippContainsInteger(operations, IPP_OP_SEND_DOCUMENT) != 0;
  result.formats = TextsOf(traits, "document-format-supported");
  result.resolutions = resolutions_ = ResolutionsOf(traits, "printer-resolution-supported");
  colorModes_ = TextsOf(traits, "print-color-mode-supported");
  const std::vector<int> defaults = ResolutionsOf(traits, "printer-resolution-default");
  if (!defaults.empty()) result.defaultResolution = defaults.front();
  result.pwgResolutions = ResolutionsOf(traits, "pwg-raster-document-resolution-supported");
  result.pwgTypes = TextsOf(traits, "pwg-raster-document-type-supported");
  result.urf = TextsOf(traits, "urf-supported");
  for (const std::string& name : TextsOf(traits, "media-supported")) {
    const pwg_media_t* const media = pwgMediaForPWG(name.c_str());
    if (media == nullptr) continue;
    Medium medium = MediumOf(*media);
    medium.name = name;
    if (name.rfind("custom_min_", 0) == 0) {
      result.smallestCustom = medium;
    } else if (name.rfind("custom_max_", 0) == 0) {
      result.largestCustom = medium;
    } else {
      result.media.push_back(medium);
    }
  }
  const std::string usual = TextOf(traits, "media-default");
  for (const Medium& medium : result.media) {
    if (medium.name == usual) result.defaultMedium = medium;
  }
  return result;
}

// How the job is to be printed.
void IppPrinter::AddTicket(ipp_t* request, const PrinterJob& job) const {
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "job-name", nullptr, job.title.c_str());
  if (!job.medium.name.empty()) {
    ippAddString(request, IPP_TAG_JOB, IPP_TAG_KEYWORD, "media", nullptr, job.medium.name.c_str());
  }
  // Documents may have other resolutions than the printer prints at; only the latter are values of this attribute.
  if (std::find(resolutions_.begin(), resolutions_.end(), job.dpi) != resolutions_.end()) {
    ippAddResolution(request, IPP_TAG_JOB, "printer-resolution", IPP_RES_PER_INCH, job.dpi, job.dpi);
  }
  const char* const mode = job.gray ? "monochrome" : "color";
  if (std::find(colorModes_.begin(), colorModes_.end(), mode) != colorModes_.end()) {
    ippAddString(request, IPP_TAG_JOB, IPP_TAG_KEYWORD, "print-color-mode", nullptr, mode);
  }
}

void IppPrinter::AddDocument(ipp_t* request, const PrinterJob& job) const {
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "document-name", nullptr, job.title.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_MIMETYPE, "document-format", nullptr, job.mimeType.c_str());
}

// Sends a request with the document behind it.
Message IppPrinter::SendFile(Message request, const PrinterJob& job, const std::function<void(double)>& sent) {
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(job.file.c_str(), "rb"));
  if (file == nullptr) Fail(fmt::format("the document: {}", std::strerror(errno)));
  std::fseek(file.get(), 0, SEEK_END);
  const double size = static_cast<double>(ftello(file.get()));
  std::rewind(file.get());
  http_status_t status = cupsSendRequest(connection_.get(), request.get(), path_.c_str(), CUPS_LENGTH_VARIABLE);
  std::vector<char> piece(kPiece);
  double done = 0;
  while (status == HTTP_STATUS_CONTINUE) {
    const std::size_t bytes = std::fread(piece.data(), 1, piece.size(), file.get());
    if (bytes == 0) break;
    status = cupsWriteRequestData(connection_.get(), piece.data(), bytes);
    done += static_cast<double>(bytes);
    sent(done / size);
    ThrowIfInterrupted();
  }
  Message answer(cupsGetResponse(connection_.get(), path_.c_str()));
  Check(answer.get(), "the document is refused");
  return answer;
}

// Cancels a job after a signal. Whether that succeeds cannot be told to anybody.
void IppPrinter::Cancel(int id) noexcept {
  try {
    Connect();  // the old connection may be in the middle of the document
    Do(Request(IPP_OP_CANCEL_JOB, id), "Cancel-Job");
  } catch (...) {
    static_cast<void>(std::fputs("qnvtool: the job could not be cancelled\n", stderr));
  }
}

// Waits for the end of a job.
void IppPrinter::Follow(int id, const std::function<void(const std::string&)>& note,
                        const std::function<void(double, const std::string&)>& done) {
  std::string told;
  for (;;) {
    Message request = Request(IPP_OP_GET_JOB_ATTRIBUTES, id);
    static const char* const wanted[] = {"job-state", "job-state-reasons", "job-state-message",
                                         "job-impressions-completed"};
    ippAddStrings(request.get(), IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", 4, nullptr, wanted);
    const Message answer = Do(std::move(request), "the job is not found");
    const auto state =
        static_cast<ipp_jstate_t>(ippGetInteger(ippFindAttribute(answer.get(), "job-state", IPP_TAG_ENUM), 0));
    const std::string reasons = ReasonsOf(answer.get(), "job-state-reasons");
    const std::string message = TextOf(answer.get(), "job-state-message");
    const std::string all = fmt::format("{}{}{}", reasons, reasons.empty() || message.empty() ? "" : ": ", message);
    if (state == IPP_JSTATE_COMPLETED) return;
    if (state == IPP_JSTATE_CANCELED || state == IPP_JSTATE_ABORTED) {
      Fail(fmt::format("job {} was {}{}{}", id, state == IPP_JSTATE_ABORTED ? "aborted" : "cancelled by someone else",
                       all.empty() ? "" : ": ", all));
    }
    const std::string now = fmt::format("job {}: {}{}{}", id, ippEnumString("job-state", static_cast<int>(state)),
                                        all.empty() ? "" : ": ", all);
    if ((state == IPP_JSTATE_HELD || state == IPP_JSTATE_STOPPED) && now != told) note(told = now);
    done(1, now);
    ThrowIfInterrupted();
    std::this_thread::sleep_for(kPollInterval);
    ThrowIfInterrupted();
  }
}

void IppPrinter::Print(const PrinterJob& job, const std::function<void(const std::string&)>& note,
                       const std::function<void(double, const std::string&)>& done) {
  if (connection_ == nullptr) Connect();
  const auto sent = [&](double part) { done(part, "sending"); };
  int id = 0;
  try {
    Message answer;
    const auto number = [&] { return ippGetInteger(ippFindAttribute(answer.get(), "job-id", IPP_TAG_INTEGER), 0); };
    if (createsJobs_) {
      Message create = Request(IPP_OP_CREATE_JOB);
      AddTicket(create.get(), job);
      answer = Do(std::move(create), "the job is refused");
      id = number();
      Message send = Request(IPP_OP_SEND_DOCUMENT, id);
      AddDocument(send.get(), job);
      ippAddBoolean(send.get(), IPP_TAG_OPERATION, "last-document", 1);
      try {
        answer = SendFile(std::move(send), job, sent);
      } catch (const ToolError&) {
        Cancel(id);  // a job without its document would wait for it
        throw;
      }
    } else {
      Message print = Request(IPP_OP_PRINT_JOB);
      AddDocument(print.get(), job);
      AddTicket(print.get(), job);
      answer = SendFile(std::move(print), job, sent);
      id = number();
    }
    note(fmt::format("job {} is sent", id));
    if (job.wait) Follow(id, note, done);
  } catch (const Interrupted&) {
    if (id != 0) Cancel(id);
    throw;
  }
  if (job.wait) note(fmt::format("job {} is printed", id));
}

}  // namespace

std::unique_ptr<Printer> OpenIppPrinter(const std::string& address) { return std::make_unique<IppPrinter>(address); }

}  // namespace qnv::tool

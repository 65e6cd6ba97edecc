// Reads raster documents through libcups, and PDF documents through the PPM stream of pdftoppm.
#include "qnvfilter/page_source.h"

#include <cups/raster.h>
#include <fcntl.h>
#include <fmt/core.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "qnvtool/base/tool_error.h"

namespace qnv::filter {
namespace {

using tool::ExitCode;
using tool::ToolError;

[[noreturn]] void Refuse(const std::string& why) { throw ToolError(ExitCode::kBadInput, "the document " + why); }

// A file that is closed.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return number_; }

 private:
  const int number_;
};

class RasterPages final : public PageSource {
 public:
  explicit RasterPages(std::unique_ptr<Descriptor> file)
      : file_(std::move(file)), raster_(cupsRasterOpen(file_->get(), CUPS_RASTER_READ)) {
    if (raster_ == nullptr) Refuse(fmt::format("is no raster that can be read: {}", cupsRasterErrorString()));
  }
  ~RasterPages() override { cupsRasterClose(raster_); }

  bool isRaster() const override { return true; }

  bool NextPage(PageForm& form) override {
    cups_page_header2_t header;
    if (cupsRasterReadHeader2(raster_, &header) == 0) {
      if (pages_ == 0) Refuse("has no pages");
      return false;
    }
    ++pages_;
    const bool gray = header.cupsColorSpace == CUPS_CSPACE_SW || header.cupsColorSpace == CUPS_CSPACE_W;
    const bool color = header.cupsColorSpace == CUPS_CSPACE_SRGB || header.cupsColorSpace == CUPS_CSPACE_RGB;
    if (header.cupsBitsPerColor != 8 || header.cupsBitsPerPixel != (gray ? 8u : 24u) ||
        header.cupsColorOrder != CUPS_ORDER_CHUNKED || !(gray || color)) {
      Refuse(fmt::format("has neither 8-bit gray nor 24-bit color on page {}", pages_));
    }
    if (header.HWResolution[0] != header.HWResolution[1]) {
      Refuse(fmt::format("has {} x {} dots per inch on page {}; both must be equal", header.HWResolution[0],
                         header.HWResolution[1], pages_));
    }
    rowSize_ = header.cupsBytesPerLine;
    form = {static_cast<int>(header.cupsWidth), static_cast<int>(header.cupsHeight),
            static_cast<int>(header.HWResolution[0]), gray};
    return true;
  }

  void ReadRow(uint8_t* row) override {
    if (cupsRasterReadPixels(raster_, row, rowSize_) != rowSize_) Refuse(fmt::format("ends within page {}", pages_));
  }

 private:
  const std::unique_ptr<Descriptor> file_;
  cups_raster_t* const raster_;
  unsigned rowSize_ = 0;
  int pages_ = 0;
};

// The pages that pdftoppm writes one behind the other.
class PdfPages final : public PageSource {
 public:
  PdfPages(const Descriptor& file, const PdfForm& form) : form_(form) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) Refuse(fmt::format("cannot be converted: {}", std::strerror(errno)));
    child_ = fork();
    if (child_ == 0) {
      dup2(file.get(), STDIN_FILENO);
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      close(ends[1]);
      const std::string dpi = std::to_string(form.dpi);
      if (form.gray) execlp("pdftoppm", "pdftoppm", "-r", dpi.c_str(), "-gray", "-", nullptr);
      execlp("pdftoppm", "pdftoppm", "-r", dpi.c_str(), "-", nullptr);
      _exit(127);
    }
    close(ends[1]);
    if (child_ > 0) stream_ = fdopen(ends[0], "rb");
    if (stream_ == nullptr) Refuse(fmt::format("cannot be converted: {}", std::strerror(errno)));
  }

  ~PdfPages() override {
    if (stream_ != nullptr) std::fclose(stream_);
    if (child_ > 0) waitpid(child_, nullptr, 0);
  }

  bool isRaster() const override { return false; }

  bool NextPage(PageForm& form) override {
    char kind = 0;
    int width = 0, height = 0, max = 0;
    const int first = std::fgetc(stream_);
    if (first == EOF) {
      CheckEnd();
      return false;
    }
    if (first != 'P' || std::fscanf(stream_, "%c %d %d %d", &kind, &width, &height, &max) != 4 || max != 255 ||
        (kind != '5' && kind != '6') || std::fgetc(stream_) == EOF || width <= 0 || height <= 0) {
      Refuse("cannot be converted: pdftoppm writes no PPM pages");
    }
    ++pages_;
    form = {width, height, form_.dpi, kind == '5'};
    rowSize_ = static_cast<std::size_t>(width) * (form.gray ? 1 : 3);
    return true;
  }

  void ReadRow(uint8_t* row) override {
    if (std::fread(row, 1, rowSize_, stream_) == rowSize_) return;
    CheckEnd();
    Refuse(fmt::format("ends within page {}", pages_));
  }

 private:
  // Looks whether pdftoppm is content.
  void CheckEnd() {
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = 0;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127) Refuse("is PDF, and pdftoppm cannot be run");
    if (status != 0) Refuse("cannot be converted: pdftoppm finds it damaged");
    if (pages_ == 0) Refuse("has no pages");
  }

  const PdfForm form_;
  pid_t child_ = 0;
  std::FILE* stream_ = nullptr;
  std::size_t rowSize_ = 0;
  int pages_ = 0;
};

// Standard input as a file that can be read twice.
int CopyOfStdin() {
  std::FILE* const file = std::tmpfile();
  if (file == nullptr) Refuse(fmt::format("cannot be kept: {}", std::strerror(errno)));
  std::array<char, 65536> buffer{};
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), stdin)) {
    if (std::fwrite(buffer.data(), 1, size, file) != size)
      Refuse(fmt::format("cannot be kept: {}", std::strerror(errno)));
  }
  if (std::fflush(file) != 0) Refuse(fmt::format("cannot be kept: {}", std::strerror(errno)));
  const int copy = dup(fileno(file));
  std::fclose(file);
  return copy;
}

}  // namespace

std::unique_ptr<PageSource> OpenPages(const std::string& path, const PdfForm& form) {
  auto file = std::make_unique<Descriptor>(path.empty() ? CopyOfStdin() : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file->get() < 0) Refuse(fmt::format("cannot be opened: {}: {}", path, std::strerror(errno)));
  std::array<char, 4> start{};
  const ssize_t size = pread(file->get(), start.data(), start.size(), 0);
  lseek(file->get(), 0, SEEK_SET);
  const std::string_view magic(start.data(), size < 0 ? 0 : static_cast<std::size_t>(size));
  if (magic == "%PDF") return std::make_unique<PdfPages>(*file, form);
  for (const char* const raster : {"RaS2", "2SaR", "RaS3", "3SaR", "RaSt", "tSaR", "UNIR"}) {
    if (magic == raster) return std::make_unique<RasterPages>(std::move(file));
  }
  Refuse(magic.empty() ? "is empty" : "is neither PDF nor PWG, Apple or CUPS raster");
}

}  // namespace qnv::filter

// Reads BMP files field by field, from the file header to the pixels, and builds the bitmap that the rasteriser takes.
#include "qnvtool/input/bmp_reader.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "qnvdrv10.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/bit_fields.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kCoreHeader = 12;
constexpr std::size_t kInfoHeader = 40;
constexpr uint32_t kAlphaBitFields = 6;  // BI_BITFIELDS with a fourth mask, which nothing here needs

// End-of-bitmap codes behind the codes of the file, in bytes. A literal takes at most 256 bytes, so in whatever code a
// truncated file ends, decoding continues at one of these codes.
constexpr std::size_t kRlePadding = 512;

// The fields of all header generations under the names of the 40-byte one.
struct Header {
  uint32_t size = 0;
  int32_t width = 0;
  int32_t height = 0;
  uint32_t planes = 0;
  uint32_t bitCount = 0;
  uint32_t compression = BI_RGB;
  uint32_t sizeImage = 0;
  int32_t xPixelsPerMetre = 0;
  int32_t yPixelsPerMetre = 0;
  uint32_t colors = 0;

  bool isCore() const { return size == kCoreHeader; }
  bool isRle() const { return compression == BI_RLE8 || compression == BI_RLE4; }
  bool hasTable() const { return bitCount <= 8; }
};

// Reads one file. Every step checks that the fields it uses lie inside the file.
class Reader {
 public:
  Reader(const Bytes& file, const std::string& name) : file_(file), name_(name) {}

  Dib Read() {
    ReadHeaders();
    CheckSize();
    CheckPixelForm();
    FindMasks();
    FindTable();
    CheckPixelOffset();
    dib_.width = header_.width;
    dib_.height = std::abs(header_.height);
    dib_.topDown = header_.height < 0;
    dib_.bitCount = static_cast<int>(header_.bitCount);
    dib_.compression = header_.compression;
    dib_.xPixelsPerMetre = std::max(header_.xPixelsPerMetre, 0);
    dib_.yPixelsPerMetre = std::max(header_.yPixelsPerMetre, 0);
    if (header_.isRle()) {
      TakeRleCodes();
    } else {
      TakeRows();
    }
    WriteInfo();
    return std::move(dib_);
  }

 private:
  template <class... Args>
  [[noreturn]] void Fail(fmt::format_string<Args...> format, Args&&... args) const {
    throw ToolError(ExitCode::kBadInput, name_ + ": " + fmt::format(format, std::forward<Args>(args)...));
  }

  // Fails unless the file has at least `end` bytes; `field` is what would lie there.
  void Require(std::size_t end, const char* field) const {
    if (file_.size() < end) Fail("{}: the file ends at byte {}, {} are needed", field, file_.size(), end);
  }

  // The fields of the file header and of the bitmap header, which has two forms.
  void ReadHeaders() {
    Require(2, "bfType");
    if (!LooksLikeBmp(file_)) Fail("bfType: is no BMP file (it does not begin with \"BM\")");
    Require(kFileHeader, "bfOffBits");
    pixelOffset_ = U32At(file_, 10);
    Require(kFileHeader + 4, "biSize");
    header_.size = U32At(file_, kFileHeader);
    constexpr std::array<uint32_t, 8> kSizes{12, 16, 40, 52, 56, 64, 108, 124};
    if (std::find(kSizes.begin(), kSizes.end(), header_.size) == kSizes.end()) {
      Fail("biSize: {} bytes is no known header (12, 16, 40, 52, 56, 64, 108 and 124 are)", header_.size);
    }
    Require(kFileHeader + header_.size, "header");
    if (header_.isCore()) {
      header_.width = U16At(file_, 18);
      header_.height = U16At(file_, 20);
      header_.planes = U16At(file_, 22);
      header_.bitCount = U16At(file_, 24);
      return;
    }
    header_.width = I32At(file_, 18);
    header_.height = I32At(file_, 22);
    header_.planes = U16At(file_, 26);
    header_.bitCount = U16At(file_, 28);
    if (header_.size < kInfoHeader) return;
    header_.compression = U32At(file_, 30);
    header_.sizeImage = U32At(file_, 34);
    header_.xPixelsPerMetre = I32At(file_, 38);
    header_.yPixelsPerMetre = I32At(file_, 42);
    header_.colors = U32At(file_, 46);
  }

  void CheckSize() const {
    if (header_.width < 1 || header_.width > kMaxDibSide) {
      Fail("biWidth: {} pixels; 1 to {} can be printed", header_.width, kMaxDibSide);
    }
    const int64_t rows = std::abs(int64_t{header_.height});
    if (rows < 1 || rows > kMaxDibSide) {
      Fail("biHeight: {} rows; 1 to {} can be printed", header_.height, kMaxDibSide);
    }
    if (header_.planes != 1) Fail("biPlanes: is {}, must be 1", header_.planes);
  }

  // Depth and compression, and whether they fit together.
  void CheckPixelForm() {
    const uint32_t bits = header_.bitCount;
    constexpr std::array<uint32_t, 6> kDepths{1, 4, 8, 16, 24, 32};
    if (std::find(kDepths.begin(), kDepths.end(), bits) == kDepths.end()) {
      Fail("biBitCount: {} bits a pixel; 1, 4, 8, 16, 24 and 32 can be printed", bits);
    }
    const bool os2 = header_.size == 64;
    switch (header_.compression) {
      case BI_RGB: break;
      case BI_RLE8:
      case BI_RLE4:
        if (bits != (header_.compression == BI_RLE8 ? 8u : 4u)) {
          Fail("biCompression: {} does not go with {} bits a pixel", header_.compression == BI_RLE8 ? "RLE8" : "RLE4",
               bits);
        }
        if (header_.height < 0) Fail("biHeight: {}; RLE pictures cannot be stored top row first", header_.height);
        break;
      case BI_BITFIELDS:
      case kAlphaBitFields:
        if (os2) Fail("biCompression: {} in an OS/2 header is not supported", header_.compression);
        if (bits != 16 && bits != 32) Fail("biCompression: bit fields do not go with {} bits a pixel", bits);
        break;
      default: Fail("biCompression: {} is not supported (0 to 3 and 6 are)", header_.compression);
    }
  }

  // Masks follow the 40-byte header; the larger headers hold them at the same place. The color table comes next.
  void FindMasks() {
    tableOffset_ = kFileHeader + header_.size;
    if (header_.compression != BI_BITFIELDS && header_.compression != kAlphaBitFields) return;
    const std::size_t masks = kFileHeader + kInfoHeader;
    if (header_.size == kInfoHeader) tableOffset_ += header_.compression == kAlphaBitFields ? 16 : 12;
    Require(masks + 12, "color masks");
    masks_ = {U32At(file_, masks), U32At(file_, masks + 4), U32At(file_, masks + 8)};
    constexpr std::array<const char*, 3> kNames{"red", "green", "blue"};
    const std::array<uint32_t, 3> each{masks_.red, masks_.green, masks_.blue};
    for (std::size_t i = 0; i < each.size(); ++i) {
      if (!IsBitRun(each[i]) || (header_.bitCount == 16 && each[i] > 0xFFFF)) {
        Fail("{} mask: {:#x} is no run of bits of a {}-bit pixel", kNames[i], each[i], header_.bitCount);
      }
    }
  }

  // Reads as many entries as the header says and the space before the pixels holds. Deeper pixels may have a table too,
  // a hint for displays with a palette; it is not read.
  void FindTable() {
    if (!header_.hasTable()) return;
    const std::size_t entry = header_.isCore() ? 3 : 4;
    const std::size_t full = std::size_t{1} << header_.bitCount;
    std::size_t entries = header_.colors == 0 ? full : std::min<std::size_t>(header_.colors, full);
    if (tableOffset_ > pixelOffset_) return;  // CheckPixelOffset reports it
    const std::size_t room = (pixelOffset_ - tableOffset_) / entry;
    if (room == 0) Fail("bfOffBits: {} leaves no room for the color table at byte {}", pixelOffset_, tableOffset_);
    if (room < entries) {
      dib_.remarks.push_back(fmt::format("biClrUsed: {} colors promised, room for {}", entries, room));
      entries = room;
    }
    Require(tableOffset_ + entries * entry, "color table");
    for (std::size_t i = 0; i < entries; ++i) {
      const auto at = file_.begin() + static_cast<std::ptrdiff_t>(tableOffset_ + i * entry);
      table_.insert(table_.end(), at, at + 3);
      table_.push_back(0);
    }
  }

  // The pixels lie behind the headers and inside the file.
  void CheckPixelOffset() const {
    if (pixelOffset_ < tableOffset_) {
      Fail("bfOffBits: {} lies inside the headers, which end at byte {}", pixelOffset_, tableOffset_);
    }
    if (pixelOffset_ >= file_.size()) {
      Fail("bfOffBits: {} lies behind the end of the file at byte {}", pixelOffset_, file_.size());
    }
  }

  // Copies the run-length codes and appends the padding.
  void TakeRleCodes() {
    std::size_t size = file_.size() - pixelOffset_;
    if (header_.sizeImage != 0) {
      if (header_.sizeImage > size) {
        dib_.remarks.push_back(
            fmt::format("biSizeImage: {} bytes of RLE codes promised, the file has {}", header_.sizeImage, size));
      }
      size = std::min<std::size_t>(size, header_.sizeImage);
    }
    const auto first = file_.begin() + static_cast<std::ptrdiff_t>(pixelOffset_);
    dib_.bits.assign(first, first + static_cast<std::ptrdiff_t>(size));
    if (size % 2 != 0) dib_.bits.push_back(0);  // codes are pairs of bytes
    for (std::size_t i = 0; i < kRlePadding; i += 2) {
      dib_.bits.push_back(0);
      dib_.bits.push_back(1);
    }
  }

  // Copies the rows, converted to 32 bits where the rasteriser cannot read their bit fields.
  void TakeRows() {
    const std::size_t stride = DibStride(dib_.width, dib_.bitCount);
    const std::size_t need = stride * static_cast<std::size_t>(dib_.height);
    const std::size_t have = file_.size() - pixelOffset_;
    if (have < need) {
      Fail("pixel rows: {} x {} pixels of {} bits need {} bytes, the file has {} after bfOffBits", dib_.width,
           dib_.height, dib_.bitCount, need, have);
    }
    const auto first = file_.begin() + static_cast<std::ptrdiff_t>(pixelOffset_);
    dib_.bits.assign(first, first + static_cast<std::ptrdiff_t>(need));
    if (header_.compression != BI_BITFIELDS && header_.compression != kAlphaBitFields) return;
    if (dib_.bitCount == 16 && ReadDirectly16(masks_)) {
      dib_.compression = BI_BITFIELDS;
      return;
    }
    if (dib_.bitCount == 16 || masks_ != kMasks888) {
      dib_.bits = ExpandTo32(dib_.bits, dib_.width, dib_.height, dib_.bitCount, masks_);
      dib_.bitCount = 32;
    }
    dib_.compression = BI_RGB;
  }

  // Writes the header, table and masks that the rasteriser gets.
  void WriteInfo() {
    Bytes& info = dib_.info;
    AppendU32(info, kInfoHeader);
    AppendU32(info, static_cast<uint32_t>(dib_.width));
    AppendU32(info, static_cast<uint32_t>(dib_.topDown ? -dib_.height : dib_.height));
    AppendU16(info, 1);
    AppendU16(info, static_cast<uint32_t>(dib_.bitCount));
    AppendU32(info, dib_.compression);
    AppendU32(info, 0);
    AppendU32(info, static_cast<uint32_t>(dib_.xPixelsPerMetre));
    AppendU32(info, static_cast<uint32_t>(dib_.yPixelsPerMetre));
    AppendU32(info, static_cast<uint32_t>(table_.size() / 4));
    AppendU32(info, 0);
    info.insert(info.end(), table_.begin(), table_.end());
    if (dib_.compression == BI_BITFIELDS) {
      AppendU32(info, masks_.red);
      AppendU32(info, masks_.green);
      AppendU32(info, masks_.blue);
    }
  }

  const Bytes& file_;
  const std::string& name_;
  std::size_t pixelOffset_ = 0;
  std::size_t tableOffset_ = 0;
  Header header_;
  ColorMasks masks_;
  Bytes table_;
  Dib dib_;
};

}  // namespace

bool LooksLikeBmp(const Bytes& file) { return file.size() >= 2 && file[0] == 'B' && file[1] == 'M'; }

Dib ReadBmp(const Bytes& file, const std::string& name) { return Reader(file, name).Read(); }

}  // namespace qnv::tool

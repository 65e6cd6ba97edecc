// Reads BMP files field by field, from the file header to the pixels.
#include "qnvtool/input/bmp_reader.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "qnvdrv10.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/bmp_rows.h"
#include "qnvtool/input/decoded_picture.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kCoreHeader = 12;
constexpr std::size_t kInfoHeader = 40;
constexpr std::size_t kOs2Header = 64;
constexpr std::size_t kLargestHead = kFileHeader + 124 + 16 + 256 * std::size_t{4};  // headers, masks and table
constexpr uint32_t kJpeg = 4;                                                        // BI_JPEG
constexpr uint32_t kPng = 5;                                                         // BI_PNG
constexpr uint32_t kAlphaBitFields = 6;                                              // BI_BITFIELDS with a fourth mask
// The same numbers mean other things in OS/2 headers.
constexpr uint32_t kOs2Huffman = 3;
constexpr uint32_t kOs2Rle24 = 4;

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
  bool isOs2() const { return size == kOs2Header; }
  bool isRle24() const { return isOs2() && compression == kOs2Rle24; }
  bool isRle() const { return compression == BI_RLE8 || compression == BI_RLE4 || isRle24(); }
  bool isEmbedded() const { return !isOs2() && (compression == kJpeg || compression == kPng); }
  bool hasBitFields() const { return !isOs2() && (compression == BI_BITFIELDS || compression == kAlphaBitFields); }
  bool hasTable() const { return bitCount <= 8 && !isEmbedded(); }
};

// A BMP file whose headers are read.
class BmpPicture final : public PictureFile {
 public:
  BmpPicture(BmpPixels pixels, bool isRle, int xPixelsPerMetre, int yPixelsPerMetre, NoteSink notes)
      : pixels_(std::move(pixels)), isRle_(isRle), notes_(std::move(notes)) {
    width_ = pixels_.width;
    height_ = pixels_.height;
    xPixelsPerMetre_ = xPixelsPerMetre;
    yPixelsPerMetre_ = yPixelsPerMetre;
  }

 private:
  std::shared_ptr<PictureRows> OpenRows() const override {
    return isRle_ ? OpenRleRows(pixels_, notes_) : OpenBmpRows(pixels_);
  }

  const BmpPixels pixels_;
  const bool isRle_;
  const NoteSink notes_;
};

// Reads one file. Every step checks that the fields it uses lie inside the file.
class Reader {
 public:
  Reader(const Input& file, const PictureDecoders& decoders, const NoteSink& notes)
      : file_(file), head_(file->Head(kLargestHead)), decoders_(decoders), notes_(notes) {}

  PicturePtr Open() {
    ReadHeaders();
    if (header_.isEmbedded()) return OpenEmbedded();
    CheckSize();
    CheckPixelForm();
    FindMasks();
    FindTable();
    CheckPixelOffset();
    NoteProfile();
    pixels_.file = file_;
    pixels_.offset = pixelOffset_;
    pixels_.size = file_->size() - pixelOffset_;
    pixels_.width = header_.width;
    pixels_.height = std::abs(header_.height);
    pixels_.topDown = header_.height < 0;
    pixels_.bitCount = static_cast<int>(header_.bitCount);
    pixels_.form.width = header_.width;
    pixels_.form.bitCount = header_.bitCount == 2 ? 4 : pixels_.bitCount;
    if (header_.isRle()) {
      TakeRleCodes();
    } else {
      TakeRows();
    }
    return std::make_shared<const BmpPicture>(std::move(pixels_), header_.isRle(), std::max(header_.xPixelsPerMetre, 0),
                                              std::max(header_.yPixelsPerMetre, 0), notes_);
  }

 private:
  template <class... Args>
  [[noreturn]] void Fail(fmt::format_string<Args...> format, Args&&... args) const {
    throw ToolError(ExitCode::kBadInput, file_->name() + ": " + fmt::format(format, std::forward<Args>(args)...));
  }

  void Note(const std::string& note) const {
    if (notes_) notes_(note);
  }

  // Fails unless the file has at least `end` bytes; `field` is what would lie there.
  void Require(std::size_t end, const char* field) const {
    if (head_.size() < end) Fail("{}: the file ends at byte {}, {} are needed", field, file_->size(), end);
  }

  // The fields of the file header and of the bitmap header, which has two forms.
  void ReadHeaders() {
    Require(2, "bfType");
    if (head_[0] != 'B' || head_[1] != 'M') Fail("bfType: is no BMP file (it does not begin with \"BM\")");
    Require(kFileHeader, "bfOffBits");
    pixelOffset_ = U32At(head_, 10);
    Require(kFileHeader + 4, "biSize");
    header_.size = U32At(head_, kFileHeader);
    constexpr std::array<uint32_t, 8> kSizes{12, 16, 40, 52, 56, 64, 108, 124};
    if (std::find(kSizes.begin(), kSizes.end(), header_.size) == kSizes.end()) {
      Fail("biSize: {} bytes is no known header (12, 16, 40, 52, 56, 64, 108 and 124 are)", header_.size);
    }
    Require(kFileHeader + header_.size, "header");
    if (header_.isCore()) {
      header_.width = U16At(head_, 18);
      header_.height = U16At(head_, 20);
      header_.planes = U16At(head_, 22);
      header_.bitCount = U16At(head_, 24);
      return;
    }
    header_.width = I32At(head_, 18);
    header_.height = I32At(head_, 22);
    header_.planes = U16At(head_, 26);
    header_.bitCount = U16At(head_, 28);
    if (header_.size < kInfoHeader) return;
    header_.compression = U32At(head_, 30);
    header_.sizeImage = U32At(head_, 34);
    header_.xPixelsPerMetre = I32At(head_, 38);
    header_.yPixelsPerMetre = I32At(head_, 42);
    header_.colors = U32At(head_, 46);
  }

  // A PNG or JPEG file lies where the rows would be. What it says counts.
  PicturePtr OpenEmbedded() {
    tableOffset_ = kFileHeader + header_.size;
    CheckPixelOffset();
    const bool png = header_.compression == kPng;
    const OpenPicturesOf open = png ? decoders_.png : decoders_.jpeg;
    const char* const name = png ? "PNG" : "JPEG";
    if (open == nullptr) Fail("biCompression: is an embedded {} picture, which this program cannot read", name);
    uint64_t size = file_->size() - pixelOffset_;
    if (header_.sizeImage != 0) size = std::min<uint64_t>(size, header_.sizeImage);
    return open(PartOf(file_, pixelOffset_, size), notes_)->Open(0);
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
    constexpr std::array<uint32_t, 7> kDepths{1, 2, 4, 8, 16, 24, 32};
    if (std::find(kDepths.begin(), kDepths.end(), bits) == kDepths.end()) {
      Fail("biBitCount: {} bits a pixel; 1, 2, 4, 8, 16, 24 and 32 can be printed", bits);
    }
    if (header_.isRle()) {
      const uint32_t wanted = header_.isRle24() ? 24 : header_.compression == BI_RLE8 ? 8 : 4;
      if (bits != wanted) Fail("biCompression: RLE{} does not go with {} bits a pixel", wanted, bits);
      if (header_.height < 0) Fail("biHeight: {}; RLE pictures cannot be stored top row first", header_.height);
    } else if (header_.hasBitFields()) {
      if (bits != 16 && bits != 32) Fail("biCompression: bit fields do not go with {} bits a pixel", bits);
    } else if (header_.isOs2() && header_.compression == kOs2Huffman) {
      Fail("biCompression: Huffman codes of OS/2 are not supported");
    } else if (header_.compression != BI_RGB) {
      Fail("biCompression: {} is not supported (0 to 6 are, in OS/2 headers 0, 1, 2 and 4)", header_.compression);
    }
  }

  // Masks follow the 40-byte header; the larger headers hold them at the same place. The color table comes next.
  void FindMasks() {
    tableOffset_ = kFileHeader + header_.size;
    if (!header_.hasBitFields()) return;
    const std::size_t masks = kFileHeader + kInfoHeader;
    const bool fourInFile = header_.compression == kAlphaBitFields;
    if (header_.size == kInfoHeader) tableOffset_ += fourInFile ? 16 : 12;
    Require(masks + 12, "color masks");
    pixels_.masks = {U32At(head_, masks), U32At(head_, masks + 4), U32At(head_, masks + 8)};
    constexpr std::array<const char*, 3> kNames{"red", "green", "blue"};
    const std::array<uint32_t, 3> each{pixels_.masks.red, pixels_.masks.green, pixels_.masks.blue};
    for (std::size_t i = 0; i < each.size(); ++i) {
      if (!IsMask(each[i])) {
        Fail("{} mask: {:#x} is no run of bits of a {}-bit pixel", kNames[i], each[i], header_.bitCount);
      }
    }
    if (header_.size < 56 && !(header_.size == kInfoHeader && fourInFile)) return;
    Require(masks + 16, "alpha mask");
    const uint32_t alpha = U32At(head_, masks + 12);
    if (IsMask(alpha)) pixels_.alphaMask = alpha;
  }

  bool IsMask(uint32_t mask) const { return IsBitRun(mask) && (header_.bitCount == 32 || mask <= 0xFFFF); }

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
      Note(fmt::format("biClrUsed: {} colors promised, room for {}", entries, room));
      entries = room;
    }
    Require(tableOffset_ + entries * entry, "color table");
    for (std::size_t i = 0; i < entries; ++i) {
      const std::size_t at = tableOffset_ + i * entry;
      const uint32_t red = head_[at + 2];
      pixels_.form.table.push_back(red << 16 | U16At(head_, at));
    }
  }

  // The pixels lie behind the headers and inside the file.
  void CheckPixelOffset() const {
    if (pixelOffset_ < tableOffset_) {
      Fail("bfOffBits: {} lies inside the headers, which end at byte {}", pixelOffset_, tableOffset_);
    }
    if (pixelOffset_ >= file_->size()) {
      Fail("bfOffBits: {} lies behind the end of the file at byte {}", pixelOffset_, file_->size());
    }
  }

  void NoteProfile() const {
    constexpr std::size_t kTypeAt = kFileHeader + 56;  // bV5CSType
    constexpr uint32_t kLinked = 0x4C494E4B;           // "LINK"
    constexpr uint32_t kEmbedded = 0x4D424544;         // "MBED"
    if (header_.size != 124) return;
    const uint32_t type = U32At(head_, kTypeAt);
    if (type == kLinked || type == kEmbedded) Note("its color profile is not used");
  }

  void TakeRleCodes() {
    if (header_.sizeImage > pixels_.size) {
      Note(
          fmt::format("biSizeImage: {} bytes of RLE codes promised, the file has {}", header_.sizeImage, pixels_.size));
    } else if (header_.sizeImage != 0) {
      pixels_.size = header_.sizeImage;
    }
    if (!header_.isRle24()) pixels_.form.compression = header_.compression;
    // Longer codes and broken ones are decoded to rows; whoever opens the rows finds out.
  }

  // Chooses what the windows hold: the rows of the file, or what they are converted to.
  void TakeRows() {
    const int there = RowsInFile(pixels_);
    if (there == 0) {
      Fail("pixel rows: a row of {} pixels of {} bits needs {} bytes, the file has {} after bfOffBits", pixels_.width,
           pixels_.bitCount, pixels_.stride(), pixels_.size);
    }
    if (there < pixels_.height) {
      Note(MissingRowsNote(pixels_.height - there, pixels_.height,
                           fmt::format("the file ends at byte {}", file_->size())));
    }
    if (!header_.hasBitFields()) return;
    if (pixels_.alphaMask != 0 && HasAlpha(pixels_)) {
      Note("its alpha channel is laid over white");
      pixels_.form.bitCount = 24;
      return;
    }
    pixels_.alphaMask = 0;
    const ColorMasks& masks = pixels_.masks;
    if (pixels_.bitCount == 16 && ReadDirectly16(masks)) {
      pixels_.form.compression = BI_BITFIELDS;
      pixels_.form.masks = {masks.red, masks.green, masks.blue};
      return;
    }
    pixels_.convert = pixels_.bitCount == 16 || masks != kMasks888;
    pixels_.form.bitCount = 32;
  }

  const Input& file_;
  const Bytes head_;
  const PictureDecoders& decoders_;
  const NoteSink& notes_;
  std::size_t pixelOffset_ = 0;
  std::size_t tableOffset_ = 0;
  Header header_;
  BmpPixels pixels_;
};

}  // namespace

PicturePtr OpenBmp(const Input& file, const PictureDecoders& decoders, const NoteSink& notes) {
  return Reader(file, decoders, notes).Open();
}

}  // namespace qnv::tool

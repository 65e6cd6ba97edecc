// Drives libpng, whose errors jump back: every function that calls it with setjmp holds no objects.
#include "qnvtool/input/png_reader.h"

#include <fmt/core.h>
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/bit_fields.h"
#include "qnvtool/input/decoded_picture.h"
#include "qnvtool/input/exif.h"

namespace qnv::tool {
namespace {

// libpng at work on one file.
struct PngSession {
  explicit PngSession(const InputFile& input) : file(input) {
    png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
    if (png != nullptr) info = png_create_info_struct(png);
    if (info == nullptr) throw ToolError(ExitCode::kBadInput, fmt::format("{}: libpng cannot be used", input.name()));
    png_set_read_fn(png, this, Read);
    // The sides are checked after the header is read, with a message of our own.
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
  }
  ~PngSession() { png_destroy_read_struct(&png, &info, nullptr); }
  PngSession(const PngSession&) = delete;
  PngSession& operator=(const PngSession&) = delete;

  static void OnError(png_structp png, png_const_charp message) {
    auto* const session = static_cast<PngSession*>(png_get_error_ptr(png));
    std::strncpy(session->error, message, sizeof session->error - 1);
    png_longjmp(png, 1);
  }
  static void OnWarning(png_structp, png_const_charp) {}

  static void Read(png_structp png, png_bytep to, png_size_t count) {
    auto* const session = static_cast<PngSession*>(png_get_io_ptr(png));
    while (count != 0) {
      if (session->used == session->buffered) session->Fill();
      if (session->used == session->buffered) png_error(png, "the file ends early");
      const std::size_t piece = std::min(count, session->buffered - session->used);
      std::memcpy(to, session->buffer + session->used, piece);
      session->used += piece;
      to += piece;
      count -= piece;
    }
  }
  // Exceptions must not pass through libpng.
  void Fill() noexcept {
    try {
      buffered = file.Read(at, buffer, sizeof buffer);
    } catch (const std::exception&) {
      buffered = 0;
    }
    used = 0;
    at += buffered;
  }

  const InputFile& file;
  uint64_t at = 0;
  std::size_t used = 0;
  std::size_t buffered = 0;
  char error[128] = {};
  png_structp png = nullptr;
  png_infop info = nullptr;
  uint8_t buffer[1 << 15];
};

// Each returns false after an error, whose message is then in the session.
[[gnu::noinline]] bool ReadInfo(PngSession& session) {
  if (setjmp(png_jmpbuf(session.png)) != 0) return false;
  png_read_info(session.png, session.info);
  return true;
}

// What libpng is to convert.
struct Conversions {
  bool scale16 = false;
  bool keyToAlpha = false;  // a transparent color becomes an alpha channel
};

[[gnu::noinline]] bool StartRows(PngSession& session, const Conversions& conversions, int* passes) {
  if (setjmp(png_jmpbuf(session.png)) != 0) return false;
  if (conversions.keyToAlpha) png_set_tRNS_to_alpha(session.png);
  if (conversions.scale16) png_set_scale_16(session.png);
  *passes = png_set_interlace_handling(session.png);
  png_read_update_info(session.png, session.info);
  return true;
}

// interlaced: fills the blocks for which a pixel stands until later passes come.
[[gnu::noinline]] bool ReadRow(PngSession& session, uint8_t* row, bool interlaced) {
  if (setjmp(png_jmpbuf(session.png)) != 0) return false;
  png_read_row(session.png, interlaced ? nullptr : row, interlaced ? row : nullptr);
  return true;
}

class PngPicture final : public DecodedPicture {
 public:
  PngPicture(const Input& input, const NoteSink& notes) : DecodedPicture(input, notes) {
    PngSession session(file());
    if (!ReadInfo(session)) {
      throw ToolError(ExitCode::kBadInput, fmt::format("{}: is a damaged PNG picture: {}", name(), session.error));
    }
    const uint32_t width = png_get_image_width(session.png, session.info);
    const uint32_t height = png_get_image_height(session.png, session.info);
    CheckPictureSize(name(), width, height);
    width_ = static_cast<int>(width);
    height_ = static_cast<int>(height);
    FindResolution(session);
    ChooseForm(session);
    if (png_get_valid(session.png, session.info, PNG_INFO_iCCP) != 0) Note("its color profile is not used");
  }

 private:
  enum class Layout { kIndices, kGray, kGrayAlpha, kRgb, kRgbAlpha };

  void FindResolution(const PngSession& session) {
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(session.png, session.info, &x, &y, &unit) == 0 || unit != PNG_RESOLUTION_METER) return;
    xPixelsPerMetre_ = PixelsPerMetre(x / 100.0, 3);
    yPixelsPerMetre_ = PixelsPerMetre(y / 100.0, 3);
  }

  void ChooseForm(const PngSession& session) {
    const int type = png_get_color_type(session.png, session.info);
    depth_ = png_get_bit_depth(session.png, session.info);
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    png_color_16p key = nullptr;
    const bool hasKey = png_get_tRNS(session.png, session.info, &alphas, &alphaCount, &key) != 0;
    conversions_.scale16 = depth_ == 16;
    form_.width = width_;
    form_.bitCount = 8;
    if (type == PNG_COLOR_TYPE_PALETTE) {
      layout_ = Layout::kIndices;
      form_.bitCount = depth_ == 2 ? 4 : depth_;
      png_colorp palette = nullptr;
      int count = 0;
      png_get_PLTE(session.png, session.info, &palette, &count);
      for (int i = 0; i < count; ++i) {
        const uint32_t alpha = hasKey && i < alphaCount ? alphas[i] : 255;
        if (alpha != 255) NoteAlpha();
        form_.table.push_back(uint32_t{OverWhite(palette[i].red, alpha)} << 16 |
                              uint32_t{OverWhite(palette[i].green, alpha)} << 8 | OverWhite(palette[i].blue, alpha));
      }
    } else if (type == PNG_COLOR_TYPE_GRAY && depth_ <= 8) {
      layout_ = Layout::kIndices;
      form_.bitCount = depth_ == 2 ? 4 : depth_;
      AddGrays(1u << depth_);
      if (hasKey && key->gray < form_.table.size()) {
        form_.table[key->gray] = 0xFFFFFF;
        NoteAlpha();
      }
    } else if (type == PNG_COLOR_TYPE_GRAY || type == PNG_COLOR_TYPE_GRAY_ALPHA) {
      conversions_.keyToAlpha = hasKey;
      layout_ = hasKey || type == PNG_COLOR_TYPE_GRAY_ALPHA ? Layout::kGrayAlpha : Layout::kGray;
      AddGrays(256);
    } else {
      conversions_.keyToAlpha = hasKey;
      layout_ = hasKey || type == PNG_COLOR_TYPE_RGB_ALPHA ? Layout::kRgbAlpha : Layout::kRgb;
      form_.bitCount = 24;
    }
  }

  void AddGrays(uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) form_.table.push_back(i * 255 / (count - 1) * 0x010101);
  }

  void NoteAlpha() const { Note("its transparency is laid over white"); }

  // Converts a row of libpng to one of the bitmap. Returns whether it has transparency.
  bool Convert(const uint8_t* from, uint8_t* to) const {
    bool transparent = false;
    const auto count = static_cast<std::size_t>(width_);
    switch (layout_) {
      case Layout::kIndices:
        if (depth_ == 2) {
          WidenRowTo4(from, width_, to);
        } else {
          std::memcpy(to, from, (count * static_cast<std::size_t>(depth_) + 7) / 8);
        }
        break;
      case Layout::kGray: std::memcpy(to, from, count); break;
      case Layout::kGrayAlpha:
        for (std::size_t i = 0; i < count; ++i) {
          to[i] = OverWhite(from[i * 2], from[i * 2 + 1]);
          transparent |= from[i * 2 + 1] != 255;
        }
        break;
      case Layout::kRgb:
        for (std::size_t i = 0; i < count; ++i) {
          to[i * 3] = from[i * 3 + 2];
          to[i * 3 + 1] = from[i * 3 + 1];
          to[i * 3 + 2] = from[i * 3];
        }
        break;
      case Layout::kRgbAlpha:
        for (std::size_t i = 0; i < count; ++i) {
          const uint32_t alpha = from[i * 4 + 3];
          to[i * 3] = OverWhite(from[i * 4 + 2], alpha);
          to[i * 3 + 1] = OverWhite(from[i * 4 + 1], alpha);
          to[i * 3 + 2] = OverWhite(from[i * 4], alpha);
          transparent |= alpha != 255;
        }
        break;
    }
    return transparent;
  }

  void Decode(RowStore& rows) const override {
    PngSession session(file());
    int passes = 1;
    if (!ReadInfo(session) || !StartRows(session, conversions_, &passes)) return FillRest(rows, 0, session.error);
    Bytes raw(png_get_rowbytes(session.png, session.info));
    Bytes row(rows.stride(), 0);
    bool transparent = false;
    int there = 0;
    if (passes == 1) {
      for (; there < height() && ReadRow(session, raw.data(), false); ++there) {
        transparent |= Convert(raw.data(), row.data());
        rows.Write(there, row.data());
      }
    } else {
      RowStore collected(name(), height(), raw.size());
      there = Collect(session, passes, raw, collected);
      for (int i = 0; i < there; ++i) {
        collected.Read(i, 1, raw.data());
        transparent |= Convert(raw.data(), row.data());
        rows.Write(i, row.data());
      }
    }
    if (transparent) NoteAlpha();
    if (there < height()) FillRest(rows, there, session.error);
  }

  // Reads all passes. Returns the number of rows that have at least the pixels of the first pass.
  int Collect(PngSession& session, int passes, Bytes& raw, RowStore& collected) const {
    for (int pass = 0; pass < passes; ++pass) {
      for (int i = 0; i < height(); ++i) {
        if (pass == 0) {
          std::fill(raw.begin(), raw.end(), uint8_t{0});
        } else {
          collected.Read(i, 1, raw.data());
        }
        if (!ReadRow(session, raw.data(), true)) {
          if (pass == 0) return i;
          Note(fmt::format("only {} of its {} passes are complete, so it is coarse: {}", pass, passes, session.error));
          return height();
        }
        collected.Write(i, raw.data());
      }
    }
    return height();
  }

  Layout layout_ = Layout::kRgb;
  int depth_ = 8;
  Conversions conversions_;
};

}  // namespace

std::unique_ptr<PicturePages> OpenPng(const Input& file, const NoteSink& notes) {
  return SinglePicture(std::make_shared<const PngPicture>(file, notes));
}

}  // namespace qnv::tool

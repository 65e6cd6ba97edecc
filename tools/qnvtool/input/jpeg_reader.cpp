// Drives libjpeg, whose errors jump back: every function that calls it with setjmp holds no objects.
#include "qnvtool/input/jpeg_reader.h"

#include <fmt/core.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
// Needs the types of <cstdio>.
#include <jpeglib.h>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/input/decoded_picture.h"
#include "qnvtool/input/exif.h"
#include "qnvtool/input/orientation.h"

namespace qnv::tool {
namespace {

constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kProfileMarker = JPEG_APP0 + 2;

// libjpeg at work on one file.
struct JpegSession {
  explicit JpegSession(const InputFile& input) : file(input) {
    jpeg.err = jpeg_std_error(&errors);
    errors.error_exit = OnError;
    errors.emit_message = OnMessage;
    jpeg.client_data = this;
    source.init_source = [](j_decompress_ptr) {};
    source.term_source = [](j_decompress_ptr) {};
    source.fill_input_buffer = Fill;
    source.skip_input_data = Skip;
    source.resync_to_restart = jpeg_resync_to_restart;
  }
  ~JpegSession() { jpeg_destroy_decompress(&jpeg); }
  JpegSession(const JpegSession&) = delete;
  JpegSession& operator=(const JpegSession&) = delete;

  static JpegSession& Of(j_common_ptr common) { return *static_cast<JpegSession*>(common->client_data); }

  static void OnError(j_common_ptr common) {
    JpegSession& session = Of(common);
    common->err->format_message(common, session.error);
    std::longjmp(session.jump, 1);
  }

  // Level -1: damaged data, which libjpeg makes up for as well as it can.
  static void OnMessage(j_common_ptr common, int level) {
    JpegSession& session = Of(common);
    if (level >= 0 || session.ended) return;
    if (session.warnings++ == 0) common->err->format_message(common, session.warning);
  }

  // Behind the end of the file the picture is ended, once and for all.
  static boolean Fill(j_decompress_ptr jpeg) {
    JpegSession& session = Of(reinterpret_cast<j_common_ptr>(jpeg));
    std::size_t got = session.ReadMore();
    if (got == 0) {
      if (!session.ended) session.endedAt = jpeg->output_scanline;
      session.ended = true;
      session.buffer[0] = 0xFF;
      session.buffer[1] = JPEG_EOI;
      got = 2;
    }
    session.source.next_input_byte = session.buffer;
    session.source.bytes_in_buffer = got;
    return TRUE;
  }

  static void Skip(j_decompress_ptr jpeg, long count) {
    JpegSession& session = Of(reinterpret_cast<j_common_ptr>(jpeg));
    if (count <= 0) return;
    const auto skipped = static_cast<std::size_t>(count);
    const std::size_t here = std::min(skipped, session.source.bytes_in_buffer);
    session.source.next_input_byte += here;
    session.source.bytes_in_buffer -= here;
    session.at += skipped - here;
  }

  // Exceptions must not pass through libjpeg.
  std::size_t ReadMore() noexcept {
    try {
      const std::size_t got = file.Read(at, buffer, sizeof buffer);
      at += got;
      return got;
    } catch (const std::exception&) {
      return 0;
    }
  }

  const InputFile& file;
  jpeg_decompress_struct jpeg{};
  jpeg_error_mgr errors{};
  jpeg_source_mgr source{};
  std::jmp_buf jump{};
  uint64_t at = 0;
  bool ended = false;      // the file ended before the picture did
  JDIMENSION endedAt = 0;  // while this row was decoded
  int warnings = 0;
  char error[JMSG_LENGTH_MAX] = {};
  char warning[JMSG_LENGTH_MAX] = {};
  uint8_t buffer[1 << 15];
};

// Each returns false after an error, whose message is then in the session.
[[gnu::noinline]] bool ReadHeader(JpegSession& session) {
  if (setjmp(session.jump) != 0) return false;
  jpeg_create_decompress(&session.jpeg);
  session.jpeg.src = &session.source;
  jpeg_save_markers(&session.jpeg, kExifMarker, 0xFFFF);
  jpeg_save_markers(&session.jpeg, kProfileMarker, 16);
  jpeg_read_header(&session.jpeg, TRUE);
  return true;
}

[[gnu::noinline]] bool Start(JpegSession& session, J_COLOR_SPACE colors) {
  if (setjmp(session.jump) != 0) return false;
  session.jpeg.out_color_space = colors;
  jpeg_start_decompress(&session.jpeg);
  return true;
}

[[gnu::noinline]] bool ReadJpegRow(JpegSession& session, uint8_t* row) {
  if (setjmp(session.jump) != 0) return false;
  JSAMPROW rows[1] = {row};
  return jpeg_read_scanlines(&session.jpeg, rows, 1) == 1;
}

bool BeginsWith(const jpeg_saved_marker_ptr marker, int type, const char* text, std::size_t size) {
  return marker->marker == type && marker->data_length >= size && std::memcmp(marker->data, text, size) == 0;
}

class JpegPicture final : public TurnedPicture {
 public:
  JpegPicture(const Input& input, const NoteSink& notes) : TurnedPicture(input, notes) {
    JpegSession session(file());
    if (!ReadHeader(session)) Fail(session.error);
    const jpeg_decompress_struct& jpeg = session.jpeg;
    if (session.ended && jpeg.image_width == 0) Fail("the file ends early");
    CheckPictureSize(name(), jpeg.image_width, jpeg.image_height);
    CheckCoefficients(session);
    switch (jpeg.jpeg_color_space) {
      case JCS_GRAYSCALE: colors_ = JCS_GRAYSCALE; break;
      case JCS_YCbCr:
      case JCS_RGB: colors_ = JCS_EXT_BGR; break;
      case JCS_CMYK:
      case JCS_YCCK: colors_ = JCS_CMYK; break;
      default: Fail(fmt::format("has {} color components of an unknown kind", jpeg.num_components));
    }
    inverted_ = jpeg.saw_Adobe_marker != 0;
    ReadMarkers(session);
    fileWidth_ = static_cast<int>(jpeg.image_width);
    fileHeight_ = static_cast<int>(jpeg.image_height);
    TurnSides();
    form_.bitCount = colors_ == JCS_GRAYSCALE ? 8 : 24;
    if (colors_ == JCS_GRAYSCALE) {
      for (uint32_t i = 0; i < 256; ++i) form_.table.push_back(i * 0x010101);
    }
    if (colors_ == JCS_CMYK) Note("its CMYK colors are converted without a color profile");
  }

 private:
  [[noreturn]] void Fail(const std::string& why) const {
    throw ToolError(ExitCode::kBadInput, fmt::format("{}: is a damaged JPEG picture: {}", name(), why));
  }

  // Pictures in several scans are decoded from coefficients of the whole picture, which libjpeg keeps in memory.
  void CheckCoefficients(JpegSession& session) const {
    if (jpeg_has_multiple_scans(&session.jpeg) == 0) return;
    uint64_t bytes = 0;
    for (int i = 0; i < session.jpeg.num_components; ++i) {
      const jpeg_component_info& component = session.jpeg.comp_info[i];
      bytes += uint64_t{component.width_in_blocks} * component.height_in_blocks * sizeof(JBLOCK);
    }
    if (bytes <= kMaxCoefficientBytes) return;
    throw ToolError(ExitCode::kBadInput,
                    fmt::format("{}: is a progressive JPEG picture that would take {} MB of memory, at most {} are "
                                "used; store it as a baseline one (jpegtran does so without loss)",
                                name(), bytes >> 20, kMaxCoefficientBytes >> 20));
  }

  void ReadMarkers(const JpegSession& session) {
    Exif exif;
    bool hasProfile = false;
    for (jpeg_saved_marker_ptr marker = session.jpeg.marker_list; marker != nullptr; marker = marker->next) {
      if (BeginsWith(marker, kExifMarker, "Exif\0", 6)) exif = ReadExif(marker->data + 6, marker->data_length - 6);
      hasProfile |= BeginsWith(marker, kProfileMarker, "ICC_PROFILE", 12);
    }
    orientation_ = exif.orientation;
    xPixelsPerMetre_ = exif.xPixelsPerMetre;
    yPixelsPerMetre_ = exif.yPixelsPerMetre;
    if (session.jpeg.saw_JFIF_marker != 0 && session.jpeg.density_unit != 0) {
      const int unit = session.jpeg.density_unit + 1;
      xPixelsPerMetre_ = PixelsPerMetre(session.jpeg.X_density, unit);
      yPixelsPerMetre_ = PixelsPerMetre(session.jpeg.Y_density, unit);
    }
    if (hasProfile) Note("its color profile is not used");
  }

  // In place: four bytes a pixel to three. Files of Adobe's programs hold the complements.
  void CmykToBgr(Bytes& row) const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(fileWidth_); ++i) {
      uint32_t value[4];
      for (std::size_t c = 0; c < 4; ++c) {
        value[c] = inverted_ ? row[i * 4 + c] : 255u - row[i * 4 + c];
      }
      for (std::size_t c = 0; c < 3; ++c) row[i * 3 + c] = static_cast<uint8_t>((value[2 - c] * value[3] + 127) / 255);
    }
  }

  void Decode(RowStore& rows) const override {
    const std::size_t pixel = colors_ == JCS_GRAYSCALE ? 1 : 3;
    OrientedRows oriented(rows, orientation_, fileWidth_, fileHeight_, pixel);
    Bytes row(static_cast<std::size_t>(fileWidth_) * 4);
    JpegSession session(file());
    int done = 0;
    if (ReadHeader(session) && Start(session, colors_)) {
      const bool isSequential = jpeg_has_multiple_scans(&session.jpeg) == 0;
      const bool endedInScans = session.ended;
      while (done < fileHeight_ && ReadJpegRow(session, row.data())) {
        // What is decoded behind the end of the file is no picture.
        if (session.ended && isSequential && done >= FirstMissing(session)) break;
        if (colors_ == JCS_CMYK) CmykToBgr(row);
        oriented.Add(row.data());
        ++done;
      }
      if (endedInScans && !isSequential) Note("its data ends early; parts of it are coarse or gray");
    }
    if (session.warnings != 0)
      Note(fmt::format("its data is damaged, and so may be what is shown: {}", session.warning));
    if (done == fileHeight_) return oriented.Finish();
    const std::string reason = session.ended ? "the file ends early" : session.error;
    const Bytes white(row.size(), 0xFF);
    Note(MissingRowsNote(fileHeight_ - done, fileHeight_, reason));
    for (; done < fileHeight_; ++done) oriented.Add(white.data());
    oriented.Finish();
  }

  // The first row of the blocks in which the file ended.
  static int FirstMissing(const JpegSession& session) {
    const int rows = session.jpeg.max_v_samp_factor * DCTSIZE;
    return (static_cast<int>(session.endedAt) + rows - 1) / rows * rows;
  }

  J_COLOR_SPACE colors_ = JCS_EXT_BGR;
  bool inverted_ = false;
};

}  // namespace

std::unique_ptr<PicturePages> OpenJpeg(const Input& file, const NoteSink& notes) {
  return SinglePicture(std::make_shared<const JpegPicture>(file, notes));
}

}  // namespace qnv::tool

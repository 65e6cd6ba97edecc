// The table of first bytes.
#include "qnvtool/input/file_kind.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>

namespace qnv::tool {
namespace {

using namespace std::string_view_literals;

constexpr const char* kConvert = "convert it to PNG, JPEG, TIFF or BMP first";
constexpr const char* kUnpack = "unpack it first";
constexpr const char* kRaster = "turn its pages into pictures first, for example with pdftoppm -png -r 300";
constexpr const char* kGhostscript = "turn its pages into pictures first, for example with gs -sDEVICE=png16m";
constexpr const char* kExport = "export its pages as pictures or as plain text first";
constexpr const char* kNothing = "there is nothing in it to print";
constexpr const char* kFont = "name it after --font to print text with it";

// A file is what the first matching row says. The second text must stand at its offset, too, unless it is empty.
struct Magic {
  std::size_t offset;
  std::string_view bytes;
  FileKind::Form form;
  const char* what;
  const char* remedy;
  std::size_t secondOffset = 0;
  std::string_view second = {};
};

using Form = FileKind::Form;

constexpr Magic kMagics[] = {
    {0, "BM"sv, Form::kBmp, "a BMP picture", ""},
    {0, "\x89PNG\r\n\x1A\n"sv, Form::kPng, "a PNG picture", ""},
    {0, "\xFF\xD8\xFF"sv, Form::kJpeg, "a JPEG picture", ""},
    {0, "II*\0"sv, Form::kTiff, "a TIFF picture", ""},
    {0, "MM\0*"sv, Form::kTiff, "a TIFF picture", ""},
    {0, "II+\0"sv, Form::kTiff, "a BigTIFF picture", ""},
    {0, "MM\0+"sv, Form::kTiff, "a BigTIFF picture", ""},

    {0, "BA"sv, Form::kForeign, "an OS/2 array of pictures", kConvert, 14, "BM"sv},
    {0, "GIF8"sv, Form::kForeign, "a GIF picture", kConvert},
    {0, "RIFF"sv, Form::kForeign, "a WebP picture", kConvert, 8, "WEBP"sv},
    {0, "RIFF"sv, Form::kForeign, "a sound or film (RIFF)", kNothing},
    {0, "\0\0\0\x0CjP  \r\n\x87\n"sv, Form::kForeign, "a JPEG 2000 picture", kConvert},
    {0, "\xFF\x4F\xFF\x51"sv, Form::kForeign, "a JPEG 2000 picture", kConvert},
    {0, "\0\0\0\x0CJXL "sv, Form::kForeign, "a JPEG XL picture", kConvert},
    {0, "\xFF\x0A"sv, Form::kForeign, "a JPEG XL picture", kConvert},
    {0, "II\xBC\x01"sv, Form::kForeign, "a JPEG XR picture", kConvert},
    {4, "ftypavif"sv, Form::kForeign, "an AVIF picture", kConvert},
    {4, "ftyphei"sv, Form::kForeign, "a HEIF picture", kConvert},
    {4, "ftypmif1"sv, Form::kForeign, "a HEIF picture", kConvert},
    {4, "ftyp"sv, Form::kForeign, "a film (MP4)", kNothing},
    {0, "\x8AMNG\r\n"sv, Form::kForeign, "an MNG animation", kConvert},
    {0, "8BPS"sv, Form::kForeign, "a Photoshop document", kConvert},
    {0, "gimp xcf"sv, Form::kForeign, "a GIMP picture", kConvert},
    {0, "\0\0\1\0"sv, Form::kForeign, "a Windows icon", kConvert},
    {0, "\xD7\xCD\xC6\x9A"sv, Form::kForeign, "a Windows metafile", kConvert},
    {0, "\1\0\0\0"sv, Form::kForeign, "an enhanced metafile", kConvert, 40, " EMF"sv},
    {0, "v/1\1"sv, Form::kForeign, "an OpenEXR picture", kConvert},
    {0, "#?RADIANCE"sv, Form::kForeign, "a Radiance picture", kConvert},
    {0, "qoif"sv, Form::kForeign, "a QOI picture", kConvert},
    {0, "AT&TFORM"sv, Form::kForeign, "a DjVu document", kConvert},
    {0, "P4\n"sv, Form::kForeign, "a PBM picture", kConvert},
    {0, "P5\n"sv, Form::kForeign, "a PGM picture", kConvert},
    {0, "P6\n"sv, Form::kForeign, "a PPM picture", kConvert},
    {0, "RaS"sv, Form::kForeign, "a CUPS or PWG raster", kConvert},
    {0, "SaR"sv, Form::kForeign, "a CUPS raster", kConvert},
    {0, "UNIRAST\0"sv, Form::kForeign, "an Apple raster", kConvert},

    {0, "%PDF-"sv, Form::kForeign, "a PDF document", kRaster},
    {0, "%!PS-AdobeFont"sv, Form::kForeign, "a Type 1 font", kFont},
    {0, "%!PS"sv, Form::kForeign, "a PostScript document", kGhostscript},
    {0, "\4%!PS"sv, Form::kForeign, "a PostScript document", kGhostscript},
    {0, "\xC5\xD0\xD3\xC6"sv, Form::kForeign, "an EPS picture", kGhostscript},
    {0, "\x1B%-12345X"sv, Form::kForeign, "a printer job (PJL)", "send it to the printer that it was made for"},
    {0,
     "\x1B"
     "E"sv,
     Form::kForeign, "a printer job (PCL)", "send it to the printer that it was made for"},
    {0, "{\\rtf"sv, Form::kForeign, "an RTF document", kExport},
    {0, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, Form::kForeign, "an old Office document", kExport},
    {0, "PK\3\4"sv, Form::kForeign, "an OpenDocument file", kExport, 30, "mimetypeapplication/vnd.oasis"sv},
    {0, "PK\3\4"sv, Form::kForeign, "an EPUB book", kExport, 30, "mimetypeapplication/epub"sv},
    {0, "PK\3\4"sv, Form::kForeign, "an Office document", kExport, 30, "[Content_Types].xml"sv},
    {0, "PK\3\4"sv, Form::kForeign, "a zip archive", kUnpack},
    {0, "PK\5\6"sv, Form::kForeign, "an empty zip archive", kNothing},
    {0, "\x1F\x8B"sv, Form::kForeign, "gzip data", kUnpack},
    {0, "BZh"sv, Form::kForeign, "bzip2 data", kUnpack, 4, "1AY&SY"sv},
    {0,
     "\xFD"
     "7zXZ\0"sv,
     Form::kForeign, "xz data", kUnpack},
    {0, "\x28\xB5\x2F\xFD"sv, Form::kForeign, "zstd data", kUnpack},
    {0, "\x04\x22\x4D\x18"sv, Form::kForeign, "lz4 data", kUnpack},
    {0, "7z\xBC\xAF\x27\x1C"sv, Form::kForeign, "a 7z archive", kUnpack},
    {0, "Rar!\x1A\7"sv, Form::kForeign, "a RAR archive", kUnpack},
    {257, "ustar"sv, Form::kForeign, "a tar archive", kUnpack},
    {0, "MSCF\0\0\0\0"sv, Form::kForeign, "a cabinet archive", kUnpack},
    {0, "!<arch>\ndebian"sv, Form::kForeign, "a Debian package", kNothing},
    {0, "!<arch>\n"sv, Form::kForeign, "a library archive", kNothing},
    {0,
     "\x7F"
     "ELF"sv,
     Form::kForeign, "an ELF program", kNothing},
    {0, "MZ"sv, Form::kForeign, "a Windows program", kNothing},
    {0, "\xCF\xFA\xED\xFE"sv, Form::kForeign, "a macOS program", kNothing},
    {0, "\xCA\xFE\xBA\xBE"sv, Form::kForeign, "a Java class", kNothing},
    {0, "\0asm"sv, Form::kForeign, "a WebAssembly program", kNothing},
    {0, "SQLite format 3\0"sv, Form::kForeign, "an SQLite database", "print what a query returns"},
    {0, "\0\1\0\0\0"sv, Form::kForeign, "a TrueType font", kFont},
    {0, "OTTO"sv, Form::kForeign, "an OpenType font", kFont},
    {0, "ttcf"sv, Form::kForeign, "a font collection", kFont},
    {0, "wOF2"sv, Form::kForeign, "a web font", kNothing},
    {0, "wOFF"sv, Form::kForeign, "a web font", kNothing},
    {0, "OggS"sv, Form::kForeign, "a sound or film (Ogg)", kNothing},
    {0, "ID3"sv, Form::kForeign, "a sound (MP3)", kNothing},
    {0, "fLaC"sv, Form::kForeign, "a sound (FLAC)", kNothing},
    {0, "\x1A\x45\xDF\xA3"sv, Form::kForeign, "a film (Matroska)", kNothing},
};

bool Holds(const Bytes& head, std::size_t offset, std::string_view bytes) {
  if (head.size() < offset + bytes.size()) return false;
  return std::equal(bytes.begin(), bytes.end(), head.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

// Whether there are bytes that no text has.
bool HasControls(const Bytes& head) {
  constexpr uint8_t kEscape = 0x1B;
  return std::any_of(head.begin(), head.end(),
                     [](uint8_t byte) { return byte < '\t' || (byte > '\r' && byte < ' ' && byte != kEscape); });
}

// Whether a text may begin so: letters and digits alone ("BM", "OTTO") say nothing about a file without control codes.
bool MayBeginText(std::string_view magic) {
  return std::all_of(magic.begin(), magic.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '\n';
  });
}

}  // namespace

FileKind KindOf(const Bytes& head) {
  const bool binary = HasControls(head);
  for (const Magic& magic : kMagics) {
    if (!binary && MayBeginText(magic.bytes)) continue;
    if (Holds(head, magic.offset, magic.bytes) && Holds(head, magic.secondOffset, magic.second)) {
      return {magic.form, magic.what, magic.remedy};
    }
  }
  return {};
}

std::string ForeignFileMessage(const std::string& name, const FileKind& kind) {
  return fmt::format("{}: is {}: {}", name, kind.what, kind.remedy);
}

}  // namespace qnv::tool

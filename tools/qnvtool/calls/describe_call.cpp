// Turns stored calls into text.
#include "qnvtool/calls/describe_call.h"

#include <fmt/core.h>

#include "calls/memory_reads.h"

namespace qnv::tool {
namespace {

using calls::BlobView;
using calls::Memory;
using calls::PointerTag;
using calls::ReadAs;

struct NamedCode {
  uint32_t code;
  const char* name;
};

constexpr NamedCode kRasterCodes[] = {
    {SRCCOPY, "SRCCOPY"},       {SRCPAINT, "SRCPAINT"},     {SRCAND, "SRCAND"},           {SRCINVERT, "SRCINVERT"},
    {SRCERASE, "SRCERASE"},     {NOTSRCCOPY, "NOTSRCCOPY"}, {NOTSRCERASE, "NOTSRCERASE"}, {MERGECOPY, "MERGECOPY"},
    {MERGEPAINT, "MERGEPAINT"}, {PATCOPY, "PATCOPY"},       {PATPAINT, "PATPAINT"},       {PATINVERT, "PATINVERT"},
    {DSTINVERT, "DSTINVERT"},   {BLACKNESS, "BLACKNESS"},   {WHITENESS, "WHITENESS"},     {ROP_MINIMUM, "ROP_MINIMUM"}};

constexpr const char* kRop2Names[16] = {"R2_BLACK",      "R2_NOTMERGEPEN", "R2_MASKNOTPEN", "R2_NOTCOPYPEN",
                                        "R2_MASKPENNOT", "R2_NOT",         "R2_XORPEN",     "R2_NOTMASKPEN",
                                        "R2_MASKPEN",    "R2_NOTXORPEN",   "R2_NOP",        "R2_MERGENOTPEN",
                                        "R2_COPYPEN",    "R2_MERGEPENNOT", "R2_MERGEPEN",   "R2_WHITE"};

std::string SpanStyleName(uint32_t style) {
  switch (style & 0xFFFF) {
    case OS_SCANLINES:
    case OS_SCANLINES + 100: return "OS_SCANLINES";
    case OS_BANDED_SPANS:
    case OS_BANDED_SPANS + 100: return "OS_BANDED_SPANS";
    case OS_ROW_RECORDS: return "OS_ROW_RECORDS";
    case OS_ROW_SPANS: return "OS_ROW_SPANS";
    case OS_BYTE_DELTAS: return "OS_BYTE_DELTAS";
    case OS_NIBBLE_DELTAS: return "OS_NIBBLE_DELTAS";
    case OS_BEGINNSCAN: return "OS_BEGINNSCAN";
    case OS_ENDNSCAN: return "OS_ENDNSCAN";
    default: return fmt::format("{}", style);
  }
}

std::string EscapeName(uint32_t code) {
  switch (code & 0xFFFF) {
    case QNV_SET_ORIGIN: return "QNV_SET_ORIGIN";
    case QNV_SET_BAND_RECT: return "QNV_SET_BAND_RECT";
    case QNV_CLEAR_BAND: return "QNV_CLEAR_BAND";
    default: return fmt::format("0x{:X}", code);
  }
}

std::string TextOptionNames(uint32_t options) {
  std::string names;
  if ((options & ETO_OPAQUE) != 0) names += "ETO_OPAQUE";
  if ((options & ETO_CLIPPED) != 0) names += names.empty() ? "ETO_CLIPPED" : "|ETO_CLIPPED";
  const uint32_t others = options & 0xFFFF & ~uint32_t{ETO_OPAQUE | ETO_CLIPPED};
  if (names.empty() || others != 0) names += fmt::format("{}0x{:X}", names.empty() ? "" : "|", others);
  return names;
}

std::string Color(uint32_t color) { return fmt::format("0x{:06X}", color); }

const char* const kHatchNames[] = {"HS_HORIZONTAL", "HS_VERTICAL", "HS_FDIAGONAL",
                                   "HS_BDIAGONAL",  "HS_CROSS",    "HS_DIAGCROSS"};
const char* const kBrushStyles[] = {"solid", "hollow", "hatched", "pattern"};

std::string DescribeBitmap(const BlobView& blob) {
  if (blob.bytes < sizeof(calls::SourceFields)) return "cut off";
  calls::SourceFields fields;
  std::memcpy(&fields, blob.data, sizeof fields);
  return fmt::format("{} x {}, {} bits, {} bytes a row", fields.width, fields.height, fields.planes * fields.bitsPixel,
                     fields.widthBytes);
}

// The record in a blob of at least `bytes`; null when it is shorter.
const uint8_t* RecordOf(const BlobView& blob, std::size_t bytes) { return blob.bytes < bytes ? nullptr : blob.data; }

std::string DescribeRecord(Memory memory, const BlobView& blob) {
  const uint8_t* record;
  switch (memory) {
    case Memory::kRect:
      if ((record = RecordOf(blob, sizeof(BandRect))) == nullptr) break;
      {
        const auto r = ReadAs<BandRect>(record);
        return fmt::format("({}, {}, {}, {})", r.left, r.top, r.right, r.bottom);
      }
    case Memory::kDescription:
      if ((record = RecordOf(blob, sizeof(DeviceDescription))) == nullptr) break;
      {
        const auto d = ReadAs<DeviceDescription>(record);
        return fmt::format("kind {}, {} bits, {} x {} at {}/{} dpi", uint16_t{d.kind}, uint16_t{d.bitsPerPixel},
                           uint32_t{d.width}, uint32_t{d.height}, uint16_t{d.resolutionA}, uint16_t{d.resolutionB});
      }
    case Memory::kDrawMode:
    case Memory::kTextDrawMode:
      if ((record = RecordOf(blob, sizeof(DRAWMODE))) == nullptr) break;
      {
        const auto m = ReadAs<DRAWMODE>(record);
        std::string text =
            fmt::format("{}, {}, text {}, background {}", Rop2Name(m.Rop2),
                        m.bkMode == OPAQUE ? "opaque" : "transparent", Color(m.TextColor), Color(m.bkColor));
        if (m.TBreakExtra != 0 || m.BreakCount != 0 || m.CharacterExtra != 0) {
          text += fmt::format(", extra {} over {} breaks (error {}), {} a character", int16_t{m.TBreakExtra},
                              int16_t{m.BreakCount}, int16_t{m.BreakErr}, int16_t{m.CharacterExtra});
        }
        return text;
      }
    case Memory::kPen:
      if ((record = RecordOf(blob, sizeof(PhysicalPen))) == nullptr) break;
      {
        const auto p = ReadAs<PhysicalPen>(record);
        return fmt::format("{} {}", p.style == PS_NULL ? "null" : "solid", Color(p.colour));
      }
    case Memory::kBrush:
      if ((record = RecordOf(blob, calls::kSolidBrushBytes)) == nullptr) break;
      {
        const auto style = ReadAs<uint16_t>(record), hatch = ReadAs<uint16_t>(record + 2);
        const auto depth = ReadAs<uint16_t>(record + 4);
        std::string text = style <= BS_PATTERN ? kBrushStyles[style] : fmt::format("style {}", style);
        if (style == BS_HATCHED) text += fmt::format(" {}", hatch < 6 ? kHatchNames[hatch] : "unknown");
        if (style == BS_PATTERN) text += fmt::format(" of {} bits", depth);
        return text + " " + Color(ReadAs<uint32_t>(record + 8));
      }
    case Memory::kDibHeader:
      if ((record = RecordOf(blob, sizeof(BITMAPINFOHEADER))) == nullptr) break;
      {
        const auto h = ReadAs<BITMAPINFOHEADER>(record);
        return fmt::format("{} x {}, {} bits, compression {}, {} colors", int32_t{h.biWidth}, int32_t{h.biHeight},
                           uint16_t{h.biBitCount}, uint32_t{h.biCompression}, uint32_t{h.biClrUsed});
      }
    case Memory::kEscapeData:
      if (blob.bytes == sizeof(DrawingOrigin)) {
        const auto o = ReadAs<DrawingOrigin>(blob.data);
        return fmt::format("({}, {})", o.x, o.y);
      }
      if (blob.bytes == sizeof(BandRect)) return DescribeRecord(Memory::kRect, blob);
      break;
    case Memory::kLogicalObject:
      if (blob.bytes == sizeof(LogicalPen)) {
        const auto p = ReadAs<LogicalPen>(blob.data);
        return fmt::format("pen of style {}, {}", uint16_t{p.style}, Color(p.colour));
      }
      break;
    case Memory::kString: {
      std::string text = "\"";
      for (std::size_t i = 0; i < blob.bytes; ++i) {
        const uint8_t c = blob.data[i];
        text += c >= 0x20 && c < 0x7F && c != '"' && c != '\\' ? std::string(1, static_cast<char>(c))
                                                               : fmt::format("\\x{:02X}", c);
      }
      return text + "\"";
    }
    default: break;
  }
  return fmt::format("{} bytes", blob.bytes);
}

std::string DescribeLogicalBrush(const calls::CallFile& file, const calls::StoredArgument& argument) {
  const BlobView& blob = file.Blob(argument.record);
  if (blob.bytes != 12) return "cut off";
  const auto style = calls::GetLittle<uint16_t>(blob.data), hatch = calls::GetLittle<uint16_t>(blob.data + 6);
  std::string text = style <= BS_PATTERN ? kBrushStyles[style] : fmt::format("style {}", style);
  if (argument.isNestedRecord) return text + " " + DescribeBitmap(file.Blob(argument.nestedRecord));
  text += " " + Color(calls::GetLittle<uint32_t>(blob.data + 2));
  if (style == BS_HATCHED) text += fmt::format(" {}", hatch < 6 ? kHatchNames[hatch] : "unknown");
  return text;
}

std::string DescribePointer(const calls::CallFile& file, Memory memory, const calls::StoredArgument& argument) {
  const calls::StoredPointer& pointer = argument.pointer;
  if (argument.isRecord) {
    return memory == Memory::kSource ? DescribeBitmap(file.Blob(argument.record))
                                     : DescribeLogicalBrush(file, argument);
  }
  switch (pointer.tag) {
    case PointerTag::kNull: return "null";
    case PointerTag::kUnread:
      return memory == Memory::kBand || memory == Memory::kTagPlane ? "memory of the host" : "given";
    case PointerTag::kBlob: return DescribeRecord(memory, file.Blob(pointer.number));
    case PointerTag::kImage: return fmt::format("font {}", file.Image(pointer.number).root);
    case PointerTag::kRows: return fmt::format("rows of {} bytes", pointer.rowBytes);
    case PointerTag::kRecord: break;
  }
  return "?";
}

}  // namespace

std::string Rop2Name(int rop2) { return kRop2Names[(rop2 - 1) & 15]; }

std::string RasterCodeName(uint32_t rop) {
  for (const NamedCode& named : kRasterCodes) {
    if (named.code == rop) return named.name;
  }
  // Eight bits say what becomes of D for each of P, S, D.
  const uint32_t index = rop >> 16 & 0xFF;
  std::string text = fmt::format("0x{:08X} (operation 0x{:02X}", rop, index);
  text += calls::RopReadsSource(rop) ? ", source" : "";
  text += calls::RopReadsPattern(rop) ? ", pattern" : "";
  return text + ")";
}

std::vector<DescribedField> DescribeArguments(const calls::CallFile& file, const calls::StoredCall& call) {
  const calls::EntryPoint& entry = calls::EntryPointOf(call.function);
  std::vector<DescribedField> fields;
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    const calls::Argument& argument = entry.arguments[i];
    const calls::StoredArgument& stored = call.arguments[i];
    const std::string name = argument.name;
    switch (argument.type) {
      case calls::Type::kHandle:
        if (stored.number < 2) {
          fields.push_back({"device", stored.number == 0 ? "null" : "bad", false});
        } else {
          fields.push_back({"device", fmt::format("{}", stored.number - 1), true});
        }
        break;
      case calls::Type::kInt32:
        fields.push_back({name, fmt::format("{}", static_cast<int32_t>(stored.number)), true});
        break;
      case calls::Type::kUint32:
        if (name == "rop") {
          fields.push_back({name, RasterCodeName(stored.number), false});
        } else if (name == "style") {
          fields.push_back({name, SpanStyleName(stored.number), false});
        } else if (name == "code") {
          fields.push_back({name, EscapeName(stored.number), false});
        } else if (name == "options") {
          fields.push_back({name, TextOptionNames(stored.number), false});
        } else if (name == "colour") {
          fields.push_back({name, Color(stored.number), false});
        } else {
          fields.push_back({name, fmt::format("{}", stored.number), true});
        }
        break;
      default: fields.push_back({name, DescribePointer(file, argument.memory, stored), false});
    }
  }
  return fields;
}

std::string JsonText(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      quoted += '\\';
      quoted += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      quoted += fmt::format("\\u{:04x}", static_cast<int>(c));
    } else {
      quoted += c;
    }
  }
  return quoted + "\"";
}

}  // namespace qnv::tool

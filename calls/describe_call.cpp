// Turns stored calls into text.
#include "calls/describe_call.h"

#include "calls/memory_reads.h"
#include "calls/text.h"

namespace qnv::calls {
namespace {

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
    default: return Text(style);
  }
}

std::string EscapeName(uint32_t code) {
  switch (code & 0xFFFF) {
    case QNV_SET_ORIGIN: return "QNV_SET_ORIGIN";
    case QNV_SET_BAND_RECT: return "QNV_SET_BAND_RECT";
    case QNV_CLEAR_BAND: return "QNV_CLEAR_BAND";
    default: return Text("0x", Hex{code});
  }
}

std::string TextOptionNames(uint32_t options) {
  std::string names;
  if ((options & ETO_OPAQUE) != 0) names += "ETO_OPAQUE";
  if ((options & ETO_CLIPPED) != 0) names += names.empty() ? "ETO_CLIPPED" : "|ETO_CLIPPED";
  const uint32_t others = options & 0xFFFF & ~uint32_t{ETO_OPAQUE | ETO_CLIPPED};
  if (names.empty() || others != 0) names += Text(names.empty() ? "0x" : "|0x", Hex{others});
  return names;
}

std::string Color(uint32_t color) { return Text("0x", Hex{color, 6}); }

const char* const kHatchNames[] = {"HS_HORIZONTAL", "HS_VERTICAL", "HS_FDIAGONAL",
                                   "HS_BDIAGONAL",  "HS_CROSS",    "HS_DIAGCROSS"};
const char* const kBrushStyles[] = {"solid", "hollow", "hatched", "pattern"};

std::string DescribeBitmap(const BlobView& blob) {
  if (blob.bytes < sizeof(SourceFields)) return "cut off";
  SourceFields fields;
  std::memcpy(&fields, blob.data, sizeof fields);
  return Text(fields.width, " x ", fields.height, ", ", fields.planes * fields.bitsPixel, " bits, ", fields.widthBytes,
              " bytes a row");
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
        return Text("(", r.left, ", ", r.top, ", ", r.right, ", ", r.bottom, ")");
      }
    case Memory::kDescription:
      if ((record = RecordOf(blob, sizeof(DeviceDescription))) == nullptr) break;
      {
        const auto d = ReadAs<DeviceDescription>(record);
        return Text("kind ", d.kind, ", ", d.bitsPerPixel, " bits, ", d.width, " x ", d.height, " at ", d.resolutionA,
                    "/", d.resolutionB, " dpi");
      }
    case Memory::kDrawMode:
    case Memory::kTextDrawMode:
      if ((record = RecordOf(blob, sizeof(DRAWMODE))) == nullptr) break;
      {
        const auto m = ReadAs<DRAWMODE>(record);
        std::string text = Text(Rop2Name(m.Rop2), m.bkMode == OPAQUE ? ", opaque" : ", transparent", ", text ",
                                Color(m.TextColor), ", background ", Color(m.bkColor));
        if (m.TBreakExtra != 0 || m.BreakCount != 0 || m.CharacterExtra != 0) {
          text += Text(", extra ", m.TBreakExtra, " over ", m.BreakCount, " breaks (error ", m.BreakErr, "), ",
                       m.CharacterExtra, " a character");
        }
        return text;
      }
    case Memory::kPen:
      if ((record = RecordOf(blob, sizeof(PhysicalPen))) == nullptr) break;
      {
        const auto p = ReadAs<PhysicalPen>(record);
        return Text(p.style == PS_NULL ? "null " : "solid ", Color(p.colour));
      }
    case Memory::kBrush:
      if ((record = RecordOf(blob, kSolidBrushBytes)) == nullptr) break;
      {
        const auto style = ReadAs<uint16_t>(record), hatch = ReadAs<uint16_t>(record + 2);
        const auto depth = ReadAs<uint16_t>(record + 4);
        std::string text = style <= BS_PATTERN ? kBrushStyles[style] : Text("style ", style);
        if (style == BS_HATCHED) text += Text(" ", hatch < 6 ? kHatchNames[hatch] : "unknown");
        if (style == BS_PATTERN) text += Text(" of ", depth, " bits");
        return text + " " + Color(ReadAs<uint32_t>(record + 8));
      }
    case Memory::kDibHeader:
      if ((record = RecordOf(blob, sizeof(BITMAPINFOHEADER))) == nullptr) break;
      {
        const auto h = ReadAs<BITMAPINFOHEADER>(record);
        return Text(h.biWidth, " x ", h.biHeight, ", ", h.biBitCount, " bits, compression ", h.biCompression, ", ",
                    h.biClrUsed, " colors");
      }
    case Memory::kEscapeData:
      if (blob.bytes == sizeof(DrawingOrigin)) {
        const auto o = ReadAs<DrawingOrigin>(blob.data);
        return Text("(", o.x, ", ", o.y, ")");
      }
      if (blob.bytes == sizeof(BandRect)) return DescribeRecord(Memory::kRect, blob);
      break;
    case Memory::kLogicalObject:
      if (blob.bytes == sizeof(LogicalPen)) {
        const auto p = ReadAs<LogicalPen>(blob.data);
        return Text("pen of style ", p.style, ", ", Color(p.colour));
      }
      break;
    case Memory::kString: {
      std::string text = "\"";
      for (std::size_t i = 0; i < blob.bytes; ++i) {
        const uint8_t c = blob.data[i];
        text += c >= 0x20 && c < 0x7F && c != '"' && c != '\\' ? std::string(1, static_cast<char>(c))
                                                               : Text("\\x", Hex{c, 2});
      }
      return text + "\"";
    }
    default: break;
  }
  return Text(blob.bytes, " bytes");
}

std::string DescribeLogicalBrush(const CallFile& file, const StoredArgument& argument) {
  const BlobView& blob = file.Blob(argument.record);
  if (blob.bytes != 12) return "cut off";
  const auto style = GetLittle<uint16_t>(blob.data), hatch = GetLittle<uint16_t>(blob.data + 6);
  std::string text = style <= BS_PATTERN ? kBrushStyles[style] : Text("style ", style);
  if (argument.isNestedRecord) return text + " " + DescribeBitmap(file.Blob(argument.nestedRecord));
  text += " " + Color(GetLittle<uint32_t>(blob.data + 2));
  if (style == BS_HATCHED) text += Text(" ", hatch < 6 ? kHatchNames[hatch] : "unknown");
  return text;
}

std::string DescribePointer(const CallFile& file, Memory memory, const StoredArgument& argument) {
  const StoredPointer& pointer = argument.pointer;
  if (argument.isRecord) {
    return memory == Memory::kSource ? DescribeBitmap(file.Blob(argument.record))
                                     : DescribeLogicalBrush(file, argument);
  }
  switch (pointer.tag) {
    case PointerTag::kNull: return "null";
    case PointerTag::kUnread:
      return memory == Memory::kBand || memory == Memory::kTagPlane ? "memory of the host" : "given";
    case PointerTag::kBlob: return DescribeRecord(memory, file.Blob(pointer.number));
    case PointerTag::kImage: return Text("font ", file.Image(pointer.number).root);
    case PointerTag::kRows: return Text("rows of ", pointer.rowBytes, " bytes");
    case PointerTag::kRecord: break;
  }
  return "?";
}

}  // namespace

void AppendText(std::string& text, const Hex& hex) {
  char digits[16] = {};
  const auto end = std::to_chars(digits, digits + sizeof digits, hex.value, 16).ptr;
  for (std::ptrdiff_t zeros = hex.digits - (end - digits); zeros > 0; --zeros) text += '0';
  for (const char* at = digits; at != end; ++at) {
    text += hex.upper && *at >= 'a' ? static_cast<char>(*at - 'a' + 'A') : *at;
  }
}

std::string Rop2Name(int rop2) { return kRop2Names[(rop2 - 1) & 15]; }

std::string RasterCodeName(uint32_t rop) {
  for (const NamedCode& named : kRasterCodes) {
    if (named.code == rop) return named.name;
  }
  // Eight bits say what becomes of D for each of P, S, D.
  const uint32_t index = rop >> 16 & 0xFF;
  std::string text = Text("0x", Hex{rop, 8}, " (operation 0x", Hex{index, 2});
  text += RopReadsSource(rop) ? ", source" : "";
  text += RopReadsPattern(rop) ? ", pattern" : "";
  return text + ")";
}

std::vector<DescribedField> DescribeArguments(const CallFile& file, const StoredCall& call) {
  const EntryPoint& entry = EntryPointOf(call.function);
  std::vector<DescribedField> fields;
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    const Argument& argument = entry.arguments[i];
    const StoredArgument& stored = call.arguments[i];
    const std::string name = argument.name;
    switch (argument.type) {
      case Type::kHandle:
        if (stored.number < 2) {
          fields.push_back({"device", stored.number == 0 ? "null" : "bad", false});
        } else {
          fields.push_back({"device", Text(stored.number - 1), true});
        }
        break;
      case Type::kInt32: fields.push_back({name, Text(static_cast<int32_t>(stored.number)), true}); break;
      case Type::kUint32:
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
          fields.push_back({name, Text(stored.number), true});
        }
        break;
      default: fields.push_back({name, DescribePointer(file, argument.memory, stored), false});
    }
  }
  return fields;
}

std::string DescribeCall(const CallFile& file, std::size_t number, const StoredCall& call) {
  return DescribeCall(number, call, DescribeArguments(file, call));
}

std::string DescribeCall(std::size_t number, const StoredCall& call, const std::vector<DescribedField>& fields) {
  const EntryPoint& entry = EntryPointOf(call.function);
  std::string line = Text(number, " ", entry.name, "(");
  bool first = true;
  for (const DescribedField& field : fields) {
    line += first ? "" : ", ";
    line += field.name;
    line += '=';
    line += field.text;
    first = false;
  }
  line += ")";
  if (entry.result == Result::kHandle) {
    line += call.result == 0 ? " = refused" : Text(" = device ", call.result);
  } else if (entry.result == Result::kSigned) {
    line += Text(" = ", static_cast<int32_t>(call.result));
  } else if (entry.result != Result::kNothing) {
    line += Text(" = 0x", Hex{call.result});
  }
  return line + Text(" [", call.nanoseconds, " ns]");
}

}  // namespace qnv::calls

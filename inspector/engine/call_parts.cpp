// Takes calls apart.
#include "inspector/engine/call_parts.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "calls/describe_call.h"
#include "calls/memory_reads.h"
#include "calls/raster_formula.h"

namespace qnv::inspector {
namespace {

using calls::Function;
using calls::Memory;
using calls::PointerTag;
using calls::ReadAs;
using calls::Text;

// A physical color, red in the low byte, as pages write colors.
std::string WebColor(uint32_t color) {
  const uint32_t rgb = (color & 255) << 16 | (color & 0xFF00) | (color >> 16 & 255);
  return Text("#", calls::Hex{rgb, 6, false});
}

struct ColorField {
  uint32_t color;
};

template <class T>
void WriteField(JsonWriter& json, const char* name, T value) {
  json.Object().Member("name", name).Member("text", Text(value)).EndObject();
}

void WriteField(JsonWriter& json, const char* name, ColorField field) {
  json.Object().Member("name", name).Member("text", Text("0x", calls::Hex{field.color, 6}));
  json.Member("color", WebColor(field.color)).EndObject();
}

void WriteEachField(JsonWriter&) {}

template <class T, class... Rest>
void WriteEachField(JsonWriter& json, const char* name, T value, Rest... rest) {
  WriteField(json, name, value);
  WriteEachField(json, rest...);
}

// Names and values of a record by turns. By value, because fields of packed records cannot be referred to.
template <class... Parts>
void WriteFields(JsonWriter& json, Parts... parts) {
  json.Name("fields").List();
  WriteEachField(json, parts...);
  json.EndList();
}

void WriteRecord(JsonWriter& json, Memory memory, const calls::BlobView& blob) {
  const auto holds = [&](std::size_t bytes) { return blob.bytes >= bytes; };
  if ((memory == Memory::kRect && holds(16)) || (memory == Memory::kEscapeData && blob.bytes == 16)) {
    const auto r = ReadAs<BandRect>(blob.data);
    WriteFields(json, "left", r.left, "top", r.top, "right", r.right, "bottom", r.bottom);
  } else if (memory == Memory::kEscapeData && blob.bytes == 8) {
    const auto o = ReadAs<DrawingOrigin>(blob.data);
    WriteFields(json, "x", o.x, "y", o.y);
  } else if (memory == Memory::kDescription && holds(sizeof(DeviceDescription))) {
    const auto d = ReadAs<DeviceDescription>(blob.data);
    WriteFields(json, "kind", d.kind, "bitsPerPixel", d.bitsPerPixel, "resolutionA", d.resolutionA, "width", d.width,
                "height", d.height, "resolutionB", d.resolutionB);
  } else if ((memory == Memory::kDrawMode || memory == Memory::kTextDrawMode) && holds(sizeof(DRAWMODE))) {
    const auto m = ReadAs<DRAWMODE>(blob.data);
    WriteFields(json, "Rop2", calls::Rop2Name(m.Rop2), "bkMode", m.bkMode == OPAQUE ? "OPAQUE" : "TRANSPARENT",
                "bkColor", ColorField{m.bkColor}, "TextColor", ColorField{m.TextColor}, "TBreakExtra", m.TBreakExtra,
                "BreakErr", m.BreakErr, "BreakCount", m.BreakCount, "CharacterExtra", m.CharacterExtra);
  } else if (memory == Memory::kPen && holds(sizeof(PhysicalPen))) {
    const auto p = ReadAs<PhysicalPen>(blob.data);
    WriteFields(json, "style", p.style, "widthX", p.widthX, "widthY", p.widthY, "colour", ColorField{p.colour});
  } else if (memory == Memory::kBrush && holds(calls::kSolidBrushBytes)) {
    WriteFields(json, "style", ReadAs<uint16_t>(blob.data), "hatch", ReadAs<uint16_t>(blob.data + 2), "patternDepth",
                ReadAs<uint16_t>(blob.data + 4), "hatchScale", Text(int{blob.data[6]}, " x ", int{blob.data[7]}),
                "colour", ColorField{ReadAs<uint32_t>(blob.data + 8)});
  } else if (memory == Memory::kDibHeader && holds(sizeof(BITMAPINFOHEADER))) {
    const auto h = ReadAs<BITMAPINFOHEADER>(blob.data);
    WriteFields(json, "biSize", h.biSize, "biWidth", h.biWidth, "biHeight", h.biHeight, "biBitCount", h.biBitCount,
                "biCompression", h.biCompression, "biSizeImage", h.biSizeImage, "biClrUsed", h.biClrUsed);
  }
}

}  // namespace

void WriteParts(JsonWriter& json, const calls::CallFile& file, const calls::StoredCall& call, std::size_t index) {
  const calls::Argument& argument = calls::EntryPointOf(call.function).arguments[index];
  const calls::StoredArgument& stored = call.arguments[index];
  const std::string_view name = argument.name;
  if (argument.type == calls::Type::kUint32) {
    if (name == "colour") json.Member("color", WebColor(stored.number));
    if (name == "rop" && stored.number <= 0x00FFFFFF) {
      json.Member("formula", "D = " + calls::RasterFormula(static_cast<uint8_t>(stored.number >> 16)));
    }
    if (name == "rop" && stored.number == ROP_MINIMUM) json.Member("formula", "D = min(D, image)");
    if (name == "options") {
      json.Name("flags").List();
      if ((stored.number & ETO_OPAQUE) != 0) json.Value("ETO_OPAQUE");
      if ((stored.number & ETO_CLIPPED) != 0) json.Value("ETO_CLIPPED");
      json.EndList();
    }
    return;
  }
  if (stored.isRecord) {
    if (argument.memory != Memory::kSource) return;
    const calls::BlobView& blob = file.Blob(stored.record);
    if (blob.bytes != sizeof(calls::SourceFields)) return;
    const auto f = ReadAs<calls::SourceFields>(blob.data);
    WriteFields(json, "bmWidth", f.width, "bmHeight", f.height, "bmWidthBytes", f.widthBytes, "bmPlanes", int{f.planes},
                "bmBitsPixel", int{f.bitsPixel});
    return;
  }
  if (stored.pointer.tag != PointerTag::kBlob) return;
  const calls::BlobView& blob = file.Blob(stored.pointer.number);
  if (argument.memory == Memory::kBrush && blob.bytes >= calls::kSolidBrushBytes) {
    json.Member("color", WebColor(ReadAs<uint32_t>(blob.data + 8)));
  }
  if (argument.memory == Memory::kPen && blob.bytes >= sizeof(PhysicalPen)) {
    json.Member("color", WebColor(ReadAs<PhysicalPen>(blob.data).colour));
  }
  WriteRecord(json, argument.memory, blob);
}

// ---- Pictures

namespace {

constexpr uint32_t kBrushSide = 32, kMaxImageSide = 512, kMaxSourceSide = 2048;

// A device with a white band, for one picture.
class Canvas {
 public:
  Canvas(const calls::Functions& functions, bool isColor, uint32_t width, uint32_t height)
      : functions_(functions), pixelBytes_(isColor ? 3 : 1), width_(width), height_(height) {
    const DeviceDescription description{
        QNV_KIND_RASTER, static_cast<uint16_t>(8 * pixelBytes_), 300, width, height, 300};
    const BandRect rect = Clip();
    band_.assign(std::size_t{Stride()} * height, 0xFF);
    handle_ = functions_.enable(&description, &rect, band_.data(), nullptr);
  }
  ~Canvas() {
    if (handle_ != nullptr) functions_.disable(handle_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  DeviceHandle* handle() const { return handle_; }
  BandRect Clip() const { return {0, 0, static_cast<int32_t>(width_), static_cast<int32_t>(height_)}; }
  void CopyTo(Picture* picture) const {
    picture->width = width_;
    picture->height = height_;
    picture->pixels.resize(std::size_t{width_} * height_ * 4);
    uint8_t* out = picture->pixels.data();
    for (uint32_t y = 0; y < height_; ++y) {
      const uint8_t* pixel = band_.data() + std::size_t{y} * Stride();
      for (uint32_t x = 0; x < width_; ++x, pixel += pixelBytes_, out += 4) {
        out[0] = pixel[pixelBytes_ - 1];
        out[1] = pixel[pixelBytes_ / 2];
        out[2] = pixel[0];
        out[3] = 255;
      }
    }
  }

 private:
  uint32_t Stride() const { return (width_ * pixelBytes_ + 3) & ~3u; }

  const calls::Functions& functions_;
  const uint32_t pixelBytes_, width_, height_;
  std::vector<uint8_t> band_;
  DeviceHandle* handle_ = nullptr;
};

// A call whose arguments are in place, and the shape of a plain device that reads its sources in the same way.
struct PlacedForPicture {
  calls::PlacedCall placed;
  calls::DeviceShape shape;
  bool isColor = true;
};

bool PlaceForPicture(OpenFile& file, std::size_t number, PlacedForPicture* call) {
  History& history = file.history;
  const CallRow& row = history.Rows()[number];
  if (!row.isMade || row.device == 0 || !calls::EntryPointOf(row.function).draws) return false;
  const calls::DeviceShape& device = history.ShapeAtStart(row.device);
  call->isColor = device.SourcePixelBytes() == 3;
  call->shape.description = device.description;
  call->shape.description.kind = QNV_KIND_RASTER;
  call->shape.description.bitsPerPixel = call->isColor ? 24 : 8;
  calls::PlacedCall& placed = call->placed;
  placed.call = number;
  placed.item = &history.File().CallItem(number);
  history.File().DecodeCall(*placed.item, &placed.stored);
  if (row.function == Function::kDevBitBlt) {
    // On a device of another kind a row may be read at other bytes: asked for as the picture will be painted.
    for (const std::size_t destination : {1u, 2u}) placed.stored.arguments[destination].number = 0;
    for (const std::size_t extent : {6u, 7u}) {
      uint32_t& side = placed.stored.arguments[extent].number;
      side = static_cast<uint32_t>(std::clamp<int32_t>(static_cast<int32_t>(side), 0, kMaxSourceSide));
    }
  }
  std::string error;
  return history.Placer().Place(call->shape, &placed, &error) && !placed.skipped;
}

// Reduced to fit, with its proportions.
void Fit(int64_t width, int64_t height, CallPicture* picture) {
  const int64_t side = std::max(width, height);
  const auto fitted = [&](int64_t v) {
    return static_cast<uint32_t>(std::max<int64_t>(side <= kMaxImageSide ? v : v * kMaxImageSide / side, 1));
  };
  picture->width = fitted(width);
  picture->height = fitted(height);
}

// The part of an image that a call paints.
struct ImagePart {
  int32_t x, y, width, height;
};

ImagePart ImagePartOf(const calls::PlacedCall& placed) {
  const calls::Slots& slots = placed.slots;
  if (placed.stored.function == Function::kStretchDIBits) {
    return {slots.Signed(6), slots.Signed(7), slots.Signed(8), slots.Signed(9)};
  }
  const int32_t width = ReadAs<BITMAPINFOHEADER>(slots.Pointer<void>(8)).biWidth;
  return {0, slots.Signed(3), width, slots.Signed(4)};
}

DRAWMODE BlackOnWhite() {
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  mode.bkMode = OPAQUE;
  mode.bkColor = 0x00FFFFFF;
  return mode;
}

// The size of a text that stands alone, with the widths of its font.
bool MeasureText(OpenFile& file, PlacedForPicture* call, uint32_t* width, uint32_t* height) {
  const calls::Slots& slots = call->placed.slots;
  const auto count = static_cast<int16_t>(slots.Low16(5));
  if (count <= 0 || slots.at[4] == 0 || slots.at[6] == 0 || slots.at[8] == 0) return false;
  DRAWMODE mode = BlackOnWhite();
  Canvas canvas(file.history.Functions(), true, 1, 1);
  if (canvas.handle() == nullptr) return false;
  const auto extent = static_cast<uint32_t>(file.history.Functions().extTextOut(
      canvas.handle(), 0, 0, nullptr, slots.Pointer<void>(4), -count, slots.Pointer<void>(6), slots.Unsigned(7), &mode,
      nullptr, nullptr, nullptr, 0));
  *width = std::min(extent & 0xFFFF, kMaxSourceSide);
  *height = std::min(extent >> 16, kMaxSourceSide);
  return *width != 0 && *height != 0;
}

}  // namespace

std::vector<CallPicture> PicturesOf(OpenFile& file, std::size_t number) {
  std::vector<CallPicture> pictures;
  PlacedForPicture call;
  if (!PlaceForPicture(file, number, &call)) return pictures;
  const calls::Slots& slots = call.placed.slots;
  const Function function = call.placed.stored.function;
  const calls::EntryPoint& entry = calls::EntryPointOf(function);
  const auto fields = DescribeArguments(file.history.File(), call.placed.stored);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    if (slots.at[i] == 0) continue;
    CallPicture picture{static_cast<uint32_t>(pictures.size()), i, nullptr, fields[i].text, 0, 0};
    switch (entry.arguments[i].memory) {
      case Memory::kBrush: {
        if (ReadAs<uint16_t>(slots.Pointer<void>(i)) > BS_PATTERN ||
            ReadAs<uint16_t>(slots.Pointer<void>(i)) == BS_HOLLOW) {
          break;
        }
        picture.what = "brush";
        picture.width = picture.height = kBrushSide;
        break;
      }
      case Memory::kSource: {
        const auto bitmap = calls::ReadSourceFields(slots.Pointer<void>(i));
        if (!calls::RopReadsSource(slots.Unsigned(8))) break;
        const int64_t width = std::min<int64_t>(slots.Signed(6), int64_t{bitmap.width} - slots.Signed(4));
        const int64_t height = std::min<int64_t>(slots.Signed(7), int64_t{bitmap.height} - slots.Signed(5));
        if (width <= 0 || height <= 0 || slots.Signed(4) < 0 || slots.Signed(5) < 0) break;
        picture.what = "source";
        picture.width = static_cast<uint32_t>(std::min<int64_t>(width, kMaxSourceSide));
        picture.height = static_cast<uint32_t>(std::min<int64_t>(height, kMaxSourceSide));
        break;
      }
      case Memory::kDibBits: {
        calls::DibShape shape;
        if (slots.at[i + 1] == 0 || !calls::ReadDibShape(slots.Pointer<void>(i + 1), calls::Limit(), &shape)) break;
        const ImagePart part = ImagePartOf(call.placed);
        const int64_t width = std::abs(int64_t{part.width}), height = std::abs(int64_t{part.height});
        if (!shape.isPainted || width == 0 || height == 0 || width > INT16_MAX || height > INT16_MAX) break;
        picture.what = "dib";
        picture.label = fields[i + 1].text;
        Fit(width, height, &picture);
        break;
      }
      case Memory::kString:
        if (MeasureText(file, &call, &picture.width, &picture.height)) picture.what = "glyph";
        break;
      default: break;
    }
    if (picture.what != nullptr) pictures.push_back(picture);
  }
  return pictures;
}

bool DrawPicture(OpenFile& file, const JsonValue& question, Picture* out, std::string* error) {
  std::size_t number;
  if (!CallOf(file, question, &number, error)) return false;
  const std::vector<CallPicture> pictures = PicturesOf(file, number);
  const int64_t id = question["id"].Whole(-1);
  PlacedForPicture call;
  if (id < 0 || id >= static_cast<int64_t>(pictures.size()) || !PlaceForPicture(file, number, &call)) {
    *error = "there is no such picture";
    return false;
  }
  const CallPicture& picture = pictures[static_cast<std::size_t>(id)];
  const calls::Functions& functions = file.history.Functions();
  const calls::Slots& slots = call.placed.slots;
  const Function function = call.placed.stored.function;
  const calls::EntryPoint& entry = calls::EntryPointOf(function);
  Canvas canvas(functions, call.isColor, picture.width, picture.height);
  const BandRect clip = canvas.Clip();
  if (canvas.handle() == nullptr) {
    *error = "there is no memory for the picture";
    return false;
  }
  // The colors of one-bit sources and patterns are those of the call.
  DRAWMODE mode = BlackOnWhite();
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    if (entry.arguments[i].memory != Memory::kDrawMode || slots.at[i] == 0) continue;
    mode = ReadAs<DRAWMODE>(slots.Pointer<void>(i));
    mode.Rop2 = R2_COPYPEN;
  }
  switch (entry.arguments[picture.argument].memory) {
    case Memory::kBrush:
      functions.bitBlt(canvas.handle(), 0, 0, nullptr, 0, 0, clip.right, clip.bottom, PATCOPY,
                       slots.Pointer<PhysicalBrush>(picture.argument), &mode, &clip);
      break;
    case Memory::kSource:
      functions.bitBlt(canvas.handle(), 0, 0, slots.Pointer<SourceBitmap>(picture.argument), slots.Signed(4),
                       slots.Signed(5), clip.right, clip.bottom, SRCCOPY, nullptr, &mode, &clip);
      break;
    case Memory::kDibBits: {
      const ImagePart part = ImagePartOf(call.placed);
      functions.stretchDIBits(canvas.handle(), 0, 0, 0, clip.right, clip.bottom, part.x, part.y, part.width,
                              part.height, slots.Pointer<void>(picture.argument),
                              slots.Pointer<void>(picture.argument + 1), nullptr, SRCCOPY, nullptr, &mode, &clip);
      break;
    }
    default:
      mode = BlackOnWhite();
      functions.extTextOut(canvas.handle(), 0, 0, &clip, slots.Pointer<void>(4), static_cast<int16_t>(slots.Low16(5)),
                           slots.Pointer<void>(6), slots.Unsigned(7), &mode, nullptr, nullptr, nullptr, 0);
  }
  canvas.CopyTo(out);
  return true;
}

}  // namespace qnv::inspector

// The rival on Windows: the graphics interface of the platform does the same work, in the same process, on a bitmap of
// the same size and depth.
#if defined(_WIN32)

#include <cstring>
#include <utility>

#include "bench_memory.h"
#include "bench_table.h"
#include "dib_source.h"
#include "platform_header.h"
#include "raster_font.h"

namespace qnv::bench {
namespace {

// The color of the fixture's brush.
constexpr COLORREF kBrush = 0x00285AC8;

struct GrayInfo {
  BITMAPINFOHEADER header;
  RGBQUAD colors[256];
};

// The header of a bitmap, top row first, with a gray ramp as its color table.
GrayInfo MakeInfo(int width, int height, int bitsPerPixel) {
  GrayInfo info = {};
  info.header.biSize = sizeof info.header;
  info.header.biWidth = width;
  info.header.biHeight = -height;
  info.header.biPlanes = 1;
  info.header.biBitCount = static_cast<WORD>(bitsPerPixel);
  for (int i = 0; i < 256; ++i) {
    const BYTE level = static_cast<BYTE>(i);
    info.colors[i] = {level, level, level, 0};
  }
  return info;
}

// A device context that draws into a bitmap of its own. It deletes the objects that are selected into it.
class Canvas {
 public:
  Canvas(int width, int height, int bitsPerPixel) : context_(CreateCompatibleDC(nullptr)) {
    const GrayInfo info = MakeInfo(width, height, bitsPerPixel);
    void* bits = nullptr;
    Keep(CreateDIBSection(context_, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, &bits, nullptr, 0));
    bits_ = static_cast<uint8_t*>(bits);
    size_ = static_cast<std::size_t>((width * bitsPerPixel + 31) / 32 * 4) * static_cast<std::size_t>(height);
  }

  // With one bit a pixel: when it is copied, it takes the colors of the target, as one-bit sources do in the library.
  Canvas(int width, int height, const uint8_t* oneBitRows) : context_(CreateCompatibleDC(nullptr)) {
    Keep(CreateBitmap(width, height, 1, 1, oneBitRows));
  }

  ~Canvas() {
    DeleteDC(context_);
    for (const HGDIOBJ object : objects_) DeleteObject(object);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  // Selects an object and deletes it with the canvas.
  void Keep(HGDIOBJ object) {
    SelectObject(context_, object);
    objects_.push_back(object);
  }

  HDC context() const { return context_; }
  uint8_t* bits() const { return bits_; }
  std::size_t size() const { return size_; }

 private:
  HDC context_;
  std::vector<HGDIOBJ> objects_;
  uint8_t* bits_ = nullptr;
  std::size_t size_ = 0;
};

// Repeats a call on a canvas.
template <class Call>
class GdiJob final : public Job {
 public:
  GdiJob(std::unique_ptr<Canvas> canvas, const Memory& memory, Call call)
      : canvas_(std::move(canvas)), memory_(memory), call_(std::move(call)) {}

  void Run(int times) override {
    for (int i = 0; i < times; ++i) call_(canvas_->context(), i);
    GdiFlush();
  }

  void Rewind() override { memory_.CopySeed(canvas_->bits(), canvas_->size()); }
  uint64_t PictureHash() const override {
    GdiFlush();
    return HashBytes(canvas_->bits(), canvas_->size());
  }

 private:
  std::unique_ptr<Canvas> canvas_;
  const Memory& memory_;
  Call call_;
};

template <class Call>
Rival MakeGdiRival(std::unique_ptr<Canvas> canvas, const Memory& memory, Call call) {
  Rival rival;
  rival.name = "gdi";
  rival.job = std::make_unique<GdiJob<Call>>(std::move(canvas), memory, std::move(call));
  return rival;
}

// Exchanges red and blue: the library takes red, green, blue where bitmaps of the platform have blue, green, red.
void ExchangeColors(uint8_t* bytes, std::size_t count) {
  for (std::size_t i = 0; i + 3 <= count; i += 3) std::swap(bytes[i], bytes[i + 2]);
}

// A brush with the cells of the library's brush; for a period of 16 each cell covers two by two pixels.
HBRUSH MakePatternBrush(int period, int bitsPerPixel) {
  const std::size_t bytes = static_cast<std::size_t>(bitsPerPixel / 8);
  uint8_t cells[8 * 8 * 3];
  FillRandom(cells, 64 * bytes, 4);
  if (bytes == 3) ExchangeColors(cells, sizeof cells);
  GrayInfo info = MakeInfo(period, period, bitsPerPixel);
  const std::size_t header = bytes == 1 ? sizeof info : sizeof info.header;
  std::vector<uint8_t> packed(header);
  std::memcpy(packed.data(), &info, header);
  for (int y = 0; y < period; ++y) {
    for (int x = 0; x < period; ++x) {
      const uint8_t* const cell = cells + static_cast<std::size_t>(y * 8 / period * 8 + x * 8 / period) * bytes;
      packed.insert(packed.end(), cell, cell + bytes);
    }
  }
  return CreateDIBPatternBrushPt(packed.data(), DIB_RGB_COLORS);
}

void SelectBrush(Canvas& canvas, Brush kind, int bitsPerPixel) {
  SetBkMode(canvas.context(), kind == Brush::kHatch ? TRANSPARENT : OPAQUE);
  switch (kind) {
    case Brush::kSolid: canvas.Keep(CreateSolidBrush(kBrush)); break;
    case Brush::kHatch:
    case Brush::kHatchOpaque: canvas.Keep(CreateHatchBrush(HS_DIAGCROSS, kBrush)); break;
    case Brush::kPattern8: canvas.Keep(MakePatternBrush(8, bitsPerPixel)); break;
    case Brush::kPattern16: canvas.Keep(MakePatternBrush(16, bitsPerPixel)); break;
    case Brush::kNone: break;
  }
}

// A bitmap with the pixels of the library's source.
std::unique_ptr<Canvas> MakeSourceCanvas(Memory& memory, Source source, int width, int height) {
  if (source == Source::kMono) {
    memory.FillSource(static_cast<std::size_t>((width + 15) / 16 * 2 * height));
    return std::make_unique<Canvas>(width, height, memory.source());
  }
  auto canvas = std::make_unique<Canvas>(width, height, source == Source::kRgb24 ? 24 : 8);
  FillRandom(canvas->bits(), canvas->size(), 3);
  if (source == Source::kRgb24) ExchangeColors(canvas->bits(), canvas->size());
  return canvas;
}

// A place that moves through the band, so that no call uses the cache line of the call before.
struct Place {
  int x, y;
};

Place PlaceOf(int run) {
  const uint32_t n = static_cast<uint32_t>(run);
  return {static_cast<int>(n * 37 % 1024), static_cast<int>(n * 7 % 112)};
}

// FillRgn or Rectangle for what the library paints by QNVOutput.
Rival MakeOutputRival(std::unique_ptr<Canvas> canvas, const Memory& memory, const RowSpec& spec, const ShapeInfo& in) {
  if (spec.code == R2_COPYPEN) {
    const HRGN region = CreateRectRgn(in.x, in.y, in.x + in.width, in.y + in.height);
    const std::shared_ptr<void> owner(region, DeleteObject);
    const HBRUSH brush = static_cast<HBRUSH>(GetCurrentObject(canvas->context(), OBJ_BRUSH));
    return MakeGdiRival(std::move(canvas), memory,
                        [region, owner, brush](HDC context, int) { FillRgn(context, region, brush); });
  }
  // Regions can only be filled by copying; rectangles without an outline also use the drawing mode.
  SetROP2(canvas->context(), static_cast<int>(spec.code));
  SelectObject(canvas->context(), GetStockObject(NULL_PEN));
  return MakeGdiRival(std::move(canvas), memory, [in](HDC context, int) {
    Rectangle(context, in.x, in.y, in.x + in.width + 1, in.y + in.height + 1);
  });
}

// PatBlt or BitBlt.
Rival MakeBltRival(std::unique_ptr<Canvas> canvas, Memory& memory, const RowSpec& spec, const ShapeInfo& in) {
  if (spec.source == Source::kNone) {
    return MakeGdiRival(std::move(canvas), memory, [in, code = spec.code](HDC context, int) {
      PatBlt(context, in.x, in.y, in.width, in.height, code);
    });
  }
  const std::shared_ptr<Canvas> source = MakeSourceCanvas(memory, spec.source, in.width, in.height);
  return MakeGdiRival(std::move(canvas), memory, [in, source, code = spec.code](HDC context, int) {
    BitBlt(context, in.x, in.y, in.width, in.height, source->context(), 0, 0, code);
  });
}

void SelectFont(Canvas& canvas, const RowSpec& spec) {
  canvas.Keep(CreateFontA(spec.cellHeight, spec.cellWidth, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, ANSI_CHARSET,
                          OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, NONANTIALIASED_QUALITY, FIXED_PITCH | FF_MODERN,
                          "Courier New"));
  SetBkMode(canvas.context(), spec.opaqueText ? OPAQUE : TRANSPARENT);
}

// The same characters at the same distances, in an installed font.
Rival MakeTextRival(std::unique_ptr<Canvas> canvas, const Memory& memory, const RowSpec& spec, const ShapeInfo& in) {
  SelectFont(*canvas, spec);
  std::vector<std::string> lines;
  Random random(6);
  for (int y = 0; y + spec.cellHeight <= in.height; y += spec.cellHeight) {
    std::string characters;
    for (int i = 0; i < in.width / spec.cellWidth; ++i) characters += RandomCharacter(random);
    lines.push_back(std::move(characters));
  }
  std::vector<INT> distances(static_cast<std::size_t>(in.width / spec.cellWidth), spec.cellWidth);
  return MakeGdiRival(
      std::move(canvas), memory,
      [in, height = spec.cellHeight, lines = std::move(lines), distances = std::move(distances)](HDC context, int) {
        for (std::size_t i = 0; i < lines.size(); ++i) {
          ExtTextOutA(context, in.x, in.y + static_cast<int>(i) * height, 0, nullptr, lines[i].data(),
                      static_cast<UINT>(lines[i].size()), distances.data());
        }
      });
}

// StretchDIBits; extended codes have no counterpart.
Rival MakeImageRival(std::unique_ptr<Canvas> canvas, Memory& memory, const RowSpec& spec, const ShapeInfo& in) {
  if (spec.code > 0x00FFFFFF) return {};
  DibSource dib = MakeDib(memory, spec.image, SourceExtent(spec.image, in.width), SourceExtent(spec.image, in.height));
  SetStretchBltMode(canvas->context(), COLORONCOLOR);
  const int x = spec.image.mirrored ? in.x + in.width : in.x;
  const int width = spec.image.mirrored ? -in.width : in.width;
  return MakeGdiRival(std::move(canvas), memory, [=, dib = std::move(dib), code = spec.code](HDC context, int) {
    StretchDIBits(context, x, in.y, width, in.height, 0, 0, dib.width, dib.height, dib.bits,
                  reinterpret_cast<const BITMAPINFO*>(dib.info.data()), DIB_RGB_COLORS, code);
  });
}

// GetPixel or SetPixelV; pixels under other operations have no counterpart.
Rival MakePixelRival(std::unique_ptr<Canvas> canvas, const Memory& memory, const RowSpec& spec) {
  if (spec.code == 0) {
    return MakeGdiRival(std::move(canvas), memory, [](HDC context, int run) {
      const Place place = PlaceOf(run);
      GetPixel(context, place.x, place.y);
    });
  }
  if (spec.code != R2_COPYPEN) return {};
  return MakeGdiRival(std::move(canvas), memory, [](HDC context, int run) {
    const Place place = PlaceOf(run);
    SetPixelV(context, place.x, place.y, kBrush);
  });
}

// Small rectangles and single spans.
Rival MakeSmallBltRival(std::unique_ptr<Canvas> canvas, Memory& memory, const RowSpec& spec) {
  const int width = spec.cellWidth;
  const int height = spec.operation == Operation::kSpan ? 1 : spec.cellHeight;
  DWORD code = spec.code;
  if (spec.operation == Operation::kSpan) code = spec.code == R2_XORPEN ? PATINVERT : PATCOPY;
  if (spec.source == Source::kNone) {
    return MakeGdiRival(std::move(canvas), memory, [=](HDC context, int run) {
      const Place place = PlaceOf(run);
      PatBlt(context, place.x, place.y, width, height, code);
    });
  }
  const std::shared_ptr<Canvas> source = MakeSourceCanvas(memory, spec.source, width, height);
  return MakeGdiRival(std::move(canvas), memory, [=](HDC context, int run) {
    const Place place = PlaceOf(run);
    BitBlt(context, place.x, place.y, width, height, source->context(), 0, 0, code);
  });
}

// Single characters.
Rival MakeGlyphRival(std::unique_ptr<Canvas> canvas, const Memory& memory, const RowSpec& spec) {
  SelectFont(*canvas, spec);
  return MakeGdiRival(std::move(canvas), memory, [](HDC context, int run) {
    const Place place = PlaceOf(run);
    const char character = static_cast<char>('A' + run % 26);
    ExtTextOutA(context, place.x, place.y, 0, nullptr, &character, 1, nullptr);
  });
}

}  // namespace

Rival MakeRival(Memory& memory, const Row& row, Shape shape) {
  const RowSpec& spec = row.spec;
  if (spec.band != Band::kBgr24 && spec.band != Band::kGray8) return {};
  const ShapeInfo& info = Info(shape);
  const int bitsPerPixel = 8 * BytesPerPixel(spec.band);
  auto canvas = std::make_unique<Canvas>(info.bandWidth, info.bandHeight, bitsPerPixel);
  if (canvas->bits() == nullptr) return {};
  SetTextColor(canvas->context(), kInk);
  SetBkColor(canvas->context(), kPaper);
  SelectBrush(*canvas, spec.brush, bitsPerPixel);
  switch (spec.operation) {
    case Operation::kOutput: return MakeOutputRival(std::move(canvas), memory, spec, info);
    case Operation::kBlt: return MakeBltRival(std::move(canvas), memory, spec, info);
    case Operation::kText: return MakeTextRival(std::move(canvas), memory, spec, info);
    case Operation::kImage: return MakeImageRival(std::move(canvas), memory, spec, info);
    case Operation::kPixel: return MakePixelRival(std::move(canvas), memory, spec);
    case Operation::kSpan:
    case Operation::kSmallBlt: return MakeSmallBltRival(std::move(canvas), memory, spec);
    case Operation::kGlyph: return MakeGlyphRival(std::move(canvas), memory, spec);
    default: return {};
  }
}

}  // namespace qnv::bench

#endif

// The rival on Linux: pixman, where it is installed and has the operation. It is loaded at run time and called through
// its published interface, so that it need not be there when this program is built.
#if !defined(_WIN32)

#include <dlfcn.h>

#include <algorithm>
#include <cstring>

#include "bench_memory.h"
#include "bench_table.h"
#include "dib_source.h"
#include "qnvdrv10.h"

namespace qnv::bench {
namespace {

using Image = void;

// An affine transform in 16.16, row by row.
struct Transform {
  int32_t matrix[3][3];
};

// Components of 16 bits.
struct PixmanColor {
  uint16_t red, green, blue, alpha;
};

enum : int { kSrc = 1, kDarken = 0x34 };
enum : int { kRepeatNormal = 1 };

// The code of a pixel format: bits a pixel, order of the components, bits of each.
constexpr uint32_t Format(uint32_t bits, uint32_t type, uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
  return bits << 24 | type << 16 | a << 12 | r << 8 | g << 4 | b;
}

constexpr uint32_t kTypeAlpha = 1, kTypeArgb = 2, kTypeAbgr = 3;
constexpr uint32_t kBgrBytes = Format(24, kTypeArgb, 0, 8, 8, 8);
constexpr uint32_t kRgbBytes = Format(24, kTypeAbgr, 0, 8, 8, 8);
constexpr uint32_t kByte = Format(8, kTypeAlpha, 8, 0, 0, 0);
constexpr uint32_t k555 = Format(16, kTypeArgb, 0, 5, 5, 5);
constexpr uint32_t k888 = Format(32, kTypeArgb, 0, 8, 8, 8);

// The functions that are used.
struct Pixman {
  Image* (*createBits)(uint32_t format, int width, int height, uint32_t* bits, int stride) = nullptr;
  Image* (*createSolid)(const PixmanColor* color) = nullptr;
  int (*unref)(Image* image) = nullptr;
  void (*setRepeat)(Image* image, int repeat) = nullptr;
  int (*setTransform)(Image* image, const Transform* transform) = nullptr;
  void (*composite)(int op, Image* source, Image* mask, Image* destination, int32_t srcX, int32_t srcY, int32_t maskX,
                    int32_t maskY, int32_t destX, int32_t destY, int32_t width, int32_t height) = nullptr;
  bool complete = false;
};

template <class Function>
bool Find(void* module, const char* name, Function& function) {
  void* const address = dlsym(module, name);
  std::memcpy(&function, &address, sizeof function);
  return address != nullptr;
}

// The functions of the library, loaded once; complete is false when any is missing.
const Pixman& Open() {
  static const Pixman opened = [] {
    Pixman pixman;
    void* const module = dlopen("libpixman-1.so.0", RTLD_NOW | RTLD_LOCAL);
    pixman.complete = module != nullptr && Find(module, "pixman_image_create_bits", pixman.createBits) &&
                      Find(module, "pixman_image_create_solid_fill", pixman.createSolid) &&
                      Find(module, "pixman_image_unref", pixman.unref) &&
                      Find(module, "pixman_image_set_repeat", pixman.setRepeat) &&
                      Find(module, "pixman_image_set_transform", pixman.setTransform) &&
                      Find(module, "pixman_image_composite32", pixman.composite);
    return pixman;
  }();
  return opened;
}

using ImageOwner = std::shared_ptr<Image>;

ImageOwner Own(Image* image) {
  return ImageOwner(image, [](Image* unused) {
    if (unused != nullptr) Open().unref(unused);
  });
}

ImageOwner MakeImage(uint32_t format, int width, int height, const void* bits, std::size_t stride) {
  // The interface takes a pointer that is not const, but sources are only read.
  void* const writable = const_cast<void*>(bits);
  return Own(Open().createBits(format, width, height, static_cast<uint32_t*>(writable), static_cast<int>(stride)));
}

class PixmanJob final : public Job {
 public:
  PixmanJob(Memory& memory, const RowSpec& spec, const ShapeInfo& info, int op, ImageOwner source)
      : memory_(memory), info_(info), op_(op), source_(std::move(source)) {
    const std::size_t bytes = static_cast<std::size_t>(BytesPerPixel(spec.band));
    stride_ = (static_cast<std::size_t>(info.bandWidth) * bytes + 3) & ~std::size_t{3};
    band_ = MakeImage(bytes == 1 ? kByte : kBgrBytes, info.bandWidth, info.bandHeight, memory.band(), stride_);
  }

  bool valid() const { return band_ != nullptr && source_ != nullptr; }

  void Run(int times) override {
    for (int i = 0; i < times; ++i) {
      Open().composite(op_, source_.get(), nullptr, band_.get(), 0, 0, 0, 0, info_.x, info_.y, info_.width,
                       info_.height);
    }
  }

  void Rewind() override { memory_.RewindBand(Size()); }
  uint64_t PictureHash() const override { return HashBytes(memory_.band(), Size()); }

 private:
  std::size_t Size() const { return stride_ * static_cast<std::size_t>(info_.bandHeight); }

  Memory& memory_;
  ShapeInfo info_;
  int op_;
  std::size_t stride_ = 0;
  ImageOwner source_, band_;
};

ImageOwner MakeSolid() {
  const PixmanColor color = {0xC8C8, 0x5A5A, 0x2828, 0xFFFF};
  return Own(Open().createSolid(&color));
}

// A repeating image with the cells of a pattern brush. storage: its pixels.
ImageOwner MakeTile(const RowSpec& spec, std::vector<uint32_t>& storage) {
  const int period = spec.brush == Brush::kPattern16 ? 16 : 8;
  const int bytes = BytesPerPixel(spec.band);
  storage.resize(static_cast<std::size_t>(period * period * bytes / 4));
  FillRandom(reinterpret_cast<uint8_t*>(storage.data()), storage.size() * 4, 4);
  ImageOwner image = MakeImage(bytes == 1 ? kByte : kBgrBytes, period, period, storage.data(),
                               static_cast<std::size_t>(period * bytes));
  if (image != nullptr) Open().setRepeat(image.get(), kRepeatNormal);
  return image;
}

// The source of a transfer, in the format that the library reads.
ImageOwner MakeBltSource(Memory& memory, Source source, const ShapeInfo& info) {
  const int bits = source == Source::kRgb24 ? 24 : 8;
  const std::size_t stride = static_cast<std::size_t>((info.width * bits + 31) / 32 * 4);
  const uint32_t format = source == Source::kRgb24 ? kRgbBytes : kByte;
  memory.FillSource(stride * static_cast<std::size_t>(info.height));
  return MakeImage(format, info.width, info.height, memory.source(), stride);
}

// The bitmap of an image row, stretched and mirrored by a transform. Null for formats without a fast path.
ImageOwner MakeDibSource(Memory& memory, const RowSpec& spec, const ShapeInfo& info) {
  const ImageSource& image = spec.image;
  if (image.bits < 16) return nullptr;  // pixman has no fast path for palettes
  const DibSource dib = MakeDib(memory, image, SourceExtent(image, info.width), SourceExtent(image, info.height));
  const uint32_t format = image.bits == 16 ? k555 : image.bits == 24 ? kBgrBytes : k888;
  const std::size_t stride = dib.size / static_cast<std::size_t>(dib.height);
  ImageOwner source = MakeImage(format, dib.width, dib.height, dib.bits, stride);
  const bool scaled = dib.width != info.width || dib.height != info.height;
  if (source == nullptr || (!scaled && !image.mirrored)) return source;
  const double x = 1.0 * dib.width / info.width;
  const double y = 1.0 * dib.height / info.height;
  constexpr double kOne = 65536;
  Transform transform = {};
  transform.matrix[0][0] = static_cast<int32_t>((image.mirrored ? -x : x) * kOne);
  transform.matrix[0][2] = image.mirrored ? dib.width * 65536 : 0;
  transform.matrix[1][1] = static_cast<int32_t>(y * kOne);
  transform.matrix[2][2] = 65536;
  Open().setTransform(source.get(), &transform);  // the default filter takes the nearest pixel
  return source;
}

}  // namespace

Rival MakeRival(Memory& memory, const Row& row, Shape shape) {
  const RowSpec& spec = row.spec;
  if (spec.band != Band::kBgr24 && spec.band != Band::kGray8) return {};
  if (!Open().complete) return {};
  const ShapeInfo& info = Info(shape);
  if (info.width == 0 || shape == Shape::kPage) return {};
  // Pixels of the source image, which must live as long as the job.
  const auto storage = std::make_shared<std::vector<uint32_t>>();
  int op = kSrc;
  ImageOwner source;
  const bool fills = (spec.operation == Operation::kOutput && spec.code == R2_COPYPEN) ||
                     (spec.operation == Operation::kBlt && spec.source == Source::kNone && spec.code == PATCOPY);
  if (fills && spec.brush == Brush::kSolid) {
    source = MakeSolid();
  } else if (fills && (spec.brush == Brush::kPattern8 || spec.brush == Brush::kPattern16)) {
    source = MakeTile(spec, *storage);
  } else if (spec.operation == Operation::kBlt && spec.code == SRCCOPY && spec.source != Source::kMono) {
    source = MakeBltSource(memory, spec.source, info);
  } else if (spec.operation == Operation::kImage && spec.band == Band::kBgr24 &&
             (spec.code == SRCCOPY || spec.code == ROP_MINIMUM)) {
    if (spec.code == ROP_MINIMUM) op = kDarken;
    source = MakeDibSource(memory, spec, info);
  }
  if (source == nullptr) return {};
  source = ImageOwner(source.get(), [source, storage](Image*) {});
  auto job = std::make_unique<PixmanJob>(memory, spec, info, op, std::move(source));
  Rival rival;
  if (!job->valid()) return rival;
  rival.name = "pixman";
  rival.job = std::move(job);
  return rival;
}

}  // namespace qnv::bench

#endif

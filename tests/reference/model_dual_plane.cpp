// The model of the dual-plane device: every call on the color plane, and its marks on the tag plane.
#include "reference/dual_plane_model.h"

namespace qnv::reference {

DualPlaneModel::DualPlaneModel(const DeviceDescription& description, const BandRect& bandRect, Plane color, Plane tags)
    : own_(description, bandRect, Plane(nullptr, 0, 3)),
      color_(description, bandRect, std::move(color)),
      tags_({description.kind, 8, description.resolutionA, description.width, description.height,
             description.resolutionB},
            bandRect, std::move(tags)) {}

uint32_t DualPlaneModel::Control(uint32_t code, const void* data) {
  if ((code & 0xFFFF) != QNV_CLEAR_BAND) {
    color_.Control(code, data);
    tags_.Control(code, data);
    return own_.Control(code, data);
  }
  const std::size_t width = own_.description().width;
  const std::size_t height = own_.description().height;
  color_.FillStart((width + 1) * 3 / 4 * height * 4, 0xFF);
  tags_.FillStart((width + 3) / 4 * height * 4, 1);
  uniform_ = true;
  return 1;
}

uint32_t DualPlaneModel::Pixel(int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode, const BandRect* clip) {
  if (clip == nullptr) return 0;
  if (!uniform_ && drawMode != nullptr && test::Marks(MarkingOf(static_cast<uint16_t>(drawMode->Rop2 - 1)), color)) {
    FillTagRect(QNV_TAG_GRAPHICS, x, y, 1, 1, ToRect(*clip));
  }
  return color_.Pixel(x, y, color, drawMode, clip);
}

int32_t DualPlaneModel::ExtTextOut(const TextArgs& args) {
  const int16_t count = static_cast<int16_t>(static_cast<uint16_t>(args.count));
  if ((args.string == nullptr && count != 0) || args.fontBase == nullptr || args.drawMode == nullptr) return 0;
  if (!uniform_ && count >= 0) {
    if (args.opaqueRect != nullptr && (args.options & ETO_OPAQUE) != 0) {
      Rect area = ToRect(*args.opaqueRect);
      if (args.clip != nullptr) area = Intersect(area, ToRect(*args.clip));
      FillTagRect(QNV_TAG_GRAPHICS, area.left, area.top, area.right - area.left, area.bottom - area.top, {0, 0, 0, 0});
    }
    DRAWMODE mode = *args.drawMode;
    mode.bkColor = 0;
    mode.TextColor = 0x010101;
    TextArgs tagArgs = args;
    tagArgs.drawMode = &mode;
    tagArgs.options &= 0xFFFD;
    if (static_cast<uint32_t>(tags_.ExtTextOut(tagArgs)) == 0x80000000u) return 0;
  }
  return color_.ExtTextOut(args);
}

uint32_t DualPlaneModel::StretchDIBits(const ImageArgs& args) {
  const Point origin = color_.origin();
  std::optional<ImageWalk> walk = ImageWalk::Begin(args, origin, color_.rect());
  if (!walk) return 0;
  color_.set_origin({0, 0});
  tags_.set_origin({0, 0});
  const uint32_t result = RunImage(*walk, args);
  color_.set_origin(origin);
  tags_.set_origin(origin);
  return result;
}

uint32_t DualPlaneModel::RunImage(ImageWalk& walk, const ImageArgs& args) {
  const Rect& clip = walk.clip();
  if (args.rop == SRCCOPY) {
    const BandRect noClip{0, 0, 0, 0};
    if (!TagBlt({clip.left, clip.top, nullptr, clip.left, 0, walk.columns(), walk.rows(), SRCCOPY, args.brush,
                 args.drawMode, &noClip},
                true)) {
      return 0;
    }
    while (!walk.AtEnd()) color_.StoreImageRow(walk, walk.Next());
    return 1;
  }

  const bool extended = args.rop > 0x00FFFFFF;
  std::vector<Rgb> colors;
  while (!walk.AtEnd()) {
    const ImageWalk::Row row = walk.Next();
    row.PutInto(&colors, extended);
    bool tagged = true;
    color_.RowBlits(walk, row, colors, args, extended ? SRCAND : args.rop, [&](const BlitArgs& blit) {
      tagged = tagged && TagBlt(blit, true);
      if (tagged && !extended) color_.BitBlt(blit);
    });
    if (!tagged) return 0;
    if (args.rop == ROP_MINIMUM) color_.MinimumImageRow(walk, row, colors);
  }
  return 1;
}

}  // namespace qnv::reference

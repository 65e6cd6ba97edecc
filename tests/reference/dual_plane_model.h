// The model of the device that keeps a tag beside every color pixel: two one-band models and the rules that
// say which pixels a call tags.
#pragma once

#include "reference/band_model.h"
#include "support/tag_rules.h"

namespace qnv::reference {

// The colors that some operations take for "nothing is painted here".
inline constexpr uint32_t kWhite = 0x00FFFFFF;
inline constexpr uint32_t kBlack = 0;

using test::Marking;

// What the two-operand operation of this code less one does to the tags.
inline Marking MarkingOf(uint32_t table) { return table < 16 ? test::kRop2Markings[table].marking : Marking::kAlways; }

class DualPlaneModel : public Model {
 public:
  DualPlaneModel(const DeviceDescription& description, const BandRect& bandRect, Plane color, Plane tags);

  const Plane& band() const override { return color_.band(); }
  const Plane* tags() const override { return &tags_.band(); }
  void SetContents(const std::vector<uint8_t>& band, const std::vector<uint8_t>& tags) override {
    color_.SetContents(band, {});
    tags_.SetContents(tags, {});
  }
  uint32_t Control(uint32_t code, const void* data) override;
  uint32_t ColorInfo(uint32_t color) const override { return own_.ColorInfo(color); }
  uint32_t RealizeObject(uint32_t kind, const void* input, void* output) const override {
    return own_.RealizeObject(kind, input, output);
  }
  uint32_t Pixel(int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode, const BandRect* clip) override;
  uint32_t BitBlt(const BlitArgs& args) override;
  uint32_t Output(const OutputArgs& args) override;
  int32_t ExtTextOut(const TextArgs& args) override;
  uint32_t StretchDIBits(const ImageArgs& args) override;

 private:
  bool TagBlt(const BlitArgs& args, bool image);
  // Writes the tag at the pixels of the area, in page coordinates, for which where(x, y) is true.
  void TagWhere(const Rect& area, uint8_t tag, const auto& where);
  Rect Target(const BlitArgs& args) const;  // the destination, origin added
  void FillTagRect(uint8_t value, int x, int y, int width, int height, const Rect& clip);
  bool TagFromSource(uint8_t tag, const BlitArgs& args, uint32_t skip);
  bool TagFromBrush(const BlitArgs& args, uint32_t skip);
  bool MarkOutput(const OutputArgs& args);
  uint32_t RunImage(ImageWalk& walk, const ImageArgs& args);

  BandModel own_;  // description and rules for colors and objects; paints nothing
  BandModel color_;
  BandModel tags_;
  bool uniform_ = true;  // the tag plane is known to hold nothing but 1
};

}  // namespace qnv::reference

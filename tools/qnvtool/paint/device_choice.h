// The devices that a page can be painted on, as the option --device names them.
#pragma once

#include <string>

namespace qnv::tool {

// Resolutions that a page can be laid out or printed at, in dots per inch.
inline constexpr int kMinDpi = 20;
inline constexpr int kMaxDpi = 4800;

struct DeviceChoice {
  enum class Kind {
    kColor,       // 24-bit band
    kGray,        // 8-bit band
    kScaled,      // drawn at one resolution, kept in 24 bits at another
    kScaledGray,  // the same in gray
    kDual,        // 24-bit band and a plane of tags
  };
  Kind kind = Kind::kColor;
  int pageDpi = 300;  // resolution that documents are laid out at
  int bandDpi = 300;  // resolution of the picture; differs from pageDpi on the scaled devices only
  std::string name;   // as the user wrote it

  bool isScaled() const { return kind == Kind::kScaled || kind == Kind::kScaledGray; }
  bool isGray() const { return kind == Kind::kGray || kind == Kind::kScaledGray; }
  int bandBytesPerPixel() const { return kind == Kind::kGray ? 1 : 3; }
};

// Parses color, gray, dual, scaled:A/B or scaled-gray:A/B. dpi: resolution of the first three, 0 meaning 300; for the
// scaled ones it must be 0 or A. Throws ToolError (usage).
DeviceChoice ParseDevice(const std::string& text, int dpi);

}  // namespace qnv::tool

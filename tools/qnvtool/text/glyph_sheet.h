// A two-byte font record that grows as glyphs are used.
#pragma once

#include <memory>
#include <mutex>

#include "qnvtool/text/font_record.h"

namespace qnv::tool {

// Pages refer to a sheet and take its record when they are painted, possibly on another thread than the one that lays
// out further pages. So records do not change once they are made: a sheet with new glyphs makes another one.
class GlyphSheet {
 public:
  // Bounds the work of making the record again.
  static constexpr std::size_t kMaxGlyphs = 1024;

  // ascent, descent: what cells reach at least, as for MakeTwoByteRecord.
  GlyphSheet(int ascent, int descent) : ascent_(ascent), descent_(descent) {}

  bool full() const { return glyphs_.size() == kMaxGlyphs; }

  // Adds a glyph and returns its code. Requires: !full(). Only one thread may add.
  uint16_t Add(Glyph glyph);

  // A record with all glyphs so far.
  std::shared_ptr<const FontRecord> Record() const;

 private:
  const int ascent_;
  const int descent_;
  mutable std::mutex mutex_;
  std::vector<Glyph> glyphs_;
  mutable std::shared_ptr<const FontRecord> record_;  // null when glyphs were added
};

}  // namespace qnv::tool

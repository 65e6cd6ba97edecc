// A font at one size, as the layout sees it: it measures a text, and makes what the rasteriser is called with.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qnvtool/text/glyph_sheet.h"

namespace qnv::tool {

// Characters of a line that are painted by one call: one-byte codes or codes of a sheet.
struct TextRun {
  int gap = 0;   // pixels from the end of the run before, or the start of the line, to this run; may be negative
  int rise = 0;  // pixels that its baseline lies above that of the line
  std::shared_ptr<const FontRecord> oneByte;  // for `latin`
  std::string latin;                          // when codes is empty
  std::shared_ptr<const GlyphSheet> sheet;    // for `codes`
  std::vector<uint16_t> codes;
  std::vector<int16_t> widths;  // pixels from each cell of `codes` to the next; the last one's is the run's end
};

// Where a line may end.
enum class LineBreak : uint8_t {
  kInside,     // not before this character: it belongs to the cluster of the one before it
  kForbidden,  // not before this character unless a word is wider than the line
  kAllowed,
};

// A part of a text that makes a line.
struct LinePart {
  std::size_t begin = 0;  // characters [begin, end)
  std::size_t end = 0;
  bool hyphen = false;  // a hyphen is shown at the end
  int width = 0;        // pixels that it is widened to at its spaces, if it is narrower
  int spaces = 0;       // spaces in it
};

// The part of a line that a character takes up, in pixels from the start of the line: that of its cluster.
struct CharacterPlace {
  int left = 0;
  int right = 0;
};

// What paints a line.
struct LineRuns {
  std::vector<TextRun> runs;
  int width = 0;                       // pixels
  int breakExtra = 0;                  // pixels that the rasteriser distributes over the spaces of one-byte runs
  int breakCount = 0;                  // spaces in these
  std::vector<CharacterPlace> places;  // of each character
};

// Units of advances in a pixel.
inline constexpr int kPixel = 64;

// Pixels that advances in 1/64 pixels take up.
inline int CeilPixels(int64_t advance) { return static_cast<int>((advance + kPixel - 1) / kPixel); }

// A text in a font: measured, to be cut into lines.
class ShapedText {
 public:
  virtual ~ShapedText() = default;

  // For each character the advance of the cluster (what the reader sees as one letter) that begins with it, in 1/64
  // pixels; 0 for further characters of a cluster and for characters that do not show.
  const std::vector<int32_t>& advances() const { return advances_; }

  // For each character whether a line may end before it.
  const std::vector<LineBreak>& breaks() const { return breaks_; }

  // Whether the text as a whole runs from right to left.
  bool rightToLeft() const { return rightToLeft_; }

  virtual LineRuns Runs(const LinePart& part) const = 0;

 protected:
  std::vector<int32_t> advances_;
  std::vector<LineBreak> breaks_;
  bool rightToLeft_ = false;
};

enum class TextForm {
  kFlow,     // as text is read: ligatures, kerning, the direction that the text begins with
  kColumns,  // as terminals show it: a column for each letter, from left to right
};

class Font {
 public:
  virtual ~Font() = default;
  virtual int ascent() const = 0;      // pixels above the baseline, nominal
  virtual int descent() const = 0;     // pixels below it, positive
  virtual int lineHeight() const = 0;  // pixels from baseline to baseline

  // Measures a text of one paragraph. The font must outlive the result.
  virtual std::unique_ptr<ShapedText> Shape(std::u32string_view text, TextForm form) = 0;

  // Advance of a single character, in 1/64 pixels.
  int32_t Advance(char32_t code);

 private:
  std::unordered_map<char32_t, int32_t> known_;  // advances that were asked for
};

}  // namespace qnv::tool

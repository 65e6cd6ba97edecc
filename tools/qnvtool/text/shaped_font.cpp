// Cuts a text into runs of one script, direction and font, shapes these, and puts the glyphs of a line in visual order.
#include "qnvtool/text/shaped_font.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/text/line_breaker.h"

namespace qnv::tool {
namespace {

constexpr int kMaxGlyphHeight = 4096;
constexpr std::size_t kMaxRunGlyphs = 30000;  // the rasteriser counts characters in 16 bits
constexpr int kMaxStep = 32767;               // and places them by steps of 16 bits

// A run of characters of one script, direction and font.
struct Item {
  ShapeRun run;
  uint8_t level = 0;
  FontFace* face = nullptr;
  std::vector<PlacedGlyph> glyphs;
};

class ShapedFont final : public Font {
 public:
  ShapedFont(std::shared_ptr<FontSystem> system, std::unique_ptr<FontFace> face, std::string fallback, double points,
             int dpi)
      : system_(std::move(system)), fallback_(std::move(fallback)), points_(points), dpi_(dpi) {
    faces_.push_back(std::move(face));
  }

  int ascent() const override { return main().ascent(); }
  int descent() const override { return main().descent(); }
  int lineHeight() const override { return main().lineHeight(); }
  std::unique_ptr<ShapedText> Shape(std::u32string_view text, TextForm form) override;

  FontFace& main() const { return *faces_.front(); }

  // The face for each character.
  std::vector<FontFace*> FacesOf(std::u32string_view text, const std::vector<ScriptTag>& scripts);

  const SheetGlyph& Bitmap(FontFace& face, uint32_t index) { return face.Bitmap(index, sheet_); }

  // Advance of a column in listings; 0 when the letters of the font have different widths.
  int32_t Column() {
    if (column_ < 0)
      column_ = main().fixedWidth() ? main().Shape(U" ", {0, 1, false, kCommonScript, true}).front().advance : 0;
    return column_;
  }

 private:
  FontFace* FaceFor(std::u32string_view cluster, std::u32string_view run, FontFace* before);
  FontFace* OpenFace(const FontFile& file);

  const std::shared_ptr<FontSystem> system_;
  const std::string fallback_;
  const double points_;
  const int dpi_;
  std::vector<std::unique_ptr<FontFace>> faces_;  // the font itself and those that fill its gaps
  std::vector<FontFile> refused_;                 // files that could not be opened
  std::shared_ptr<GlyphSheet> sheet_;
  int32_t column_ = -1;
};

bool HasAll(FontFace& face, std::u32string_view cluster) {
  return std::all_of(cluster.begin(), cluster.end(), [&](char32_t c) { return IsInvisible(c) || face.Has(c); });
}

FontFace* ShapedFont::OpenFace(const FontFile& file) {
  if (file.path.empty()) return nullptr;
  for (const auto& face : faces_) {
    if (face->file() == file) return face.get();
  }
  if (std::find(refused_.begin(), refused_.end(), file) != refused_.end()) return nullptr;
  std::unique_ptr<FontFace> face = FontFace::Open(system_->library(), file, points_, dpi_);
  if (face == nullptr) {
    refused_.push_back(file);
    return nullptr;
  }
  faces_.push_back(std::move(face));
  return faces_.back().get();
}

// The face for a letter with its marks. run: the characters of the same script from there on. before: the face of the
// letter before it, which keeps a word in one font.
FontFace* ShapedFont::FaceFor(std::u32string_view cluster, std::u32string_view run, FontFace* before) {
  if (HasAll(main(), cluster)) return &main();
  if (before != nullptr && HasAll(*before, cluster)) return before;
  for (const auto& face : faces_) {
    if (HasAll(*face, cluster)) return face.get();
  }
  // Fontconfig is asked for the font that has most of what is lacking, then for one that has this letter.
  std::u32string lacking;
  for (const char32_t c : run) {
    if (!IsInvisible(c) && !main().Has(c) && IsInInstalledFonts(c)) lacking.push_back(c);
  }
  if (!lacking.empty()) {
    const std::u32string_view wanted[] = {lacking, cluster, cluster.substr(0, 1)};
    for (const std::u32string_view& characters : wanted) {
      const char32_t base = cluster.front();
      if (!IsInInstalledFonts(base)) break;
      FontFace* const face = OpenFace(FindFontByCharacters(characters, fallback_).file);
      if (face == nullptr || !face->Has(base)) continue;
      if (HasAll(*face, cluster) || characters.size() == 1) return face;
    }
  }
  for (const char32_t c : cluster) {
    if (!IsInvisible(c) && !main().Has(c)) {
      system_->NoteMissing(c);
      break;
    }
  }
  return &main();
}

std::vector<FontFace*> ShapedFont::FacesOf(std::u32string_view text, const std::vector<ScriptTag>& scripts) {
  std::vector<FontFace*> faces(text.size());
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin + 1;
    while (end < text.size() && (IsExtender(text[end]) || IsInvisible(text[end]))) ++end;
    const std::u32string_view cluster = text.substr(begin, end - begin);
    FontFace* face = &main();
    if (!HasAll(main(), cluster)) {
      constexpr std::size_t kMaxAsked = 256;  // enough to know a language by
      std::size_t runEnd = end;
      while (runEnd < text.size() && runEnd - begin < kMaxAsked && scripts[runEnd] == scripts[begin]) ++runEnd;
      FontFace* const before = begin > 0 && scripts[begin - 1] == scripts[begin] ? faces[begin - 1] : nullptr;
      face = FaceFor(cluster, text.substr(begin, runEnd - begin), before);
    }
    std::fill(faces.begin() + static_cast<std::ptrdiff_t>(begin), faces.begin() + static_cast<std::ptrdiff_t>(end),
              face);
    begin = end;
  }
  return faces;
}

// Widens the letters of other fonts to whole columns, two for ideographs.
void FitToColumns(std::vector<PlacedGlyph>& glyphs, int32_t column) {
  for (std::size_t begin = 0; begin < glyphs.size();) {
    std::size_t end = begin;
    int32_t advance = 0;
    for (; end < glyphs.size() && glyphs[end].cluster == glyphs[begin].cluster; ++end) advance += glyphs[end].advance;
    if (advance > 0) {
      // A letter that is a quarter too wide still takes one column.
      const int32_t columns = std::max(1, (advance + column - column / 4) / column);
      const int32_t missing = columns * column - advance;
      for (std::size_t i = begin; i < end; ++i) glyphs[i].x += missing / 2;
      glyphs[end - 1].advance += missing;
    }
    begin = end;
  }
}

// Appends cells to the runs of a line; x counts pixels from its start.
class RunBuilder {
 public:
  void Add(const SheetGlyph& glyph, int x, int rise) {
    const int step = x - cell_;
    const bool fits = !runs_.empty() && runs_.back().sheet == glyph.sheet && runs_.back().rise == rise && step >= 0 &&
                      step <= kMaxStep && runs_.back().codes.size() < kMaxRunGlyphs;
    if (fits) {
      runs_.back().widths.back() = static_cast<int16_t>(step);
    } else {
      runs_.emplace_back();
      runs_.back().gap = x - end_;
      runs_.back().rise = rise;
      runs_.back().sheet = glyph.sheet;
    }
    runs_.back().codes.push_back(glyph.code);
    runs_.back().widths.push_back(static_cast<int16_t>(glyph.columns));
    cell_ = x;
    end_ = x + glyph.columns;
  }

  std::vector<TextRun> Take() { return std::move(runs_); }

 private:
  std::vector<TextRun> runs_;
  int cell_ = 0;  // where the last cell begins
  int end_ = 0;   // where it ends
};

int RoundToPixels(int64_t length) {
  return static_cast<int>((length + kPixel / 2) >> 6);  // also downwards for negative lengths
}

class ShapedParagraph final : public ShapedText {
 public:
  ShapedParagraph(ShapedFont& font, std::u32string_view text, TextForm form)
      : font_(font), text_(text), plain_(form == TextForm::kColumns) {
    advances_.assign(text.size(), 0);
    breaks_ = plain_ ? std::vector<LineBreak>(text.size(), LineBreak::kForbidden) : UnicodeBreaks(text);
    MakeItems();
    for (Item& item : items_) {
      item.glyphs = Shape(item, item.run);
      MarkClusters(item);
    }
  }

  LineRuns Runs(const LinePart& part) const override {
    std::vector<Item> pieces;
    auto item = std::upper_bound(items_.begin(), items_.end(), part.begin,
                                 [](std::size_t at, const Item& one) { return at < one.run.end; });
    for (; item != items_.end() && item->run.begin < part.end; ++item) {
      pieces.push_back(Cut(*item, std::max(item->run.begin, part.begin), std::min(item->run.end, part.end)));
    }
    if (part.hyphen) pieces.push_back(HyphenAfter(pieces));
    PutInVisualOrder(pieces);

    int64_t natural = 0;
    for (const Item& piece : pieces) {
      for (const PlacedGlyph& glyph : piece.glyphs) natural += glyph.advance;
    }
    const int missing = part.spaces == 0 ? 0 : std::max(0, part.width - CeilPixels(natural));
    RunBuilder builder;
    LineRuns line;
    line.places.resize(part.end - part.begin, {-1, -1});
    int64_t pen = 0;
    int spaces = 0;
    for (const Item& piece : pieces) {
      for (const PlacedGlyph& glyph : piece.glyphs) {
        if (missing != 0 && glyph.cluster != kHyphenCluster && IsPlainSpace(text_, breaks_, glyph.cluster)) {
          const int64_t extra = missing;
          pen += (extra * (spaces + 1) / part.spaces - extra * spaces / part.spaces) * kPixel;
          ++spaces;
        }
        const SheetGlyph& bitmap = font_.Bitmap(*piece.face, glyph.index);
        if (bitmap.sheet != nullptr) {
          builder.Add(bitmap, RoundToPixels(pen + glyph.x) + bitmap.left, RoundToPixels(glyph.y));
        }
        pen += glyph.advance;
        if (glyph.cluster == kHyphenCluster) continue;
        // Of several glyphs of a cluster the first begins it and the last ends it.
        CharacterPlace& place = line.places[glyph.cluster - part.begin];
        if (place.left < 0) place.left = std::max(0, RoundToPixels(pen - glyph.advance));
        place.right = std::max(place.left, RoundToPixels(pen));
      }
    }
    for (std::size_t i = 0; i < line.places.size(); ++i) {
      if (line.places[i].left < 0) line.places[i] = i == 0 ? CharacterPlace{} : line.places[i - 1];
    }
    line.runs = builder.Take();
    line.width = CeilPixels(pen);
    return line;
  }

 private:
  static constexpr uint32_t kHyphenCluster = 0xFFFFFFFF;

  void MakeItems() {
    Directions directions = DirectionsOf(text_, !plain_);
    rightToLeft_ = directions.rightToLeft;
    const std::vector<ScriptTag> scripts = ScriptsOf(text_);
    const std::vector<FontFace*> faces = font_.FacesOf(text_, scripts);
    for (std::size_t i = 0; i < text_.size(); ++i) {
      const uint8_t level = directions.levels[i];
      const bool goesOn = !items_.empty() && items_.back().level == level && items_.back().face == faces[i] &&
                          items_.back().run.script == scripts[i];
      if (!goesOn) items_.push_back({{i, i, level % 2 != 0, scripts[i], plain_}, level, faces[i], {}});
      items_.back().run.end = i + 1;
    }
  }

  std::vector<PlacedGlyph> Shape(const Item& item, const ShapeRun& run) const {
    std::vector<PlacedGlyph> glyphs = item.face->Shape(text_, run);
    if (plain_ && item.face != &font_.main() && font_.Column() > 0 && HasSingleSigns(run.script)) {
      FitToColumns(glyphs, font_.Column());
    }
    return glyphs;
  }

  // Notes the advances of the clusters, and that lines do not end inside them.
  void MarkClusters(const Item& item) {
    std::vector<bool> starts(item.run.end - item.run.begin, false);
    for (const PlacedGlyph& glyph : item.glyphs) {
      advances_[glyph.cluster] += glyph.advance;
      starts[glyph.cluster - item.run.begin] = true;
    }
    for (std::size_t i = 0; i < starts.size(); ++i) {
      const std::size_t at = item.run.begin + i;
      if (!starts[i]) breaks_[at] = LineBreak::kInside;
      advances_[at] = std::max(0, advances_[at]);
    }
  }

  // Characters [begin, end) of an item.
  Item Cut(const Item& item, std::size_t begin, std::size_t end) const {
    Item piece = {item.run, item.level, item.face, {}};
    piece.run.begin = begin;
    piece.run.end = end;
    // The clusters ascend or, from right to left, descend.
    const auto firstOf = [&](std::size_t cluster) {
      if (item.run.rightToLeft) {
        return std::partition_point(item.glyphs.begin(), item.glyphs.end(),
                                    [&](const PlacedGlyph& glyph) { return glyph.cluster >= cluster; });
      }
      return std::partition_point(item.glyphs.begin(), item.glyphs.end(),
                                  [&](const PlacedGlyph& glyph) { return glyph.cluster < cluster; });
    };
    // With `from` and `to` in visual order: the glyph behind each logical end is the one before it from right to left.
    auto from = firstOf(begin);
    auto to = firstOf(end);
    const auto unsafeAt = [&](auto boundary) {
      if (item.run.rightToLeft) return boundary != item.glyphs.begin() && std::prev(boundary)->unsafeBreak;
      return boundary != item.glyphs.end() && boundary->unsafeBreak;
    };
    const bool again = (begin != item.run.begin && unsafeAt(from)) || (end != item.run.end && unsafeAt(to));
    if (item.run.rightToLeft) std::swap(from, to);
    if (!again) piece.glyphs.assign(from, to);
    if (again) piece.glyphs = Shape(item, piece.run);
    return piece;
  }

  // A hyphen in the direction of what it follows.
  Item HyphenAfter(const std::vector<Item>& pieces) const {
    Item hyphen;
    hyphen.face = &font_.main();
    hyphen.level = pieces.empty() ? 0 : pieces.back().level;
    hyphen.glyphs = hyphen.face->Shape(U"-", {0, 1, hyphen.level % 2 != 0, kCommonScript, plain_});
    for (PlacedGlyph& glyph : hyphen.glyphs) glyph.cluster = kHyphenCluster;
    return hyphen;
  }

  // Reverses every stretch of pieces of a level or a higher one, from the highest level down to the lowest odd one.
  static void PutInVisualOrder(std::vector<Item>& pieces) {
    int highest = 0;
    for (const Item& piece : pieces) highest = std::max(highest, int{piece.level});
    for (int level = highest; level > 0; --level) {
      for (std::size_t begin = 0; begin < pieces.size(); ++begin) {
        std::size_t end = begin;
        while (end < pieces.size() && pieces[end].level >= level) ++end;
        if (end == begin) continue;
        std::reverse(pieces.begin() + static_cast<std::ptrdiff_t>(begin),
                     pieces.begin() + static_cast<std::ptrdiff_t>(end));
        begin = end;
      }
    }
  }

  ShapedFont& font_;
  const std::u32string text_;
  const bool plain_;
  std::vector<Item> items_;
};

std::unique_ptr<ShapedText> ShapedFont::Shape(std::u32string_view text, TextForm form) {
  return std::make_unique<ShapedParagraph>(*this, text, form);
}

}  // namespace

FontSystem::FontSystem(Note note) : note_(std::move(note)), library_(StartFontLibrary()) {}

void FontSystem::NoteReplaced(const std::string& name, const std::string& family) {
  if (replaced_.insert(name).second) note_(fmt::format("font \"{}\" is not installed; {} is used", name, family));
}

void FontSystem::NoteMissing(char32_t code) {
  const ScriptTag script = ScriptOf(code);
  if (!missing_.insert(script).second) return;
  const auto number = static_cast<uint32_t>(code);
  if (script == kCommonScript) {
    note_(fmt::format("no installed font has U+{:04X}; boxes stand for it and for others like it", number));
  } else {
    note_(fmt::format("no installed font has {} (such as U+{:04X}); boxes stand for it", ScriptName(script), number));
  }
}

std::unique_ptr<Font> OpenShapedFont(const std::shared_ptr<FontSystem>& system, const std::string& fileOrName,
                                     const std::string& fallback, double points, int dpi) {
  if (points * dpi / 72 > kMaxGlyphHeight) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("text of {} points has more than {} pixels at {} dpi", points, kMaxGlyphHeight, dpi));
  }
  std::error_code error;
  FontFile file{fileOrName, 0};
  if (!std::filesystem::is_regular_file(fileOrName, error)) {
    if (fileOrName.find('/') != std::string::npos) {
      throw ToolError(ExitCode::kUsage, fmt::format("{}: no such font file", fileOrName));
    }
    const FoundFont found = FindFontByName(fileOrName);
    if (found.file.path.empty()) {
      throw ToolError(ExitCode::kUsage, fmt::format("font \"{}\": no font is installed for this name", fileOrName));
    }
    if (!found.asked) system->NoteReplaced(fileOrName, found.family);
    file = found.file;
  }
  std::unique_ptr<FontFace> face = FontFace::Open(system->library(), file, points, dpi);
  if (face == nullptr) throw ToolError(ExitCode::kBadInput, fmt::format("{}: is no scalable font", file.path));
  return std::make_unique<ShapedFont>(system, std::move(face), fallback, points, dpi);
}

}  // namespace qnv::tool

// Compares the glyphs of each text with those that are in the file.
#include "calls/font_memory.h"

#include <cstring>

namespace qnv::calls {
namespace {
constexpr std::size_t kMaxFonts = 1024;  // a host that moves its fonts around would fill the memory otherwise
}  // namespace

uint32_t FontMemory::ImageFor(const Slots& slots, const TextShape& shape, CallWriter& writer) {
  constexpr std::size_t kFontBase = 6;
  if (fonts_.size() >= kMaxFonts) fonts_.clear();
  Font& font = fonts_[Key{slots.at[kFontBase], shape.fontOffset}];
  bool kept = true;
  if (!Collect(font, slots, shape, writer, &kept)) {
    font = Font{};
    Collect(font, slots, shape, writer, &kept);
  }
  if (!pieces_.empty()) font.image = writer.Image(font.image, pieces_);
  return kept ? font.image : 0;
}

bool FontMemory::Collect(Font& font, const Slots& slots, const TextShape& shape, CallWriter& writer, bool* kept) {
  constexpr std::size_t kString = 4, kFontBase = 6;
  const uint8_t* const base = slots.Pointer<uint8_t>(kFontBase);
  const uint8_t* const string = slots.Pointer<uint8_t>(kString);
  pieces_.clear();
  const auto add = [&](uint32_t offset, std::size_t bytes) {
    pieces_.push_back({offset, writer.Blob(base + offset, bytes)});
  };
  if (font.image == 0) {
    std::memcpy(font.record, base + shape.fontOffset, sizeof font.record);
    add(shape.fontOffset, sizeof font.record);
  } else if (std::memcmp(font.record, base + shape.fontOffset, sizeof font.record) != 0) {
    return false;
  }
  if (!shape.ReadsTable()) return true;
  const std::size_t entryBytes = shape.EntryBytes();
  for (int32_t i = 0; i < shape.characters; ++i) {
    const uint16_t index = shape.IndexOf(string, i);
    if (index >= font.glyphs.size()) font.glyphs.resize(std::size_t{index} + 1);
    std::unique_ptr<Glyph>& glyph = font.glyphs[index];
    if (glyph == nullptr) glyph = std::make_unique<Glyph>();
    const uint32_t entryAt = shape.EntryAt(index);
    const uint8_t* const entry = base + entryAt;
    if (!glyph->hasEntry) {
      std::memcpy(glyph->entry, entry, entryBytes);
      add(entryAt, entryBytes);
      glyph->hasEntry = true;
    } else if (std::memcmp(glyph->entry, entry, entryBytes) != 0) {
      return false;
    }
    if (!shape.draws) continue;
    if (!glyph->hasBits) {
      glyph->range = GlyphOf(shape, entry);
      if (glyph->range.bytes > kMaxArgumentBytes || glyph->range.first > kMaxArgumentBytes) {
        *kept = false;
        continue;
      }
      const std::size_t bytes = static_cast<std::size_t>(glyph->range.bytes);
      glyph->bits.assign(base + glyph->range.first, base + glyph->range.first + bytes);
      if (bytes != 0) add(glyph->range.first, bytes);
      glyph->hasBits = true;
    } else if (std::memcmp(glyph->bits.data(), base + glyph->range.first, glyph->bits.size()) != 0) {
      return false;
    }
  }
  return true;
}

}  // namespace qnv::calls

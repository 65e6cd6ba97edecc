// Sets text blocks on pages from top to bottom, and starts a new page where one is full.
#include "qnvtool/layout/text_layout.h"

#include <fmt/core.h>

#include <algorithm>

#include "qnvtool/layout/text_lines.h"
#include "qnvtool/layout/verbatim_rows.h"

namespace qnv::tool {
namespace {

constexpr double kHeadingSizes[] = {1.8, 1.4, 1.15};  // of the body's, by level
constexpr double kListingSize = 0.9;
constexpr std::u32string_view kBullet = U"\u2022";
constexpr std::u32string_view kBulletSpace = U"\u2022\u2002";

// Columns of listings: the field of line numbers, the space behind it, and the mark of rows that continue others.
constexpr int kNumberColumns = 5;
constexpr int kNumberGap = 2;
constexpr int kContinuedColumns = 2;
constexpr std::u32string_view kContinued = U"\u21AA";  // an arrow with a hook

// Advance of a text in a line of its own, in pixels.
int WidthOf(std::u32string_view text, Font& font) { return MakeLine(text, font, 0, 0).width; }

}  // namespace

TextLayout::TextLayout(const PageSetup& setup, std::string name, bool lineNumbers)
    : setup_(setup),
      name_(std::move(name)),
      lineNumbers_(lineNumbers),
      body_(BodyOf(setup)),
      bodyFont_(setup.fonts->Get(FontRole::kBody, setup.points)) {
  StartPage();
}

void TextLayout::Set(const TextBlock& block) {
  using Kind = TextBlock::Kind;
  if (block.kind == Kind::kPageBreak) {
    // Before the first line and behind the last one there is no empty page.
    if (!empty_) ++pageBreaks_;
    return;
  }
  for (; pageBreaks_ > 0; --pageBreaks_) {
    StartPage();
    lastKind_ = Kind::kPageBreak;
  }
  empty_ = false;
  switch (block.kind) {
    case Kind::kParagraph:
      Space(ParagraphGap());
      SetParagraph(block.text, *bodyFont_, 0, true);
      break;
    case Kind::kListItem: SetListItem(block); break;
    case Kind::kHeading: SetHeading(block); break;
    case Kind::kVerbatim: SetVerbatim(block); break;
    case Kind::kPageBreak: break;
  }
  lastKind_ = block.kind;
}

void TextLayout::Finish() { finished_ = true; }

bool TextLayout::Next(Page& page) {
  if (pages_.size() < (finished_ ? 1u : 2u)) return false;
  page = std::move(pages_.front());
  pages_.pop_front();
  return true;
}

void TextLayout::StartPage() {
  pages_.push_back(EmptyPage(setup_));
  AddHeader(pages_.back(), setup_, name_, ++number_);
  y_ = body_.top;
}

// Leaves space between blocks, but none at the top of a page.
void TextLayout::Space(int pixels) {
  if (y_ > body_.top) y_ += pixels;
}

// Starts a new page unless that many pixels are left, or this one is still empty.
void TextLayout::Need(int pixels) {
  if (y_ + pixels > body_.bottom && y_ > body_.top) StartPage();
}

// Reserves the next line and returns its baseline.
int TextLayout::NextBaseline(const Font& font) {
  Need(font.lineHeight());
  const int baseline = y_ + font.ascent();
  y_ += font.lineHeight();
  return baseline;
}

// A paragraph, indented on the side where it begins.
void TextLayout::SetParagraph(std::u32string_view text, Font& font, int indent, bool justify) {
  const Paragraph paragraph(text, font, body_.width() - indent);
  const int left = body_.left + (paragraph.rightToLeft() ? 0 : indent);
  for (std::size_t i = 0; i < paragraph.lines(); ++i) {
    const int baseline = NextBaseline(font);
    pages_.back().items.emplace_back(paragraph.Line(i, left, baseline, justify));
  }
}

// A bullet in the margin of the indented text.
void TextLayout::SetListItem(const TextBlock& block) {
  Space(lastKind_ == TextBlock::Kind::kListItem ? ParagraphGap() / 3 : ParagraphGap());
  Need(bodyFont_->lineHeight());
  TextLine bullet = MakeLine(kBullet, *bodyFont_, body_.left, y_ + bodyFont_->ascent());
  if (bodyFont_->Shape(block.text, TextForm::kFlow)->rightToLeft()) bullet.left = body_.right - bullet.width;
  pages_.back().items.emplace_back(std::move(bullet));
  SetParagraph(block.text, *bodyFont_, WidthOf(kBulletSpace, *bodyFont_), true);
}

// A heading is followed by at least two lines of text on its page.
void TextLayout::SetHeading(const TextBlock& block) {
  const double size = kHeadingSizes[std::clamp(block.level, 1, 3) - 1];
  const std::shared_ptr<Font> font = setup_.fonts->Get(FontRole::kHeading, setup_.points * size);
  Space(font->lineHeight() * 2 / 3);
  Need(font->lineHeight() + ParagraphGap() + 2 * bodyFont_->lineHeight());
  SetParagraph(block.text, *font, 0, false);
}

// A line of a listing, with its number. A row that continues another one begins with a mark.
void TextLayout::SetVerbatim(const TextBlock& block) {
  const std::shared_ptr<Font> font = setup_.fonts->Get(FontRole::kListing, setup_.points * kListingSize);
  const bool goesOn = lastKind_ == TextBlock::Kind::kVerbatim;
  if (!block.continues) Space(goesOn ? block.spaceBefore * font->lineHeight() : ParagraphGap());
  const int64_t column = font->Advance(U' ');
  const int left = body_.left + (lineNumbers_ ? CeilPixels((kNumberColumns + kNumberGap) * column) : 0);
  const int64_t width = int64_t{std::max(1, body_.right - left)} * kPixel;
  const int64_t indent = lineNumbers_ ? 0 : std::min(kContinuedColumns * column, width / 2);
  const VerbatimLine line = CutIntoRows(block.text, *font, width, indent);
  for (std::size_t row = 0; row < line.rows.size(); ++row) {
    const int baseline = NextBaseline(*font);
    auto& items = pages_.back().items;
    const bool continues = row > 0 || block.continues;
    std::u32string label;
    if (lineNumbers_ && !continues) {
      for (const char digit : fmt::format("{}", block.line)) label.push_back(static_cast<uint8_t>(digit));
    } else if (continues) {
      label = kContinued;
    }
    if (!label.empty()) {
      TextLine item = MakeLine(label, *font, body_.left, baseline);
      // Numbers that are too long for the field extend into the margin.
      if (lineNumbers_) item.left += CeilPixels(kNumberColumns * column) - item.width;
      items.emplace_back(std::move(item));
    }
    for (const VerbatimPart& part : line.rows[row]) {
      const VerbatimStretch& stretch = line.stretches[part.stretch];
      const int x = left + static_cast<int>((part.x + kPixel / 2) / kPixel);
      items.emplace_back(MakeLine(stretch.text, *stretch.shaped, part.part, *font, x, baseline));
    }
  }
}

std::vector<Page> LayOutText(const std::vector<TextBlock>& blocks, const PageSetup& setup, const std::string& name) {
  TextLayout layout(setup, name, false);
  for (const TextBlock& block : blocks) layout.Set(block);
  layout.Finish();
  std::vector<Page> pages;
  for (Page page; layout.Next(page);) pages.push_back(std::move(page));
  return pages;
}

}  // namespace qnv::tool

// Sets text blocks on pages from top to bottom, and starts a new page where one is full.
#include "qnvtool/layout/text_layout.h"

#include <algorithm>

#include "qnvtool/layout/text_lines.h"

namespace qnv::tool {
namespace {

constexpr double kHeadingSizes[] = {1.8, 1.4, 1.15};  // of the body's, by level
constexpr double kListingSize = 0.9;
constexpr std::u32string_view kBullet = U"\u2022";

// The pages of one file; y_ is where the next line goes.
class TextSetter {
 public:
  TextSetter(const PageSetup& setup, const std::string& name)
      : setup_(setup), name_(name), body_(BodyOf(setup)), bodyFont_(setup.fonts->Get(FontRole::kBody, setup.points)) {
    StartPage();
  }

  void Set(const TextBlock& block) {
    using Kind = TextBlock::Kind;
    switch (block.kind) {
      case Kind::kParagraph:
        Space(ParagraphGap());
        Paragraph(block.text, bodyFont_, 0, true);
        break;
      case Kind::kListItem: ListItem(block); break;
      case Kind::kHeading: Heading(block); break;
      case Kind::kVerbatim: Verbatim(block); break;
      case Kind::kPageBreak: StartPage(); break;
    }
    lastKind_ = block.kind;
  }

  std::vector<Page> Take() { return std::move(pages_); }

 private:
  void StartPage() {
    pages_.push_back(EmptyPage(setup_));
    AddHeader(pages_.back(), setup_, name_, static_cast<int>(pages_.size()));
    y_ = body_.top;
  }

  int ParagraphGap() const { return bodyFont_->lineHeight() / 2; }

  // Leaves space between blocks, but none at the top of a page.
  void Space(int pixels) {
    if (y_ > body_.top) y_ += pixels;
  }

  // Starts a new page unless that many pixels are left, or this one is still empty.
  void Need(int pixels) {
    if (y_ + pixels > body_.bottom && y_ > body_.top) StartPage();
  }

  // Reserves the next line and returns its baseline.
  int NextBaseline(Font& font) {
    const int height = std::max(font.lineHeight(), 1);
    Need(height);
    const int baseline = y_ + font.ascent();
    y_ += height;
    return baseline;
  }

  void Paragraph(const std::u32string& text, const std::shared_ptr<Font>& font, int indent, bool justify) {
    const int width = std::max(1, body_.width() - indent);
    for (const BrokenLine& line : BreakLines(text, AdvancesOf(*font), width)) {
      const int baseline = NextBaseline(*font);
      pages_.back().items.emplace_back(MakeLine(text, line, font, body_.left + indent, baseline, justify ? width : 0));
    }
  }

  // A bullet in the margin of the indented text.
  void ListItem(const TextBlock& block) {
    Space(lastKind_ == TextBlock::Kind::kListItem ? ParagraphGap() / 3 : ParagraphGap());
    Need(bodyFont_->lineHeight());
    const int baseline = y_ + bodyFont_->ascent();
    const int indent = TextWidth(U"\u2022\u2002", *bodyFont_);
    pages_.back().items.emplace_back(MakeLine(kBullet, bodyFont_, body_.left, baseline));
    Paragraph(block.text, bodyFont_, indent, true);
  }

  // A heading is followed by at least two lines of text on its page.
  void Heading(const TextBlock& block) {
    const double size = kHeadingSizes[std::clamp(block.level, 1, 3) - 1];
    const std::shared_ptr<Font> font = setup_.fonts->Get(FontRole::kHeading, setup_.points * size);
    Space(font->lineHeight() * 2 / 3);
    Need(font->lineHeight() + ParagraphGap() + 2 * bodyFont_->lineHeight());
    Paragraph(block.text, font, 0, false);
  }

  // A listing line; one that is too long continues on the next line.
  void Verbatim(const TextBlock& block) {
    const std::shared_ptr<Font> font = setup_.fonts->Get(FontRole::kListing, setup_.points * kListingSize);
    const bool goesOn = lastKind_ == TextBlock::Kind::kVerbatim;
    Space(goesOn ? block.spaceBefore * font->lineHeight() : ParagraphGap());
    std::u32string_view rest = block.text;
    do {
      const std::size_t count = Fitting(rest, *font);
      const int baseline = NextBaseline(*font);
      if (count != 0) {
        pages_.back().items.emplace_back(MakeLine(rest.substr(0, count), font, body_.left, baseline));
      }
      rest.remove_prefix(count);
    } while (!rest.empty());
  }

  // The number of characters that fit into one line, at least one.
  std::size_t Fitting(std::u32string_view text, Font& font) const {
    int width = 0;
    std::size_t count = 0;
    for (; count < text.size(); ++count) {
      width += IsBreakControl(text[count]) ? 0 : font.Advance(text[count]);
      if (width > body_.width() && count > 0) break;
    }
    return count;
  }

  const PageSetup& setup_;
  const std::string& name_;
  const Rect body_;
  const std::shared_ptr<Font> bodyFont_;
  std::vector<Page> pages_;
  TextBlock::Kind lastKind_ = TextBlock::Kind::kPageBreak;
  int y_ = 0;
};

}  // namespace

std::vector<Page> LayOutText(const std::vector<TextBlock>& blocks, const PageSetup& setup, const std::string& name) {
  TextSetter setter(setup, name);
  for (const TextBlock& block : blocks) setter.Set(block);
  return setter.Take();
}

}  // namespace qnv::tool

// Sets the header of a page: name and number over a thin line.
#include "qnvtool/layout/page_setup.h"

#include <fmt/core.h>

#include <algorithm>

#include "qnvtool/layout/text_lines.h"
#include "qnvtool/text/text_decoder.h"

namespace qnv::tool {
namespace {

// Size of the header, thickness of the line below it, and the space around that line.
constexpr double kHeaderSize = 0.8;  // of the body's
constexpr double kRuleMm = 0.25;
constexpr double kGapMm = 1;    // between text and rule
constexpr double kBelowMm = 5;  // between rule and body

// The font of the header.
std::shared_ptr<Font> HeaderFont(const PageSetup& setup) {
  return setup.fonts->Get(FontRole::kHeading, setup.points * kHeaderSize);
}

int Pixels(const PageSetup& setup, double mm) { return std::max(1, PixelsFromMm(mm, setup.sheet.dpi)); }

int HeaderHeight(const PageSetup& setup) {
  return HeaderFont(setup)->lineHeight() + Pixels(setup, kGapMm) + Pixels(setup, kRuleMm) + Pixels(setup, kBelowMm);
}

}  // namespace

Page EmptyPage(const PageSetup& setup) {
  Page page;
  page.width = setup.sheet.width;
  page.height = setup.sheet.height;
  return page;
}

Rect BodyOf(const PageSetup& setup) {
  Rect body = setup.sheet.content;
  // On paper that is too small for both, there is no header.
  if (setup.header && HeaderHeight(setup) < body.height() / 2) body.top += HeaderHeight(setup);
  return body;
}

void AddHeader(Page& page, const PageSetup& setup, const std::string& name, int number) {
  const Rect& content = setup.sheet.content;
  if (BodyOf(setup).top == content.top) return;
  const std::shared_ptr<Font> font = HeaderFont(setup);
  const int baseline = content.top + font->ascent();
  const std::string digits = fmt::format("{}", number);
  const std::u32string numberText(digits.begin(), digits.end());
  TextLine numberLine = MakeLine(numberText, *font, 0, baseline);
  numberLine.left = content.right - numberLine.width;
  const std::u32string shown = CutTo(DecodeUtf8(name), *font, content.width() - numberLine.width - font->lineHeight());
  page.items.emplace_back(MakeLine(shown, *font, content.left, baseline));
  page.items.emplace_back(std::move(numberLine));
  const int ruleTop = content.top + font->lineHeight() + Pixels(setup, kGapMm);
  Figure rule;
  rule.region = RectRegion(content.left, ruleTop, content.right, ruleTop + Pixels(setup, kRuleMm));
  rule.fill.kind = Fill::Kind::kPen;
  page.items.emplace_back(std::move(rule));
}

}  // namespace qnv::tool

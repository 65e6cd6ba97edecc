// Sets the header of a page: name and number over a thin line.
#include "qnvtool/layout/page_setup.h"

#include <fmt/core.h>

#include <algorithm>

#include "qnvtool/base/utf8.h"
#include "qnvtool/layout/text_lines.h"

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

// A file name as text. It may hold any bytes that the system allows, not only UTF-8.
std::u32string NameText(const std::string& name) {
  try {
    return DecodeTextFile(Bytes(name.begin(), name.end()), name);
  } catch (const std::exception&) {
    return std::u32string(name.size(), U'?');
  }
}

// Shortens a text to a width in pixels, with an ellipsis at the end.
std::u32string CutTo(std::u32string text, Font& font, int width) {
  if (TextWidth(text, font) <= width) return text;
  while (!text.empty() && TextWidth(text + U"\u2026", font) > width) text.pop_back();
  return text + U"\u2026";
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
  const int numberWidth = TextWidth(numberText, *font);
  const std::u32string shown = CutTo(NameText(name), *font, content.width() - numberWidth - font->lineHeight());
  page.items.emplace_back(MakeLine(shown, font, content.left, baseline));
  page.items.emplace_back(MakeLine(numberText, font, content.right - numberWidth, baseline));
  const int ruleTop = content.top + font->lineHeight() + Pixels(setup, kGapMm);
  Figure rule;
  rule.region = RectRegion(content.left, ruleTop, content.right, ruleTop + Pixels(setup, kRuleMm));
  rule.fill.kind = Fill::Kind::kPen;
  page.items.emplace_back(std::move(rule));
}

}  // namespace qnv::tool

// Lays out texts, block by block and page by page.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "qnvtool/layout/page_setup.h"
#include "qnvtool/layout/text_blocks.h"

namespace qnv::tool {

// Sets blocks on pages from top to bottom. It holds the page that is being filled, and full ones until they are taken.
class TextLayout {
 public:
  // `name` goes into the header. lineNumbers: verbatim lines get their numbers. The setup must outlive the layout.
  TextLayout(const PageSetup& setup, std::string name, bool lineNumbers);

  void Set(const TextBlock& block);

  // No further block follows. There is at least one page then.
  void Finish();

  // Takes the next full page, after Finish also the last one; false when there is none yet.
  bool Next(Page& page);

 private:
  void StartPage();
  int ParagraphGap() const { return bodyFont_->lineHeight() / 2; }
  void Space(int pixels);
  void Need(int pixels);
  int NextBaseline(const Font& font);
  void SetParagraph(std::u32string_view text, Font& font, int indent, bool justify);
  void SetListItem(const TextBlock& block);
  void SetHeading(const TextBlock& block);
  void SetVerbatim(const TextBlock& block);

  const PageSetup& setup_;
  const std::string name_;
  const bool lineNumbers_;
  const Rect body_;
  const std::shared_ptr<Font> bodyFont_;
  std::deque<Page> pages_;
  int number_ = 0;      // of the last page
  int pageBreaks_ = 0;  // form feeds that take effect when something follows them
  bool empty_ = true;   // nothing was set yet
  bool finished_ = false;
  TextBlock::Kind lastKind_ = TextBlock::Kind::kPageBreak;
  int y_ = 0;  // where the next line goes
};

// Sets the blocks of a whole text on as many pages as they need, at least one.
std::vector<Page> LayOutText(const std::vector<TextBlock>& blocks, const PageSetup& setup, const std::string& name);

}  // namespace qnv::tool

// One instruction of a figure file as verb, words and options.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "qnvtool/layout/page.h"

namespace qnv::tool {

class FigureLine {
 public:
  // where: "file:line", put before messages. All functions throw ToolError (bad input) for values that do not fit.
  FigureLine(const std::string& line, std::string where);

  const std::string& verb() const { return verb_; }
  std::size_t count() const { return words_.size(); }  // words after the verb, without options

  // Word i; `field` names it in messages.
  const std::string& Word(std::size_t i, const char* field) const;
  double Number(std::size_t i, const char* field) const;
  Point PointAt(std::size_t i) const;  // "X,Y"

  // The value of the option name=value, or `otherwise` when the line does not have it.
  std::string Option(const std::string& name, const std::string& otherwise) const;
  double NumberOption(const std::string& name, double otherwise) const;

  // Throws unless the words are `count` in number and all options are in `options`.
  void Expect(std::size_t count, const std::vector<std::string>& options) const;
  void ExpectOptions(const std::vector<std::string>& options) const;

  [[noreturn]] void Fail(const std::string& message) const;

 private:
  double ToNumber(const std::string& text, const char* field) const;

  std::string where_;
  std::string verb_;
  std::vector<std::string> words_;
  std::map<std::string, std::string> options_;
};

// Parse a color "#rrggbb", a fill, and a line style "#rrggbb:WIDTH" (see kFigureFormatHelp). Errors are reported
// through `line`.
Color ParseColor(const std::string& text, const FigureLine& line);
Fill ParseFill(const std::string& text, const FigureLine& line);

struct LineStyle {
  Color color = kBlack;
  double widthMm = 0;
};
LineStyle ParseLineStyle(const std::string& text, const FigureLine& line);

}  // namespace qnv::tool

// Figure files: drawings described line by line, in millimetres.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "qnvtool/layout/page_setup.h"

namespace qnv::tool {

// The format, for --help and the documents.
inline constexpr const char* kFigureFormatHelp =
    R"(Figure files (.fig) hold one instruction a line; lengths are millimetres from the
top left corner of the paper, '#' at the start of a line begins a comment.
  page                                    begins another page
  rect X Y W H [fill=F] [line=L] [rop2=R]
  ellipse X Y W H [fill=F] [line=L] [rop2=R]
  polygon X,Y X,Y X,Y ... [fill=F] [line=L] [rop2=R]
  path X,Y X,Y ... [line=L] [rop2=R]      a line through the points
  image FILE X Y W H [rop=O]              one of W and H may be '-'
  text X Y POINTS [font=body|heading|listing] [color=#rrggbb] [width=W] "TEXT"
                                          X Y is where the first baseline starts;
                                          W breaks and justifies the text
  A word in double quotes may hold blanks; "" inside it is a quote.
  F  #rrggbb | hatch:KIND:#line[:#gaps] | bits:HEX16:#clear:#set | weave:#a:#b
     KIND: horizontal vertical fdiagonal bdiagonal cross diagcross
     HEX16: eight rows of eight bits
     default: #000000 where there is no line either
  L  #rrggbb:WIDTH (default of a path: #000000:0.2)
  R  copy (default) xor and or not
  O  copy (default) and or xor notcopy erase min (min: not on scaled devices)
)";

// Opens the picture of an `image` instruction. Throws ToolError (bad input).
using OpenFigureImage = std::function<PicturePtr(const std::string& path)>;

// Sets the pages of a figure file. Paths of images are relative to the folder of `path`. Throws ToolError (bad input)
// that names file, line and field.
std::vector<Page> LayOutFigures(const Bytes& file, const PageSetup& setup, const std::string& path,
                                const OpenFigureImage& openImage);

}  // namespace qnv::tool

// Answers the questions of the page that shows call files; docs/inspector.md lists them. Questions and answers are
// JSON.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "inspector/engine/history.h"
#include "inspector/engine/json.h"
#include "inspector/engine/page_picture.h"

namespace qnv::inspector {

// An open file and what was computed for it.
struct OpenFile {
  explicit OpenFile(const calls::Functions& functions) : history(functions), pictures(history) {}

  History history;
  PagePictures pictures;
  std::vector<std::string> lowerLines;  // lines of the calls in lower case, once something was searched
};

class Inspector {
 public:
  explicit Inspector(const calls::Functions& functions, const HistoryLimits& limits = {})
      : functions_(functions), limits_(limits) {}

  // The number of the file; -1 when it cannot be read, and the sentence is the text.
  int32_t Open(const uint8_t* bytes, std::size_t count);
  void Close(int32_t file);
  // False: the text is the sentence of an error.
  bool Ask(int32_t file, std::string_view question);
  bool Draw(int32_t file, std::string_view question);

  const std::string& Text() const { return text_; }
  // Of the last picture that was drawn.
  const Picture& LastPicture() const { return picture_; }

 private:
  OpenFile* FileOf(int32_t file);
  // The file that a question is about; null with a sentence as the text when it cannot be answered.
  OpenFile* Read(int32_t file, std::string_view text, JsonValue* question);
  bool Fail(std::string message);

  const calls::Functions functions_;
  const HistoryLimits limits_;
  std::vector<std::unique_ptr<OpenFile>> files_;
  std::string text_;
  Picture picture_;
};

// The answers, by subject. Each is false with a sentence in *out when the question cannot be answered.
// list_answers.cpp: the file as a whole, and the list of its calls.
bool AnswerSummary(OpenFile& file, std::string* out);
bool AnswerRows(OpenFile& file, std::string* out);
bool AnswerLines(OpenFile& file, const JsonValue& question, std::string* out);
bool AnswerFind(OpenFile& file, const JsonValue& question, std::string* out);
bool AnswerCosts(OpenFile& file, const JsonValue& question, std::string* out);
// call_answers.cpp: one call.
bool AnswerCall(OpenFile& file, const JsonValue& question, std::string* out);
bool DrawPicture(OpenFile& file, const JsonValue& question, Picture* picture, std::string* error);
bool DrawChange(OpenFile& file, const JsonValue& question, Picture* picture, std::string* error);
// page_answers.cpp: places of pages.
bool AnswerPainters(OpenFile& file, const JsonValue& question, std::string* out);
bool AnswerPixel(OpenFile& file, const JsonValue& question, std::string* out);
bool AnswerHeat(OpenFile& file, const JsonValue& question, std::string* out);
bool AnswerCompare(OpenFile& file, OpenFile* other, std::string* out);

// "plain24", "plain8", "scaled" or "dual".
const char* KindOf(const calls::DeviceShape& shape);
// The call that a question names, or false with the sentence.
bool CallOf(const OpenFile& file, const JsonValue& question, std::size_t* call, std::string* out);

}  // namespace qnv::inspector

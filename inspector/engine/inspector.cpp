// Leads questions to their answers.
#include "inspector/engine/inspector.h"

#include "calls/text.h"

namespace qnv::inspector {

bool Inspector::Fail(std::string message) {
  text_ = std::move(message);
  return false;
}

int32_t Inspector::Open(const uint8_t* bytes, std::size_t count) {
  auto file = std::make_unique<OpenFile>(functions_);
  if (!file->history.Open(bytes, count, limits_, &text_)) return -1;
  text_.clear();
  for (std::size_t i = 0; i < files_.size(); ++i) {
    if (files_[i] == nullptr) {
      files_[i] = std::move(file);
      return static_cast<int32_t>(i);
    }
  }
  files_.push_back(std::move(file));
  return static_cast<int32_t>(files_.size() - 1);
}

void Inspector::Close(int32_t file) {
  if (FileOf(file) != nullptr) files_[static_cast<std::size_t>(file)] = nullptr;
}

OpenFile* Inspector::FileOf(int32_t file) {
  return file >= 0 && static_cast<std::size_t>(file) < files_.size() ? files_[static_cast<std::size_t>(file)].get()
                                                                     : nullptr;
}

OpenFile* Inspector::Read(int32_t number, std::string_view text, JsonValue* question) {
  OpenFile* const file = FileOf(number);
  const bool isRead = file != nullptr && JsonValue::Parse(text, question);
  text_ = file == nullptr ? "this file is not open" : isRead ? "" : "the question is no JSON";
  return isRead ? file : nullptr;
}

bool Inspector::Ask(int32_t number, std::string_view text) {
  JsonValue question;
  OpenFile* const file = Read(number, text, &question);
  if (file == nullptr) return false;
  const std::string& kind = question["q"].text();
  if (kind == "summary") return AnswerSummary(*file, &text_);
  if (kind == "rows") return AnswerRows(*file, &text_);
  if (kind == "lines") return AnswerLines(*file, question, &text_);
  if (kind == "find") return AnswerFind(*file, question, &text_);
  if (kind == "costs") return AnswerCosts(*file, question, &text_);
  if (kind == "call") return AnswerCall(*file, question, &text_);
  if (kind == "painters") return AnswerPainters(*file, question, &text_);
  if (kind == "pixel") return AnswerPixel(*file, question, &text_);
  if (kind == "heat") return AnswerHeat(*file, question, &text_);
  if (kind == "compare") {
    return AnswerCompare(*file, FileOf(static_cast<int32_t>(question["with"].Whole(-1))), &text_);
  }
  return Fail("there is no question \"" + kind + "\"");
}

bool Inspector::Draw(int32_t number, std::string_view text) {
  JsonValue question;
  OpenFile* const file = Read(number, text, &question);
  if (file == nullptr) return false;
  const std::string& kind = question["d"].text();
  if (kind == "picture") return DrawPicture(*file, question, &picture_, &text_);
  if (kind == "change") return DrawChange(*file, question, &picture_, &text_);
  if (kind != "page") return Fail("there is no picture \"" + kind + "\"");
  View view;
  const int64_t page = question["page"].Whole(-1), call = question["call"].Whole(-1);
  const auto calls = static_cast<int64_t>(file->history.Rows().size());
  if (page < 0 || page > INT32_MAX) return Fail("there is no such page");
  if (call < -1 || call >= calls) return Fail("there is no such call");
  view.page = static_cast<uint32_t>(page);
  view.tags = question["plane"].text() == "tags";
  view.left = question["left"].Whole();
  view.top = question["top"].Whole();
  view.width = question["width"].Whole();
  view.height = question["height"].Whole();
  view.columns = question["columns"].Whole(view.width);
  view.rows = question["rows"].Whole(view.height);
  const Picture* const picture = file->pictures.Draw(view, call, &text_);
  if (picture == nullptr) return false;
  picture_ = *picture;
  return true;
}

const char* KindOf(const calls::DeviceShape& shape) {
  if (shape.IsScaled()) return "scaled";
  if (shape.dualPlane) return "dual";
  return shape.description.bitsPerPixel == 24 ? "plain24" : "plain8";
}

bool CallOf(const OpenFile& file, const JsonValue& question, std::size_t* call, std::string* out) {
  const int64_t number = question["call"].Whole(-1);
  if (number < 0 || number >= static_cast<int64_t>(file.history.Rows().size())) {
    *out = "there is no such call";
    return false;
  }
  *call = static_cast<std::size_t>(number);
  return true;
}

}  // namespace qnv::inspector

// The answers of the engine, against a replay that looks after every call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <span>

#include "calls/describe_call.h"
#include "calls/exact_replay.h"
#include "calls/player.h"
#include "calls/raster_formula.h"
#include "inspector/engine/inspector.h"
#include "inspector/random_host.h"

namespace qnv::test {
namespace {

using inspector::Inspector;
using inspector::JsonValue;
using inspector::Picture;

calls::Bytes Page(const std::string& name) {
  return ReadAll(std::string(QNV_TEST_SOURCE_DIR) + "/calls/pages/" + name + ".qnv");
}

JsonValue Ask(Inspector& inspector, const std::string& question, int32_t file = 0) {
  EXPECT_TRUE(inspector.Ask(file, question)) << question << ": " << inspector.Text();
  JsonValue answer;
  EXPECT_TRUE(JsonValue::Parse(inspector.Text(), &answer)) << inspector.Text();
  return answer;
}

void ExpectError(Inspector& inspector, const std::string& question, const std::string& sentence) {
  EXPECT_FALSE(inspector.Ask(0, question));
  EXPECT_EQ(inspector.Text(), sentence) << question;
}

std::vector<uint8_t> FromBase64(const std::string& text) {
  std::vector<uint8_t> bytes;
  uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == '=') break;
    const int digit = c >= 'a' ? c - 'a' + 26 : c == '+' ? 62 : c == '/' ? 63 : c >= 'A' ? c - 'A' : c - '0' + 52;
    bits = bits << 6 | static_cast<uint32_t>(digit);
    if ((count += 6) >= 8) bytes.push_back(static_cast<uint8_t>(bits >> (count -= 8)));
  }
  return bytes;
}

template <class T>
std::vector<T> Column(const JsonValue& answer, const char* name) {
  const std::vector<uint8_t> bytes = FromBase64(answer[name].text());
  std::vector<T> values(bytes.size() / sizeof(T));
  std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
  return values;
}

int32_t Open(Inspector& inspector, const calls::Bytes& bytes) {
  const int32_t file = inspector.Open(bytes.data(), bytes.size());
  EXPECT_GE(file, 0) << inspector.Text();
  return file;
}

// What the calls of the first page did to each of its pixels, as a replay shows it that compares all pixels after every
// call.
struct Painter {
  int64_t call;
  std::vector<uint8_t> before, after;  // with the tag behind the color
  bool operator==(const Painter&) const = default;
};

class WatchedPage {
 public:
  WatchedPage(const calls::Bytes& bytes, const inspector::Page& page) : page_(page) {
    EXPECT_EQ(calls::CallFile::Read(bytes.data(), bytes.size(), &file_).error, calls::FileError::kNone);
    calls::Player player(file_, LinkedFunctions());
    std::vector<uint8_t> band, tags;
    calls::Player::Watcher watcher;
    watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots&) {
      if (call > page.lastCall) return false;
      if (const calls::PlayedDevice* const device = player.Device(stored.Device())) {
        band.assign(device->band.begin(), device->band.end());
        tags.assign(device->tags.begin(), device->tags.end());
      }
      return true;
    };
    watcher.after = [&](const calls::Player::MadeCall& made) {
      const calls::PlayedDevice* const device = player.Device(page.device);
      if (made.stored.Device() == page.device && device != nullptr && made.call >= page.firstCall) {
        Compare(made.call, *device, band, tags);
      }
      return true;
    };
    player.Play({.compare = false}, watcher);
  }

  const std::vector<Painter>& At(int64_t x, int64_t y) { return painters_[{x, y}]; }
  // Of a call.
  uint64_t Pixels(std::size_t call) { return pixels_[call]; }
  BandRect Changed(std::size_t call) { return changed_[call]; }

 private:
  void Compare(std::size_t call, const calls::PlayedDevice& device, const std::vector<uint8_t>& band,
               const std::vector<uint8_t>& tags) {
    const calls::DeviceShape& shape = device.shape;
    const calls::Reach size = BandReach(shape);
    for (int32_t y = 0; y < size.bottom; ++y) {
      for (int32_t x = 0; x < size.right; ++x) {
        const auto valueOf = [&](std::span<const uint8_t> plane, std::span<const uint8_t> tagPlane) {
          const auto* const at = plane.data() + static_cast<std::size_t>(y) * shape.Stride() +
                                 static_cast<std::size_t>(x) * shape.PixelBytes();
          std::vector<uint8_t> value(at, at + shape.PixelBytes());
          if (shape.dualPlane)
            value.push_back(tagPlane[static_cast<std::size_t>(y) * shape.TagStride() + static_cast<std::size_t>(x)]);
          return value;
        };
        const std::vector<uint8_t> before = valueOf(band, tags), after = valueOf(device.band, device.tags);
        if (before == after) continue;
        const int32_t left = shape.rect.left + x, top = shape.rect.top + y;
        painters_[{left, top}].push_back({static_cast<int64_t>(call), before, after});
        if (std::memcmp(before.data(), after.data(), shape.PixelBytes()) != 0) ++pixels_[call];
        BandRect& rect = changed_.try_emplace(call, BandRect{left, top, left, top}).first->second;
        rect = {std::min<int32_t>(rect.left, left), std::min<int32_t>(rect.top, top),
                std::max<int32_t>(rect.right, left + 1), std::max<int32_t>(rect.bottom, top + 1)};
      }
    }
  }

  const inspector::Page& page_;
  calls::CallFile file_;
  std::map<std::pair<int64_t, int64_t>, std::vector<Painter>> painters_;
  std::map<std::size_t, uint64_t> pixels_;
  std::map<std::size_t, BandRect> changed_;
};

std::vector<uint8_t> Values(const JsonValue& list, const JsonValue& tag) {
  std::vector<uint8_t> values;
  for (const JsonValue& item : list.items()) values.push_back(static_cast<uint8_t>(item.Whole()));
  if (tag.IsNumber()) values.push_back(static_cast<uint8_t>(tag.Whole()));
  return values;
}

void ExpectPaintersOf(const calls::Bytes& bytes, uint32_t pageNumber, int step, const std::string& what) {
  inspector::History history(LinkedFunctions());
  std::string error;
  ASSERT_TRUE(history.Open(bytes.data(), bytes.size(), {}, &error));
  ASSERT_LT(pageNumber, history.Pages().size()) << what;
  const inspector::Page& page = history.Pages()[pageNumber];
  WatchedPage watched(bytes, page);
  Inspector inspector(LinkedFunctions());
  Open(inspector, bytes);
  std::size_t painters = 0;
  for (int64_t i = 0; i < (page.right - page.left) * (page.bottom - page.top); i += step) {
    const int64_t x = page.left + i % (page.right - page.left), y = page.top + i / (page.right - page.left);
    const std::string place = calls::Text("\"page\":", pageNumber, ",\"x\":", x, ",\"y\":", y);
    const JsonValue answer = Ask(inspector, "{\"q\":\"painters\"," + place + "}");
    std::vector<Painter> got;
    for (const JsonValue& painter : answer["painters"].items()) {
      got.push_back({painter["call"].Whole(), Values(painter["before"], painter["tagBefore"]),
                     Values(painter["value"], painter["tag"])});
    }
    ASSERT_EQ(got, watched.At(x, y)) << what << ", pixel " << x << ", " << y;
    painters += got.size();
    const auto bands = std::count_if(page.bands.begin(), page.bands.end(),
                                     [&](uint32_t band) { return history.Bands()[band].Holds(x, y); });
    if (got.empty() || bands != 1) continue;
    // What the last painter left is what stands there at the end.
    const JsonValue pixel = Ask(inspector, "{\"q\":\"pixel\"," + place + calls::Text(",\"call\":", page.lastCall, "}"));
    EXPECT_EQ(Values(pixel["value"], pixel["tag"]), got.back().after) << what << ", pixel " << x << ", " << y;
  }
  EXPECT_GT(painters, 5u) << what;
  for (std::size_t call = page.firstCall; call <= page.lastCall; call += 7) {
    const JsonValue answer = Ask(inspector, calls::Text("{\"q\":\"call\",\"call\":", call, "}"));
    const JsonValue& changed = answer["changed"];
    EXPECT_EQ(static_cast<uint64_t>(changed["pixels"].Whole()), watched.Pixels(call)) << what << ", call " << call;
    const auto& rect = changed["rect"].items();
    const BandRect expected = watched.Changed(call);
    ASSERT_EQ(rect.size(), expected.left == expected.right ? 0u : 4u) << what << ", call " << call;
    if (rect.empty()) continue;
    EXPECT_EQ(rect[0].Whole(), expected.left);
    EXPECT_EQ(rect[1].Whole(), expected.top);
    EXPECT_EQ(rect[2].Whole(), expected.right);
    EXPECT_EQ(rect[3].Whole(), expected.bottom);
  }
}

TEST(Painters, AreThoseThatChangedThePixel) {
  for (const SampleDevice& device : kSampleDevices) {
    for (uint32_t seed = 1; seed <= 2; ++seed) {
      const std::string what = std::string(device.name) + ", seed " + std::to_string(seed);
      ExpectPaintersOf(RecordRandomCalls("painters", device, seed, 150), 0, 29, what);
      if (HasFatalFailure()) return;
    }
  }
  ExpectPaintersOf(Page("dual"), 0, 9973, "dual");
  ExpectPaintersOf(Page("scaled-90-60"), 1, 9973, "scaled");
}

// The page at every call, pixel by pixel, against what the question for a pixel answers; and a reduced picture, whose
// rows must be the same whether or not others were drawn before.
TEST(Drawing, ShowsThePageAtAnyCall) {
  for (const SampleDevice& device : kSampleDevices) {
    const calls::Bytes bytes = RecordRandomCalls("drawing", device, 4, 120);
    Inspector inspector(LinkedFunctions()), other(LinkedFunctions());
    Open(inspector, bytes);
    const JsonValue page = Ask(inspector, R"({"q":"summary"})")["pages"].items().at(0);
    const int64_t left = page["left"].Whole(), top = page["top"].Whole(), width = page["width"].Whole(),
                  height = page["height"].Whole();
    const auto viewAt = [&](int64_t call, const char* plane, int64_t columns, int64_t rows) {
      return calls::Text("{\"d\":\"page\",\"page\":0,\"call\":", call, ",\"plane\":\"", plane, "\",\"left\":", left,
                         ",\"top\":", top, ",\"width\":", width, ",\"height\":", height, ",\"columns\":", columns,
                         ",\"rows\":", rows, "}");
    };
    for (int64_t call = -1; call < page["lastCall"].Whole() + 1; call += 13) {
      ASSERT_TRUE(inspector.Draw(0, viewAt(call, "color", width, height))) << inspector.Text();
      const Picture picture = inspector.LastPicture();
      ASSERT_EQ(picture.width, width);
      ASSERT_EQ(picture.height, height);
      for (int64_t i = 0; i < width * height; i += 37) {
        const JsonValue pixel = Ask(inspector, calls::Text("{\"q\":\"pixel\",\"page\":0,\"x\":", left + i % width,
                                                           ",\"y\":", top + i / width, ",\"call\":", call, "}"));
        const auto& value = pixel["value"].items();
        const uint8_t* const got = &picture.pixels[static_cast<std::size_t>(i) * 4];
        if (value.empty()) {
          EXPECT_EQ(got[3], 0) << device.name << ", call " << call << ", pixel " << i;
          continue;
        }
        EXPECT_EQ(got[0], value.back().Whole()) << device.name << ", call " << call << ", pixel " << i;
        EXPECT_EQ(got[2], value.front().Whole());
        EXPECT_EQ(got[3], 255);
      }
      // Drawn after other calls, and for the first time.
      const std::string small = viewAt(call, device.tagPlane ? "tags" : "color", width / 3, height / 3);
      ASSERT_TRUE(inspector.Draw(0, small)) << inspector.Text();
      const Picture again = inspector.LastPicture();
      Open(other, bytes);
      ASSERT_TRUE(other.Draw(0, small));
      EXPECT_EQ(again.pixels, other.LastPicture().pixels) << device.name << ", call " << call;
      other.Close(0);
    }
  }
}

// One view at calls in any order: rows that are kept from one picture to the next are those of a first picture.
TEST(Drawing, KeepsOnlyRowsThatAreTheSame) {
  for (const char* const name : {"dual", "scaled-90-60"}) {
    const calls::Bytes bytes = Page(name);
    Inspector inspector(LinkedFunctions());
    Open(inspector, bytes);
    const int64_t count = Ask(inspector, R"({"q":"summary"})")["calls"].Whole();
    for (int64_t i = 0; i < 25; ++i) {
      const std::string view =
          calls::Text("{\"d\":\"page\",\"page\":0,\"call\":", i * 211 % (count / 3), ",\"left\":0,\"top\":0,",
                      "\"width\":496,\"height\":702,\"columns\":50,\"rows\":71}");
      ASSERT_TRUE(inspector.Draw(0, view)) << inspector.Text();
      Inspector fresh(LinkedFunctions());
      Open(fresh, bytes);
      ASSERT_TRUE(fresh.Draw(0, view));
      ASSERT_EQ(inspector.LastPicture().pixels, fresh.LastPicture().pixels) << name << ", " << view;
    }
  }
}

TEST(Drawing, AveragesPixels) {
  RecordedHost host("average", {false, false});
  std::vector<uint8_t> band(12 * 2);
  const DeviceDescription description{QNV_KIND_RASTER, 24, 300, 4, 2, 300};
  const BandRect rect{0, 0, 4, 2};
  DeviceHandle* const device = QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band.data(), nullptr);
  QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
  DRAWMODE mode{};
  mode.Rop2 = R2_COPYPEN;
  const BandRect clip{0, 0, 4, 2};
  // Blue in the first of the four pixels that become one.
  QNV_RECORDED_CALL(host, pixel, kPixel, device, 0, 0, 0x000000FF, &mode, &clip);
  const calls::Bytes bytes = host.Finish();
  QNVDisable(device);  // not in the file: the host of that one never ended its device
  Inspector inspector(LinkedFunctions());
  Open(inspector, bytes);
  ASSERT_TRUE(inspector.Draw(0, R"({"d":"page","page":0,"call":2,"plane":"color","left":0,"top":0,"width":6,
    "height":2,"columns":3,"rows":1})"))
      << inspector.Text();
  const JsonValue pixel = Ask(inspector, R"({"q":"pixel","page":0,"x":0,"y":0,"call":2})");
  const auto& value = pixel["value"].items();
  ASSERT_EQ(value.size(), 3u);
  const auto mean = [&](std::size_t i) { return static_cast<uint8_t>((value[i].Whole() + 3 * 255 + 2) / 4); };
  // The last column lies outside the band.
  const std::vector<uint8_t> expected{mean(2), mean(1), mean(0), 255, 255, 255, 255, 255, 0, 0, 0, 0};
  EXPECT_EQ(inspector.LastPicture().pixels, expected);
  EXPECT_FALSE(inspector.Draw(0, R"({"d":"page","page":0,"call":2,"plane":"tags","left":0,"top":0,"width":6,
    "height":2,"columns":3,"rows":1})"));
  EXPECT_EQ(inspector.Text(), "the device of this page has no tag plane");
}

TEST(Questions, DescribeTheFileAndItsCalls) {
  const calls::Bytes bytes = Page("dual");
  Inspector inspector(LinkedFunctions());
  Open(inspector, bytes);
  const JsonValue summary = Ask(inspector, R"({"q":"summary"})");
  EXPECT_EQ(summary["calls"].Whole(), 653);
  EXPECT_EQ(summary["system"].text(), "linux");
  EXPECT_EQ(summary["truncated"].text(), "");
  ASSERT_EQ(summary["devices"].items().size(), 1u);
  EXPECT_EQ(summary["devices"].items()[0]["kind"].text(), "dual");
  EXPECT_TRUE(summary["devices"].items()[0]["hasTags"].IsTrue());
  ASSERT_EQ(summary["pages"].items().size(), 3u);
  EXPECT_EQ(summary["pages"].items()[0]["width"].Whole(), 496);
  EXPECT_EQ(summary["pages"].items()[0]["height"].Whole(), 702);
  EXPECT_EQ(summary["mistakes"].items().size(), calls::kMistakeCount);

  calls::CallFile file;
  calls::CallFile::Read(bytes.data(), bytes.size(), &file);
  const JsonValue rows = Ask(inspector, R"({"q":"rows"})");
  const auto functions = Column<uint8_t>(rows, "function"), flags = Column<uint8_t>(rows, "flags");
  const auto ns = Column<uint32_t>(rows, "ns"), results = Column<uint32_t>(rows, "result");
  const auto pages = Column<int16_t>(rows, "page");
  const JsonValue lines = Ask(inspector, R"({"q":"lines","first":0,"count":1000})");
  ASSERT_EQ(functions.size(), 653u);
  ASSERT_EQ(lines["lines"].items().size(), 653u);
  calls::StoredCall call;
  std::vector<uint32_t> texts;
  uint64_t total = 0;
  for (std::size_t i = 0; i < file.CallCount(); ++i) {
    file.DecodeCall(file.CallItem(i), &call);
    EXPECT_EQ(functions[i], static_cast<uint8_t>(call.function));
    EXPECT_EQ(ns[i], call.nanoseconds);
    EXPECT_EQ(results[i], call.result);
    EXPECT_EQ(flags[i], calls::EntryPointOf(call.function).draws ? 1 : 0);
    EXPECT_EQ(lines["lines"].items()[i].text(), DescribeCall(file, i, call));
    total += call.nanoseconds;
    if (call.function == calls::Function::kDevExtTextOut && pages[i] == 1) texts.push_back(static_cast<uint32_t>(i));
  }
  EXPECT_EQ(static_cast<uint64_t>(summary["totalNs"].Whole()), total);
  EXPECT_FALSE(texts.empty());
  EXPECT_EQ(Column<uint32_t>(Ask(inspector, R"({"q":"find","text":"EXTTEXT","function":null,"page":1})"), "calls"),
            texts);
  EXPECT_EQ(Column<uint32_t>(Ask(inspector, R"({"q":"find","text":"","function":[10],"page":1})"), "calls"), texts);
  EXPECT_TRUE(Column<uint32_t>(Ask(inspector, R"({"q":"find","text":"no such text"})"), "calls").empty());

  const JsonValue costs = Ask(inspector, R"({"q":"costs","page":null})");
  uint64_t calls = 0;
  for (const JsonValue& cost : costs["byFunction"].items()) calls += static_cast<uint64_t>(cost["calls"].Whole());
  EXPECT_EQ(calls, 653u);
  EXPECT_EQ(costs["slowest"].items().size(), 100u);
  // All the time of the drawing calls of a page is in the cells of its map.
  const auto heat =
      Column<float>(Ask(inspector, R"({"q":"heat","page":0,"what":"time","columns":31,"rows":17})"), "values");
  ASSERT_EQ(heat.size(), 31u * 17);
  double sum = 0, expected = 0;
  for (const float value : heat) sum += value;
  inspector::History history(LinkedFunctions());
  std::string error;
  ASSERT_TRUE(history.Open(bytes.data(), bytes.size(), {}, &error));
  for (const inspector::CallRow& row : history.Rows()) {
    if (row.page == 0 && !row.reach.IsEmpty() && calls::EntryPointOf(row.function).draws) {
      expected += static_cast<double>(row.nanoseconds);
    }
  }
  EXPECT_NEAR(sum, expected, expected * 1e-4);
}

TEST(Questions, ThatCannotBeAnsweredGetASentence) {
  Inspector inspector(LinkedFunctions());
  Open(inspector, Page("color"));
  ExpectError(inspector, "{", "the question is no JSON");
  ExpectError(inspector, R"({"q":"weather"})", "there is no question \"weather\"");
  ExpectError(inspector, R"({"q":"call","call":653})", "there is no such call");
  ExpectError(inspector, R"({"q":"painters","page":3,"x":0,"y":0})", "there is no such page");
  ExpectError(inspector, R"({"q":"find","text":"","color":"blue"})", "a color is written #rrggbb");
  ExpectError(inspector, R"({"q":"compare","with":7})", "the file to compare with is not open");
  EXPECT_FALSE(inspector.Ask(5, R"({"q":"summary"})"));
  EXPECT_EQ(inspector.Text(), "this file is not open");
  EXPECT_FALSE(inspector.Draw(0, R"({"d":"page","page":0,"call":1,"left":0,"top":0,"width":0,"height":9})"));
  EXPECT_EQ(inspector.Text(), "the part of the page is empty");
  EXPECT_FALSE(inspector.Draw(0, R"({"d":"picture","call":0,"id":0})"));
  EXPECT_EQ(inspector.Text(), "there is no such picture");
  EXPECT_FALSE(inspector.Draw(0, R"({"d":"change","call":0,"which":"after"})"));
  EXPECT_EQ(inspector.Text(), "the call changes nothing");
  const calls::Bytes text{'h', 'e', 'l', 'l', 'o'};
  EXPECT_EQ(inspector.Open(text.data(), text.size()), -1);
  EXPECT_EQ(inspector.Text(), "at byte 0: this is no call file");
}

TEST(Questions, TakeCallsApart) {
  Inspector inspector(LinkedFunctions());
  Open(inspector, RecordSamplePage("parts", kSampleDevices[0].description, false, {false, false}));
  const auto found = Column<uint32_t>(Ask(inspector, R"({"q":"find","text":"MERGECOPY"})"), "calls");
  ASSERT_EQ(found.size(), 3u);
  const JsonValue call = Ask(inspector, calls::Text("{\"q\":\"call\",\"call\":", found[0], "}"));
  const auto& arguments = call["arguments"].items();
  ASSERT_EQ(arguments.size(), 12u);
  EXPECT_EQ(arguments[8]["formula"].text(), "D = P & S");
  EXPECT_EQ(arguments[3]["fields"].items()[0]["text"].text(), "60");
  EXPECT_EQ(arguments[10]["fields"].items()[2]["color"].text(), "#c0e0ff");
  const auto& pictures = call["pictures"].items();
  ASSERT_EQ(pictures.size(), 2u);
  EXPECT_EQ(pictures[0]["what"].text(), "source");
  EXPECT_EQ(pictures[1]["what"].text(), "brush");
  for (const JsonValue& picture : pictures) {
    ASSERT_TRUE(inspector.Draw(
        0, calls::Text("{\"d\":\"picture\",\"call\":", found[0], ",\"id\":", picture["id"].Whole(), "}")));
    EXPECT_EQ(inspector.LastPicture().width, picture["width"].Whole());
    EXPECT_EQ(inspector.LastPicture().height, picture["height"].Whole());
  }
  // The source has one bit a pixel: 1 is the background, 0 the text. Its second row begins with 8 x 11 + 0.
  ASSERT_TRUE(inspector.Draw(0, calls::Text("{\"d\":\"picture\",\"call\":", found[0], ",\"id\":0}")));
  for (std::size_t x = 0; x < 6; ++x) {
    const bool isSet = (8 * 11 >> (7 - (x + 2)) & 1) != 0;
    EXPECT_EQ(inspector.LastPicture().pixels[4 * x], isSet ? 0xC0 : 0x30) << x;
  }
  EXPECT_EQ(pictures[0]["width"].Whole(), 58);
  EXPECT_EQ(pictures[0]["height"].Whole(), 15);
}

TEST(Questions, ShowWhatACallChanged) {
  Inspector inspector(LinkedFunctions());
  const calls::Bytes bytes = RecordRandomCalls("changes", kSampleDevices[2], 3, 100);
  Open(inspector, bytes);
  int shown = 0;
  for (int call = 6; call < 100; ++call) {
    const JsonValue changed = Ask(inspector, calls::Text("{\"q\":\"call\",\"call\":", call, "}"))["changed"];
    if (changed["pixels"].Whole() == 0) continue;
    ++shown;
    Picture pictures[3];
    const char* const kinds[] = {"before", "after", "outline"};
    for (int i = 0; i < 3; ++i) {
      ASSERT_TRUE(inspector.Draw(0, calls::Text("{\"d\":\"change\",\"call\":", call, ",\"which\":\"", kinds[i], "\"}")))
          << inspector.Text();
      pictures[i] = inspector.LastPicture();
    }
    int64_t differing = 0, outlined = 0;
    for (std::size_t i = 0; i < pictures[0].pixels.size(); i += 4) {
      differing += std::memcmp(&pictures[0].pixels[i], &pictures[1].pixels[i], 4) != 0;
      outlined += pictures[2].pixels[i + 3] != 0;
    }
    EXPECT_EQ(differing, changed["pixels"].Whole()) << call;
    EXPECT_GE(outlined, differing) << call;
  }
  EXPECT_GT(shown, 10);
}

TEST(Questions, CompareTwoFiles) {
  Inspector inspector(LinkedFunctions());
  const auto pageWith = [](uint32_t color) {
    RecordedHost host("compare", {false, false});
    std::vector<uint8_t> band(std::size_t{64} * 3 * 40);
    const DeviceDescription description{QNV_KIND_RASTER, 24, 300, 64, 40, 300};
    const BandRect rect{0, 0, 64, 40};
    DeviceHandle* const device = QNV_RECORDED_CALL(host, enable, kEnable, &description, &rect, band.data(), nullptr);
    QNV_RECORDED_CALL(host, control, kControl, device, QNV_CLEAR_BAND, nullptr, nullptr);
    DRAWMODE mode{};
    mode.Rop2 = R2_COPYPEN;
    QNV_RECORDED_CALL(host, polyPixel, kPolyPixel, device, 20, 10, 39, 17, color, &mode, &rect);
    const calls::Bytes bytes = host.Finish();
    QNVDisable(device);
    return bytes;
  };
  Open(inspector, pageWith(0x00123456));
  Open(inspector, pageWith(0x00123457));
  Open(inspector, pageWith(0x00123456));
  const JsonValue same = Ask(inspector, R"({"q":"compare","with":2})");
  EXPECT_TRUE(same["same"].IsTrue());
  EXPECT_EQ(same["firstDifferent"].Whole(), -1);
  const JsonValue answer = Ask(inspector, R"({"q":"compare","with":1})");
  EXPECT_FALSE(answer["same"].IsTrue());
  EXPECT_EQ(answer["firstDifferent"].Whole(), 2);
  EXPECT_EQ(answer["text"].text(), "QNVPolyPixel, colour: 0x123456 and 0x123457");
  const JsonValue& page = answer["pages"].items().at(0);
  EXPECT_EQ(page["pixels"].Whole(), 20 * 8);
  // Squares of 16 pixels: columns 16 to 48, rows 0 to 32.
  ASSERT_EQ(page["rects"].items().size(), 1u);
  const int64_t expected[] = {16, 0, 48, 32};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(page["rects"].items()[0].items()[i].Whole(), expected[i]);
}

TEST(RasterFormula, ComputesTheOperation) {
  EXPECT_EQ(calls::RasterFormula(0xCC), "S");
  EXPECT_EQ(calls::RasterFormula(0x5A), "P ^ D");
  EXPECT_EQ(calls::RasterFormula(0x55), "~D");
  EXPECT_EQ(calls::RasterFormula(0xFF), "1");
  // Each formula is evaluated for all eight combinations at once.
  struct Evaluator {
    const char* at;
    int Part() {
      if (*at == '~') {
        ++at;
        return ~Part() & 0xFF;
      }
      if (*at == '(') {
        ++at;
        const int value = Whole();
        ++at;
        return value;
      }
      const char letter = *at++;
      return letter == 'P' ? 0xF0 : letter == 'S' ? 0xCC : letter == 'D' ? 0xAA : letter == '1' ? 0xFF : 0;
    }
    int Whole() {
      const int left = Part();
      if (*at != ' ') return left;
      const char sign = at[1];
      at += 3;
      const int right = Part();
      return sign == '&' ? left & right : sign == '|' ? left | right : left ^ right;
    }
  };
  for (int index = 0; index < 256; ++index) {
    const std::string formula = calls::RasterFormula(static_cast<uint8_t>(index));
    Evaluator evaluator{formula.c_str()};
    EXPECT_EQ(evaluator.Whole(), index) << formula;
    EXPECT_EQ(*evaluator.at, '\0') << formula;
  }
}

TEST(RowGroup, KeepsEveryByte) {
  std::vector<uint8_t> bytes(5000);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<uint8_t>(i % 1000 < 700 ? i / 1000 : i * i);
  }
  for (const std::size_t count : {0u, 1u, 7u, 8u, 63u, 64u, 700u, 701u, 4999u, 5000u}) {
    const inspector::RowGroup group(bytes.data(), count);
    std::vector<uint8_t> out(count + 1, 0xEE);
    group.Unpack(out.data());
    EXPECT_TRUE(std::equal(out.begin(), out.end() - 1, bytes.begin())) << count;
    EXPECT_EQ(out.back(), 0xEE);
  }
  EXPECT_LT(inspector::RowGroup(bytes.data(), 700).MemoryBytes(), 100u);
}

TEST(Json, ReadsWhatQuestionsHave) {
  JsonValue value;
  ASSERT_TRUE(JsonValue::Parse(R"( {"a": [1, -2.5e1, "x\"\u00e9\n"], "b": {"c": true}, "d": null} )", &value));
  EXPECT_EQ(value["a"].items()[1].Whole(), -25);
  EXPECT_EQ(value["a"].items()[2].text(), "x\"\xC3\xA9\n");
  EXPECT_TRUE(value["b"]["c"].IsTrue());
  EXPECT_EQ(value["d"].kind(), JsonValue::Kind::kNull);
  EXPECT_EQ(value["missing"].Whole(7), 7);
  for (const char* const bad :
       {"", "{", "[1,]", "{\"a\" 1}", "\"open", "tru", "1x", "{} {}", "[[[[[[[[[[1]]]]]]]]]]"}) {
    JsonValue other;
    EXPECT_FALSE(JsonValue::Parse(bad, &other)) << bad;
  }
}

}  // namespace
}  // namespace qnv::test

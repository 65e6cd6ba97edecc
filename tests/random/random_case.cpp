// The making of a case, and the comparison after each of its calls.
#include "random/random_case.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "reference/arithmetic.h"

namespace qnv::test {
namespace {

struct Resolutions {
  uint16_t a, b;
};

constexpr Resolutions kResolutions[] = {{360, 360},  {720, 360}, {360, 720}, {600, 400}, {400, 600}, {300, 360},
                                        {360, 1440}, {720, 720}, {3, 2},     {2, 3},     {7, 5},     {5, 7},
                                        {1, 1},      {4, 1},     {1, 3},     {10, 9},    {600, 359}, {719, 360}};
constexpr int kMaxColumns = 6000;

constexpr uint16_t kPlainResolutions[] = {360, 720, 1440, 300};

constexpr const char* kClassNames[] = {"plain 24-bit", "plain 8-bit", "scaled", "dual-plane",
                                       "dual-plane of another depth"};

std::string Format(const char* format, va_list arguments) {
  char text[512];
  std::vsnprintf(text, sizeof text, format, arguments);
  return text;
}

}  // namespace

RandomCase::RandomCase(Numbers& random, CallMemory& memory, bool verbose, CaseTotals& totals)
    : random_(random), memory_(memory), verbose_(verbose), totals_(totals) {
  MakeDescription();
  const uint32_t bytes = description_.kind == QNV_KIND_SCALED || description_.bitsPerPixel == 24 ? 3 : 1;
  const bool dual = class_ == DeviceClass::kDualPlane || class_ == DeviceClass::kDualPlaneOtherDepth;
  bandSize_ = std::size_t{(description_.width * bytes + 3) & ~3u} * description_.height;
  tagSize_ = dual ? std::size_t{(description_.width + 3) & ~3u} * description_.height : 0;

  const bool nullBand = random_.Percent(1);
  const auto place = [&](PlaneMemory& plane, std::size_t size) {
    uint8_t* at = plane.Place(size, random_.Percent(50) ? 0 : static_cast<std::size_t>(random_.Range(1, 15)));
    const int content = random_.Range(0, 2);
    if (content == 2) {
      random_.Fill(at, size);
    } else {
      std::memset(at, content == 0 ? 0xCC : 0x33, size);
    }
    return at;
  };
  if (!nullBand) band_ = place(memory_.band, bandSize_);
  if (dual) {
    tags_ = place(memory_.tags, tagSize_);
    if (random_.Percent(70)) std::memset(tags_, 1, tagSize_);
  }
  bandRect_ = RandomBand();
  handle_ = QNVEnable(&description_, &bandRect_, band_, tags_);
  if (handle_ == nullptr) {
    Fail("QNVEnable refused the device");
    return;
  }
  if (class_ != DeviceClass::kDualPlaneOtherDepth) {
    const std::vector<uint8_t> band(band_, band_ == nullptr ? nullptr : band_ + bandSize_);
    const std::vector<uint8_t> tags(tags_, tags_ == nullptr ? nullptr : tags_ + tagSize_);
    model_ =
        reference::MakeModel(&description_, &bandRect_, band_ == nullptr ? nullptr : &band, dual ? &tags : nullptr);
    before_ = band;
  }
  Say("device: %s, kind %u, %u bits, resolutions %u to %u, %u x %u%s\n", kClassNames[static_cast<int>(class_)],
      description_.kind, description_.bitsPerPixel, description_.resolutionA, description_.resolutionB,
      description_.width, description_.height, nullBand ? ", null band buffer" : "");
  SayRect("  band", &bandRect_);
  if (random_.Percent(50)) {
    const DrawingOrigin origin{random_.Range(-40, 40), random_.Range(-40, 40)};
    Control(QNV_SET_ORIGIN, &origin, nullptr);
  }
}

RandomCase::~RandomCase() {
  QNVDisable(handle_);
  memory_.band.Release();
  memory_.tags.Release();
  memory_.inputs.Release();
}

void RandomCase::MakeDescription() {
  const int pick = random_.Range(0, 99);
  class_ = pick < 25   ? DeviceClass::kPlain24
           : pick < 50 ? DeviceClass::kPlain8
           : pick < 74 ? DeviceClass::kScaled
           : pick < 99 ? DeviceClass::kDualPlane
                       : DeviceClass::kDualPlaneOtherDepth;
  description_.kind = QNV_KIND_RASTER;
  description_.bitsPerPixel = 24;
  description_.resolutionA = random_.Pick(kPlainResolutions);
  description_.resolutionB = random_.Pick(kPlainResolutions);
  description_.width = static_cast<uint32_t>(random_.Percent(90) ? random_.Range(1, 70) : random_.Range(1, 4));
  description_.height = static_cast<uint32_t>(random_.Percent(85) ? random_.Range(4, 14) : random_.Range(1, 3));
  if (class_ == DeviceClass::kPlain8) description_.bitsPerPixel = 8;
  if (class_ == DeviceClass::kDualPlaneOtherDepth) description_.bitsPerPixel = random_.Percent(50) ? 8 : 16;
  if (class_ == DeviceClass::kScaled) {
    const Resolutions pair = random_.Pick(kResolutions);
    description_.kind = QNV_KIND_SCALED;
    description_.resolutionA = pair.a;
    description_.resolutionB = pair.b;
    description_.bitsPerPixel = random_.Percent(55) ? 24 : random_.Percent(90) ? 0 : 8;
    description_.width = static_cast<uint32_t>(random_.Range(1, 40));
    description_.height = static_cast<uint32_t>(random_.Percent(85) ? random_.Range(4, 10) : random_.Range(1, 3));
  }
  // Rows of images and transfers go through the library in pieces: some bands are wide enough for several of them.
  wide_ = random_.Percent(4);
  if (wide_) {
    description_.width = static_cast<uint32_t>(random_.Range(300, kMaxColumns));
    description_.height = static_cast<uint32_t>(random_.Range(1, 3));
  }
}

int RandomCase::MaxWidth(int usual) const {
  const BandRect band = CallerBand();
  return wide_ ? std::clamp(band.right - band.left + 20, usual, kMaxColumns + 20) : usual;
}

BandRect RandomCase::RandomBand() {
  BandRect rect;
  const int place = random_.Range(0, 5);
  if (place < 2) {
    rect.left = rect.top = 0;
  } else if (place < 4) {
    rect.left = random_.Range(-40, 40);
    rect.top = random_.Range(-40, 40);
  } else {
    rect.left = place == 4 ? 0 : random_.Range(0, 3000);
    rect.top = random_.Range(0, 3000);
  }
  rect.right = rect.left + static_cast<int32_t>(description_.width);
  rect.bottom = rect.top + static_cast<int32_t>(description_.height);
  if (random_.Percent(12)) {
    // A band that does not use all of its memory, now and then none of it.
    rect.right -= random_.Range(0, static_cast<int>(description_.width) / (random_.Percent(80) ? 2 : 1));
    rect.bottom -= random_.Range(0, static_cast<int>(description_.height) / (random_.Percent(80) ? 2 : 1));
  }
  return rect;
}

BandRect RandomCase::CallerBand() const {
  BandRect rect = bandRect_;
  if (class_ == DeviceClass::kScaled) {
    const auto page = [&](int edge) {
      return reference::MulDiv(edge, description_.resolutionA, description_.resolutionB);
    };
    rect = {page(rect.left), page(rect.top), page(rect.right), page(rect.bottom)};
  }
  return {rect.left - origin_.x, rect.top - origin_.y, rect.right - origin_.x, rect.bottom - origin_.y};
}

void RandomCase::BeginCall(const char* name) {
  callName_ = name;
  tame_ = random_.Percent(65);
  memory_.inputs.Release();
  Say("%s\n", name);
}

uint8_t* RandomCase::GiveBytes(const std::vector<uint8_t>& bytes) {
  uint8_t* to = memory_.inputs.Take(bytes.size());
  if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  return to;
}

uint8_t* RandomCase::GiveMostly(int percent, const char* name, const std::vector<uint8_t>& bytes) {
  SayBytes(name, bytes);
  if (tame_ || random_.Percent(percent)) return GiveBytes(bytes);
  Say("  %s null\n", name);
  return nullptr;
}

void RandomCase::Control(uint32_t code, const DrawingOrigin* origin, const BandRect* rect) {
  BeginCall("QNVControl");
  Say("  code 0x%X\n", code);
  const void* data = nullptr;
  if (origin != nullptr) {
    Say("  origin %d, %d\n", origin->x, origin->y);
    data = Give(*origin);
  }
  if (rect != nullptr) {
    SayRect("  rect", rect);
    data = Give(*rect);
  }
  const uint32_t expected = OnModel([&](reference::Model& model) { return model.Control(code, data); });
  const uint32_t got = QNVControl(handle_, code, data, nullptr);
  if ((code & 0xFFFF) == QNV_SET_ORIGIN && origin != nullptr) origin_ = *origin;
  if ((code & 0xFFFF) == QNV_SET_BAND_RECT && rect != nullptr) bandRect_ = *rect;
  Check(expected, got, 0xFFFF);
}

void RandomCase::Check(uint32_t expected, uint32_t got, uint32_t mask) {
  ++totals_.calls;
  if (failed()) return;
  if (!memory_.band.SurroundingsIntact()) Fail("memory outside the band was written");
  if (!memory_.tags.SurroundingsIntact()) Fail("memory outside the tag plane was written");
  const int changed = memory_.inputs.FirstChanged();
  if (changed >= 0) Fail("host record %d (in the order given) differs from what the call must leave", changed);
  if (!model_) return;
  if (((expected ^ got) & mask) != 0) Fail("result: expected 0x%X, got 0x%X", expected & mask, got & mask);
  if (band_ != nullptr) ComparePlane("band", band_, model_->band());
  if (model_->tags() != nullptr) ComparePlane("tag plane", tags_, *model_->tags());

  const std::vector<uint8_t>& now = model_->band().bytes();
  if (now != before_) {
    ++totals_.paintingCalls;
    before_ = now;
  }
}

void RandomCase::ComparePlane(const char* name, const uint8_t* got, const reference::Plane& expected) {
  const std::vector<uint8_t>& bytes = expected.bytes();
  if (std::memcmp(got, bytes.data(), bytes.size()) == 0) return;
  const auto differs = [&](std::size_t i) { return got[i] != bytes[i]; };
  std::size_t at = 0;
  while (!differs(at)) ++at;
  std::size_t differing = 0;
  for (std::size_t i = at; i < bytes.size(); ++i) differing += differs(i) ? 1u : 0u;
  const std::size_t inRow = at % expected.stride();
  const std::size_t pixelBytes = static_cast<std::size_t>(expected.bytesPerPixel());
  Fail(
      "%s: first differing byte at row %u, column %u (byte %u of the row): expected 0x%02X, got 0x%02X; %u bytes "
      "differ",
      name, static_cast<unsigned>(at / expected.stride()), static_cast<unsigned>(inRow / pixelBytes),
      static_cast<unsigned>(inRow), bytes[at], got[at], static_cast<unsigned>(differing));
}

void RandomCase::Say(const char* format, ...) {
  if (!verbose_) return;
  va_list arguments;
  va_start(arguments, format);
  std::fputs(Format(format, arguments).c_str(), stdout);
  va_end(arguments);
  std::fflush(stdout);
}

void RandomCase::SayRect(const char* name, const BandRect* rect) {
  if (rect == nullptr) {
    Say("%s null\n", name);
  } else {
    Say("%s left %d, top %d, right %d, bottom %d\n", name, rect->left, rect->top, rect->right, rect->bottom);
  }
}

void RandomCase::SayBytes(const char* name, const std::vector<uint8_t>& bytes) {
  if (!verbose_) return;
  Say("  %s (%u bytes)", name, static_cast<unsigned>(bytes.size()));
  for (std::size_t i = 0; i < bytes.size(); ++i) Say("%s%02X", i % 32 == 0 ? "\n    " : " ", bytes[i]);
  Say("\n");
}

void RandomCase::Fail(const char* format, ...) {
  if (failed()) return;
  va_list arguments;
  va_start(arguments, format);
  failure_ = (callName_.empty() ? std::string("set-up") : callName_) + ": " + Format(format, arguments);
  va_end(arguments);
}

}  // namespace qnv::test

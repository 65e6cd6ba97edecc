// Paints pages row by row.
#include "inspector/engine/page_picture.h"

#include <algorithm>
#include <cstring>

#include "calls/text.h"

namespace qnv::inspector {
namespace {

struct Color {
  uint8_t red, green, blue, alpha;
};

// Graphics are clear, so that tags can lie over the page.
Color ColorOfTag(uint8_t tag) {
  switch (tag) {
    case QNV_TAG_GRAPHICS: return {0, 0, 0, 0};
    case QNV_TAG_IMAGE: return {230, 97, 0, 255};
    case 0: return {0, 92, 230, 255};  // the background of opaque text
    default: return {200, 0, 200, 255};
  }
}

// Where the pixels of a picture begin in the view; the last one ends where the view ends.
int64_t EdgeOf(int64_t i, int64_t pictureSide, int64_t viewSide) { return i * viewSide / pictureSide; }

}  // namespace

bool PagePictures::Show(uint32_t number, bool tags, int64_t call, std::vector<ShownBand>* bands, std::string* error) {
  bands->clear();
  const Page& page = history_.Pages()[number];
  const uint32_t position = history_.PositionAfter(page.device, call);
  for (const uint32_t index : page.bands) {
    const BandOfPage& band = history_.Bands()[index];
    const std::size_t groups = history_.Layout(band.device, tags).Count();
    ShownBand shown{&band, false, band.end, nullptr, {}};
    if (position >= band.end) {
      shown.groups = history_.Complete(band, tags);
      shown.versions.assign(groups, 1);
    } else if (position >= band.begun) {
      shown.position = position;
      const LiveDevice* const live = history_.At(band.device, position, error);
      if (live == nullptr) return false;
      shown.versions = tags ? live->tagVersions : live->bandVersions;
    } else {
      // What the memory holds before belongs to the band before.
      shown.isBlank = true;
      shown.versions.assign(groups, 0);
    }
    bands->push_back(std::move(shown));
  }
  return true;
}

const uint8_t* PagePictures::RowOf(const ShownBand& shown, bool tags, int64_t y) {
  if (shown.isBlank) return nullptr;
  const GroupLayout& layout = history_.Layout(shown.band->device, tags);
  const std::size_t at = static_cast<std::size_t>(y - shown.band->Top()) * layout.stride;
  if (at + layout.stride > layout.planeBytes) return nullptr;
  if (shown.groups == nullptr) {
    std::string error;
    const LiveDevice* const live = history_.At(shown.band->device, shown.position, &error);
    return live == nullptr ? nullptr : (tags ? live->tags : live->band).data() + at;
  }
  const std::size_t group = at / layout.groupBytes;
  const RowGroup* const rows = (*shown.groups)[group].get();
  if (unpacked_ != rows) {
    groupBytes_.resize(layout.Bytes(group));
    rows->Unpack(groupBytes_.data());
    unpacked_ = rows;
  }
  return groupBytes_.data() + (at - layout.First(group));
}

// Adds the pixels of a band in a row of the view, except those that are covered.
void PagePictures::AddRow(const View& view, const ShownBand& shown, int64_t y) {
  const BandOfPage& band = *shown.band;
  const uint8_t* const row = RowOf(shown, view.tags, y);
  const int64_t from = std::max(band.Left(), view.left) - view.left;
  const int64_t to = std::min(band.Left() + band.size.right, view.left + view.width) - view.left;
  const int64_t shift = view.left - band.Left();
  const uint32_t pixelBytes = view.tags ? 1 : band.shape.PixelBytes();
  if (from >= to) return;
  int64_t column = from * view.columns / view.width;
  while (column + 1 < view.columns && EdgeOf(column + 1, view.columns, view.width) <= from) ++column;
  for (int64_t x = from; x < to; ++column) {
    const int64_t end = std::min(to, column + 1 < view.columns ? EdgeOf(column + 1, view.columns, view.width) : to);
    Sum& sum = sums_[static_cast<std::size_t>(column)];
    for (; x < end; ++x) {
      if (covered_[static_cast<std::size_t>(x)] != 0) continue;
      covered_[static_cast<std::size_t>(x)] = 1;
      ++sum.count;
      if (view.tags) {
        const Color color = row == nullptr ? ColorOfTag(QNV_TAG_GRAPHICS) : ColorOfTag(row[x + shift]);
        if (color.alpha == 0) continue;
        sum.red += color.red;
        sum.green += color.green;
        sum.blue += color.blue;
        ++sum.alpha;
        continue;
      }
      ++sum.alpha;
      if (row == nullptr) {
        sum.red += 255;
        sum.green += 255;
        sum.blue += 255;
      } else if (pixelBytes == 3) {
        const uint8_t* const pixel = row + 3 * (x + shift);
        sum.blue += pixel[0];
        sum.green += pixel[1];
        sum.red += pixel[2];
      } else {
        sum.red += row[x + shift];
        sum.green += row[x + shift];
        sum.blue += row[x + shift];
      }
    }
  }
}

void PagePictures::PaintRow(const View& view, const std::vector<ShownBand>& bands, int64_t row, uint8_t* out) {
  sums_.assign(static_cast<std::size_t>(view.columns), Sum{});
  const int64_t first = view.top + EdgeOf(row, view.rows, view.height);
  const int64_t end = view.top + EdgeOf(row + 1, view.rows, view.height);
  for (int64_t y = first; y < end; ++y) {
    covered_.assign(static_cast<std::size_t>(view.width), 0);
    // The band that was painted last is on top; bands that are not begun lie below all others.
    for (const bool blank : {false, true}) {
      for (std::size_t i = bands.size(); i-- > 0;) {
        const BandOfPage& band = *bands[i].band;
        if (bands[i].isBlank == blank && band.Top() <= y && y < band.Top() + band.size.bottom) {
          AddRow(view, bands[i], y);
        }
      }
    }
  }
  for (const Sum& sum : sums_) {
    const auto mean = [](uint32_t total, uint32_t count) {
      return static_cast<uint8_t>(count == 0 ? 0 : (total + count / 2) / count);
    };
    out[0] = mean(sum.red, sum.alpha);
    out[1] = mean(sum.green, sum.alpha);
    out[2] = mean(sum.blue, sum.alpha);
    out[3] = mean(sum.alpha * 255, sum.count);
    out += 4;
  }
}

// Whether the bytes that a row of the picture shows are those of the last one.
bool PagePictures::IsSameRow(const View& view, const std::vector<ShownBand>& bands, int64_t row) const {
  if (versions_.size() != bands.size()) return false;
  const int64_t first = view.top + EdgeOf(row, view.rows, view.height);
  const int64_t end = view.top + EdgeOf(row + 1, view.rows, view.height);
  for (std::size_t i = 0; i < bands.size(); ++i) {
    const BandOfPage& band = *bands[i].band;
    const int64_t from = std::max(first, band.Top()) - band.Top();
    const int64_t to = std::min(end, band.Top() + band.size.bottom) - band.Top();
    if (from >= to || bands[i].versions.empty()) continue;
    const GroupLayout& layout = history_.Layout(band.device, view.tags);
    const std::size_t last = static_cast<std::size_t>(to - 1) * layout.stride / layout.groupBytes;
    for (std::size_t g = static_cast<std::size_t>(from) * layout.stride / layout.groupBytes; g <= last; ++g) {
      if (g < bands[i].versions.size() && bands[i].versions[g] != versions_[i][g]) return false;
    }
  }
  return true;
}

uint64_t PagePictures::SingleVersion(const View& view, const std::vector<ShownBand>& bands, int64_t row) const {
  const int64_t first = view.top + EdgeOf(row, view.rows, view.height);
  const int64_t end = view.top + EdgeOf(row + 1, view.rows, view.height);
  uint64_t single = 2;
  for (const ShownBand& shown : bands) {
    const BandOfPage& band = *shown.band;
    if (band.Top() >= end || band.Top() + band.size.bottom <= first) continue;
    const uint64_t version = shown.isBlank ? 0 : !shown.versions.empty() && shown.versions.front() == 1 ? 1 : 2;
    if (version == 2 || (single != 2 && single != version)) return 2;
    single = version;
  }
  return single;
}

const Picture* PagePictures::Draw(View view, int64_t call, std::string* error) {
  if (view.page >= history_.Pages().size()) {
    *error = "there is no such page";
    return nullptr;
  }
  if (view.tags && !history_.ShapeAtStart(history_.Pages()[view.page].device).dualPlane) {
    *error = "the device of this page has no tag plane";
    return nullptr;
  }
  constexpr int64_t kFarthest = int64_t{1} << 40;
  if (view.width <= 0 || view.height <= 0 || view.width > kFarthest || view.height > kFarthest || view.columns <= 0 ||
      view.rows <= 0 || view.left < -kFarthest || view.left > kFarthest || view.top < -kFarthest ||
      view.top > kFarthest) {
    *error = "the part of the page is empty";
    return nullptr;
  }
  view.columns = std::min(view.columns, view.width);
  view.rows = std::min(view.rows, view.height);
  if (view.columns > kMaxPictureSide || view.rows > kMaxPictureSide || view.columns * view.rows > kMaxPicturePixels ||
      view.width > (int64_t{1} << 24)) {
    *error = "the picture would be too large";
    return nullptr;
  }
  std::vector<ShownBand> bands;
  if (!Show(view.page, view.tags, call, &bands, error)) return nullptr;
  const bool isKnown = view == view_ && !picture_.pixels.empty();
  if (!isKnown) {
    view_ = view;
    picture_.width = static_cast<uint32_t>(view.columns);
    picture_.height = static_cast<uint32_t>(view.rows);
    picture_.pixels.assign(static_cast<std::size_t>(view.columns * view.rows) * 4, 0);
    const std::size_t pixels = static_cast<std::size_t>(view.columns * view.rows);
    for (std::size_t i = 0; i < 2; ++i) {
      isKept_[i].assign(static_cast<std::size_t>(view.rows), false);
      keptRows_[i].assign(pixels <= kMaxKeptPixels ? pixels * 4 : 0, 0);
    }
  }
  for (int64_t row = 0; row < view.rows; ++row) {
    if (isKnown && IsSameRow(view, bands, row)) continue;
    const std::size_t at = static_cast<std::size_t>(row * view.columns) * 4;
    const std::size_t bytes = static_cast<std::size_t>(view.columns) * 4;
    uint8_t* const out = picture_.pixels.data() + at;
    const uint64_t kind = SingleVersion(view, bands, row);
    const bool mayKeep = kind < 2 && !keptRows_[kind].empty();
    if (mayKeep && isKept_[kind][static_cast<std::size_t>(row)]) {
      std::memcpy(out, keptRows_[kind].data() + at, bytes);
      continue;
    }
    PaintRow(view, bands, row, out);
    if (!mayKeep) continue;
    std::memcpy(keptRows_[kind].data() + at, out, bytes);
    isKept_[kind][static_cast<std::size_t>(row)] = true;
  }
  versions_.clear();
  for (ShownBand& shown : bands) versions_.push_back(std::move(shown.versions));
  return &picture_;
}

bool PagePictures::RowsOf(uint32_t number, bool tags, int64_t top, int64_t bottom, PageRows* rows, std::string* error) {
  const Page& page = history_.Pages()[number];
  std::vector<ShownBand> bands;
  if (!Show(number, tags, static_cast<int64_t>(page.lastCall) + 1, &bands, error)) return false;
  const int64_t width = page.right - page.left;
  constexpr int64_t kMaxWidth = int64_t{1} << 22;
  if (width > kMaxWidth) {
    *error = "the page is too wide to be compared";
    return false;
  }
  rows->pixelBytes = tags ? 1 : history_.ShapeAtStart(page.device).PixelBytes();
  rows->bytes.assign(static_cast<std::size_t>(width * (bottom - top)) * rows->pixelBytes, 0);
  for (const ShownBand& shown : bands) {
    const BandOfPage& band = *shown.band;
    for (int64_t y = std::max(top, band.Top()); y < std::min(bottom, band.Top() + band.size.bottom); ++y) {
      const uint8_t* const row = RowOf(shown, tags, y);
      if (row == nullptr) continue;
      std::memcpy(
          rows->bytes.data() + static_cast<std::size_t>((y - top) * width + band.Left() - page.left) * rows->pixelBytes,
          row, static_cast<std::size_t>(band.size.right) * rows->pixelBytes);
    }
  }
  return true;
}

bool PagePictures::PixelAt(uint32_t page, int64_t x, int64_t y, int64_t call, PagePixel* pixel, std::string* error) {
  *pixel = PagePixel{};
  if (page >= history_.Pages().size()) {
    *error = "there is no such page";
    return false;
  }
  std::vector<ShownBand> bands;
  if (!Show(page, false, call, &bands, error)) return false;
  const ShownBand* top = nullptr;
  for (const ShownBand& shown : bands) {
    if (shown.band->Holds(x, y) && (top == nullptr || !shown.isBlank)) top = &shown;
  }
  if (top == nullptr) return true;
  const calls::DeviceShape& shape = top->band->shape;
  const auto column = static_cast<std::size_t>(x - top->band->Left());
  pixel->isInBand = true;
  pixel->byteCount = shape.PixelBytes();
  std::memset(pixel->bytes, 0xFF, sizeof pixel->bytes);
  if (const uint8_t* const row = RowOf(*top, false, y); row != nullptr) {
    std::memcpy(pixel->bytes, row + column * pixel->byteCount, pixel->byteCount);
  }
  if (!shape.dualPlane) return true;
  pixel->hasTag = true;
  pixel->tag = QNV_TAG_GRAPHICS;
  ShownBand tags = *top;
  if (tags.groups != nullptr) tags.groups = history_.Complete(*tags.band, true);
  if (const uint8_t* const row = RowOf(tags, true, y); row != nullptr) pixel->tag = row[column];
  return true;
}

}  // namespace qnv::inspector

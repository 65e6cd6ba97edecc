// Images of every form.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "random/calls.h"

namespace qnv::test {
namespace {

struct RandomDib {
  BITMAPINFOHEADER header{};
  std::vector<uint8_t> info;  // header, gap, table or masks
  std::vector<uint8_t> bits;
};

// Masks that occur, and some that do not.
struct Masks {
  uint32_t red, green, blue;  // as they follow the header
};
constexpr Masks kMasks[] = {{0xF800, 0x07E0, 0x001F}, {0x7C00, 0x03E0, 0x001F},    {0x0F00, 0x00F0, 0x000F},
                            {0x001F, 0x07E0, 0xF800}, {0xFF00, 0x00FF, 0},         {0x8000, 0x7FFE, 0x0001},
                            {0xFFFF, 0x0001, 0x0C30}, {0xFFFFF800, 0x07E0, 0x001F}};

// A run-length stream that mostly keeps to its width, ended by codes that stop any reader.
void WriteRle(Numbers& random, RandomDib& dib) {
  const bool fourBits = dib.header.biCompression == BI_RLE4;
  const int width = dib.header.biWidth;
  const int rows = std::abs(dib.header.biHeight);
  std::vector<uint8_t>& out = dib.bits;
  if (random.Percent(25)) {
    out.resize(static_cast<std::size_t>(2 * random.Range(0, 60)));
    random.Fill(out.data(), out.size());
    // Small numbers make codes.
    for (uint8_t& byte : out) {
      if (random.Percent(50)) byte = static_cast<uint8_t>(random.Range(0, 6));
    }
  } else {
    // Some pictures end before they begin.
    for (int y = random.Percent(4) ? rows : 0; y < rows; ++y) {
      for (int x = 0; x < width && !random.Percent(4);) {
        const int room = random.Percent(93) ? width - x : width - x + 5;
        const int pick = random.Range(0, 9);
        if (pick < 5 || room < 3) {
          const int run = random.Range(1, std::min(room, 255));
          out.insert(out.end(), {static_cast<uint8_t>(run), random.Byte()});
          x += run;
        } else if (pick < 9) {
          const int run = random.Range(3, std::min(std::max(room, 3), 255));
          std::size_t bytes = static_cast<std::size_t>(fourBits ? (run + 1) / 2 : run);
          bytes += bytes % 2;
          out.insert(out.end(), {0, static_cast<uint8_t>(run)});
          const std::size_t at = out.size();
          out.resize(at + bytes);
          random.Fill(out.data() + at, bytes);
          x += run;
        } else {
          const int dx = random.Range(0, 5);
          const int dy = random.Percent(50) ? 0 : random.Range(0, 3);
          out.insert(out.end(), {0, 2, static_cast<uint8_t>(dx), static_cast<uint8_t>(dy)});
          x += dx;
          y += dy;
        }
      }
      if (random.Percent(6)) break;
      out.insert(out.end(), {0, 0});
    }
  }
  // No absolute run jumps over so many ends of the bitmap.
  for (int i = 0; i < 300; ++i) out.insert(out.end(), {0, 1});
}

RandomDib MakeDib(RandomCase& run) {
  Numbers& random = run.random();
  const bool sound = run.tame();
  RandomDib dib;
  BITMAPINFOHEADER& header = dib.header;
  random.Fill(reinterpret_cast<uint8_t*>(&header), sizeof header);
  constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32, 8, 4};
  header.biPlanes = 1;
  header.biBitCount = random.Pick(kDepths);
  header.biCompression = BI_RGB;
  if (header.biBitCount == 8 && random.Percent(40)) header.biCompression = BI_RLE8;
  if (header.biBitCount == 4 && random.Percent(40)) header.biCompression = BI_RLE4;
  if (header.biBitCount == 16 && random.Percent(60)) header.biCompression = BI_BITFIELDS;
  if (header.biBitCount == 32 && random.Percent(40)) header.biCompression = BI_BITFIELDS;
  header.biWidth = random.Percent(90) ? random.Range(1, run.MaxWidth(48)) : random.Range(1, 3);
  header.biHeight = random.Percent(90) ? random.Range(1, run.MaxHeight(24)) : random.Range(1, 2);
  if (random.Percent(25)) header.biHeight = -header.biHeight;
  const std::size_t rows = static_cast<std::size_t>(std::abs(header.biHeight));

  const uint32_t full = header.biBitCount <= 8 ? 1u << header.biBitCount : 0;
  header.biClrUsed = random.Percent(60) ? 0
                     : full != 0        ? static_cast<uint32_t>(random.Range(1, static_cast<int>(full) + 2))
                                        : random.Word();
  const uint32_t supplied = header.biClrUsed == 0 ? full : std::min(uint32_t{header.biClrUsed}, full);
  header.biSize = random.Percent(80) ? 40 : static_cast<uint32_t>(random.Range(40, 128));
  dib.info.resize(full != 0 ? header.biSize + 4 * supplied : header.biCompression == BI_BITFIELDS ? 52 : 40);
  random.Fill(dib.info.data(), dib.info.size());
  if (header.biCompression == BI_BITFIELDS) {
    const Masks masks = random.Percent(90) ? random.Pick(kMasks) : Masks{random.Word(), random.Word(), random.Word()};
    std::memcpy(dib.info.data() + 40, &masks, sizeof masks);
  }
  if (header.biCompression == BI_RLE8 || header.biCompression == BI_RLE4) {
    WriteRle(random, dib);
  } else {
    const std::size_t row = (static_cast<std::size_t>(header.biWidth) * header.biBitCount + 7) / 8;
    dib.bits.resize((row + 3) / 4 * 4 * (rows - 1) + row);
    random.Fill(dib.bits.data(), dib.bits.size());
  }

  // Headers to refuse, now that the memory is laid out for a sound one.
  if (!sound && random.Percent(8)) {
    switch (random.Range(0, 5)) {
      case 0: header.biPlanes = static_cast<uint16_t>(random.Range(0, 3) == 1 ? 0 : random.Range(2, 65535)); break;
      case 1: header.biBitCount = static_cast<uint16_t>(random.Percent(50) ? 0 : random.Range(33, 65535)); break;
      case 2: header.biBitCount = 2; break;
      case 3: header.biWidth = random.Percent(50) ? 0 : random.Percent(50) ? -header.biWidth : 32768; break;
      case 4: header.biHeight = random.Percent(50) ? 0 : random.Percent(50) ? 32768 : INT32_MIN; break;
      default: header.biCompression = header.biBitCount == 8 ? BI_RLE4 : BI_RLE8; break;
    }
  }
  std::memcpy(dib.info.data(), &header, sizeof header);
  run.Say("  DIB %d x %d, planes %u, bits %u, compression %u, biSize %u, biClrUsed %u\n", header.biWidth,
          header.biHeight, header.biPlanes, header.biBitCount, header.biCompression, header.biSize, header.biClrUsed);
  return dib;
}

uint32_t RandomImageRop(Numbers& random) {
  const int pick = random.Range(0, 99);
  if (pick < 45) return SRCCOPY;
  if (pick < 57) return ROP_MINIMUM;
  if (pick < 60) return random.Word() | 0x02000000;
  if (pick < 65) return 0x00CC0000;  // a source copy through the row transfer
  constexpr uint32_t kCodes[] = {SRCPAINT, SRCAND,     SRCINVERT, NOTSRCCOPY, MERGECOPY,
                                 PATPAINT, 0x00E20746, PATCOPY,   0x00B8074A};
  return random.Percent(50) ? random.Pick(kCodes) : static_cast<uint32_t>(random.Range(0, 255)) << 16 | 0x20;
}

// Destination and source extents: equal, stretched, shrunk, mirrored, far larger than the band, or odd.
void SetExtents(RandomCase& run, const BITMAPINFOHEADER& header, reference::ImageArgs* args) {
  Numbers& random = run.random();
  const BandRect band = run.CallerBand();
  const int width = std::clamp(int{header.biWidth}, 1, run.MaxWidth(64));
  const int height = std::clamp(std::abs(std::max(int{header.biHeight}, -1000)), 1, 64);
  args->srcWidth = random.Percent(50) ? width : random.Range(-2, width + 6);
  args->srcHeight = random.Percent(50) ? height : random.Range(-2, height + 4);
  args->srcX = random.Percent(60) ? 0 : random.Range(-5, width + 3);
  args->srcY = random.Percent(60) ? 0 : random.Range(-4, height + 2);
  const int pick = random.Range(0, 99);
  if (pick < 30) {
    args->dstWidth = args->srcWidth;
    args->dstHeight = args->srcHeight;
  } else if (pick < 85) {
    args->dstWidth = random.Range(0, run.MaxWidth(70));
    args->dstHeight = random.Range(0, 24);
  } else {
    args->dstWidth = random.Range(1, 1500);
    args->dstHeight = random.Range(1, 800);
  }
  args->dstX = random.Range(band.left - std::max(args->dstWidth, 0) - 3, band.right + 2);
  args->dstY = random.Range(band.top - std::max(args->dstHeight, 0) - 2, band.bottom + 1);
  if (random.Percent(50)) {
    args->dstX = random.Range(band.left - 8, band.left + 8);
    args->dstY = random.Range(band.top - 4, band.top + 4);
  }
  if (run.tame()) {
    args->srcX = 0;
    args->srcY = 0;
    args->srcWidth = width;
    args->srcHeight = height;
    args->dstWidth = run.wide() && random.Percent(50) ? width : random.Range(1, run.MaxWidth(40));
    args->dstHeight = random.Range(1, 16);
    args->dstX = random.Range(band.left - 5, band.left + 5);
    args->dstY = random.Range(band.top - 3, band.top + 2);
  }
  // Source edges are kept to 16 bits, so that a corner 65536 away is the same corner.
  if (random.Percent(1)) {
    args->srcX += 65536 * random.Range(-1, 1);
    args->srcY += 65536 * random.Range(-1, 1);
  }
  // A negative extent runs back from its corner, so the corner usually moves to the other end.
  const auto turn = [&](int32_t* corner, int32_t* extent, int movingShare) {
    if (!random.Percent(15)) return;
    if (movingShare == 100 || random.Percent(movingShare)) *corner += *extent;
    *extent = -*extent;
  };
  turn(&args->srcX, &args->srcWidth, 80);
  turn(&args->srcY, &args->srcHeight, 80);
  turn(&args->dstX, &args->dstWidth, 100);
  turn(&args->dstY, &args->dstHeight, 100);
}

void RunStretch(RandomCase& run, const reference::ImageArgs& args) {
  const uint32_t expected = run.OnModel([&](reference::Model& model) { return model.StretchDIBits(args); });
  const uint32_t got = QNVStretchDIBits(run.handle(), args.get, args.dstX, args.dstY, args.dstWidth, args.dstHeight,
                                        args.srcX, args.srcY, args.srcWidth, args.srcHeight, args.bits, args.bitmapInfo,
                                        nullptr, args.rop, args.brush, args.drawMode, args.clip);
  run.Check(expected, got, 0xFFFF);
}

void StretchCall(RandomCase& run, const RandomDib& dib) {
  Numbers& random = run.random();
  reference::ImageArgs args{};
  args.get = run.tame() || random.Percent(95) ? 0 : random.Range(0, 1) == 0 ? 1 : 0x30002;
  SetExtents(run, dib.header, &args);
  args.rop = RandomImageRop(random);
  run.Say("  get %u, dest %d, %d, %d x %d, source %d, %d, %d x %d, rop 0x%08X\n", args.get, args.dstX, args.dstY,
          args.dstWidth, args.dstHeight, args.srcX, args.srcY, args.srcWidth, args.srcHeight, args.rop);
  args.bits = run.GiveMostly(96, "DIB bits", dib.bits);
  args.bitmapInfo = run.GiveMostly(96, "header and table", dib.info);
  args.brush = GiveBrush(run);
  args.drawMode = GiveDrawMode(run);
  args.clip = GiveClip(run);
  RunStretch(run, args);
}

void SetToDeviceCall(RandomCase& run, const RandomDib& dib) {
  Numbers& random = run.random();
  const BandRect band = run.CallerBand();
  int x = random.Range(band.left - 20, band.right + 2);
  int y = random.Range(band.top - 10, band.bottom + 2);
  const int height = std::clamp(int{dib.header.biHeight}, -64, 64);
  if (run.tame()) {
    x = random.Range(band.left - 8, band.left + 8);
    y = random.Range(band.top - 3, band.top + 3);
  }
  const uint32_t start = static_cast<uint32_t>(random.Percent(60) ? 0 : random.Range(0, 10));
  const uint32_t scans = static_cast<uint32_t>(random.Percent(60) ? std::abs(height) : random.Range(0, 26));
  run.Say("  at %d, %d, start %u, scans %u\n", x, y, start, scans);
  run.SayBytes("DIB bits", dib.bits);
  run.SayBytes("header and table", dib.info);
  const void* bits = run.GiveBytes(dib.bits);
  const void* info = random.Percent(98) ? run.GiveBytes(dib.info) : nullptr;
  const DRAWMODE* mode = GiveDrawMode(run);
  const BandRect* clip = GiveClip(run);
  const uint32_t expected = run.OnModel(
      [&](reference::Model& model) { return model.SetDIBitsToDevice(x, y, start, scans, clip, mode, bits, info); });
  const uint32_t got = QNVDevSetDIBitsToDevice(run.handle(), x, y, start, scans, clip, mode, bits, info, nullptr);
  run.Check(expected, got, 0xFFFF);
}

}  // namespace

void ImageCall(RandomCase& run) {
  const bool stretch = run.random().Percent(85);
  run.BeginCall(stretch ? "QNVStretchDIBits" : "QNVDevSetDIBitsToDevice");
  const RandomDib dib = MakeDib(run);
  if (stretch) {
    StretchCall(run, dib);
  } else {
    SetToDeviceCall(run, dib);
  }
}

void TagOnePixel(RandomCase& run) {
  run.BeginCall("QNVStretchDIBits");
  const BandRect band = run.CallerBand();
  const BITMAPINFOHEADER header{40, 1, 1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  reference::ImageArgs args{};
  args.dstX = band.left;
  args.dstY = band.top;
  args.dstWidth = args.dstHeight = args.srcWidth = args.srcHeight = 1;
  args.rop = SRCCOPY;
  args.bitmapInfo = run.Give(header);
  args.bits = run.GiveBytes({1, 2, 3});
  run.Say("  one pixel at %d, %d\n", args.dstX, args.dstY);
  args.clip = run.Give(BandRect{-20000, -20000, 20000, 20000});
  RunStretch(run, args);
}

}  // namespace qnv::test

// Fuzz target: run-length codes of both depths, scaled, mirrored and clipped. Zeros follow the codes, as the interface
// asks.
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using qnv::fuzz::Block;
  qnv::fuzz::Input input(data, size);
  const qnv::fuzz::FuzzDevice device(input);
  const bool fourBits = (input.Byte() & 1) != 0;
  BITMAPINFOHEADER header;
  std::memset(&header, 0, sizeof header);
  header.biSize = sizeof header;
  header.biWidth = 1 + input.Byte();
  const int32_t rows = 1 + input.Byte() % 64;
  header.biHeight = input.Byte() & 1 ? -rows : rows;
  header.biPlanes = 1;
  header.biBitCount = fourBits ? 4 : 8;
  header.biCompression = fourBits ? BI_RLE4 : BI_RLE8;
  std::vector<uint8_t> infoBytes(sizeof header + (fourBits ? 16u : 256u) * 4, 0x77);
  std::memcpy(infoBytes.data(), &header, sizeof header);
  const Block info(infoBytes);
  int32_t place[8];
  for (int32_t& value : place) value = input.Coordinate();
  const BandRect clip{-1000, -1000, 1000, 1000};
  const Block bits(qnv::fuzz::TerminatedCodes(input.Rest(), static_cast<uint32_t>(rows)));
  QNVStretchDIBits(device.handle(), 0, place[0], place[1], place[2], place[3], place[4], place[5], place[6], place[7],
                   bits.data(), info.data(), nullptr, SRCCOPY, nullptr, nullptr, &clip);
  return 0;
}

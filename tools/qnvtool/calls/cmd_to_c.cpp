// `qnvtool to-c`: a C program that makes the calls of a file, for a report of a defect.
#include <fmt/core.h>

#include <cstdio>
#include <memory>
#include <set>

#include "calls/memory_reads.h"
#include "calls/player.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{4} << 20;  // of memory that becomes text, four characters a byte

const char kHead[] = R"(/* Makes recorded calls. Compile with the library's header and link with the library:
 *
 *   cc -I include calls.c -lqnvdrv10
 *
 * Tells each result that differs from the recorded one, writes each band before the call that ends it to band-DEVICE-CALL.pnm, and
 * returns 1 if a result differed.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qnvdrv10.h"

static int failed;

static void expect(int call, unsigned long got, unsigned long expected) {
  if (got == expected) return;
  printf("call %d: the result is 0x%lX, when it was recorded 0x%lX\n", call, got, expected);
  failed = 1;
}

/* Rows of `pixel_bytes` a pixel: blue, green, red, or gray. */
static void write_band(const char *name, const unsigned char *band, int width, int height, int stride, int pixel_bytes) {
  FILE *file = fopen(name, "wb");
  int x, y;
  if (file == NULL) exit(2);
  fprintf(file, "P%d\n%d %d\n255\n", pixel_bytes == 3 ? 6 : 5, width, height);
  for (y = 0; y < height; ++y) {
    for (x = 0; x < width; ++x) {
      const unsigned char *pixel = band + (size_t)y * stride + (size_t)x * pixel_bytes;
      if (pixel_bytes == 3) fputc(pixel[2], file), fputc(pixel[1], file);
      fputc(pixel[0], file);
    }
  }
  fclose(file);
}

)";

class CProgram {
 public:
  CProgram(const calls::CallFile& file, std::FILE* out) : file_(file), out_(out) {}

  void Write(const calls::Functions& functions, const std::string& path) {
    CountBytes(path);
    calls::Player player(file_, functions);
    calls::Player::Watcher watcher;
    // The player knows how large bands are; the contents of bands are written between the calls.
    std::size_t nextItem = 0;
    const auto bandsBefore = [&](std::size_t call) {
      for (; nextItem < file_.Items().size(); ++nextItem) {
        const calls::FileItem& item = file_.Items()[nextItem];
        if (&item == &file_.CallItem(call)) {
          ++nextItem;
          return;
        }
        calls::StoredBand band;
        if (item.kind != calls::ItemKind::kBand || !file_.DecodeBand(item, &band)) continue;
        DefineBlob(band.blob);
        body_ += fmt::format("  memcpy({}{}, blob{}, sizeof blob{});\n", band.plane == 0 ? "band" : "tags", band.device,
                             band.blob, band.blob);
      }
    };
    watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots&) {
      bandsBefore(call);
      if (stored.function != calls::Function::kEnable) EndBand(player, call, stored);
      if (stored.function != calls::Function::kEnable) AddCall(call, stored);
      return true;
    };
    watcher.after = [&](const calls::Player::MadeCall& made) {
      if (made.stored.function != calls::Function::kEnable) return true;
      if (made.stored.result != 0) {
        const calls::PlayedDevice* const device = player.Device(made.stored.result);
        if (device == nullptr) throw ToolError(ExitCode::kLibrary, "the library refuses a device of the file");
        const uint32_t number = made.stored.result;
        definitions_ += fmt::format("static DeviceHandle *device{};\n", number);
        const auto plane = [&](const char* name, const calls::GuardedPlane& bytes) {
          if (bytes.empty()) return;
          definitions_ += fmt::format("static unsigned char {}{}[{}];\n", name, number, bytes.size());
        };
        plane("band", device->band);
        plane("tags", device->tags);
      }
      AddCall(made.call, made.stored);
      return true;
    };
    Completed(player.Play({.compare = false}, watcher), path);
    fmt::print(out_, "{}{}\nint main(void) {{\n", kHead, definitions_);
    for (const std::string& setUp : setUps_) fmt::print(out_, "{}", setUp);
    fmt::print(out_, "{}  return failed;\n}}\n", body_);
  }

 private:
  void CountBytes(const std::string& path) const {
    std::size_t bytes = 0;
    for (uint32_t i = 1; i <= file_.BlobCount(); ++i) bytes += file_.Blob(i).bytes;
    if (bytes > kMaxBytes) {
      throw ToolError(ExitCode::kUsage,
                      fmt::format("{}: {} bytes are too many for a program; trim the file first", path, bytes));
    }
  }

  void DefineBlob(uint32_t number) {
    if (!blobs_.insert(number).second) return;
    const calls::BlobView& blob = file_.Blob(number);
    definitions_ +=
        fmt::format("static const unsigned char blob{}[{}] = {{", number, std::max<std::size_t>(blob.bytes, 1));
    for (std::size_t i = 0; i < blob.bytes; ++i) {
      definitions_ += fmt::format("{}{}{}", i == 0 ? "" : ",", i % 24 == 0 ? "\n  " : "", blob.data[i]);
    }
    definitions_ += blob.bytes == 0 ? "0};\n" : "};\n";
  }

  // Memory of pieces, put together when the program starts.
  std::string ImageName(uint32_t image) {
    const uint32_t root = file_.Image(image).root;
    std::string name = fmt::format("image{}", root);
    if (!images_.insert(root).second) return name;
    int64_t end = 1;
    std::string setUp;
    for (uint32_t i = root; i <= file_.ImageCount(); ++i) {
      const calls::StoredImage& part = file_.Image(i);
      if (part.root != root) continue;
      for (std::size_t p = 0; p < part.pieces; ++p) {
        const calls::StoredPiece& piece = file_.Piece(part.firstPiece + p);
        DefineBlob(piece.blob);
        end = std::max(end, piece.offset + static_cast<int64_t>(file_.Blob(piece.blob).bytes));
        setUp += fmt::format("  memcpy({} + {}, blob{}, {});\n", name, piece.offset, piece.blob,
                             file_.Blob(piece.blob).bytes);
      }
    }
    if (end > int64_t{64} << 20) throw ToolError(ExitCode::kBadInput, "a font is too large for a program");
    definitions_ += fmt::format("static unsigned char {}[{}];\n", name, end);
    setUps_.push_back(setUp);
    return name;
  }

  std::string RowsName(const calls::StoredPointer& pointer) {
    std::string name = fmt::format("rows{}_{}_{}", pointer.number, pointer.rowBytes, pointer.stride);
    if (!rows_.insert(name).second) return name;
    DefineBlob(pointer.number);
    const uint64_t rows = file_.Blob(pointer.number).bytes / pointer.rowBytes;
    definitions_ += fmt::format("static unsigned char {}[{}];\n", name, rows * pointer.stride);
    setUps_.push_back(
        fmt::format("  {{\n    int row;\n    for (row = 0; row < {0}; ++row) memcpy({1} + row * {2}, blob{3} + "
                    "row * {4}, {4});\n  }}\n",
                    rows, name, pointer.stride, pointer.number, pointer.rowBytes));
    return name;
  }

  // An expression; `distance` is that from the pointer to the memory.
  static std::string Moved(const std::string& name, int64_t distance) {
    return distance == 0 ? name : fmt::format("({} - {})", name, distance);
  }

  std::string PointerText(const calls::StoredPointer& pointer) {
    switch (pointer.tag) {
      case calls::PointerTag::kNull: return "NULL";
      case calls::PointerTag::kUnread: return "output";
      case calls::PointerTag::kBlob:
        DefineBlob(pointer.number);
        return Moved(fmt::format("blob{}", pointer.number), pointer.first);
      case calls::PointerTag::kImage: return ImageName(pointer.number);
      case calls::PointerTag::kRows: return Moved(RowsName(pointer), pointer.first);
      case calls::PointerTag::kRecord: break;
    }
    return "NULL";
  }

  // Declares a source bitmap in the block of the call.
  std::string SourceText(uint32_t record, const calls::StoredPointer& bits, std::string* block) {
    calls::SourceFields f{};
    const calls::BlobView& blob = file_.Blob(record);
    if (blob.bytes == sizeof f) std::memcpy(&f, blob.data, sizeof f);
    *block += fmt::format("    const SourceBitmap source = {{{}, {}, {}, {}, {}, {}, {}}};\n", f.type, f.width,
                          f.height, f.widthBytes, f.planes, f.bitsPixel, PointerText(bits));
    return "&source";
  }

  std::string ArgumentText(const calls::StoredCall& call, std::size_t i, std::string* block) {
    const calls::Argument& argument = calls::EntryPointOf(call.function).arguments[i];
    const calls::StoredArgument& stored = call.arguments[i];
    switch (argument.type) {
      case calls::Type::kHandle:
        if (stored.number >= 2) return fmt::format("device{}", stored.number - 1);
        return stored.number == 0 ? "NULL" : "(DeviceHandle *)no_handle";
      case calls::Type::kInt32:
        // The smallest number has no literal.
        if (stored.number == 0x80000000u) return "(-2147483647 - 1)";
        return fmt::format("{}", static_cast<int32_t>(stored.number));
      case calls::Type::kUint32: return fmt::format("0x{:X}u", stored.number);
      default: break;
    }
    const bool isNull = stored.pointer.tag == calls::PointerTag::kNull;
    if (argument.memory == calls::Memory::kBand || argument.memory == calls::Memory::kTagPlane) {
      if (isNull) return "NULL";
      if (call.result == 0) return "output";
      return fmt::format("{}{}", argument.memory == calls::Memory::kBand ? "band" : "tags", call.result);
    }
    std::string text;
    if (!stored.isRecord) {
      text = PointerText(stored.pointer);
      if (argument.memory == calls::Memory::kTextDrawMode && text != "NULL" && text != "output") {
        // A measuring call writes into it.
        *block += fmt::format("    DRAWMODE mode;\n    memcpy(&mode, {}, sizeof mode);\n", text);
        return "&mode";
      }
    } else if (argument.memory == calls::Memory::kSource) {
      return SourceText(stored.record, stored.pointer, block);
    } else {
      const calls::BlobView& blob = file_.Blob(stored.record);
      if (blob.bytes != 12) return "NULL";
      std::string color = fmt::format("0x{:X}u", calls::GetLittle<uint32_t>(blob.data + 2));
      if (stored.isNestedRecord) color = "(uintptr_t)" + SourceText(stored.nestedRecord, stored.pointer, block);
      *block += fmt::format(
          "    const LogicalBrush brush = {{{}, {}, {}, 0x{:X}u}};\n", calls::GetLittle<uint16_t>(blob.data), color,
          static_cast<int16_t>(calls::GetLittle<uint16_t>(blob.data + 6)), calls::GetLittle<uint32_t>(blob.data + 8));
      return "&brush";
    }
    return text == "NULL" ? text : fmt::format("(void *){}", text);
  }

  // Where the recorder took a checksum of the band, the program writes it.
  void EndBand(const calls::Player& player, std::size_t number, const calls::StoredCall& call) {
    if ((call.flags & calls::kHasBandBefore) == 0) return;
    const calls::PlayedDevice* const device = player.Device(call.Device());
    if (device == nullptr || device->band.empty()) return;
    const auto& description = device->shape.description;
    body_ += fmt::format("  write_band(\"band-{0}-{1}.pnm\", band{0}, {2}, {3}, {4}, {5});\n", call.Device(), number,
                         uint32_t{description.width}, uint32_t{description.height}, device->shape.Stride(),
                         device->shape.PixelBytes());
  }

  void AddCall(std::size_t number, const calls::StoredCall& call) {
    const calls::EntryPoint& entry = calls::EntryPointOf(call.function);
    std::string block, arguments;
    for (std::size_t i = 0; i < entry.argumentCount; ++i) {
      arguments += (i == 0 ? "" : ", ") + ArgumentText(call, i, &block);
    }
    const std::string text = fmt::format("{}({})", entry.name, arguments);
    const bool badHandle = entry.arguments[0].type == calls::Type::kHandle && call.Device() == 0;
    std::string line;
    switch (entry.result) {
      case calls::Result::kNothing: line = text + ";"; break;
      case calls::Result::kHandle:
        line = call.result == 0 ? fmt::format("expect({}, {} != NULL, 0);", number, text)
                                : fmt::format("device{} = {};", call.result, text);
        break;
      default: {
        const uint32_t mask = entry.result == calls::Result::kLow16 || badHandle ? 0xFFFF : UINT32_MAX;
        line = fmt::format("expect({}, {} & 0x{:X}u, 0x{:X}u);", number, text, mask, call.result & mask);
      }
    }
    body_ += block.empty() ? fmt::format("  {}\n", line) : fmt::format("  {{\n{}    {}\n  }}\n", block, line);
  }

  const calls::CallFile& file_;
  std::FILE* out_;
  std::string definitions_ =
      "/* Memory that calls write, or do not read. */\n"
      "static unsigned char output[268];\nstatic unsigned short no_handle[2];\n";
  std::string body_ = "  (void)output, (void)no_handle;\n";
  std::vector<std::string> setUps_;
  std::set<uint32_t> blobs_, images_;
  std::set<std::string> rows_;
};

}  // namespace

Command ToCCommand(const CallParts& parts) {
  struct Arguments {
    std::string file, out;
  };
  auto arguments = std::make_shared<Arguments>();
  Command command{.name = "to-c",
                  .summary = "Write a C program that makes the calls of a call file",
                  .footer = "For reports of defects; trim the file first.\n",
                  .options = {},
                  .run = {}};
  command.options = {CallFileArgument(&arguments->file),
                     {.names = "-o,--out",
                      .placeholder = "FILE.c",
                      .help = "Program to write",
                      .value = Text{&arguments->out},
                      .required = true,
                      .fileTypes = "c"}};
  command.run = [arguments, parts] {
    const calls::CallFile file = ReadCallFile(arguments->file);
    const CalledLibrary library = OpenCalledLibrary("", parts);
    OutputFile out(arguments->out);
    CProgram(file, out.get()).Write(library.functions, arguments->file);
    out.Close();
  };
  return command;
}

}  // namespace qnv::tool

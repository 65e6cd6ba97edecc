// Call files that are cut off, damaged or newer: an error with its place, never a crash.
#include <gtest/gtest.h>

#include <cstring>

#include "calls/hash.h"
#include "calls/recording.h"

namespace qnv::test {
namespace {

using calls::CallFile;
using calls::FileError;

calls::Bytes SmallFile() {
  static const calls::Bytes bytes = [] {
    // Every call is a block of its own.
    return RecordSamplePage("small", {QNV_KIND_RASTER, 8, 300, 61, 24, 300}, false, {false, true});
  }();
  return bytes;
}

// Offsets of the blocks, and how many calls are complete at each.
struct Blocks {
  std::vector<std::size_t> ends;
  std::vector<std::size_t> calls;
};

Blocks BlocksOf(const calls::Bytes& bytes) {
  CallFile file;
  EXPECT_EQ(CallFile::Read(bytes.data(), bytes.size(), &file).error, FileError::kNone);
  Blocks blocks;
  std::size_t at = calls::kFileHeaderBytes;
  while (std::memcmp(bytes.data() + at, calls::kBlockMagic, 4) == 0 && bytes[at + 4] == 1) {
    std::size_t complete = 0;
    for (std::size_t i = 0; i < file.CallCount(); ++i) complete += file.CallItem(i).blockOffset <= at;
    at += calls::kBlockHeaderBytes + calls::GetLittle<uint32_t>(bytes.data() + at + 8);
    blocks.ends.push_back(at);
    blocks.calls.push_back(complete);
  }
  return blocks;
}

TEST(CallFile, CutOffAnywhereKeepsWhatIsComplete) {
  const calls::Bytes bytes = SmallFile();
  const Blocks blocks = BlocksOf(bytes);
  ASSERT_GT(blocks.ends.size(), 40u);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    CallFile file;
    // A copy of just this size, so that reading beyond it is noticed.
    const calls::Bytes part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    const CallFile::Status status = CallFile::Read(part.data(), part.size(), &file);
    ASSERT_EQ(status.error, FileError::kTruncated) << size;
    ASSERT_EQ(status.offset, size);
    std::size_t expected = 0;
    for (std::size_t i = 0; i < blocks.ends.size() && blocks.ends[i] <= size; ++i) expected = blocks.calls[i];
    ASSERT_EQ(file.CallCount(), expected) << size;
  }
}

TEST(CallFile, DamagedAnywhereIsNoticed) {
  const calls::Bytes bytes = SmallFile();
  std::size_t truncated = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    calls::Bytes damaged = bytes;
    damaged[at] ^= 0x41;
    CallFile file;
    const CallFile::Status status = CallFile::Read(damaged.data(), damaged.size(), &file);
    // Of the footer only the magic is looked at; its offset is for readers that begin at the end.
    if (at >= bytes.size() - calls::kFooterBytes && at < bytes.size() - 8) continue;
    ASSERT_NE(status.error, FileError::kNone) << at;
    ASSERT_FALSE(status.message.empty());
    // A block that claims to be longer may reach behind the end.
    truncated += status.error == FileError::kTruncated;
  }
  EXPECT_LT(truncated, bytes.size() / 20);
}

TEST(CallFile, NamesThePlaceOfADefect) {
  const calls::Bytes bytes = SmallFile();
  const Blocks blocks = BlocksOf(bytes);
  const std::size_t second = blocks.ends[0];
  const auto seal = [](calls::Bytes& b, std::size_t block) {
    const uint32_t stored = calls::GetLittle<uint32_t>(b.data() + block + 8);
    calls::PutLittle(b.data() + block + 16,
                     calls::Hash64(b.data() + block + 24, stored, calls::Hash64(b.data() + block, 16)));
  };
  const auto sealHeader = [](calls::Bytes& b) { calls::PutLittle(b.data() + 16, calls::Hash64(b.data(), 16)); };
  const struct {
    const char* name;
    std::function<void(calls::Bytes&)> change;
    FileError error;
    uint64_t offset;
    const char* message;
  } cases[] = {
      {"no call file", [](calls::Bytes& b) { b[0] = 'X'; }, FileError::kDamaged, 0, "this is no call file"},
      {"a newer version",
       [&](calls::Bytes& b) {
         b[8] = 2;
         sealHeader(b);
       },
       FileError::kNewer, 8, "version 2 is newer than 1"},
      {"version 0",
       [&](calls::Bytes& b) {
         b[8] = 0;
         sealHeader(b);
       },
       FileError::kDamaged, 8, "the header is damaged"},
      {"another pointer size than was sealed", [](calls::Bytes& b) { b[12] ^= 12; }, FileError::kDamaged, 8,
       "the header is damaged"},
      {"no block", [&](calls::Bytes& b) { b[second] = 'X'; }, FileError::kDamaged, second, "a block is expected here"},
      {"a huge block",
       [&](calls::Bytes& b) {
         b[second + 15] = 0xFF;
         seal(b, second);
       },
       FileError::kDamaged, second + 8, "a block claims to have"},
      {"a bit of a block", [&](calls::Bytes& b) { b[second + 30] ^= 1; }, FileError::kDamaged, second,
       "the checksum of the block does not fit"},
      {"an unknown compression",
       [&](calls::Bytes& b) {
         b[second + 5] = 9;
         seal(b, second);
       },
       FileError::kNewer, second + 5, "compression 9 is not known"},
      {"an unknown kind of block",
       [&](calls::Bytes& b) {
         b[second + 4] = 9;
         seal(b, second);
       },
       FileError::kNewer, second + 4, "blocks of kind 9 are not known"},
      {"another size than was compressed",
       [&](calls::Bytes& b) {
         ++b[second + 12];
         seal(b, second);
       },
       FileError::kDamaged, second + 24, "the block cannot be decompressed"},
      {"the footer", [](calls::Bytes& b) { b.back() = 'x'; }, FileError::kDamaged, bytes.size() - 16,
       "the footer is damaged"},
      {"bytes behind the footer", [](calls::Bytes& b) { b.push_back(0); }, FileError::kDamaged, bytes.size(),
       "something follows the footer"},
  };
  for (const auto& c : cases) {
    calls::Bytes changed = bytes;
    c.change(changed);
    CallFile file;
    const CallFile::Status status = CallFile::Read(changed.data(), changed.size(), &file);
    EXPECT_EQ(status.error, c.error) << c.name;
    EXPECT_EQ(status.offset, c.offset) << c.name;
    EXPECT_EQ(status.message.substr(0, std::strlen(c.message)), c.message) << c.name;
    EXPECT_EQ(file.CallCount(), 0u) << c.name;
  }
}

// A file of one stored block with these items, and no index.
calls::Bytes FileOfItems(const calls::Bytes& items) {
  calls::Bytes bytes(calls::kFileMagic, calls::kFileMagic + 8);
  calls::AppendLittle(bytes, uint32_t{1});
  bytes.insert(bytes.end(), {8, 1, 0, 0});
  calls::AppendLittle(bytes, calls::Hash64(bytes.data(), 16));
  const std::size_t block = bytes.size();
  bytes.insert(bytes.end(), {'Q', 'B', 'L', 'K', 1, 0, 0, 0});
  calls::AppendLittle(bytes, static_cast<uint32_t>(items.size()));
  calls::AppendLittle(bytes, static_cast<uint32_t>(items.size()));
  const uint64_t seed = calls::Hash64(bytes.data() + block, 16);
  calls::AppendLittle(bytes, calls::Hash64(items.data(), items.size(), seed));
  bytes.insert(bytes.end(), items.begin(), items.end());
  return bytes;
}

TEST(CallFile, ItemsThatCannotBeReadAreNamed) {
  const struct {
    const char* name;
    calls::Bytes items;
    FileError error;
    const char* message;
  } cases[] = {
      {"an item longer than its block",
       {1, 9, 0},
       FileError::kDamaged,
       "block at 24, item at byte 0: it is longer than the block"},
      {"an unknown kind", {1, 1, 7, 99, 0}, FileError::kNewer, "block at 24, item at byte 3: its kind is not known"},
      {"an unknown function",
       {4, 3, 13, 1, 0},
       FileError::kDamaged,
       "block at 24, item at byte 0: this call cannot be read"},
      {"a call that ends early",
       {4, 3, 1, 1, 0},
       FileError::kDamaged,
       "block at 24, item at byte 0: this call cannot be read"},
      {"a device that does not exist",
       {4, 6, 1, 1, 2, 0, 0, 0},
       FileError::kDamaged,
       "block at 24, item at byte 0: this call cannot be read"},
      {"a blob that does not exist",
       {4, 9, 2, 1, 2, 1, 0, 0, 0, 0, 0},
       FileError::kDamaged,
       "block at 24, item at byte 0: this call cannot be read"},
      {"an image that is its own parent",
       {2, 2, 1, 0},
       FileError::kDamaged,
       "block at 24, item at byte 0: this image cannot be read"},
      {"contents of a band without device",
       {1, 1, 7, 3, 3, 1, 0, 1},
       FileError::kDamaged,
       "block at 24, item at byte 3: these contents of a band cannot be read"},
      {"a note longer than itself",
       {5, 1, 7},
       FileError::kDamaged,
       "block at 24, item at byte 0: this note cannot be read"},
      // Nothing is wrong with these but the missing index.
      {"an optional item", {128, 2, 1, 2}, FileError::kTruncated, "the file ends without an index"},
      {"a call with a null handle", {4, 6, 1, 1, 0, 0, 0, 0}, FileError::kTruncated, "the file ends without an index"},
  };
  for (const auto& c : cases) {
    const calls::Bytes bytes = FileOfItems(c.items);
    CallFile file;
    const CallFile::Status status = CallFile::Read(bytes.data(), bytes.size(), &file);
    EXPECT_EQ(status.error, c.error) << c.name;
    EXPECT_EQ(status.message, c.message) << c.name;
  }
}

TEST(CallFile, HoldsEqualMemoryOnce) {
  const calls::Bytes bytes =
      RecordSamplePage("once", {QNV_KIND_RASTER, 24, 300, 61, 24, 300}, false, calls::CaptureOptions{});
  CallFile file;
  ASSERT_EQ(CallFile::Read(bytes.data(), bytes.size(), &file).error, FileError::kNone);
  std::set<std::string> contents;
  for (uint32_t i = 1; i <= file.BlobCount(); ++i) {
    const calls::BlobView& blob = file.Blob(i);
    EXPECT_TRUE(contents.emplace(blob.data, blob.data + blob.bytes).second) << "blob " << i;
  }
  EXPECT_EQ(file.PointerBytes(), sizeof(void*));
  EXPECT_EQ(file.DeviceCount(), 1u);
  EXPECT_EQ(file.CallCount(), 71u);
}

// What a call names, as bytes: blobs, and the pieces of images.
calls::Bytes NamedBy(const CallFile& file, std::size_t number) {
  calls::Bytes bytes;
  const auto add = [&](uint32_t blob) {
    const calls::BlobView& view = file.Blob(blob);
    calls::AppendNumber(bytes, view.bytes);
    bytes.insert(bytes.end(), view.data, view.data + view.bytes);
  };
  calls::StoredCall call;
  EXPECT_TRUE(file.DecodeCall(file.CallItem(number), &call));
  add(call.output);
  for (std::size_t i = 0; i < calls::EntryPointOf(call.function).argumentCount; ++i) {
    const calls::StoredArgument& argument = call.arguments[i];
    if (argument.isRecord) add(argument.record);
    if (argument.isNestedRecord) add(argument.nestedRecord);
    if (argument.pointer.tag == calls::PointerTag::kBlob || argument.pointer.tag == calls::PointerTag::kRows) {
      add(argument.pointer.number);
    }
    if (argument.pointer.tag != calls::PointerTag::kImage) continue;
    for (uint32_t image = argument.pointer.number; image != 0; image = file.Image(image).parent) {
      for (std::size_t k = 0; k < file.Image(image).pieces; ++k) {
        const calls::StoredPiece& piece = file.Piece(file.Image(image).firstPiece + k);
        calls::AppendNumber(bytes, static_cast<uint64_t>(piece.offset));
        add(piece.blob);
      }
    }
  }
  return bytes;
}

TEST(CallFilePart, HoldsWhatItsCallsName) {
  const calls::Bytes page = ReadAll(QNV_TEST_SOURCE_DIR "/calls/pages/dual.qnv");
  for (const calls::Bytes& bytes : {SmallFile(), page}) {
    CallFile whole;
    ASSERT_EQ(CallFile::Read(bytes.data(), bytes.size(), &whole).error, FileError::kNone);
    const std::size_t calls = whole.CallCount();
    const std::pair<std::size_t, std::size_t> ranges[] = {{0, 1},         {0, calls},   {calls / 2, 7}, {calls - 1, 1},
                                                          {calls - 1, 9}, {calls, 5},   {calls + 3, 5}, {3, 0},
                                                          {5, SIZE_MAX},  {SIZE_MAX, 1}};
    for (const auto& [first, count] : ranges) {
      calls::FileBytes memory(bytes.data(), bytes.size());
      CallFile part;
      const CallFile::Status status = CallFile::ReadPart(memory, first, count, &part);
      ASSERT_EQ(status.error, FileError::kNone) << status.message;
      EXPECT_EQ(part.FirstCall(), std::min(first, calls));
      EXPECT_EQ(part.CallCount(), std::min(count, calls - std::min(first, calls))) << first << ", " << count;
      for (std::size_t i = part.FirstCall(); i < part.EndCall(); ++i) {
        ASSERT_EQ(part.CallItem(i).bytes, whole.CallItem(i).bytes) << i;
        ASSERT_EQ(std::memcmp(part.CallItem(i).payload, whole.CallItem(i).payload, part.CallItem(i).bytes), 0) << i;
        ASSERT_EQ(NamedBy(part, i), NamedBy(whole, i)) << i;
      }
    }
  }
}

TEST(CallFilePart, ReadsOnlyTheBlocksItNeeds) {
  calls::Bytes bytes = SmallFile();
  const Blocks blocks = BlocksOf(bytes);
  // A block in the middle is damaged: calls before it are read, those in it and those that name it are not.
  const std::size_t damaged = blocks.ends.size() / 2;
  bytes[blocks.ends[damaged] - 1] ^= 1;
  std::size_t readable = 0, refused = 0;
  for (std::size_t call = 0; call < blocks.calls.back(); ++call) {
    calls::FileBytes memory(bytes.data(), bytes.size());
    CallFile part;
    const CallFile::Status status = CallFile::ReadPart(memory, call, 1, &part);
    if (status.error == FileError::kNone) {
      EXPECT_EQ(part.CallCount(), 1u) << call;
      ++readable;
      continue;
    }
    EXPECT_EQ(status.error, FileError::kDamaged) << call;
    EXPECT_EQ(status.offset, blocks.ends[damaged - 1]) << call;
    EXPECT_EQ(part.CallCount(), 0u) << call;
    ++refused;
  }
  EXPECT_EQ(readable + refused, blocks.calls.back());
  EXPECT_GE(readable, blocks.calls[damaged - 1]);
  EXPECT_GE(refused, 1u);
}

TEST(CallFilePart, NeedsAnIndexThatFits) {
  const calls::Bytes bytes = SmallFile();
  const auto read = [](const calls::Bytes& file) {
    calls::FileBytes memory(file.data(), file.size());
    CallFile part;
    return CallFile::ReadPart(memory, 2, 3, &part);
  };
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const calls::Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    ASSERT_EQ(read(cut).error, FileError::kTruncated) << size;
  }
  // Another place of the index, and another index with a good checksum.
  calls::Bytes moved = bytes;
  moved[moved.size() - calls::kFooterBytes] ^= 1;
  EXPECT_EQ(read(moved).error, FileError::kDamaged);
  const std::size_t index = BlocksOf(bytes).ends.back();
  for (std::size_t at = index + calls::kBlockHeaderBytes; at < bytes.size() - calls::kFooterBytes; ++at) {
    calls::Bytes changed = bytes;
    changed[at] ^= 1;
    EXPECT_EQ(read(changed).message, "the checksum of the block does not fit") << at;
    calls::PutLittle(changed.data() + index + 16,
                     calls::Hash64(changed.data() + index + calls::kBlockHeaderBytes,
                                   changed.size() - calls::kFooterBytes - index - calls::kBlockHeaderBytes,
                                   calls::Hash64(changed.data() + index, 16)));
    // Some of the numbers are not needed for these calls; none of them may do harm.
    const CallFile::Status status = read(changed);
    EXPECT_TRUE(status.error == FileError::kNone || status.error == FileError::kDamaged) << at;
  }
}

TEST(CallFilePart, IsReadFromDisk) {
  const std::string path = ResultPath("part");
  std::FILE* const out = std::fopen(path.c_str(), "wb");
  const calls::Bytes bytes = SmallFile();
  ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), out), bytes.size());
  std::fclose(out);
  {
    calls::FileBytes disk(path);
    ASSERT_TRUE(disk.IsOpen());
    CallFile part;
    EXPECT_EQ(CallFile::ReadPart(disk, 4, 2, &part).error, FileError::kNone);
    EXPECT_EQ(part.CallCount(), 2u);
  }
  std::remove(path.c_str());
  EXPECT_FALSE(calls::FileBytes(path).IsOpen());
}

}  // namespace
}  // namespace qnv::test

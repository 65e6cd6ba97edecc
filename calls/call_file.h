// A call file in memory, checked: every item can be decoded, and names only blobs and images that came before it. What
// the numbers mean to the library is not checked here; the player does that before each call.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calls/encoding.h"
#include "calls/entry_points.h"
#include "calls/file_bytes.h"
#include "calls/file_format.h"

namespace qnv::calls {

struct BlobView {
  const uint8_t* data = nullptr;
  std::size_t bytes = 0;
};

// A pointer argument as it is stored.
struct StoredPointer {
  PointerTag tag = PointerTag::kNull;
  uint32_t number = 0;  // of the blob or image
  int64_t first = 0;    // distance from the pointer to the first byte
  uint64_t rowBytes = 0, stride = 0;
};

// An argument. Numbers: their 32 bits. Handles: 0 null, 1 bad, from 2 on the number of the device plus 1.
struct StoredArgument {
  uint32_t number = 0;
  StoredPointer pointer;
  // The records of a logical brush, of a source bitmap, and the pixels: pointer leads to record, and so on.
  bool isRecord = false;
  uint32_t record = 0;  // blob of a logical brush, or of a source bitmap
  bool isNestedRecord = false;
  uint32_t nestedRecord = 0;  // blob of the source bitmap behind a logical brush
};

struct StoredCall {  // of the arguments, only as many as the function has are meant
  Function function = Function::kEnable;
  uint32_t thread = 0;
  StoredArgument arguments[kMaxArguments];
  uint32_t flags = 0;
  uint32_t result = 0;  // of QNVEnable: the number of the new device, 0 for none
  uint64_t nanoseconds = 0;
  uint32_t output = 0;  // blob
  uint64_t bandBefore = 0, tagsBefore = 0, bandAfter = 0, tagsAfter = 0;

  // The device that the call was made for; 0 for none and for bad handles.
  uint32_t Device() const;
};

// The contents of a band or tag plane before the next call.
struct StoredBand {
  uint32_t device = 0, plane = 0, blob = 0;
};

struct StoredImage {
  uint32_t root = 0;  // the first image of the chain
  uint32_t parent = 0;
  std::size_t firstPiece = 0, pieces = 0;
};

// What the checker said when the file was recorded.
struct StoredFinding {
  uint32_t mistake = 0, function = 0, argument = 0;
  uint64_t call = 0;
};

struct StoredPiece {
  int64_t offset;
  uint32_t blob;
};

// A call or the contents of a band, in the order of the file.
struct FileItem {
  ItemKind kind;
  const uint8_t* payload;
  uint32_t bytes;
  uint64_t blockOffset;  // of the block in the file
  uint32_t position;     // of the item in the uncompressed block
};

enum class FileError : uint8_t {
  kNone,
  kTruncated,  // what was read can be used; the file ends before its index
  kDamaged,
  kNewer,  // of a version, or with a codec, that this build does not read
};

class CallFile {
 public:
  struct Status {
    FileError error = FileError::kNone;
    uint64_t offset = 0;  // in the file
    std::string message;
  };
  CallFile() = default;
  CallFile(CallFile&&) = default;
  CallFile& operator=(CallFile&&) = default;

  // Reads a file. With kTruncated, as with kNone, everything up to the last complete block is there; otherwise the file
  // is empty. maxBytes: of all blocks, uncompressed.
  static Status Read(const uint8_t* bytes, std::size_t count, CallFile* file, uint64_t maxBytes = uint64_t{1} << 33);
  // The same from a file on disk. A file that cannot be opened is kDamaged at 0.
  static Status ReadFrom(const std::string& path, CallFile* file);
  // The calls [first, first + count) of a file that has an index, and what they name; other blocks are neither read nor
  // checked. Fewer where the file has fewer. A file without index is kTruncated. A part can be looked at, not replayed.
  static Status ReadPart(FileBytes& bytes, std::size_t first, std::size_t count, CallFile* file);

  // Calls that were read: [FirstCall(), EndCall()). The first is 0 unless this is a part.
  std::size_t FirstCall() const { return firstCall_; }
  std::size_t EndCall() const { return firstCall_ + calls_.size(); }
  std::size_t CallCount() const { return calls_.size(); }
  const FileItem& CallItem(std::size_t call) const { return items_[calls_[call - firstCall_]]; }
  const std::vector<FileItem>& Items() const { return items_; }
  // Number 0 is an empty blob.
  const BlobView& Blob(uint32_t number) const { return blobs_[number]; }
  std::size_t BlobCount() const { return blobs_.size() - 1; }
  const StoredImage& Image(uint32_t number) const { return images_[number]; }
  std::size_t ImageCount() const { return images_.size() - 1; }
  const StoredPiece& Piece(std::size_t i) const { return pieces_[i]; }
  const std::vector<std::pair<std::string, std::string>>& Notes() const { return notes_; }
  const std::vector<StoredFinding>& Findings() const { return findings_; }
  uint32_t PointerBytes() const { return pointerBytes_; }
  const char* System() const { return system_ == 2 ? "windows" : system_ == 1 ? "linux" : "unknown"; }
  std::size_t BlockCount() const { return blocks_.size(); }
  uint64_t RawBytes() const { return rawBytes_; }
  uint32_t DeviceCount() const { return devices_; }

  // Items of a file that was read can always be decoded.
  bool DecodeCall(const FileItem& item, StoredCall* call) const;
  bool DecodeBand(const FileItem& item, StoredBand* band) const;
  // The function of a call, without decoding the rest.
  static Function FunctionOf(const FileItem& item) { return static_cast<Function>(item.payload[0]); }

 private:
  // A block, checked and decompressed.
  struct Block {
    BlockKind kind;
    Bytes data;
    uint64_t end;  // offset of what follows
  };
  // Where the calls, blobs and images of a block begin.
  struct BlockPlace {
    uint64_t offset, firstCall, firstBlob, firstImage;
  };
  static Status ReadAll(FileBytes& bytes, CallFile* file, uint64_t maxBytes);
  static Status ReadHeader(FileBytes& bytes, CallFile* file);
  Status ReadBlock(FileBytes& bytes, uint64_t at, uint64_t maxBytes, Block* block);
  // The last place is that of the index itself.
  Status ReadIndex(FileBytes& bytes, std::vector<BlockPlace>* places);
  Status ReadPlace(FileBytes& bytes, const BlockPlace& place, const BlockPlace& next);
  Status ReadWanted(FileBytes& bytes, std::size_t first, std::size_t count);
  bool ReadItems(const Bytes& raw, uint64_t blockOffset, Status* status);
  bool AddBlob(const BlobView& blob);
  bool AddImage(ByteReader reader);
  bool AddNote(ByteReader reader);
  bool DecodePointer(ByteReader& reader, Memory memory, StoredArgument* argument) const;
  bool IsBlob(uint32_t number) const { return number != 0 && number < blobs_.size(); }

  std::vector<Bytes> blocks_;
  std::vector<BlobView> blobs_ = std::vector<BlobView>(1);
  std::vector<StoredImage> images_ = std::vector<StoredImage>(1);
  std::vector<StoredPiece> pieces_;
  std::vector<FileItem> items_;
  std::vector<std::size_t> calls_;
  std::vector<std::pair<std::string, std::string>> notes_;
  std::vector<StoredFinding> findings_;
  uint32_t pointerBytes_ = 0, system_ = 0, devices_ = 0;
  uint64_t rawBytes_ = 0;
  std::size_t firstCall_ = 0;
  // While a part is read: the calls that are wanted, and the numbers of the next call, blob and image of a block.
  struct Part {
    std::size_t first = 0, end = 0;
    uint64_t call = 0;
    std::size_t blob = 0, image = 0;
  };
  bool isPart_ = false;
  Part part_;
};

}  // namespace qnv::calls

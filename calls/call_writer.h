// Writes a call file as a stream of items: memory by content, and the calls that name it. What is in complete blocks
// can be read whatever happens later. Not safe for several threads at once.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "calls/encoding.h"
#include "calls/file_format.h"

namespace qnv::calls {

// Blobs by content: a hash table that holds hash and length of each.
class BlobIndex {
 public:
  // The number of an equal blob, or of a new one; *isNew says which.
  uint32_t Find(uint64_t hash, std::size_t bytes, bool* isNew);

 private:
  struct Entry {
    uint64_t hash;
    uint64_t bytes;
    uint32_t number;  // 0: free
  };
  void Grow();

  std::vector<Entry> entries_;
  uint32_t count_ = 0;
};

// A part of an image: `blob` at a distance from the pointer.
struct ImagePiece {
  int64_t offset;
  uint32_t blob;
};

class CallWriter {
 public:
  // Takes the file, which may be null: then nothing is written and Failed is true.
  explicit CallWriter(std::FILE* file, bool compress = true);
  ~CallWriter() { Close(); }
  CallWriter(const CallWriter&) = delete;
  CallWriter& operator=(const CallWriter&) = delete;

  // The number of these bytes, which are written when they are new. 0 is no blob.
  uint32_t Blob(const void* memory, std::size_t bytes);
  // An image that has the pieces of `parent` (0: none) and these. Numbered apart from blobs, from 1 on.
  uint32_t Image(uint32_t parent, const std::vector<ImagePiece>& pieces);
  // The memory of a device's band (plane 0) or tag plane (1) is now this blob.
  void Band(uint32_t device, uint32_t plane, uint32_t blob);
  void Note(const std::string& key, const std::string& text);
  // What the checker found; numbers as Finding has them.
  void Found(uint32_t mistake, uint64_t call, uint32_t function, uint32_t argument);
  void Call(const uint8_t* payload, std::size_t bytes);

  // Writes what has been collected as a block.
  void Flush();
  // Writes the index. The file is complete then.
  void Close();

  // A write has failed; nothing is written any more.
  bool Failed() const { return failed_; }
  uint64_t Calls() const { return calls_; }

 private:
  struct BlockPlace {
    uint64_t offset, firstCall;
    uint32_t firstBlob, firstImage;
  };
  void Append(ItemKind kind, const uint8_t* payload, std::size_t bytes);
  std::size_t Collected() const { return raw_.size() + later_.size(); }
  void WriteBlock(BlockKind kind, const Bytes& raw);
  void Write(const void* bytes, std::size_t count);

  std::FILE* file_;
  const bool compress_;
  bool failed_ = false;
  uint64_t offset_ = 0;
  // The items of the block that is collected: memory first, then what names it. Like beside like compresses better.
  Bytes raw_, later_;
  Bytes stored_, item_;
  BlobIndex blobs_;
  uint32_t blobCount_ = 0, imageCount_ = 0;
  uint64_t calls_ = 0;
  BlockPlace open_{0, 0, 1, 1};  // where the block that is collected begins
  std::vector<BlockPlace> places_;
};

}  // namespace qnv::calls

// Collects items into blocks and writes them.
#include "calls/call_writer.h"

#include "calls/block_codec.h"
#include "calls/hash.h"

namespace qnv::calls {

void BlobIndex::Grow() {
  std::vector<Entry> old(entries_.empty() ? 1024 : 2 * entries_.size());
  old.swap(entries_);
  for (const Entry& entry : old) {
    if (entry.number == 0) continue;
    std::size_t at = static_cast<std::size_t>(entry.hash) & (entries_.size() - 1);
    while (entries_[at].number != 0) at = (at + 1) & (entries_.size() - 1);
    entries_[at] = entry;
  }
}

uint32_t BlobIndex::Find(uint64_t hash, std::size_t bytes, bool* isNew) {
  if (std::size_t{2} * (count_ + 1) > entries_.size()) Grow();
  std::size_t at = static_cast<std::size_t>(hash) & (entries_.size() - 1);
  for (; entries_[at].number != 0; at = (at + 1) & (entries_.size() - 1)) {
    if (entries_[at].hash == hash && entries_[at].bytes == bytes) {
      *isNew = false;
      return entries_[at].number;
    }
  }
  *isNew = true;
  entries_[at] = {hash, bytes, ++count_};
  return count_;
}

CallWriter::CallWriter(std::FILE* file, bool compress) : file_(file), compress_(compress), failed_(file == nullptr) {
  uint8_t header[kFileHeaderBytes];
  std::memcpy(header, kFileMagic, sizeof kFileMagic);
  uint8_t* at = PutLittle(header + sizeof kFileMagic, kFileVersion);
  *at++ = sizeof(void*);
#ifdef _WIN32
  *at++ = 2;
#else
  *at++ = 1;
#endif
  at = PutLittle(at, uint16_t{0});
  PutLittle(at, Hash64(header, 16));
  Write(header, sizeof header);
  open_.offset = offset_;
  raw_.reserve(2 * kBlockBytes);
  later_.reserve(2 * kBlockBytes);
}

void CallWriter::Write(const void* bytes, std::size_t count) {
  if (failed_) return;
  if (std::fwrite(bytes, 1, count, file_) != count) failed_ = true;
  offset_ += count;
}

void CallWriter::WriteBlock(BlockKind kind, const Bytes& raw) {
  Codec codec = Codec::kStored;
  if (compress_) {
    codec = CompressBlock(raw, &stored_);
  } else {
    stored_ = raw;
  }
  uint8_t header[kBlockHeaderBytes];
  std::memcpy(header, kBlockMagic, sizeof kBlockMagic);
  uint8_t* at = header + sizeof kBlockMagic;
  *at++ = static_cast<uint8_t>(kind);
  *at++ = static_cast<uint8_t>(codec);
  at = PutLittle(at, uint16_t{0});
  at = PutLittle(at, static_cast<uint32_t>(stored_.size()));
  at = PutLittle(at, static_cast<uint32_t>(raw.size()));
  // The fields of the header are the seed, so that damage to them is noticed too.
  PutLittle(at, Hash64(stored_.data(), stored_.size(), Hash64(header, 16)));
  Write(header, sizeof header);
  Write(stored_.data(), stored_.size());
  if (!failed_ && std::fflush(file_) != 0) failed_ = true;
}

void CallWriter::Flush() {
  if (Collected() == 0) return;
  places_.push_back(open_);
  raw_.insert(raw_.end(), later_.begin(), later_.end());
  WriteBlock(BlockKind::kItems, raw_);
  raw_.clear();
  later_.clear();
  open_ = {offset_, calls_, blobCount_ + 1, imageCount_ + 1};
}

void CallWriter::Append(ItemKind kind, const uint8_t* payload, std::size_t bytes) {
  uint8_t head[1 + kMaxNumberBytes];
  head[0] = static_cast<uint8_t>(kind);
  Bytes& to = kind == ItemKind::kBlob || kind == ItemKind::kImage ? raw_ : later_;
  to.insert(to.end(), head, PutNumber(head + 1, bytes));
  to.insert(to.end(), payload, payload + bytes);
}

uint32_t CallWriter::Blob(const void* memory, std::size_t bytes) {
  bool isNew;
  const uint32_t number = blobs_.Find(Hash64(memory, bytes), bytes, &isNew);
  if (isNew) {
    // Blobs are not cut: a block is closed before one that would make it large.
    if (Collected() + bytes > kBlockBytes) Flush();
    Append(ItemKind::kBlob, static_cast<const uint8_t*>(memory), bytes);
    blobCount_ = number;
  }
  return number;
}

uint32_t CallWriter::Image(uint32_t parent, const std::vector<ImagePiece>& pieces) {
  item_.clear();
  AppendNumber(item_, parent);
  AppendNumber(item_, pieces.size());
  int64_t before = 0;
  for (const ImagePiece& piece : pieces) {
    AppendNumber(item_, Fold(piece.offset - before));
    AppendNumber(item_, piece.blob);
    before = piece.offset;
  }
  Append(ItemKind::kImage, item_.data(), item_.size());
  return ++imageCount_;
}

void CallWriter::Band(uint32_t device, uint32_t plane, uint32_t blob) {
  item_.clear();
  AppendNumber(item_, device);
  AppendNumber(item_, plane);
  AppendNumber(item_, blob);
  Append(ItemKind::kBand, item_.data(), item_.size());
}

void CallWriter::Note(const std::string& key, const std::string& text) {
  item_.clear();
  AppendNumber(item_, key.size());
  item_.insert(item_.end(), key.begin(), key.end());
  item_.insert(item_.end(), text.begin(), text.end());
  Append(ItemKind::kNote, item_.data(), item_.size());
}

void CallWriter::Found(uint32_t mistake, uint64_t call, uint32_t function, uint32_t argument) {
  item_.clear();
  AppendNumber(item_, mistake);
  AppendNumber(item_, call);
  AppendNumber(item_, function);
  AppendNumber(item_, argument);
  Append(ItemKind::kFinding, item_.data(), item_.size());
}

void CallWriter::Call(const uint8_t* payload, std::size_t bytes) {
  Append(ItemKind::kCall, payload, bytes);
  ++calls_;
  if (Collected() >= kBlockBytes) Flush();
}

void CallWriter::Close() {
  if (file_ == nullptr) return;
  Flush();
  Bytes index;
  AppendNumber(index, calls_);
  AppendNumber(index, blobCount_);
  AppendNumber(index, imageCount_);
  AppendNumber(index, places_.size());
  for (const BlockPlace& place : places_) {
    AppendNumber(index, place.offset);
    AppendNumber(index, place.firstCall);
    AppendNumber(index, place.firstBlob);
    AppendNumber(index, place.firstImage);
  }
  const uint64_t at = offset_;
  WriteBlock(BlockKind::kIndex, index);
  uint8_t footer[kFooterBytes];
  PutLittle(footer, at);
  std::memcpy(footer + 8, kFooterMagic, sizeof kFooterMagic);
  Write(footer, sizeof footer);
  if (std::fclose(file_) != 0) failed_ = true;
  file_ = nullptr;
}

}  // namespace qnv::calls

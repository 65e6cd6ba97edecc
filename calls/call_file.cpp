// Reads call files. Everything here may be damaged or written by somebody hostile.
#include "calls/call_file.h"

#include <cstdio>

#include "calls/block_codec.h"
#include "calls/hash.h"

namespace qnv::calls {
namespace {

CallFile::Status Failure(FileError error, uint64_t offset, std::string message) {
  return {error, offset, std::move(message)};
}

std::string Number(uint64_t value) { return std::to_string(value); }

}  // namespace

uint32_t StoredCall::Device() const {
  const EntryPoint& entry = EntryPointOf(function);
  if (entry.arguments[0].type != Type::kHandle) return 0;
  return arguments[0].number < 2 ? 0 : arguments[0].number - 1;
}

CallFile::Status CallFile::ReadFrom(const std::string& path, CallFile* file) {
  std::FILE* const opened = std::fopen(path.c_str(), "rb");
  if (opened == nullptr) return Failure(FileError::kDamaged, 0, "the file cannot be opened");
  Bytes bytes;
  uint8_t buffer[65536];
  for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, opened)) != 0;) {
    bytes.insert(bytes.end(), buffer, buffer + read);
  }
  const bool failed = std::ferror(opened) != 0;
  std::fclose(opened);
  if (failed) return Failure(FileError::kDamaged, bytes.size(), "the file cannot be read");
  return Read(bytes.data(), bytes.size(), file);
}

CallFile::Status CallFile::Read(const uint8_t* bytes, std::size_t count, CallFile* file, uint64_t maxBytes) {
  *file = CallFile();
  const auto fail = [&](FileError error, uint64_t offset, std::string message) {
    if (error != FileError::kTruncated) *file = CallFile();
    return Failure(error, offset, std::move(message));
  };
  const std::size_t magic = std::min(count, sizeof kFileMagic);
  if (magic != 0 && std::memcmp(bytes, kFileMagic, magic) != 0)
    return fail(FileError::kDamaged, 0, "this is no call file");
  if (count < kFileHeaderBytes) return fail(FileError::kTruncated, count, "the file ends inside its header");
  const uint32_t version = GetLittle<uint32_t>(bytes + 8);
  if (version > kFileVersion) {
    return fail(FileError::kNewer, 8, "version " + Number(version) + " is newer than " + Number(kFileVersion));
  }
  if (version == 0 || GetLittle<uint64_t>(bytes + 16) != Hash64(bytes, 16)) {
    return fail(FileError::kDamaged, 8, "the header is damaged");
  }
  file->pointerBytes_ = bytes[12];
  file->system_ = bytes[13];
  std::size_t at = kFileHeaderBytes;
  for (bool indexed = false;;) {
    if (indexed) {
      if (count - at < kFooterBytes) return fail(FileError::kTruncated, count, "the file ends inside its footer");
      if (std::memcmp(bytes + at + 8, kFooterMagic, sizeof kFooterMagic) != 0) {
        return fail(FileError::kDamaged, at, "the footer is damaged");
      }
      if (count - at > kFooterBytes)
        return fail(FileError::kDamaged, at + kFooterBytes, "something follows the footer");
      return {};
    }
    if (count - at < kBlockHeaderBytes) return fail(FileError::kTruncated, count, "the file ends without an index");
    const uint8_t* const header = bytes + at;
    if (std::memcmp(header, kBlockMagic, sizeof kBlockMagic) != 0) {
      return fail(FileError::kDamaged, at, "a block is expected here");
    }
    const uint32_t stored = GetLittle<uint32_t>(header + 8), raw = GetLittle<uint32_t>(header + 12);
    if (raw > kMaxBlockBytes || stored > kMaxBlockBytes) {
      return fail(FileError::kDamaged, at + 8, "a block claims to have " + Number(std::max(raw, stored)) + " bytes");
    }
    if (count - at - kBlockHeaderBytes < stored) {
      return fail(FileError::kTruncated, count, "the file ends inside the block at " + Number(at));
    }
    const uint8_t* const data = header + kBlockHeaderBytes;
    if (GetLittle<uint64_t>(header + 16) != Hash64(data, stored, Hash64(header, 16))) {
      return fail(FileError::kDamaged, at, "the checksum of the block does not fit");
    }
    const uint8_t kind = header[4], codec = header[5];
    if (codec > static_cast<uint8_t>(Codec::kZstd)) {
      return fail(FileError::kNewer, at + 5, "compression " + Number(codec) + " is not known");
    }
    if (codec == static_cast<uint8_t>(Codec::kZstd) && !HasZstd()) {
      return fail(FileError::kNewer, at + 5, "this build reads no compressed blocks");
    }
    file->rawBytes_ += raw;
    if (file->rawBytes_ > maxBytes) return fail(FileError::kDamaged, at, "the blocks have too many bytes");
    Bytes block;
    if (!DecompressBlock(static_cast<Codec>(codec), data, stored, raw, &block)) {
      return fail(FileError::kDamaged, at + kBlockHeaderBytes, "the block cannot be decompressed");
    }
    if (kind == static_cast<uint8_t>(BlockKind::kItems)) {
      file->blocks_.push_back(std::move(block));
      Status status;
      if (!file->ReadItems(file->blocks_.back(), at, &status)) {
        return fail(status.error, status.offset, status.message);
      }
    } else if (kind == static_cast<uint8_t>(BlockKind::kIndex)) {
      ByteReader index(block.data(), block.size());
      if (index.Number() != file->CallCount() || index.Number() != file->BlobCount() || !index.ok()) {
        return fail(FileError::kDamaged, at, "the index does not fit the blocks");
      }
      indexed = true;
    } else {
      return fail(FileError::kNewer, at + 4, "blocks of kind " + Number(kind) + " are not known");
    }
    at += kBlockHeaderBytes + stored;
  }
}

bool CallFile::ReadItems(const Bytes& raw, uint64_t blockOffset, Status* status) {
  ByteReader reader(raw.data(), raw.size());
  while (reader.Left() != 0) {
    const auto position = static_cast<uint32_t>(reader.Position());
    const uint8_t kind = reader.Byte();
    const uint64_t bytes = reader.Number();
    const uint8_t* const payload = reader.Take(bytes);
    const auto fail = [&](FileError error, const char* message) {
      *status = Failure(error, blockOffset,
                        "block at " + Number(blockOffset) + ", item at byte " + Number(position) + ": " + message);
      return false;
    };
    if (payload == nullptr) return fail(FileError::kDamaged, "it is longer than the block");
    const FileItem item{static_cast<ItemKind>(kind), payload, static_cast<uint32_t>(bytes), blockOffset, position};
    const auto size = static_cast<std::size_t>(bytes);
    switch (item.kind) {
      case ItemKind::kBlob: blobs_.push_back({payload, size}); break;
      case ItemKind::kImage:
        if (!AddImage(ByteReader(payload, size))) return fail(FileError::kDamaged, "this image cannot be read");
        break;
      case ItemKind::kNote:
        if (!AddNote(ByteReader(payload, size))) return fail(FileError::kDamaged, "this note cannot be read");
        break;
      case ItemKind::kBand: {
        StoredBand band;
        if (!DecodeBand(item, &band)) return fail(FileError::kDamaged, "these contents of a band cannot be read");
        items_.push_back(item);
        break;
      }
      case ItemKind::kCall: {
        StoredCall call;
        if (!DecodeCall(item, &call)) return fail(FileError::kDamaged, "this call cannot be read");
        if (call.function == Function::kEnable && call.result != 0) {
          if (call.result != devices_ + 1) return fail(FileError::kDamaged, "its device is not the next one");
          ++devices_;
        }
        calls_.push_back(items_.size());
        items_.push_back(item);
        break;
      }
      case ItemKind::kFinding: {
        ByteReader finding(payload, size);
        StoredFinding stored;
        stored.mistake = finding.Number32();
        stored.call = finding.Number();
        stored.function = finding.Number32();
        stored.argument = finding.Number32();
        // Optional: what cannot be read is left out.
        if (finding.ok()) findings_.push_back(stored);
        break;
      }
      default:
        if (kind < kFirstOptionalItem) return fail(FileError::kNewer, "its kind is not known");
    }
  }
  return true;
}

bool CallFile::AddImage(ByteReader reader) {
  StoredImage image;
  image.parent = reader.Number32();
  const auto number = static_cast<uint32_t>(images_.size());
  if (image.parent >= number) return false;
  image.root = image.parent == 0 ? number : images_[image.parent].root;
  image.firstPiece = pieces_.size();
  const uint64_t count = reader.Number();
  int64_t offset = 0;
  for (uint64_t i = 0; i < count && reader.ok(); ++i) {
    const int64_t step = reader.SignedNumber();
    const uint32_t blob = reader.Number32();
    constexpr int64_t kMaxStep = int64_t{1} << 33;
    if (step < -kMaxStep || step > kMaxStep) return false;
    offset += step;
    if (offset < 0 || offset > (int64_t{1} << 32) || !IsBlob(blob)) return false;
    pieces_.push_back({offset, blob});
  }
  image.pieces = pieces_.size() - image.firstPiece;
  images_.push_back(image);
  return reader.ok() && reader.Left() == 0;
}

bool CallFile::AddNote(ByteReader reader) {
  const uint64_t keyBytes = reader.Number();
  const uint8_t* const key = reader.Take(keyBytes);
  if (key == nullptr) return false;
  const std::size_t textBytes = reader.Left();
  const uint8_t* const text = reader.Take(textBytes);
  notes_.emplace_back(std::string(key, key + keyBytes), std::string(text, text + textBytes));
  return true;
}

bool CallFile::DecodeBand(const FileItem& item, StoredBand* band) const {
  ByteReader reader(item.payload, item.bytes);
  band->device = reader.Number32();
  band->plane = reader.Number32();
  band->blob = reader.Number32();
  return reader.ok() && reader.Left() == 0 && band->device != 0 && band->device <= devices_ && band->plane <= 1 &&
         IsBlob(band->blob);
}

bool CallFile::DecodePointer(ByteReader& reader, Memory memory, StoredArgument* argument) const {
  StoredPointer& pointer = argument->pointer;
  pointer.tag = static_cast<PointerTag>(reader.Byte());
  if (pointer.tag == PointerTag::kRecord) {
    if (memory != Memory::kSource && memory != Memory::kLogicalObject) return false;
    argument->isRecord = true;
    argument->record = reader.Number32();
    if (!IsBlob(argument->record)) return false;
    pointer.tag = static_cast<PointerTag>(reader.Byte());
    if (pointer.tag == PointerTag::kRecord) {
      if (memory != Memory::kLogicalObject) return false;
      argument->isNestedRecord = true;
      argument->nestedRecord = reader.Number32();
      if (!IsBlob(argument->nestedRecord)) return false;
      pointer.tag = static_cast<PointerTag>(reader.Byte());
    }
  }
  switch (pointer.tag) {
    case PointerTag::kNull:
    case PointerTag::kUnread: return reader.ok();
    case PointerTag::kImage:
      pointer.number = reader.Number32();
      return pointer.number != 0 && pointer.number < images_.size();
    case PointerTag::kBlob:
    case PointerTag::kRows:
      pointer.number = reader.Number32();
      pointer.first = reader.SignedNumber();
      if (pointer.tag == PointerTag::kRows) {
        pointer.rowBytes = reader.Number();
        pointer.stride = reader.Number();
        if (pointer.rowBytes == 0 || pointer.rowBytes > pointer.stride || pointer.stride > UINT16_MAX) return false;
      }
      return reader.ok() && IsBlob(pointer.number) && pointer.first > -(int64_t{1} << 40) &&
             pointer.first < (int64_t{1} << 40);
    case PointerTag::kRecord: break;
  }
  return false;
}

bool CallFile::DecodeCall(const FileItem& item, StoredCall* call) const {
  ByteReader reader(item.payload, item.bytes);
  const uint8_t function = reader.Byte();
  if (!reader.ok() || function >= kFunctionCount) return false;
  call->function = static_cast<Function>(function);
  // Only what the call has is set: the whole record is large, and this runs for every call of a replay.
  call->output = 0;
  call->bandBefore = call->tagsBefore = call->bandAfter = call->tagsAfter = 0;
  call->thread = reader.Number32();
  const EntryPoint& entry = EntryPointOf(call->function);
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    StoredArgument& argument = call->arguments[i];
    argument = StoredArgument{};
    switch (entry.arguments[i].type) {
      case Type::kHandle:
        argument.number = reader.Number32();
        if (argument.number > devices_ + 1) return false;
        break;
      case Type::kInt32: {
        const int64_t value = reader.SignedNumber();
        if (value < INT32_MIN || value > INT32_MAX) return false;
        argument.number = static_cast<uint32_t>(static_cast<int32_t>(value));
        break;
      }
      case Type::kUint32: argument.number = reader.Number32(); break;
      default:
        if (!DecodePointer(reader, entry.arguments[i].memory, &argument)) return false;
    }
  }
  call->flags = reader.Number32();
  call->result = reader.Number32();
  call->nanoseconds = reader.Number();
  if ((call->flags & kHasOutput) != 0) {
    call->output = reader.Number32();
    if (!IsBlob(call->output)) return false;
  }
  if ((call->flags & kHasBandBefore) != 0) call->bandBefore = reader.Little<uint64_t>();
  if ((call->flags & kHasTagsBefore) != 0) call->tagsBefore = reader.Little<uint64_t>();
  if ((call->flags & kHasBandAfter) != 0) call->bandAfter = reader.Little<uint64_t>();
  if ((call->flags & kHasTagsAfter) != 0) call->tagsAfter = reader.Little<uint64_t>();
  return reader.ok() && reader.Left() == 0;
}

}  // namespace qnv::calls

// The bytes become literals and runs, which deflate writes as matches at distance 1, in one block with Huffman codes of
// its own. There is no search for other repetitions: of a page of text that differs little from row to row it would
// find nothing worth its time, which was six times that of everything else.
#include "qnvtool/output/run_deflate.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "qnvtool/base/reused.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMinRun = 3;
constexpr std::size_t kMaxRun = 258;
constexpr int kEndOfBlock = 256;
constexpr std::size_t kSymbols = 286;  // literals, end of block, lengths
constexpr int kMaxCodeBits = 15;
constexpr std::size_t kLengthSymbols = 19;  // of the code that describes the lengths of the codes
constexpr int kMaxLengthCodeBits = 7;

// A literal, or a run of any length of the byte before it.
using Token = uint32_t;
constexpr Token kRunFlag = 0x80000000;

// The symbol of a length and what follows it.
struct LengthCode {
  uint16_t symbol = 0;
  uint8_t extraBits = 0;
  uint8_t extra = 0;
};

std::array<LengthCode, kMaxRun + 1> MakeLengthCodes() {
  std::array<LengthCode, kMaxRun + 1> codes{};
  std::size_t length = kMinRun;
  for (int index = 0; index < 28; ++index) {
    const int extraBits = index < 8 ? 0 : index / 4 - 1;
    for (std::size_t extra = 0; extra < std::size_t{1} << extraBits && length < kMaxRun; ++extra, ++length) {
      codes[length] = {static_cast<uint16_t>(257 + index), static_cast<uint8_t>(extraBits),
                       static_cast<uint8_t>(extra)};
    }
  }
  codes[kMaxRun] = {285, 0, 0};
  return codes;
}

const std::array<LengthCode, kMaxRun + 1>& LengthCodes() {
  static const std::array<LengthCode, kMaxRun + 1> codes = MakeLengthCodes();
  return codes;
}

// How many bytes from `at` on are equal to `value`.
std::size_t RunLength(const uint8_t* at, const uint8_t* end, uint8_t value) {
  const uint8_t* const begin = at;
  const uint64_t pattern = uint64_t{0x0101010101010101} * value;
  constexpr std::size_t kStep = 4 * sizeof pattern;
  for (uint64_t words[4]; static_cast<std::size_t>(end - at) >= kStep; at += kStep) {
    std::memcpy(words, at, kStep);
    if (((words[0] ^ pattern) | (words[1] ^ pattern) | (words[2] ^ pattern) | (words[3] ^ pattern)) != 0) break;
  }
  while (at != end && *at == value) ++at;
  return static_cast<std::size_t>(at - begin);
}

// Calls `use` for each length that a run is written as. The last bytes of a run may be too few for a length; returns
// how many, which are written as literals.
template <class Use>
std::size_t CutRun(std::size_t run, Use use) {
  for (; run >= kMaxRun; run -= kMaxRun) use(kMaxRun);
  if (run < kMinRun) return run;
  use(run);
  return 0;
}

// Code lengths of a Huffman code for the symbols that occur, none above `maxBits`.
template <std::size_t kCount>
std::array<uint8_t, kCount> CodeLengths(std::array<uint32_t, kCount> counts, int maxBits) {
  struct Node {
    uint64_t weight = 0;
    std::size_t parent = 0;
  };
  for (;;) {
    std::vector<std::size_t> symbols;
    for (std::size_t i = 0; i < kCount; ++i) {
      if (counts[i] != 0) symbols.push_back(i);
    }
    std::stable_sort(symbols.begin(), symbols.end(), [&](auto a, auto b) { return counts[a] < counts[b]; });
    // Leaves come first, then inner nodes in the order of their weights: the two lightest are at the front of either.
    std::vector<Node> nodes;
    nodes.reserve(2 * symbols.size());
    for (const std::size_t symbol : symbols) nodes.push_back({counts[symbol], 0});
    const std::size_t leaves = nodes.size();
    std::size_t leaf = 0, inner = leaves;
    const auto lightest = [&] {
      const bool takesLeaf = leaf < leaves && (inner == nodes.size() || nodes[leaf].weight <= nodes[inner].weight);
      return takesLeaf ? leaf++ : inner++;
    };
    while (nodes.size() < 2 * leaves - 1) {
      const std::size_t a = lightest();
      const std::size_t b = lightest();
      nodes[a].parent = nodes[b].parent = nodes.size();
      nodes.push_back({nodes[a].weight + nodes[b].weight, 0});
    }
    std::vector<int> depths(nodes.size());
    int deepest = 0;
    for (std::size_t i = nodes.size() - 1; i-- > 0;) {
      depths[i] = depths[nodes[i].parent] + 1;
      deepest = std::max(deepest, depths[i]);
    }
    if (deepest <= maxBits) {
      std::array<uint8_t, kCount> lengths{};
      for (std::size_t i = 0; i < leaves; ++i) lengths[symbols[i]] = static_cast<uint8_t>(depths[i]);
      return lengths;
    }
    // Very different counts make long codes. Nearer counts make shorter ones.
    for (uint32_t& count : counts) count = (count + 1) / 2;
  }
}

// Bits in the order in which they are written.
struct Code {
  uint32_t bits = 0;
  int count = 0;
};

// The codes that the lengths define. Huffman codes are written from their highest bit on, everything else from its
// lowest.
template <std::size_t kCount>
std::array<Code, kCount> CodesOf(const std::array<uint8_t, kCount>& lengths) {
  std::array<Code, kCount> codes{};
  uint32_t next = 0;
  for (int bits = 1; bits <= kMaxCodeBits; ++bits) {
    next <<= 1;
    for (std::size_t i = 0; i < kCount; ++i) {
      if (lengths[i] != bits) continue;
      uint32_t reversed = 0;
      for (int bit = 0; bit < bits; ++bit) reversed |= (next >> bit & 1) << (bits - 1 - bit);
      codes[i] = {reversed, bits};
      ++next;
    }
  }
  return codes;
}

class BitWriter {
 public:
  // `bytes` has place for everything that is written.
  explicit BitWriter(uint8_t* bytes) : next_(bytes) {}

  void Write(uint32_t bits, int count) {
    held_ |= uint64_t{bits} << heldBits_;
    heldBits_ += count;
    if (heldBits_ < 32) return;
    for (int i = 0; i < 4; ++i) *next_++ = static_cast<uint8_t>(held_ >> 8 * i);
    held_ >>= 32;
    heldBits_ -= 32;
  }
  void Write(const Code& code) { Write(code.bits, code.count); }

  // Goes on at the next whole byte, and returns its place.
  uint8_t* Align() {
    for (; heldBits_ > 0; heldBits_ -= 8, held_ >>= 8) *next_++ = static_cast<uint8_t>(held_);
    heldBits_ = 0;
    return next_;
  }

 private:
  uint8_t* next_;
  uint64_t held_ = 0;
  int heldBits_ = 0;
};

// A part of the description of code lengths: a length, or a repetition with its count.
struct LengthToken {
  uint8_t symbol = 0;
  uint8_t extra = 0;
  uint8_t extraBits = 0;
};

// Repetitions of a length other than 0 follow the first of them.
std::vector<LengthToken> DescribeLengths(const std::vector<uint8_t>& lengths) {
  std::vector<LengthToken> tokens;
  for (std::size_t i = 0; i < lengths.size();) {
    std::size_t run = 1;
    while (i + run < lengths.size() && lengths[i + run] == lengths[i]) ++run;
    i += run;
    const uint8_t length = lengths[i - 1];
    if (length == 0) {
      for (std::size_t part; run >= 11; run -= part) {
        part = std::min<std::size_t>(run, 138);
        tokens.push_back({18, static_cast<uint8_t>(part - 11), 7});
      }
      if (run >= 3) {
        tokens.push_back({17, static_cast<uint8_t>(run - 3), 3});
        run = 0;
      }
    } else {
      tokens.push_back({length, 0, 0});
      --run;
      for (std::size_t part; run >= 3; run -= part) {
        part = std::min<std::size_t>(run, 6);
        tokens.push_back({16, static_cast<uint8_t>(part - 3), 2});
      }
    }
    for (; run > 0; --run) tokens.push_back({length, 0, 0});
  }
  return tokens;
}

// The tokens of the bytes, how often each symbol occurs, and the checksum.
struct Tokens {
  std::vector<Token> tokens;
  std::array<uint32_t, kSymbols> counts{};
  uint32_t adler = 1;
};

void FindRuns(const uint8_t* bytes, std::size_t size, Tokens& result) {
  result.tokens.clear();
  result.counts.fill(0);
  // Adler-32: the sum of the bytes, and the sum of these sums. The remainder is taken after each run; up to there
  // neither overflows.
  uint64_t sum = 1, sums = 0;
  const auto& lengthCodes = LengthCodes();
  const auto literal = [&](uint8_t value) {
    result.tokens.push_back(value);
    ++result.counts[value];
  };
  const uint8_t* const end = bytes + size;
  for (const uint8_t* at = bytes; at != end;) {
    const uint8_t value = *at++;
    literal(value);
    sum += value;
    sums += sum;
    if (at == end || *at != value) continue;
    const std::size_t run = RunLength(at, end, value);
    at += run;
    sums += run * sum + value * (uint64_t{run} * (run + 1) / 2);
    sum += uint64_t{value} * run;
    const std::size_t rest = CutRun(run, [&](std::size_t length) { ++result.counts[lengthCodes[length].symbol]; });
    if (run != rest) result.tokens.push_back(kRunFlag | static_cast<Token>(run - rest));
    for (std::size_t i = 0; i < rest; ++i) literal(value);
    sum %= 65521;
    sums %= 65521;
  }
  result.adler = static_cast<uint32_t>(sums % 65521 << 16 | sum % 65521);
}

}  // namespace

uint32_t DeflateRuns(const uint8_t* bytes, std::size_t size, DeflateEnd end, std::vector<uint8_t>& result) {
  static Reused<Tokens> reused;
  const auto loan = reused.Take();
  Tokens& tokens = *loan;
  FindRuns(bytes, size, tokens);
  ++tokens.counts[kEndOfBlock];
  if (size == 0) ++tokens.counts[0];  // a code has at least two symbols
  const std::array<uint8_t, kSymbols> lengths = CodeLengths(tokens.counts, kMaxCodeBits);
  const std::array<Code, kSymbols> codes = CodesOf(lengths);

  // The lengths of the codes for literals and lengths, then that of the only distance.
  std::vector<uint8_t> described(lengths.begin(), lengths.end());
  described.push_back(1);
  const std::vector<LengthToken> description = DescribeLengths(described);
  std::array<uint32_t, kLengthSymbols> lengthCounts{};
  for (const LengthToken& token : description) ++lengthCounts[token.symbol];
  const std::array<uint8_t, kLengthSymbols> lengthLengths = CodeLengths(lengthCounts, kMaxLengthCodeBits);
  const std::array<Code, kLengthSymbols> lengthCodes = CodesOf(lengthLengths);

  // A run as one piece of bits: its code, what follows that, and the distance, a single zero bit.
  std::array<Code, kMaxRun + 1> runCodes{};
  for (std::size_t run = kMinRun; run <= kMaxRun; ++run) {
    const LengthCode& length = LengthCodes()[run];
    const Code& code = codes[length.symbol];
    runCodes[run] = {code.bits | uint32_t{length.extra} << code.count, code.count + length.extraBits + 1};
  }

  // At most: the header, the lengths of codes, the tokens, the end.
  constexpr std::size_t kHeaderBits = 3 + 14 + 3 * kLengthSymbols;
  constexpr std::size_t kEndBits = 64;
  uint64_t bits = kHeaderBits + (kMaxLengthCodeBits + std::size_t{7}) * description.size() + kEndBits;
  for (std::size_t symbol = 0; symbol < kSymbols; ++symbol) {
    bits += uint64_t{tokens.counts[symbol]} * (lengths[symbol] + (symbol > kEndOfBlock ? 6u : 0u));
  }
  result.resize(static_cast<std::size_t>(bits / 8) + 8);
  BitWriter writer(result.data());
  constexpr uint32_t kDynamicCodes = 2;
  writer.Write(end == DeflateEnd::kStream ? 1 : 0, 1);
  writer.Write(kDynamicCodes, 2);
  writer.Write(kSymbols - 257, 5);
  writer.Write(0, 5);  // one distance
  writer.Write(kLengthSymbols - 4, 4);
  constexpr uint8_t kOrder[kLengthSymbols] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
  for (const std::size_t symbol : kOrder) {
    writer.Write(lengthLengths[symbol], 3);
  }
  for (const LengthToken& token : description) {
    writer.Write(lengthCodes[token.symbol]);
    writer.Write(token.extra, token.extraBits);
  }
  for (const Token token : tokens.tokens) {
    if ((token & kRunFlag) == 0) {
      writer.Write(codes[token]);
    } else {
      CutRun(token & ~kRunFlag, [&](std::size_t length) { writer.Write(runCodes[length]); });
    }
  }
  writer.Write(codes[kEndOfBlock]);
  if (end == DeflateEnd::kByte) writer.Write(0, 3);  // an empty block without compression, which begins at a byte
  uint8_t* next = writer.Align();
  if (end == DeflateEnd::kByte) {
    constexpr uint8_t kEmpty[] = {0, 0, 0xFF, 0xFF};  // its length, and the complement of that
    next = std::copy(std::begin(kEmpty), std::end(kEmpty), next);
  }
  result.resize(static_cast<std::size_t>(next - result.data()));
  return tokens.adler;
}

}  // namespace qnv::tool

// Span lists of every style.
#include <algorithm>

#include "random/calls.h"

namespace qnv::test {
namespace {

// Writes one span list in the chosen style, around the band.
class SpanListWriter {
 public:
  explicit SpanListWriter(RandomCase& run) : random_(run.random()), band_(run.CallerBand()), tame_(run.tame()) {}

  uint32_t count() const { return count_; }
  const std::vector<int16_t>& words() const { return words_; }

  void Write(uint32_t style) {
    switch (style) {
      case 4:
      case 104:
        SetCount(tame_ ? 2 : 0, 8);
        Word(static_cast<int>(random_.Word()));
        Word(Y());
        for (uint32_t i = 1; i < count_; ++i) Span();
        break;
      case 5:
      case 105: Banded(); break;
      case 205: RowRecords(); break;
      case 305:
        SetCount(0, 20);
        Word(Y());
        for (uint32_t i = 0; i < count_; ++i) Span();
        break;
      case 405: Deltas(false); break;
      case 505: Deltas(true); break;
      default:
        for (int i = 0; i < 8; ++i) Word(X());
        count_ = 2;
        break;
    }
  }

 private:
  void SetCount(int low, int high) { count_ = static_cast<uint32_t>(random_.Range(low, high)); }
  void Word(int value) { words_.push_back(static_cast<int16_t>(value)); }
  int X() { return random_.Range(band_.left - 15, band_.right + 15); }
  int Y() {
    if (tame_) return random_.Range(band_.top - 3, std::max(int{band_.top}, band_.bottom - 1));
    return random_.Range(band_.top - 6, band_.bottom + 3);
  }
  void Span() {
    const int left = X();
    Word(left);
    Word(random_.Percent(tame_ ? 90 : 60) ? left + random_.Range(0, 40) : X());
  }

  // A count of x values; now and then odd, or more than the working memory first has room for.
  int Values() {
    if (random_.Percent(1)) return random_.Range(250, 560);
    const int values = 2 * random_.Range(tame_ ? 1 : 0, 4);
    return random_.Percent(15) ? values + 1 : values;
  }
  void ValueWords(int values) {
    for (int i = 0; i + 1 < values; i += 2) Span();
    if (values % 2 != 0) Word(X());
  }

  void Banded() {
    SetCount(tame_ ? 1 : 0, 4);
    for (uint32_t i = 0; i < count_; ++i) {
      const int values = Values();
      const int top = Y();
      Word(values);
      Word(top);
      Word(top + random_.Range(-1, 9));
      ValueWords(values);
      Word(values);
    }
  }

  void RowRecords() {
    SetCount(0, 12);
    Word(Y());
    for (uint32_t i = 0; i < count_; ++i) {
      const int values = Values();
      Word(values);
      ValueWords(values);
    }
    // The word that an odd last record takes as its right end.
    Word(X());
  }

  void Deltas(bool nibbles) {
    SetCount(0, 24);
    Word(Y());
    Span();
    const uint32_t bytes = count_ == 0 ? 0 : (count_ - 1) * (nibbles ? 1u : 2u);
    uint32_t word = 0;
    for (uint32_t i = 0; i < bytes; ++i) {
      const bool any = nibbles || random_.Percent(20);
      const uint32_t byte = static_cast<uint8_t>(any ? random_.Range(0, 255) : random_.Range(-6, 6));
      word = i % 2 == 0 ? byte : word | byte << 8;
      if (i % 2 != 0) Word(static_cast<int>(word));
    }
    if (bytes % 2 != 0) Word(static_cast<int>(word | uint32_t{random_.Byte()} << 8));
  }

  Numbers& random_;
  BandRect band_;
  bool tame_;
  uint32_t count_ = 0;
  std::vector<int16_t> words_;
};

}  // namespace

void OutputCall(RandomCase& run) {
  Numbers& random = run.random();
  run.BeginCall("QNVOutput");
  constexpr uint32_t kStyles[] = {4, 104, 5, 105, 205, 305, 405, 505, 5, 205, 405, 505};
  constexpr uint32_t kOthers[] = {80, 81, 0, 6, 105 + 1, 204, 504, 65535};
  const uint32_t style = random.Percent(94) ? random.Pick(kStyles) : random.Pick(kOthers);
  SpanListWriter list(run);
  list.Write(style);
  reference::OutputArgs args{};
  args.style = style;
  args.count = list.count();
  // Only the low halves count.
  if (random.Percent(10)) args.style |= random.Word() & 0xFFFF0000;
  if (random.Percent(10)) args.count |= random.Word() & 0xFFFF0000;
  run.Say("  style %u (0x%08X), count %u (0x%08X)\n", style, args.style, list.count(), args.count);
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(list.words().data());
  args.points =
      reinterpret_cast<const int16_t*>(run.GiveMostly(96, "points", {bytes, bytes + 2 * list.words().size()}));
  args.pen = GivePen(run);
  args.brush = random.Percent(args.pen != nullptr ? 70 : 10) ? nullptr : GiveBrush(run);
  args.drawMode = GiveDrawMode(run);
  args.clip = GiveClip(run);
  const uint32_t expected = run.OnModel([&](reference::Model& model) { return model.Output(args); });
  const uint32_t got =
      QNVOutput(run.handle(), args.style, args.count, args.points, args.pen, args.brush, args.drawMode, args.clip);
  run.Check(expected, got, 0xFFFF);
}

}  // namespace qnv::test

// The host records that most calls share.
#include "random/calls.h"

namespace qnv::test {
namespace {

// Any rows will do: the hatches' own are compared where brushes are realised.
constexpr uint8_t kSomeRows[][8] = {
    {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE},
    {0x7D, 0xBB, 0xD7, 0xEF, 0xD7, 0xBB, 0x7D, 0xFE}, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
    {0x13, 0x58, 0xC2, 0x0F, 0x91, 0x6E, 0x34, 0xA7},
};

PhysicalBrush RandomBrush(Numbers& random) {
  PhysicalBrush brush{};
  brush.hatch = static_cast<uint16_t>(random.Range(0, 5));
  brush.colour = RandomColor(random);
  const int scale = random.Range(0, 99);
  const auto factor = [&] {
    return static_cast<uint8_t>(scale < 50 ? 1 : scale < 75 ? 2 : scale < 85 ? random.Range(3, 9) : random.Range(0, 3));
  };
  brush.hatchScale[0] = factor();
  brush.hatchScale[1] = scale < 85 ? brush.hatchScale[0] : factor();
  const int pick = random.Range(0, 99);
  if (pick < 38) {
    brush.style = BS_SOLID;
  } else if (pick < 62) {
    brush.style = BS_HATCHED;
    const uint32_t gap = random.Percent(30) ? brush.colour & 0xFFFFFF : RandomColor(random);
    const uint8_t* rows = kSomeRows[random.Range(0, 4)];
    for (int i = 0; i < 64; ++i) {
      brush.cells[i] = (rows[i / 8] >> (7 - i % 8) & 1) != 0 ? gap : brush.colour | 0xFF000000u;
    }
  } else if (pick < 75) {
    brush.style = BS_PATTERN;
    brush.patternDepth = random.Percent(50) ? 24 : 8;
    for (uint32_t& cell : brush.cells) {
      cell = random.Percent(60) ? RandomColor(random) : random.Percent(50) ? 0 : 0xFFFFFF;
      if (brush.patternDepth == 8) cell = (cell & 0xFF) * 0x010101u;
      cell |= 0xFF000000u;
    }
  } else if (pick < 88) {
    brush.style = BS_PATTERN;
    brush.patternDepth = 1;
    brush.colour = 0;
    for (uint32_t& cell : brush.cells) cell = random.Percent(50) ? 0x00FFFFFFu : 0xFF000000u;
  } else if (pick < 98) {
    brush.style = BS_HOLLOW;
  } else {
    brush.style = static_cast<uint16_t>(random.Range(4, 300));
  }
  return brush;
}

}  // namespace

uint32_t RandomColor(Numbers& random) {
  constexpr uint32_t kPrimaries[] = {0x0000FF, 0x00FF00, 0xFF0000, 0xFFFF00, 0x00FFFF, 0xFEFFFF};
  const int pick = random.Range(0, 99);
  uint32_t color = pick < 15   ? 0x00FFFFFF
                   : pick < 30 ? 0
                   : pick < 40 ? random.Pick(kPrimaries)
                   : pick < 55 ? static_cast<uint32_t>(random.Range(0, 255)) * 0x010101u
                               : random.Word() & 0x00FFFFFF;
  // The top byte tells some colors apart that paint the same.
  if (random.Percent(pick < 30 ? 10 : 3)) color |= random.Word() & 0xFF000000;
  return color;
}

DRAWMODE* GiveDrawMode(RandomCase& run, bool mayBeNull) {
  Numbers& random = run.random();
  if (mayBeNull && random.Percent(run.tame() ? 2 : 22)) {
    run.Say("  draw mode null\n");
    return nullptr;
  }
  DRAWMODE mode{};
  mode.Rop2 = static_cast<int16_t>(random.Percent(25)   ? R2_COPYPEN
                                   : random.Percent(96) ? random.Range(1, 16)
                                                        : random.Range(-32768, 32767));
  // Some rules look at the low byte of the code only.
  if (random.Percent(3)) mode.Rop2 = static_cast<int16_t>(random.Range(1, 16) + 256 * random.Range(-128, 127));
  mode.bkMode = static_cast<int16_t>(random.Percent(48)   ? OPAQUE
                                     : random.Percent(90) ? TRANSPARENT
                                                          : random.Range(-2, 300));
  mode.bkColor = RandomColor(random);
  mode.TextColor = RandomColor(random);
  if (random.Percent(40)) {
    mode.TBreakExtra = static_cast<int16_t>(random.Range(-20, 30));
    mode.BreakCount = static_cast<int16_t>(random.Range(-2, 6));
    mode.BreakErr = static_cast<int16_t>(random.Range(-5, 8));
  }
  if (random.Percent(30)) mode.CharacterExtra = static_cast<int16_t>(random.Range(-4, 6));
  mode.BreakExtra = static_cast<int16_t>(random.Word());
  mode.BreakRem = static_cast<int16_t>(random.Word());
  run.Say(
      "  draw mode Rop2 %d, bkMode %d, bkColor 0x%08X, TextColor 0x%08X, TBreakExtra %d, BreakErr %d, BreakCount %d, "
      "CharacterExtra %d\n",
      mode.Rop2, mode.bkMode, mode.bkColor, mode.TextColor, mode.TBreakExtra, mode.BreakErr, mode.BreakCount,
      mode.CharacterExtra);
  return run.Give(mode);
}

PhysicalBrush* GiveBrush(RandomCase& run) {
  if (!run.tame() && run.random().Percent(12)) {
    run.Say("  brush null\n");
    return nullptr;
  }
  const PhysicalBrush brush = RandomBrush(run.random());
  run.Say("  brush style %u, depth %u, scale %u x %u, color 0x%08X\n", brush.style, brush.patternDepth,
          brush.hatchScale[0], brush.hatchScale[1], brush.colour);
  if (run.verbose() && (brush.style == BS_HATCHED || brush.style == BS_PATTERN)) {
    for (int i = 0; i < 64; ++i) run.Say("%s%08X%s", i % 8 == 0 ? "    " : " ", brush.cells[i], i % 8 == 7 ? "\n" : "");
  }
  return run.Give(brush);
}

PhysicalPen* GivePen(RandomCase& run) {
  if (run.random().Percent(60)) {
    run.Say("  pen null\n");
    return nullptr;
  }
  Numbers& random = run.random();
  const int style = random.Percent(76) ? PS_SOLID : random.Percent(80) ? PS_NULL : random.Range(1, 9);
  const PhysicalPen pen{static_cast<uint16_t>(style), 1, 1, RandomColor(random)};
  run.Say("  pen style %u, color 0x%08X\n", pen.style, pen.colour);
  return run.Give(pen);
}

BandRect RectNearBand(RandomCase& run) {
  Numbers& random = run.random();
  const BandRect band = run.CallerBand();
  BandRect rect;
  rect.left = random.Range(band.left - 12, band.right + 4);
  rect.top = random.Range(band.top - 6, band.bottom + 2);
  rect.right = random.Percent(92) ? random.Range(rect.left, band.right + 12) : rect.left - random.Range(0, 5);
  rect.bottom = random.Percent(92) ? random.Range(rect.top, band.bottom + 6) : rect.top - random.Range(0, 5);
  return rect;
}

BandRect* GiveClip(RandomCase& run) {
  Numbers& random = run.random();
  const int pick = random.Range(0, 99);
  const BandRect band = run.CallerBand();
  BandRect clip;
  if (run.tame()) {
    clip = pick < 50 ? BandRect{-20000, -20000, 20000, 20000}
                     : BandRect{band.left + random.Range(-2, 3), band.top + random.Range(-2, 1),
                                band.right - random.Range(-2, 3), band.bottom - random.Range(-2, 1)};
    run.SayRect("  clip", &clip);
    return run.Give(clip);
  }
  if (pick < 3) {
    run.SayRect("  clip", nullptr);
    return nullptr;
  }
  if (pick < 30) {
    clip = {-20000, -20000, 20000, 20000};
  } else if (pick < 40) {
    clip = band;
  } else if (pick < 48) {
    clip = {0, 0, 0, 0};
  } else if (pick < 56) {
    clip = {0, 0, random.Range(0, 4000), random.Range(0, 4000)};
  } else if (pick < 60) {
    clip = {band.right + 3, band.top, band.right + 40, band.bottom};
  } else if (pick < 63) {
    // All zeros once the origin is added.
    clip = {-run.origin().x, -run.origin().y, -run.origin().x, -run.origin().y};
  } else {
    clip = RectNearBand(run);
    // A single edge of 0 has a meaning of its own for tags.
    int32_t* const edges[] = {&clip.left, &clip.top, &clip.right, &clip.bottom};
    if (random.Percent(12)) *random.Pick(edges) = 0;
  }
  run.SayRect("  clip", &clip);
  return run.Give(clip);
}

}  // namespace qnv::test

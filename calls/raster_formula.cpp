// Finds the shortest formula of every operation, from short ones to long ones.
#include "calls/raster_formula.h"

#include <array>
#include <cstddef>

namespace qnv::calls {
namespace {

enum class Operator : uint8_t { kUnknown, kLeaf, kNot, kAnd, kOr, kXor };

struct Formula {
  Operator kind = Operator::kUnknown;
  uint8_t left = 0, right = 0;
  int length = 0;
};

class Formulas {
 public:
  Formulas() {
    for (const std::size_t leaf : {0xF0u, 0xCCu, 0xAAu, 0x00u, 0xFFu}) all_[leaf] = {Operator::kLeaf, 0, 0, 1};
    int found = 5;
    // Every length is made of two shorter ones, or of one and an inversion.
    for (int length = 2; found < 256; ++length) {
      for (int a = 0; a < 256; ++a) {
        const Formula& left = all_[static_cast<std::size_t>(a)];
        if (left.kind == Operator::kUnknown || left.length >= length) continue;
        if (left.length + 1 == length) found += Add(static_cast<uint8_t>(~a), {Operator::kNot, Byte(a), 0, length});
        for (int b = a + 1; b < 256; ++b) {
          const Formula& right = all_[static_cast<std::size_t>(b)];
          if (right.kind == Operator::kUnknown || left.length + right.length + 1 != length) continue;
          found += Add(Byte(a & b), {Operator::kAnd, Byte(a), Byte(b), length});
          found += Add(Byte(a | b), {Operator::kOr, Byte(a), Byte(b), length});
          found += Add(Byte(a ^ b), {Operator::kXor, Byte(a), Byte(b), length});
        }
      }
    }
  }

  std::string TextOf(uint8_t index, bool isPart) const {
    const Formula& formula = all_[index];
    const char* sign = nullptr;
    switch (formula.kind) {
      case Operator::kLeaf:
        return index == 0xF0 ? "P" : index == 0xCC ? "S" : index == 0xAA ? "D" : index == 0 ? "0" : "1";
      case Operator::kNot: return "~" + TextOf(formula.left, true);
      case Operator::kAnd: sign = " & "; break;
      case Operator::kOr: sign = " | "; break;
      default: sign = " ^ ";
    }
    // The letters in the order P, S, D where both sides are single ones: larger numbers first.
    const std::string text = TextOf(formula.right, true) + sign + TextOf(formula.left, true);
    return isPart ? "(" + text + ")" : text;
  }

 private:
  static uint8_t Byte(int value) { return static_cast<uint8_t>(value); }
  int Add(uint8_t index, const Formula& formula) {
    if (all_[index].kind != Operator::kUnknown) return 0;
    all_[index] = formula;
    return 1;
  }

  std::array<Formula, 256> all_;
};

}  // namespace

std::string RasterFormula(uint8_t index) {
  static const Formulas kFormulas;
  return kFormulas.TextOf(index, false);
}

}  // namespace qnv::calls

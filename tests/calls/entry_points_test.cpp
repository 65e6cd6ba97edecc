// The table of the entry points against the declarations of the interface and the export list.
#include "calls/entry_points.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "calls/invoke.h"

namespace qnv::test {
namespace {

using calls::Direction;
using calls::Memory;
using calls::Type;

template <class T>
constexpr Type TypeOf() {
  if constexpr (std::is_same_v<T, DeviceHandle*>) return Type::kHandle;
  if constexpr (std::is_same_v<T, int32_t>) return Type::kInt32;
  if constexpr (std::is_same_v<T, uint32_t>) return Type::kUint32;
  if constexpr (std::is_same_v<T, void*>) return Type::kVoid;
  if constexpr (std::is_same_v<T, const void*>) return Type::kConstVoid;
  if constexpr (std::is_same_v<T, const DeviceDescription*>) return Type::kDescription;
  if constexpr (std::is_same_v<T, const BandRect*>) return Type::kRect;
  if constexpr (std::is_same_v<T, DeviceSize*>) return Type::kDeviceSize;
  if constexpr (std::is_same_v<T, uint32_t*>) return Type::kUint32Pointer;
  if constexpr (std::is_same_v<T, const int16_t*>) return Type::kWords;
  if constexpr (std::is_same_v<T, const PhysicalPen*>) return Type::kPen;
  if constexpr (std::is_same_v<T, const PhysicalBrush*>) return Type::kBrush;
  if constexpr (std::is_same_v<T, DRAWMODE*>) return Type::kDrawMode;
  if constexpr (std::is_same_v<T, const DRAWMODE*>) return Type::kConstDrawMode;
  if constexpr (std::is_same_v<T, const SourceBitmap*>) return Type::kSource;
}

struct Declared {
  std::vector<Type> types;
  std::vector<bool> isConstPointer;
  bool returnsHandle = false, returnsNothing = false, returnsSigned = false;
};

template <class T>
constexpr bool IsConstPointer() {
  return std::is_pointer_v<T> && std::is_const_v<std::remove_pointer_t<T>>;
}

template <class R, class... A>
Declared DeclarationOf(R (*)(A...)) {
  return {{TypeOf<A>()...},
          {IsConstPointer<A>()...},
          std::is_same_v<R, DeviceHandle*>,
          std::is_void_v<R>,
          std::is_same_v<R, int32_t>};
}

const std::map<std::string, Declared>& Declarations() {
#define QNV_DECLARED(name) \
  { #name, DeclarationOf(name) }
  static const std::map<std::string, Declared> declarations = {QNV_DECLARED(QNVEnable),
                                                               QNV_DECLARED(QNVDisable),
                                                               QNV_DECLARED(QNVGetDeviceInfo),
                                                               QNV_DECLARED(QNVControl),
                                                               QNV_DECLARED(QNVColorInfo),
                                                               QNV_DECLARED(QNVRealizeObject),
                                                               QNV_DECLARED(QNVPixel),
                                                               QNV_DECLARED(QNVPolyPixel),
                                                               QNV_DECLARED(QNVDevBitBlt),
                                                               QNV_DECLARED(QNVOutput),
                                                               QNV_DECLARED(QNVDevExtTextOut),
                                                               QNV_DECLARED(QNVStretchDIBits),
                                                               QNV_DECLARED(QNVDevSetDIBitsToDevice)};
#undef QNV_DECLARED
  return declarations;
}

TEST(EntryPoints, HaveTheTypesOfTheirDeclarations) {
  ASSERT_EQ(Declarations().size(), calls::kFunctionCount);
  for (std::size_t f = 0; f < calls::kFunctionCount; ++f) {
    const calls::EntryPoint& entry = calls::kEntryPoints[f];
    EXPECT_EQ(static_cast<std::size_t>(entry.function), f) << entry.name;
    const auto found = Declarations().find(entry.name);
    ASSERT_NE(found, Declarations().end()) << entry.name;
    const Declared& declared = found->second;
    ASSERT_EQ(entry.argumentCount, declared.types.size()) << entry.name;
    EXPECT_EQ(entry.result == calls::Result::kHandle, declared.returnsHandle) << entry.name;
    EXPECT_EQ(entry.result == calls::Result::kNothing, declared.returnsNothing) << entry.name;
    EXPECT_EQ(entry.result == calls::Result::kSigned, declared.returnsSigned) << entry.name;
    for (std::size_t i = 0; i < entry.argumentCount; ++i) {
      const calls::Argument& argument = entry.arguments[i];
      EXPECT_EQ(argument.type, declared.types[i]) << entry.name << ", " << argument.name;
      // What is written is not const, and what is const is not written.
      if (declared.isConstPointer[i]) {
        EXPECT_EQ(argument.direction, Direction::kIn) << entry.name << argument.name;
      }
      if (argument.direction != Direction::kIn) {
        EXPECT_FALSE(declared.isConstPointer[i]) << entry.name << argument.name;
      }
      const bool isNumber = argument.type == Type::kInt32 || argument.type == Type::kUint32;
      EXPECT_EQ(argument.memory == Memory::kNone, isNumber) << entry.name << ", " << argument.name;
      EXPECT_EQ(argument.memory == Memory::kHandle, argument.type == Type::kHandle) << entry.name << argument.name;
    }
  }
}

// The names of the arguments are those of the header: its text is searched for each declaration.
TEST(EntryPoints, HaveTheNamesOfTheHeader) {
  std::ifstream header(std::string(QNV_TEST_SOURCE_DIR) + "/../include/qnvdrv10.h");
  const std::string text((std::istreambuf_iterator<char>(header)), std::istreambuf_iterator<char>());
  ASSERT_FALSE(text.empty());
  for (const calls::EntryPoint& entry : calls::kEntryPoints) {
    const std::size_t begin = text.find(std::string("QNV_CALL ") + entry.name + "(");
    ASSERT_NE(begin, std::string::npos) << entry.name;
    std::size_t at = text.find('(', begin);
    const std::string declaration = text.substr(at + 1, text.find(");", at) - at - 1) + ",";
    at = 0;
    for (std::size_t i = 0; i < entry.argumentCount; ++i) {
      const std::size_t comma = declaration.find(',', at);
      ASSERT_NE(comma, std::string::npos) << entry.name;
      const std::size_t name = declaration.find_last_of(" *", comma) + 1;
      EXPECT_EQ(declaration.substr(name, comma - name), entry.arguments[i].name) << entry.name;
      at = comma + 1;
    }
    EXPECT_EQ(at, declaration.size()) << entry.name;
  }
}

TEST(EntryPoints, HaveThePublishedOrdinals) {
  std::ifstream published(std::string(QNV_TEST_SOURCE_DIR) + "/published_exports.txt");
  std::map<std::string, int> ordinals;
  for (std::string line; std::getline(published, line);) {
    const std::size_t space = line.find(" QNV");
    if (line.empty() || line[0] < '0' || line[0] > '9' || space == std::string::npos) continue;
    std::string name = line.substr(space + 1);
    if (!name.empty() && name.back() == '\r') name.pop_back();
    ordinals[name] = std::stoi(line);
  }
  ASSERT_EQ(ordinals.size(), calls::kFunctionCount);
  for (const calls::EntryPoint& entry : calls::kEntryPoints)
    EXPECT_EQ(ordinals[entry.name], entry.ordinal) << entry.name;
}

}  // namespace
}  // namespace qnv::test

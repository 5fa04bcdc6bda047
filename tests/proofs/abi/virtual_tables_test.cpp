// SPDX-License-Identifier: Apache-2.0
// The virtual tables of the exported classes, entry by entry: other code calls through them by
// number.
#include <dlfcn.h>
#include <elf.h>
#include <gtest/gtest.h>
#include <link.h>

#include <cstddef>
#include <string>
#include <vector>

namespace lumora::test {
namespace {

// A class by its mangled name, say "9GLProgram".
std::string Mangled(const std::string& name) {
  return std::to_string(name.size()) + name;
}

void* Find(const std::string& symbol) {
  static void* const library = dlopen(LUMORA_LIBRARY, RTLD_NOW);
  return library != nullptr ? dlsym(library, symbol.c_str()) : nullptr;
}

// What a table holds, as it lies in memory: offset to the top and type information, then functions.
struct Table {
  const void* const* entries = nullptr;
  size_t count = 0;
};

Table TableOf(const std::string& mangled_class) {
  const std::string symbol = "_ZTV" + mangled_class;
  void* const address = Find(symbol);
  Dl_info info;
  void* entry = nullptr;
  if (address == nullptr || dladdr1(address, &info, &entry, RTLD_DL_SYMENT) == 0) {
    return {};
  }
  const size_t bytes = static_cast<const ElfW(Sym)*>(entry)->st_size;
  return {static_cast<const void* const*>(address), bytes / sizeof(void*)};
}

// Functions by their mangled names, an empty one for an entry that is null.
void ExpectFunctions(const std::string& mangled_class, const std::vector<std::string>& functions) {
  SCOPED_TRACE(mangled_class);
  const Table table = TableOf(mangled_class);
  ASSERT_EQ(table.count, functions.size() + 2);
  EXPECT_EQ(table.entries[0], nullptr) << "a class lies at the start of its objects";
  EXPECT_EQ(table.entries[1], nullptr) << "there is no type information";
  for (size_t slot = 0; slot < functions.size(); ++slot) {
    const void* const function = functions[slot].empty() ? nullptr : Find(functions[slot]);
    EXPECT_EQ(function == nullptr, functions[slot].empty()) << functions[slot];
    EXPECT_EQ(table.entries[slot + 2], function) << "slot " << slot << ": " << functions[slot];
  }
}

// The eight slots of a program, with the destructors, Load and Use of `own` and the rest of the
// base's.
std::vector<std::string> ProgramSlots(const std::string& own, const std::string& load,
                                      const std::string& use) {
  return {"_ZN" + own + "D1Ev",
          "_ZN" + own + "D0Ev",
          load,
          use,
          "_ZN9GLProgram14SetVertexCoordEiPKv",
          "_ZN9GLProgram15SetTextureCoordEiPKv",
          "_ZN9GLProgram4DrawEv",
          "_ZN9GLProgram4DrawEiPKv"};
}

class ProgramTables : public testing::TestWithParam<const char*> {};

TEST_P(ProgramTables, KeepTheBasesOrderAndOverrideOnlyLoadAndUse) {
  const std::string name = Mangled(GetParam());
  ExpectFunctions(name, ProgramSlots(name, "_ZN" + name + "4LoadEv", "_ZN" + name + "3UseEv"));
}

INSTANTIATE_TEST_SUITE_P(All, ProgramTables,
                         testing::Values("GLProgYUV2RGB", "GLProgRGB2HSI", "GLProgYUV2HSI",
                                         "GLProgHSI2YUV", "GLProgRGBtoY", "GLProgRGBtoUV",
                                         "GLProgCheekSlimmer", "GLProgCheekSlimmerLarge",
                                         "GLProgCheekSlimmerLarge_HSI", "GLProgFaceWhitening",
                                         "GLProgFaceWhiteningLarge", "GLProgRectificaton",
                                         "GLProgRadialDistortion"),
                         [](const auto& program) { return std::string(program.param); });

TEST(AbstractPrograms, LeaveLoadOpen) {
  for (const char* name : {"GLProgram", "GLProgWarp", "GLProgWhiteningBase"}) {
    const std::string own = Mangled(name);
    auto slots = ProgramSlots(own, "__cxa_pure_virtual", "_ZN9GLProgram3UseEv");
    // Nothing is ever destroyed through this table: compilers leave these entries empty or not.
    if (TableOf(own).entries[2] == nullptr) slots[0] = slots[1] = "";
    ExpectFunctions(own, slots);
  }
}

TEST(BufferTable, HoldsTheDestructorsOnly) {
  const std::string name = "N6lumora8platform13GraphicBufferE";
  ExpectFunctions(
      name, {"_ZN6lumora8platform13GraphicBufferD1Ev", "_ZN6lumora8platform13GraphicBufferD0Ev"});
}

}  // namespace
}  // namespace lumora::test

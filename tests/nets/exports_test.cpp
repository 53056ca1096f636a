// That no exported native escapes a net: the library is asked what it exports, and the test program which tests it has.
#include <elf.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "tests/nets/catalogue.h"

namespace vorn::tests::nets {
namespace {

constexpr const char* kNets[] = {
    "Laws",    "NullReceivers", "ExtremeIndexes", "AllocationFailures", "LocksAfterRaise", "LocksAfterException",
    "UserCode"};

// The dynamic symbols that a shared library defines. A record of the file is copied out before it is looked at, since
// nothing says that the file was read to an aligned place.
std::set<std::string> exportedBy(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const auto at = [&]<class T>(std::uint64_t offset, T) {
    T record{};
    EXPECT_LE(offset + sizeof(T), bytes.size());
    if (offset + sizeof(T) <= bytes.size()) bytes.copy(reinterpret_cast<char*>(&record), sizeof(T), offset);
    return record;
  };
  std::set<std::string> names;
  const Elf64_Ehdr header = at(0, Elf64_Ehdr{});
  const auto sectionAt = [&](std::uint64_t number) {
    return at(header.e_shoff + number * header.e_shentsize, Elf64_Shdr{});
  };
  for (std::uint64_t i = 0; i < header.e_shnum; ++i) {
    const Elf64_Shdr symbols = sectionAt(i);
    if (symbols.sh_type != SHT_DYNSYM) continue;
    const Elf64_Shdr texts = sectionAt(symbols.sh_link);
    for (std::uint64_t offset = 0; offset < symbols.sh_size; offset += sizeof(Elf64_Sym)) {
      const Elf64_Sym symbol = at(symbols.sh_offset + offset, Elf64_Sym{});
      if (symbol.st_shndx != SHN_UNDEF) names.insert(bytes.c_str() + texts.sh_offset + symbol.st_name);
    }
  }
  return names;
}

// Those of them that compiled programs call: functions of C, named after a class or by what they make of one. The one
// that tells the version is for loaders.
std::set<std::string> exportedNatives() {
  std::set<std::string> natives;
  for (const std::string& name : exportedBy(VORN_COLLECTIONS_LIBRARY)) {
    const bool native = name.starts_with("vorn_collections_") && name != "vorn_collections_version";
    if (native || name.starts_with("Vorn_")) natives.insert(name);
  }
  return natives;
}

// The tests there are, as "Suite native".
std::set<std::string> testsThatRun() {
  std::set<std::string> tests;
  const ::testing::UnitTest& all = *::testing::UnitTest::GetInstance();
  for (int i = 0; i < all.total_test_suite_count(); ++i) {
    const ::testing::TestSuite& suite = *all.GetTestSuite(i);
    for (int j = 0; j < suite.total_test_count(); ++j) {
      const std::string name = suite.GetTestInfo(j)->name();
      tests.insert(std::string(suite.name()).substr(std::string(suite.name()).find('/') + 1) + " " +
                   name.substr(name.find('/') + 1));
    }
  }
  return tests;
}

TEST(Exports, EveryNative_HasARowInTheCatalogue) {
  std::set<std::string> listed;
  for (const Native& native : allNatives()) {
    EXPECT_TRUE(listed.insert(std::string(native.name)).second) << native.name << " has two rows";
  }
  const std::set<std::string> exported = exportedNatives();
  EXPECT_GE(exported.size(), 140U) << "the library's symbols are not what this test takes them for";
  for (const std::string& name : exported) {
    EXPECT_TRUE(listed.contains(name)) << name << " is exported and has no row";
  }
  for (const std::string& name : listed) {
    EXPECT_TRUE(exported.contains(name)) << name << " has a row and is not exported";
  }
}

TEST(Exports, EveryNative_IsInEveryNetOrExcused) {
  const std::set<std::string> tests = testsThatRun();
  for (const std::string& name : exportedNatives()) {
    for (const std::string net : kNets) {
      const bool in = tests.contains(net + " " + name);
      const bool excused = tests.contains(net + "Excuses " + name);
      EXPECT_TRUE(in || excused) << name << " is not in the net " << net;
      EXPECT_FALSE(in && excused) << name << " is both in the net " << net << " and excused from it";
    }
  }
}

}  // namespace
}  // namespace vorn::tests::nets

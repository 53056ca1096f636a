// The data-buffer protocol on new lists where it succeeds, and the mirrors.
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

#include "collections/core/elements/element_types.h"
#include "collections/core/port/object_layout.h"
#include "tests/arraylist/data_buffer_cases.h"

namespace vorn::tests {
namespace {

// ---- New lists with a raw buffer ------------------------------------------------------------------------------------

TEST_F(DataBuffers, NewPrimitiveData_EveryType_GivesItsBufferSized) {
  for (const std::string& type : primitiveNames()) {
    for (const bool synchronised : {false, true}) {
      for (const long long n : {0, 1, 7, 40}) {
        SCOPED_TRACE(type + " " + std::to_string(n));
        void* out = &out;
        void* const data = synchronised ? vorn_collections_ArrayListSync_newPrimitiveData(n, type.c_str(), &out)
                                        : vorn_collections_ArrayList_newPrimitiveData(n, type.c_str(), &out);
        const Handle made = out;
        ASSERT_NE(made.get(), nullptr);
        const ListData& record = *getListData(made);
        EXPECT_EQ(data, record.primitive.data);
        EXPECT_EQ(record.synchronized, synchronised);
        EXPECT_FALSE(record.linked);
        EXPECT_TRUE(wholeNameIs(vorn_type_name(made), synchronised ? "ArrayListSync" : "ArrayList"));
        writeRaw(data, record.primitiveKind, n);
        expectTyped(made, type, primitiveKindForType(type), n);
        EXPECT_EQ(elementsOf(made), alternating(type, n));
        expectMirrorsEmpty(made);
      }
    }
  }
}

TEST_F(DataBuffers, NewPrimitiveData_CapacityDoublesFromTheInlineOne) {
  const auto capacityOf = [](long long n, const char* type) {
    void* out = nullptr;
    vorn_collections_ArrayList_newPrimitiveData(n, type, &out);
    const Handle made = out;
    return getListData(made)->primitive.capacity;
  };
  EXPECT_EQ(capacityOf(0, "Int"), 32U);
  EXPECT_EQ(capacityOf(32, "Int"), 32U);
  EXPECT_EQ(capacityOf(33, "Int"), 64U);
  EXPECT_EQ(capacityOf(128, "Boolean"), 128U);
  EXPECT_EQ(capacityOf(129, "Byte"), 256U);
  EXPECT_EQ(capacityOf(64, "CodeUnit"), 64U);
  EXPECT_EQ(capacityOf(65, "Short"), 128U);
  EXPECT_EQ(capacityOf(16, "Double"), 16U);
  EXPECT_EQ(capacityOf(17, "Long"), 32U);
  EXPECT_EQ(capacityOf(100, "ULong"), 128U);
}

TEST_F(DataBuffers, NewPrimitiveData_NegativeCount_IsZero) {
  for (const long long n : {-1LL, LLONG_MIN}) {
    void* out = nullptr;
    EXPECT_NE(vorn_collections_ArrayList_newPrimitiveData(n, "Double", &out), nullptr);
    const Handle made = out;
    expectTyped(made, "Double", Kind::Double, 0);
  }
}

TEST_F(DataBuffers, NewPrimitiveData_NullAndFullNames) {
  void* out = nullptr;
  writeRaw(vorn_collections_ArrayList_newPrimitiveData(2, nullptr, &out), Kind::Int, 2);
  const Handle unnamed = out;
  expectTyped(unnamed, "Int", Kind::Int, 2);
  out = nullptr;
  writeRaw(vorn_collections_ArrayListSync_newPrimitiveData(2, nullptr, &out), Kind::Int, 2);
  const Handle unnamedSync = out;
  expectTyped(unnamedSync, "Int", Kind::Int, 2);
  out = nullptr;
  writeRaw(vorn_collections_ArrayList_newPrimitiveData(3, "vorn.Char", &out), Kind::UInt, 3);
  const Handle fullyNamed = out;
  expectTyped(fullyNamed, "Char", Kind::UInt, 3);
  EXPECT_EQ(elementsOf(fullyNamed), (Elements{"Char 1", "Char 0", "Char 1"}));
}

TEST_F(DataBuffers, NewPrimitiveData_ListWorksOn) {
  void* out = nullptr;
  void* const data = vorn_collections_ArrayList_newPrimitiveData(2, "Int", &out);
  const Handle made = out;
  const std::int32_t values[] = {INT_MIN, INT_MAX};
  std::memcpy(data, values, sizeof(values));
  vorn_collections_ArrayList_addInt(made, 5);
  EXPECT_EQ(elementsOf(made), (Elements{"Int -2147483648", "Int 2147483647", "Int 5"}));
  vorn_collections_ArrayList_add(made, string("x"));
  EXPECT_RAISED(listTypeError("Int", "vorn.String"));
}

// ---- New lists with a mirror ----------------------------------------------------------------------------------------

TEST_F(DataBuffers, NewPrimitiveI64Data_KeepsIntegerTypesAndBoolean) {
  for (const std::string& type : integerNames(true)) {
    for (const long long n : {0, 3, 20}) {
      SCOPED_TRACE(type + " " + std::to_string(n));
      void* out = &out;
      long long* const data = vorn_collections_ArrayList_newPrimitiveI64Data(n, type.c_str(), &out);
      const Handle made = out;
      ASSERT_NE(made.get(), nullptr);
      ASSERT_EQ(data, getListData(made)->i64Mirror.data);
      EXPECT_EQ(getListData(made)->i64Mirror.size, static_cast<std::uint64_t>(n));
      EXPECT_FALSE(getListData(made)->synchronized);
      expectTyped(made, type, primitiveKindForType(type), 0);
      for (long long i = 0; i < n; ++i) data[i] = (i + 1) % 2;
      vorn_collections_ArrayList_commitPrimitiveI64DataSize(made, n);
      expectTyped(made, type, primitiveKindForType(type), n);
      EXPECT_EQ(elementsOf(made), alternating(type, n));
      expectMirrorsEmpty(made);
    }
  }
}

TEST_F(DataBuffers, NewPrimitiveI64Data_OtherTypes_AreKeptAsLong) {
  for (const char* type : {"Float", "Double", "String", "vorn.String"}) {
    SCOPED_TRACE(type);
    void* out = nullptr;
    long long* const data = vorn_collections_ArrayList_newPrimitiveI64Data(2, type, &out);
    const Handle made = out;
    ASSERT_NE(made.get(), nullptr);
    EXPECT_EQ(kindOf(made), Kind::Long);
    data[0] = LLONG_MIN;
    data[1] = LLONG_MAX;
    vorn_collections_ArrayList_commitPrimitiveI64DataSize(made, 2);
    EXPECT_EQ(kindOf(made), Kind::Long);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(made, 0), LLONG_MIN);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(made, 1), LLONG_MAX);
    EXPECT_AT_REST(made);
  }
}

TEST_F(DataBuffers, NewPrimitiveI64Data_NullNameIsInt_NegativeCountIsZero) {
  for (const long long n : {-1LL, LLONG_MIN}) {
    void* out = nullptr;
    EXPECT_NE(vorn_collections_ArrayList_newPrimitiveI64Data(n, nullptr, &out), nullptr);
    const Handle made = out;
    expectTyped(made, "Int", Kind::Int, 0);
    expectMirrorsEmpty(made);
  }
}

TEST_F(DataBuffers, NewDoubleData_KeepsFloatAndDouble) {
  for (const char* type : {"Float", "Double", "vorn.Float"}) {
    for (const long long n : {0, 3, 20}) {
      SCOPED_TRACE(std::string(type) + " " + std::to_string(n));
      const std::string name = wholeNameIs(type, "Float") ? "Float" : "Double";
      void* out = &out;
      double* const data = vorn_collections_ArrayList_newDoubleData(n, type, &out);
      const Handle made = out;
      ASSERT_NE(made.get(), nullptr);
      ASSERT_EQ(data, getListData(made)->f64Mirror.data);
      EXPECT_EQ(getListData(made)->f64Mirror.size, static_cast<std::uint64_t>(n));
      EXPECT_FALSE(getListData(made)->synchronized);
      expectTyped(made, name, primitiveKindForType(name), 0);
      for (long long i = 0; i < n; ++i) data[i] = static_cast<double>(i) + 0.5;
      vorn_collections_ArrayList_commitDoubleDataSize(made, n);
      expectTyped(made, name, primitiveKindForType(name), n);
      for (long long i = 0; i < n; ++i) {
        EXPECT_EQ(vorn_collections_ArrayList_getDouble(made, i), static_cast<double>(i) + 0.5);
      }
      expectMirrorsEmpty(made);
    }
  }
}

TEST_F(DataBuffers, NewDoubleData_OtherTypes_AreKeptAsDouble) {
  for (const char* type : {"Int", "Boolean", "Char", "String"}) {
    SCOPED_TRACE(type);
    void* out = nullptr;
    double* const data = vorn_collections_ArrayList_newDoubleData(1, type, &out);
    const Handle made = out;
    ASSERT_NE(made.get(), nullptr);
    EXPECT_EQ(kindOf(made), Kind::Double);
    data[0] = 0.1;
    vorn_collections_ArrayList_commitDoubleDataSize(made, 1);
    EXPECT_EQ(kindOf(made), Kind::Double);
    EXPECT_EQ(vorn_collections_ArrayList_getDouble(made, 0), 0.1);
    EXPECT_AT_REST(made);
  }
}

TEST_F(DataBuffers, NewDoubleData_NullNameIsDouble_NegativeCountIsZero) {
  for (const long long n : {-1LL, LLONG_MIN}) {
    void* out = nullptr;
    EXPECT_NE(vorn_collections_ArrayList_newDoubleData(n, nullptr, &out), nullptr);
    const Handle made = out;
    expectTyped(made, "Double", Kind::Double, 0);
    expectMirrorsEmpty(made);
  }
}

// ---- Mirrors --------------------------------------------------------------------------------------------------------

TEST_F(DataBuffers, IntegerMirror_DoublesFromSixteen) {
  const std::vector<std::pair<long long, std::uint64_t>> cases = {{0, 16},  {1, 16},  {16, 16},  {17, 32},
                                                                  {32, 32}, {33, 64}, {100, 128}};
  for (const auto& [n, capacity] : cases) {
    void* out = nullptr;
    vorn_collections_ArrayList_newPrimitiveI64Data(n, "Int", &out);
    const Handle made = out;
    EXPECT_EQ(getListData(made)->i64Mirror.capacity, capacity) << n;
    const Handle prepared = object("ArrayList");
    EXPECT_EQ(vorn_collections_ArrayList_prepareIntData(prepared, n), getListData(prepared)->i64Mirror.data);
    EXPECT_EQ(getListData(prepared)->i64Mirror.capacity, capacity) << n;
    EXPECT_EQ(getListData(prepared)->i64Mirror.size, 0U);
  }
}

TEST_F(DataBuffers, FloatingMirror_DoublesFromEight) {
  const std::vector<std::pair<long long, std::uint64_t>> cases = {{0, 8},   {1, 8},   {8, 8},    {9, 16},
                                                                  {16, 16}, {17, 32}, {100, 128}};
  for (const auto& [n, capacity] : cases) {
    void* out = nullptr;
    vorn_collections_ArrayList_newDoubleData(n, "Double", &out);
    const Handle made = out;
    EXPECT_EQ(getListData(made)->f64Mirror.capacity, capacity) << n;
    const Handle prepared = object("ArrayList");
    EXPECT_EQ(vorn_collections_ArrayList_prepareDoubleData(prepared, n, nullptr),
              getListData(prepared)->f64Mirror.data);
    EXPECT_EQ(getListData(prepared)->f64Mirror.capacity, capacity) << n;
    EXPECT_EQ(getListData(prepared)->f64Mirror.size, 0U);
  }
}

TEST_F(DataBuffers, Mirrors_NeverShrink) {
  const Handle target = object("ArrayList");
  vorn_collections_ArrayList_prepareIntData(target, 40);
  vorn_collections_ArrayList_prepareIntData(target, 1);
  EXPECT_EQ(getListData(target)->i64Mirror.capacity, 64U);
  vorn_collections_ArrayList_prepareDoubleData(target, 40, nullptr);
  vorn_collections_ArrayList_prepareDoubleData(target, 1, nullptr);
  EXPECT_EQ(getListData(target)->f64Mirror.capacity, 64U);
}

TEST_F(DataBuffers, EveryCommit_ResetsBothMirrors) {
  struct Commit {
    const char* name;
    const char* type;
    void (*commit)(void* list, long long n);
  };
  const std::vector<Commit> commits = {
      {"commitIntDataSize", "Int", vorn_collections_ArrayList_commitIntDataSize},
      {"commitPrimitiveI64DataSize", "Byte", vorn_collections_ArrayList_commitPrimitiveI64DataSize},
      {"commitPrimitiveI64DataSizeFast", "Boolean", vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast},
      {"commitDoubleDataSize", "Float", vorn_collections_ArrayList_commitDoubleDataSize},
      {"commitDoubleDataSizeFast", "Double", vorn_collections_ArrayList_commitDoubleDataSizeFast},
      {"commitPrimitiveDataSize", "Int", vorn_collections_ArrayList_commitPrimitiveDataSize},
      {"commitPrimitiveDataSizeFast", "Float", vorn_collections_ArrayList_commitPrimitiveDataSizeFast},
  };
  for (const Commit& commit : commits) {
    for (const bool synchronised : {false, true}) {
      SCOPED_TRACE(commit.name);
      const Handle target = object(className(false, synchronised, commit.type));
      for (int i = 0; i < 3; ++i) vorn_collections_ArrayList_add(target, box(commit.type, 1));
      ListData& record = *getListData(target);
      ASSERT_NE(record.primitiveKind, Kind::None);
      record.i64Mirror.size = 2;
      record.f64Mirror.size = 2;
      commit.commit(target, 3);
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 3);
      expectMirrorsEmpty(target);
      EXPECT_AT_REST(target);
    }
  }
}

}  // namespace
}  // namespace vorn::tests

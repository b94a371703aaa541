#include "platform/system.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/dynamic_library.h"

namespace zentor::platform {
namespace {

TEST(System, MemoryQueriesAgreeWithTheMachine) {
  EXPECT_GT(AvailableMemory(), std::uint64_t{1} << 20U);
  EXPECT_TRUE(CanAllocate(std::uint64_t{1} << 20U));
  EXPECT_FALSE(CanAllocate(std::uint64_t{1} << 60U));
}

TEST(System, TheProgramKnowsItsPath) { EXPECT_TRUE(ProgramPath().ends_with("/test_platform")); }

TEST(DynamicLibraries, LoadFindAndMove) {
  EXPECT_FALSE(DynamicLibrary("./no-such-library.so"));
  EXPECT_EQ(DynamicLibrary().Find<double (*)(double)>("cos"), nullptr);
  DynamicLibrary library("libm.so.6");
  ASSERT_TRUE(library);
  const DynamicLibrary moved = std::move(library);
  const auto cosine = moved.Find<double (*)(double)>("cos");
  ASSERT_NE(cosine, nullptr);
  EXPECT_EQ(cosine(0.0), 1.0);
  EXPECT_EQ(moved.Find<void (*)()>("no_such_entry_point"), nullptr);
}

}  // namespace
}  // namespace zentor::platform

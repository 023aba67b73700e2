#include "platform/linux/passing/SealedMemory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

namespace quillmere {
namespace {

constexpr int kAll = F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE | F_SEAL_SEAL;

Descriptor memoryWith(std::string_view bytes, int seals) {
  Descriptor memory(::memfd_create("test", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  EXPECT_EQ(::write(memory.number(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  EXPECT_EQ(::fcntl(memory.number(), F_ADD_SEALS, seals), 0);
  return memory;
}

TEST(SealedMemory, IsReadAsItWasMade) {
  const auto memory = SealedMemory::of({"one ", "", "two"});
  ASSERT_TRUE(memory);
  const auto mapped = SealedMemory::mapped(*memory, 7);
  ASSERT_TRUE(mapped);
  EXPECT_EQ(mapped->bytes(), "one two");
}

TEST(SealedMemory, CanBeChangedByNobody) {
  const auto memory = SealedMemory::of({"text"});
  ASSERT_TRUE(memory);
  EXPECT_EQ(::write(memory->number(), "x", 1), -1);
  EXPECT_EQ(::ftruncate(memory->number(), 0), -1);
  EXPECT_EQ(::ftruncate(memory->number(), 4096), -1);
  EXPECT_EQ(::mmap(nullptr, 4, PROT_WRITE, MAP_SHARED, memory->number(), 0), MAP_FAILED);
}

TEST(SealedMemory, IsTakenWithAllItsSealsOnly) {
  EXPECT_TRUE(SealedMemory::mapped(memoryWith("text", kAll), 4));
  for (const int seal : {F_SEAL_SHRINK, F_SEAL_GROW, F_SEAL_WRITE, F_SEAL_SEAL}) {
    EXPECT_FALSE(SealedMemory::mapped(memoryWith("text", kAll & ~seal), 4)) << seal;
  }
}

TEST(SealedMemory, IsTakenWithExactlyItsBytes) {
  const auto memory = SealedMemory::of({"text"});
  for (const uint64_t bytes : {uint64_t{0}, uint64_t{3}, uint64_t{5}, uint64_t{1} << 40, ~uint64_t{0}}) {
    EXPECT_FALSE(SealedMemory::mapped(*memory, bytes)) << bytes;
  }
}

TEST(SealedMemory, IsNoFileAndNoPipe) {
  const Descriptor file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
  EXPECT_FALSE(SealedMemory::mapped(file, 4));
  EXPECT_FALSE(SealedMemory::mapped(Descriptor(), 4));
}

}  // namespace
}  // namespace quillmere

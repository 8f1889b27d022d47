// Memory that many objects share: who keeps it, who frees it, and that nobody notices otherwise.
#include "base/pool.h"

#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/Exception.h>
#include <Pegasus/Common/String.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace {

// Of this program, so that a piece that is never freed, or freed early, is seen.
std::atomic<long> livingAllocations{0};

void Free(void* memory) noexcept {
  if (memory != nullptr) --livingAllocations;
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++livingAllocations;
  return memory;
}
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Free(memory); }

namespace Pegasus::internal {
namespace {

constexpr std::size_t kLargeText = 1000 * 1000;

struct Counted : SharedBody {
  explicit Counted(int& count) noexcept : living(count) { ++living; }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;
  ~Counted() override { --living; }

  int& living;
};

String Numbered(Pool& pool, int number) { return PoolAccess::MakeString(pool, "text " + std::to_string(number)); }

TEST(Pool, ManyObjectsTakeFewAllocations) {
  const long before = livingAllocations;
  {
    Pool pool(kLargeText);
    std::vector<String> texts(1000);
    const long own = livingAllocations - before;
    for (int i = 0; i < 1000; ++i) texts[static_cast<std::size_t>(i)] = Numbered(pool, i);
    EXPECT_LE(livingAllocations - before - own, 3);
    EXPECT_EQ(texts[999], "text 999");
  }
  EXPECT_EQ(livingAllocations, before);
}

TEST(Pool, APieceLivesAsLongAsAnythingInIt) {
  const long before = livingAllocations;
  {
    String kept;
    {
      Pool pool(kLargeText);
      for (int i = 0; i < 10000; ++i) {
        const String text = Numbered(pool, i);
        if (i == 5000) kept = text;
      }
    }
    EXPECT_EQ(livingAllocations, before + 1) << "the piece of the text that is kept, and no other one";
    const String copy = kept;
    kept.clear();
    EXPECT_EQ(livingAllocations, before + 1);
    EXPECT_EQ(copy, "text 5000");
  }
  EXPECT_EQ(livingAllocations, before);
}

TEST(Pool, SmallTextsTakeSmallPieces) {
  const auto bytes = [](std::size_t textBytes) {
    Pool pool(textBytes);
    Uint32 pieceOffset = 0;
    Uint32 largest = 0;
    // Memory that is given back at once: the pool does not use it again before the piece is left.
    for (int i = 0; i < 10000; ++i) {
      void* const memory = pool.Allocate(16, pieceOffset);
      FreeShared(memory, pieceOffset);
      largest = std::max(largest, pieceOffset + 16);
    }
    return largest;
  };
  EXPECT_EQ(bytes(0), 504U);
  EXPECT_EQ(bytes(4000), 1992U);
  EXPECT_GT(bytes(kLargeText), 30000U);
  EXPECT_LE(bytes(kLargeText), 32768U);
}

TEST(Pool, LargeObjectsHaveMemoryOfTheirOwn) {
  Pool pool(kLargeText);
  Uint32 pieceOffset = 1;
  void* const memory = pool.Allocate(10000, pieceOffset);
  EXPECT_EQ(pieceOffset, 0U);
  FreeShared(memory, pieceOffset);
  const std::string text(10000, 'x');
  EXPECT_EQ(PoolAccess::MakeString(pool, text), text.c_str());
}

TEST(Pool, TextsAreChangedApartFromEachOther) {
  Pool pool(kLargeText);
  String first = Numbered(pool, 1);
  const String second = Numbered(pool, 2);
  const String copy = first;
  first.append(second);
  EXPECT_EQ(first, "text 1text 2");
  EXPECT_EQ(copy, "text 1");
  String third = Numbered(pool, 3);
  third[0] = Char16('T');
  third.append(Char16('!'));
  EXPECT_EQ(third, "Text 3!");
  EXPECT_EQ(second, "text 2");
}

TEST(Pool, TextsAreUtf8) {
  Pool pool(kLargeText);
  EXPECT_EQ(PoolAccess::MakeString(pool, "K\xC3\xA4se und mehr"), String("K\xC3\xA4se und mehr"));
  EXPECT_EQ(PoolAccess::MakeString(pool, ""), String());
  EXPECT_THROW(PoolAccess::MakeString(pool, "long enough, but \xFF"), Exception);
}

TEST(Pool, ArraysGrowOutOfIt) {
  const long before = livingAllocations;
  {
    Pool pool(kLargeText);
    Array<String> array = PoolAccess::MakeArray<String>(pool, 2);
    EXPECT_EQ(array.getCapacity(), 2U);
    const Array<String> empty = array;
    for (int i = 0; i < 5; ++i) array.append(Numbered(pool, i));
    ASSERT_EQ(array.size(), 5U);
    EXPECT_EQ(array[4], "text 4");
    EXPECT_EQ(empty.size(), 0U);
    EXPECT_EQ(PoolAccess::MakeArray<String>(pool, 0).getCapacity(), 0U);
  }
  EXPECT_EQ(livingAllocations, before);
}

TEST(Pool, TheLastReferenceDestroysABody) {
  int living = 0;
  Pool pool(kLargeText);
  for (Pool* const where : {&pool, static_cast<Pool*>(nullptr)}) {
    SharedPointer<Counted> first = MakeBody<Counted>(where, living);
    SharedPointer<Counted> second = first;
    EXPECT_FALSE(second.IsSole());
    first = SharedPointer<Counted>();
    EXPECT_FALSE(first);
    EXPECT_TRUE(second.IsSole());
    EXPECT_EQ(living, 1);
    const SharedPointer<Counted> third = std::move(second);
    EXPECT_EQ(&third->living, &living);
  }
  EXPECT_EQ(living, 0);
}

TEST(Pool, ASweepFreesWhatLiesInSeveralPieces) {
  const long before = livingAllocations;
  int living = 0;
  {
    std::vector<SharedPointer<Counted>> bodies;
    {
      Pool pool(0);
      for (int i = 0; i < 100; ++i) bodies.push_back(MakeBody<Counted>(i % 7 == 0 ? nullptr : &pool, living));
    }
    const SharedPointer<Counted> kept = bodies[50];
    {
      PoolSweep sweep;
      for (auto& body : bodies) body.Release([&](void* memory, Uint32 offset) { sweep.Free(memory, offset); });
    }
    EXPECT_EQ(living, 1);
    EXPECT_TRUE(kept.IsSole());
  }
  EXPECT_EQ(living, 0);
  EXPECT_EQ(livingAllocations, before);
}

TEST(Pool, CopiesMayDieInOtherThreads) {
  constexpr int kTexts = 2000;
  const long before = livingAllocations;
  {
    std::vector<std::thread> threads;
    Pool pool(kLargeText);
    for (int t = 0; t < 4; ++t) {
      std::vector<String> texts;
      texts.reserve(kTexts);
      for (int i = 0; i < kTexts; ++i) texts.push_back(Numbered(pool, i));
      const auto work = [](const std::vector<String>& mine) {
        for (int round = 0; round < 20; ++round) {
          std::vector<String> copies = mine;
          copies.pop_back();
        }
      };
      threads.emplace_back(work, texts);
      threads.emplace_back(work, std::move(texts));
    }
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(livingAllocations, before);
}

}  // namespace
}  // namespace Pegasus::internal

// Arrays: value semantics, bounds, aliasing of their own elements, and element types that own memory.
#include <Pegasus/Common/Array.h>
#include <Pegasus/Common/ArrayInter.h>
#include <Pegasus/Common/CIMDateTime.h>
#include <Pegasus/Common/CIMName.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "thrown.h"

namespace Pegasus {
namespace {

using test::Catch;
using test::Thrown;

const Thrown kOutOfBounds{"IndexOutOfBoundsException", "index out of bounds"};

template <typename T>
std::string Digits(const Array<T>& array) {
  std::string text;
  for (Uint32 i = 0; i < array.size(); ++i) {
    text += std::to_string(array[i]);
  }
  return text;
}

Array<Uint32> Counting(Uint32 n) {
  Array<Uint32> array;
  for (Uint32 i = 0; i < n; ++i) {
    array.append(i);
  }
  return array;
}

TEST(Array, IsMadeEmptyOfASizeOrOfItems) {
  EXPECT_EQ(Array<Uint16>().size(), 0U);
  EXPECT_EQ(Array<Uint16>().getCapacity(), 0U);
  EXPECT_NE(Array<Uint64>().getData(), nullptr);
  EXPECT_EQ(Digits(Array<Uint16>(3)), "000");
  EXPECT_EQ(Digits(Array<Uint16>{1, 2}), "2");
  EXPECT_EQ(Digits(Array<Uint16>(2, 7)), "77");
  const Uint16 items[] = {4, 5, 6};
  EXPECT_EQ(Digits(Array<Uint16>(items, 3)), "456");
  EXPECT_EQ(Array<String>(2)[1], "");
  EXPECT_EQ(Array<String>(0).size(), 0U);
}

TEST(Array, ChecksIndices) {
  Array<Uint32> array = Counting(2);
  const Array<Uint32>& constant = array;
  EXPECT_EQ(Catch([&] { array[2] = 1; }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { static_cast<void>(constant[2]); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { static_cast<void>(constant[PEG_NOT_FOUND]); }), kOutOfBounds);
  Array<String> empty;
  EXPECT_EQ(Catch([&] { static_cast<void>(empty[0]); }), kOutOfBounds);
}

TEST(Array, CopiesAreIndependent) {
  Array<String> original(2, String("a"));
  Array<String> copy(original);
  copy[0] = "changed";
  EXPECT_EQ(original[0], "a");
  original.append("third");
  EXPECT_EQ(copy.size(), 2U);
  copy = original;
  original.clear();
  EXPECT_EQ(copy.size(), 3U);
  copy.remove(0);
  const Array<String>& same = copy;
  copy = same;
  EXPECT_EQ(copy.size(), 2U);
  EXPECT_EQ(copy[1], "third");
}

TEST(Array, AppendsItsOwnElements) {
  Array<String> array(1, String("first"));
  for (int i = 0; i < 40; ++i) {
    array.append(array[0]);
    array.prepend(array[array.size() - 1]);
  }
  EXPECT_EQ(array.size(), 81U);
  EXPECT_EQ(array[80], "first");
  array.appendArray(array);
  EXPECT_EQ(array.size(), 162U);
  array.append(array.getData(), 2);
  array.insert(1, array.getData(), 2);
  array.grow(3, array[0]);
  EXPECT_EQ(array.size(), 169U);
  for (Uint32 i = 0; i < array.size(); ++i) {
    ASSERT_EQ(array[i], "first");
  }
}

TEST(Array, InsertsAnywhereUpToTheEnd) {
  Array<Uint32> array = Counting(3);
  array.insert(3, 9);
  array.insert(1, 8);
  array.prepend(7);
  EXPECT_EQ(Digits(array), "708129");
  const Uint32 items[] = {4, 5};
  array.prepend(items, 2);
  array.insert(2, items, 2);
  array.insert(0, items, 0);
  EXPECT_EQ(Digits(array), "4545708129");
  EXPECT_EQ(Catch([&] { array.insert(11, 1); }), kOutOfBounds);
  EXPECT_EQ(Digits(array), "4545708129");
}

TEST(Array, RemovesWhatThereIs) {
  Array<Uint32> array = Counting(6);
  array.remove(1, 2);
  EXPECT_EQ(Digits(array), "0345");
  array.remove(0);
  array.remove(0, 0);
  EXPECT_EQ(Digits(array), "345");
  EXPECT_EQ(Catch([&] { array.remove(0, 5); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { array.remove(3); }), kOutOfBounds);
  EXPECT_EQ(Catch([&] { array.remove(1, PEG_NOT_FOUND); }), kOutOfBounds);
  EXPECT_EQ(Digits(array), "345");
  array.remove(2, 10);
  EXPECT_EQ(Digits(array), "34") << "at the last element any number removes that one";
  array.remove(0, 2);
  EXPECT_EQ(array.size(), 0U);
  EXPECT_EQ(Catch([&] { array.remove(0); }), kOutOfBounds);
}

TEST(Array, GrowsReservesSwapsAndClears) {
  Array<String> array;
  array.reserveCapacity(10);
  EXPECT_GE(array.getCapacity(), 10U);
  EXPECT_EQ(array.size(), 0U);
  array.grow(2, "x");
  array.grow(0, "y");
  Array<String> other(1, String("other"));
  array.swap(other);
  EXPECT_EQ(array[0], "other");
  EXPECT_EQ(other.size(), 2U);
  other.reserveCapacity(1);
  EXPECT_EQ(other[1], "x");
  other.clear();
  EXPECT_EQ(other.size(), 0U);
}

TEST(Array, MovesWithoutCopyingElements) {
  Array<String> source(3, String("text"));
  const String* const data = source.getData();
  Array<String> target(std::move(source));
  EXPECT_EQ(target.getData(), data);
  Array<String> assigned;
  assigned = std::move(target);
  EXPECT_EQ(assigned.getData(), data);
}

TEST(Array, HoldsTheOtherOwnedTypes) {
  Array<CIMName> names;
  names.append(CIMName("A"));
  names.append("B");
  EXPECT_EQ(names[1], CIMName("b"));
  Array<CIMNamespaceName> nameSpaces(1);
  EXPECT_TRUE(nameSpaces[0].isNull());
  Array<CIMDateTime> times(1);
  EXPECT_TRUE(times[0].isInterval());
  Array<Boolean> flags(2, true);
  flags[0] = false;
  EXPECT_EQ(Digits(flags), "01");
  Array<Char16> units(1, Char16('a'));
  EXPECT_TRUE(units[0] == 'a');
  Array<Real64> reals(1, 0.5);
  EXPECT_EQ(reals[0], 0.5);
}

TEST(Array, GrowsToManyElements) {
  const Array<Uint32> array = Counting(100000);
  EXPECT_EQ(array.size(), 100000U);
  EXPECT_EQ(array[99999], 99999U);
}

TEST(Array, CopiesMayBeUsedFromSeveralThreads) {
  const Array<String> shared(8, String("text"));
  std::vector<std::thread> threads;
  std::vector<Uint32> sizes(4);
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    threads.emplace_back([copy = shared, &size = sizes[i]] {
      for (int round = 0; round < 500; ++round) {
        Array<String> mine(copy);
        mine[0] = "mine";
        mine.append("more");
        size = mine.size();
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(shared[0], "text");
  EXPECT_EQ(sizes, std::vector<Uint32>(4, 9));
}

}  // namespace
}  // namespace Pegasus

// One row of the table of faults: watches what a client makes of a fault, checks that time, memory and descriptors stay
// within bounds and that no credentials leak, and prints the row's line of the table.
#pragma once

#include <Pegasus/Client/CIMClient.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

#include "testing/refused_memory.h"
#include "thrown.h"

namespace Pegasus::test {

inline constexpr char kHost[] = "127.0.0.1";
inline constexpr char kUser[] = "user";
inline constexpr char kPassword[] = "geheim7";
/// The same as a Basic authorization carries them.
inline constexpr char kEncoded[] = "dXNlcjpnZWhlaW03";

/// Time-out of clients that are to run into it, and of those that are not.
inline constexpr Uint32 kShort = 300;
inline constexpr Uint32 kLong = 20000;

/// The bounds of a row.
struct RowLimits {
  /// Far more than any row needs, even where every wait takes its full time-out on a busy machine.
  std::chrono::milliseconds time{120000};
  /// What the client's own objects may take at a time.
  std::size_t heapBytes = std::size_t{8} * 1024 * 1024;
  /// By how much the whole process may grow, the test's server and the allocator's reserves included.
  long processKilobytes = 400L * 1024;
};

inline std::ptrdiff_t Descriptors() {
  const std::filesystem::directory_iterator open("/proc/self/fd");
  return std::distance(begin(open), end(open));
}

inline long PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

/// A text for one cell of the table: short, and without what would end the cell or the line.
inline std::string Cell(std::string_view text) {
  constexpr std::size_t kLongest = 100;
  constexpr char kFirstPrintable = ' ';
  constexpr char kDelete = '\x7F';
  std::string cell(text.substr(0, kLongest));
  const auto isOdd = [](char c) { return c < kFirstPrintable || c == kDelete || c == '|'; };
  std::replace_if(cell.begin(), cell.end(), isOdd, '.');
  return cell;
}

/// Lives as long as the test of its row; has to outlive everything that the test opens.
class FaultRow {
 public:
  explicit FaultRow(RowLimits limits = {}) : limits_(limits) {}
  FaultRow(const FaultRow&) = delete;
  FaultRow& operator=(const FaultRow&) = delete;

  ~FaultRow() {
    using std::chrono::milliseconds;
    const auto took = std::chrono::duration_cast<milliseconds>(Clock::now() - start_);
    EXPECT_LT(took, limits_.time);
    EXPECT_LT(heap_, limits_.heapBytes);
    EXPECT_LT(PeakKilobytes() - peak_, limits_.processKilobytes);
    EXPECT_EQ(Descriptors(), descriptors_);
    constexpr std::size_t kKilo = 1024;
    std::ostringstream line;
    line << "fault | " << Name() << " | " << saw_ << " | " << took.count() << " of " << limits_.time.count() << " ms | "
         << heap_ / kKilo << " of " << limits_.heapBytes / kKilo << " KiB | "
         << (::testing::Test::HasFailure() ? "FAILED" : "ok") << '\n';
    std::cout << line.str() << std::flush;
  }

  /// Does something with a client and tells what it threw, memory that ran out included. Only this thread's memory
  /// counts.
  template <typename Action>
  Thrown Watch(Action&& action) {
    Orvane::testing::RestartMemoryCount();
    Thrown thrown;
    try {
      thrown = Catch(action);
    } catch (const std::bad_alloc&) {
      thrown = {"std::bad_alloc", {}};
    }
    heap_ = std::max(heap_, Orvane::testing::PeakBytes());
    EXPECT_EQ(thrown.message.find(kPassword), std::string::npos);
    EXPECT_EQ(thrown.message.find(kEncoded), std::string::npos);
    Saw(thrown.name.empty() ? "a result" : thrown.message.empty() ? thrown.name : thrown.name + ": " + thrown.message);
    return thrown;
  }

  /// As Watch; `expected` without a message leaves the wording free.
  template <typename Action>
  void Expect(Action&& action, const Thrown& expected) {
    const Thrown thrown = Watch(action);
    EXPECT_EQ(thrown.name, expected.name) << thrown.message;
    if (!expected.message.empty()) {
      EXPECT_EQ(thrown.message, expected.message);
    }
  }

  /// Puts what was seen into the line, in place of what was seen before.
  void Saw(std::string_view what) { saw_ = Cell(what); }

 private:
  using Clock = std::chrono::steady_clock;

  static std::string WithoutParameter(const std::string& name) { return name.substr(0, name.find('/')); }

  /// What the row is about, and which one it is: the parameter says it, unless several tests have the same parameters.
  static std::string Name() {
    const ::testing::TestSuite& suite = *::testing::UnitTest::GetInstance()->current_test_suite();
    const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string first = suite.GetTestInfo(0)->name();
    const std::string last = suite.GetTestInfo(suite.total_test_count() - 1)->name();
    const std::size_t parameter = name.find('/');
    const bool isTold = parameter == std::string::npos || WithoutParameter(first) != WithoutParameter(last);
    return WithoutParameter(suite.name()) + " | " + (isTold ? name : name.substr(parameter + 1));
  }

  RowLimits limits_;
  Clock::time_point start_ = Clock::now();
  long peak_ = PeakKilobytes();
  std::ptrdiff_t descriptors_ = Descriptors();
  std::size_t heap_ = 0;
  std::string saw_ = "nothing";
};

inline Uint32 Enumerate(CIMClient& client) {
  return client.enumerateInstances(CIMNamespaceName("root/cimv2"), CIMName("CIM_Foo")).size();
}

/// Calls a method of an instance.
inline CIMValue Invoke(CIMClient& client) {
  Array<CIMParamValue> out;
  return client.invokeMethod(CIMNamespaceName("root/cimv2"), CIMObjectPath("CIM_Foo.A=\"x\""), CIMName("M"),
                             Array<CIMParamValue>(), out);
}

}  // namespace Pegasus::test

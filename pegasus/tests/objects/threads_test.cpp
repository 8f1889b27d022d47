// Values and handles on several threads: copies may be read, copied and destroyed anywhere. The thread sanitizer sees
// more here than the expectations do.
#include <Pegasus/Common/CIMClass.h>
#include <Pegasus/Common/CIMInstance.h>
#include <Pegasus/Common/CIMObject.h>
#include <Pegasus/Common/CIMParamValue.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <thread>
#include <vector>

#include "thrown.h"

namespace Pegasus {
namespace {

constexpr std::size_t kThreads = 4;
constexpr int kRounds = 300;

/// Runs `work`, which returns the number of its successes, on every thread; the sum of what they return.
template <typename Work>
int OnAllThreads(Work work) {
  std::vector<int> successes(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int& mine : successes) {
    threads.emplace_back([work, &mine] { mine = work(); });
  }
  int sum = 0;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads[i].join();
    sum += successes[i];
  }
  return sum;
}

constexpr int kAll = static_cast<int>(kThreads) * kRounds;

CIMInstance Module() {
  CIMInstance inner(CIMName("CIM_Inner"));
  inner.addProperty(CIMProperty(CIMName("Depth"), CIMValue(Uint32(1))));
  CIMProperty name(CIMName("Name"), CIMValue(String("Bay 1")));
  name.addQualifier(CIMQualifier(CIMName("Key"), CIMValue(true)));
  CIMInstance instance(CIMName("CIM_Foo"));
  instance.addProperty(name);
  instance.addProperty(CIMProperty(CIMName("Inner"), CIMValue(inner)));
  instance.setPath(CIMObjectPath("//cmm:5989/root/cimv2:CIM_Foo.Name=\"Bay 1\""));
  return instance;
}

TEST(Threads, CopiesOfAnInstanceAreReadAndClonedAnywhere) {
  const CIMInstance module = Module();
  const String text = CIMObject(module).toString();
  const int successes = OnAllThreads([copy = module, text] {
    int equal = 0;
    for (int round = 0; round < kRounds; ++round) {
      const CIMInstance mine(copy);  // NOLINT(performance-unnecessary-copy-initialization)
      CIMInstance changed = mine.clone();
      changed.getProperty(0).setValue(CIMValue(String("another")));
      const Array<CIMInstance> list(2, mine);
      const CIMObject object(list[1]);
      equal += object.toString() == text && object.getPath() == copy.getPath() && !changed.identical(mine) ? 1 : 0;
    }
    return equal;
  });
  EXPECT_EQ(successes, kAll);
}

TEST(Threads, CopiesOfValuesAndPathsAreChangedAnywhere) {
  const CIMValue value(Module());
  Array<CIMObjectPath> paths;
  paths.append(CIMObjectPath("CIM_Foo.A=1"));
  const CIMValue references(paths);
  const int successes = OnAllThreads([value, references] {
    int right = 0;
    for (int round = 0; round < kRounds; ++round) {
      CIMValue mine(value);
      CIMInstance read;
      mine.get(read);
      read.removeProperty(1);
      mine.set(read);
      Array<CIMObjectPath> list;
      references.get(list);
      list[0].setHost("cmm");
      right += mine != value && list[0].getHost() == "cmm" && references.toString() == "CIM_Foo.A=1 " ? 1 : 0;
    }
    return right;
  });
  EXPECT_EQ(successes, kAll);
}

TEST(Threads, ObjectsOnSeveralThreadsMayHoldOneAndTheSameProperty) {
  CIMProperty shared(CIMName("Name"), CIMValue(String("Bay 1")));
  const int successes = OnAllThreads([shared] {
    int found = 0;
    for (int round = 0; round < kRounds; ++round) {
      CIMInstance holder(CIMName("CIM_Foo"));
      holder.addProperty(shared);
      CIMInstance other(CIMName("CIM_Bar"));
      other.addProperty(holder.getProperty(0));
      found += other.findProperty(CIMName("NAME")) == 0 ? 1 : 0;
      other.removeProperty(0);
    }
    return found;
  });
  EXPECT_EQ(successes, kAll);
  // All of them are gone, so the name is free again.
  EXPECT_EQ(test::Catch([&] { shared.setName(CIMName("Other")); }), test::Thrown());
}

TEST(Threads, ExceptionsAndParametersAreCopiedAnywhere) {
  const CIMParamValue parameter(String("Target"), CIMValue(CIMObjectPath("CIM_Foo.A=1")));
  const CIMException exception(CIM_ERR_FAILED, String("failed"));
  const int successes = OnAllThreads([parameter, exception] {
    int right = 0;
    for (int round = 0; round < kRounds; ++round) {
      const CIMException mine(exception);  // NOLINT(performance-unnecessary-copy-initialization)
      CIMParamValue changed = parameter.clone();
      changed.setIsTyped(false);
      right += mine.getMessage() == "failed" && parameter.isTyped() && parameter.getParameterName() == "Target" ? 1 : 0;
    }
    return right;
  });
  EXPECT_EQ(successes, kAll);
}

}  // namespace
}  // namespace Pegasus

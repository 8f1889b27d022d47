// The store when instances go: what refers to them goes too, and the rest stays where it was.
#include "cim/object_store.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cim/cim_error.h"
#include "orvane/simulator/simulator.h"

namespace Orvane::simulator {
namespace {

ObjectPath SetPath(const std::string& id) {
  ObjectPath path;
  path.className = "CIM_RedundancySet";
  path.keys["InstanceID"].text = id;
  return path;
}

std::vector<std::string> Ids(const ObjectStore& store) {
  std::vector<std::string> ids;
  for (const Instance* set : store.Enumerate("CIM_RedundancySet")) {
    ids.push_back(set->Find("InstanceID")->texts.front());
  }
  return ids;
}

TEST(ObjectStoreRemove, KeepsTheOthersInOrder) {
  ObjectStore store;
  for (const char* id : {"a", "b", "c"}) store.Add("CIM_RedundancySet", {{"InstanceID", Value::Text(id)}});

  EXPECT_TRUE(store.Remove(SetPath("b")));

  EXPECT_EQ(Ids(store), (std::vector<std::string>{"a", "c"}));
  EXPECT_EQ(store.Get(SetPath("c")).Find("InstanceID")->texts.front(), "c");
  EXPECT_THROW(store.Get(SetPath("b")), CimError);
}

TEST(ObjectStoreRemove, TellsThatThereIsNone) {
  ObjectStore store;
  EXPECT_FALSE(store.Remove(SetPath("a")));
  EXPECT_THROW(store.Remove({"CIM_Nonsense", {}}), CimError);
}

TEST(ObjectStoreRemove, MakesRoomForTheSameKeys) {
  ObjectStore store;
  for (int i = 0; i < 2; ++i) {
    store.Add("CIM_RedundancySet", {{"InstanceID", Value::Text("a")}});
    EXPECT_TRUE(store.Remove(SetPath("a")));
  }
  EXPECT_EQ(store.Size(), 0U);
}

TEST(ObjectStoreRemove, TakesTheAssociationsOfTheInstanceWithIt) {
  ObjectStore store = *BuiltInModel().Contents();
  const std::size_t before = store.Enumerate("CIM_Dependency").size();
  const ObjectPath first = store.Enumerate("VORTA_IOModuleComputerSystem").at(0)->Path();
  const ObjectPath second = store.Enumerate("VORTA_IOModuleComputerSystem").at(1)->Path();
  const std::size_t ofSecond = store.Associators(second, {}).size();

  EXPECT_TRUE(store.Remove(first));

  // Its package, its three images, its two endpoints.
  EXPECT_EQ(store.Enumerate("CIM_Dependency").size(), before - 6);
  EXPECT_TRUE(store.Associators(first, {}).empty());
  EXPECT_EQ(store.Associators(second, {}).size(), ofSecond);
}

TEST(ObjectStoreRemove, LeavesEveryOtherPathAndAssociationAsItWas) {
  ObjectStore store = *BuiltInModel().Contents();
  std::vector<ObjectPath> paths;
  for (const char* className : {"CIM_ManagedElement", "CIM_Dependency", "CIM_InstalledSoftwareIdentity"}) {
    for (const Instance* instance : store.Enumerate(className)) paths.push_back(instance->Path());
  }
  std::vector<std::vector<ObjectPath>> associators;
  for (const ObjectPath& path : paths) {
    associators.emplace_back();
    for (const Instance* other : store.Associators(path, {})) associators.back().push_back(other->Path());
  }
  store.Add("CIM_ConcreteJob", {{"InstanceID", Value::Text("j")}});
  const ObjectPath job = store.Enumerate("CIM_ConcreteJob").at(0)->Path();
  EXPECT_TRUE(store.Contains(job));

  EXPECT_TRUE(store.Remove(store.Enumerate("CIM_Chassis").at(0)->Path()));
  EXPECT_TRUE(store.Remove(job));

  EXPECT_FALSE(store.Contains(job));
  std::size_t left = 0;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!store.Contains(paths[i])) continue;
    ++left;
    EXPECT_TRUE(ObjectStore::IsSame(store.Get(paths[i]).Path(), paths[i]));
    const std::vector<const Instance*> found = store.Associators(paths[i], {});
    ASSERT_EQ(found.size(), associators[i].size());
    for (std::size_t k = 0; k < found.size(); ++k) {
      EXPECT_TRUE(ObjectStore::IsSame(found[k]->Path(), associators[i][k]));
    }
  }
  // Nothing is associated with the chassis.
  EXPECT_EQ(left, paths.size() - 1);
}

TEST(ObjectStore, KnowsOnePathInTwoSpellings) {
  ObjectPath other = SetPath("a");
  other.className = "cim_redundancyset";
  EXPECT_TRUE(ObjectStore::IsSame(SetPath("a"), other));
  EXPECT_FALSE(ObjectStore::IsSame(SetPath("a"), SetPath("A")));
}

}  // namespace
}  // namespace Orvane::simulator

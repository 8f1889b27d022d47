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

TEST(ObjectStore, KnowsOnePathInTwoSpellings) {
  ObjectPath other = SetPath("a");
  other.className = "cim_redundancyset";
  EXPECT_TRUE(ObjectStore::IsSame(SetPath("a"), other));
  EXPECT_FALSE(ObjectStore::IsSame(SetPath("a"), SetPath("A")));
}

}  // namespace
}  // namespace Orvane::simulator

// The instances of the simulated chassis and the questions that CIM operations ask of them: by class, by path, by
// association. Order of creation is kept, since clients may rely on the order of a server's answer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cim/class_repository.h"
#include "cim/types.h"

namespace Orvane::simulator {

/// One instance: its class and a value for each property of the class, in the order of the declaration.
struct Instance {
  const ClassDeclaration* declaration;
  std::vector<Value> values;

  /// The value of a property that the class has (by any case of its name); null when it has none of that name.
  const Value* Find(std::string_view property) const;

  /// Class and key values.
  ObjectPath Path() const;
};

/// What an association query asks for; empty members do not filter.
struct AssociationFilter {
  std::string_view associationClass;
  std::string_view resultClass;
  /// Name of the reference that points to the source object.
  std::string_view role;
  /// Name of the reference that points to the result.
  std::string_view resultRole;
};

/// Not thread-safe; whoever shares a store guards it.
class ObjectStore {
 public:
  using NamedValues = std::vector<std::pair<std::string, Value>>;

  /// Adds an instance with these values; properties not named get the default of their class. CreationClassName, when
  /// the class has it and it is not named, becomes the name of the class.
  /// @return the path of the new instance
  /// @throws CimError kInvalidClass, kNoSuchProperty, kTypeMismatch, kInvalidParameter (a key without a value, a path
  /// that exists already)
  ObjectPath Add(std::string_view className, const NamedValues& values);

  /// The instances of a class and of its subclasses, in the order of creation.
  /// @throws CimError kInvalidClass
  std::vector<const Instance*> Enumerate(std::string_view className) const;

  /// @throws CimError kInvalidClass; kInvalidParameter when the path does not name exactly the keys of its class;
  /// kNotFound
  const Instance& Get(const ObjectPath& path) const;

  /// Whether there is such an instance.
  /// @throws CimError kInvalidClass, kInvalidParameter as Get
  bool Contains(const ObjectPath& path) const;

  /// Sets properties of an instance: all of them or, when one is refused, none.
  /// @throws CimError as Get; kNoSuchProperty; kTypeMismatch; kInvalidParameter when a key would change
  void Modify(const ObjectPath& path, const NamedValues& values);

  /// Removes an instance and the associations that refer to it.
  /// @return whether there was one
  /// @throws CimError kInvalidClass, kInvalidParameter as Get
  bool Remove(const ObjectPath& path);

  /// Whether two paths name the same object, whatever the spelling of their names and numbers.
  /// @throws CimError as Remove
  static bool IsSame(const ObjectPath& a, const ObjectPath& b);

  /// The instances at the other end of the source's associations, each once; empty when there is no such source.
  /// @throws CimError kInvalidParameter when a class of the filter or of the source is unknown, or the source is
  /// misnamed
  std::vector<const Instance*> Associators(const ObjectPath& source, const AssociationFilter& filter) const;

  std::size_t Size() const { return instances_.size(); }

 private:
  void Enter(std::size_t place);

  std::vector<Instance> instances_;
  /// Normal form of each path to its place in instances_.
  std::unordered_map<std::string, std::size_t> byPath_;
  /// Normal form of each referenced path to the associations that hold a reference to it.
  std::unordered_map<std::string, std::vector<std::size_t>> associationsOf_;
};

}  // namespace Orvane::simulator

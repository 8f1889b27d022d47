// The classes that the simulator knows: names, superclasses, properties with types and keys, methods. A fixed table,
// cut from the DMTF schema to what management of a blade chassis touches, and the VORTA_ classes below it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cim/types.h"

namespace Orvane::simulator {

struct PropertyDeclaration {
  std::string_view name;
  CimType type;
  bool isArray;
  bool isKey;
  /// For references: the class that the reference may point to.
  std::string_view referenceClass;
  /// Text of the default value; empty for NULL.
  std::string_view defaultText;
  /// The class that declares the property.
  std::string_view originClass;
};

struct ParameterDeclaration {
  std::string_view name;
  CimType type;
  bool isArray = false;
  /// Must be sent, as NULL if need be.
  bool isRequired = false;
  /// Comes back from the method, and only that.
  bool isOut = false;
  /// For references: the class that the reference may point to.
  std::string_view referenceClass = {};
};

struct MethodDeclaration {
  std::string_view name;
  std::vector<ParameterDeclaration> parameters;
  /// The class that declares the method.
  std::string_view originClass = {};
};

struct ClassDeclaration {
  std::string_view name;
  /// Empty for a root class.
  std::string_view superclass;
  bool isAssociation;
  /// Own and inherited properties, the superclass's first.
  std::vector<PropertyDeclaration> properties;
  /// Own and inherited extrinsic methods.
  std::vector<MethodDeclaration> methods;

  const PropertyDeclaration* FindProperty(std::string_view name) const;
  const MethodDeclaration* FindMethod(std::string_view name) const;
  bool HasMethod(std::string_view wanted) const { return FindMethod(wanted) != nullptr; }
};

/// Looks a class up by its name in any case; null when there is none. The declaration lives as long as the process.
const ClassDeclaration* FindClass(std::string_view name);

/// Every class of the repository, superclasses before their subclasses.
const std::vector<ClassDeclaration>& AllClasses();

/// Whether a class is the other or derives from it. Both names in any case.
bool IsOrDerivesFrom(const ClassDeclaration& declaration, std::string_view ancestor);

}  // namespace Orvane::simulator

// Paths are compared by a normal form: class in lower case and the keys sorted by name, each in the one spelling of its
// declared type. So 5 and 0x5, or class names of different case, name the same object.
#include "cim/object_store.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <unordered_set>

#include "cim/cim_error.h"

namespace Orvane::simulator {

namespace {

constexpr std::size_t kDeepestReference = 8;

std::string Quoted(std::string_view name) { return "'" + std::string(name) + "'"; }

const ClassDeclaration& Require(std::string_view className, CimStatus status = CimStatus::kInvalidClass) {
  const ClassDeclaration* const found = FindClass(className);
  if (found == nullptr) throw CimError(status, "The class " + Quoted(className) + " does not exist");
  return *found;
}

std::string NormalForm(const ObjectPath& path, std::size_t depth = 0) {
  if (depth > kDeepestReference) throw CimError(CimStatus::kInvalidParameter, "A reference key is nested too deep");
  const ClassDeclaration& declaration = Require(path.className);
  std::string text = LowerCase(declaration.name);
  std::size_t keys = 0;
  for (const auto& [name, value] : path.keys) {
    const PropertyDeclaration* const property = declaration.FindProperty(name);
    if (property == nullptr || !property->isKey) {
      throw CimError(CimStatus::kInvalidParameter,
                     "The class " + std::string(declaration.name) + " has no key " + Quoted(name));
    }
    const bool isReference = property->type == CimType::kReference;
    if (isReference != (value.reference != nullptr)) {
      throw CimError(CimStatus::kInvalidParameter, "The key " + Quoted(name) + " has a value of the wrong kind");
    }
    const std::string part =
        isReference ? NormalForm(*value.reference, depth + 1) : CanonicalText(property->type, value.text);
    // The length makes the form unambiguous whatever characters a key holds.
    text += '\n' + LowerCase(name) + '=' + std::to_string(part.size()) + ':' + part;
    ++keys;
  }
  const auto declared = std::count_if(declaration.properties.begin(), declaration.properties.end(),
                                      [](const PropertyDeclaration& property) { return property.isKey; });
  if (keys != static_cast<std::size_t>(declared)) {
    throw CimError(CimStatus::kInvalidParameter,
                   "The path does not name all keys of the class " + std::string(declaration.name));
  }
  return text;
}

void CheckValue(const PropertyDeclaration& property, const Value& value) {
  if (value.isNull) return;
  const bool isReference = property.type == CimType::kReference;
  const std::size_t count = isReference ? value.references.size() : value.texts.size();
  const bool rightShape =
      (isReference ? value.texts.empty() : value.references.empty()) && (property.isArray || count == 1);
  const bool legal = isReference
                         ? std::all_of(value.references.begin(), value.references.end(),
                                       [&](const ObjectPath& path) {
                                         const ClassDeclaration* const target = FindClass(path.className);
                                         return target != nullptr && IsOrDerivesFrom(*target, property.referenceClass);
                                       })
                         : std::all_of(value.texts.begin(), value.texts.end(),
                                       [&](const std::string& text) { return IsLegalText(property.type, text); });
  if (!rightShape || !legal) {
    throw CimError(CimStatus::kTypeMismatch, "The value of " + Quoted(property.name) + " is no " +
                                                 std::string(TypeName(property.type)) +
                                                 (property.isArray ? " array" : ""));
  }
}

Value Canonical(const PropertyDeclaration& property, Value value) {
  for (std::string& text : value.texts) text = CanonicalText(property.type, text);
  return value;
}

// Place of each named property in the instance, with the checked value in its one spelling.
std::vector<std::pair<std::size_t, Value>> Resolve(const ClassDeclaration& declaration,
                                                   const ObjectStore::NamedValues& values) {
  std::vector<std::pair<std::size_t, Value>> resolved;
  resolved.reserve(values.size());
  for (const auto& [name, value] : values) {
    const PropertyDeclaration* const property = declaration.FindProperty(name);
    if (property == nullptr) {
      throw CimError(CimStatus::kNoSuchProperty,
                     "The class " + std::string(declaration.name) + " has no property " + Quoted(name));
    }
    CheckValue(*property, value);
    resolved.emplace_back(static_cast<std::size_t>(property - declaration.properties.data()),
                          Canonical(*property, value));
  }
  return resolved;
}

bool SameKey(const PropertyDeclaration& property, const Value& a, const Value& b) {
  if (a.isNull || b.isNull) return a.isNull == b.isNull;
  if (property.type != CimType::kReference) return a.texts == b.texts;
  return NormalForm(a.references.front()) == NormalForm(b.references.front());
}

bool Matches(const ClassDeclaration& declaration, std::string_view wanted) {
  return wanted.empty() || IsOrDerivesFrom(declaration, wanted);
}

}  // namespace

const Value* Instance::Find(std::string_view property) const {
  const PropertyDeclaration* const found = declaration->FindProperty(property);
  return found == nullptr ? nullptr : &values[static_cast<std::size_t>(found - declaration->properties.data())];
}

ObjectPath Instance::Path() const {
  ObjectPath path;
  path.className = declaration->name;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const PropertyDeclaration& property = declaration->properties[i];
    if (!property.isKey) continue;
    KeyValue& key = path.keys[std::string(property.name)];
    if (property.type == CimType::kReference) {
      key.reference = std::make_shared<const ObjectPath>(values[i].references.front());
    } else {
      key.text = values[i].texts.front();
    }
  }
  return path;
}

ObjectPath ObjectStore::Add(std::string_view className, const NamedValues& values) {
  const ClassDeclaration& declaration = Require(className);
  Instance instance{&declaration, {}};
  instance.values.reserve(declaration.properties.size());
  for (const PropertyDeclaration& property : declaration.properties) {
    const std::string_view text = property.name == "CreationClassName" ? declaration.name : property.defaultText;
    instance.values.push_back(text.empty() ? Value() : Value::Text(std::string(text)));
  }
  for (auto& [place, value] : Resolve(declaration, values)) instance.values[place] = std::move(value);
  for (std::size_t i = 0; i < instance.values.size(); ++i) {
    if (declaration.properties[i].isKey && instance.values[i].isNull) {
      throw CimError(CimStatus::kInvalidParameter, "The key " + Quoted(declaration.properties[i].name) + " is missing");
    }
  }

  ObjectPath path = instance.Path();
  if (byPath_.count(NormalForm(path)) != 0) {
    throw CimError(CimStatus::kInvalidParameter, "An instance with the same keys exists already");
  }
  instances_.push_back(std::move(instance));
  Enter(instances_.size() - 1);
  return path;
}

// Writes the instance of a place into the indexes.
void ObjectStore::Enter(std::size_t place) {
  const Instance& instance = instances_[place];
  byPath_.emplace(NormalForm(instance.Path()), place);
  if (!instance.declaration->isAssociation) return;
  std::unordered_set<std::string> ends;
  for (const Value& value : instance.values) {
    for (const ObjectPath& reference : value.references) ends.insert(NormalForm(reference));
  }
  for (const std::string& end : ends) associationsOf_[end].push_back(place);
}

bool ObjectStore::Remove(const ObjectPath& path) {
  const std::string form = NormalForm(path);
  const auto found = byPath_.find(form);
  if (found == byPath_.end()) return false;
  std::unordered_set<std::size_t> gone{found->second};
  const auto associations = associationsOf_.find(form);
  if (associations != associationsOf_.end()) gone.insert(associations->second.begin(), associations->second.end());

  // The others move up; to work out their normal forms again would keep everybody waiting in a large chassis.
  constexpr std::size_t kGone = std::numeric_limits<std::size_t>::max();
  std::vector<std::size_t> newPlaces(instances_.size(), kGone);
  std::vector<Instance> kept;
  kept.reserve(instances_.size() - gone.size());
  for (std::size_t place = 0; place < instances_.size(); ++place) {
    if (gone.count(place) != 0) continue;
    newPlaces[place] = kept.size();
    kept.push_back(std::move(instances_[place]));
  }
  instances_ = std::move(kept);
  for (auto entry = byPath_.begin(); entry != byPath_.end();) {
    entry->second = newPlaces[entry->second];
    entry = entry->second == kGone ? byPath_.erase(entry) : std::next(entry);
  }
  for (auto& [end, places] : associationsOf_) {
    for (std::size_t& place : places) place = newPlaces[place];
    places.erase(std::remove(places.begin(), places.end(), kGone), places.end());
  }
  return true;
}

bool ObjectStore::IsSame(const ObjectPath& a, const ObjectPath& b) { return NormalForm(a) == NormalForm(b); }

std::vector<const Instance*> ObjectStore::Enumerate(std::string_view className) const {
  const ClassDeclaration& wanted = Require(className);
  std::unordered_map<const ClassDeclaration*, bool> decided;
  std::vector<const Instance*> found;
  for (const Instance& instance : instances_) {
    const auto [entry, isNew] = decided.try_emplace(instance.declaration, false);
    if (isNew) entry->second = IsOrDerivesFrom(*instance.declaration, wanted.name);
    if (entry->second) found.push_back(&instance);
  }
  return found;
}

const Instance& ObjectStore::Get(const ObjectPath& path) const {
  const auto found = byPath_.find(NormalForm(path));
  if (found == byPath_.end()) {
    throw CimError(CimStatus::kNotFound, "There is no such instance of the class " + path.className);
  }
  return instances_[found->second];
}

bool ObjectStore::Contains(const ObjectPath& path) const { return byPath_.count(NormalForm(path)) != 0; }

void ObjectStore::Modify(const ObjectPath& path, const NamedValues& values) {
  // Get proves that the path is good and the instance exists.
  const Instance& current = Get(path);
  std::vector<std::pair<std::size_t, Value>> resolved = Resolve(*current.declaration, values);
  for (const auto& [place, value] : resolved) {
    const PropertyDeclaration& property = current.declaration->properties[place];
    if (property.isKey && !SameKey(property, current.values[place], value)) {
      throw CimError(CimStatus::kInvalidParameter, "The key " + Quoted(property.name) + " cannot be modified");
    }
  }
  Instance& target = instances_[byPath_.at(NormalForm(path))];
  for (auto& [place, value] : resolved) {
    if (!target.declaration->properties[place].isKey) target.values[place] = std::move(value);
  }
}

std::vector<const Instance*> ObjectStore::Associators(const ObjectPath& source, const AssociationFilter& filter) const {
  for (const std::string_view name :
       {std::string_view(source.className), filter.associationClass, filter.resultClass}) {
    if (!name.empty()) Require(name, CimStatus::kInvalidParameter);
  }
  const std::string sourceForm = NormalForm(source);
  std::vector<const Instance*> found;
  const auto associations = associationsOf_.find(sourceForm);
  if (associations == associationsOf_.end() || byPath_.count(sourceForm) == 0) return found;

  std::unordered_set<std::string> seen;
  for (const std::size_t place : associations->second) {
    const Instance& association = instances_[place];
    if (!Matches(*association.declaration, filter.associationClass)) continue;
    const std::vector<PropertyDeclaration>& properties = association.declaration->properties;
    const auto pointsToSource = [&](std::size_t i) {
      return !association.values[i].references.empty() &&
             (filter.role.empty() || EqualNames(properties[i].name, filter.role)) &&
             NormalForm(association.values[i].references.front()) == sourceForm;
    };
    for (std::size_t from = 0; from < properties.size(); ++from) {
      if (!pointsToSource(from)) continue;
      for (std::size_t to = 0; to < properties.size(); ++to) {
        if (to == from || association.values[to].references.empty()) continue;
        if (!filter.resultRole.empty() && !EqualNames(properties[to].name, filter.resultRole)) continue;
        const std::string form = NormalForm(association.values[to].references.front());
        // A reference may point to an object that is gone; it leads nowhere then.
        const auto result = byPath_.find(form);
        if (result == byPath_.end()) continue;
        const Instance& instance = instances_[result->second];
        if (Matches(*instance.declaration, filter.resultClass) && seen.insert(form).second) found.push_back(&instance);
      }
    }
  }
  return found;
}

}  // namespace Orvane::simulator

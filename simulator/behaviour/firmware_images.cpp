// CMM images hang on an association without status, so which of them waits is remembered here; images of modules have
// theirs in the ElementSoftwareStatus of the association.
#include "behaviour/firmware_images.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "behaviour/states.h"

namespace Orvane::simulator {

namespace {

constexpr const char* kCurrent = "2";
constexpr const char* kNext = "3";
constexpr const char* kFallback = "4";
constexpr const char* kInstalled = "6";
constexpr const char* kVersionProperties[] = {"VersionString", "MajorVersion", "MinorVersion", "RevisionNumber",
                                              "BuildNumber"};

using Texts = std::vector<std::string>;

struct Image {
  ObjectPath path;
  std::string id;
  bool isBoot = false;
  /// Of modules.
  ObjectPath association;
  Texts status;

  bool Is(const char* state) const { return std::find(status.begin(), status.end(), state) != status.end(); }
};

Texts TextsOf(const Instance& instance, const char* property) {
  const Value* const value = instance.Find(property);
  return value == nullptr ? Texts() : value->texts;
}

bool AnyContains(const Texts& texts, const char* part) {
  return std::any_of(texts.begin(), texts.end(),
                     [part](const std::string& text) { return text.find(part) != std::string::npos; });
}

bool IsCmm(const ObjectPath& module) { return EqualNames(module.className, "VORTA_CMMComputerSystem"); }

Image ToImage(const Instance& instance) {
  Image image;
  image.path = instance.Path();
  image.id = TextOf(instance, "InstanceID");
  image.isBoot = AnyContains(TextsOf(instance, "ClassificationDescriptions"), "Boot ROM");
  return image;
}

// The firmware of a CMM, without its diagnostics.
std::vector<Image> ImagesOfCmm(const ObjectStore& store, const ObjectPath& cmm) {
  std::vector<Image> images;
  for (const Instance* instance :
       store.Associators(cmm, {"CIM_InstalledSoftwareIdentity", "CIM_SoftwareIdentity", {}, {}})) {
    if (AnyContains(TextsOf(*instance, "TargetTypes"), "Firmware:CMM")) images.push_back(ToImage(*instance));
  }
  return images;
}

std::vector<Image> ImagesOfModule(const ObjectStore& store, const ObjectPath& module) {
  std::vector<Image> images;
  for (const Instance* association : store.Enumerate("CIM_ElementSoftwareIdentity")) {
    if (!ObjectStore::IsSame(association->Find("Dependent")->references.front(), module)) continue;
    Image image = ToImage(store.Get(association->Find("Antecedent")->references.front()));
    image.association = association->Path();
    image.status = TextsOf(*association, "ElementSoftwareStatus");
    images.push_back(std::move(image));
  }
  return images;
}

// The image that a test holds for; null when there is none.
template <typename Test>
const Image* First(const std::vector<Image>& images, Test&& test) {
  const auto found = std::find_if(images.begin(), images.end(), test);
  return found == images.end() ? nullptr : &*found;
}

ObjectStore::NamedValues VersionOf(const Package& package) {
  return {{"VersionString", Value::Text(package.version)},
          {"MajorVersion", Value::Text(std::to_string(package.major))},
          {"MinorVersion", Value::Text(std::to_string(package.minor))},
          {"RevisionNumber", Value::Text(std::to_string(package.revision))},
          {"BuildNumber", Value::Text(std::to_string(package.build))}};
}

ObjectStore::NamedValues VersionOf(const Instance& image) {
  ObjectStore::NamedValues values;
  for (const char* property : kVersionProperties) values.emplace_back(property, *image.Find(property));
  return values;
}

// An image like another one, with a version of its own.
ObjectPath AddImage(ObjectStore& store, const Image& like, const Package& package) {
  const Instance& original = store.Get(like.path);
  ObjectStore::NamedValues values = VersionOf(package);
  const std::string base = like.id.substr(0, like.id.rfind(':')) + ":staged";
  std::string id = base;
  const auto isTaken = [&](const std::string& wanted) {
    for (const Instance* image : store.Enumerate("CIM_SoftwareIdentity")) {
      if (TextOf(*image, "InstanceID") == wanted) return true;
    }
    return false;
  };
  for (unsigned number = 2; isTaken(id); ++number) id = base + std::to_string(number);
  values.emplace_back("InstanceID", Value::Text(id));
  values.emplace_back("ElementName", Value::Text(TextOf(original, "ElementName") + " (staged)"));
  for (const char* property :
       {"Manufacturer", "TargetTypes", "Classifications", "Classifcations", "ClassificationDescriptions"}) {
    values.emplace_back(property, *original.Find(property));
  }
  return store.Add(original.declaration->name, values);
}

void SetStatus(ObjectStore& store, const Image& image, Texts status) {
  store.Modify(image.association, {{"ElementSoftwareStatus", Value::Texts(std::move(status))}});
}

}  // namespace

void FirmwareImages::Install(ObjectStore& store, const ObjectPath& module, const Package& package, bool asNext) {
  if (package.isBoot) {
    const std::vector<Image> images = IsCmm(module) ? ImagesOfCmm(store, module) : ImagesOfModule(store, module);
    const Image* const boot = First(images, [](const Image& image) { return image.isBoot; });
    if (boot == nullptr) throw InstallError("Flashing ended with failure: there is no boot image to replace");
    store.Modify(boot->path, VersionOf(package));
  } else if (IsCmm(module)) {
    InstallOnCmm(store, module, package);
  } else {
    InstallOnModule(store, module, package, asNext);
  }
}

void FirmwareImages::InstallOnCmm(ObjectStore& store, const ObjectPath& cmm, const Package& package) {
  std::vector<Image> images = ImagesOfCmm(store, cmm);
  images.erase(std::remove_if(images.begin(), images.end(), [](const Image& image) { return image.isBoot; }),
               images.end());
  if (images.empty()) throw InstallError("Flashing ended with failure: the CMM has no firmware image");
  if (images.size() == 1) {
    const ObjectPath staged = AddImage(store, images.front(), package);
    store.Add("VORTA_CMMInstalledSoftwareIdentity",
              {{"System", Value::Reference(cmm)}, {"InstalledSoftware", Value::Reference(staged)}});
    staged_.insert(staged.keys.at("InstanceID").text);
    pending_.insert(staged.keys.at("InstanceID").text);
    return;
  }
  store.Modify(images[1].path, VersionOf(package));
  pending_.insert(images[1].id);
}

void FirmwareImages::InstallOnModule(ObjectStore& store, const ObjectPath& module, const Package& package,
                                     bool asNext) {
  const std::vector<Image> images = ImagesOfModule(store, module);
  const auto isMain = [](const Image& image) { return !image.isBoot; };
  const Image* place = First(images, [&](const Image& image) { return isMain(image) && image.Is(kFallback); });
  if (place == nullptr) {
    place = First(images, [&](const Image& image) { return isMain(image) && !image.Is(kCurrent); });
  }
  if (place != nullptr) {
    const bool isStaged = staged_.count(place->id) != 0;
    store.Modify(place->path, VersionOf(package));
    SetStatus(store, *place, {kInstalled, asNext || isStaged ? kNext : kFallback});
    return;
  }
  const Image* const only = First(images, isMain);
  if (only == nullptr) throw InstallError("Flashing ended with failure: the module has no firmware image");
  const ObjectPath staged = AddImage(store, *only, package);
  store.Add(only->association.className, {{"Antecedent", Value::Reference(staged)},
                                          {"Dependent", Value::Reference(module)},
                                          {"ElementSoftwareStatus", Value::Texts({kInstalled, kNext})}});
  staged_.insert(staged.keys.at("InstanceID").text);
}

std::optional<ObjectPath> FirmwareImages::Activated(ObjectStore& store, const ObjectPath& association) {
  const Instance& written = store.Get(association);
  const ObjectPath module = written.Find("Dependent")->references.front();
  const ObjectPath& chosen = written.Find("Antecedent")->references.front();
  const std::vector<Image> images = ImagesOfModule(store, module);
  const Image* const next =
      First(images, [&](const Image& image) { return ObjectStore::IsSame(image.path, chosen) && image.Is(kNext); });
  if (next == nullptr) return std::nullopt;
  for (const Image& image : images) {
    if (&image == next || !image.Is(kNext)) continue;
    Texts status = image.status;
    status.erase(std::remove(status.begin(), status.end(), kNext), status.end());
    if (status.empty()) status = {kInstalled};
    SetStatus(store, image, std::move(status));
  }
  return module;
}

void FirmwareImages::Boot(ObjectStore& store, const ObjectPath& module) {
  if (IsCmm(module)) {
    BootCmm(store, module);
  } else {
    BootModule(store, module);
  }
}

void FirmwareImages::BootCmm(ObjectStore& store, const ObjectPath& cmm) {
  const std::vector<Image> images = ImagesOfCmm(store, cmm);
  const Image* const active = First(images, [](const Image& image) { return !image.isBoot; });
  const Image* const waiting = First(images, [&](const Image& image) { return pending_.count(image.id) != 0; });
  if (waiting == nullptr) return;
  const ObjectStore::NamedValues before = VersionOf(store.Get(active->path));
  store.Modify(active->path, VersionOf(store.Get(waiting->path)));
  pending_.erase(waiting->id);
  if (staged_.erase(waiting->id) != 0) {
    store.Remove(waiting->path);
  } else {
    store.Modify(waiting->path, before);
  }
}

void FirmwareImages::BootModule(ObjectStore& store, const ObjectPath& module) {
  const std::vector<Image> images = ImagesOfModule(store, module);
  const Image* const next = First(images, [](const Image& image) { return !image.isBoot && image.Is(kNext); });
  if (next == nullptr) return;
  const Image* const current =
      First(images, [&](const Image& image) { return !image.isBoot && &image != next && image.Is(kCurrent); });
  if (staged_.erase(next->id) != 0 && current != nullptr) {
    store.Modify(current->path, VersionOf(store.Get(next->path)));
    store.Remove(next->path);
    return;
  }
  SetStatus(store, *next, {kCurrent, kInstalled});
  if (current != nullptr) SetStatus(store, *current, {kInstalled, kFallback});
}

}  // namespace Orvane::simulator

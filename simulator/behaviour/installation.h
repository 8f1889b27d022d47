// Installing firmware from a URI: checks the call, creates its job, fetches the package and writes it into the target
// when the time has come.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "behaviour/firmware_images.h"
#include "behaviour/job_engine.h"
#include "behaviour/package_fetcher.h"
#include "behaviour/settings.h"
#include "server/operations.h"

namespace Orvane::simulator {

class Installation {
 public:
  /// The references must stay valid as long as it lives.
  Installation(SharedStore& store, Clock& clock, JobEngine& jobs, FirmwareImages& images,
               const ChassisSettings& settings, const FetchLimits& limits);
  ~Installation();
  Installation(const Installation&) = delete;
  Installation& operator=(const Installation&) = delete;

  /// The method InstallFromURI; called with the store locked.
  MethodResult InstallFromUri(ObjectStore& store, const std::vector<MethodParameter>& parameters);

  /// Whether an installation on a module goes on; called with the store locked.
  bool IsBusy(const ObjectPath& module) const;

 private:
  struct Kind;
  struct Install;

  static const Kind* FindKind(const ObjectPath& target);
  ObjectPath Begin(ObjectStore& store, const Kind& kind, const ObjectPath& target, const std::string& uri);
  void Run(const std::shared_ptr<Install>& install);
  void Fetched(const std::shared_ptr<Install>& install, FetchResult result);
  void Proceed(ObjectStore& store, const std::shared_ptr<Install>& install);
  void Complete(ObjectStore& store, const Install& install);

  static const Kind kKinds[];

  SharedStore& store_;
  Clock& clock_;
  JobEngine& jobs_;
  FirmwareImages& images_;
  const ChassisSettings settings_;
  /// Guarded by the lock of the store; those that ended are struck off at the next call.
  std::vector<std::shared_ptr<Install>> installs_;
  Timers timers_;
  PackageFetcher fetcher_;
};

}  // namespace Orvane::simulator

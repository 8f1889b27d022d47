// Return values are those of InstallFromURI in the DMTF schema. Everything that can only be known later (whether the
// package exists, whether it fits) ends the job instead.
#include "behaviour/installation.h"

#include <algorithm>
#include <utility>

#include "behaviour/method_parameters.h"
#include "behaviour/package_uri.h"
#include "behaviour/states.h"
#include "cim/cim_error.h"

namespace Orvane::simulator {

namespace {

constexpr std::uint32_t kNotSupported = 1;
constexpr std::uint32_t kInvalidParameter = 5;
constexpr std::uint32_t kJobStarted = 4096;
constexpr std::uint32_t kUnsupportedTargetType = 4097;
constexpr std::uint32_t kUriSchemeNotSupported = 4107;

constexpr std::size_t kLongestUri = 4096;

constexpr const char* kBusy = "Busy - Another firmware update in progress";
constexpr const char* kInterrupted = "Wait for Flash Complete - finished without 100% Progress";

// Install, Update, and the chassis's own value for an update that waits for the next restart: here all of them do.
constexpr const char* kOptions[] = {"4", "5", "32768"};

bool IsOffered(const std::string& option) {
  return std::any_of(std::begin(kOptions), std::end(kOptions), [&](const char* known) { return option == known; });
}

// 0 when options and their values make sense.
std::uint32_t CheckOptions(const MethodParameters& parameters) {
  const auto options = parameters.Texts("InstallOptions").value_or(std::vector<std::string>());
  const auto values = parameters.Texts("InstallOptionsValues");
  for (const std::string& option : options) {
    if (!IsOffered(CanonicalText(CimType::kUint16, option))) return kNotSupported;
  }
  // Each value belongs to the option of the same place.
  return values && values->size() != options.size() ? kInvalidParameter : 0;
}

}  // namespace

// What differs between the targets.
struct Installation::Kind {
  const char* className;
  const char* name;
  const char* jobClass;
  const char* newText;
  const char* runningText;
  const char* completedText;
  std::chrono::seconds Timing::*jobStart;
  std::chrono::seconds Timing::*install;
};

struct Installation::Install {
  const Kind* kind = nullptr;
  ObjectPath target;
  ObjectPath job;
  std::chrono::milliseconds begun{0};
  bool isRunning = false;
  std::optional<FetchResult> fetched;
};

// A job of a module shows the text of a running one from its start: clients end at any other.
const Installation::Kind Installation::kKinds[] = {
    {"VORTA_CMMComputerSystem", "cmm", "VORTA_FirmwareInstallationJob", "Firmware update is waiting to start",
     "Firmware update in progress", "Firmware update completed, restart the CMM to activate it", &Timing::cmmJobStart,
     &Timing::cmmInstall},
    {"VORTA_IOModuleComputerSystem", "switch", "CIM_ConcreteJob", "Flash Installation Job Started",
     "Flash Installation Job Started", "Flash Completed with no apparent errors", &Timing::moduleJobStart,
     &Timing::moduleInstall},
    {"VORTA_PassThroughModule", "passthru", "CIM_ConcreteJob", "Flash Installation Job Started",
     "Flash Installation Job Started", "Flash Completed with no apparent errors", &Timing::moduleJobStart,
     &Timing::moduleInstall},
};

Installation::Installation(SharedStore& store, Clock& clock, JobEngine& jobs, FirmwareImages& images,
                           const ChassisSettings& settings, const FetchLimits& limits)
    : store_(store),
      clock_(clock),
      jobs_(jobs),
      images_(images),
      settings_(settings),
      timers_(clock),
      fetcher_(limits) {}

Installation::~Installation() = default;

const Installation::Kind* Installation::FindKind(const ObjectPath& target) {
  const auto* const found = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& kind) {
    return EqualNames(kind.className, target.className);
  });
  return found == std::end(kKinds) ? nullptr : found;
}

MethodResult Installation::InstallFromUri(ObjectStore& store, const std::vector<MethodParameter>& sent) {
  const MethodParameters parameters(sent, "CIM_SoftwareInstallationService", "InstallFromURI");
  const auto uri = parameters.Text("URI");
  const auto target = parameters.Reference("Target");
  if (!uri || !target || uri->empty() || uri->size() > kLongestUri) return {kInvalidParameter, {}};
  if (const std::uint32_t wrong = CheckOptions(parameters)) return {wrong, {}};
  if (!ParsePackageUri(*uri)) {
    const std::string scheme = LowerCase(uri->substr(0, uri->find(':')));
    const bool isKnown = !HasScheme(*uri) || scheme == "http" || scheme == "https" || scheme == "file";
    return {isKnown ? kInvalidParameter : kUriSchemeNotSupported, {}};
  }
  try {
    const ObjectPath path = store.Get(*target).Path();
    const Kind* const kind = FindKind(path);
    if (kind == nullptr) return {kUnsupportedTargetType, {}};
    MethodParameter job;
    job.name = "Job";
    job.typeName = "reference";
    job.value = Value::Reference(Begin(store, *kind, path, *uri));
    return {kJobStarted, {std::move(job)}};
  } catch (const CimError& error) {
    if (error.Status() == CimStatus::kNotFound) return {kInvalidParameter, {}};
    throw CimError(CimStatus::kInvalidParameter, error.what());
  }
}

bool Installation::IsBusy(const ObjectPath& module) const {
  return std::any_of(installs_.begin(), installs_.end(), [&](const std::shared_ptr<Install>& install) {
    return jobs_.IsActive(install->job) && ObjectStore::IsSame(install->target, module);
  });
}

ObjectPath Installation::Begin(ObjectStore& store, const Kind& kind, const ObjectPath& target, const std::string& uri) {
  const bool isBusy = IsBusy(target);
  const std::string name = TextOf(store.Get(target), "Name").empty() ? TextOf(store.Get(target), "DeviceID")
                                                                     : TextOf(store.Get(target), "Name");
  ObjectPath job = jobs_.Create(store, kind.jobClass, name, isBusy ? kBusy : kind.newText);
  if (isBusy) {
    jobs_.Enter(store, job, JobState::kTerminated, kBusy);
    return job;
  }
  installs_.erase(std::remove_if(installs_.begin(), installs_.end(),
                                 [&](const std::shared_ptr<Install>& old) { return !jobs_.IsActive(old->job); }),
                  installs_.end());
  const auto install = std::make_shared<Install>();
  install->kind = &kind;
  install->target = target;
  install->job = job;
  install->begun = clock_.Now();
  installs_.push_back(install);
  timers_.RunAfter(settings_.timing.*kind.jobStart, [this, install] { Run(install); });
  clock_.BeginWork();
  fetcher_.Fetch(uri, [this, install](FetchResult result) {
    Fetched(install, std::move(result));
    clock_.EndWork();
  });
  return job;
}

void Installation::Run(const std::shared_ptr<Install>& install) {
  store_.With([&](ObjectStore& store) {
    install->isRunning = jobs_.Enter(store, install->job, JobState::kRunning, install->kind->runningText);
    Proceed(store, install);
  });
}

void Installation::Fetched(const std::shared_ptr<Install>& install, FetchResult result) {
  store_.With([&](ObjectStore& store) {
    install->fetched = std::move(result);
    Proceed(store, install);
  });
}

// The flash begins when the job runs and the package is there.
void Installation::Proceed(ObjectStore& store, const std::shared_ptr<Install>& install) {
  if (!install->isRunning || !install->fetched) return;
  if (const auto* const failure = std::get_if<std::string>(&*install->fetched)) {
    jobs_.Enter(store, install->job, JobState::kException, *failure);
    return;
  }
  const Package& package = std::get<Package>(*install->fetched);
  if (package.target != install->kind->name) {
    jobs_.Enter(store, install->job, JobState::kException,
                "Flashing ended with failure: the package is for another target, " + package.target);
    return;
  }
  const auto end =
      std::max<std::chrono::milliseconds>(clock_.Now(), install->begun + settings_.timing.*install->kind->install);
  timers_.RunAt(end, [this, install] { store_.With([&](ObjectStore& locked) { Complete(locked, *install); }); });
}

void Installation::Complete(ObjectStore& store, const Install& install) {
  // First the job: what a fault keeps from completing must not leave an image behind.
  if (!jobs_.Admit(store, install.job, JobState::kCompleted)) return;
  try {
    const std::string name = TextOf(store.Get(install.target), "Name");
    images_.Install(store, install.target, std::get<Package>(*install.fetched),
                    settings_.installsAsNext.count(name) != 0);
    jobs_.Set(store, install.job, JobState::kCompleted, install.kind->completedText);
  } catch (const InstallError& error) {
    jobs_.Set(store, install.job, JobState::kException, error.what());
  } catch (const CimError&) {  // the module was pulled out meanwhile
    jobs_.Set(store, install.job, JobState::kException, kInterrupted);
  }
}

}  // namespace Orvane::simulator

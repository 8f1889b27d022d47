// The journal's records are on the disk before the library's call begins, before the first pause after a job's start,
// and before the result is printed.
#include "cli/operations/operation_run.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <system_error>
#include <utility>

#include "cli/cause.h"
#include "cli/failure.h"
#include "cli/interruption.h"
#include "cli/masking.h"
#include "cli/operations/common_results.h"
#include "cli/operations/lost_contact.h"
#include "cli/operations/offered_version.h"
#include "cli/operations/package_uri.h"
#include "cli/operations/question.h"
#include "cli/progress/pauses.h"
#include "cli/progress/printed_lines.h"
#include "cli/table.h"
#include "cli/text.h"
#include "cli/write_all.h"

namespace Orvane::cli {
namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kOfferedUnknown = "not known before the management module has fetched the package";

// The code of every update and activation that was given no connection.
constexpr int kNoConnectionCode = 1;

// What the library logs, without the reason, when it cannot read a pass-through module's installation service.
constexpr const char* kServiceNotRead = "unknown error happened when enumerate Instance";

// What the library logs when a switch's job has done its work.
constexpr const char* kInstalledLine = "Update completed successfully and the message is ";

std::string Joined(const std::vector<std::string>& parts, const char* between) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : between) + part;
  return text;
}

std::string JobsText(const std::vector<std::string>& jobs) {
  return (jobs.size() > 1 ? "jobs " : "job ") + Joined(jobs, ", ");
}

std::string Named(const Subject& subject) {
  return Neutralise(subject.product.empty() ? subject.label : subject.label + " (" + subject.product + ")");
}

std::string WithBay(std::string advice, int bay) {
  constexpr std::string_view kPlace = "BAY";
  if (const std::size_t at = advice.find(kPlace); at != std::string::npos) {
    advice.replace(at, kPlace.size(), std::to_string(bay));
  }
  return advice;
}

std::string ListCommand(const Operation& operation, const OperationOptions& options) {
  const std::string name = operation.name;
  const std::string list = "orvane " + name.substr(0, name.find(' ')) + " list";
  return options.bay < 1 ? list : list + " --bay " + std::to_string(options.bay);
}

std::string VersionsSentence(const Fields& versions) {
  std::vector<std::string> parts;
  for (const auto& [kind, text] : versions) parts.push_back(Neutralise(kind + " " + text));
  return parts.empty() ? "no version that it tells" : Joined(parts, "; ");
}

Json VersionsJson(const std::optional<Subject>& subject) {
  if (!subject || !subject->versions) return nullptr;
  const FirmwareColumns& versions = *subject->versions;
  return {{"active", versions.active}, {"fallback", versions.fallback}, {"boot", versions.boot}};
}

bool CanRewriteLines() {
  const char* const terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) == 1 && terminal != nullptr && *terminal != '\0' && std::strcmp(terminal, "dumb") != 0;
}

ProgressMode ModeOf(const std::string& name) {
  if (name == "jsonl") return ProgressMode::kJsonLines;
  return name == "auto" && CanRewriteLines() ? ProgressMode::kLive : ProgressMode::kPlain;
}

}  // namespace

struct OperationRun::Ending {
  int code = 0;
  ExitStatus status = ExitStatus::kDone;
  std::string what;           ///< What happened.
  std::string cause;          ///< May be empty, as the two that follow.
  std::string detail;         ///< The library's or the chassis's own words, raw.
  std::string advice;         ///< What to do.
  bool oneInstalled = false;  ///< It failed with the second of two packages.
  bool asked = true;          ///< Something may have been changed.
  bool connected = true;      ///< The management module can be asked again.

  bool Failed() const { return status != ExitStatus::kDone; }
  std::string Sentence() const;
};

std::string OperationRun::Ending::Sentence() const {
  std::string sentence = what;
  if (!cause.empty()) sentence += Failed() ? ": " + cause : " (" + cause + ")";
  if (oneInstalled) sentence += "; the first package is installed, but not activated";
  if (!Failed()) return sentence;
  sentence += " (code " + std::to_string(code);
  if (!detail.empty()) sentence += ": " + Neutralise(detail);
  return sentence + ")";
}

OperationRun::OperationRun(const Operation& operation, OperationOptions options)
    : operation_(operation), options_(std::move(options)) {}

OperationRun::~OperationRun() = default;

void OperationRun::Prepare() {
  for (const std::string& package : options_.packages) RequirePackageUri(package);
  if (!operation_.changes || options_.check) return;
  if (!options_.yes && !CanAsk()) {
    throw Failure(ExitStatus::kUsage, kNoLibraryCode,
                  std::string(operation_.name) +
                      " changes the chassis and asks before; without a terminal to ask at it wants --yes");
  }
  if (options_.journal) journal_ = std::make_unique<Journal>(*options_.journal);
}

Outcome OperationRun::Carry(const Context& context) {
  const Interruption interruption([&] { Interrupted(context); });
  const Subject subject = FindSubject(context.target, operation_, options_);
  if (options_.check) return Check(context, subject);
  if (operation_.changes && !options_.yes) Confirm(context, subject);
  return Execute(context, subject);
}

std::vector<std::string> OperationRun::MaskedPackages() const {
  std::vector<std::string> masked;
  for (const std::string& package : options_.packages) masked.push_back(Neutralise(MaskCredentials(package)));
  return masked;
}

// Also what the question shows: one has to see in both what the operation is about to do.
Outcome OperationRun::Check(const Context& context, const Subject& subject) const {
  Fields fields = {{"target", Named(subject) + " at " + context.target.Where()}};
  if (subject.versions) {
    for (const auto& [kind, versions] : ListVersions(*subject.versions)) fields.emplace_back(kind, versions);
  }
  Json offers = Json::array();
  for (const std::string& package : options_.packages) {
    const std::optional<std::string> offered = OfferedVersion(package);
    fields.emplace_back("package", MaskCredentials(package));
    fields.emplace_back("offered", offered.value_or(kOfferedUnknown));
    offers.push_back(offered ? Json(*offered) : Json(nullptr));
  }
  const std::vector<std::string> plan = operation_.plan(options_);
  fields.emplace_back("to do", Joined(plan, "; "));
  Outcome outcome;
  outcome.message = "nothing was changed";
  outcome.text = FieldList(fields);
  outcome.data = {{"target", Neutralise(subject.label)}, {"product", subject.product},
                  {"packages", MaskedPackages()},        {"versions_before", VersionsJson(subject)},
                  {"versions_offered", offers},          {"plan", plan}};
  return outcome;
}

void OperationRun::Confirm(const Context& context, const Subject& subject) const {
  if (Confirmed(Check(context, subject).text)) return;
  throw Failure(ExitStatus::kInterrupted, kNoLibraryCode, "nothing was changed");
}

Outcome OperationRun::Execute(const Context& context, const Subject& subject) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    subject_ = Neutralise(subject.label);
    reporter_ = MakeReporter(ModeOf(options_.progress), STDERR_FILENO);
    progress_ = std::make_unique<Progress>(
        *reporter_, subject_, [&time = context.time] { return time.Now(); },
        [this, &context](const std::string& job) {
          Record(context, "job", {{"job", job}});
        });
  }
  if (journal_) {
    Json record = JournalBase(context);
    record.update({{"event", "started"}, {"versions_before", VersionsJson(subject)}});
    if (const std::error_code error = journal_->Append(record)) {
      throw Failure(ExitStatus::kFailed, kNoLibraryCode,
                    "the journal " + Neutralise(journal_->Path()) + " cannot be written (" + error.message() +
                        "); nothing was changed");
    }
  }
  const Ending ending = Judge(context, CallAndRecordErrors(context));

  Outcome outcome;
  outcome.status = ending.status;
  outcome.code = ending.code;
  outcome.message = ending.Sentence();
  const std::optional<Subject> after = ReadAgain(context, ending, outcome);
  const bool compared = after && after->versions && subject.versions;
  const bool changed = compared && !(*after->versions == *subject.versions);
  if (compared && !changed && !ending.Failed()) {
    outcome.message += "; the versions are as before, so nothing shows that it made a difference";
  }

  outcome.data = {{"target", subject_},
                  {"product", subject.product},
                  {"packages", MaskedPackages()},
                  {"jobs", JobsJson()},
                  {"versions_before", VersionsJson(subject)},
                  {"versions_after", VersionsJson(after)},
                  {"changed", compared ? Json(changed) : Json(nullptr)},
                  {"advice", ending.advice}};
  Json record = outcome.data;
  record.erase("target");
  record.erase("packages");
  record.erase("product");
  record.update({{"code", ending.code}, {"message", outcome.message}, {"exit_status", ToInt(ending.status)}});
  Record(context, "finished", record);

  const auto versions = compared ? CompareVersions(*subject.versions, *after->versions) : Fields();
  if (ending.Failed()) {
    if (compared) outcome.notes.push_back(subject_ + " has now: " + VersionsSentence(versions));
    outcome.error = std::string(operation_.name) + ": " + outcome.message;
    if (const auto jobs = progress_->Current().jobs; !jobs.empty()) outcome.error += "; " + JobsText(jobs);
    if (!ending.advice.empty()) outcome.error += "; " + ending.advice;
  }
  Fields fields = {{"target", Named(subject)}, {"result", outcome.message}};
  fields.insert(fields.end(), versions.begin(), versions.end());
  for (const Json& job : outcome.data["jobs"]) fields.emplace_back("job", job.get<std::string>());
  if (!ending.advice.empty()) fields.emplace_back("next", ending.advice);
  outcome.text = ending.Failed() ? std::string() : FieldList(fields);
  return outcome;
}

// The library tells failures by codes. Whatever else comes out of it must not leave the journal without an end.
int OperationRun::CallAndRecordErrors(const Context& context) {
  std::string error = "unknown error";
  try {
    return Call(context);
  } catch (const std::exception& thrown) {
    error = Neutralise(MaskCredentials(thrown.what()));
  } catch (...) {
    error = "an error of the CIM client";
  }
  const std::string sentence = std::string(operation_.name) + ": an internal error ended it (" + error + ")";
  Record(context, "finished",
         {{"jobs", JobsJson()},
          {"code", kNoLibraryCode},
          {"message", sentence},
          {"exit_status", ToInt(ExitStatus::kFailed)}});
  throw Failure(ExitStatus::kFailed, kNoLibraryCode, sentence);
}

int OperationRun::Call(const Context& context) {
  context.log.Clear();
  const LogCapture::Watch watch(context.log, [this](const Log::Record& record, bool shown) {
    progress_->OnRecord(record);
    if (shown) progress_->Clear();
  });
  const Pauses pauses(context.time, *progress_);
  const PrintedLines printed([this](const std::string& line) { progress_->OnMessage(line); });
  const int code = operation_.run(context.access, options_, *progress_);
  progress_->End();
  const std::lock_guard<std::mutex> lock(mutex_);
  code_ = code;
  return code;
}

OperationRun::Ending OperationRun::Judge(const Context& context, int code) const {
  const std::vector<Log::Record> records = context.log.Records();
  const ResultTable& table = options_.noWait ? operation_.resultsWithoutWait() : operation_.results();
  const Result result = FindResult(table, code, records);
  const Cause found = FindCause(records);
  Ending ending;
  ending.code = code;
  ending.status = result.row->status;
  ending.what = result.row->text;
  ending.cause = result.row->cause;
  ending.advice = WithBay(result.row->advice, options_.bay);
  // The line that names the job only tells that there is one, others only tell the code once more.
  const bool tells = !result.detail.empty() && JobInLine(result.detail).empty() && !TellsNoCause(result.detail);
  ending.detail = tells ? result.detail : found.text;
  ending.connected = code != kNoConnectionCode && found.kind != CauseKind::kNoConnection;
  ending.oneInstalled =
      ending.Failed() && code != 0 && options_.packages.size() > 1 && context.log.Holds(kInstalledLine);
  ConsiderLostContact(context, found, ending);
  if (const Cause refusal = FindRefusal(records); ending.Failed() && refusal.kind == CauseKind::kRefused) {
    ending.status = ExitStatus::kRefused;
    ending.cause = "user or password was refused";
    ending.detail = refusal.text;
    ending.advice = kCheckUser;
  }
  return ending;
}

// The rows of an operation tell what it missed, a target or a service. When the talk broke off, that is the reason, and
// how far the operation had come decides what is known about the chassis.
void OperationRun::ConsiderLostContact(const Context& context, const Cause& found, Ending& ending) const {
  const Progress::Snapshot reached = progress_->Current();
  const bool asking = reached.stage == Stage::kAsking;
  // Without its service, which is read first, an installation on a module is not asked for.
  const bool preparing = reached.stage == Stage::kPreparing || (asking && context.log.Holds(kServiceNotRead));
  ending.asked = !preparing || !reached.jobs.empty();
  const bool vague = ending.status == ExitStatus::kFailed || ending.status == ExitStatus::kNotFound;
  const LostContact* const lost = vague ? FindLostContact(found.kind) : nullptr;
  const bool installing = asking && reached.jobs.size() < options_.packages.size();
  if (lost == nullptr || (!preparing && !installing)) return;
  ending.cause = lost->cause;
  ending.detail = found.text;
  if (!preparing) {
    ending.what = "whether an installation was begun is not known";
    ending.advice = kListShows;
    return;
  }
  ending.status = lost->status;
  ending.advice = lost->advice;
  if (!options_.packages.empty()) {
    ending.what = ending.oneInstalled ? "the second package was not installed" : "nothing was installed";
  } else {
    ending.what = operation_.changes ? "nothing was done" : "no answer was found";
  }
}

// After a failure too: then it matters most what the target has now.
std::optional<Subject> OperationRun::ReadAgain(const Context& context, const Ending& ending, Outcome& outcome) const {
  const bool failed = ending.Failed();
  if (!operation_.comparesVersions || (failed && !ending.asked)) return std::nullopt;
  if (failed && !ending.connected) {
    outcome.warnings.push_back("the versions were not read again, since there is no connection; see them later with: " +
                               ListCommand(operation_, options_));
    return std::nullopt;
  }
  try {
    // One request tells whether the management module answers: reading everything from one that hangs takes long.
    if (failed) context.target.RequireManagementModule();
    return FindSubject(context.target, operation_, options_);
  } catch (const Failure& failure) {
    outcome.warnings.push_back(std::string("the versions could not be read again: ") + failure.what() +
                               "; see them later with: " + ListCommand(operation_, options_));
    return std::nullopt;
  }
}

Json OperationRun::JournalBase(const Context& context) const {
  return {{"event", nullptr},
          {"operation", operation_.name},
          {"host", context.access.host},
          {"port", context.access.port},
          {"target", subject_},
          {"packages", MaskedPackages()}};
}

void OperationRun::Record(const Context& context, const char* event, const Json& more) {
  if (!journal_) return;
  Json record = JournalBase(context);
  record["event"] = event;
  record.update(more);
  if (const std::error_code error = journal_->Append(record)) {
    reporter_->Clear();
    context.notices.Warning("the journal " + Neutralise(journal_->Path()) + " misses the event \"" + event +
                            "\": it cannot be written (" + error.message() + ")");
  }
}

Json OperationRun::JobsJson() const { return progress_->Current().jobs; }

std::string OperationRun::InterruptedSentence(const Context& context) const {
  if (!progress_) return "interrupted; nothing was changed";
  const Progress::Snapshot now = progress_->Current();
  const std::string jobs = JobsText(now.jobs);
  std::string sentence = "interrupted; ";
  if (code_) {
    sentence += "the operation had ended already, with code " + std::to_string(*code_);
  } else if (!operation_.changes) {
    sentence += "nothing was changed";
  } else {
    switch (now.stage) {
      case Stage::kAsking:
        sentence += "the request was just being sent: whether it is carried out is not known";
        break;
      case Stage::kJobRunning:
        sentence += "the installation " + jobs + " goes on at the management module " +
                    Neutralise(context.access.host) + "; what was to follow is not done";
        break;
      case Stage::kStateRequested:
        sentence += "what was asked for goes on: " + subject_ + " changes its state";
        break;
      default:
        sentence += now.jobs.empty() ? "nothing was changed"
                                     : "the installation " + jobs + " has ended; what was to follow is not done";
        break;
    }
  }
  if (context.simulated) sentence += " (the simulated chassis ends with this command)";
  return sentence;
}

// Runs on a thread of its own, beside the operation.
void OperationRun::Interrupted(const Context& context) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (progress_) progress_->Silence();
  const std::string sentence = InterruptedSentence(context);
  if (progress_) {
    Record(context, "interrupted",
           {{"jobs", JobsJson()}, {"message", sentence}, {"exit_status", ToInt(ExitStatus::kInterrupted)}});
  } else {
    WriteAll(STDERR_FILENO, "\n");  // behind a question, or the ^C that the terminal showed
  }
  TellInterruption(context, operation_.name, sentence);
}

}  // namespace Orvane::cli

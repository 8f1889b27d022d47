// The journal's records are on the disk before the library's call begins, before the first pause after a job's start,
// and before the result is printed.
#include "cli/operations/operation_run.h"

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "cli/cause.h"
#include "cli/failure.h"
#include "cli/interruption.h"
#include "cli/masking.h"
#include "cli/operations/offered_version.h"
#include "cli/operations/package_uri.h"
#include "cli/operations/question.h"
#include "cli/output.h"
#include "cli/progress/pauses.h"
#include "cli/progress/printed_lines.h"
#include "cli/table.h"
#include "cli/text.h"
#include "cli/write_all.h"

namespace Orvane::cli {
namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kOfferedUnknown = "not known before the management module has fetched the package";

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

Json VersionsJson(const std::optional<Subject>& subject) {
  if (!subject || !subject->versions) return nullptr;
  const FirmwareColumns& versions = *subject->versions;
  return {{"active", versions.active}, {"fallback", versions.fallback}, {"boot", versions.boot}};
}

ProgressMode ModeOf(const std::string& name) {
  if (name == "jsonl") return ProgressMode::kJsonLines;
  return name == "auto" && isatty(STDERR_FILENO) == 1 ? ProgressMode::kLive : ProgressMode::kPlain;
}

}  // namespace

struct OperationRun::Ending {
  int code = 0;
  ExitStatus status = ExitStatus::kDone;
  std::string sentence;  ///< What happened and why.
  std::string advice;    ///< May be empty.
};

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
    if (!journal_->Append(record)) {
      throw Failure(ExitStatus::kFailed, kNoLibraryCode,
                    "the journal " + Neutralise(journal_->Path()) + " cannot be written; nothing was changed");
    }
  }
  const Ending ending = Judge(context, CallAndRecordErrors(context));

  Outcome outcome;
  outcome.status = ending.status;
  outcome.code = ending.code;
  outcome.message = ending.sentence;
  const std::optional<Subject> after = ending.code == 0 ? ReadAgain(context, outcome) : std::nullopt;
  const bool compared = after && after->versions && subject.versions;
  const bool changed = compared && !(*after->versions == *subject.versions);
  if (compared && !changed && ending.status == ExitStatus::kDone) {
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

  if (ending.status != ExitStatus::kDone) {
    outcome.error = std::string(operation_.name) + ": " + outcome.message;
    if (const auto jobs = progress_->Current().jobs; !jobs.empty()) outcome.error += "; " + JobsText(jobs);
    if (!ending.advice.empty()) outcome.error += "; " + ending.advice;
  }
  Fields fields = {{"target", Named(subject)}, {"result", outcome.message}};
  if (compared) {
    for (const auto& line : CompareVersions(*subject.versions, *after->versions)) fields.push_back(line);
  }
  for (const Json& job : outcome.data["jobs"]) fields.emplace_back("job", job.get<std::string>());
  if (!ending.advice.empty()) fields.emplace_back("next", ending.advice);
  outcome.text = ending.status == ExitStatus::kDone ? FieldList(fields) : std::string();
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
  const Result result = FindResult(operation_.results(), code, records);
  Ending ending{code, result.row->status, result.row->text, WithBay(result.row->advice, options_.bay)};
  const bool failed = ending.status != ExitStatus::kDone;
  std::string cause = result.row->cause;
  // The line that names the job only tells that there is one, others only tell the code once more.
  const bool tells = !result.detail.empty() && JobInLine(result.detail).empty() && !TellsNoCause(result.detail);
  std::string detail = tells ? result.detail : FindCause(records).text;
  if (const Cause refusal = FindRefusal(records); failed && refusal.kind == CauseKind::kRefused) {
    ending.status = ExitStatus::kRefused;
    cause = "user or password was refused";
    detail = refusal.text;
    ending.advice = "check user and password, and that the user may change the chassis";
  }
  if (!cause.empty()) ending.sentence += (failed ? ": " : " (") + cause + (failed ? "" : ")");
  if (!failed && options_.noWait) ending.sentence += "; it was not waited for";
  if (failed && code != 0 && options_.packages.size() > 1 && context.log.Holds(kInstalledLine)) {
    ending.sentence += "; the first package is installed, but not activated";
  }
  if (failed) {
    ending.sentence += " (code " + std::to_string(code);
    if (!detail.empty()) ending.sentence += ": " + Neutralise(detail);
    ending.sentence += ")";
  }
  return ending;
}

std::optional<Subject> OperationRun::ReadAgain(const Context& context, Outcome& outcome) const {
  if (!operation_.comparesVersions) return std::nullopt;
  try {
    return FindSubject(context.target, operation_, options_);
  } catch (const Failure& failure) {
    outcome.warnings.push_back(std::string("the versions could not be read again: ") + failure.what());
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
  if (!journal_->Append(record)) {
    context.notices.Warning("the journal " + Neutralise(journal_->Path()) + " cannot be written any more");
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
  context.notices.Error(sentence);
  if (context.json) {
    WriteAll(STDOUT_FILENO, JsonText(operation_.name, Failure(ExitStatus::kInterrupted, kNoLibraryCode, sentence)));
  }
}

}  // namespace Orvane::cli

// Carries out one operation: finds what it works on, asks, follows the library's call, tells what came of it, and keeps
// the journal.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "cli/cause.h"
#include "cli/context.h"
#include "cli/journal.h"
#include "cli/operations/operation.h"
#include "cli/operations/subject.h"
#include "cli/outcome.h"
#include "cli/progress/progress.h"

namespace Orvane::cli {

/// For one run only.
class OperationRun {
 public:
  OperationRun(const Operation& operation, OperationOptions options);
  ~OperationRun();
  OperationRun(const OperationRun&) = delete;
  OperationRun& operator=(const OperationRun&) = delete;

  /// Refuses, before anything is connected, what cannot go well: a bad URI, a journal that cannot be written, nobody
  /// there to ask. @throws Failure kUsage.
  void Prepare();

  /// @throws Failure when it cannot even begin. SIGINT and SIGTERM end the process with status 130.
  Outcome Carry(const Context& context);

 private:
  struct Ending;

  Outcome Check(const Context& context, const Subject& subject) const;
  void Confirm(const Context& context, const Subject& subject) const;
  Outcome Execute(const Context& context, const Subject& subject);
  int CallAndRecordErrors(const Context& context);
  int Call(const Context& context);
  Ending Judge(const Context& context, int code) const;
  void ConsiderLostContact(const Context& context, const Cause& found, Ending& ending) const;
  std::optional<Subject> ReadAgain(const Context& context, const Ending& ending, Outcome& outcome) const;
  void Interrupted(const Context& context);
  std::string InterruptedSentence(const Context& context) const;
  Json JournalBase(const Context& context) const;
  void Record(const Context& context, const char* event, const Json& more);
  std::vector<std::string> MaskedPackages() const;
  Json JobsJson() const;

  const Operation& operation_;
  OperationOptions options_;
  std::unique_ptr<Journal> journal_;
  std::string subject_;
  std::unique_ptr<Reporter> reporter_;
  mutable std::mutex mutex_;  // guards what follows against the report of an interruption
  std::unique_ptr<Progress> progress_;
  std::optional<int> code_;
};

}  // namespace Orvane::cli

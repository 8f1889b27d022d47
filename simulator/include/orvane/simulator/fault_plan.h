// What goes wrong in a simulated chassis, and when: a checked fault document, ready to be given to a Simulator.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Orvane::simulator {

struct Fault;

/// The checked contents of a fault document. An immutable value: copies are cheap and share the contents; how often a
/// fault was met is counted by each Simulator on its own, so one plan may serve several of them at once.
class FaultPlan {
 public:
  /// No faults.
  FaultPlan();
  explicit FaultPlan(std::shared_ptr<const std::vector<Fault>> faults) : faults_(std::move(faults)) {}
  const std::vector<Fault>& Faults() const { return *faults_; }

 private:
  std::shared_ptr<const std::vector<Fault>> faults_;
};

/// Reads and checks a fault document (docs/faults.md describes it, docs/fault-plan.schema.json is its schema).
/// @throws ModelError when the file cannot be read, is no JSON, or breaks a rule of the format.
FaultPlan LoadFaultPlan(const std::string& path);

/// Checks the text of a fault document.
/// @param name  what messages call the document
/// @throws ModelError as LoadFaultPlan() does
FaultPlan ParseFaultPlan(const std::string& name, const std::string& text);

}  // namespace Orvane::simulator

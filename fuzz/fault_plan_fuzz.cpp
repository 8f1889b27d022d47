// Any bytes as a fault document of the simulator. A document that is accepted also has to be usable: its faults are met
// by requests, and what they put into the head of an answer keeps that head whole.
#include <orvane/simulator/fault_plan.h>
#include <orvane/simulator/simulator.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <variant>

#include "faults/fault.h"
#include "faults/fault_matcher.h"

namespace {

using Orvane::simulator::Fault;

constexpr std::size_t kLongestHeadText = 16384;
constexpr const char* kFile = "plan.json";

void Require(bool holds) {
  if (!holds) std::abort();
}

bool HasControlCharacters(const std::string& text) {
  constexpr unsigned char kBlank = ' ';
  return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < kBlank; });
}

void CheckFault(const Fault& fault) {
  Require(fault.request.from >= 1 && fault.request.from <= fault.request.to);
  const auto* const wire = std::get_if<Orvane::simulator::WireEffect>(&fault.effect);
  if (wire == nullptr) return;
  if (const auto* const status = std::get_if<Orvane::simulator::AnswerHttpStatus>(wire)) {
    Require(!HasControlCharacters(status->reason));
    for (const auto& [name, value] : status->headers) {
      Require(!name.empty() && !HasControlCharacters(name + value));
      Require(std::max(name.size(), value.size()) <= kLongestHeadText);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const Orvane::simulator::FaultPlan plan =
        Orvane::simulator::ParseFaultPlan(kFile, std::string(reinterpret_cast<const char*>(data), size));
    for (const Fault& fault : plan.Faults()) CheckFault(fault);
    Orvane::simulator::FaultMatcher matcher(plan);
    const Orvane::simulator::RequestFacts requests[] = {{"EnumerateInstances", "CIM_ComputerSystem", ""},
                                                        {"InvokeMethod", "CIM_ConcreteJob", "InstallFromURI"}};
    for (const auto& request : requests) Require(matcher.Meet(request, {}).size() <= plan.Faults().size());
  } catch (const Orvane::simulator::ModelError& error) {
    // Refused: one line with file, place and reason.
    const std::string message = error.what();
    Require(message.rfind(std::string(kFile) + ": /", 0) == 0 && !HasControlCharacters(message));
  }
  return 0;
}

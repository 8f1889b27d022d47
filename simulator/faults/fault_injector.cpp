// The wire effects are made here as far as CIM and HTTP go: the text of the answer and a note for the connection about
// how to deliver it.
#include "faults/fault_injector.h"

#include <algorithm>
#include <utility>

namespace Orvane::simulator {

namespace {

using std::chrono::milliseconds;

// Delays that add up stay below what the longest single one may be.
constexpr milliseconds kLongestDelay{600000};

template <typename... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <typename... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

std::string WithWrongEndTag(std::string body) {
  constexpr std::string_view kEndTag = "</SIMPLERSP>";
  const std::size_t place = body.rfind(kEndTag);
  if (place != std::string::npos) body.replace(place, kEndTag.size(), "</SIMPLEREQ>");
  return body;
}

// The answer of a request that meets at least one effect on the wire but a delay.
HttpReply AnswerWith(const WireEffect& effect, const Request& request, Operations& operations) {
  HttpReply reply;
  std::visit(Overloaded{
                 [&](const Refuse& refuse) {
                   if (refuse.answerFirst) reply.body = operations.Answer(request);
                   reply.delivery.refusal = refuse.duration;
                   if (!refuse.answerFirst) reply.delivery.form = Delivery::Form::kNothing;
                 },
                 [&](const DropBeforeAnswer&) {
                   operations.Answer(request);
                   reply.delivery.form = Delivery::Form::kNothing;
                 },
                 [&](const DropInAnswer& drop) {
                   reply.body = operations.Answer(request);
                   reply.delivery.form = Delivery::Form::kCut;
                   reply.delivery.bodyBytes = drop.bodyBytes;
                 },
                 [&](const Delay&) { reply.body = operations.Answer(request); },
                 [&](const AnswerHttpStatus& status) {
                   reply.status = status.status;
                   reply.reason = status.reason;
                   reply.headers = status.headers;
                   reply.body = status.body;
                 },
                 [&](const AnswerCimError& error) {
                   reply.body = operations.AnswerError(request, error.code, error.description);
                 },
                 [&](const MalformedBody& malformed) {
                   reply.body = operations.Answer(request);
                   reply.body = malformed.text ? *malformed.text : WithWrongEndTag(std::move(reply.body));
                 },
                 [&](const TruncatedBody& truncated) {
                   reply.body = operations.Answer(request);
                   // Without its line end alone the document would still be whole.
                   reply.body.resize(std::min<std::size_t>(truncated.bytes, reply.body.find_last_not_of('\n')));
                 },
             },
             effect);
  return reply;
}

}  // namespace

FaultInjector::FaultInjector(FaultPlan plan, FaultyChassis& chassis, Operations& operations)
    : matcher_(std::move(plan)), chassis_(chassis), operations_(operations) {}

HttpReply FaultInjector::Answer(const Request& request) {
  HttpReply reply;
  if (matcher_.IsEmpty()) {
    reply.body = operations_.Answer(request);
    return reply;
  }
  // One request at a time from the count to the answer, so that the nth request is also the nth that is carried out.
  const std::lock_guard<std::mutex> lock(turn_);
  const WireEffect* decisive = nullptr;
  milliseconds delay{0};
  const RequestFacts facts = FactsOf(request);
  for (const Fault* fault : matcher_.Meet(facts, chassis_.Look())) {
    if (const auto* const change = std::get_if<ChassisEffect>(&fault->effect)) {
      chassis_.Begin(*change, facts);
      continue;
    }
    const auto& effect = std::get<WireEffect>(fault->effect);
    if (const auto* const wait = std::get_if<Delay>(&effect)) {
      delay = std::min(delay + wait->duration, kLongestDelay);
    } else if (decisive == nullptr) {
      decisive = &effect;
    }
  }
  reply = AnswerWith(decisive == nullptr ? WireEffect(Delay{}) : *decisive, request, operations_);
  chassis_.End();
  reply.delivery.delay = delay;
  return reply;
}

}  // namespace Orvane::simulator

// The contents of a fault document: which request meets a fault, under which circumstances, and what then happens.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace Orvane::simulator {

/// What may go on in a chassis while requests come in.
enum class ChassisState {
  /// A job exists that has not come to its end.
  kJobRunning,
  /// A CMM was told to reboot and does not answer again yet.
  kCmmRebooting,
  /// A switch, pass-through module or node was told to restart and is not up again yet.
  kModuleRestarting,
};
constexpr std::size_t kChassisStates = 3;

/// The requests that a fault is for. Names are compared without case; an empty one stands for every name.
struct RequestRule {
  /// Of an intrinsic operation, or "InvokeMethod" for extrinsic methods.
  std::string operation;
  /// As the request names it: neither its subclasses nor its superclasses are meant.
  std::string className;
  std::string method;
  /// Of the requests that fit everything else, the first and last that meet the fault, counted from 1.
  std::uint64_t from = 1;
  std::uint64_t to = UINT64_MAX;
};

/// When a request is looked at, at all.
struct Circumstances {
  /// Simulated time since the start that must have passed.
  std::chrono::milliseconds after{0};
  std::optional<ChassisState> during;
  /// The state was there and has ended; it may have begun anew.
  std::optional<ChassisState> afterState;
};

/// The connection is cut and nobody listens for a time.
struct Refuse {
  std::chrono::milliseconds duration{0};
  /// True: the request is carried out and answered before.
  bool answerFirst = false;
};
/// The request is carried out; instead of an answer the connection ends.
struct DropBeforeAnswer {};
/// The connection ends after the head of the answer and some bytes of its body, at least one byte before its end.
struct DropInAnswer {
  std::uint64_t bodyBytes = 0;
};
/// The request is carried out at once, its answer comes later.
struct Delay {
  std::chrono::milliseconds duration{0};
};
/// The request is not carried out.
struct AnswerHttpStatus {
  int status = 0;
  /// Empty: the usual one.
  std::string reason;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
};
/// The request is not carried out.
struct AnswerCimError {
  int code = 0;
  std::string description;
};
/// The request is carried out; the body of its answer is no well-formed XML.
struct MalformedBody {
  /// None: the answer with one end tag that does not match.
  std::optional<std::string> text;
};
/// The request is carried out; of the body only the beginning is sent, in a well-formed HTTP message.
struct TruncatedBody {
  std::uint64_t bytes = 0;
};

/// The job never ends.
struct JobStuck {
  /// True: a job that has just been created does not even begin to run.
  bool inNew = false;
};
/// The job is not there any more.
struct JobVanished {};
/// The job ends in an exception with this status text.
struct JobFails {
  std::string text;
};
/// A CMM that reboots does not answer again.
struct CmmStaysDown {};
/// No CMM is a spare any more.
struct TwoPrimaries {};
enum class TargetKind { kCmm, kSwitch, kPassThru, kNode };
/// What stands in a bay is not there any more.
struct TargetGone {
  TargetKind kind = TargetKind::kCmm;
  unsigned bay = 0;
};

/// What the client sees on the wire.
using WireEffect = std::variant<Refuse, DropBeforeAnswer, DropInAnswer, Delay, AnswerHttpStatus, AnswerCimError,
                                MalformedBody, TruncatedBody>;
/// What happens to the chassis before the request is carried out. Effects on a job concern the job that the request
/// starts, or else every job that has not come to its end.
using ChassisEffect = std::variant<JobStuck, JobVanished, JobFails, CmmStaysDown, TwoPrimaries, TargetGone>;

struct Fault {
  RequestRule request;
  Circumstances when;
  std::variant<WireEffect, ChassisEffect> effect;
};

}  // namespace Orvane::simulator

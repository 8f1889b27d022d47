// Carries out CIM operations on the store of a chassis: which parameters an operation has, what it answers, and which
// CIM error a request ends in that cannot be carried out.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "cim/object_store.h"
#include "cim/shared_store.h"
#include "wire/request.h"

namespace Orvane::simulator {

/// The outcome of an extrinsic method.
struct MethodResult {
  std::uint32_t returnValue = 0;
  std::vector<MethodParameter> out;
};

/// What an extrinsic method does; called with the store locked and an existing target. May throw CimError.
using Method = std::function<MethodResult(ObjectStore& store, const ObjectPath& target,
                                          const std::vector<MethodParameter>& parameters)>;

/// Called with the store locked after a client has modified an instance.
using ModificationObserver = std::function<void(ObjectStore& store, const ObjectPath& instance)>;

/// Thread-safe: requests of several clients see one store, one operation at a time.
class Operations {
 public:
  /// @param store  must outlive it
  /// @param host   name of the server in the paths it hands out
  Operations(SharedStore& store, std::string host);

  /// Lets a method of a class, which the class repository must declare, and of its subclasses be invoked.
  /// Not thread-safe; call it before the first request.
  void AddMethod(const std::string& className, const std::string& method, Method action);

  /// Tells an observer of modifications of a class and its subclasses. Restriction as for AddMethod.
  void AddObserver(const std::string& className, ModificationObserver observer);

  /// Carries out one request and returns the body of its answer, a CIM error included.
  std::string Answer(const Request& request);

  /// The body of an answer that is a CIM error, without carrying anything out; counts as an answered request, too.
  std::string AnswerError(const Request& request, int code, const std::string& description);

  /// How many requests of an operation were answered; extrinsic methods count as "InvokeMethod".
  std::uint64_t Count(const std::string& operation) const;

 private:
  void CountCall(const Request& request);
  void Append(std::string& out, const Request& request, ObjectStore& store) const;
  void AppendIntrinsic(std::string& out, const Request& request, const ObjectStore& store) const;
  void AppendExtrinsic(std::string& out, const Request& request, ObjectStore& store) const;
  const Method* FindMethod(const ClassDeclaration& declaration, const std::string& name) const;

  SharedStore& store_;
  const std::string host_;
  std::map<std::pair<std::string, std::string>, Method> methods_;
  std::vector<std::pair<std::string, ModificationObserver>> observers_;
  mutable std::mutex countsMutex_;
  std::map<std::string, std::uint64_t> counts_;
};

}  // namespace Orvane::simulator

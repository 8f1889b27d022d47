// What the behaviour of a CMM needs of the network it serves on.
#pragma once

namespace Orvane::simulator {

class Network {
 public:
  virtual ~Network() = default;
  Network(const Network&) = delete;
  Network& operator=(const Network&) = delete;

  /// Stops listening and ends every connection; returns when new connections are refused and the old ones are closed.
  /// Not to be called on a thread that serves requests, nor with the store locked.
  virtual void GoDown() = 0;

  /// Listens again on the same ports; without effect when it does so already. Restrictions as for GoDown.
  virtual void ComeUp() = 0;

 protected:
  Network() = default;
};

}  // namespace Orvane::simulator

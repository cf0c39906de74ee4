#pragma once
// How a host reaches its controller: read requests go out, the answer comes back through
// the handlers on the host's thread, at once or later (a network transport answers later).
// The control asks one thing at a time, so a link has at most one request under way.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vantrel::hosts {

struct LinkHandlers {
  // The words asked for, element 0 first; never partial, never invented.
  std::function<void(std::vector<int32_t>)> answer;
  // The link went down (false) or answers again (true). Optional.
  std::function<void(bool connected)> connection;
  // A request the link cannot serve (e.g. a data block it has no address for). Optional.
  std::function<void(const std::string& message)> error;
};

// Runs a task on the host's thread at its next turn (PollEventLoop::Post, a queued Qt call).
using PostToHost = std::function<void(std::function<void()>)>;

class ControllerLink {
 public:
  virtual ~ControllerLink() = default;
  virtual void ReadRegisters(int32_t first, int32_t count) = 0;
  virtual void ReadDataBlock(int32_t block, int32_t offset, int32_t count) = 0;
};

}  // namespace vantrel::hosts

// How a transport reaches the model thread: `post` queues a closure that runs there, and `hold`, when
// given, marks a piece of work in flight for as long as the returned token lives, so that a pump waits
// for the event still to come. The model's event queue supplies both.
#pragma once

#include <functional>
#include <memory>

namespace lw {

struct EventPort {
  std::function<void(std::function<void()>)> post;
  std::function<std::shared_ptr<void>()> hold;

  std::shared_ptr<void> Hold() const { return hold ? hold() : nullptr; }
};

}  // namespace lw

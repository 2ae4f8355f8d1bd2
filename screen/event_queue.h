// The event queue of the one model thread. Transports do their I/O on worker threads and post a closure
// here when they are done; closures run only on the model thread, in the order they were posted. Timers
// are registered here too, so that the loop that delivers events also delivers due ticks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/event_port.h"

namespace lw {

class Timer;

class EventQueue {
 public:
  using SteadyNow = std::function<std::chrono::steady_clock::time_point()>;

  EventQueue();
  // `now` measures timer intervals; tests pass a fake.
  explicit EventQueue(SteadyNow now);
  EventQueue(const EventQueue&) = delete;
  EventQueue& operator=(const EventQueue&) = delete;

  // Any thread: queue a closure for the model thread.
  void Post(std::function<void()> event);

  // A piece of work in flight on another thread that will post an event when it ends. While any is
  // outstanding, Pump waits for it. Take one before starting the worker, drop it after posting.
  class Work {
   public:
    explicit Work(EventQueue& queue);
    ~Work();
    Work(Work&& other) noexcept;
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
    Work& operator=(Work&&) = delete;

   private:
    EventQueue* queue_;
  };

  // Model thread: runs the closures queued right now (not ones they post in turn) and the timers that
  // are due. Returns how many closures and ticks ran. What the desktop loop and DoEvents call.
  int DeliverPending();
  // Model thread: delivers events until nothing is queued and no work is outstanding, or until
  // `limit` has passed. Due timers tick once per round but do not keep the pump going.
  // Returns false when the limit ended it with events still to come.
  bool Pump(std::chrono::milliseconds limit = std::chrono::seconds(30));

  // Number of closures queued and pieces of work outstanding (any thread).
  size_t Queued() const;
  size_t Outstanding() const;

  // The port through which platform transports reach this queue: post queues, hold takes a Work.
  EventPort Port();

  // Called (on the posting thread) after every Post, so that a desktop loop can wake up.
  void SetWakeup(std::function<void()> wakeup);

  // Timers register themselves while enabled with a positive interval. A timer started wakes the loop,
  // so that a loop sleeping until the next due timer learns of it.
  void AddTimer(Timer& timer);
  void RemoveTimer(Timer& timer);
  // Fires every enabled timer whose interval has passed since it last fired (or was enabled).
  int TickDueTimers();
  // When the next timer is due, for a loop that sleeps until then; nothing while no timer runs.
  std::optional<std::chrono::steady_clock::time_point> NextTimerDue() const;
  std::chrono::steady_clock::time_point SteadyTime() const { return now_(); }

 private:
  SteadyNow now_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> events_;
  size_t outstanding_ = 0;
  std::function<void()> wakeup_;
  std::vector<Timer*> timers_;  // model thread only
};

}  // namespace lw

#include "screen/event_queue.h"

#include <algorithm>
#include <memory>

#include "screen/control.h"
#include "screen/form.h"

namespace lw {

EventQueue::EventQueue() : EventQueue([] { return std::chrono::steady_clock::now(); }) {}

EventQueue::EventQueue(SteadyNow now) : now_(std::move(now)) {}

void EventQueue::Post(std::function<void()> event) {
  std::function<void()> wakeup;
  {
    std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
    wakeup = wakeup_;
  }
  changed_.notify_all();
  if (wakeup) wakeup();
}

EventQueue::Work::Work(EventQueue& queue) : queue_(&queue) {
  std::lock_guard lock(queue_->mutex_);
  ++queue_->outstanding_;
}

EventQueue::Work::Work(Work&& other) noexcept : queue_(other.queue_) {
  other.queue_ = nullptr;
}

EventQueue::Work::~Work() {
  if (!queue_) return;
  {
    std::lock_guard lock(queue_->mutex_);
    --queue_->outstanding_;
  }
  queue_->changed_.notify_all();
}

int EventQueue::DeliverPending() {
  std::deque<std::function<void()>> batch;
  {
    std::lock_guard lock(mutex_);
    batch.swap(events_);
  }
  int ran = 0;
  while (!batch.empty()) {
    auto event = std::move(batch.front());
    batch.pop_front();
    try {
      if (event) event();
    } catch (...) {
      // Whatever was not delivered yet goes back to the front, so one failing handler loses nothing.
      std::lock_guard lock(mutex_);
      events_.insert(events_.begin(), std::make_move_iterator(batch.begin()),
                     std::make_move_iterator(batch.end()));
      throw;
    }
    ++ran;
  }
  return ran + TickDueTimers();
}

bool EventQueue::Pump(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (;;) {
    DeliverPending();
    std::unique_lock lock(mutex_);
    if (events_.empty() && outstanding_ == 0) return true;
    if (events_.empty()) {
      // Work is in flight: sleep until it posts or finishes, waking now and then for due timers.
      auto wake = std::min(deadline, std::chrono::steady_clock::now() + std::chrono::milliseconds(50));
      changed_.wait_until(lock, wake, [this] { return !events_.empty() || outstanding_ == 0; });
    }
    if (std::chrono::steady_clock::now() >= deadline) return events_.empty() && outstanding_ == 0;
  }
}

EventPort EventQueue::Port() {
  EventPort port;
  port.post = [this](std::function<void()> event) { Post(std::move(event)); };
  port.hold = [this]() -> std::shared_ptr<void> { return std::make_shared<Work>(*this); };
  return port;
}

size_t EventQueue::Queued() const {
  std::lock_guard lock(mutex_);
  return events_.size();
}

size_t EventQueue::Outstanding() const {
  std::lock_guard lock(mutex_);
  return outstanding_;
}

void EventQueue::SetWakeup(std::function<void()> wakeup) {
  std::lock_guard lock(mutex_);
  wakeup_ = std::move(wakeup);
}

void EventQueue::AddTimer(Timer& timer) {
  if (std::find(timers_.begin(), timers_.end(), &timer) == timers_.end()) timers_.push_back(&timer);
  timer.started = now_();
  std::function<void()> wakeup;
  {
    std::lock_guard lock(mutex_);
    wakeup = wakeup_;
  }
  if (wakeup) wakeup();
}

std::optional<std::chrono::steady_clock::time_point> EventQueue::NextTimerDue() const {
  std::optional<std::chrono::steady_clock::time_point> next;
  for (const Timer* timer : timers_) {
    if (!timer->enabled() || timer->interval() <= 0 || !timer->form().loaded()) continue;
    auto due = timer->started + std::chrono::milliseconds(timer->interval());
    if (!next || due < *next) next = due;
  }
  return next;
}

void EventQueue::RemoveTimer(Timer& timer) {
  std::erase(timers_, &timer);
}

int EventQueue::TickDueTimers() {
  int fired = 0;
  // A handler may stop or start timers; walk a copy and skip any that left meanwhile.
  const std::vector<Timer*> timers = timers_;
  for (Timer* timer : timers) {
    if (std::find(timers_.begin(), timers_.end(), timer) == timers_.end()) continue;
    // Timers of an unloaded form stand still until it is loaded again.
    if (!timer->enabled() || timer->interval() <= 0 || !timer->form().loaded()) continue;
    auto now = now_();
    if (now - timer->started < std::chrono::milliseconds(timer->interval())) continue;
    timer->started = now;
    timer->Fire();
    ++fired;
  }
  return fired;
}

}  // namespace lw

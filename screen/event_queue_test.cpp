#include "screen/event_queue.h"

#include <gtest/gtest.h>

#include <thread>

namespace lw {
namespace {

TEST(EventQueue, EventsFromWorkersRunOnThePumpingThreadInOrder) {
  EventQueue queue;
  std::vector<int> seen;
  const auto model = std::this_thread::get_id();
  bool off_thread = false;
  std::vector<std::thread> workers;
  for (int w = 0; w < 4; ++w) {
    EventQueue::Work work(queue);
    workers.emplace_back([&queue, &seen, &off_thread, model, w, work = std::move(work)]() mutable {
      for (int i = 0; i < 50; ++i)
        queue.Post([&seen, &off_thread, model, w, i] {
          if (std::this_thread::get_id() != model) off_thread = true;
          seen.push_back(w * 1000 + i);
        });
    });
  }
  EXPECT_TRUE(queue.Pump(std::chrono::seconds(10)));
  for (auto& t : workers) t.join();
  ASSERT_EQ(seen.size(), 200u);
  EXPECT_FALSE(off_thread);
  // Each worker's events keep their order.
  for (int w = 0; w < 4; ++w) {
    int last = -1;
    for (int v : seen)
      if (v / 1000 == w) {
        EXPECT_GT(v % 1000, last);
        last = v % 1000;
      }
  }
}

TEST(EventQueue, PumpWaitsForWorkInFlightAndGivesUpAtItsLimit) {
  EventQueue queue;
  bool done = false;
  {
    EventQueue::Work work(queue);
    std::thread slow([&queue, &done, work = std::move(work)]() mutable {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      queue.Post([&done] { done = true; });
    });
    slow.detach();
  }
  EXPECT_TRUE(queue.Pump(std::chrono::seconds(10)));
  EXPECT_TRUE(done);

  EventQueue::Work never(queue);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(queue.Pump(std::chrono::milliseconds(150)));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_EQ(queue.Outstanding(), 1u);
}

TEST(EventQueue, AFailingHandlerLosesNoOtherEvent) {
  EventQueue queue;
  int ran = 0;
  queue.Post([&] { ++ran; });
  queue.Post([] { throw std::runtime_error("handler failed"); });
  queue.Post([&] { ++ran; });
  queue.Post([&] { ++ran; });
  EXPECT_THROW(queue.DeliverPending(), std::runtime_error);
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(queue.Queued(), 2u);
  EXPECT_EQ(queue.DeliverPending(), 2);
  EXPECT_EQ(ran, 3);
}

TEST(EventQueue, PortPostsAndHoldsWork) {
  EventQueue queue;
  EventPort port = queue.Port();
  auto hold = port.Hold();
  EXPECT_EQ(queue.Outstanding(), 1u);
  int ran = 0;
  port.post([&] { ++ran; });
  hold.reset();
  EXPECT_TRUE(queue.Pump(std::chrono::seconds(1)));
  EXPECT_EQ(ran, 1);
}

}  // namespace
}  // namespace lw

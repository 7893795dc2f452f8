#include "platform/timer_queue.hpp"

#include <algorithm>
#include <vector>

namespace platform {

TimerQueue::Id TimerQueue::Start(std::uint32_t intervalMs, std::function<void()> tick, TickKind kind) {
  const std::uint32_t interval = std::max<std::uint32_t>(intervalMs, 1);
  entries_.emplace(++last_, Entry{interval, clock_.Milliseconds() + interval, std::move(tick), kind});
  if (onChange) onChange();
  return last_;
}

void TimerQueue::Stop(Id id) { entries_.erase(id); }

void TimerQueue::FireDue() { Fire(true); }
void TimerQueue::FireDueAndShort() { Fire(false); }

void TimerQueue::Fire(bool all) {
  const std::uint64_t now = clock_.Milliseconds();
  std::vector<Id> due;
  for (const auto& [id, entry] : entries_) {
    const bool wanted = all || entry.kind == TickKind::Short;
    if (wanted && !entry.running && entry.due <= now) due.push_back(id);
  }
  for (const Id id : due) {
    auto found = entries_.find(id);
    if (found == entries_.end() || found->second.running) continue;
    found->second.running = true;
    const std::function<void()> tick = found->second.tick;  // survives a Stop from inside the tick
    tick();
    found = entries_.find(id);
    if (found == entries_.end()) continue;
    found->second.running = false;
    found->second.due = clock_.Milliseconds() + found->second.interval;
  }
}

std::optional<std::uint64_t> TimerQueue::UntilNext() {
  std::optional<std::uint64_t> next;
  const std::uint64_t now = clock_.Milliseconds();
  for (const auto& [id, entry] : entries_) {
    if (entry.running) continue;
    const std::uint64_t left = entry.due > now ? entry.due - now : 0;
    if (!next || left < *next) next = left;
  }
  return next;
}

}  // namespace platform

#pragma once
// Shares independent pieces of work between the calling thread and a few
// helper threads that live as long as the program. Each row's own
// arithmetic stays in its given order, so results do not depend on the
// number of threads or on which thread did what. A failure is raised again
// in the caller: the one of the earliest piece, as a run on one thread
// would have raised it.
//
// The pieces are handed out one at a time as threads become free, and the
// caller always works: a helper that another program keeps off its core
// only means fewer pieces for it, and the caller waits for no helper that
// has not yet taken a piece, only for pieces already taken.
#include <algorithm>
#include <functional>
#include <thread>

namespace varnoth {

inline unsigned WorkerCount() {
  unsigned n = std::thread::hardware_concurrency();
  return std::clamp(n, 1u, 16u);
}

// Keeps a helper thread off the core that the calling thread is on, so
// that on a busy machine the two do not end up sharing one core.
void KeepOffThisCore(std::thread& helper);

// Calls body(first, last) on disjoint parts of [first, last] (inclusive).
// Parts start large and shrink towards `grain` rows as the range runs out,
// so that the threads finish together; ranges below two grains run on the
// calling thread alone.
void ParallelRows(long first, long last, long grain, const std::function<void(long, long)>& body);

// Calls body(task) for each task 0..count-1. Order tasks from the largest
// for an even finish.
void ParallelTasks(long count, const std::function<void(long)>& body);

// Columns 1..n in groups of kColumnGroup, as tasks for the cores: a task
// walks the rows in order for its group, so each column still takes its
// rows in index order while memory is read row after row.
constexpr long kColumnGroup = 32;
template <typename Body>
void ForColumnGroups(long n, Body body) {
  ParallelTasks((n + kColumnGroup - 1) / kColumnGroup,
                [&](long t) { body(1 + t * kColumnGroup, std::min(n, (t + 1) * kColumnGroup)); });
}

}  // namespace varnoth

#ifndef BREVAN_TESTS_FAILINGNEW_H
#define BREVAN_TESTS_FAILINGNEW_H

namespace brevan::plimlog {

/// Lets operator new of this thread succeed `count` times more, fail once, and then go on as always.
void failAllocationAfter(long count);

/// The same, but it fails from then on, until allocationHasFailed() is asked.
void failAllocationsFrom(long count);

/// Whether it has failed since; takes failures back that have not come about.
bool allocationHasFailed();

}  // namespace brevan::plimlog

#endif

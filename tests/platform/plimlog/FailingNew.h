#ifndef BREVAN_TESTS_FAILINGNEW_H
#define BREVAN_TESTS_FAILINGNEW_H

namespace brevan::plimlog {

/// Lets operator new of this thread succeed `count` times more, fail once, and then go on as always.
void failAllocationAfter(long count);

/// Whether it has failed since; takes a failure back that did not come about.
bool allocationHasFailed();

}  // namespace brevan::plimlog

#endif

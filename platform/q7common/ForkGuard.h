#ifndef BREVAN_Q7COMMON_FORKGUARD_H
#define BREVAN_Q7COMMON_FORKGUARD_H

namespace brevan {

/// From the first call on, a fork takes this library's locks before and gives them back after, so that the child finds
/// sessions, settings and connections consistent. The child keeps the sessions and begins with connections of its own.
void guardForks();

}  // namespace brevan

#endif

#include "core/threadstate.h"

namespace kvrtb {

ThreadState &threadState()
{
    thread_local ThreadState state;
    return state;
}

} // namespace kvrtb

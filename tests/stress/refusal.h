/* Memory that runs out, for the threads of the library alone. */
#pragma once

namespace stress {

/* While it lives, what the calling thread allocates is the library's, as what the library's own threads do. */
class InLibrary {
 public:
    InLibrary();
    ~InLibrary();
    InLibrary(const InLibrary&) = delete;
    InLibrary& operator=(const InLibrary&) = delete;
};

/* From now on the at-th allocation of the library fails, and with forGood all after it. */
void refuseAllocation(long at, bool forGood);
/* Ends that; true when an allocation has failed. */
bool endRefusal();
bool hasRefused();

/* Runs the library's timer once, on its own thread, and waits until it has run. It never runs by itself. */
void runTimerOnce();

}  // namespace stress

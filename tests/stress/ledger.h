/* What was done with which results, what went wrong, and who does what right now. Any thread. */
#pragma once

#include <cstdint>
#include <string>
#include <thread>

namespace stress {

/* Notes the result of a call; one that the headers do not name for it is a violation. Returns the result. */
uint32_t note(const char* call, int result);
uint64_t notedCalls();
void printCalls();

void violation(const std::string& what);
int violations();

/* Names the call that this thread is in while the object lives. */
class Doing {
 public:
    explicit Doing(const char* call);
    ~Doing();
    const char* call() const { return call_; }
    Doing(const Doing&) = delete;
    Doing& operator=(const Doing&) = delete;

 private:
    const char* call_;
    const char* before_;
};

/* While it lives, a call of more than two minutes ends the process, with a list of what each thread is doing. */
std::jthread watchdog();

}  // namespace stress

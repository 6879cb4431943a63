// A program that measures itself in a process of its own, line by line in step with the program that started it.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

namespace bench {

class Child {
 public:
    /* Starts the program called name that lies beside this one. */
    Child(const std::string& name, const std::vector<std::string>& arguments);
    ~Child(); /* ends its input and waits for it */
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void say(const std::string& line);
    /* The numbers of its next line; empty when it has ended. */
    std::vector<double> hear();

 private:
    pid_t pid_ = 0;
    FILE* to_ = nullptr;
    FILE* from_ = nullptr;
};

}  // namespace bench

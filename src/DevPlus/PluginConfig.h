/* The configuration commands that a host may send at any time after Init. */
#ifndef VELTA_DEVPLUS_PLUGINCONFIG_H
#define VELTA_DEVPLUS_PLUGINCONFIG_H

#include <string>

/* One command: its name, compared exactly, and what it does with the message (0 done, -1 refused). */
struct ConfigProcFunc {
    const char* head;
    int (*handler)(std::string& msg);
};

extern const int nConfigProcFuncCount;

/* Runs the command named head. -1 for a null argument, an unknown head or a refused message. Lets no
 * exception out. Any thread. */
int SetConfigProcess(const char* head, const char* msg) noexcept;

#endif

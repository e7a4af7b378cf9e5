// Runs a program and writes down how much memory it had at most, in KiB:
//
//     peak_of FILE PROGRAM ARGUMENT...
//
// A process of its own for that: the peak of a new process begins with what the
// one had that started it.

#include <cstdio>
#include <fstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int count, char** arguments) {
    if (count < 3) {
        std::fputs("usage: peak_of FILE PROGRAM ARGUMENT...\n", stderr);
        return 2;
    }
    const pid_t child = fork();
    if (child == 0) {
        execv(arguments[2], arguments + 2);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        std::perror("peak_of");
        return 2;
    }
    std::ofstream(arguments[1]) << usage.ru_maxrss << '\n';
    return WIFEXITED(status) ? WEXITSTATUS(status) : 2;
}

#include "tests/hostile/NoFilesNoSockets.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <vector>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>

namespace OvMemTest {

namespace {

volatile std::sig_atomic_t fileCount = 0;
volatile std::sig_atomic_t socketCount = 0;

// The system call has not been made; its result is written here.
void refuse(int, siginfo_t* info, void* context) {
    if (info->si_syscall == __NR_socket) {
        socketCount = socketCount + 1;
    } else {
        fileCount = fileCount + 1;
    }
    auto& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
#if defined(__x86_64__)
    machine.gregs[REG_RAX] = -EACCES;
#elif defined(__aarch64__)
    machine.regs[0] = static_cast<unsigned long long>(-EACCES);
#else
#error "where does a system call leave its result here?"
#endif
}

void check(int result, const char* call) {
    if (result != 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

sock_filter instruction(int code, std::uint32_t operand, std::uint8_t yes = 0,
                        std::uint8_t no = 0) {
    return {static_cast<std::uint16_t>(code), yes, no, operand};
}

}  // namespace

NoFilesNoSockets::NoFilesNoSockets() {
    struct sigaction action = {};
    action.sa_sigaction = refuse;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    check(::sigaction(SIGSYS, &action, nullptr), "sigaction");

    const std::uint32_t trapped[] = {
#if defined(__NR_open)
        __NR_open,
        __NR_creat,
#endif
        __NR_openat,
        __NR_openat2,
        __NR_socket
    };
    std::vector<sock_filter> filter{
        instruction(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const std::uint32_t call : trapped) {
        filter.push_back(instruction(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        filter.push_back(instruction(BPF_RET | BPF_K, SECCOMP_RET_TRAP));
    }
    filter.push_back(instruction(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()),
                             filter.data()};
    check(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), "PR_SET_NO_NEW_PRIVS");
    check(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program),
          "PR_SET_SECCOMP");
}

int NoFilesNoSockets::files() const {
    return fileCount;
}

int NoFilesNoSockets::sockets() const {
    return socketCount;
}

}  // namespace OvMemTest

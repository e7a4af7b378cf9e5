#ifndef TESTS_HOSTILE_NOFILESNOSOCKETS_H
#define TESTS_HOSTILE_NOFILESNOSOCKETS_H

namespace OvMemTest {

// From its construction to the end of the process, no file is opened and no
// socket is made in it: the kernel refuses, and the attempts are counted.
//
// One for a process, which is a child made for it.
class NoFilesNoSockets {
public:
    // THROWS: std::system_error when the kernel does not play along.
    NoFilesNoSockets();

    int files() const;
    int sockets() const;
};

}  // namespace OvMemTest

#endif

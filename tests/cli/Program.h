#ifndef TESTS_CLI_PROGRAM_H
#define TESTS_CLI_PROGRAM_H

#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/cli/RunningProgram.h"

namespace OvMemTest {

// How a program ended and what it wrote.
struct Outcome {
    int exitCode;  // minus the signal if one ended it
    std::string output;
    std::string errors;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome);

// A program to be run as a process of its own, with an environment that holds
// what is set here and nothing else but the settings of the sanitizers.
//
//     Program program("/bin/cat");
//     program.input("text");
//     EXPECT_EQ(program.run({"-"}), (Outcome{0, "text", ""}));
//
// May be run often, also from several threads at once. Without another word
// standard input is empty, and output and errors are collected.
class Program {
public:
    using Arguments = std::vector<std::string>;

    explicit Program(std::string path);

    Program& set(const std::string& variable, const std::string& value);
    Program& unset(const std::string& variable);

    // Standard input: these bytes, or closed.
    Program& input(std::string_view bytes);
    Program& closeInput();

    // Standard output: this file, closed, or a pipe that nobody reads. The
    // outcome's output is then empty.
    Program& outputTo(const std::string& file);
    Program& closeOutput();

    // Standard output: this terminal, whose keys signal the program.
    Program& atTerminal(const std::string& file);
    Program& breakOutput();

    // Standard output: a pipe with a reader, the RunningProgram.
    Program& pipeOutput();
    Program& pipeOutputWithoutBlocking();

    // Standard error goes where standard output goes.
    Program& errorsToOutput();

    // A shell does this first and then becomes the program: "ulimit -f 4".
    Program& after(const std::string& commands);

    // Runs it to its end.
    Outcome run(const Arguments& arguments) const;

    // Starts it.
    RunningProgram start(const Arguments& arguments) const;

private:
    enum class Stream { Normal, Closed, Broken, Pipe, NonBlockingPipe };

    std::string path;
    std::string preparation;  // empty: none
    std::map<std::string, std::string> environment;
    std::string inputBytes;
    std::string outputFile;  // empty: collected
    Stream inputState = Stream::Normal;
    Stream outputState = Stream::Normal;
    bool errorsFollowOutput = false;
    bool ownSession = false;
};

}  // namespace OvMemTest

#endif

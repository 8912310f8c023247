#ifndef TESTS_APPS_COMMAND_RUN_H
#define TESTS_APPS_COMMAND_RUN_H

// Runs a program as a shell would and captures its output.

#include <ostream>
#include <string>
#include <vector>

struct CommandResult {
    int exitCode;  ///< or -1 if a signal ended it
    std::string out;
    std::string err;
};

inline bool operator==(const CommandResult& one, const CommandResult& other)
{
    return (one.exitCode == other.exitCode) && (one.out == other.out) && (one.err == other.err);
}

inline std::ostream& operator<<(std::ostream& stream, const CommandResult& result)
{
    return stream << "exit code " << result.exitCode << "\n--- out\n" << result.out << "--- err\n" << result.err;
}

struct CommandSetting {
    std::string input;                     ///< of standard input
    std::string output;                    ///< the file for standard output, which is not captured then
    std::string directory;                 ///< to run in
    std::vector<std::string> environment;  ///< NAME=VALUE, added to the test's own
};

CommandResult runProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const CommandSetting& setting = {});

// The program with pipes on both sides, or with a terminal as its standard output.
class LiveCommand {
public:
    enum class Output { PIPE, TERMINAL };

    LiveCommand(const std::string& program, const std::vector<std::string>& arguments, Output output,
                const std::vector<std::string>& environment = {});
    ~LiveCommand();
    LiveCommand(const LiveCommand&) = delete;
    LiveCommand& operator=(const LiveCommand&) = delete;

    /// The number of the process, until its end was waited for.
    int process() const { return m_process; }

    void write(const std::string& text) const;
    void closeInput();
    void closeOutput();

    /// Waits for the next line of output and returns it with its end; an incomplete line if the output ends or
    /// nothing comes for long.
    std::string readLine() const;

    /// Sends a signal, waits for the end and returns the exit code, or -1 if a signal ended it.
    int endWith(int signal);

    /// Waits for the end and returns the exit code, or -1 if a signal ended it.
    int wait();

private:
    int m_input = -1;
    int m_output = -1;
    int m_process = -1;
};

#endif

#ifndef TESTS_APPS_COMMAND_RUN_H
#define TESTS_APPS_COMMAND_RUN_H

// Runs a program as a shell would and keeps all that comes out of it.

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
    std::string input;                     ///< what stands on standard input
    std::string output;                    ///< where standard output goes to, in place of being kept
    std::string directory;                 ///< to run in
    std::vector<std::string> environment;  ///< NAME=VALUE, added to the own one
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

    void write(const std::string& text) const;
    void closeInput();

    /// Waits for the next line of output and returns it with its end; what there is, if the output ends before or
    /// nothing comes for long.
    std::string readLine() const;

    /// Sends a signal, waits for the end and returns the exit code, or -1 if a signal ended it.
    int endWith(int signal);

private:
    int m_input = -1;
    int m_output = -1;
    int m_process = -1;
};

#endif

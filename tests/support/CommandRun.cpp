#include "support/CommandRun.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/TemporaryDirectory.h"

namespace {

struct Streams {
    int in;
    int out;
    int err;
};

int openedFile(const std::string& path, int flags)
{
    const int file = open(path.c_str(), flags | O_CLOEXEC, 0600);
    if (file < 0) {
        throw std::runtime_error("cannot open " + path);
    }
    return file;
}

[[noreturn]] void becomeProgram(const std::string& program, const std::vector<std::string>& arguments,
                                const Streams& streams, const std::string& directory,
                                const std::vector<std::string>& environment)
{
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    for (const std::string& variable : environment) {
        putenv(const_cast<char*>(variable.c_str()));
    }
    dup2(streams.in, STDIN_FILENO);
    dup2(streams.out, STDOUT_FILENO);
    dup2(streams.err, STDERR_FILENO);
    if (directory.empty() || (chdir(directory.c_str()) == 0)) {
        execv(program.c_str(), argv.data());
    }
    _exit(127);
}

pid_t start(const std::string& program, const std::vector<std::string>& arguments, const Streams& streams,
            const std::string& directory, const std::vector<std::string>& environment)
{
    const pid_t process = fork();
    if (process == 0) {
        becomeProgram(program, arguments, streams, directory, environment);
    }
    return process;
}

int exitCodeOf(pid_t process)
{
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

CommandResult runProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const CommandSetting& setting)
{
    const TemporaryDirectory directory;
    const std::string out = setting.output.empty() ? directory.path() + "/out" : setting.output;
    const std::string err = directory.path() + "/err";
    const Streams streams{openedFile(directory.write("in", setting.input), O_RDONLY),
                          openedFile(out, O_WRONLY | O_CREAT), openedFile(err, O_WRONLY | O_CREAT)};
    const pid_t process = start(program, arguments, streams, setting.directory, setting.environment);
    const int exitCode = exitCodeOf(process);
    close(streams.in);
    close(streams.out);
    close(streams.err);
    return {exitCode, setting.output.empty() ? contentOf(out) : "", contentOf(err)};
}

LiveCommand::LiveCommand(const std::string& program, const std::vector<std::string>& arguments, Output output,
                         const std::vector<std::string>& environment)
{
    int inputPipe[2] = {-1, -1};
    int outputPair[2] = {-1, -1};
    const bool hasOutput = (output == Output::PIPE)
                               ? (pipe2(outputPair, O_CLOEXEC) == 0)
                               : (openpty(&outputPair[0], &outputPair[1], nullptr, nullptr, nullptr) == 0);
    if ((pipe2(inputPipe, O_CLOEXEC) != 0) || !hasOutput) {
        throw std::runtime_error("cannot make pipes");
    }
    m_process = start(program, arguments, {inputPipe[0], outputPair[1], STDERR_FILENO}, "", environment);
    close(inputPipe[0]);
    close(outputPair[1]);
    m_input = inputPipe[1];
    m_output = outputPair[0];
}

LiveCommand::~LiveCommand()
{
    closeInput();
    closeOutput();
    if (m_process > 0) {
        exitCodeOf(m_process);
    }
}

int LiveCommand::endWith(int signal)
{
    kill(m_process, signal);
    return wait();
}

int LiveCommand::wait()
{
    const int exitCode = exitCodeOf(m_process);
    m_process = -1;
    return exitCode;
}

void LiveCommand::write(const std::string& text) const
{
    if (::write(m_input, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("cannot write to the command");
    }
}

void LiveCommand::closeInput()
{
    if (m_input >= 0) {
        close(m_input);
        m_input = -1;
    }
}

void LiveCommand::closeOutput()
{
    if (m_output >= 0) {
        close(m_output);
        m_output = -1;
    }
}

std::string LiveCommand::readLine() const
{
    std::string line;
    char byte = '\0';
    constexpr int DEADLINE_MILLISECONDS = 30000;  // only a command that holds its output back comes near it
    pollfd output{m_output, POLLIN, 0};
    while ((line.empty() || (line.back() != '\n')) && (poll(&output, 1, DEADLINE_MILLISECONDS) == 1) &&
           (read(m_output, &byte, 1) == 1)) {
        line.push_back(byte);
    }
    return line;
}

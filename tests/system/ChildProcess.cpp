#include "system/ChildProcess.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brantel {

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const std::vector<std::string>& environment, const std::string& output)
{
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    m_process = ::fork();
    if (m_process < 0) {
        throw std::runtime_error("cannot start " + program);
    }
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (const std::string& variable : environment) {
            ::putenv(const_cast<char*>(variable.c_str()));  // NOLINT(concurrency-mt-unsafe): there is one thread
        }
        const int file = ::open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        ::dup2(file, STDOUT_FILENO);
        ::dup2(file, STDERR_FILENO);
        ::execv(program.c_str(), argv.data());
        ::_exit(127);
    }
}

ChildProcess::~ChildProcess()
{
    send(SIGKILL);
    wait();
}

void ChildProcess::send(int signal) const
{
    if (m_isRunning) {
        ::kill(m_process, signal);
    }
}

int ChildProcess::wait()
{
    if (!m_isRunning) {
        return 0;
    }
    int status = 0;
    rusage usage = {};
    ::wait4(m_process, &status, 0, &usage);
    m_isRunning = false;
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    m_processorTime = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace brantel

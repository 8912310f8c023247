#ifndef TESTS_APPS_CARD_PROCESS_H
#define TESTS_APPS_CARD_PROCESS_H

// "brantel card" in a separate process, from its ready lines on.

#include <csignal>
#include <string>
#include <vector>

#include "support/CommandRun.h"

namespace brantel {

class CardProcess {
public:
    /// `arguments` follow "brantel card".
    CardProcess(const std::vector<std::string>& arguments, const std::vector<std::string>& environment)
        : m_command(BRANTEL_COMMAND, commandLine(arguments), LiveCommand::Output::PIPE, environment),
          m_synchronous(m_command.readLine()),
          m_asynchronous(m_command.readLine())
    {
    }

    ~CardProcess()
    {
        if (!m_hasEnded) {
            end(SIGTERM);
        }
    }

    CardProcess(const CardProcess&) = delete;
    CardProcess& operator=(const CardProcess&) = delete;

    /// What it said when it was ready.
    std::string readyLines() const { return m_synchronous + m_asynchronous; }

    /// The lines of a directory file for its callers, if it serves at endpoints that a directory file names.
    std::string directoryLines(const std::string& options) const
    {
        return directoryLine(m_synchronous, options) + directoryLine(m_asynchronous, options);
    }

    int process() const { return m_command.process(); }

    /// Returns the exit code.
    int end(int signal)
    {
        m_hasEnded = true;
        return m_command.endWith(signal);
    }

private:
    static std::vector<std::string> commandLine(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), "card");
        return arguments;
    }

    // "serves NAME at ENDPOINT"
    static std::string directoryLine(const std::string& readyLine, const std::string& options)
    {
        const std::string start = "serves ";
        const std::string middle = " at ";
        const std::size_t posMiddle = readyLine.find(middle);
        const std::size_t posEndpoint = posMiddle + middle.size();
        return readyLine.substr(start.size(), posMiddle - start.size()) + " " +
               readyLine.substr(posEndpoint, readyLine.size() - 1 - posEndpoint) + " " + options + "\n";
    }

    LiveCommand m_command;
    std::string m_synchronous;
    std::string m_asynchronous;
    bool m_hasEnded = false;
};

}  // namespace brantel

#endif

#ifndef TESTS_SYSTEM_TEST_NODE_H
#define TESTS_SYSTEM_TEST_NODE_H

// A node in a temporary folder: database, cards and monitors, all run as the command.

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "monitor/Event.h"
#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"
#include "system/ChildProcess.h"

namespace brantel {

/// The size of a test: the number in the environment variable; default: the one for a short run.
inline std::size_t amount(const char* variable, std::size_t shortRun)
{
    const char* const pText = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): there is one thread
    return (pText == nullptr) ? shortRun : static_cast<std::size_t>(std::strtoul(pText, nullptr, 10));
}

/// Polls until `isDone`, for at most `limit`.
inline bool waitUntil(const std::function<bool()>& isDone, std::chrono::seconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!isDone()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

class TestNode {
public:
    TestNode();

    std::string path(const std::string& name) const { return m_directory.path() + "/" + name; }
    std::string write(const std::string& name, const std::string& text) const { return m_directory.write(name, text); }

    /// Runs the command to its end. `environment` is NAME=VALUE, added to the node's.
    CommandResult run(const std::vector<std::string>& arguments,
                      const std::vector<std::string>& environment = {}) const;

    /// Starts the command, with its output in the file `name`.
    std::unique_ptr<ChildProcess> start(const std::vector<std::string>& arguments, const std::string& name) const;

    /// The same with another program.
    std::unique_ptr<ChildProcess> startProgram(const std::string& program, const std::vector<std::string>& arguments,
                                               const std::string& name) const;

    /// Starts a card and waits until it serves.
    std::unique_ptr<ChildProcess> startCard(std::uint32_t slot, const std::vector<std::string>& arguments) const;

    /// The whole lines of the journal "journal", as events; a line that is not an event fails the test.
    std::vector<Event> journal() const;

    /// A metric of the file "metrics", by its name and labels; nothing if it is not there yet.
    std::optional<double> metric(const std::string& name) const;

private:
    TemporaryDirectory m_directory;
    std::vector<std::string> m_environment;
};

}  // namespace brantel

#endif

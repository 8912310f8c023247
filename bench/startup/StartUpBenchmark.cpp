// Times programs from their start to their end, in turns: an empty one, and the example component on each library that
// has the rules. Fails if the component on the rules alone misses its goals.
//
//     startup_benchmark [rounds]

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int OBJECTS_GOAL = 7;
constexpr double RATIO_GOAL = 1.4 / 0.6;

struct Program {
    const char* name;
    std::string path;
    Microseconds best = Microseconds::max();
};

// Runs without input: the component ends at once.
void run(const std::string& path)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    std::string name = path;
    char* arguments[] = {name.data(), nullptr};
    pid_t pid = 0;
    const bool isStarted = posix_spawn(&pid, path.c_str(), &actions, nullptr, arguments, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (!isStarted || (waitpid(pid, &status, 0) != pid) || (status != 0)) {
        throw std::runtime_error("cannot run " + path);
    }
}

void runTimed(Program& program)
{
    const auto begin = std::chrono::steady_clock::now();
    run(program.path);
    program.best = std::min<Microseconds>(program.best, std::chrono::steady_clock::now() - begin);
}

// What the dynamic linker loads: a line for each object.
int nLoadedObjects(const Program& program)
{
    FILE* const pLines = popen(("LD_TRACE_LOADED_OBJECTS=1 '" + program.path + "'").c_str(), "r");
    if (pLines == nullptr) {
        throw std::runtime_error("cannot ask for the objects of " + program.path);
    }
    int nLines = 0;
    for (int character = std::getc(pLines); character != EOF; character = std::getc(pLines)) {
        nLines += (character == '\n') ? 1 : 0;
    }
    pclose(pLines);
    return nLines;
}

}  // namespace

int main(int argc, char** argv)
{
    const int nRounds = (argc > 1) ? std::max(1, std::atoi(argv[1])) : 60;
    std::vector<Program> programs = {{"empty program", EMPTY_PROGRAM},
                                     {"component on brantel::brantel", COMPONENT_ON_BRANTEL},
                                     {"component on brantel::rules", COMPONENT_ON_RULES},
                                     {"component with the rules linked in", COMPONENT_WITH_RULES}};
    try {
        for (int round = 0; round < nRounds; ++round) {
            for (Program& program : programs) {
                runTimed(program);
            }
        }
        for (const Program& program : programs) {
            std::printf("{\"name\":\"%s\",\"objects\":%d,\"us\":%.1f,\"ratio\":%.3f}\n", program.name,
                        nLoadedObjects(program), program.best.count(), program.best / programs[0].best);
        }
        const Program& rules = programs[2];
        const bool isReached = (nLoadedObjects(rules) <= OBJECTS_GOAL) && (rules.best / programs[0].best <= RATIO_GOAL);
        return isReached ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "startup_benchmark: %s\n", error.what());
        return EXIT_FAILURE;
    }
}

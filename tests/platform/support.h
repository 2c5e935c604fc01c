#pragma once

#include "../localization/commands.h"

#include <kestrel/platform/system.h>

#include <fcntl.h>
#include <unistd.h>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

namespace kestrel::test {

/// Runs the main loop until `isDone`, or for so many seconds: far more than anything takes. Gives the last answer.
inline bool runUntil(const std::function<bool()>& isDone, double seconds = 30) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    const auto looking = platform::mainQueue()->repeatEvery(0.001, [&](Date) {
        if (isDone() || Clock::now() > end) platform::quitMainLoop();
    });
    if (!isDone()) platform::runMainLoop();
    return isDone();
}

/// Lets the main loop run for a while.
inline void runFor(double seconds) {
    (void)runUntil([] { return false; }, seconds);
}

/// An environment variable, as it was before in the end.
class Variable {
  public:
    Variable(std::string name, const std::string& value) : name_(std::move(name)) {
        if (const char* before = std::getenv(name_.c_str())) before_ = before;
        setenv(name_.c_str(), value.c_str(), 1);
    }
    explicit Variable(std::string name) : Variable(std::move(name), "") { unsetenv(name_.c_str()); }
    ~Variable() {
        if (before_) {
            setenv(name_.c_str(), before_->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    std::string name_;
    std::optional<std::string> before_{};
};

/// A program that runs beside the test. Ended in the end.
class Program {
  public:
    /// Its standard output is read by `line`.
    explicit Program(std::vector<std::string> words) {
        std::vector<char*> arguments;
        for (auto& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        int ends[2] = {};
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions{};
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        if (posix_spawnp(&process_, arguments.front(), &actions, nullptr, arguments.data(), environ) != 0)
            process_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        output_ = ends[0];
    }
    ~Program() {
        end(SIGKILL);
        close(output_);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// The next line it writes, without the end; empty when it has ended.
    std::string line() {
        std::string text;
        for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';)
            text += c;
        return text;
    }
    /// All that it still writes.
    std::string rest() {
        std::string text;
        char buffer[4096];
        for (ssize_t size = 0; (size = read(output_, buffer, sizeof buffer)) > 0;)
            text.append(buffer, static_cast<std::size_t>(size));
        return text;
    }
    /// Its exit status, once it has ended; -1 when a signal ended it.
    int wait() {
        if (process_ <= 0) return status_;
        int status = 0;
        waitpid(std::exchange(process_, 0), &status, 0);
        return status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void end(int signal) {
        if (process_ <= 0) return;
        kill(process_, signal);
        wait();
    }

  private:
    pid_t process_ = 0;
    int output_ = -1;
    int status_ = -1;
};

/// Parts that this program plays in processes of their own: `kestrel_platform_tests --as NAME ARGUMENT...`.
using Part = int (*)(const std::vector<std::string>& arguments);
inline std::map<std::string, Part, std::less<>>& parts() {
    static std::map<std::string, Part, std::less<>> list;
    return list;
}
/// Adds a part; a static variable in the file that needs it.
struct AddPart {
    AddPart(const char* name, Part part) { parts().emplace(name, part); }
};

inline std::vector<std::string> asPart(const std::string& name, std::vector<std::string> arguments) {
    std::vector<std::string> words{std::filesystem::read_symlink("/proc/self/exe").native(), "--as", name};
    words.insert(words.end(), std::make_move_iterator(arguments.begin()), std::make_move_iterator(arguments.end()));
    return words;
}

/// Plays a part to its end, with these further variables of the environment. Its output without the last line end.
inline std::string play(const std::string& name, std::vector<std::string> arguments,
                        const std::vector<std::string>& variables = {}) {
    std::vector<std::string> words{"env"};
    words.insert(words.end(), variables.begin(), variables.end());
    for (auto& word : asPart(name, std::move(arguments)))
        words.push_back(std::move(word));
    Program program(std::move(words));
    auto output = program.rest();
    if (output.ends_with('\n')) output.pop_back();
    if (const int status = program.wait(); status != 0) output += "\nexit status " + std::to_string(status);
    return output;
}

}  // namespace kestrel::test

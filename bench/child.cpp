#include "child.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <exception>
#include <stdexcept>

namespace {

void writeAll(int pipe, const void *data, std::size_t size)
{
    auto bytes = static_cast<const char *>(data);
    while (size > 0) {
        const ssize_t written = ::write(pipe, bytes, size);
        if (written <= 0)
            return;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

std::string readAll(int pipe)
{
    std::string all;
    char buffer[4096];
    for (ssize_t count; (count = ::read(pipe, buffer, sizeof buffer)) > 0;)
        all.append(buffer, static_cast<std::size_t>(count));
    return all;
}

/// The first byte tells whether numbers or the words of an error follow.
constexpr char kNumbers = 'n', kError = 'e';

[[noreturn]] void work(const std::function<std::vector<double>()> &job, int pipe)
{
    try {
        const std::vector<double> numbers = job();
        writeAll(pipe, &kNumbers, 1);
        writeAll(pipe, numbers.data(), numbers.size() * sizeof(double));
    } catch (const std::exception &problem) {
        writeAll(pipe, &kError, 1);
        writeAll(pipe, problem.what(), std::strlen(problem.what()));
    }
    // Not exit(): what the libraries do at their end is not measured, and may wait for their threads.
    ::_exit(0);
}

void waitFor(pid_t child, ChildResult *result)
{
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    result->peakBytes = static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
    if (result->error.empty() && !(WIFEXITED(status) && WEXITSTATUS(status) == 0))
        result->error = "the process failed";
}

void runQuietly(const std::vector<std::string> &command)
{
    std::vector<char *> arguments;
    for (const std::string &argument : command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    const int nothing = ::open("/dev/null", O_WRONLY);
    ::dup2(nothing, STDOUT_FILENO);
    ::dup2(nothing, STDERR_FILENO);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

} // namespace

ChildResult inChild(const std::function<std::vector<double>()> &job)
{
    int ends[2];
    if (::pipe(ends) != 0)
        return {{}, "no pipe", 0};
    const pid_t child = ::fork();
    if (child == 0)
        work(job, ends[1]);
    ::close(ends[1]);
    const std::string answer = readAll(ends[0]);
    ::close(ends[0]);

    ChildResult result;
    if (answer.empty()) {
        result.error = "the measuring process died";
    } else if (answer[0] == kError) {
        result.error = answer.substr(1);
    } else {
        result.numbers.resize((answer.size() - 1) / sizeof(double));
        std::memcpy(result.numbers.data(), answer.data() + 1, result.numbers.size() * sizeof(double));
    }
    waitFor(child, &result);
    return result;
}

ChildResult runProgram(const std::vector<std::string> &command)
{
    ChildResult result;
    result.numbers = {millisecondsOf([&] {
        const pid_t child = ::fork();
        if (child == 0)
            runQuietly(command);
        waitFor(child, &result);
    })};
    return result;
}

double millisecondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

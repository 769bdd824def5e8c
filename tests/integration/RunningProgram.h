#pragma once

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace wattlark {

/// Looks every few milliseconds whether the condition holds; false when it does not within 20
/// seconds.
inline bool WaitUntil(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

/// A program that runs as a user's, its output gathered through pipes. Killed at the end of its
/// life.
class RunningProgram {
 public:
  /// `standardOutput`, when given, is used in place of a pipe and stays with the caller.
  explicit RunningProgram(std::vector<std::string> command, int standardOutput = -1) {
    std::array<int, 2> output = Pipe();
    std::array<int, 2> messages = Pipe();
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    process_ = ::fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ == 0) {
      ::dup2(standardOutput >= 0 ? standardOutput : output[1], STDOUT_FILENO);
      ::dup2(messages[1], STDERR_FILENO);
      ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
      ::execv(arguments[0], arguments.data());
      ::_exit(127);
    }
    ::close(output[1]);
    ::close(messages[1]);
    output_ = output[0];
    messages_ = messages[0];
  }
  ~RunningProgram() {
    if (process_ > 0) End(SIGKILL);
    CloseOutput();
    ::close(messages_);
  }
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  /// All that has come up to now.
  const std::string& Output() { return Take(output_, outputText_); }
  const std::string& Messages() { return Take(messages_, messagesText_); }
  /// The reader of the standard output goes away.
  void CloseOutput() {
    if (output_ >= 0) ::close(output_);
    output_ = -1;
  }

  pid_t Process() const { return process_; }
  bool IsRunning() { return process_ > 0 && !Reap(); }
  /// The exit status; 128 and the signal when one ended the program, -1 when it does not end.
  int Wait() {
    if (process_ > 0 && !WaitUntil([this] { return Reap(); })) return -1;
    Messages();
    if (output_ >= 0) Output();
    return status_;
  }
  int End(int signal) {
    // Once it has ended, -1 would mean every process there is.
    if (process_ > 0) ::kill(process_, signal);
    return Wait();
  }

 private:
  static std::array<int, 2> Pipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return ends;
  }
  static const std::string& Take(int descriptor, std::string& text) {
    std::array<char, 4096> buffer;
    for (;;) {
      const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
      if (count <= 0) return text;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
  }
  bool Reap() {
    int status = 0;
    if (::waitpid(process_, &status, WNOHANG) != process_) return false;
    process_ = -1;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return true;
  }

  pid_t process_ = -1;
  int status_ = -1;
  int output_ = -1;
  int messages_ = -1;
  std::string outputText_;
  std::string messagesText_;
};

}  // namespace wattlark

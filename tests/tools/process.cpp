#include "tests/tools/process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace lumora::test {
namespace {

// Streams go through unnamed files, so that no side can wait for the other.
class Stream {
 public:
  explicit Stream(const std::string& content = {}) : file_(std::tmpfile()) {
    if (file_ == nullptr) throw std::runtime_error("no temporary file");
    std::fwrite(content.data(), 1, content.size(), file_);
    std::rewind(file_);
  }
  ~Stream() { std::fclose(file_); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  int fd() const { return fileno(file_); }

  std::string Content() {
    std::rewind(file_);
    std::string content;
    char part[1 << 16];
    for (size_t got; (got = std::fread(part, 1, sizeof(part), file_)) > 0;) {
      content.append(part, got);
    }
    return content;
  }

 private:
  std::FILE* file_;
};

/// The master side of a new terminal, negative where the system has none to give.
int OpenTerminal() {
  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  if (master >= 0 && (grantpt(master) != 0 || unlockpt(master) != 0)) {
    close(master);
    return -1;
  }
  return master;
}

/// A terminal that remembers the little that is written to it.
class Terminal {
 public:
  Terminal() : master_(OpenTerminal()) {
    if (master_ < 0) throw std::runtime_error("no terminal");
    slave_ = open(ptsname(master_), O_RDWR | O_NOCTTY);
  }
  ~Terminal() { close(master_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int fd() const { return slave_; }

  std::string Content() {
    close(slave_);
    std::string content;
    char part[1 << 12];
    for (ssize_t got; (got = read(master_, part, sizeof(part))) > 0;) {
      content.append(part, static_cast<size_t>(got));
    }
    return content;
  }

 private:
  int master_;
  int slave_ = -1;
};

}  // namespace

bool TerminalsExist() {
  const int master = OpenTerminal();
  if (master >= 0) close(master);
  return master >= 0;
}

Result RunLumora(const std::vector<std::string>& arguments, const std::string& input,
                 const Environment& environment) {
  std::vector<std::string> words = arguments;
  words.insert(words.begin(), LUMORA_COMMAND);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  Stream in(input), out, err;
  std::optional<Terminal> terminal;
  if (environment.terminal) terminal.emplace();
  const pid_t child = fork();
  if (child == 0) {
    for (const auto& [name, value] : environment.set) setenv(name.c_str(), value.c_str(), 1);
    dup2(in.fd(), STDIN_FILENO);
    dup2(out.fd(), STDOUT_FILENO);
    dup2(terminal ? terminal->fd() : err.fd(), STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  Result result;
  result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.out = out.Content();
  result.err = terminal ? terminal->Content() : err.Content();
  return result;
}

int Lines(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace lumora::test

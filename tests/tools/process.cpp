// SPDX-License-Identifier: Apache-2.0
#include "tests/tools/process.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace lumora::test {
namespace {

constexpr char kDeviceSetting[] = "LUMORA_DEVICE";

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

void Fill(const char* path, const std::string& text) {
  const int fd = open(path, O_WRONLY);
  if (fd < 0) return;
  const ssize_t written = write(fd, text.data(), text.size());
  close(fd);
  if (written < 0) _exit(127);
}

/// For a child: mounts an empty folder on /proc, where no other process sees it.
bool HideProc() {
  const std::string uid = std::to_string(getuid()), gid = std::to_string(getgid());
  if (unshare(CLONE_NEWNS) != 0) {
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    Fill("/proc/self/setgroups", "deny");
    Fill("/proc/self/uid_map", uid + " " + uid + " 1");
    Fill("/proc/self/gid_map", gid + " " + gid + " 1");
  }
  return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("none", "/proc", "tmpfs", 0, nullptr) == 0;
}

/// For a child: what is asked of its surroundings, or its end.
void Arrange(const Environment& environment) {
  setenv(kDeviceSetting, "gl", 0);
  for (const auto& [name, value] : environment.set) setenv(name.c_str(), value.c_str(), 1);
  if (environment.no_proc && !HideProc()) _exit(127);
  if (kAddressSpaceCounts && environment.address_space > 0) {
    const rlimit limit = {environment.address_space, environment.address_space};
    if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(127);
  }
}

}  // namespace

bool ProcCanBeHidden() {
  const pid_t child = fork();
  if (child == 0) _exit(HideProc() ? 0 : 1);
  int status = 1;
  waitpid(child, &status, 0);
  return status == 0;
}

bool TerminalsExist() {
  const int master = OpenTerminal();
  if (master >= 0) close(master);
  return master >= 0;
}

std::string TestDevice() {
  const char* const device = std::getenv(kDeviceSetting);
  return device != nullptr ? device : "gl";
}

Result RunLumora(const std::vector<std::string>& arguments, const std::string& input,
                 const Environment& environment) {
  std::vector<std::string> words = arguments;
  words.insert(words.begin(), environment.command);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  Stream in(input), out, err;
  std::optional<Terminal> terminal;
  if (environment.terminal) terminal.emplace();
  const pid_t child = fork();
  if (child == 0) {
    Arrange(environment);
    dup2(in.fd(), STDIN_FILENO);
    dup2(out.fd(), STDOUT_FILENO);
    if (!environment.out_file.empty()) {
      dup2(open(environment.out_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    }
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

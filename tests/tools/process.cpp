#include "tests/tools/process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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

}  // namespace

Result RunLumora(const std::vector<std::string>& arguments, const std::string& input,
                 const Environment& environment) {
  std::vector<std::string> words = arguments;
  words.insert(words.begin(), LUMORA_COMMAND);
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  Stream in(input), out, err;
  const pid_t child = fork();
  if (child == 0) {
    for (const auto& [name, value] : environment.set) setenv(name.c_str(), value.c_str(), 1);
    dup2(in.fd(), STDIN_FILENO);
    dup2(out.fd(), STDOUT_FILENO);
    dup2(err.fd(), STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  Result result;
  result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.out = out.Content();
  result.err = err.Content();
  return result;
}

int Lines(const std::string& text) {
  return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace lumora::test

// SPDX-License-Identifier: Apache-2.0
#include "proofs/cache_safety/cache_process.h"

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iterator>
#include <sstream>

namespace lumora::test {
namespace {

std::string ContentOf(std::FILE* file) {
  std::rewind(file);
  std::string content;
  char part[4096];
  for (size_t got; (got = std::fread(part, 1, sizeof(part), file)) > 0;) content.append(part, got);
  return content;
}

CacheReport Parse(const std::string& text) {
  CacheReport report;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string first, second, third;
    words >> first;
    if (first == "files") {
      report.files.assign(std::istream_iterator<std::string>(words), {});
    } else if (first == "renderer") {
      words >> report.renderer;
    } else if (words >> second >> third) {
      report.pictures.push_back(first + " " + second);
      ++(third == "cached" ? report.cached : report.compiled);
    }
  }
  return report;
}

}  // namespace

CacheProcess::CacheProcess(const Options& options) : pid_(-1), out_(std::tmpfile()) {
  pid_ = fork();
  if (pid_ != 0) return;
  for (const auto& [name, value] : options.environment) setenv(name.c_str(), value.c_str(), 1);
  setenv("LUMORA_CACHE_DIR", options.directory.c_str(), 1);
  dup2(fileno(out_), STDOUT_FILENO);
  if (options.prepare && !options.prepare()) _exit(kNotPossible);
  const std::string rounds = std::to_string(options.rounds);
  execl(LUMORA_CACHE_USER, LUMORA_CACHE_USER, rounds.c_str(), nullptr);
  _exit(127);
}

CacheProcess::~CacheProcess() {
  if (pid_ > 0) {
    kill();
    wait();
  }
  std::fclose(out_);
}

void CacheProcess::kill() {
  ::kill(pid_, SIGKILL);
}

CacheReport CacheProcess::wait(bool* possible) {
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = -1;
  const std::string text = ContentOf(out_);
  CacheReport report = Parse(text);
  if (possible != nullptr) {
    *possible = !WIFEXITED(status) || WEXITSTATUS(status) != kNotPossible;
  }
  if (WIFSIGNALED(status)) report.failure = "signal " + std::to_string(WTERMSIG(status));
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
    report.failure = "exit code " + std::to_string(WEXITSTATUS(status)) + "\n" + text;
  }
  return report;
}

CacheReport UseCache(const CacheProcess::Options& options, bool* possible) {
  return CacheProcess(options).wait(possible);
}

}  // namespace lumora::test

// The only process of the system that scripts/emulate_avx512.sh starts in an emulator: runs the commands of /commands,
// one a line, words separated by blanks, prints what they print and how they end, and switches the machine off. What it
// prints goes to the first parallel port, which takes bytes as fast as they are written.
#include <sys/io.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace {

constexpr int kMaxWords = 32;

void Print(const char* text, std::size_t bytes) {
  constexpr unsigned short kData = 0x378, kControl = 0x37A;
  constexpr unsigned char kSelected = 0x0C, kStrobe = 0x01;
  for (std::size_t i = 0; i < bytes; ++i) {
    outb(static_cast<unsigned char>(text[i]), kData);
    outb(kSelected | kStrobe, kControl);
    outb(kSelected, kControl);
  }
}

void Print(const char* text) { Print(text, std::strlen(text)); }

// The exit status of the command, 128 more than the signal that ended it, or -1 when it could not be started. Cuts the
// line into words.
int Run(char* line) {
  char* words[kMaxWords + 1] = {};
  int count = 0;
  for (char* word = std::strtok(line, " \n"); word != nullptr && count < kMaxWords;
       word = std::strtok(nullptr, " \n")) {
    words[count++] = word;
  }
  int ends[2];
  if (count == 0 || pipe(ends) != 0) return -1;
  const pid_t child = fork();
  if (child < 0) return -1;
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
    execv(words[0], words);
    std::perror(words[0]);
    _exit(127);
  }
  close(ends[1]);
  char bytes[4096];
  for (ssize_t got; (got = read(ends[0], bytes, sizeof bytes)) > 0;) Print(bytes, static_cast<std::size_t>(got));
  close(ends[0]);
  int status = 0;
  if (waitpid(child, &status, 0) != child) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

[[noreturn]] void SwitchOff() {
  constexpr unsigned short kShutdownPort = 0x8900;
  for (const char* letter = "Shutdown"; *letter != '\0'; ++letter) {
    outb(static_cast<unsigned char>(*letter), kShutdownPort);
  }
  for (;;) pause();
}

}  // namespace

int main() {
  if (iopl(3) != 0) return 1;
  mount("proc", "/proc", "proc", 0, nullptr);
  mount("devtmpfs", "/dev", "devtmpfs", 0, nullptr);
  Print("[guest] started\n");
  std::FILE* const commands = std::fopen("/commands", "re");
  if (commands == nullptr) {
    Print("[guest] no commands\n");
    SwitchOff();
  }
  char line[4096], ending[64];
  while (std::fgets(line, sizeof line, commands) != nullptr) {
    const int status = Run(line);
    std::snprintf(ending, sizeof ending, "\n[guest] exit %d: ", status);
    Print(ending);
    Print(line);  // by now its first word
    Print("\n");
  }
  Print("[guest] end\n");
  SwitchOff();
}

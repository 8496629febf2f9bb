#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

/// Runs a program and prints its time and peak memory, as "wall_s cpu_s peak_MiB"; its exit code
/// is that of the program.
int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s PROGRAM [ARGUMENT...]\n", argv[0]);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[1], argv + 1);
        std::perror(argv[1]);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) < 0) {
        std::perror("measurerun");
        return 1;
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    std::printf("%.3f %.3f %.1f\n", wall.count(), seconds(usage.ru_utime) + seconds(usage.ru_stime),
                static_cast<double>(usage.ru_maxrss) / 1024.0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

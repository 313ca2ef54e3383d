// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/GLibPointers.h>

#include <csignal>
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/prctl.h>
#include <vector>

namespace pelluvia::testing {

/// A program that runs beside the test, and no longer than it. What it says on standard error is
/// thrown away, so that nobody waits for it behind a pipe.
class ChildProcess {
  public:
    explicit ChildProcess(std::vector<std::string> arguments) {
        const storage::GObjectPointer<GSubprocessLauncher> launcher(
            g_subprocess_launcher_new(static_cast<GSubprocessFlags>(
                G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_SILENCE)));
        g_subprocess_launcher_set_child_setup(
            launcher.get(), [](gpointer /*data*/) { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }, nullptr,
            nullptr);
        std::vector<const gchar *> pointers;
        for (const std::string &each : arguments) {
            pointers.push_back(each.c_str());
        }
        pointers.push_back(nullptr);
        process_.reset(g_subprocess_launcher_spawnv(launcher.get(), pointers.data(), nullptr));
        EXPECT_NE(process_, nullptr) << arguments.front();
        if (process_ != nullptr) {
            lines_.reset(g_data_input_stream_new(g_subprocess_get_stdout_pipe(process_.get())));
        }
    }
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;
    ~ChildProcess() { stop(); }

    /// The next line that the program writes, without its end; waits for it.
    [[nodiscard]] std::string readLine() const {
        if (lines_ == nullptr) {
            return {};
        }
        const storage::GMemory<gchar> line(
            g_data_input_stream_read_line(lines_.get(), nullptr, nullptr, nullptr));
        return line != nullptr ? line.get() : "";
    }

    /// Kills it and waits for its end.
    void stop() {
        if (process_ != nullptr) {
            g_subprocess_force_exit(process_.get());
            g_subprocess_wait(process_.get(), nullptr, nullptr);
            process_.reset();
        }
    }

  private:
    storage::GObjectPointer<GSubprocess> process_;
    storage::GObjectPointer<GDataInputStream> lines_;
};

/// Whether a program is installed.
[[nodiscard]] inline bool hasProgram(const char *name) {
    const storage::GMemory<gchar> path(g_find_program_in_path(name));
    return path != nullptr;
}

} // namespace pelluvia::testing

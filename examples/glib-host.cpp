// SPDX-License-Identifier: MIT

// Converts a GPX file inside a program that has a GLib main loop, as a GTK application has.
//
//     glib-host SOURCE.gpx TARGET.gpx
//
// Shows: an import on a thread of its own while the main loop runs; the loop watches the descriptor
// of the framework's message queue, so that completion and errors arrive in the main thread. After
// an error the target holds what was read before it; see convert.cpp for a target that is all or
// nothing. Read first: convert.cpp, <Pelluvia/system/MainThread.h>.

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/system/MainThread.h>

#include <cerrno>
#include <cstdlib>
#include <glib-unix.h>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>

using namespace pelluvia;

namespace {

/// The application. Everything in it happens in the main thread and needs no lock.
class Application {
  public:
    explicit Application(std::string source)
        : source_(std::move(source)), loop_(g_main_loop_new(nullptr, FALSE)) {}
    Application(const Application &) = delete;
    Application &operator=(const Application &) = delete;
    ~Application() { g_main_loop_unref(loop_); }

    void run() { g_main_loop_run(loop_); }
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }

    // Messages of the exporter, in this order.
    void failed(Report problem) {
        if (const auto *error = std::get_if<ErrorPtr>(&problem)) {
            std::cerr << source_ << ": " << (*error)->localizedDescription() << '\n';
        }
        hasFailed_ = true;
    }
    // NOLINTNEXTLINE(performance-unnecessary-value-param): a message owns its argument
    void finished(std::shared_ptr<GPXExporter> exporter) {
        if (const std::error_code failure = exporter->writeFailure()) {
            std::cerr << failure.message() << '\n';
            hasFailed_ = true;
        }
        std::cout << (hasFailed_ ? "failed\n" : "converted\n");
        g_main_loop_quit(loop_);
    }

  private:
    std::string source_;
    GMainLoop *loop_;
    bool hasFailed_ = false;
};

/// Called by the loop whenever messages wait.
gboolean runMessages(gint /*descriptor*/, GIOCondition /*condition*/, gpointer /*data*/) {
    mainThread::drain();
    return G_SOURCE_CONTINUE;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::cerr << "usage: glib-host SOURCE.gpx TARGET.gpx\n";
        return EXIT_FAILURE;
    }
    const auto exporter = GPXExporter::initWithPath(argv[2]);
    if (exporter == nullptr) {
        std::cerr << argv[2] << ": " << std::generic_category().message(errno) << '\n';
        return EXIT_FAILURE;
    }
    const auto application = std::make_shared<Application>(argv[1]);
    exporter->setCompletionObject(application, &Application::finished);
    exporter->setErrorObject(application, &Application::failed);
    const guint watch = g_unix_fd_add(mainThread::fileDescriptor(), G_IO_IN, runMessages, nullptr);

    // From here on the exporter belongs to this thread, until it is sent the finished state.
    std::thread conversion([exporter, source = std::string(argv[1])] {
        const auto importer = GPXFileImporter::initWithReceiver(exporter);
        (void)importer->processFile(source); // an error reaches the exporter, and so `failed`, too
        exporter->gpsStateChange(gpsState::finished);
    });
    application->run(); // until `finished` is called
    conversion.join();
    g_source_remove(watch);
    return application->hasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}

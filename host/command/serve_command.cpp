#include <host/command/serve_command.h>
#include <host/failure.h>
#include <host/serve/access_gate.h>
#include <host/serve/application.h>
#include <host/serve/loopback_server.h>
#include <host/serve/on_main_queue.h>
#include <host/services/host_runtime.h>
#include <host/services/records_service.h>
#include <host/services/value_of.h>
#include <kestrel/platform/system.h>
#include <pthread.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <thread>

namespace kestrel::host {
namespace {

/// SIGINT and SIGTERM, kept from ending this thread and those that it starts, for somebody to wait for.
class EndingSignals {
  public:
    EndingSignals() {
        sigemptyset(&signals_);
        sigaddset(&signals_, SIGINT);
        sigaddset(&signals_, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    }
    ~EndingSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

    /// Gives back the signal.
    [[nodiscard]] int wait() const {
        int signal = 0;
        sigwait(&signals_, &signal);
        return signal;
    }

  private:
    sigset_t signals_{};
    sigset_t before_{};
};

/// Serves until a signal ends it. What is being answered is answered first, which takes as long as somebody else keeps
/// the database; a second signal ends the process at once.
///
/// The runtime and its services belong to the main thread: they take no locks, and what they publish comes on the main
/// queue. So the main thread does what it does in every program, it runs the main loop, and each request is a piece of
/// work on the main queue, one after the other. The server's own threads only read and write; they wait for that work
/// and touch nothing of the runtime. They are all gone before the main loop is told to end, so none is ever left
/// waiting for it.
void serveUntilSignalled(LoopbackServer& server, const AccessGate& gate, Application& application,
                         const EndingSignals& signals) {
    const auto queue = platform::mainQueue();
    bool hasEndedBySignal = false;
    std::atomic<bool> hasEnded = false;
    std::exception_ptr problem;
    std::thread serving([&] {
        try {
            hasEndedBySignal = server.serve([&](const HTTPRequest& request) { return gate.answer(request); },
                                            [&](const HTTPRequest& request) {
                                                return doneOn(*queue, [&] { return application.answer(request); });
                                            });
        } catch (...) {
            problem = std::current_exception();
        }
        queue->schedule([] { platform::quitMainLoop(); });
    });
    std::thread waiting([&] {
        (void)signals.wait();
        server.stop();
        if (hasEnded) return;
        if (const int again = signals.wait(); !hasEnded) std::_Exit(128 + again);
    });
    platform::runMainLoop();
    serving.join();
    hasEnded = true;
    // The other thread waits for a signal still: the second one, or the first when it was no signal that ended it.
    // It takes the signal by waiting, for the signal is blocked.
    pthread_kill(waiting.native_handle(), SIGTERM);  // NOLINT(bugprone-bad-signal-to-kill-thread)
    waiting.join();
    if (problem) std::rethrow_exception(problem);
    if (!hasEndedBySignal) throw Failure("the server has ended, as connections could not be accepted any more");
}

}  // namespace

void serveCommand(const ServeOptions& options, Output& output) {
    const EndingSignals signals;
    const Viewer viewer = viewerOf(options.database, options.user);
    Runtime runtime = makeHostRuntime(viewer.database, viewer.user);
    // Says now, and not in the browser, when there is no such database or no such user.
    (void)valueOf(runtime[host_services::records].fetchUser());
    LoopbackServer server(options.port);
    const AccessGate gate(server.port());
    // Whoever is signed in may be signed out meanwhile, by another command or by the company.
    Application application(runtime, [&] {
        if (options.user.empty() && viewerOf(options.database, options.user) != viewer)
            throw Failure("somebody else is signed in now; start `kestrel serve` again");
    });
    output.write(gate.url() + "\n");
    output.flush();
    serveUntilSignalled(server, gate, application, signals);
}

}  // namespace kestrel::host

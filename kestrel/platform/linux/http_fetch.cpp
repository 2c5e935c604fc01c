#include <curl/curl.h>
#include <kestrel/foundation/fatal.h>
#include <kestrel/platform/linux/glib_support.h>
#include <kestrel/platform/linux/http_fetch.h>
#include <kestrel/platform/system.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <utility>

namespace kestrel::platform {

namespace {

struct Transfer {
    std::move_only_function<void(HTTPAnswer)> handler{};
    HTTPAnswer answer{};
    std::size_t largestAnswer{};
    bool isTooLarge = false;
    /// Null once libcurl is through with it.
    CURL* easy = nullptr;
    curl_slist* headers = nullptr;
    std::array<char, CURL_ERROR_SIZE> error{};

    Transfer() = default;
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() { close(); }

    void close() {
        curl_easy_cleanup(std::exchange(easy, nullptr));
        curl_slist_free_all(std::exchange(headers, nullptr));
    }
};

std::size_t takeBody(const char* bytes, std::size_t size, std::size_t count, void* user) noexcept {
    auto& transfer = *static_cast<Transfer*>(user);
    if (size * count > transfer.largestAnswer - transfer.answer.body.size()) {
        transfer.isTooLarge = true;
        return 0;
    }
    transfer.answer.body.append(bytes, size * count);
    return size * count;
}

/// All transfers of the process, on its main loop. libcurl says which descriptors and which time it waits for.
class Transfers {
  public:
    static Transfers& ofProcess() {
        // Never destroyed: idle connections end with the process.
        static auto* const transfers = new Transfers;
        return *transfers;
    }

    void start(const std::shared_ptr<Transfer>& transfer) {
        running_.emplace(transfer->easy, transfer);
        curl_multi_add_handle(multi_, transfer->easy);
    }
    void stop(Transfer& transfer) {
        transfer.handler = nullptr;
        if (transfer.easy == nullptr) return;
        // Closes the connection, as the answer is not complete.
        curl_multi_remove_handle(multi_, transfer.easy);
        running_.erase(transfer.easy);
        transfer.close();
    }

  private:
    Transfers() {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK) fatal("libcurl cannot be used.");
        multi_ = curl_multi_init();
        if (multi_ == nullptr) fatal("libcurl cannot be used.");
        curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, watchSocket);
        curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
        curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, setTimer);
        curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
        constexpr long idleConnections = 2;
        curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, idleConnections);
    }

    static int watchSocket(CURL* /*easy*/, curl_socket_t socket, int action, void* user, void* /*unused*/) noexcept {
        auto& self = *static_cast<Transfers*>(user);
        // Also a watch that is just calling: it lives until it has.
        self.watches_.erase(socket);
        if (action == CURL_POLL_REMOVE || action == CURL_POLL_NONE) return 0;
        const auto condition = action == CURL_POLL_IN    ? G_IO_IN
                               : action == CURL_POLL_OUT ? G_IO_OUT
                                                         : joined(G_IO_IN, G_IO_OUT);
        self.watches_[socket] = watchDescriptor(nullptr, socket, condition, [&self, socket](GIOCondition ready) {
            int events = 0;
            if ((ready & (G_IO_IN | G_IO_HUP)) != 0) events |= CURL_CSELECT_IN;
            if ((ready & G_IO_OUT) != 0) events |= CURL_CSELECT_OUT;
            if ((ready & (G_IO_ERR | G_IO_NVAL)) != 0) events |= CURL_CSELECT_ERR;
            self.act(socket, events);
        });
        return 0;
    }
    static int setTimer(CURLM* /*multi*/, long milliseconds, void* user) noexcept {
        auto& self = *static_cast<Transfers*>(user);
        self.timer_.cancel();
        if (milliseconds >= 0) {
            self.timer_ = mainQueue()->scheduleAfter(static_cast<double>(milliseconds) / 1000,
                                                     [&self] { self.act(CURL_SOCKET_TIMEOUT, 0); });
        }
        return 0;
    }

    void act(curl_socket_t socket, int events) {
        int runningCount = 0;
        curl_multi_socket_action(multi_, socket, events, &runningCount);
        int waiting = 0;
        while (const CURLMsg* message = curl_multi_info_read(multi_, &waiting)) {
            if (message->msg == CURLMSG_DONE) finish(message->easy_handle, message->data.result);
        }
    }
    void finish(CURL* easy, CURLcode result) {
        const auto transfer = running_.at(easy);
        running_.erase(easy);
        curl_multi_remove_handle(multi_, easy);
        auto& answer = transfer->answer;
        long status = 0;
        curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
        answer.status = static_cast<int>(status);
        if (result != CURLE_OK) {
            answer.failureCode = static_cast<int>(result);
            answer.failure = transfer->isTooLarge         ? "the answer is too large"
                             : transfer->error[0] != '\0' ? transfer->error.data()
                                                          : curl_easy_strerror(result);
        }
        transfer->close();
        // In a turn of its own: the handler may start, cancel and destroy transfers as it likes, or run the loop.
        mainQueue()->schedule([transfer] {
            if (auto handler = std::exchange(transfer->handler, nullptr)) handler(std::move(transfer->answer));
        });
    }

    CURLM* multi_ = nullptr;
    std::map<CURL*, std::shared_ptr<Transfer>> running_{};
    std::map<curl_socket_t, AnyCancellable> watches_{};
    AnyCancellable timer_{};
};

}  // namespace

AnyCancellable fetch(const HTTPRequest& request, std::move_only_function<void(HTTPAnswer)> handler) {
    auto& transfers = Transfers::ofProcess();
    auto transfer = std::make_shared<Transfer>();
    transfer->handler = std::move(handler);
    transfer->largestAnswer = request.largestAnswer;
    CURL* const easy = curl_easy_init();
    if (easy == nullptr) fatal("libcurl cannot be used.");
    transfer->easy = easy;
    for (const auto& header : request.headers)
        transfer->headers = curl_slist_append(transfer->headers, header.c_str());

    constexpr double shortest = 0.001;
    constexpr double longest = 1e6;
    constexpr long redirections = 5;
    const bool isSecure = request.url.starts_with("https:");
    curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, isSecure ? "https" : "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, redirections);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer->headers);
    curl_easy_setopt(easy, CURLOPT_USERAGENT, request.userAgent.c_str());
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS,
                     static_cast<long>(std::ceil(std::clamp(request.timeout, shortest, longest) * 1000)));
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // A cancelled transfer does not wait for the name to be looked up.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, takeBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, transfer.get());
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer->error.data());
    transfers.start(transfer);
    return AnyCancellable([transfer = std::move(transfer)] { Transfers::ofProcess().stop(*transfer); });
}

}  // namespace kestrel::platform

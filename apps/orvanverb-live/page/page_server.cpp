#include "orvanverb-live/page/page_server.h"

#include <civetweb.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <random>
#include <string_view>
#include <thread>
#include <vector>

#include "orvanverb-live/page/page_files.h"
#include "orvanverb-live/page/page_messages.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"

namespace live {

namespace {

constexpr char const* threads = "40";            // one for each socket; a page needs some more to begin with
constexpr char const* writeTimeout = "5000";     // [ms] for a client to take what it is sent
constexpr char const* silenceTimeout = "10000";  // [ms] without a word before it is asked whether it's there
constexpr std::size_t longestMessage = 1 << 20;  // bytes

bool IsLoopback(std::string_view address) {
    return address.starts_with("127.") || address == "::1" || address == "localhost";
}

/// The host of "host:port", "[::1]:port".
std::string_view WithoutPort(std::string_view host) {
    if (host.starts_with('[')) return host.substr(1, host.find(']') - 1);
    return host.substr(0, host.find(':'));
}

std::string MadeUpToken() {
    constexpr std::string_view letters = "abcdefghijkmnpqrstuvwxyz23456789";
    std::random_device random;
    std::string token;
    for (int i = 0; i < 20; ++i) token += letters[random() % letters.size()];
    return token;
}

/// Takes as long for any wrong word, so that nobody learns from the time how much of it is right.
bool AreEqual(std::string_view a, std::string_view b) {
    unsigned int differences = a.size() != b.size() ? 1 : 0;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        differences |= static_cast<unsigned int>(static_cast<unsigned char>(a[i] ^ b[i]));
    return differences == 0;
}

std::string_view ContentType(std::string_view name) {
    if (name.ends_with(".html")) return "text/html; charset=utf-8";
    if (name.ends_with(".css")) return "text/css; charset=utf-8";
    if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
    if (name.ends_with(".svg")) return "image/svg+xml";
    return "application/octet-stream";
}

/// A socket that is open: its own thread tells it what happens, so that no client waits for another one.
class Client {
public:
    Client(mg_connection* newConnection, Desk& newDesk, std::vector<OutputName> const& newOutputs)
        : connection(newConnection), desk(newDesk), outputs(newOutputs), thread([this] { Run(); }) {}
    ~Client() {
        gone = true;
        thread.join();
    }

    /// @return false if it has to go
    bool Take(int bits, std::string_view data) {
        constexpr int lastPart = 0x80, kind = 0x0f;
        if ((bits & kind) == MG_WEBSOCKET_OPCODE_CONNECTION_CLOSE) return false;
        const bool isText =
            (bits & kind) == MG_WEBSOCKET_OPCODE_TEXT || (bits & kind) == MG_WEBSOCKET_OPCODE_CONTINUATION;
        if (!isText) return !gone;
        if (received.size() + data.size() > longestMessage) return false;
        received.append(data);
        if ((bits & lastPart) == 0) return !gone;
        for (std::string const& answer : TakePageMessage(received, desk)) Write(answer);
        received.clear();
        return !gone;
    }

private:
    void Run() {
        std::uint64_t seen = 0, tick = 0;
        const News everything = desk.NewsSince(seen);
        Write(SnapshotMessage(desk, everything, outputs));
        while (!gone && desk.WaitForTick(tick)) {
            const News news = desk.NewsSince(seen);
            if (news.ears) Write(SnapshotMessage(desk, news, outputs));  // there may be more of them
            if (const std::string change = ChangeMessage(news, desk); !change.empty()) Write(change);
            Write(LevelMessage(news));
        }
    }

    void Write(std::string const& text) {
        if (!gone && mg_websocket_write(connection, MG_WEBSOCKET_OPCODE_TEXT, text.data(), text.size()) <= 0)
            gone = true;
    }

    mg_connection* connection;
    Desk& desk;
    std::vector<OutputName> const& outputs;
    std::string received;
    std::atomic<bool> gone = false;
    std::thread thread;
};

}  // namespace

class PageServer::Impl {
public:
    Impl(Desk& newDesk, program::RoomForm const& form, PagePorts const& newPorts)
        : desk(newDesk), ports(newPorts), isLocal(IsLoopback(newPorts.bind)) {
        for (unsigned int i = 0; i < desk.NumOutputs(); ++i)
            outputs.push_back({form.HasEars() ? (i == 0 ? "left" : "right") : std::to_string(i + 1),
                               !form.HasEars() && !form.layout.positions.empty()});
        if (ports.token.empty()) ports.token = MadeUpToken();
        mg_init_library(0);
        Start();
        SayWhere();
    }

    ~Impl() {
        mg_stop(context);
        mg_exit_library();
    }

private:
    void Start() {
        const bool isV6 = ports.bind.find(':') != std::string::npos;
        const std::string port = (isV6 ? "[" + ports.bind + "]" : ports.bind) + ":" + std::to_string(ports.port);
        char const* options[] = {"listening_ports",
                                 port.c_str(),
                                 "num_threads",
                                 threads,
                                 "request_timeout_ms",
                                 writeTimeout,
                                 "websocket_timeout_ms",
                                 silenceTimeout,
                                 "enable_websocket_ping_pong",
                                 "yes",
                                 "enable_directory_listing",
                                 "no",
                                 "tcp_nodelay",
                                 "1",
                                 nullptr};
        mg_callbacks callbacks{};
        // It listens before it can be told who answers.
        callbacks.begin_request = [](mg_connection* c) {
            From(mg_get_user_data(mg_get_context(c))).ready.wait(false);
            return 0;
        };
        callbacks.log_message = [](mg_connection const*, char const*) { return 1; };
        context = mg_start(&callbacks, this, options);
        if (context == nullptr)
            throw program::WorkError("--http " + std::to_string(ports.port) + ": can't listen at " + port +
                                     "; is the port in use, or of others?");
        mg_set_request_handler(
            context, "/", [](mg_connection* c, void* self) { return From(self).Serve(c); }, this);
        mg_set_websocket_handler(
            context, "/socket", [](mg_connection const* c, void* self) { return From(self).Admits(c) ? 0 : 1; },
            [](mg_connection* c, void* self) {
                mg_set_user_connection_data(c, new Client(c, From(self).desk, From(self).outputs));
            },
            [](mg_connection* c, int bits, char* data, std::size_t size, void*) {
                auto* const client = static_cast<Client*>(mg_get_user_connection_data(c));
                return client != nullptr && client->Take(bits, {data, size}) ? 1 : 0;
            },
            [](mg_connection const* c, void*) {
                delete static_cast<Client*>(mg_get_user_connection_data(c));
                mg_set_user_connection_data(c, nullptr);
            },
            this);
        ready = true;
        ready.notify_all();
    }

    static Impl& From(void* self) { return *static_cast<Impl*>(self); }

    void SayWhere() const {
        const bool all = ports.bind == "0.0.0.0" || ports.bind == "::";
        std::string host = isLocal ? "localhost" : all ? "THIS-MACHINE" : ports.bind;
        if (host.find(':') != std::string::npos) host = "[" + host + "]";
        program::Say("page: http://" + host + ":" + std::to_string(ports.port) + "/" +
                     (isLocal ? "" : "?token=" + ports.token));
    }

    /// Whether a socket may open.
    bool Admits(mg_connection const* connection) const {
        char const* const hostHeader = mg_get_header(connection, "Host");
        char const* const originHeader = mg_get_header(connection, "Origin");
        const std::string host = hostHeader != nullptr ? hostHeader : "";
        // Browsers tell whose page it is; programs that tell nothing are no pages.
        if (originHeader != nullptr && "http://" + host != originHeader && "https://" + host != originHeader)
            return false;
        // A name of somebody else's that leads here would make foreign pages ours.
        if (isLocal) return IsLoopback(WithoutPort(host));
        char const* const query = mg_get_request_info(connection)->query_string;
        std::array<char, 256> token{};
        const std::string_view words = query != nullptr ? query : "";
        const int length = mg_get_var(words.data(), words.size(), "token", token.data(), token.size());
        return length > 0 && AreEqual({token.data(), static_cast<std::size_t>(length)}, ports.token);
    }

    int Serve(mg_connection* connection) const {
        mg_request_info const* const request = mg_get_request_info(connection);
        std::string_view name = request->local_uri != nullptr ? request->local_uri : "/";
        name.remove_prefix(1);
        if (name.empty()) name = "index.html";
        const auto file = std::find_if(pageFiles.begin(), pageFiles.end(),
                                       [name](PageFile const& candidate) { return candidate.name == name; });
        if (file == pageFiles.end()) {
            mg_send_http_error(connection, 404, "%s", "There is no such file.\n");
            return 404;
        }
        const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: " + std::string(ContentType(name)) +
                                 "\r\nContent-Length: " + std::to_string(file->bytes.size()) +
                                 "\r\nCache-Control: no-cache\r\nX-Content-Type-Options: nosniff"
                                 "\r\nReferrer-Policy: no-referrer"
                                 "\r\nContent-Security-Policy: default-src 'self'; connect-src 'self' ws: wss:;"
                                 " img-src 'self' data:; frame-ancestors 'none'\r\n\r\n";
        mg_write(connection, head.data(), head.size());
        if (std::string_view(request->request_method) != "HEAD")
            mg_write(connection, file->bytes.data(), file->bytes.size());
        return 200;
    }

    Desk& desk;
    PagePorts ports;
    bool isLocal;
    std::vector<OutputName> outputs;
    mg_context* context = nullptr;
    std::atomic<bool> ready = false;
};

PageServer::PageServer(Desk& desk, program::RoomForm const& form, PagePorts const& ports)
    : impl(std::make_unique<Impl>(desk, form, ports)) {}

PageServer::~PageServer() = default;

}  // namespace live

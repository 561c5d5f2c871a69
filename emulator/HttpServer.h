#pragma once

#include "emulator/Exchange.h"

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

namespace quorvane::emulator {

/// HTTP/1.1 on 127.0.0.1, a thread for each connection. It stops at once, whatever they do.
class HttpServer {
  public:
    /// Runs on the connection's thread; must not throw.
    using Handler = std::function<void(Exchange&)>;

    explicit HttpServer(Handler handler) : handler_(std::move(handler)) {}
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Listens on `port`, or on any free one for 0. Throws `Error`.
    void start(int port);
    /// Ends every connection and waits for their threads. May be called twice.
    void stop();

    int port() const { return port_; }

    /// The size of each new connection's receive buffer, in bytes.
    void setReceiveBuffer(int bytes) { receiveBuffer_ = bytes; }

  private:
    struct Client {
        Client(FileDescriptor socket, int number) : connection(std::move(socket), number) {}
        Connection connection;
        std::atomic<bool> isDone = false;
        std::jthread thread;
    };

    void acceptClients();
    void serve(Connection& connection) const;

    Handler handler_;
    int port_ = 0;
    std::atomic<int> receiveBuffer_ = 256 * 1024;
    FileDescriptor listener_;
    std::list<std::unique_ptr<Client>> clients_; ///< the accepting thread's, until that has ended
    std::jthread acceptor_;
};

} // namespace quorvane::emulator

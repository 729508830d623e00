#pragma once

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

/// A web server on the loopback that sends every client the same response, until it is destroyed.
class LoopbackServer {
  public:
    explicit LoopbackServer(std::string answer)
        : answer_(std::move(answer)), listener_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in name{};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof name;
        auto* generic = reinterpret_cast<sockaddr*>(&name); // the socket interface wants the generic type
        EXPECT_EQ(::bind(listener_, generic, size), 0);
        EXPECT_EQ(::getsockname(listener_, generic, &size), 0);
        EXPECT_EQ(::listen(listener_, 4), 0);
        address_ = "http://127.0.0.1:" + std::to_string(::ntohs(name.sin_port)) + "/list.xml";
        thread_ = std::thread([this] { serve(); });
    }

    ~LoopbackServer() {
        ::shutdown(listener_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }

    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }

  private:
    void serve() const {
        for (int visitor = ::accept(listener_, nullptr, nullptr); visitor >= 0;
             visitor = ::accept(listener_, nullptr, nullptr)) {
            std::string request(4096, '\0');
            if (::recv(visitor, request.data(), request.size(), 0) > 0) {
                std::size_t sent = 0;
                ssize_t count = 1;
                while (sent < answer_.size() && count > 0) { // a client may hang up early
                    count = ::send(visitor, answer_.data() + sent, answer_.size() - sent, MSG_NOSIGNAL);
                    sent += count > 0 ? static_cast<std::size_t>(count) : 0;
                }
            }
            ::shutdown(visitor, SHUT_WR);
            ::close(visitor);
        }
    }

    std::string answer_;
    int listener_;
    std::string address_;
    std::thread thread_;
};

/// Returns a whole HTTP response, for LoopbackServer.
[[nodiscard]] inline std::string response(const std::string& status, const std::string& body,
                                          const std::string& header = {}) {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" + header + "\r\n" + body;
}

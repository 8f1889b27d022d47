// The simulator on the network: listeners that can go down and come up again while the chassis lives, and the threads
// that serve the connections.
#include <atomic>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <future>
#include <limits>
#include <system_error>
#include <thread>
#include <vector>

#include "behaviour/chassis_life.h"
#include "behaviour/timers.h"
#include "faults/chassis_faults.h"
#include "faults/fault_injector.h"
#include "orvane/simulator/simulator.h"
#include "server/certificate.h"
#include "server/session.h"

namespace Orvane::simulator {

namespace {

constexpr std::size_t kThreads = 2;
constexpr const char* kHostInPaths = "cmm";
// After a failure that may last (too many open files, a port that is taken) before the next try.
constexpr auto kPause = std::chrono::milliseconds(100);
// How often a call that waits for the network looks whether the server ends.
constexpr auto kLookAround = std::chrono::milliseconds(20);

[[noreturn]] void FailToListen(const ErrorCode& error, const std::string& address, int port) {
  throw std::system_error(error.value(), std::system_category(),
                          "cannot listen on " + address + " port " + std::to_string(port));
}

asio::ip::address ParseAddress(const std::string& address) {
  ErrorCode error;
  asio::ip::address parsed = asio::ip::make_address(address, error);
  if (error) throw std::invalid_argument("'" + address + "' is not an address to listen on");
  return parsed;
}

void CheckPort(int port) {
  if (port < -1 || port > std::numeric_limits<std::uint16_t>::max()) {
    throw std::invalid_argument("the port " + std::to_string(port) + " is out of range");
  }
}

using Strand = asio::strand<asio::io_context::executor_type>;

// One port. All members but the constructor are called on its strand.
class Listener {
 public:
  using Serve = std::function<void(Tcp::socket socket)>;

  // Listens; accepting starts with Accept.
  Listener(asio::io_context& context, const Strand& strand, const asio::ip::address& address, int port, Serve serve)
      : context_(context),
        acceptor_(strand),
        pause_(strand),
        endpoint_(address, static_cast<std::uint16_t>(port)),
        serve_(std::move(serve)) {
    ErrorCode error;
    Bind(error);
    if (!error) acceptor_.listen(asio::socket_base::max_listen_connections, error);
    if (error) FailToListen(error, address.to_string(), port);
    endpoint_ = acceptor_.local_endpoint();
  }

  std::uint16_t Port() const { return endpoint_.port(); }

  void Accept() {
    acceptor_.async_accept(asio::make_strand(context_),
                           [this, round = round_](const ErrorCode& error, Tcp::socket socket) {
                             if (round != round_) return;
                             if (error && error != asio::error::connection_aborted) return AcceptLater();
                             if (!error) serve_(std::move(socket));
                             Accept();
                           });
  }

  // The port stays bound, so that nobody else can take it meanwhile.
  void GoDown() {
    ++round_;
    pause_.cancel();
    ErrorCode ignored;
    acceptor_.close(ignored);
    Bind(ignored);
  }

  void ComeUp() {
    ErrorCode error;
    if (!acceptor_.is_open()) Bind(error);
    if (!error) acceptor_.listen(asio::socket_base::max_listen_connections, error);
    if (!error) return Accept();
    acceptor_.close(error);
    After([this] { ComeUp(); });
  }

 private:
  void Bind(ErrorCode& error) {
    acceptor_.open(endpoint_.protocol(), error);
    if (!error) acceptor_.set_option(asio::socket_base::reuse_address(true), error);
    if (!error) acceptor_.bind(endpoint_, error);
    ErrorCode ignored;
    if (error) acceptor_.close(ignored);
  }

  // Trying again at once would only fail again, and burn a processor.
  void AcceptLater() {
    After([this] { Accept(); });
  }

  template <typename Action>
  void After(Action action) {
    pause_.expires_after(kPause);
    pause_.async_wait([this, round = round_, action](const ErrorCode& error) {
      if (!error && round == round_) action();
    });
  }

  asio::io_context& context_;
  Tcp::acceptor acceptor_;
  asio::steady_timer pause_;
  Tcp::endpoint endpoint_;
  Serve serve_;
  // Counts the times of going down; what was begun before does not go on after.
  unsigned round_ = 0;
};

}  // namespace

class Simulator::Impl : public Network {
 public:
  Impl(const Model& model, const Options& options)
      : clock_(options.clock ? options.clock : std::make_shared<ScaledClock>(1.0)),
        store_(*model.Contents()),
        service_{Authentication(options.authentication, options.user, options.password),
                 Operations(store_, kHostInPaths),
                 [this](const Request& request) { return injector_->Answer(request); },
                 [this](bool resumed) { ++(resumed ? resumedHandshakes_ : fullHandshakes_); },
                 [this](std::chrono::milliseconds delay, std::shared_ptr<Connection> connection,
                        Service::Action action) { Later(delay, std::move(connection), std::move(action)); },
                 [this](std::chrono::milliseconds duration, std::shared_ptr<Connection> spared,
                        Service::Action action) { Refuse(duration, std::move(spared), std::move(action)); }} {
    CheckPort(options.httpPort);
    CheckPort(options.httpsPort);
    if (options.httpPort < 0 && options.httpsPort < 0) {
      throw std::invalid_argument("neither HTTP nor HTTPS is to be served");
    }
    life_.emplace(store_, *clock_, *this, *model.Settings(),
                  FetchLimits{options.packageSizeLimit, options.packageTimeLimit});
    life_->Register(service_.operations);
    chassisFaults_.emplace(store_, *clock_, *life_);
    injector_.emplace(options.faults, *chassisFaults_, service_.operations);
    if (!options.faults.Faults().empty()) waiting_.emplace(1);
    const asio::ip::address address = ParseAddress(options.address);
    if (options.httpPort >= 0) {
      http_.emplace(context_, strand_, address, options.httpPort, [this](Tcp::socket socket) {
        Start(std::make_shared<Session<PlainStream>>(PlainStream(std::move(socket)), service_));
      });
    }
    if (options.httpsPort >= 0) {
      https_.emplace(context_, strand_, address, options.httpsPort, [this](Tcp::socket socket) {
        Start(std::make_shared<Session<TlsStream>>(TlsStream(std::move(socket), tls_), service_));
      });
      PrepareTls(options);
    }
    for (std::optional<Listener>* listener : {&http_, &https_}) {
      if (*listener) (*listener)->Accept();
    }
    for (std::size_t i = 0; i < kThreads; ++i) {
      threads_.emplace_back([this] { context_.run(); });
    }
  }

  ~Impl() override {
    isEnding_ = true;
    context_.stop();
    for (std::thread& thread : threads_) thread.join();
    // After the threads that call it, before the network that it calls.
    life_.reset();
    if (waiting_) {
      waiting_->stop();
      waiting_->join();
    }
  }

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void GoDown() override {
    RunOn(strand_, [this] {
      isRestarting_ = true;
      ListenOrNot();
    });
    for (const std::shared_ptr<Connection>& connection : connections_.Open()) {
      RunOn(connection->Executor(), [connection] { connection->Close(); });
    }
  }

  void ComeUp() override {
    RunOn(strand_, [this] {
      isRestarting_ = false;
      ListenOrNot();
    });
  }

  std::uint16_t HttpPort() const { return http_ ? http_->Port() : 0; }
  std::uint16_t HttpsPort() const { return https_ ? https_->Port() : 0; }
  const Operations& CimOperations() const { return service_.operations; }
  TlsHandshakes Handshakes() const { return {fullHandshakes_, resumedHandshakes_}; }

 private:
  template <typename NewSession>
  void Start(const std::shared_ptr<NewSession>& session) {
    connections_.Add(session);
    session->Start();
  }

  // On the strand: a restart and the refusals of faults may overlap, the last of them to end lets it listen again.
  void ListenOrNot() {
    const bool isWanted = !isRestarting_ && refusals_ == 0;
    if (std::exchange(isUp_, isWanted) == isWanted) return;
    for (std::optional<Listener>* listener : {&http_, &https_}) {
      if (!*listener) continue;
      isWanted ? (*listener)->ComeUp() : (*listener)->GoDown();
    }
  }

  void Later(std::chrono::milliseconds delay, std::shared_ptr<Connection> connection, Service::Action action) {
    const std::chrono::milliseconds due = clock_->Now() + delay;
    timers_.RunAt(due, [connection = std::move(connection), action = std::move(action)] {
      asio::post(connection->Executor(), action);
    });
    asio::post(*waiting_, [clock = clock_, due] { clock->PassUntil(due); });
  }

  // Nothing waits here: it is called on a thread that serves requests.
  void Refuse(std::chrono::milliseconds duration, std::shared_ptr<Connection> spared, Service::Action action) {
    asio::post(strand_, [this, duration, spared = std::move(spared), action = std::move(action)] {
      ++refusals_;
      ListenOrNot();
      timers_.RunAfter(duration, [this] {
        RunOn(strand_, [this] {
          --refusals_;
          ListenOrNot();
        });
      });
      for (const std::shared_ptr<Connection>& connection : connections_.Open()) {
        if (connection != spared) asio::post(connection->Executor(), [connection] { connection->Close(); });
      }
      asio::post(spared->Executor(), action);
    });
  }

  // Returns when the action has run on one of the threads, or the server ends.
  template <typename Executor, typename Action>
  void RunOn(const Executor& executor, Action action) {
    const auto done = std::make_shared<std::promise<void>>();
    std::future<void> ended = done->get_future();
    asio::post(executor, [action, done] {
      action();
      done->set_value();
    });
    while (ended.wait_for(kLookAround) != std::future_status::ready && !isEnding_) {
    }
  }

  void PrepareTls(const Options& options) {
    const ServerCertificate certificate = MakeServerCertificate(options.address);
    tls_.set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_sslv2 |
                     asio::ssl::context::no_sslv3 | asio::ssl::context::no_tlsv1 | asio::ssl::context::no_tlsv1_1);
    SSL_CTX* const context = tls_.native_handle();
    if (options.tlsVersions == TlsVersions::kOnly12) SSL_CTX_set_max_proto_version(context, TLS1_2_VERSION);
    if (options.tlsVersions == TlsVersions::kOnly13) SSL_CTX_set_min_proto_version(context, TLS1_3_VERSION);
    if (!options.tlsResumption) {
      SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
      SSL_CTX_set_options(context, SSL_OP_NO_TICKET);
      SSL_CTX_set_num_tickets(context, 0);
    }
    tls_.use_certificate(asio::buffer(certificate.certificatePem), asio::ssl::context::pem);
    tls_.use_private_key(asio::buffer(certificate.privateKeyPem), asio::ssl::context::pem);
  }

  // Declared in this order: connections, held by the context, end before what they use.
  std::atomic<bool> isEnding_{false};
  std::atomic<std::uint64_t> fullHandshakes_{0};
  std::atomic<std::uint64_t> resumedHandshakes_{0};
  std::shared_ptr<Clock> clock_;
  SharedStore store_;
  std::optional<ChassisLife> life_;
  std::optional<ChassisFaults> chassisFaults_;
  std::optional<FaultInjector> injector_;
  Service service_;
  Connections connections_;
  asio::ssl::context tls_{asio::ssl::context::tls_server};
  asio::io_context context_;
  // The threads wait for what comes next also while nothing is open.
  asio::executor_work_guard<asio::io_context::executor_type> work_{context_.get_executor()};
  Strand strand_ = asio::make_strand(context_);
  // These three are used on the strand only.
  bool isUp_ = true;
  bool isRestarting_ = false;
  unsigned refusals_ = 0;
  std::optional<Listener> http_;
  std::optional<Listener> https_;
  Timers timers_{*clock_};
  // For clients whose answer is late: the clock that they wait on may run whatever the chassis does meanwhile.
  std::optional<asio::thread_pool> waiting_;
  std::vector<std::thread> threads_;
};

Simulator::Simulator(Model model, Options options) : impl_(std::make_unique<Impl>(model, options)) {}
Simulator::~Simulator() = default;

std::uint16_t Simulator::HttpPort() const { return impl_->HttpPort(); }
std::uint16_t Simulator::HttpsPort() const { return impl_->HttpsPort(); }
std::uint64_t Simulator::RequestCount(const std::string& operation) const {
  return impl_->CimOperations().Count(operation);
}
TlsHandshakes Simulator::Handshakes() const { return impl_->Handshakes(); }

}  // namespace Orvane::simulator

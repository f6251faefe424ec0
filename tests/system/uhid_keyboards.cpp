#include "tests/system/uhid_keyboards.h"

#include <fcntl.h>
#include <linux/uhid.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <future>
#include <string>
#include <system_error>
#include <thread>

#include "tests/support/temporary_folder.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using simulator::HidKeyboard;

constexpr std::uint16_t kUsb = 3;
constexpr int kPollMilliseconds = 5;

/// The nodes that stand for a device with this unique name.
std::vector<fs::path> NodesOf(const std::string& unique) {
  std::vector<fs::path> nodes;
  std::error_code error;
  for (const auto& node : fs::directory_iterator("/sys/class/hidraw", error)) {
    const std::string uevent = ContentOf(node.path() / "device/uevent");
    if (uevent.find("HID_UNIQ=" + unique + "\n") != std::string::npos) nodes.push_back("/dev" / node.path().filename());
  }
  return nodes;
}

bool HasOpenableNode(const std::string& unique) {
  const std::vector<fs::path> nodes = NodesOf(unique);
  return std::any_of(nodes.begin(), nodes.end(), [](const fs::path& node) { return access(node.c_str(), R_OK) == 0; });
}

}  // namespace

/// One keyboard's device, served by a thread of its own. Each request has a thread as well: the kernel may give up a
/// slow one and send the next.
class UhidKeyboard {
 public:
  UhidKeyboard(std::shared_ptr<simulator::Notebook> notebook, std::size_t index)
      : notebook_(std::move(notebook)),
        index_(index),
        keyboard_(notebook_->HidKeyboardAt(index)),
        fd_(open("/dev/uhid", O_RDWR | O_CLOEXEC)) {
    if (fd_ < 0) throw std::system_error(errno, std::generic_category(), "/dev/uhid");
    server_ = std::thread([this] { Serve(); });
  }
  UhidKeyboard(const UhidKeyboard&) = delete;
  UhidKeyboard& operator=(const UhidKeyboard&) = delete;
  ~UhidKeyboard() {
    ends_ = true;
    keyboard_.Unplug();  // which ends exchanges that stall
    server_.join();
    requests_.clear();
    close(fd_);
  }

  void Settle() const {
    const auto settled = [this] {
      const auto connection = keyboard_.Connect();
      if (!connection) return served_ == 0 && NodesOf(Unique(last_)).empty();
      return served_ == *connection && HasOpenableNode(Unique(*connection));
    };
    while (!settled()) std::this_thread::sleep_for(std::chrono::milliseconds(kPollMilliseconds));
  }

 private:
  std::string Unique(std::uint64_t connection) const {
    return "simulated-" + std::to_string(getpid()) + "-" + std::to_string(index_) + "-" + std::to_string(connection);
  }

  void Serve() {
    while (!ends_) {
      Follow();
      pollfd ready{fd_, POLLIN, 0};
      if (poll(&ready, 1, kPollMilliseconds) > 0) HandleEvent();
    }
    if (served_ != 0) Destroy();
  }

  /// Plugs the kernel's device in and out as the simulated keyboard is.
  void Follow() {
    const std::uint64_t connection = keyboard_.Connect().value_or(0);
    if (connection == served_) return;
    if (served_ != 0) Destroy();
    if (connection != 0) Create(connection);
  }

  void Create(std::uint64_t connection) {
    const HidKeyboard::Settings& settings = keyboard_.settings();
    const auto& descriptor = keyboard_.report_descriptor();
    uhid_event event{};
    event.type = UHID_CREATE2;
    uhid_create2_req& device = event.u.create2;
    std::strcpy(reinterpret_cast<char*>(device.name), "Simulated keyboard");
    Unique(connection).copy(reinterpret_cast<char*>(device.uniq), sizeof(device.uniq) - 1);
    device.bus = kUsb;
    device.vendor = settings.vendor;
    device.product = settings.product;
    device.rd_size = static_cast<std::uint16_t>(std::min(descriptor.size(), sizeof(device.rd_data)));
    std::copy_n(descriptor.begin(), device.rd_size, device.rd_data);
    Send(event);
    last_ = connection;
    served_ = connection;
  }

  void Destroy() {
    uhid_event event{};
    event.type = UHID_DESTROY;
    Send(event);
    served_ = 0;
  }

  void HandleEvent() {
    uhid_event event{};
    if (read(fd_, &event, sizeof(event)) < 0) return;
    if (event.type != UHID_GET_REPORT && event.type != UHID_SET_REPORT) return;
    std::erase_if(requests_, [](const auto& each) { return each.wait_for(0s) == std::future_status::ready; });
    requests_.push_back(std::async(std::launch::async, [this, event, connection = served_.load()] {
      if (event.type == UHID_GET_REPORT) AnswerGet(event.u.get_report, connection);
      if (event.type == UHID_SET_REPORT) AnswerSet(event.u.set_report, connection);
    }));
  }

  /// The kernel drops an answer that comes too late.
  void AnswerGet(const uhid_get_report_req& request, std::uint64_t connection) {
    const auto answer = notebook_->GetFeature(index_, connection, request.rnum);
    uhid_event event{};
    event.type = UHID_GET_REPORT_REPLY;
    event.u.get_report_reply.id = request.id;
    event.u.get_report_reply.err = ErrorOf(answer);
    event.u.get_report_reply.size = static_cast<std::uint16_t>(answer.report.size());
    std::copy(answer.report.begin(), answer.report.end(), event.u.get_report_reply.data);
    if (IsAnswered(answer)) Send(event);
  }

  void AnswerSet(const uhid_set_report_req& request, std::uint64_t connection) {
    const auto answer = notebook_->SetFeature(index_, connection, {request.data, request.size});
    uhid_event event{};
    event.type = UHID_SET_REPORT_REPLY;
    event.u.set_report_reply.id = request.id;
    event.u.set_report_reply.err = ErrorOf(answer);
    if (IsAnswered(answer)) Send(event);
  }

  static bool IsAnswered(const HidKeyboard::Answer& answer) {
    return answer.result == HidKeyboard::Result::Done || answer.result == HidKeyboard::Result::Refused;
  }
  static std::uint16_t ErrorOf(const HidKeyboard::Answer& answer) {
    return answer.result == HidKeyboard::Result::Done ? 0 : EIO;
  }

  /// The kernel refuses an event for a device that is gone, which does no harm.
  void Send(const uhid_event& event) const {
    [[maybe_unused]] const ssize_t written = write(fd_, &event, sizeof(event));
  }

  const std::shared_ptr<simulator::Notebook> notebook_;
  const std::size_t index_;
  HidKeyboard& keyboard_;
  const int fd_;
  std::atomic<bool> ends_ = false;
  std::atomic<std::uint64_t> served_ = 0;    // the connection of the kernel's device; 0 without a device
  std::atomic<std::uint64_t> last_ = 0;      // the connection of the last device
  std::vector<std::future<void>> requests_;  // the server's
  std::thread server_;
};

UhidKeyboards::UhidKeyboards(const std::shared_ptr<simulator::Notebook>& notebook) {
  for (std::size_t i = 0; i < notebook->HidKeyboardCount(); ++i) {
    keyboards_.push_back(std::make_unique<UhidKeyboard>(notebook, i));
    keyboards_.back()->Settle();  // one after the other: nodes get the order of the keyboards
  }
}

UhidKeyboards::~UhidKeyboards() = default;

void UhidKeyboards::Settle() const {
  for (const auto& keyboard : keyboards_) keyboard->Settle();
}

}  // namespace test

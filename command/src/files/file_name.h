// What the name of a file stands for: its kind by its ending, an open descriptor, a stream.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/platform.h"

namespace qarv::command {

inline constexpr const char* kStandardInput = "/dev/stdin";
inline constexpr const char* kStandardOutput = "/dev/stdout";
inline constexpr const char* kStandardError = "/dev/stderr";

using platform::FileId;

/// The extension in lower case (".json"); empty if there is none.
std::string ExtensionOf(const std::string& name);

/// The open descriptor that a name stands for ("/dev/stdout", "/dev/fd/63"): what is opened by such
/// a name would begin anew, and is refused where the descriptor belongs to somebody else.
std::optional<int> DescriptorOf(const std::string& name);

/// An open file that is closed with its owner.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor();
  /// Below 0 where it could not be opened; errno says why.
  int Get() const { return fd_; }

 private:
  int fd_;
};

/// Opens a file by its name; what stands for an open descriptor is that one again.
Descriptor OpenByName(const std::string& name, platform::Access access);

/// Whether a name stands for an open descriptor, a FIFO or a device: what is read once, written
/// as it comes, and has no folder of its own.
bool IsStream(const std::string& name);

}  // namespace qarv::command

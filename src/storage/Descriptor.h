#pragma once

#include <unistd.h>

#include <utility>

namespace quorel {

/// An open file, closed with the object.
class Descriptor {
  public:
    explicit Descriptor(int number = -1)
        : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor(Descriptor&& other) noexcept
        : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    /// False where the system reports only now that something written was lost.
    bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

    /// The file is no longer this object's to close.
    int release() { return std::exchange(number_, -1); }

  private:
    int number_;
};

} // namespace quorel

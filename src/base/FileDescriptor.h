#pragma once

#include <unistd.h>

#include <utility>

namespace sunpane {

/// An open file of the operating system's, closed when it goes. Negative numbers stand for what could not be opened.
class FileDescriptor {
public:
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor() {
        if (number_ >= 0) close(number_);
    }

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

private:
    int number_;
};

}  // namespace sunpane

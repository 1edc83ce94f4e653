// A folder under /tmp (short enough for a socket's name), removed with everything in it when destroyed.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = "/tmp/vesk-test-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder under /tmp");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] std::string operator/(std::string_view name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

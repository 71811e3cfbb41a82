#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace test_support {
/// A new empty folder that goes away with the object. While it lives it is also the folder of the
/// stored connections, so that no test sees or touches those of the person who runs it. The path
/// has no separator at its end.
class TempDirectory
{
public:
    TempDirectory() : path_((std::filesystem::temp_directory_path() / "dbapi_test_XXXXXX").string())
    {
        if (mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("cannot make the temporary folder " + path_);
        }
        if (const char* before = std::getenv(kVariable)) {
            before_ = before;
        }
        setenv(kVariable, path_.c_str(), 1);
    }

    ~TempDirectory()
    {
        if (before_) {
            setenv(kVariable, before_->c_str(), 1);
        } else {
            unsetenv(kVariable);
        }
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }

    [[nodiscard]] std::string connections_file() const { return file("vanto_db_connections.xml"); }

private:
    static constexpr const char* kVariable = "VANTO_DB_CONNECTIONS_DIRECTORY";
    std::string path_;
    std::optional<std::string> before_;
};

/// The bytes of a file; empty when there is none.
inline std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
    if (!out.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}
} // namespace test_support

#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

/// A file with some content, in a place of its own, that goes away with the object.
class TemporaryFile {
public:
    /// @param end  end of the file's name
    TemporaryFile(std::string const& end, std::string const& content) {
        static int number = 0;
        testing::TestInfo const* const test = testing::UnitTest::GetInstance()->current_test_info();
        // With the process's number, as the same test may run several times at once: with each width of the kernels.
        name = testing::TempDir() + test->test_suite_name() + test->name() + std::to_string(getpid()) + "_" +
               std::to_string(number++) + end;
        std::ofstream(name, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    TemporaryFile(TemporaryFile const&) = delete;
    TemporaryFile& operator=(TemporaryFile const&) = delete;
    ~TemporaryFile() { std::remove(name.c_str()); }

    std::string name;
};

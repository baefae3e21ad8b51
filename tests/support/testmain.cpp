// Every test executable starts here: each test gets a private in-memory store, so that no test
// sees another's printers, and none touches the user's home.
#include "platform/host/host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

class PrivateStore : public ::testing::EmptyTestEventListener
{
    void OnTestStart(const ::testing::TestInfo&) override
    {
        std::string error;
        if (!host::OpenStore(":memory:", &error)) {
            ADD_FAILURE() << "cannot open an in-memory store: " << error;
        }
        host::ClearMessageBoxAnswers();
        host::ClearMessageBoxCalls();
        host::SetDebugOutputSink(nullptr);
    }
    void OnTestEnd(const ::testing::TestInfo&) override { host::CloseStore(); }
};

} // namespace

int main(int argc, char** argv)
{
    // A home of its own for files the driver writes (the trace log).
    std::string home =
        (std::filesystem::temp_directory_path() / ("qlmtest-" + std::to_string(getpid()))).string();
    std::filesystem::create_directories(home);
    host::SetHomeDirectory(home);

    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new PrivateStore);
    int result = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return result;
}

// Every test executable starts here: each test gets a private in-memory store, so that no test
// sees another's printers, and none touches the user's home. The private home has the build's
// resource library installed as the system would install it.
#include "platform/host/host.h"

#include <gtest/gtest.h>

#include <cstdio>
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

// The driver finds its resource library where Windows installs it, in the "3" subdirectory of
// the printer driver directory; put the build's copy there, when this build has one.
void InstallResourceLibrary()
{
#ifdef QLM_TEST_BINARY_DIR
    const std::string built = QLM_TEST_BINARY_DIR "/resources/QLMRes.DLL";
    std::error_code ec;
    if (!std::filesystem::is_regular_file(built, ec)) {
        return;
    }
    std::string error;
    if (!host::InstallDriverFile(built, u"QLMRes.DLL", 3, &error)) {
        std::fprintf(stderr, "warning: QLMRes.DLL not installed: %s\n", error.c_str());
    }
#endif
}

} // namespace

int main(int argc, char** argv)
{
    // A home of its own for files the driver writes (the trace log).
    std::string home =
        (std::filesystem::temp_directory_path() / ("qlmtest-" + std::to_string(getpid()))).string();
    std::filesystem::create_directories(home);
    host::SetHomeDirectory(home);
    InstallResourceLibrary();

    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new PrivateStore);
    int result = RUN_ALL_TESTS();
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
    return result;
}

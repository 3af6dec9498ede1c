// Settings in files: whole ones or none, whoever writes, is killed, or has no place to write to.

#include "plugin/midiMap.h"
#include "plugin/platform.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tolm {
namespace {

using Scope = SettingsStore::Scope;

std::vector<std::uint8_t> mapBytes(std::size_t size, std::uint8_t fill)
{
    return std::vector<std::uint8_t>(size, fill);
}

class SettingsFilesOnDisk : public ::testing::Test {
protected:
    void SetUp() override
    {
        root_ = std::filesystem::path(TOLM_BUILD_DIR) / "settings-test";
        std::filesystem::remove_all(root_);
        std::filesystem::create_directories(root_);
    }
    void TearDown() override { std::filesystem::remove_all(root_); }

    std::unique_ptr<SettingsStore> store() const
    {
        return fileSettingsStore(root_ / "machine", root_ / "user");
    }
    std::optional<std::size_t> read(Scope scope, std::span<std::uint8_t> out) const
    {
        return store()->read(scope, kKey, "1", out);
    }
    std::filesystem::path file(const char* scope) const { return root_ / scope / kKey / "1"; }

    // The file itself included.
    std::ptrdiff_t filesBeside(const char* scope) const
    {
        const auto folder = std::filesystem::directory_iterator(file(scope).parent_path());
        return std::distance(begin(folder), end(folder));
    }

    static constexpr const char* kKey = "Some/Key With Blanks";
    std::filesystem::path root_;
};

TEST_F(SettingsFilesOnDisk, writesWholeFilesAndNothingBesides)
{
    std::array<std::uint8_t, 260> out{};
    EXPECT_FALSE(read(Scope::user, out));
    EXPECT_FALSE(std::filesystem::exists(root_ / "user")) << "reading made a folder";
    store()->write(Scope::user, kKey, "1", mapBytes(128, 7));
    EXPECT_EQ(read(Scope::user, out), 128u);
    EXPECT_EQ(out[127], 7);
    EXPECT_EQ(out[128], 0);
    EXPECT_FALSE(read(Scope::machine, out));
    store()->write(Scope::user, kKey, "1", mapBytes(300, 8));
    EXPECT_EQ(read(Scope::user, out), 260u);
    EXPECT_EQ(filesBeside("user"), 1) << "a temporary file was left";
}

TEST_F(SettingsFilesOnDisk, livesWithoutAFolderAndWithOneThatIsInTheWay)
{
    std::array<std::uint8_t, 8> out{};
    const auto nowhere = fileSettingsStore("", "");
    nowhere->write(Scope::user, kKey, "1", mapBytes(8, 1));
    EXPECT_FALSE(nowhere->read(Scope::user, kKey, "1", out));
    const auto blocked = fileSettingsStore("/proc/none", root_);
    blocked->write(Scope::machine, kKey, "1", mapBytes(8, 1));
    EXPECT_FALSE(blocked->read(Scope::machine, kKey, "1", out));
    std::filesystem::create_directories(file("user")); // a folder where the file should be
    store()->write(Scope::user, kKey, "1", mapBytes(8, 1));
    EXPECT_FALSE(read(Scope::user, out));
    EXPECT_EQ(filesBeside("user"), 1);
    std::filesystem::create_directories(file("machine").parent_path());
    ASSERT_EQ(mkfifo(file("machine").c_str(), 0600), 0); // must not wait for a writer
    EXPECT_EQ(read(Scope::machine, out).value_or(0), 0u);
}

TEST_F(SettingsFilesOnDisk, twoWritersLeaveOneOfTheirFilesWhole)
{
    store()->write(Scope::user, kKey, "1", mapBytes(128, 1));
    const auto writer = [this](std::uint8_t fill) {
        for (int i = 0; i < 10; ++i)
            store()->write(Scope::user, kKey, "1", mapBytes(128, fill));
    };
    std::thread one(writer, std::uint8_t{1});
    std::thread two(writer, std::uint8_t{2});
    for (int i = 0; i < 50; ++i) {
        std::array<std::uint8_t, 260> out{};
        ASSERT_EQ(read(Scope::user, out), 128u);
        for (std::size_t b = 1; b < 128; ++b)
            ASSERT_EQ(out[b], out[0]);
    }
    one.join();
    two.join();
}

TEST_F(SettingsFilesOnDisk, twoProcessesOneOfThemKilledLeaveAWholeFile)
{
    store()->write(Scope::user, kKey, "1", mapBytes(128, 1));
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) // writes until it is killed
        for (;;)
            store()->write(Scope::user, kKey, "1", mapBytes(128, 2));
    for (int i = 0; i < 30; ++i) {
        store()->write(Scope::user, kKey, "1", mapBytes(128, 1));
        std::array<std::uint8_t, 260> out{};
        EXPECT_EQ(read(Scope::user, out), 128u);
        EXPECT_EQ(out[0], out[127]);
    }
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    std::array<std::uint8_t, 260> out{};
    EXPECT_EQ(read(Scope::user, out), 128u);
    EXPECT_EQ(out[0], out[127]);
    EXPECT_TRUE(out[0] == 1 || out[0] == 2);
}

TEST_F(SettingsFilesOnDisk, killedWritersLeaveNothingThatPilesUp)
{
    store()->write(Scope::user, kKey, "1", mapBytes(128, 1));
    for (int i = 0; i < 12; ++i) {
        const pid_t writer = ::fork();
        ASSERT_GE(writer, 0);
        if (writer == 0)
            for (;;)
                store()->write(Scope::user, kKey, "1", mapBytes(300, 2));
        std::this_thread::sleep_for(std::chrono::microseconds(1500 + 137 * i));
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
    }
    EXPECT_LE(filesBeside("user"), 2);
    std::ofstream(file("user").string() + ".new") << std::string(1000, 'x'); // cut off half way
    store()->write(Scope::user, kKey, "1", mapBytes(128, 1));
    std::array<std::uint8_t, 260> out{};
    EXPECT_EQ(read(Scope::user, out), 128u);
    EXPECT_EQ(out[127], 1);
    EXPECT_EQ(filesBeside("user"), 1);
}

TEST_F(SettingsFilesOnDisk, aStuckWriterHoldsNobodyUpForLong)
{
    store()->write(Scope::user, kKey, "1", mapBytes(128, 1));
    const std::string draft = file("user").string() + ".new";
    const int stuck = ::open(draft.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(::flock(stuck, LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    store()->write(Scope::user, kKey, "1", mapBytes(128, 2));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    ::close(stuck);
    std::array<std::uint8_t, 260> out{};
    EXPECT_EQ(read(Scope::user, out), 128u);
    EXPECT_EQ(out[0], 1) << "given up, and the old file is whole";
    store()->write(Scope::user, kKey, "1", mapBytes(128, 3));
    EXPECT_EQ(read(Scope::user, out), 128u);
    EXPECT_EQ(out[0], 3);
}

TEST_F(SettingsFilesOnDisk, mapsOfTooFewBytesAreNoMaps)
{
    struct Row {
        std::size_t machineBytes, userBytes;
        int parameter;
    };
    for (const Row& row : {Row{128, 128, 2}, {129, 128, 2}, {127, 129, 3}, {127, 127, -1}}) {
        SCOPED_TRACE(row.machineBytes);
        const auto files = store();
        constexpr const char* kMapKey = "Software/Corvane Audio/TOLM";
        files->write(Scope::machine, kMapKey, "1", mapBytes(row.machineBytes, 2));
        files->write(Scope::user, kMapKey, "1", mapBytes(row.userBytes, 3));
        EXPECT_EQ(MidiMap(*files).parameterOf(0), row.parameter);
    }
}

TEST_F(SettingsFilesOnDisk, homesThatAreMissingOrNotToBeWrittenKeepTheDefaults)
{
    std::filesystem::create_directories(root_ / "user");
    std::filesystem::permissions(root_ / "user", std::filesystem::perms::owner_read |
                                                     std::filesystem::perms::owner_exec);
    for (const auto& folder :
         {std::string(root_ / "user"), std::string("/proc/none"), std::string()}) {
        const auto files = fileSettingsStore("", folder);
        MidiMap map(*files);
        map.forget(28);
        map.storeIfChanged(); // must neither throw nor report
        EXPECT_EQ(map.parameterOf(74), -1);
        if (::geteuid() != 0 || folder.empty() || folder.starts_with("/proc")) {
            EXPECT_EQ(MidiMap(*files).parameterOf(74), 28) << folder;
        }
    }
    std::filesystem::permissions(root_ / "user", std::filesystem::perms::owner_all);
}

TEST_F(SettingsFilesOnDisk, aMapThatNobodyChangedCreatesNothing)
{
    const auto files = store();
    MidiMap map(*files);
    map.learn(20); // nothing was armed
    map.storeIfChanged();
    EXPECT_TRUE(std::filesystem::is_empty(root_));
}

} // namespace
} // namespace tolm

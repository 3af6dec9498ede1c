// Settings in files: whole ones or none, whoever writes, is killed, or has no place to write to.

#include "plugin/platform.h"

#include <gtest/gtest.h>

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

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Scope = SettingsStore::Scope;

class SettingsFilesOnDisk : public ::testing::Test {
protected:
    void SetUp() override
    {
        root_ = fs::path(TOLM_BUILD_DIR) / "settings-test";
        fs::remove_all(root_);
        fs::create_directories(root_);
    }
    void TearDown() override { fs::remove_all(root_); }

    static void write(SettingsStore& store, Scope scope, const Bytes& bytes)
    {
        store.write(scope, kKey, "1", bytes);
    }
    static std::optional<Bytes> read(SettingsStore& store, Scope scope)
    {
        Bytes bytes(260);
        const std::optional<std::size_t> size = store.read(scope, kKey, "1", bytes);
        if (!size)
            return std::nullopt;
        bytes.resize(*size);
        return bytes;
    }
    std::unique_ptr<SettingsStore> store() const
    {
        return fileSettingsStore(root_ / "machine", root_ / "user");
    }
    void keep(const Bytes& bytes) const { write(*store(), Scope::user, bytes); }
    std::optional<Bytes> kept() const { return read(*store(), Scope::user); }
    bool keptIsWhole() const
    {
        const auto bytes = kept();
        return bytes == ones_ || bytes == twos_;
    }
    fs::path file(const char* scope) const { return root_ / scope / kKey / "1"; }

    // The file itself included.
    std::ptrdiff_t filesBeside(const char* scope) const
    {
        return std::distance(fs::directory_iterator(file(scope).parent_path()), {});
    }

    // Another process, which writes until it is killed.
    pid_t startWriter(const Bytes& bytes) const
    {
        const pid_t writer = ::fork();
        if (writer == 0)
            for (;;)
                keep(bytes);
        return writer;
    }
    static void killWriter(pid_t writer)
    {
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
    }

    static constexpr const char* kKey = "Some/Key With Blanks";
    const Bytes ones_ = Bytes(128, 1);
    const Bytes twos_ = Bytes(128, 2);
    fs::path root_;
};

TEST_F(SettingsFilesOnDisk, writesWholeFilesAndNothingBesides)
{
    EXPECT_FALSE(kept());
    EXPECT_FALSE(fs::exists(root_ / "user")) << "reading made a folder";
    keep(ones_);
    EXPECT_EQ(kept(), ones_);
    EXPECT_FALSE(read(*store(), Scope::machine));
    keep(Bytes(300, 8));
    EXPECT_EQ(kept(), Bytes(260, 8));
    EXPECT_EQ(filesBeside("user"), 1) << "a temporary file was left";
}

TEST_F(SettingsFilesOnDisk, livesWithoutAFolderAndWithOneThatIsInTheWay)
{
    const auto nowhere = fileSettingsStore("/proc/none", "");
    for (const Scope scope : {Scope::machine, Scope::user}) {
        write(*nowhere, scope, ones_);
        EXPECT_FALSE(read(*nowhere, scope));
    }
    fs::create_directories(file("user")); // a folder where the file should be
    keep(ones_);
    EXPECT_FALSE(kept());
    EXPECT_EQ(filesBeside("user"), 1);
    fs::create_directories(file("machine").parent_path());
    ASSERT_EQ(mkfifo(file("machine").c_str(), 0600), 0); // must not wait for a writer
    EXPECT_EQ(read(*store(), Scope::machine).value_or(Bytes{}), Bytes{});
}

TEST_F(SettingsFilesOnDisk, killedWritersLeaveAWholeFileAndNothingThatPilesUp)
{
    keep(ones_);
    for (int i = 0; i < 12; ++i) {
        const pid_t writer = startWriter(twos_);
        ASSERT_GE(writer, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(1500 + 137 * i));
        for (int k = 0; k < i % 4; ++k) {
            keep(ones_);
            EXPECT_TRUE(keptIsWhole());
        }
        killWriter(writer);
        EXPECT_TRUE(keptIsWhole());
    }
    EXPECT_LE(filesBeside("user"), 2);
    std::ofstream(file("user").string() + ".new") << std::string(1000, 'x'); // cut off half way
    keep(ones_);
    EXPECT_EQ(kept(), ones_);
    EXPECT_EQ(filesBeside("user"), 1);
}

TEST_F(SettingsFilesOnDisk, aStuckWriterHoldsNobodyUpForLong)
{
    keep(ones_);
    const std::string draft = file("user").string() + ".new";
    const int stuck = ::open(draft.c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(::flock(stuck, LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    keep(twos_);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(kept(), ones_) << "given up, and the old file is whole";
    std::thread other([stuck] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        ::close(stuck);
    });
    keep(twos_); // waits for its turn
    other.join();
    EXPECT_EQ(kept(), twos_);
}

TEST_F(SettingsFilesOnDisk, userFilesStayInTheirFolder)
{
    const auto files = folderUserFiles((root_ / "Tolm").string());
    EXPECT_FALSE(files->read("favourites.txt"));
    files->write("favourites.txt", "one\n");
    files->write("favourites.txt", "two\n");
    EXPECT_EQ(files->read("favourites.txt"), "two\n");
    for (const char* name : {"", "../escaped", ".hidden", "a/b"}) {
        files->write(name, "x");
        EXPECT_FALSE(files->read(name)) << name;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(root_ / "Tolm"), {}), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(root_), {}), 1);
    std::ofstream(root_ / "Tolm" / "huge.txt") << std::string((1 << 20) + 1, 'x');
    EXPECT_FALSE(files->read("huge.txt"));
    EXPECT_FALSE(folderUserFiles("")->read("favourites.txt"));
}

} // namespace
} // namespace tolm

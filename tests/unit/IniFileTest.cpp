#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "settings/IniFile.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/RequireEnvironment.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

namespace fs = std::filesystem;

// The conventional "nobody": a user that owns nothing here.
constexpr unsigned unprivilegedId = 65534;

void SetColour(IniFile::Store& store)
{
    store.SetValue("Camera", "Colour", "1");
}

// An administrator's save must not take the file away from the user it belongs to, and a save
// through a link replaces the file it points at.
TEST(IniFileUpdate, ReplacementThroughALinkKeepsTheOwnerGroupAndModeOfTheOriginal)
{
    TempDirectory directory;
    const std::string path = directory.File("a.ini");
    const std::string link = directory.File("link.ini");
    WriteTextFile(path, "[Camera]\n");
    fs::create_symlink(path, link);
    ASSERT_EQ(0, chmod(path.c_str(), 0640));
    if (geteuid() == 0) {
        ASSERT_EQ(0, chown(path.c_str(), unprivilegedId, unprivilegedId));
    }
    struct stat before {};
    ASSERT_EQ(0, stat(path.c_str(), &before));
    ASSERT_TRUE(IniFile::Update(link, SetColour));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_NE(std::string::npos, ReadTextFile(path).find("Colour = 1"));
    struct stat after {};
    ASSERT_EQ(0, stat(path.c_str(), &after));
    EXPECT_NE(before.st_ino, after.st_ino) << "replaced, not rewritten in place";
    EXPECT_EQ(0640u, after.st_mode & 07777);
    EXPECT_EQ(before.st_uid, after.st_uid);
    EXPECT_EQ(before.st_gid, after.st_gid);
}

// An application installed in a folder its user may not change, with a settings file the user may
// write: the save runs as that user in a child process (root could write anywhere).
class IniFileUnprivilegedSave : public ::testing::Test {
protected:
    void SetUp() override
    {
        VB3_REQUIRE(geteuid() == 0, "needs root to set up files of another user");
        ASSERT_EQ(0, chmod(directory.Path().c_str(), 0755));
        WriteTextFile(path, "[Camera]\nGain = 3\n");
    }

    // The child's exit code: 0 saved, 1 not saved, 2 not saved and no error naming path and reason.
    int SaveAsUnprivilegedUser()
    {
        const pid_t child = fork();
        if (child == 0) {
            if (setgid(unprivilegedId) != 0 || setuid(unprivilegedId) != 0) {
                _exit(3);
            }
            CameraLogRecorder log;
            if (IniFile::Update(path, SetColour)) {
                _exit(0);
            }
            _exit(log.Contains("Error", "Failed to save " + path + ": Permission denied") ? 1 : 2);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    TempDirectory directory;
    const std::string path = directory.File("Configuration.ini");
};

TEST_F(IniFileUnprivilegedSave, NeitherWritableLogsTheReasonAWritableFileIsRewrittenInPlace)
{
    EXPECT_EQ(1, SaveAsUnprivilegedUser());
    EXPECT_EQ("[Camera]\nGain = 3\n", ReadTextFile(path));

    // The folder takes no new file, so a save that succeeds has rewritten the file in place.
    ASSERT_EQ(0, chown(path.c_str(), unprivilegedId, unprivilegedId));
    ASSERT_EQ(0, SaveAsUnprivilegedUser());
    EXPECT_EQ("\xEF\xBB\xBF[Camera]\nGain = 3\nColour = 1\n", ReadTextFile(path));
}

} // namespace
